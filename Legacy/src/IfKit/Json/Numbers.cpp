#include "Numbers.h"

namespace Legacy::IfKit::Detail {

namespace {

template<typename N>
std::optional<json::value> Parse(std::string_view text)
{
    N number{};
    auto const [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc() || end != text.data() + text.size())
        return std::nullopt;
    return json::value(number);
}

} // namespace

std::optional<json::value> ParseNumber(std::string_view text)
{
    bool const isWhole = text.find_first_of(".eE") == std::string_view::npos && text != "-0";
    std::optional<json::value> number;
    if (isWhole)
        number = Parse<std::int64_t>(text);
    if (isWhole && !number)
        number = Parse<std::uint64_t>(text);
    return number ? number : Parse<double>(text);
}

void AppendNumber(std::string& text, double number)
{
    char digits[32];
    text.append(digits, std::to_chars(digits, digits + sizeof(digits), number).ptr);
}

double Widen(float number)
{
    char digits[32];
    char const* const end = std::to_chars(digits, digits + sizeof(digits), number).ptr;
    double wide = 0;
    std::from_chars(digits, end, wide);
    // Rounded twice, a text can miss its float; the digits of a double then tell it.
    return static_cast<float>(wide) == number ? wide : static_cast<double>(number);
}

} // namespace Legacy::IfKit::Detail
