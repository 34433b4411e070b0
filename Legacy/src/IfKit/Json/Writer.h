#pragma once

#include "Node.h"

#include <Legacy/IfKit/Json.h>

#include <cstddef>
#include <iosfwd>
#include <string>
#include <string_view>

namespace Legacy::IfKit::Detail {

/// Writes a document piece by piece, so that no more of it is in memory than the piece.
class Writer
{
public:
    Writer(std::ostream& os, JsonLayout_t layout) : m_os(os), m_layout(layout) {}

    /// The next member of the object that is open has this key.
    void Key(std::string_view key);
    void Begin(char bracket);
    void End(char bracket);
    void Put(json::value const& value);
    /// Hands on what was gathered.
    void Flush();

private:
    void Next_();
    void NewLine_();
    void Open_(char bracket);
    void Close_(char bracket);
    void Print_(json::value const& value);

    std::ostream& m_os;
    JsonLayout_t m_layout;
    std::string m_text;
    std::size_t m_depth = 0;
    bool m_isFirst = true;     // nothing stands before the next element at this depth
    bool m_isAfterKey = false; // the next element follows its key
    bool m_isOnOneLine = false;
};

} // namespace Legacy::IfKit::Detail
