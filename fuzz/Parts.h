#pragma once

#include "Input.h"

#include <Legacy/IfKit/Families.h>

#include <boost/endian/conversion.hpp>

#include <sstream>
#include <stdexcept>
#include <type_traits>

/// Schemas and values of every family, with whatever content an input asks for.
namespace Parts {

using namespace Legacy;
using If::InfoBase;
using If::ItemBase;
using InfoPtr = boost::intrusive_ptr<InfoBase>;
using ItemPtr = boost::intrusive_ptr<ItemBase>;

// What has to be small lest a few bytes ask for much: sizes that are filled up, members, nesting.
constexpr unsigned int k_fewElements = 16;
constexpr int k_fewLevels = 3;

InfoPtr MakeInfo(Input& input, int levels = k_fewLevels);
ItemPtr MakeItem(Input& input, int levels = k_fewLevels);

/// Calls `use` with one of the families.
void WithFamily(Input& input, auto&& use)
{
    std::size_t left = input.Byte() % IfKit::AllFamilies::k_size;
    IfKit::AllFamilies::ForEach([&](auto family) {
        if (left-- == 0)
            use(family);
    });
}

/// Reads a value from the text; nothing is known of the outcome, since most texts are no value.
inline void ReadText(ItemBase& item, std::string const& text, InfoPtr const& info)
{
    std::istringstream in(text);
    std::ostringstream out;
    try {
        item.SetValFromStream(in, out, info);
    } catch (std::length_error const&) {
        // A list was asked to hold more than any list can, and says so.
    }
}

inline void Fill(ItemBase& item, Input& input)
{
    bool const isRecord = input.Byte() % 2 != 0;
    std::string const text = input.Text();
    if (!isRecord)
        return ReadText(item, text, nullptr);
    ItemBase::ConstSerialStruct_t const record{boost::endian::native_to_big(std::uint32_t{item.GetId()}),
                                               boost::endian::native_to_big(static_cast<std::uint32_t>(text.size())),
                                               static_cast<unsigned char>(item.GetType()),
                                               static_cast<unsigned char>(item.GetNumericType()),
                                               reinterpret_cast<unsigned char const*>(text.data())};
    Require(item.Deserialize(&record) <= 0);
}

template<typename Item>
ItemPtr MakeItemOf(Input& input, int levels)
{
    boost::intrusive_ptr<Item> const item(new Item(input.Word()));
    if constexpr (requires { item->AddItem(ItemPtr()); }) {
        for (unsigned int i = input.Byte() % k_fewElements; i != 0 && levels != 0; --i)
            item->AddItem(MakeItem(input, levels - 1));
    } else if constexpr (std::is_same_v<Item, If::LocalizedStringItem>) {
        If::LocalizedString message(input.Text());
        for (unsigned int i = input.Byte() % k_fewElements; i != 0 && levels != 0; --i)
            message.AddArgument(MakeItem(input, levels - 1));
        item->SetVal(message);
    } else if constexpr (std::is_same_v<Item, If::ExtendedItem>) {
        item->SetVal({input.Text(), input.Text()});
    } else {
        Fill(*item, input);
    }
    return item;
}

inline ItemPtr MakeItem(Input& input, int levels)
{
    ItemPtr made;
    WithFamily(input, [&]<typename Info, typename Item>(IfKit::Family<Info, Item>) {
        made = MakeItemOf<Item>(input, levels);
    });
    return made;
}

/// What a schema takes from a value of its family: its bounds, its table, its default.
template<typename Info, typename Item>
void Shape(Info& info, Item const& item, Input& input)
{
    unsigned int const few = input.Byte() % k_fewElements;
    if constexpr (requires { info.SetMaxSize(few); })
        info.SetMaxSize(few);
    if constexpr (requires { info.SetMaxLength(few); })
        info.SetMaxLength(few);
    if constexpr (requires { info.SetFixed(true); })
        info.SetFixed(few % 2 != 0);
    if constexpr (requires { info.AddElem({"", 0, true}); })
        for (unsigned int i = 0; i < few; ++i)
            info.AddElem({input.Text(), static_cast<int>(input.Byte()), input.Byte() % 2 != 0});
    if constexpr (requires { info.SetTable({item.GetVal()}); })
        info.SetTable({item.GetVal()});
    if constexpr (requires { info.SetMin(item.GetVal()); }) {
        if (few % 2 != 0)
            info.SetMin(item.GetVal());
        else
            info.SetMax(item.GetVal());
    } else if constexpr (requires { info.SetMin(item.GetVal().front()); }) {
        if (!item.Val().empty())
            info.SetMin(item.Val().front());
    }
    if constexpr (requires { info.SetDefault(item.GetVal()); })
        info.SetDefault(item.GetVal());
    if constexpr (requires { info.SetMinSize(few); })
        info.SetMinSize(input.Byte() % k_fewElements);
}

template<typename Info, typename Item>
InfoPtr MakeInfoOf(Input& input, int levels)
{
    unsigned int const id = input.Word();
    std::string const name = input.Text();
    boost::intrusive_ptr<Info> info;
    if constexpr (std::is_same_v<Info, If::EnumInfo>)
        info.reset(new Info(id, name, {}, input.Byte() % 2 != 0));
    else
        info.reset(new Info(id, name, {}));
    if constexpr (requires { info->AddInfo(InfoPtr()); }) {
        for (unsigned int i = input.Byte() % k_fewElements; i != 0 && levels != 0; --i)
            info->AddInfo(MakeInfo(input, levels - 1));
    } else {
        ItemPtr const value = MakeItemOf<Item>(input, 0);
        Shape(*info, static_cast<Item const&>(*value), input);
    }
    return info;
}

inline InfoPtr MakeInfo(Input& input, int levels)
{
    InfoPtr made;
    WithFamily(input, [&]<typename Info, typename Item>(IfKit::Family<Info, Item>) {
        if constexpr (std::is_void_v<Info>) // an orientation has none: its place is a boolean's
            made = MakeInfoOf<If::BoolInfo, If::BoolItem>(input, levels);
        else
            made = MakeInfoOf<Info, Item>(input, levels);
    });
    return made;
}

} // namespace Parts
