#pragma once

#include <Legacy/IfKit/Families.h>

#include <boost/smart_ptr/intrusive_ptr.hpp>

#include <bit>
#include <cstdint>
#include <limits>
#include <string>
#include <utility>
#include <vector>

/// Schemas and values of every class, with what is hard to carry.
namespace Legacy::IfKit::Test {

using namespace If;
using ItemPtr = boost::intrusive_ptr<ItemBase>;
using InfoPtr = boost::intrusive_ptr<InfoBase>;

constexpr unsigned int k_id = 0x45080007;
constexpr Permission_t k_permission{0x1234};
constexpr auto k_anyText =
    "\xC3\xA9 \"\\\n\x01\x7F\x80\xFF\xEE\xBE\x80\xC2\x9B\xE2\x80\xAE\xED\xA0\x80 \xF0\x9F\x98\x80/";

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

using Address = Net::AddrStr;
using Place = Net::Endpoint<Address>;
using Pair = std::pair<std::string, std::string>;

/// What a value can hold, some of each kind, by what it holds.
/// @{
template<typename N>
std::vector<N> Samples(N)
{
    return SampleNumbers<N>();
}
inline std::vector<bool> Samples(bool) { return {false, true}; }
inline std::vector<std::string> Samples(std::string const&) { return {"", "on", k_anyText, std::string("a\0b", 3)}; }
inline std::vector<Orlek::Colour_t> Samples(Orlek::Colour_t const&)
{
    return {{}, {0.1F, 1, -0.0F, std::numeric_limits<float>::infinity()}};
}
inline std::vector<Orientation_t> Samples(Orientation_t const&)
{
    return {{}, {0.1F, -1, std::numeric_limits<float>::quiet_NaN()}};
}
inline std::vector<Pair> Samples(Pair const&) { return {{}, {"one", k_anyText}}; }
inline std::vector<Address> Samples(Address const&) { return {{}, Address(k_anyText)}; }
inline std::vector<Place> Samples(Place const&)
{
    return {{}, {Address("::1"), 80}, {Address("[::1]"), 0}, {Address(k_anyText), 65535}};
}
inline AppEndpointList Samples(AppEndpoint<Place> const&)
{
    AppEndpointList samples;
    for (auto const type : {AppProtocolType_t::Rtsp, static_cast<AppProtocolType_t>(-3)}) {
        for (auto const& endpoint : Samples(Place()))
            samples.push_back({{type, 65535, 2}, endpoint, 255});
    }
    return samples;
}
template<typename Element>
std::vector<std::vector<Element>> Samples(std::vector<Element> const&)
{
    return {{}, Samples(Element())};
}
/// @}

template<typename Item>
auto SampleValues()
{
    return Samples(std::remove_reference_t<decltype(std::declval<Item&>().Val())>());
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
    return {ItemPtr(SampleRect<T>()->BottomRight()->DeepCopy(k_id))};
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
std::vector<InfoPtr> SchemasOf(Family<Info, Item>)
{
    auto const full = FreshInfo<Info>();
    std::vector<InfoPtr> samples{InfoPtr(full->DeepCopy())};
    if constexpr (requires { full->SetInfos({}); }) {
        full->SetInfos({FreshInfo<BoolInfo>(1, "a"), FreshInfo<CompositeInfo>(2, "b"), samples.front()});
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

} // namespace Legacy::IfKit::Test
