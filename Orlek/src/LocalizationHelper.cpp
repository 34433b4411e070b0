#include <Orlek/LocalizationHelper.h>

#include <charconv>
#include <cstddef>
#include <string_view>
#include <utility>

namespace Orlek {

namespace {

/// A placeholder at the head of a text: its bytes and its number, counted from 1. The number 0 if there is none.
struct Placeholder_t
{
    std::size_t size = 0;
    std::size_t number = 0;
};

Placeholder_t ReadPlaceholder(std::string_view text)
{
    if (text.front() != '{')
        return {};
    std::size_t number = 0;
    auto const* const end = text.data() + text.size();
    auto const [stop, error] = std::from_chars(text.data() + 1, end, number);
    if (error != std::errc() || stop == end || *stop != '}')
        return {};
    return {static_cast<std::size_t>(stop - text.data()) + 1, number};
}

} // namespace

LocalizationHelper::LocalizationHelper(std::string message) : m_message(std::move(message)) {}

LocalizationHelper& LocalizationHelper::operator%(std::string const& argument)
{
    m_arguments.push_back(argument);
    return *this;
}

std::string LocalizationHelper::ToString() const
{
    std::string text;
    std::vector<bool> used(m_arguments.size());
    for (std::string_view rest = m_message; !rest.empty();) {
        auto const [size, number] = ReadPlaceholder(rest);
        if (number >= 1 && number <= m_arguments.size()) {
            text += m_arguments[number - 1];
            used[number - 1] = true;
            rest.remove_prefix(size);
        } else {
            text += rest.front();
            rest.remove_prefix(1);
        }
    }
    for (std::size_t i = 0; i < used.size(); ++i)
        if (!used[i])
            text.append(1, ' ').append(m_arguments[i]);
    return text;
}

} // namespace Orlek
