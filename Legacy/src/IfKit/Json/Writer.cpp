#include "Writer.h"

#include "Numbers.h"
#include "Text.h"

#include <boost/json/array.hpp>
#include <boost/json/object.hpp>

#include <algorithm>
#include <charconv>
#include <ostream>

namespace Legacy::IfKit::Detail {

namespace {

constexpr std::size_t k_indent = 2;
constexpr std::size_t k_maxOnOneLine = 4;
constexpr std::size_t k_bufferSize = std::size_t{64} * 1024;

template<typename Number>
void AppendInteger(std::string& text, Number number)
{
    char digits[24];
    text.append(digits, std::to_chars(digits, digits + sizeof(digits), number).ptr);
}

/// A list of scalars stands on one line, and so does an object of a few.
bool IsFlat(json::value const& value)
{
    auto const isScalar = [](json::value const& v) { return !v.is_structured(); };
    if (auto const* const array = value.if_array())
        return std::all_of(array->begin(), array->end(), isScalar);
    auto const* const object = value.if_object();
    return object && object->size() <= k_maxOnOneLine &&
           std::all_of(object->begin(), object->end(), [&](auto const& m) { return isScalar(m.value()); });
}

} // namespace

void Writer::Flush()
{
    m_os.write(m_text.data(), static_cast<std::streamsize>(m_text.size()));
    m_text.clear();
}

void Writer::Key(std::string_view key)
{
    Next_();
    AppendString(m_text, key);
    m_text += m_layout == JsonLayout_t::Compact ? ":" : ": ";
    m_isAfterKey = true;
}

void Writer::Begin(char bracket)
{
    Next_();
    Open_(bracket);
}

void Writer::End(char bracket)
{
    Close_(bracket);
    if (m_depth == 0 && m_layout == JsonLayout_t::Indented)
        m_text += '\n';
}

void Writer::Put(json::value const& value)
{
    Next_();
    Print_(value);
    if (m_depth == 0 && m_layout == JsonLayout_t::Indented)
        m_text += '\n';
}

void Writer::Next_()
{
    if (m_text.size() > k_bufferSize)
        Flush();
    if (!m_isAfterKey && m_depth > 0) {
        if (!m_isFirst)
            m_text += ',';
        if (!m_isOnOneLine)
            NewLine_();
        else if (!m_isFirst && m_layout == JsonLayout_t::Indented)
            m_text += ' ';
    }
    m_isAfterKey = false;
    m_isFirst = false;
}

void Writer::NewLine_()
{
    if (m_layout == JsonLayout_t::Compact)
        return;
    m_text += '\n';
    m_text.append(m_depth * k_indent, ' ');
}

void Writer::Open_(char bracket)
{
    m_text += bracket;
    ++m_depth;
    m_isFirst = true;
}

void Writer::Close_(char bracket)
{
    --m_depth;
    if (!m_isFirst && !m_isOnOneLine)
        NewLine_();
    m_text += bracket;
    m_isFirst = false;
}

void Writer::Print_(json::value const& value)
{
    bool const isOnOneLine = m_isOnOneLine;
    m_isOnOneLine = isOnOneLine || IsFlat(value);
    switch (value.kind()) {
    case json::kind::object:
        Open_('{');
        for (auto const& [key, member] : value.get_object()) {
            Key(View(key));
            Put(member);
        }
        Close_('}');
        break;
    case json::kind::array:
        Open_('[');
        for (auto const& element : value.get_array())
            Put(element);
        Close_(']');
        break;
    case json::kind::string:
        AppendString(m_text, View(json::string_view(value.get_string())));
        break;
    case json::kind::int64:
        AppendInteger(m_text, value.get_int64());
        break;
    case json::kind::uint64:
        AppendInteger(m_text, value.get_uint64());
        break;
    case json::kind::double_:
        AppendNumber(m_text, value.get_double());
        break;
    case json::kind::bool_:
        m_text += value.get_bool() ? "true" : "false";
        break;
    case json::kind::null:
        m_text += "null";
        break;
    }
    m_isOnOneLine = isOnOneLine;
}

} // namespace Legacy::IfKit::Detail
