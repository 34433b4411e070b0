#pragma once

#include "convert/Convert.h"
#include "core/ListLength.h"
#include "text/TypeText.h"

#include <Legacy/If/InfoBase.h>
#include <Legacy/If/ItemBase.h>

#include <algorithm>
#include <cstddef>
#include <istream>
#include <ostream>
#include <utility>

namespace Legacy::If::Detail {

/// Stands between the elements of every list that is printed on one line.
inline constexpr char k_separator[] = ", ";

/// Stands between the parts of a point, a rectangle and a schema of rectangles. Contract: the separator of lists and
/// one blank more, by which stored texts tell the parts from the elements of a list.
inline constexpr char k_partSeparator[] = ",  ";

/// The words of a boolean, wherever one is printed as a word or becomes a text.
inline constexpr char const* BoolText(bool value) noexcept { return value ? "True" : "False"; }

/// One line of a dump, flushed.
template<typename Value>
void DumpLine(std::ostream& os, char const* label, Value const& value)
{
    os << label << value << std::endl;
}

/// The lines with which the dump of every schema begins: id, permission, name and type.
inline void DumpHead(std::ostream& os, InfoBase const& info)
{
    DumpLine(os, "id: ", info.GetId());
    DumpLine(os, "permission: ", info.GetPermission().bits);
    DumpLine(os, "name: ", info.GetName());
    DumpLine(os, "type: ", info.GetType());
}

/// The same with the element type, for the families that have one.
inline void DumpNumericHead(std::ostream& os, InfoBase const& info)
{
    DumpHead(os, info);
    DumpLine(os, "numericType: ", info.GetNumericType());
}

/// The lines with which the dump of every value begins: id and type.
inline void DumpHead(std::ostream& os, ItemBase const& item)
{
    DumpLine(os, "id: ", item.GetId());
    DumpLine(os, "type: ", item.GetType());
}

/// A list in its compact form, without brackets; `print` takes where to and an element. Nothing is written before the
/// first one, so that a width set on a stream is that one's.
template<typename Output, typename List, typename Print>
void PrintList(Output& to, List const& list, Print&& print)
{
    bool isFirst = true;
    for (auto const& element : list) {
        if (!std::exchange(isFirst, false))
            to << k_separator;
        print(to, element);
    }
}

/// The allowed values of a sparse schema and its default in their compact form; `print` takes the stream and a value.
template<typename Allowed, typename Print>
void PrintAllowed(std::ostream& os, Allowed const& allowed, Print&& print)
{
    PrintList(os, allowed.Table(), print);
    os << "; default=";
    print(os, allowed.Default());
}

/// Reports a value that could not be read; returns false for the caller to pass on.
inline bool ParseError(std::ostream& out, char const* word)
{
    out << "Error parsing " << word << '\n';
    return false;
}

/// The answer of the families that cannot be read from text; returns false for the caller to pass on.
///
/// Contract: the words look unfinished and are not to be replaced: tools that feed values from text know by them that a
/// parameter takes none, and tell that from a value that was refused.
inline bool NotReadable(std::ostream& out)
{
    out << "Impl. me";
    return false;
}

/// Reads a value as the stream reads one, which marks the stream as failed where there is none, and reports by its word
/// what could not be read. `value` is written on success alone.
template<typename Value>
bool Extract(std::istream& in, std::ostream& out, char const* word, Value& value)
{
    Value read{};
    in >> read;
    if (in.fail())
        return ParseError(out, word);
    value = std::move(read);
    return true;
}

/// One step of reading: the same, but at the end of input the stream is left alone.
template<typename Value>
bool ReadValue(std::istream& in, std::ostream& out, char const* word, Value& value)
{
    return in.eof() ? ParseError(out, word) : Extract(in, out, word, value);
}

/// The same for a number: 8-bit numbers are read as 16-bit ones of which the low byte is kept.
template<typename Element>
bool ReadNumber(std::istream& in, std::ostream& out, char const* word, Element& value)
{
    TextForm<Element> read{};
    if (!ReadValue(in, out, word, read))
        return false;
    value = static_cast<Element>(read);
    return true;
}

/// Makes room for a count that the input claims, as far as that can be done without trusting it: a count beyond what
/// the list can ever hold is the list's length error, and a large one is only granted as the elements arrive.
template<typename List>
void ReserveClaimed(List& list, std::size_t count, std::size_t limit)
{
    CheckLength(count, limit);
    list.reserve(std::min<std::size_t>(count, 4096));
}

/// Reads a count and that many elements; `read` takes the word to report and a place for the element. The list is
/// replaced at the end alone, so a failure leaves it as it was.
template<typename List, typename Read>
bool ReadList(std::istream& in, std::ostream& out, List& list, Read&& read)
{
    unsigned int count = 0;
    if (!ReadValue(in, out, "arraySize", count))
        return false;
    List elements;
    ReserveClaimed(elements, count, elements.max_size());
    for (unsigned int i = 0; i < count; ++i) {
        typename List::value_type element{};
        if (!read("arrayItem", element))
            return false;
        elements.push_back(std::move(element));
    }
    list = std::move(elements);
    return true;
}

} // namespace Legacy::If::Detail
