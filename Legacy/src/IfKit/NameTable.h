#pragma once

#include <algorithm>
#include <iterator>
#include <optional>
#include <string_view>

namespace Legacy::IfKit::Detail {

/// A number of an enumeration and what it is called.
template<typename Enum>
struct Named
{
    Enum value;
    std::string_view name;
};

/// The name of a value; empty if the table has none.
template<typename Table, typename Enum>
constexpr std::string_view NameIn(Table const& table, Enum value) noexcept
{
    auto const found =
        std::find_if(std::begin(table), std::end(table), [value](auto const& row) { return row.value == value; });
    return found == std::end(table) ? std::string_view() : found->name;
}

/// The value with a name.
template<typename Enum, std::size_t Size>
constexpr std::optional<Enum> ValueIn(Named<Enum> const (&table)[Size], std::string_view name) noexcept
{
    auto const found =
        std::find_if(std::begin(table), std::end(table), [name](auto const& row) { return row.name == name; });
    return found == std::end(table) ? std::nullopt : std::optional<Enum>(found->value);
}

} // namespace Legacy::IfKit::Detail
