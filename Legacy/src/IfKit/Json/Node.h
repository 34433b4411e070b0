#pragma once

#include <boost/json/value.hpp>

#include <cstddef>
#include <stdexcept>
#include <string>
#include <string_view>

namespace Legacy::IfKit::Detail {

namespace json = boost::json;

inline std::string_view View(json::string_view text) noexcept { return {text.data(), text.size()}; }
inline json::string_view View(std::string_view text) noexcept { return {text.data(), text.size()}; }

/// A document or an object says what the other form cannot hold.
class Refusal : public std::runtime_error
{
public:
    Refusal(std::string pointer, std::string const& reason) : std::runtime_error(reason), m_pointer(std::move(pointer))
    {}

    std::string const& GetPointer() const noexcept { return m_pointer; }

private:
    std::string m_pointer;
};

/// Appends a level to a JSON pointer.
void AppendToPointer(std::string& pointer, std::string_view key);

/// A value in a document that knows the way to it. Parents and the document must outlive it.
class Node
{
public:
    /// @param pointer the way to the value itself; must outlive the node.
    Node(json::value const& value, std::string_view pointer) : m_value(&value), m_pointer(pointer) {}

    json::value const& Value() const noexcept { return *m_value; }

    [[noreturn]] void Refuse(std::string const& reason) const { throw Refusal(Pointer(), reason); }
    std::string Pointer() const;

    json::object const& Object() const;
    json::array const& Array() const;
    std::string_view Text() const;
    bool Bool() const;
    unsigned int Unsigned(unsigned int greatest = 0xFFFFFFFF) const;

    bool Has(std::string_view key) const { return Object().if_contains(View(key)) != nullptr; }
    /// The member with that key, which must be there.
    Node operator[](std::string_view key) const;
    Node operator[](std::size_t index) const;
    std::size_t Size() const { return Array().size(); }

private:
    Node(json::value const& value, Node const& parent, std::string_view key)
        : m_value(&value), m_parent(&parent), m_key(key)
    {}
    Node(json::value const& value, Node const& parent, std::size_t index)
        : m_value(&value), m_parent(&parent), m_index(index)
    {}

    json::value const* m_value;
    Node const* m_parent = nullptr;
    std::string_view m_pointer;
    std::string_view m_key; // with null data for an element of an array
    std::size_t m_index = 0;
};

} // namespace Legacy::IfKit::Detail
