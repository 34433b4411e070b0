#pragma once

#include <Legacy/If/ItemBase.h>

#include <boost/smart_ptr/intrusive_ptr.hpp>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

/// The messages of a fleet as bytes. All integers are big-endian, and each message begins with "FL", the version 2 and
/// a letter for its type:
///
///     about    'A', online (1 byte, 0 or 1), instance (8), lineage (8), first sequence (8), title (text to the end)
///     value    'V', lineage (8), sequence (8), record
///     total    'T', lineage (8), last sequence (8), sum of the sequences (8)
///     claim    'C', instance (8)
///     set      'S', session (8), request (8), length of the language (1), language, record
///     answer   'R', session (8), request (8), code (4, signed), message (text to the end)
///     echo     'E', token (8)
///
/// A record is ten header bytes and the payload, as the library serializes a value. Schemas travel by themselves, as a
/// document of JSON.
namespace Fleet {

using Bytes = std::vector<unsigned char>;

/// A device is or is not connected. All that it tells belongs to a session of it.
struct AboutMessage
{
    bool online = false;
    std::uint64_t instance = 0; ///< of the process, by chance
    std::uint64_t lineage = 0;  ///< of the file that the device keeps its values in, by chance
    std::uint64_t first = 0;    ///< the sequence number that all of this session are above; grows within a lineage
    std::string title;          ///< for people: what it is

    friend bool operator==(AboutMessage const&, AboutMessage const&) = default;
};

/// A value as it stands on the device.
struct ValueMessage
{
    std::uint64_t lineage = 0;
    std::uint64_t sequence = 0; ///< grows with each change on the device, also over its restarts
    boost::intrusive_ptr<Legacy::If::ItemBase> item;
};

/// All values as they stand on the device, in one sum: a controller that comes to another one misses some.
struct TotalMessage
{
    std::uint64_t lineage = 0;
    std::uint64_t last = 0; ///< the greatest sequence number
    std::uint64_t sum = 0;  ///< of the sequence numbers of all values, modulo 2^64
};

/// The wish to be the device of a name.
struct ClaimMessage
{
    std::uint64_t instance = 0;
};

/// The wish for another value.
struct SetMessage
{
    std::uint64_t session = 0; ///< of the controller, by chance
    std::uint64_t request = 0; ///< grows with each request of one session
    std::string language;      ///< of the message in the answer
    boost::intrusive_ptr<Legacy::If::ItemBase> item;
};

/// What became of a wish.
struct AnswerMessage
{
    std::uint64_t session = 0;
    std::uint64_t request = 0;
    int code = 0; ///< 0 or a code of the library
    std::string text;

    friend bool operator==(AnswerMessage const&, AnswerMessage const&) = default;
};

/// Comes back behind all that was on its way.
struct EchoMessage
{
    std::uint64_t token = 0;
};

/// Longer messages are not read, and longer schemas neither.
/// @{
inline constexpr std::size_t k_maxMessage = 64 * 1024;
inline constexpr std::size_t k_maxSchema = 1024 * 1024;
/// @}

/// @throws std::invalid_argument for a value without a serial form and for a language that is too long.
/// @{
Bytes Encode(AboutMessage const& message);
Bytes Encode(ValueMessage const& message);
Bytes Encode(TotalMessage const& message);
Bytes Encode(ClaimMessage const& message);
Bytes Encode(SetMessage const& message);
Bytes Encode(AnswerMessage const& message);
Bytes Encode(EchoMessage const& message);
/// @}

/// Read bytes that may come from anywhere. Nothing for those that are not, from the first to the last, such a message.
/// Whether a value belongs to a parameter is for the caller to find out.
/// @{
std::optional<AboutMessage> DecodeAbout(std::span<unsigned char const> bytes);
std::optional<ValueMessage> DecodeValue(std::span<unsigned char const> bytes);
std::optional<TotalMessage> DecodeTotal(std::span<unsigned char const> bytes);
std::optional<ClaimMessage> DecodeClaim(std::span<unsigned char const> bytes);
std::optional<SetMessage> DecodeSet(std::span<unsigned char const> bytes);
std::optional<AnswerMessage> DecodeAnswer(std::span<unsigned char const> bytes);
std::optional<EchoMessage> DecodeEcho(std::span<unsigned char const> bytes);
/// @}

} // namespace Fleet
