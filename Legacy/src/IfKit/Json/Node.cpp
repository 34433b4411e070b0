#include "Node.h"

#include "Numbers.h"

namespace Legacy::IfKit::Detail {

void AppendToPointer(std::string& pointer, std::string_view key)
{
    pointer += '/';
    for (char const c : key) {
        if (c == '~')
            pointer += "~0";
        else if (c == '/')
            pointer += "~1";
        else
            pointer += c;
    }
}

std::string Node::Pointer() const
{
    if (!m_parent)
        return std::string(m_pointer);
    std::string pointer = m_parent->Pointer(); // as deep as documents are allowed to be
    AppendToPointer(pointer, m_key.data() ? std::string(m_key) : std::to_string(m_index));
    return pointer;
}

json::object const& Node::Object() const
{
    if (auto const* const object = m_value->if_object())
        return *object;
    Refuse("an object is expected");
}

json::array const& Node::Array() const
{
    if (auto const* const array = m_value->if_array())
        return *array;
    Refuse("an array is expected");
}

std::string_view Node::Text() const
{
    if (auto const* const text = m_value->if_string())
        return View(json::string_view(*text));
    Refuse("a string is expected");
}

bool Node::Bool() const
{
    if (auto const* const truth = m_value->if_bool())
        return *truth;
    Refuse("true or false is expected");
}

unsigned int Node::Unsigned(unsigned int greatest) const
{
    unsigned int number = 0;
    if (!ToInteger(*m_value, number) || number > greatest)
        Refuse("a whole number from 0 to " + std::to_string(greatest) + " is expected");
    return number;
}

Node Node::operator[](std::string_view key) const
{
    auto const* const member = Object().if_contains(View(key));
    if (!member)
        Refuse("there is no '" + std::string(key) + "'");
    return Node(*member, *this, key);
}

Node Node::operator[](std::size_t index) const { return Node(Array()[index], *this, index); }

} // namespace Legacy::IfKit::Detail
