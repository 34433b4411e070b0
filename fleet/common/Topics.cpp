#include "common/Topics.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <utility>

namespace Fleet {

namespace {

constexpr std::string_view k_root = "fleet";
constexpr std::size_t k_maxName = 64;
constexpr std::size_t k_maxPath = 1024;

struct Kind_t
{
    TopicKind_t kind;
    std::string_view word;
    bool hasController;
    bool hasPath;
};

constexpr std::array<Kind_t, 8> k_kinds{{{TopicKind_t::About, "about", false, false},
                                         {TopicKind_t::Schema, "schema", false, false},
                                         {TopicKind_t::Value, "value", false, true},
                                         {TopicKind_t::Total, "total", false, false},
                                         {TopicKind_t::Claim, "claim", false, false},
                                         {TopicKind_t::Set, "set", true, true},
                                         {TopicKind_t::Answer, "answer", true, false},
                                         {TopicKind_t::Echo, "echo", false, false}}};

Kind_t const& Row(TopicKind_t kind)
{
    return *std::find_if(k_kinds.begin(), k_kinds.end(), [&](Kind_t const& row) { return row.kind == kind; });
}

/// Cuts the text up to the next '/' off the front. What is left is empty behind the last level.
std::string_view TakeLevel(std::string_view& rest)
{
    auto const end = std::min(rest.find('/'), rest.size());
    auto const level = rest.substr(0, end);
    rest.remove_prefix(std::min(end + 1, rest.size()));
    return level;
}

std::string Join(Kind_t const& row, std::string_view device, std::string_view controller, std::string_view path)
{
    std::string text(k_root);
    text.append("/").append(device).append("/").append(row.word);
    if (row.hasController)
        text.append("/").append(controller);
    if (row.hasPath)
        text.append("/").append(path);
    return text;
}

} // namespace

bool IsName(std::string_view text)
{
    return !text.empty() && text.size() <= k_maxName && std::all_of(text.begin(), text.end(), [](char c) {
        return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '-' || c == '_' ||
               c == '.';
    });
}

bool IsPath(std::string_view text)
{
    return text.size() <= k_maxPath && text.find('/') != std::string_view::npos && !text.starts_with('/') &&
           !text.ends_with('/') && text.find("//") == std::string_view::npos &&
           std::none_of(text.begin(), text.end(), [](char c) {
               return static_cast<unsigned char>(c) < ' ' || c == '\x7f' || c == '+' || c == '#';
           });
}

std::string ToText(Topic_t const& topic) { return Join(Row(topic.kind), topic.device, topic.controller, topic.path); }

std::optional<Topic_t> ParseTopic(std::string_view text)
{
    auto rest = text;
    if (TakeLevel(rest) != k_root)
        return {};
    Topic_t topic;
    topic.device = TakeLevel(rest);
    auto const word = TakeLevel(rest);
    auto const row =
        std::find_if(k_kinds.begin(), k_kinds.end(), [&](Kind_t const& candidate) { return candidate.word == word; });
    if (row == k_kinds.end() || !IsName(topic.device))
        return {};
    topic.kind = row->kind;
    if (row->hasController) {
        topic.controller = TakeLevel(rest);
        if (!IsName(topic.controller))
            return {};
    }
    if (row->hasPath) {
        if (!IsPath(rest))
            return {};
        topic.path = std::exchange(rest, {});
    }
    // What is not told by the parts, such as a delimiter at the end, makes it another topic.
    return ToText(topic) == text ? std::optional(topic) : std::nullopt;
}

std::string Filter(TopicKind_t kind, std::string const& device, std::string const& controller)
{
    return Join(Row(kind), device, controller, "#");
}

} // namespace Fleet
