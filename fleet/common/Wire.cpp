#include "common/Wire.h"

#include <Legacy/IfKit/Records.h>

#include <boost/endian/conversion.hpp>

#include <array>
#include <stdexcept>
#include <string_view>

namespace Fleet {

using Legacy::If::ItemBase;

namespace {

constexpr std::size_t k_maxTitle = 256;
constexpr std::string_view k_mark = "FL\x02";

class Writer
{
public:
    explicit Writer(char type)
    {
        Text(k_mark);
        m_bytes.push_back(static_cast<unsigned char>(type));
    }

    template<typename Number>
    Writer& Put(Number value)
    {
        std::array<unsigned char, sizeof(Number)> bytes{};
        boost::endian::endian_store<Number, sizeof(Number), boost::endian::order::big>(bytes.data(), value);
        for (unsigned char const byte : bytes)
            m_bytes.push_back(byte);
        return *this;
    }

    Writer& Text(std::string_view text)
    {
        for (char const c : text)
            m_bytes.push_back(static_cast<unsigned char>(c));
        return *this;
    }

    Writer& Record(ItemBase const& item)
    {
        if (Legacy::IfKit::AppendRecord(item, m_bytes) != 0)
            throw std::invalid_argument("a value without a serial form cannot be sent");
        return *this;
    }

    Bytes Take() { return std::move(m_bytes); }

private:
    Bytes m_bytes;
};

/// Reads front to back. What is missing reads as nothing and is remembered, so that one test at the end will do.
class Reader
{
public:
    Reader(std::span<unsigned char const> bytes, char type) : m_rest(bytes), m_good(bytes.size() <= k_maxMessage)
    {
        m_good = m_good && Text(k_mark.size()) == k_mark && Get<unsigned char>() == static_cast<unsigned char>(type);
    }

    bool Good() const { return m_good; }
    bool GoodAtEnd() const { return m_good && m_rest.empty(); }

    template<typename Number>
    Number Get()
    {
        auto const bytes = Take_(sizeof(Number));
        if (bytes.empty())
            return 0;
        return boost::endian::endian_load<Number, sizeof(Number), boost::endian::order::big>(bytes.data());
    }

    std::string Text(std::size_t size)
    {
        auto const bytes = Take_(size);
        return std::string(bytes.begin(), bytes.end());
    }

    std::string TextToEnd() { return Text(m_rest.size()); }

    boost::intrusive_ptr<ItemBase> RecordToEnd()
    {
        boost::intrusive_ptr<ItemBase> item;
        m_good = Legacy::IfKit::ReadRecord(Take_(m_rest.size()), item) == 0 && m_good;
        return item;
    }

private:
    std::span<unsigned char const> Take_(std::size_t size)
    {
        if (!m_good || size > m_rest.size()) {
            m_good = false;
            return {};
        }
        auto const taken = m_rest.first(size);
        m_rest = m_rest.subspan(size);
        return taken;
    }

    std::span<unsigned char const> m_rest;
    bool m_good;
};

template<typename Message>
std::optional<Message> IfGood(Reader const& reader, Message&& message)
{
    return reader.Good() ? std::optional(std::move(message)) : std::nullopt;
}

} // namespace

Bytes Encode(AboutMessage const& message)
{
    return Writer('A')
        .Put(static_cast<unsigned char>(message.online))
        .Put(message.instance)
        .Put(message.lineage)
        .Put(message.first)
        .Text(message.title)
        .Take();
}

Bytes Encode(ValueMessage const& message)
{
    return Writer('V').Put(message.lineage).Put(message.sequence).Record(*message.item).Take();
}

Bytes Encode(TotalMessage const& message)
{
    return Writer('T').Put(message.lineage).Put(message.last).Put(message.sum).Take();
}

Bytes Encode(ClaimMessage const& message) { return Writer('C').Put(message.instance).Take(); }

Bytes Encode(SetMessage const& message)
{
    if (message.language.size() > 0xff)
        throw std::invalid_argument("the name of the language is too long");
    return Writer('S')
        .Put(message.session)
        .Put(message.request)
        .Put(static_cast<unsigned char>(message.language.size()))
        .Text(message.language)
        .Record(*message.item)
        .Take();
}

Bytes Encode(AnswerMessage const& message)
{
    return Writer('R')
        .Put(message.session)
        .Put(message.request)
        .Put(std::int32_t{message.code})
        .Text(message.text)
        .Take();
}

Bytes Encode(EchoMessage const& message) { return Writer('E').Put(message.token).Take(); }

std::optional<AboutMessage> DecodeAbout(std::span<unsigned char const> bytes)
{
    Reader reader(bytes, 'A');
    AboutMessage message;
    auto const online = reader.Get<unsigned char>();
    message.online = online == 1;
    message.instance = reader.Get<std::uint64_t>();
    message.lineage = reader.Get<std::uint64_t>();
    message.first = reader.Get<std::uint64_t>();
    message.title = reader.TextToEnd();
    return online <= 1 && message.title.size() <= k_maxTitle ? IfGood(reader, std::move(message)) : std::nullopt;
}

std::optional<ValueMessage> DecodeValue(std::span<unsigned char const> bytes)
{
    Reader reader(bytes, 'V');
    ValueMessage message;
    message.lineage = reader.Get<std::uint64_t>();
    message.sequence = reader.Get<std::uint64_t>();
    message.item = reader.RecordToEnd();
    return IfGood(reader, std::move(message));
}

std::optional<TotalMessage> DecodeTotal(std::span<unsigned char const> bytes)
{
    Reader reader(bytes, 'T');
    TotalMessage message;
    message.lineage = reader.Get<std::uint64_t>();
    message.last = reader.Get<std::uint64_t>();
    message.sum = reader.Get<std::uint64_t>();
    return reader.GoodAtEnd() ? std::optional(message) : std::nullopt;
}

std::optional<ClaimMessage> DecodeClaim(std::span<unsigned char const> bytes)
{
    Reader reader(bytes, 'C');
    ClaimMessage const message{reader.Get<std::uint64_t>()};
    return reader.GoodAtEnd() ? std::optional(message) : std::nullopt;
}

std::optional<SetMessage> DecodeSet(std::span<unsigned char const> bytes)
{
    Reader reader(bytes, 'S');
    SetMessage message;
    message.session = reader.Get<std::uint64_t>();
    message.request = reader.Get<std::uint64_t>();
    message.language = reader.Text(reader.Get<unsigned char>());
    message.item = reader.RecordToEnd();
    return IfGood(reader, std::move(message));
}

std::optional<AnswerMessage> DecodeAnswer(std::span<unsigned char const> bytes)
{
    Reader reader(bytes, 'R');
    AnswerMessage message;
    message.session = reader.Get<std::uint64_t>();
    message.request = reader.Get<std::uint64_t>();
    message.code = reader.Get<std::int32_t>();
    message.text = reader.TextToEnd();
    return message.code <= 0 ? IfGood(reader, std::move(message)) : std::nullopt;
}

std::optional<EchoMessage> DecodeEcho(std::span<unsigned char const> bytes)
{
    Reader reader(bytes, 'E');
    EchoMessage const message{reader.Get<std::uint64_t>()};
    return reader.GoodAtEnd() ? std::optional(message) : std::nullopt;
}

} // namespace Fleet
