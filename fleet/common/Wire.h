#pragma once

#include <Legacy/If/ItemBase.h>

#include <boost/smart_ptr/intrusive_ptr.hpp>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

/// The messages of a fleet as bytes. All integers are big-endian, and each message begins with "FL", the version 1 and
/// a letter for its type:
///
///     about    'A', online (1 byte, 0 or 1), kind (text to the end)
///     value    'V', sequence (8), record
///     set      'S', request (8), length of the language (1), language, record
///     answer   'R', request (8), code (4, signed), message (text to the end)
///
/// A record is ten header bytes and the payload, as the library serializes a value.
namespace Fleet {

using Bytes = std::vector<unsigned char>;

/// A device of a kind, which names the schemas of its parameters, is or is not connected.
struct AboutMessage
{
    bool online = false;
    std::string kind;
};

/// A value as it stands on the device.
struct ValueMessage
{
    std::uint64_t sequence = 0; ///< grows with each change on the device, also over its restarts
    boost::intrusive_ptr<Legacy::If::ItemBase> item;
};

/// The wish for another value.
struct SetMessage
{
    std::uint64_t request = 0; ///< grows with each request of one controller
    std::string language;      ///< of the message in the answer
    boost::intrusive_ptr<Legacy::If::ItemBase> item;
};

/// What became of a wish.
struct AnswerMessage
{
    std::uint64_t request = 0;
    int code = 0; ///< 0 or a code of the library
    std::string text;
};

/// Longer messages are not read.
inline constexpr std::size_t k_maxMessage = 64 * 1024;

/// @throws std::invalid_argument for a value without a serial form and for a language that is too long.
/// @{
Bytes Encode(AboutMessage const& message);
Bytes Encode(ValueMessage const& message);
Bytes Encode(SetMessage const& message);
Bytes Encode(AnswerMessage const& message);
/// @}

/// Read bytes that may come from anywhere. Nothing for those that are not, from the first to the last, such a message.
/// Whether a value belongs to a parameter is for the caller to find out.
/// @{
std::optional<AboutMessage> DecodeAbout(std::span<unsigned char const> bytes);
std::optional<ValueMessage> DecodeValue(std::span<unsigned char const> bytes);
std::optional<SetMessage> DecodeSet(std::span<unsigned char const> bytes);
std::optional<AnswerMessage> DecodeAnswer(std::span<unsigned char const> bytes);
/// @}

} // namespace Fleet
