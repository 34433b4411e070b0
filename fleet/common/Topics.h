#pragma once

#include <optional>
#include <string>
#include <string_view>

/// The topics of a fleet at its broker:
///
///     fleet/<device>/about                            retained: whether the device is there, and its session
///     fleet/<device>/schema                           retained: its sections and schemas
///     fleet/<device>/value/<section path>/<name>      retained: one value
///     fleet/<device>/total                            retained: a sum over its values, by which losses are found
///     fleet/<device>/claim                            who wants to be the device of that name
///     fleet/<device>/set/<controller>/<section path>/<name>   a controller's request for another value
///     fleet/<device>/answer/<controller>              the device's answer to it
///     fleet/<controller>/echo                         a controller's message to itself
///
/// Devices and controllers have plain names, so that none can reach into the topics of another.
namespace Fleet {

enum class TopicKind_t
{
    About,
    Schema,
    Value,
    Total,
    Claim,
    Set,
    Answer,
    Echo,
};

/// A topic in its parts; those that its kind does not have are empty.
struct Topic_t
{
    TopicKind_t kind = TopicKind_t::About;
    std::string device; ///< that of an echo is the controller
    std::string controller;
    std::string path; ///< section path and name of the parameter

    friend bool operator==(Topic_t const&, Topic_t const&) = default;
};

/// Whether a device or a controller may be called so: 1 to 64 letters, digits, '-', '_' and '.'.
bool IsName(std::string_view text);

/// Whether a parameter may be called so: a section path and a name of 1024 bytes at most, nothing in them that a broker
/// takes for a pattern.
bool IsPath(std::string_view text);

std::string ToText(Topic_t const& topic);

/// Reads what #ToText writes. Nothing for any other text.
std::optional<Topic_t> ParseTopic(std::string_view text);

/// The broker's word for "any name".
inline constexpr char k_anyName[] = "+";

/// What to subscribe to for all topics of a kind. Device and controller may be #k_anyName.
std::string Filter(TopicKind_t kind, std::string const& device, std::string const& controller = {});

} // namespace Fleet
