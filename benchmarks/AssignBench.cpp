// What it costs to take over the value of a parameter of another element type.
#include "Rows.h"

#include <Legacy/If/AppEndpointArray.h>
#include <Legacy/If/Bool.h>
#include <Legacy/If/BoolArray.h>
#include <Legacy/If/Composite.h>
#include <Legacy/If/Numeric.h>
#include <Legacy/If/NumericArray.h>
#include <Legacy/If/RectArray.h>
#include <Legacy/If/String.h>
#include <Legacy/If/StringArray.h>

#include <algorithm>
#include <array>
#include <memory>

#ifdef BENCH_HAS_GLIB
#include <glib-object.h>
#endif

namespace {

using namespace Legacy::If;
using namespace Bench;

using ItemPtr = boost::intrusive_ptr<ItemBase const>;

template<typename Traits>
using List = boost::intrusive_ptr<NumericArrayItem<Traits>>;

template<typename Traits>
List<Traits> MakeListItem(std::vector<typename Traits::T> const& list)
{
    List<Traits> const item(new NumericArrayItem<Traits>(k_id));
    item->SetVal(list);
    return item;
}

/// Two sources that differ in every element, taken in turn, so that each assignment changes the whole list.
template<typename Element>
std::array<std::vector<Element>, 2> MakeSources()
{
    std::array<std::vector<Element>, 2> sources{MakeList<Element>(), MakeList<Element>()};
    std::ranges::transform(sources[1], sources[1].begin(), [](Element e) { return static_cast<Element>(e + 1); });
    return sources;
}

/// Whether the elements that the target took are those of the source. A target of wider elements takes fewer.
template<typename Target, typename Source>
bool IsTaken(std::vector<Target> const& target, std::vector<Source> const& source)
{
    std::size_t const taken = std::min(target.size(), source.size());
    return taken != 0 && std::equal(target.begin(), target.begin() + static_cast<std::ptrdiff_t>(taken), source.begin(),
                                    [](Target t, Source s) { return t == static_cast<Target>(s); });
}

template<typename From, typename To>
void AddListAssign()
{
    using Source = typename From::T;
    using Target = typename To::T;
    std::string const subject = ListName<From>() + "-to-" + k_elementName<To>;

    AddRow("assign", subject, k_ours, [](benchmark::State& state) {
        auto const lists = MakeSources<Source>();
        std::array<boost::intrusive_ptr<ItemBase const>, 2> const sources{MakeListItem<From>(lists[0]),
                                                                          MakeListItem<From>(lists[1])};
        List<To> const target(new NumericArrayItem<To>(k_id));
        std::size_t turn = 0;
        bool right = true;
        Measure(state, [&] {
            bool changed = false;
            right &= target->AssignValue(sources[turn ^= 1], &changed) == 0 && changed;
        });
        Check(state, right && IsTaken(target->Val(), lists[turn]));
    });
    // As many elements as the rule of sizes gives, each cast, and nothing compared.
    AddRow("assign", subject, "std-copy", [](benchmark::State& state) {
        auto const sources = MakeSources<Source>();
        std::vector<Target> target;
        std::size_t turn = 0;
        Measure(state, [&] {
            auto const& source = sources[turn ^= 1];
            target.resize(source.size() * sizeof(Source) / sizeof(Target));
            std::size_t const taken = std::min(target.size(), source.size());
            std::transform(source.begin(), source.begin() + static_cast<std::ptrdiff_t>(taken), target.begin(),
                           [](Source e) { return static_cast<Target>(e); });
            std::fill(target.begin() + static_cast<std::ptrdiff_t>(taken), target.end(), Target{});
            benchmark::DoNotOptimize(target.data());
            benchmark::ClobberMemory();
        });
        Check(state, IsTaken(target, sources[turn]));
    });
}

template<typename From>
void AddListAssigns()
{
    ForAllElements([]<typename To>(To) { AddListAssign<From, To>(); });
}

/// The same source again: nothing changes, which is what a poll of a device finds most of the time.
template<typename From, typename To>
void AddUnchanged()
{
    AddRow("assign-unchanged", ListName<From>() + "-to-" + k_elementName<To>, k_ours, [](benchmark::State& state) {
        boost::intrusive_ptr<ItemBase const> const source = MakeListItem<From>(MakeList<typename From::T>());
        List<To> const target(new NumericArrayItem<To>(k_id));
        target->AssignValue(source, nullptr);
        bool right = true;
        Measure(state, [&] {
            bool changed = true;
            right &= target->AssignValue(source, &changed) == 0 && !changed;
        });
        Check(state, right);
    });
}

void AddScalarAssign(std::string const& subject, boost::intrusive_ptr<ItemBase> const& target,
                     boost::intrusive_ptr<ItemBase> const& source, unsigned int index = 0)
{
    AddRow("assign", subject, k_ours, [=](benchmark::State& state) {
        boost::intrusive_ptr<ItemBase const> const from = source;
        bool right = true;
        Measure(state, [&] {
            bool changed = false;
            right &= target->AssignArrayValue(from, index, &changed) == 0;
            benchmark::DoNotOptimize(changed);
        });
        Check(state, right);
    });
}

/// What no family takes: refused by its tag.
void AddRefused()
{
    AddRow("assign", "refused", k_ours, [](benchmark::State& state) {
        boost::intrusive_ptr<ItemBase const> const list = MakeListItem<U32Traits>({1, 2, 3});
        boost::intrusive_ptr<ItemBase> const target(NumericItem<U32Traits>::Create(k_id, 7));
        bool right = true;
        Measure(state, [&] { right &= target->AssignArrayValue(list, 3, nullptr) == IfErrInvalidArgument; });
        Check(state, right);
    });
}

#ifdef BENCH_HAS_GLIB

template<typename Traits>
constexpr GType GlibType()
{
    switch (Traits::k_numericType) {
    case NumericType_t::U8:
        return G_TYPE_UCHAR;
    case NumericType_t::S8:
        return G_TYPE_CHAR;
    case NumericType_t::U32:
        return G_TYPE_UINT;
    case NumericType_t::S32:
        return G_TYPE_INT;
    case NumericType_t::U64:
        return G_TYPE_UINT64;
    case NumericType_t::S64:
        return G_TYPE_INT64;
    case NumericType_t::Float:
        return G_TYPE_FLOAT;
    case NumericType_t::Double:
        return G_TYPE_DOUBLE;
    default:
        return G_TYPE_INVALID; // there are no 16-bit values
    }
}

std::vector<GValue> MakeGlibValues(GType type, std::size_t count)
{
    std::vector<GValue> values(count);
    for (GValue& value : values)
        g_value_init(&value, type);
    return values;
}

/// A list of values, each transformed.
void TransformGlib(benchmark::State& state, GType from, GType to, std::size_t count)
{
    auto const source = MakeGlibValues(from, count);
    auto target = MakeGlibValues(to, count);
    bool right = true;
    Measure(state, [&] {
        for (std::size_t i = 0; i < count; ++i)
            right &= g_value_transform(&source[i], &target[i]) != 0;
        benchmark::DoNotOptimize(target.data());
    });
    Check(state, right);
}

template<typename From, typename To>
void AddGlib()
{
    if constexpr (GlibType<From>() != G_TYPE_INVALID && GlibType<To>() != G_TYPE_INVALID) {
        AddRow("assign", ListName<From>() + "-to-" + k_elementName<To>, "glib",
               [](benchmark::State& state) { TransformGlib(state, GlibType<From>(), GlibType<To>(), k_listSize); });
    }
}

#endif

/// A list to which `append` adds one element after the other.
template<typename List, typename Append>
void AddAppend(std::string const& subject, std::string const& library, List const& empty, Append append)
{
    AddRow("append", subject + "x10000", library, [empty, append](benchmark::State& state) {
        constexpr unsigned int count = 10000;
        bool right = true;
        auto const fill = [&] {
            List list = empty;
            for (unsigned int i = 0; i < count; ++i)
                append(list, i);
            if constexpr (requires { list.GetSize(); })
                right &= list.GetSize() == count;
            benchmark::DoNotOptimize(list);
        };
        Measure(state, fill, count);
        Check(state, right);
    });
}

template<typename Item>
void AddAppend(std::string const& subject, ItemBase* element)
{
    AddAppend(subject, k_ours, Item(k_id), [source = ItemPtr(element)](Item& list, unsigned int index) {
        list.AssignArrayValue(source, index, nullptr);
    });
}

void AddAppends()
{
    AddAppend<NumericArrayItem<U16Traits>>("u16", NumericItem<U16Traits>::Create(k_id, 7));
    AddAppend<BoolArrayItem>("bool", BoolItem::Create(k_id, true));
    AddAppend<StringArrayItem>("text", StringItem::Create(k_id, k_text));
    AddAppend<RectArrayItem<U16Traits>>("rect", new RectItem<U16Traits>(k_id));
    AddAppend<AppEndpointArrayItem>("app-endpoint", new AppEndpointItem(k_id));
    boost::intrusive_ptr<ItemBase> const member(new BoolItem(k_id));
    AddAppend("member", k_ours, CompositeItem(k_id),
              [member](CompositeItem& list, unsigned int) { list.AddItem(member); });
    AddAppend("u16", "std-vector", std::vector<unsigned short>(),
              [](std::vector<unsigned short>& list, unsigned int) { list.push_back(7); });
    AddAppend("text", "std-vector", std::vector<std::string>(),
              [](std::vector<std::string>& list, unsigned int) { list.emplace_back(k_text); });
}

struct Rows
{
    Rows()
    {
        ForElements<U16Traits, U32Traits, FloatTraits, DoubleTraits>(
            []<typename From>(From) { AddListAssigns<From>(); });
        AddUnchanged<U32Traits, U32Traits>();
        AddUnchanged<U32Traits, FloatTraits>();
        AddUnchanged<FloatTraits, FloatTraits>();

        boost::intrusive_ptr<ItemBase> const number(NumericItem<U32Traits>::Create(k_id, 7));
        boost::intrusive_ptr<ItemBase> const real(NumericItem<DoubleTraits>::Create(k_id, 3.5));
        AddScalarAssign("u32-to-u32", NumericItem<U32Traits>::Create(k_id, 1), number);
        AddScalarAssign("u32-to-double", NumericItem<DoubleTraits>::Create(k_id, 1), number);
        AddScalarAssign("double-to-u32", NumericItem<U32Traits>::Create(k_id, 1), real);
        AddScalarAssign("bool-to-u32", NumericItem<U32Traits>::Create(k_id, 1), BoolItem::Create(k_id, true));
        AddScalarAssign("element-to-u32", NumericItem<U32Traits>::Create(k_id, 1),
                        MakeListItem<U16Traits>(MakeList<unsigned short>()), 500);
        AddScalarAssign("u32-to-element", MakeListItem<U16Traits>(MakeList<unsigned short>()), number, 500);
        AddRefused();
        AddAppends();
#ifdef BENCH_HAS_GLIB
        ForElements<U32Traits, FloatTraits, DoubleTraits>(
            []<typename From>(From) { ForAllElements([]<typename To>(To) { AddGlib<From, To>(); }); });
        AddRow("assign", "u32-to-u32", "glib",
               [](benchmark::State& state) { TransformGlib(state, G_TYPE_UINT, G_TYPE_UINT, 1); });
        AddRow("assign", "u32-to-double", "glib",
               [](benchmark::State& state) { TransformGlib(state, G_TYPE_UINT, G_TYPE_DOUBLE, 1); });
        AddRow("assign", "double-to-u32", "glib",
               [](benchmark::State& state) { TransformGlib(state, G_TYPE_DOUBLE, G_TYPE_UINT, 1); });
        AddRow("assign", "bool-to-u32", "glib",
               [](benchmark::State& state) { TransformGlib(state, G_TYPE_BOOLEAN, G_TYPE_UINT, 1); });
#endif
    }
} const k_rows;

} // namespace
