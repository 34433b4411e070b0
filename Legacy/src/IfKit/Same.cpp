#include "Same.h"

#include <Legacy/IfKit/Difference.h>
#include <Legacy/IfKit/Visit.h>

#include <algorithm>
#include <cmath>
#include <concepts>
#include <sstream>
#include <string>
#include <typeinfo>
#include <utility>
#include <vector>

namespace Legacy::IfKit {

using namespace If;

namespace {

/// Equality in which a NaN is like a NaN and the arguments of a message are compared by value.
/// @{
template<typename Value>
bool Same(Value const& one, Value const& other)
{
    return one == other;
}

template<std::floating_point Number>
bool Same(Number const& one, Number const& other)
{
    return one == other || (std::isnan(one) && std::isnan(other));
}

template<std::floating_point Number>
bool Same(std::vector<Number> const& one, std::vector<Number> const& other)
{
    return std::equal(one.begin(), one.end(), other.begin(), other.end(),
                      [](Number a, Number b) { return Same(a, b); });
}

bool Same(Orlek::Colour_t const& one, Orlek::Colour_t const& other)
{
    return Same(one.a, other.a) && Same(one.r, other.r) && Same(one.g, other.g) && Same(one.b, other.b);
}

bool Same(LocalizedString const& one, LocalizedString const& other)
{
    auto const& left = one.GetArguments();
    auto const& right = other.GetArguments();
    return one.GetKey() == other.GetKey() &&
           std::equal(left.begin(), left.end(), right.begin(), right.end(),
                      [](auto const& a, auto const& b) { return a == b || (a && a->IsEqualValue(b)); });
}
/// @}

/// What schemas of one class hold, each of these where the class has it.
template<typename Info>
bool HaveSameFields(Info const& one, Info const& other)
{
    bool same = true;
    if constexpr (requires { one.GetDefault(); })
        same = same && Same(one.GetDefault(), other.GetDefault());
    if constexpr (requires { one.GetMin(); })
        same = same && Same(one.GetMin(), other.GetMin()) && Same(one.GetMax(), other.GetMax());
    if constexpr (requires { one.GetMinSize(); })
        same = same && one.GetMinSize() == other.GetMinSize() && one.GetMaxSize() == other.GetMaxSize();
    if constexpr (requires { one.GetTable(); })
        same = same && Same(one.GetTable(), other.GetTable());
    if constexpr (requires { one.GetMaxLength(); })
        same = same && one.GetMaxLength() == other.GetMaxLength();
    if constexpr (requires { one.GetFixed(); })
        same = same && one.GetFixed() == other.GetFixed();
    if constexpr (requires { one.IsLocalized(); })
        same = same && one.IsLocalized() == other.IsLocalized();
    return same;
}

/// The schemas that a schema is made of.
template<typename Info>
std::vector<boost::intrusive_ptr<InfoBase const>> PartsOf(Info const& info)
{
    std::vector<boost::intrusive_ptr<InfoBase const>> parts;
    if constexpr (requires { info.GetInfos(parts); })
        info.GetInfos(parts);
    if constexpr (requires { info.X(); })
        parts = {info.X(), info.Y()};
    if constexpr (requires { info.TopLeft(); })
        parts = {info.TopLeft(), info.BottomRight()};
    return parts;
}

std::string Dumped(InfoBase const& info)
{
    std::ostringstream text;
    info.DumpVal(text);
    text << info;
    return text.str();
}

/// Compares schemas that contain schemas without recursion.
class Comparison
{
public:
    bool Run(InfoBase const& one, InfoBase const& other)
    {
        bool same = Look_(one, other);
        while (same && !m_left.empty()) {
            auto const [left, right] = m_left.back();
            m_left.pop_back();
            same = Look_(*left, *right);
        }
        return same;
    }

private:
    bool Look_(InfoBase const& one, InfoBase const& other)
    {
        if (typeid(one) != typeid(other) || one.GetId() != other.GetId() || one.GetName() != other.GetName() ||
            one.GetPermission() != other.GetPermission())
            return false;
        return Visit(
            one, [&](Foreign<InfoBase const> const& info) { return Dumped(info.object) == Dumped(other); },
            [&]<std::derived_from<InfoBase> Info>(Info const& info) requires(!std::same_as<Info, InfoBase>) {
                return LookAs_(info, static_cast<Info const&>(other));
            });
    }

    template<typename Info>
    bool LookAs_(Info const& one, Info const& other)
    {
        auto const parts = PartsOf(one);
        auto const others = PartsOf(other);
        if (!HaveSameFields(one, other) || parts.size() != others.size())
            return false;
        for (std::size_t i = 0; i < parts.size(); ++i)
            m_left.emplace_back(parts[i].get(), others[i].get());
        return true;
    }

    std::vector<std::pair<InfoBase const*, InfoBase const*>> m_left; // still to be compared; held by what they are in
};

/// Numbers of one class, with a NaN like a NaN.
template<typename Item>
bool HaveSameNumbers(Item const& one, ItemBase const& other)
{
    auto const* const same = dynamic_cast<Item const*>(&other);
    return same && Same(one.Val(), same->Val());
}

} // namespace

bool IsSameSchema(InfoBase const& one, InfoBase const& other) { return Comparison().Run(one, other); }

bool IsSameValue(boost::intrusive_ptr<ItemBase> const& one, boost::intrusive_ptr<ItemBase> const& other)
{
    return one->IsEqualValue(other) ||
           Visit(
               std::as_const(*one),
               [&]<typename T>(NumericItem<T> const& item) { return HaveSameNumbers(item, *other); },
               [&]<typename T>(NumericArrayItem<T> const& item) { return HaveSameNumbers(item, *other); },
               [&]<typename T>(NumericSparseItem<T> const& item) { return HaveSameNumbers(item, *other); },
               [](ItemBase const&) { return false; });
}

} // namespace Legacy::IfKit
