// What one value costs: to make, to test, to share, to print and to read.
#include "Rows.h"

#include <Legacy/If/Numeric.h>
#include <Legacy/If/NumericArray.h>
#include <Legacy/If/ResultElem.h>
#include <Legacy/If/String.h>

#include <boost/lexical_cast.hpp>
#include <boost/smart_ptr/intrusive_ref_counter.hpp>

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <limits>
#include <memory>
#include <sstream>
#include <string_view>

#ifdef BENCH_HAS_GLIB
#include <glib-object.h>
#endif

namespace {

using namespace Legacy::If;
using namespace Bench;

using ItemPtr = boost::intrusive_ptr<ItemBase>;
using InfoPtr = boost::intrusive_ptr<InfoBase const>;

// ---- what a user would write instead
// ---------------------------------------------------------------------------------

/// A value of one's own: an id and a content behind a counted pointer.
template<typename Content>
struct OwnValue : boost::intrusive_ref_counter<OwnValue<Content>, boost::thread_safe_counter>
{
    OwnValue(unsigned int i, Content c) : id(i), content(std::move(c)) {}
    virtual ~OwnValue() = default;

    unsigned int id;
    Content content;
};

#ifdef BENCH_HAS_GLIB

struct ParamUnref
{
    void operator()(GParamSpec* schema) const { g_param_spec_unref(schema); }
};
using ParamPtr = std::unique_ptr<GParamSpec, ParamUnref>;

template<typename Own>
ParamPtr Sink(Own* schema)
{
    return ParamPtr(g_param_spec_ref_sink(schema));
}

/// A value on the heap, as a container of values holds it.
struct GlibValue
{
    explicit GlibValue(GType type) : value(g_slice_new0(GValue)) { g_value_init(value, type); }
    GlibValue(GlibValue const&) = delete;
    GlibValue& operator=(GlibValue const&) = delete;
    ~GlibValue()
    {
        g_value_unset(value);
        g_slice_free(GValue, value);
    }

    GValue* value;
};

#endif

// ---- rows
// ------------------------------------------------------------------------------------------------------------

template<typename Make>
void Create(benchmark::State& state, Make const& make)
{
    Measure(state, [&make] {
        auto const object = make();
        benchmark::DoNotOptimize(object.get());
    });
}

void AddCreate()
{
    AddRow("create", "u32", k_ours, [](benchmark::State& state) {
        Create(state, [] { return ItemPtr(NumericItem<U32Traits>::Create(k_id, 7)); });
    });
    AddRow("create", "u32", "boost-intrusive", [](benchmark::State& state) {
        Create(state, [] { return boost::intrusive_ptr<OwnValue<unsigned>>(new OwnValue<unsigned>(k_id, 7U)); });
    });
    AddRow("create", "u32", "std-shared", [](benchmark::State& state) {
        Create(state, [] { return std::make_shared<OwnValue<unsigned>>(k_id, 7U); });
    });
    AddRow("create", "text", k_ours, [](benchmark::State& state) {
        Create(state, [text = std::string(k_text)] { return ItemPtr(StringItem::Create(k_id, text)); });
    });
    AddRow("create", "text", "boost-intrusive", [](benchmark::State& state) {
        using Value = OwnValue<std::string>;
        Create(state, [text = std::string(k_text)] { return boost::intrusive_ptr<Value>(new Value(k_id, text)); });
    });
    AddRow("create", "u32-from-schema", k_ours, [](benchmark::State& state) {
        NumericInfo<U32Traits> const info(k_id, k_name, Permission_t{});
        Create(state, [&info] { return ItemPtr(info.CreateItem()); });
    });
#ifdef BENCH_HAS_GLIB
    AddRow("create", "u32", "glib", [](benchmark::State& state) {
        Measure(state, [] {
            GlibValue const object(G_TYPE_UINT);
            g_value_set_uint(object.value, 7);
            benchmark::DoNotOptimize(object.value);
        });
    });
    AddRow("create", "text", "glib", [](benchmark::State& state) {
        Measure(state, [] {
            GlibValue const object(G_TYPE_STRING);
            g_value_set_string(object.value, k_text);
            benchmark::DoNotOptimize(object.value);
        });
    });
    AddRow("create", "u32-from-schema", "glib", [](benchmark::State& state) {
        ParamPtr const schema = Sink(g_param_spec_uint(k_name, nullptr, nullptr, 0, 100, 7, G_PARAM_READWRITE));
        Measure(state, [&schema] {
            GlibValue const object(G_TYPE_UINT);
            g_param_value_set_default(schema.get(), object.value);
            benchmark::DoNotOptimize(object.value);
        });
    });
#endif
}

/// Validates `item` and expects the outcome that the row is named for.
void Validate(benchmark::State& state, ItemPtr const& item, InfoPtr const& info, bool passes)
{
    bool right = true;
    Measure(state, [&] {
        auto const finding = item->Validate(info);
        right &= !finding == passes;
    });
    Check(state, right);
}

/// A finding of one's own: the message and a copy of the value, made where a test fails.
template<typename Content>
struct OwnFinding
{
    std::string message;
    Content value;
};

template<typename Content>
std::unique_ptr<OwnFinding<Content>> MakeOwnFinding(char const* key, std::string const& name, std::string const& bound,
                                                    Content const& value)
{
    return std::make_unique<OwnFinding<Content>>(OwnFinding<Content>{key + (": " + name) + ' ' + bound, value});
}

template<typename Test>
void ValidateOwn(benchmark::State& state, bool passes, Test const& test)
{
    bool right = true;
    Measure(state, [&] {
        auto const finding = test();
        right &= !finding == passes;
    });
    Check(state, right);
}

void AddValidateScalar(bool passes)
{
    std::string const operation = passes ? "validate-pass" : "validate-fail";
    unsigned int const number = passes ? 50 : 150;
    std::string const text = passes ? k_text : std::string(k_text) + ", second shelf";

    AddRow(operation, "u32", k_ours, [=](benchmark::State& state) {
        boost::intrusive_ptr<NumericInfo<U32Traits>> const info(new NumericInfo<U32Traits>(k_id, k_name, {}));
        info->SetMax(100);
        Validate(state, NumericItem<U32Traits>::Create(k_id, number), info, passes);
    });
    AddRow(operation, "u32", "own", [=](benchmark::State& state) {
        unsigned int min = 0;
        unsigned int max = 100;
        unsigned int value = number;
        std::string const name = k_name;
        ValidateOwn(state, passes, [&]() -> std::unique_ptr<OwnFinding<unsigned int>> {
            benchmark::DoNotOptimize(min);
            benchmark::DoNotOptimize(max);
            benchmark::DoNotOptimize(value);
            if (value < min)
                return MakeOwnFinding("min", name, std::to_string(min), value);
            if (value > max)
                return MakeOwnFinding("max", name, std::to_string(max), value);
            return {};
        });
    });
    AddRow(operation, "text", k_ours, [=](benchmark::State& state) {
        boost::intrusive_ptr<StringInfo> const info(new StringInfo(k_id, k_name, {}));
        info->SetMaxLength(24);
        Validate(state, StringItem::Create(k_id, text), info, passes);
    });
    AddRow(operation, "text", "own", [=](benchmark::State& state) {
        std::size_t max = 24;
        std::string value = text;
        std::string const name = k_name;
        ValidateOwn(state, passes, [&]() -> std::unique_ptr<OwnFinding<std::string>> {
            benchmark::DoNotOptimize(max);
            benchmark::DoNotOptimize(value);
            if (value.size() > max)
                return MakeOwnFinding("length", name, std::to_string(max), value);
            return {};
        });
    });
#ifdef BENCH_HAS_GLIB
    AddRow(operation, "u32", "glib", [=](benchmark::State& state) {
        ParamPtr const schema = Sink(g_param_spec_uint(k_name, nullptr, nullptr, 0, 100, 7, G_PARAM_READWRITE));
        GlibValue const value(G_TYPE_UINT);
        g_value_set_uint(value.value, number);
        bool right = true;
        Measure(state, [&] {
            bool const valid = g_param_value_is_valid(schema.get(), value.value) != 0;
            if (!valid)
                g_error_free(g_error_new(g_quark_from_static_string("bench"), 1, "value %u of \"%s\" is out of range",
                                         g_value_get_uint(value.value), schema->name));
            right &= valid == passes;
        });
        Check(state, right);
    });
#endif
}

/// A list of which, where it fails, the last element is beyond the greatest value.
template<typename Traits>
void AddValidateList(bool passes)
{
    using Element = typename Traits::T;
    std::string const operation = passes ? "validate-pass" : "validate-fail";
    Element const most = 100;
    auto list = MakeList<Element>();
    if (!passes)
        list.back() = 101;

    AddRow(operation, ListName<Traits>(), k_ours, [=](benchmark::State& state) {
        boost::intrusive_ptr<NumericArrayInfo<Traits>> const info(new NumericArrayInfo<Traits>(k_id, k_name, {}));
        info->SetMax(most);
        boost::intrusive_ptr<NumericArrayItem<Traits>> const item(new NumericArrayItem<Traits>(k_id));
        item->SetVal(list);
        Validate(state, item, info, passes);
    });
    AddRow(operation, ListName<Traits>(), "own", [=](benchmark::State& state) {
        Element min = 0;
        Element max = most;
        std::string const name = k_name;
        ValidateOwn(state, passes, [&]() -> std::unique_ptr<OwnFinding<std::vector<Element>>> {
            benchmark::DoNotOptimize(min);
            benchmark::DoNotOptimize(max);
            benchmark::DoNotOptimize(list.data());
            auto const outside = [min, max](Element e) { return e < min || e > max; };
            auto const first = std::ranges::find_if(list, outside);
            if (first == list.end())
                return {};
            return *first < min ? MakeOwnFinding("min", name, std::to_string(min), list)
                                : MakeOwnFinding("max", name, std::to_string(max), list);
        });
    });
}

/// In two threads every reference is to the same object.
template<typename Pointer>
void Share(benchmark::State& state, Pointer const& shared)
{
    Measure(state, [&shared] {
        Pointer const reference(shared);
        benchmark::DoNotOptimize(reference.get());
    });
}

void AddShare()
{
    for (int const threads : {1, 2}) {
        std::string const subject = threads == 1 ? "one-thread" : "two-threads";
        AddRow("reference", subject, k_ours, [](benchmark::State& state) {
            static ItemPtr const item(NumericItem<U32Traits>::Create(k_id, 7));
            Share(state, item);
        })->Threads(threads);
        AddRow("reference", subject, "boost-intrusive", [](benchmark::State& state) {
            static boost::intrusive_ptr<OwnValue<unsigned>> const item(new OwnValue<unsigned>(k_id, 7U));
            Share(state, item);
        })->Threads(threads);
        AddRow("reference", subject, "std-shared", [](benchmark::State& state) {
            static auto const item = std::make_shared<unsigned>(7U);
            Share(state, item);
        })->Threads(threads);
#ifdef BENCH_HAS_GLIB
        AddRow("reference", subject, "glib", [](benchmark::State& state) {
            static ParamPtr const schema =
                Sink(g_param_spec_uint(k_name, nullptr, nullptr, 0, 100, 7, G_PARAM_READWRITE));
            Measure(state, [] { g_param_spec_unref(g_param_spec_ref(schema.get())); });
        })->Threads(threads);
#endif
    }
}

template<typename Print>
void ToText(benchmark::State& state, std::string_view expected, Print const& print)
{
    bool right = true;
    Measure(state, [&] {
        auto const text = print();
        right &= text == expected;
    });
    Check(state, right);
}

template<typename Value>
void AddToText(std::string const& subject, ItemPtr const& item, Value const& value, std::string const& expected)
{
    AddRow("to-text", subject, k_ours,
           [=](benchmark::State& state) { ToText(state, expected, [&item] { return item->GetValAsString(); }); });
    AddRow("to-text", subject, "std-stream", [=](benchmark::State& state) {
        ToText(state, expected, [&value] {
            std::ostringstream os;
            os << value;
            return os.str();
        });
    });
    if constexpr (std::is_arithmetic_v<Value>) {
        AddRow("to-text", subject, "std-format", [=](benchmark::State& state) {
            ToText(state, expected, [&value] {
                char text[32];
                return std::string(text, static_cast<std::size_t>(std::snprintf(
                                             text, sizeof(text), std::is_integral_v<Value> ? "%u" : "%g", value)));
            });
        });
    }
    if constexpr (std::is_integral_v<Value>) {
        AddRow("to-text", subject, "boost-lexical", [=](benchmark::State& state) {
            ToText(state, expected, [&value] { return boost::lexical_cast<std::string>(value); });
        });
    }
}

#ifdef BENCH_HAS_GLIB
template<typename Fill>
void AddToTextGlib(std::string const& subject, GType type, std::string const& prefix, Fill fill)
{
    AddRow("to-text", subject, "glib", [=](benchmark::State& state) {
        GlibValue const from(type);
        fill(from.value);
        bool right = true;
        Measure(state, [&] {
            GlibValue const to(G_TYPE_STRING);
            g_value_transform(from.value, to.value);
            right &= std::string_view(g_value_get_string(to.value)).starts_with(prefix);
        });
        Check(state, right);
    });
}
#endif

/// Reads the same text again and again out of one stream, so that the stream itself is made once.
template<typename Take>
void FromText(benchmark::State& state, std::string const& text, Take const& take)
{
    std::istringstream in(text);
    bool right = true;
    Measure(state, [&] {
        in.clear();
        in.seekg(0);
        right &= take(in);
    });
    Check(state, right);
}

template<typename Item, typename Value>
void AddFromText(std::string const& subject, boost::intrusive_ptr<Item> const& item, std::string const& text,
                 Value const& expected)
{
    AddRow("from-text", subject, k_ours, [=](benchmark::State& state) {
        std::ostringstream out;
        InfoPtr const none;
        FromText(state, text, [&](std::istream& in) { return item->SetValFromStream(in, out, none); });
        Check(state, item->GetVal() == expected);
    });
    AddRow("from-text", subject, "std-stream", [=](benchmark::State& state) {
        Value value{};
        FromText(state, text, [&](std::istream& in) { return static_cast<bool>(in >> value); });
        Check(state, value == expected);
    });
    if constexpr (std::is_arithmetic_v<Value>) {
        AddRow("from-text", subject, "std-charconv", [=](benchmark::State& state) {
            Value value{};
            Measure(state, [&] {
                std::from_chars(text.data(), text.data() + text.size(), value);
                benchmark::DoNotOptimize(value);
            });
            Check(state, value == expected);
        });
    }
#ifdef BENCH_HAS_GLIB
    if constexpr (std::is_integral_v<Value>) {
        AddRow("from-text", subject, "glib", [=](benchmark::State& state) {
            guint64 value = 0;
            Measure(state, [&] {
                g_ascii_string_to_unsigned(text.c_str(), 10, 0, std::numeric_limits<Value>::max(), &value, nullptr);
            });
            Check(state, value == expected);
        });
    }
    if constexpr (std::is_floating_point_v<Value>) {
        AddRow("from-text", subject, "glib", [=](benchmark::State& state) {
            double value = 0;
            Measure(state, [&] {
                value = g_ascii_strtod(text.c_str(), nullptr);
                benchmark::DoNotOptimize(value);
            });
            Check(state, value == expected);
        });
    }
#endif
}

/// A list as text and back, beside the stream's own operators and beside the conversions without a stream.
template<typename Traits>
void AddListText()
{
    using Element = typename Traits::T;
    std::string const subject = ListName<Traits>();
    auto const list = MakeList<Element>();
    boost::intrusive_ptr<NumericArrayItem<Traits>> const item(new NumericArrayItem<Traits>(k_id));
    item->SetVal(list);

    auto const print = [list](std::ostream& os) {
        for (Element const element : list)
            os << element << ' ';
    };
    AddRow("to-text", subject, k_ours, [item](benchmark::State& state) {
        bool right = true;
        Measure(state, [&] { right &= item->GetValAsString().starts_with("(1, 38, "); });
        Check(state, right);
    });
    AddRow("to-text", subject, "std-stream", [print](benchmark::State& state) {
        bool right = true;
        Measure(state, [&] {
            std::ostringstream os;
            print(os);
            right &= os.str().starts_with("1 38 ");
        });
        Check(state, right);
    });
    AddRow("to-text", subject, "std-charconv", [list](benchmark::State& state) {
        std::vector<char> text(list.size() * 32);
        Measure(state, [&] {
            char* end = text.data();
            for (Element const element : list) {
                end = std::to_chars(end, end + 32, element).ptr;
                *end++ = ' ';
            }
            benchmark::DoNotOptimize(text.data());
            benchmark::ClobberMemory();
        });
    });

    std::ostringstream words;
    print(words);
    AddRow("from-text", subject, k_ours,
           [item, text = std::to_string(list.size()) + ' ' + words.str()](benchmark::State& state) {
               std::ostringstream out;
               InfoPtr const none;
               FromText(state, text, [&](std::istream& in) { return item->SetValFromStream(in, out, none); });
               Check(state, item->GetSize() == k_listSize && item->Val()[1] == 38);
           });
    AddRow("from-text", subject, "std-stream", [text = words.str()](benchmark::State& state) {
        FromText(state, text, [](std::istream& in) {
            Element element{};
            for (std::size_t i = 0; i < k_listSize; ++i)
                in >> element;
            return !in.fail();
        });
    });
}

struct Rows
{
    Rows()
    {
        AddCreate();
        for (bool const passes : {true, false}) {
            AddValidateScalar(passes);
            ForElements<U8Traits, U16Traits, S32Traits, U64Traits, FloatTraits, DoubleTraits>(
                [passes]<typename Traits>(Traits) { AddValidateList<Traits>(passes); });
        }
        AddShare();

        boost::intrusive_ptr<NumericItem<U32Traits>> const number(NumericItem<U32Traits>::Create(k_id, 1234567));
        boost::intrusive_ptr<NumericItem<DoubleTraits>> const real(NumericItem<DoubleTraits>::Create(k_id, 3.14159));
        boost::intrusive_ptr<StringItem> const text(StringItem::Create(k_id, k_text));
        AddToText("u32", number, 1234567U, "1234567");
        AddToText("double", real, 3.14159, "3.14159");
        AddToText("text", text, std::string(k_text), k_text);
#ifdef BENCH_HAS_GLIB
        AddToTextGlib("u32", G_TYPE_UINT, "1234567", [](GValue* value) { g_value_set_uint(value, 1234567); });
        AddToTextGlib("double", G_TYPE_DOUBLE, "3.14159", [](GValue* value) { g_value_set_double(value, 3.14159); });
        AddToTextGlib("text", G_TYPE_STRING, k_text, [](GValue* value) { g_value_set_string(value, k_text); });
#endif
        AddFromText("u32", number, "1234567", 1234567U);
        AddFromText("double", real, "3.14159", 3.14159);
        AddFromText("text", boost::intrusive_ptr<StringItem>(new StringItem(k_id)), "first-floor-east-wing1",
                    std::string("first-floor-east-wing1"));
        ForElements<U16Traits, FloatTraits, DoubleTraits>([]<typename Traits>(Traits) { AddListText<Traits>(); });
    }
} const k_rows;

} // namespace
