#pragma once

#include <string>
#include <string_view>

namespace Legacy::IfKit::Detail {

/// Any bytes as UTF-8: what is UTF-8 stays, and each byte that belongs to none becomes the private character U+EF00
/// plus the byte. So do the bytes of these private characters themselves, so that every text has a form of its own.
std::string ToUnicode(std::string_view bytes);

/// The bytes behind such a text.
std::string FromUnicode(std::string_view text);

/// Appends UTF-8 as a JSON string. Whatever could confuse a terminal or a reader stands escaped: controls, marks that
/// change the direction of writing, line and paragraph separators, and characters for private use.
void AppendString(std::string& out, std::string_view text);

} // namespace Legacy::IfKit::Detail
