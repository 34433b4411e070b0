#pragma once

#include <Legacy/If/ReturnCodes.h>
#include <Legacy/IfKit/Families.h>
#include <Legacy/IfKit/Visit.h>

#include <boost/smart_ptr/intrusive_ptr.hpp>

#include <bit>
#include <cstdint>
#include <limits>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

/// Schemas and values of every class, with what is hard to carry, and all that they hold as text.
namespace Legacy::IfKit::Test {

using namespace If;
using ItemPtr = boost::intrusive_ptr<ItemBase>;
using InfoPtr = boost::intrusive_ptr<InfoBase>;

constexpr unsigned int k_id = 0x45080007;
constexpr Permission_t k_permission{0x1234};
constexpr auto k_anyText =
    "\xC3\xA9 \"\\\n\x01\x7F\x80\xFF\xEE\xBE\x80\xC2\x9B\xE2\x80\xAE\xED\xA0\x80 \xF0\x9F\x98\x80/";

inline std::vector<std::string> SampleTexts() { return {"", "on", std::string(k_anyText), std::string("a\0b", 3)}; }

template<typename N>
std::vector<N> SampleNumbers()
{
    using Limits = std::numeric_limits<N>;
    std::vector<N> numbers{0, 1, 100, Limits::lowest(), Limits::max()};
    if constexpr (std::floating_point<N>) {
        using Bits = std::conditional_t<sizeof(N) == 4, std::uint32_t, std::uint64_t>;
        auto const payload = std::bit_cast<N>(static_cast<Bits>(std::bit_cast<Bits>(Limits::quiet_NaN()) | 5));
        numbers.insert(numbers.end(), {static_cast<N>(-0.0), static_cast<N>(0.1), Limits::min(), Limits::denorm_min(),
                                       Limits::infinity(), -Limits::infinity(), Limits::quiet_NaN(),
                                       -Limits::quiet_NaN(), payload, static_cast<N>(1e22), static_cast<N>(2) / 3});
    } else if (sizeof(N) == 8)
        numbers.push_back(static_cast<N>(0x20000000000001)); // no double
    return numbers;
}

inline std::vector<Net::Endpoint<Net::AddrStr>> SampleEndpoints()
{
    return {{}, {Net::AddrStr("::1"), 80}, {Net::AddrStr("[::1]"), 0}, {Net::AddrStr(k_anyText), 65535}};
}

inline std::vector<AppEndpoint<Net::Endpoint<Net::AddrStr>>> SampleAppEndpoints()
{
    std::vector<AppEndpoint<Net::Endpoint<Net::AddrStr>>> samples;
    for (auto const type : {AppProtocolType_t::Rtsp, static_cast<AppProtocolType_t>(-3)}) {
        for (auto const& endpoint : SampleEndpoints())
            samples.push_back({{type, 65535, 2}, endpoint, 255});
    }
    return samples;
}

template<typename Item, typename Held>
constexpr bool k_holds = std::is_same_v<decltype(std::declval<Item&>().Val()), Held&>;

/// What a value of the class can hold, some of each kind.
template<typename Item>
auto SampleValues()
{
    if constexpr (k_holds<Item, bool>)
        return std::vector<bool>{false, true};
    else if constexpr (k_holds<Item, std::vector<bool>>)
        return std::vector<std::vector<bool>>{{}, {true, false, true}};
    else if constexpr (k_holds<Item, std::string>)
        return SampleTexts();
    else if constexpr (k_holds<Item, std::vector<std::string>>)
        return std::vector<std::vector<std::string>>{{}, SampleTexts()};
    else if constexpr (std::same_as<Item, EnumItem>)
        return SampleNumbers<int>();
    else if constexpr (std::same_as<Item, ColourItem>)
        return std::vector<Orlek::Colour_t>{{}, {0.1F, 1, -0.0F, std::numeric_limits<float>::infinity()}};
    else if constexpr (std::same_as<Item, OrientationItem>)
        return std::vector<Orientation_t>{{}, {0.1F, -1, std::numeric_limits<float>::quiet_NaN()}};
    else if constexpr (std::same_as<Item, ExtendedItem>)
        return std::vector<std::pair<std::string, std::string>>{{}, {"one", k_anyText}};
    else if constexpr (std::same_as<Item, AddrItem>)
        return std::vector<Net::AddrStr>{{}, Net::AddrStr(k_anyText)};
    else if constexpr (std::same_as<Item, EndpointItem>)
        return SampleEndpoints();
    else if constexpr (std::same_as<Item, AppEndpointItem>)
        return SampleAppEndpoints();
    else if constexpr (std::same_as<Item, AppEndpointArrayItem>)
        return std::vector<AppEndpointList>{{}, SampleAppEndpoints()};
    else if constexpr (requires { typename Item::List; })
        return std::vector<typename Item::List>{{}, SampleNumbers<typename Item::Element>()};
    else
        return SampleNumbers<typename Item::Element>();
}

inline LocalizedString SampleMessage()
{
    LocalizedString message(k_anyText);
    message.AddArgument(nullptr);
    boost::intrusive_ptr<CompositeItem> const group(new CompositeItem(1));
    group->AddItem(StringItem::Create(2, "on"));
    message.AddArgument(group);
    return message;
}

template<typename T>
boost::intrusive_ptr<RectItem<T>> SampleRect()
{
    using N = typename T::T;
    boost::intrusive_ptr<RectItem<T>> const rect(new RectItem<T>(k_id));
    rect->SetFlat({std::numeric_limits<N>::lowest(), static_cast<N>(2), static_cast<N>(0.1), 40});
    return rect;
}

inline std::vector<ItemPtr> SamplesOf(Family<CompositeInfo, CompositeItem>);

/// Values of one class.
template<typename Info, typename Item>
std::vector<ItemPtr> SamplesOf(Family<Info, Item>)
{
    std::vector<ItemPtr> samples;
    for (auto const& value : SampleValues<Item>()) {
        boost::intrusive_ptr<Item> const item(new Item(k_id));
        item->Val() = value;
        samples.push_back(item);
    }
    return samples;
}

template<typename T>
std::vector<ItemPtr> SamplesOf(Family<CoordinateInfo<T>, CoordinateItem<T>>)
{
    boost::intrusive_ptr<CoordinateItem<T>> const point(new CoordinateItem<T>(k_id));
    *point = *SampleRect<T>()->BottomRight();
    return {point};
}

template<typename T>
std::vector<ItemPtr> SamplesOf(Family<RectInfo<T>, RectItem<T>>)
{
    return {SampleRect<T>()};
}

inline std::vector<ItemPtr> SamplesOf(Family<RectArrayInfo<U16Traits>, RectArrayItem<U16Traits>>)
{
    boost::intrusive_ptr<RectArrayItem<U16Traits>> const rects(new RectArrayItem<U16Traits>(k_id));
    boost::intrusive_ptr<RectArrayItem<U16Traits>> const empty(rects->DeepCopy());
    rects->Val().assign(2, RectItem<U16Traits>(0));
    rects->Val()[1] = *SampleRect<U16Traits>();
    return {rects, empty};
}

inline std::vector<ItemPtr> SamplesOf(Family<LocalizedStringInfo, LocalizedStringItem>)
{
    boost::intrusive_ptr<LocalizedStringItem> const empty(new LocalizedStringItem(k_id));
    boost::intrusive_ptr<LocalizedStringItem> const full(new LocalizedStringItem(k_id));
    full->SetVal(SampleMessage());
    return {empty, full};
}

inline std::vector<ItemPtr> SamplesOf(Family<CollectionInfo, CollectionItem>)
{
    boost::intrusive_ptr<CollectionItem> const list(new CollectionItem(k_id));
    list->AddItem(NumericItem<S8Traits>::Create(3, -3));
    list->AddItem(new CompositeItem(4));
    return {list};
}

inline std::vector<ItemPtr> SamplesOf(Family<CompositeInfo, CompositeItem>)
{
    boost::intrusive_ptr<CompositeItem> const list(new CompositeItem(k_id));
    list->AddItem(BoolItem::Create(1, true));
    list->AddItem(SamplesOf(Family<CollectionInfo, CollectionItem>()).front());
    list->AddItem(SamplesOf(Family<LocalizedStringInfo, LocalizedStringItem>()).back());
    return {list, ItemPtr(new CompositeItem(k_id))};
}

inline std::vector<ItemPtr> SampleItems()
{
    std::vector<ItemPtr> samples;
    AllFamilies::ForEach([&](auto family) {
        for (auto const& item : SamplesOf(family))
            samples.push_back(item);
    });
    return samples;
}

template<typename Info>
boost::intrusive_ptr<Info> FreshInfo(unsigned int id = k_id, std::string const& name = k_anyText)
{
    if constexpr (std::same_as<Info, EnumInfo>)
        return new Info(id, name, k_permission, true);
    else
        return new Info(id, name, k_permission);
}

/// Gives a schema's parts, or the schema itself, bounds that leave some of what is hard to carry inside.
template<typename T>
void Narrow(NumericInfo<T>& info, typename T::T standard)
{
    info.SetMin(2);
    info.SetMax(100);
    info.SetDefault(standard);
}
template<typename T>
void Narrow(CoordinateInfo<T>& info)
{
    Narrow(*info.X(), 3);
    Narrow(*info.Y(), 4);
}

/// Schemas of one class, the last one with everything set. Some have a default that their bounds leave out.
template<typename Info, typename Item>
std::vector<InfoPtr> SchemasOf(Family<Info, Item> family)
{
    auto const full = FreshInfo<Info>();
    std::vector<InfoPtr> samples{InfoPtr(full->DeepCopy())};
    if constexpr (requires { full->SetInfos({}); }) {
        full->AddInfo(FreshInfo<BoolInfo>(1, "a"));
        full->AddInfo(FreshInfo<CompositeInfo>(2, "b"));
        full->AddInfo(samples.front());
    } else if constexpr (std::same_as<Info, EnumInfo>) {
        samples.push_back(InfoPtr(full->DeepCopy()));
        full->SetDefault(7); // which is none of them
        full->GetTable() = {{"off", 0, false}, {k_anyText, -5, true}, {"off", 0, false}};
    } else if constexpr (requires { full->TopLeft(); }) {
        Narrow(*full->TopLeft());
        Narrow(*full->BottomRight());
        if constexpr (requires { full->SetMinSize(1); }) {
            full->SetMinSize(1);
            full->SetMaxSize(4);
        }
    } else if constexpr (requires { full->GetDefaultX(); })
        Narrow(*full);
    else if constexpr (std::same_as<Info, LocalizedStringInfo>)
        full->SetDefault(SampleMessage());
    else if constexpr (std::same_as<Info, ColourInfo>) {
        full->SetMin({0.1F, 0, 0, 0});
        full->SetMax({1, 1, 1, std::numeric_limits<float>::quiet_NaN()});
        full->SetDefault({0.5F, 2, 0, 0});
    } else if constexpr (requires { full->SetFixed(true); }) {
        full->SetFixed(true);
        full->SetDefault(true);
    } else if constexpr (requires { full->SetTable({}); }) {
        full->SetTable(SampleValues<Item>());
        full->SetDefault(SampleValues<Item>().back());
    } else if constexpr (requires { full->SetMaxLength(4U); }) {
        full->SetMaxLength(0);
        full->SetDefault(k_anyText); // not cut to 0
    } else if constexpr (requires { full->SetMin(full->GetDefault()); }) {
        for (auto const number : SampleNumbers<typename Info::Element>()) {
            full->SetMax(number);
            full->SetDefault(number);
            samples.push_back(InfoPtr(full->DeepCopy()));
            full->SetMin(number);
            samples.push_back(InfoPtr(full->DeepCopy()));
            auto const narrow = FreshInfo<Info>();
            Narrow(*narrow, 3);
            full->MergeBounds(narrow);
            samples.push_back(InfoPtr(full->DeepCopy()));
            *full = *FreshInfo<Info>();
        }
        Narrow(*full, 50);
    } else {
        if constexpr (requires { full->SetMaxSize(9U); })
            full->SetMaxSize(9);
        full->SetDefault(SampleValues<Item>().back());
        if constexpr (requires { full->SetMin({}); }) {
            full->SetMin(2);
            full->SetMax(100);
        }
        if constexpr (requires { full->SetMinSize(1U); })
            full->SetMinSize(1);
    }
    (void)family;
    samples.push_back(full);
    return samples;
}

inline std::vector<InfoPtr> SampleInfos()
{
    std::vector<InfoPtr> samples;
    AllFamilies::ForEach([&]<typename Info, typename Item>(Family<Info, Item> family) {
        if constexpr (!std::is_void_v<Info>) {
            for (auto const& info : SchemasOf(family))
                samples.push_back(info);
        }
    });
    return samples;
}

/// All that an object holds, bit by bit, by its getters.
class Print
{
public:
    static std::string Of(auto const& object)
    {
        Print print;
        print.Add(object);
        return print.m_out.str();
    }

private:
    void Add(auto const& first, auto const& second, auto const&... more)
    {
        Add(first);
        Add(second);
        (Add(more), ...);
    }

    template<typename N>
        requires std::is_arithmetic_v<N> || std::is_enum_v<N>
    void Add(N number)
    {
        if constexpr (std::same_as<N, float>)
            Add(std::bit_cast<std::uint32_t>(number));
        else if constexpr (std::same_as<N, double>)
            Add(std::bit_cast<std::uint64_t>(number));
        else if constexpr (std::is_enum_v<N>)
            Add(static_cast<int>(number));
        else
            m_out << +number << ' ';
    }

    void Add(std::string const& text) { m_out << text.size() << ':' << text << ' '; }
    template<typename A, typename B>
    void Add(std::pair<A, B> const& pair)
    {
        Add(pair.first, pair.second);
    }
    template<typename Element>
    void Add(std::vector<Element> const& list)
    {
        m_out << '[';
        for (auto const& element : list)
            Add(element);
        m_out << ']';
    }
    void Add(Orlek::Colour_t const& c) { Add(c.a, c.r, c.g, c.b); }
    void Add(Orientation_t const& o) { Add(o.bearing, o.inclination, o.roll); }
    void Add(Net::AddrStr const& addr) { Add(addr.ToString()); }
    void Add(Net::Endpoint<Net::AddrStr> const& endpoint) { Add(endpoint.GetAddr(), endpoint.GetPort()); }
    void Add(AppEndpoint<Net::Endpoint<Net::AddrStr>> const& endpoint)
    {
        Add(endpoint.GetAppProtocolType(), endpoint.GetAppProtocolVersion(), endpoint.GetAppProtocolCompatVersion(),
            endpoint.GetAddrGroupPrefix(), endpoint.GetEndpoint());
    }
    void Add(ElemType<int> const& element) { Add(element.name, element.value, element.disabled); }
    void Add(LocalizedString const& message)
    {
        Add(message.GetKey());
        for (auto const& argument : message.GetArguments()) {
            if (argument)
                Add(*argument);
            else
                m_out << "null ";
        }
    }
    template<typename T>
    void Add(CoordinateItem<T> const& point)
    {
        Add(point.GetPair()[0], point.GetPair()[1]);
    }
    template<typename T>
    void Add(RectItem<T> const& rect)
    {
        Add(*rect.TopLeft(), *rect.BottomRight());
    }

    void Add(ItemBase const& item)
    {
        m_out << '{';
        Add(item.GetId(), item.GetType(), item.GetNumericType());
        Visit(
            item,
            [&](auto const& own) {
                if constexpr (requires { own.GetItem(0U); }) {
                    for (unsigned int i = 0; i < own.GetSize(); ++i)
                        Add(*own.GetItem(i));
                } else if constexpr (requires { own.Val(); })
                    Add(own.Val());
                else if constexpr (requires { own.GetVal(); })
                    Add(own.GetVal());
                else
                    Add(own);
            },
            [](Foreign<ItemBase const>) {});
        m_out << '}';
    }

    void Add(InfoBase const& info)
    {
        m_out << '{';
        Add(info.GetId(), info.GetName(), info.GetPermission().bits, info.GetType(), info.GetNumericType());
        Visit(
            info, [&](auto const& own) { AddBounds(own); }, [](Foreign<InfoBase const>) {});
        m_out << '}';
    }

    template<typename Info>
    void AddBounds(Info const& info)
    {
        if constexpr (requires { info.GetInfo(0U); }) {
            for (unsigned int i = 0; i < info.GetSize(); ++i)
                Add(*info.GetInfo(i));
        }
        if constexpr (requires { info.GetDefault(); })
            Add(info.GetDefault());
        if constexpr (requires { info.GetMin(); })
            Add(info.GetMin(), info.GetMax());
        if constexpr (requires { info.GetMinSize(); })
            Add(info.GetMinSize(), info.GetMaxSize());
        if constexpr (requires { info.GetMaxLength(); })
            Add(info.GetMaxLength());
        if constexpr (requires { info.GetTable(); })
            Add(info.GetTable());
        if constexpr (requires { info.GetFixed(); })
            Add(info.GetFixed());
        if constexpr (requires { info.IsLocalized(); })
            Add(info.IsLocalized());
        if constexpr (requires { info.TopLeft(); })
            Add(*info.TopLeft(), *info.BottomRight());
        if constexpr (requires { info.X(); })
            Add(*info.X(), *info.Y());
    }

    std::ostringstream m_out;
};

} // namespace Legacy::IfKit::Test
