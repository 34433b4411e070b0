#pragma once

#include "Numbers.h"
#include "Text.h"

#include <Legacy/If/AppEndpoint.h>
#include <Legacy/If/Coordinate.h>
#include <Legacy/If/Orientation.h>
#include <Legacy/If/Rect.h>
#include <Net/AddrStr.h>
#include <Net/Endpoint.h>
#include <Orlek/Colour.h>

#include <boost/json/array.hpp>
#include <boost/json/object.hpp>

#include <initializer_list>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

/// What values and the defaults of schemas are made of: `Put` gives its form in a document, `Take` reads that.
namespace Legacy::IfKit::Detail {

/// Refuses keys other than these.
void ExpectKeys(Node const& node, std::initializer_list<std::string_view> keys);

using NetEndpoint = Net::Endpoint<Net::AddrStr>;

inline json::value Put(bool truth) { return truth; }
inline void Take(Node const& node, bool& truth) { truth = node.Bool(); }

template<Integer N>
json::value Put(N number)
{
    if constexpr (std::is_signed_v<N>)
        return static_cast<std::int64_t>(number);
    else
        return static_cast<std::uint64_t>(number);
}

template<Integer N>
void Take(Node const& node, N& number)
{
    if (!ToInteger(node.Value(), number))
        node.Refuse("a whole number from " + std::to_string(std::numeric_limits<N>::min()) + " to " +
                    std::to_string(std::numeric_limits<N>::max()) + " is expected");
}

template<std::floating_point N>
json::value Put(N number)
{
    if (!std::isfinite(number))
        return json::value(NotFiniteText(number));
    return Widen(number);
}

template<std::floating_point N>
void Take(Node const& node, N& number)
{
    if (!ToReal(node.Value(), number))
        node.Refuse(std::string("a number within ") + (sizeof(N) == sizeof(float) ? "a float" : "a double") +
                    ", \"Infinity\", \"-Infinity\" or \"NaN\" is expected");
}

inline json::value Put(std::string const& text) { return json::value(ToUnicode(text)); }
inline void Take(Node const& node, std::string& text) { text = FromUnicode(node.Text()); }

json::value Put(std::pair<std::string, std::string> const& texts);
void Take(Node const& node, std::pair<std::string, std::string>& texts);
json::value Put(Orlek::Colour_t const& colour);
void Take(Node const& node, Orlek::Colour_t& colour);
json::value Put(If::Orientation_t const& orientation);
void Take(Node const& node, If::Orientation_t& orientation);
json::value Put(Net::AddrStr const& addr);
void Take(Node const& node, Net::AddrStr& addr);
json::value Put(NetEndpoint const& endpoint);
void Take(Node const& node, NetEndpoint& endpoint);
json::value Put(If::AppEndpoint<NetEndpoint> const& endpoint);
void Take(Node const& node, If::AppEndpoint<NetEndpoint>& endpoint);

template<typename T>
json::value Put(If::CoordinateItem<T> const& point)
{
    return json::object{{"x", Put(point.X()->GetVal())}, {"y", Put(point.Y()->GetVal())}};
}

template<typename T>
void Take(Node const& node, If::CoordinateItem<T>& point)
{
    ExpectKeys(node, {"x", "y"});
    Take(node["x"], point.X()->Val());
    Take(node["y"], point.Y()->Val());
}

template<typename T>
json::value Put(If::RectItem<T> const& rect)
{
    return json::object{{"topLeft", Put(*rect.TopLeft())}, {"bottomRight", Put(*rect.BottomRight())}};
}

template<typename T>
void Take(Node const& node, If::RectItem<T>& rect)
{
    ExpectKeys(node, {"topLeft", "bottomRight"});
    Take(node["topLeft"], *rect.TopLeft());
    Take(node["bottomRight"], *rect.BottomRight());
}

template<typename Element>
json::value Put(std::vector<Element> const& list)
{
    json::array array;
    array.reserve(list.size());
    for (auto const& element : list)
        array.push_back(Put(element));
    return array;
}

/// An element of a list before it is read.
template<typename Element>
Element Fresh()
{
    if constexpr (std::is_default_constructible_v<Element>)
        return Element();
    else
        return Element(0);
}

template<typename Element>
void Take(Node const& node, std::vector<Element>& list)
{
    list.clear();
    list.reserve(node.Size());
    for (std::size_t i = 0; i < node.Size(); ++i) {
        Element element = Fresh<Element>();
        Take(node[i], element);
        list.push_back(std::move(element));
    }
}

} // namespace Legacy::IfKit::Detail
