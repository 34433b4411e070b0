// Writes a line for each schema with each value of its type and the library's judgement, for another tool to check.

#include "../Legacy/IfKit/Samples.h"

#include <Legacy/If/ResultElem.h>
#include <Legacy/IfKit/Json.h>

#include <algorithm>
#include <cmath>
#include <iostream>

namespace Legacy::IfKit::Test {
namespace {

/// Whether a schema lets a value pass, asked in the way of its family; nothing where the two are documented to differ.
template<typename Info, typename Item>
std::optional<bool> Judge(boost::intrusive_ptr<Info> const& info, Item& item)
{
    if constexpr (requires {
                      info->IsPresent(item.GetVal());
                      info->GetDefault();
                  } &&
                  !std::same_as<Info, EnumInfo>)
    {
        if constexpr (std::floating_point<decltype(item.GetVal())>) {
            if (!std::isfinite(item.GetVal()))
                return std::nullopt;
        }
        return info->IsPresent(item.GetVal());
    } else if constexpr (requires {
                             item.SetVal(item.GetVal(), *info) == 0;
                             item.WithinBounds(*info);
                         })
        return item.SetVal(item.GetVal(), *info) == 0 && item.WithinBounds(*info);
    else if constexpr (
        requires { info->TopLeft(); } || requires { info->GetDefaultX(); })
        return item.WithinBounds(*info);
    else if constexpr (std::same_as<Info, AppEndpointArrayInfo>)
        return std::nullopt; // sizes that the library does not enforce
    else if constexpr (std::same_as<Info, StringInfo>) {
        bool const isAscii = std::all_of(item.Val().begin(), item.Val().end(), [](char c) { return (c & 0x80) == 0; });
        bool const passes = !item.Validate(info);
        return passes || isAscii ? std::optional(passes) : std::nullopt;
    } else
        return !item.Validate(info);
}

int Write(InfoBase const& info, ItemBase const& item, bool isValid)
{
    std::cout << R"({"schema":)";
    if (WriteJson(std::cout, info))
        return 1;
    std::cout << R"(,"value":)";
    if (WriteBareJson(std::cout, item))
        return 1;
    std::cout << R"(,"valid":)" << (isValid ? "true" : "false") << "}\n";
    return 0;
}

template<typename Info, typename Item>
int WriteFamily(Family<Info, Item> family)
{
    int failures = 0;
    for (auto const& info : SchemasOf(family)) {
        auto const own = boost::dynamic_pointer_cast<Info>(info);
        std::vector<ItemPtr> items = SamplesOf(family);
        items.emplace_back(info->CreateItem());
        for (auto const& item : items) {
            if (auto const isValid = Judge(own, dynamic_cast<Item&>(*item)))
                failures += Write(*info, *item, *isValid);
        }
    }
    return failures;
}

/// A composite judges the types of its members.
int WriteMembers()
{
    boost::intrusive_ptr<CompositeInfo> const info(new CompositeInfo(1, "group", {}));
    info->AddInfo(FreshInfo<NumericInfo<U8Traits>>(1, "a"));
    info->AddInfo(FreshInfo<StringInfo>(2, "b"));
    int failures = 0;
    for (bool const isRight : {true, false}) {
        boost::intrusive_ptr<CompositeItem> const item(new CompositeItem(1));
        item->AddItem(NumericItem<U8Traits>::Create(1, 5));
        item->AddItem(isRight ? ItemPtr(StringItem::Create(2, "on")) : ItemPtr(BoolItem::Create(2, true)));
        failures += Write(*info, *item, !item->Validate(info));
    }
    return failures;
}

int WriteAll()
{
    int failures = WriteMembers();
    AllFamilies::ForEach([&]<typename Info, typename Item>(Family<Info, Item> family) {
        if constexpr (!std::is_void_v<Info>)
            failures += WriteFamily(family);
    });
    return failures;
}

} // namespace
} // namespace Legacy::IfKit::Test

int main() { return Legacy::IfKit::Test::WriteAll(); }
