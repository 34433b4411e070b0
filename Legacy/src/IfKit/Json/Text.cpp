#include "Text.h"

#include <boost/locale/utf.hpp>

#include <algorithm>

namespace Legacy::IfKit::Detail {

namespace {

using Utf8 = boost::locale::utf::utf_traits<char>;
using boost::locale::utf::code_point;
using boost::locale::utf::illegal;
using boost::locale::utf::incomplete;

constexpr code_point k_firstByte = 0xEF80; // stands for the byte 0x80
constexpr code_point k_lastByte = 0xEFFF;

bool IsByte(code_point c) { return k_firstByte <= c && c <= k_lastByte; }

bool IsPlain(std::string_view text)
{
    return std::all_of(text.begin(), text.end(), [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

bool IsEscaped(code_point c)
{
    return c < 0x20 || (0x7F <= c && c < 0xA0) || c == 0x61C || (0x200B <= c && c <= 0x200F) ||
           (0x2028 <= c && c <= 0x202E) || (0x2060 <= c && c <= 0x206F) || (0xE000 <= c && c <= 0xF8FF) || c == 0xFEFF;
}

void AppendEscape(std::string& out, code_point c)
{
    static constexpr char k_digits[] = "0123456789abcdef";
    switch (c) {
    case '\n':
        out += "\\n";
        return;
    case '\t':
        out += "\\t";
        return;
    default:
        out += "\\u";
        for (int shift = 12; shift >= 0; shift -= 4)
            out += k_digits[c >> shift & 0xF];
    }
}

} // namespace

std::string ToUnicode(std::string_view bytes)
{
    if (IsPlain(bytes))
        return std::string(bytes);
    std::string text;
    char const* const end = bytes.data() + bytes.size();
    for (char const* next = bytes.data(); next != end;) {
        char const* const start = next;
        code_point const c = Utf8::decode(next, end);
        if (c != illegal && c != incomplete && !IsByte(c)) {
            text.append(start, next);
            continue;
        }
        next = start + 1;
        Utf8::encode(k_firstByte - 0x80 + static_cast<unsigned char>(*start), std::back_inserter(text));
    }
    return text;
}

std::string FromUnicode(std::string_view text)
{
    if (IsPlain(text))
        return std::string(text);
    std::string bytes;
    char const* const end = text.data() + text.size();
    for (char const* next = text.data(); next != end;) {
        char const* const start = next;
        code_point const c = Utf8::decode(next, end);
        if (IsByte(c))
            bytes += static_cast<char>(c & 0xFF);
        else
            bytes.append(start, next);
    }
    return bytes;
}

void AppendString(std::string& out, std::string_view text)
{
    out += '"';
    char const* const end = text.data() + text.size();
    for (char const* next = text.data(); next != end;) {
        // Nearly always all of it.
        char const* const special =
            std::find_if(next, end, [](char c) { return c < ' ' || c > '~' || c == '"' || c == '\\'; });
        out.append(next, special);
        if (special == end)
            break;
        next = special;
        char const* const start = next;
        code_point const c = Utf8::decode(next, end);
        if (IsEscaped(c))
            AppendEscape(out, c);
        else if (c == '"' || c == '\\')
            (out += '\\') += static_cast<char>(c);
        else
            out.append(start, next);
    }
    out += '"';
}

} // namespace Legacy::IfKit::Detail
