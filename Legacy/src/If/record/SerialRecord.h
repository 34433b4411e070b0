#pragma once

#include "convert/FloatLoops.h"
#include "convert/Wide.h"
#include "core/ObjectCache.h"

#include <Legacy/If/ItemBase.h>

#include <boost/endian/conversion.hpp>

#include <bit>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>
#include <memory>
#include <span>
#include <string>
#include <string_view>

namespace Legacy::If::Detail {

/// The form in which a number stands in a payload, and, since each step undoes itself or is run again for reading, the
/// number that a stored form stands for.
///
/// Integers are big-endian. Contract: a float passes through an integer whose bytes are swapped and which is stored as
/// a float again, in native order. Fractions, negative floats and low bits are lost on the way; every stored record has
/// this form, so it must not be mended into swapped IEEE 754 bits.
template<std::integral Number>
constexpr Number WireForm(Number value) noexcept
{
    return boost::endian::native_to_big(value);
}

template<std::floating_point Number>
Number WireForm(Number value) noexcept
{
    return Swapped(value);
}

/// The wire forms of `count` numbers, out of bytes and into bytes, since payloads know no alignment.
template<typename Number>
void CopyWireForms(unsigned char* to, unsigned char const* from, std::size_t count) noexcept
{
    if constexpr (std::same_as<Number, float>) {
        WidestFloatLoops().copyFloats(to, from, count);
    } else if constexpr (std::same_as<Number, double>) {
        WidestFloatLoops().copyDoubles(to, from, count);
    } else {
        RunLoop([to, from, count] {
            for (std::size_t i = 0; i < count; ++i) {
                Number value;
                std::memcpy(&value, from + i * sizeof(value), sizeof(value));
                value = WireForm(value);
                std::memcpy(to + i * sizeof(value), &value, sizeof(value));
            }
        });
    }
}

/// Fills a payload of known size from front to back. The caller gives out exactly as much as it allocated.
class PayloadWriter
{
public:
    explicit PayloadWriter(unsigned char* payload) noexcept : m_next(payload) {}

    /// One number in its wire form.
    template<typename Number>
    void Put(Number value) noexcept
    {
        Number const wire = WireForm(value);
        std::memcpy(m_next, &wire, sizeof(wire));
        m_next += sizeof(wire);
    }

    /// Numbers in order, with no count.
    template<typename Number>
    void PutAll(std::span<Number const> values) noexcept
    {
        CopyWireForms<Number>(m_next, reinterpret_cast<unsigned char const*>(values.data()), values.size());
        m_next += values.size_bytes();
    }

    void PutBytes(void const* bytes, std::size_t size) noexcept
    {
        if (size != 0)
            std::memcpy(m_next, bytes, size);
        m_next += size;
    }

    /// The text and a terminating zero byte.
    void PutText(std::string_view text) noexcept
    {
        PutBytes(text.data(), text.size());
        *m_next++ = 0;
    }

private:
    unsigned char* m_next;
};

/// Reads a payload from front to back and never past its end: a read that does not fit gives zeros and is remembered.
class PayloadReader
{
public:
    PayloadReader() = default;
    PayloadReader(unsigned char const* payload, std::size_t size) noexcept : m_next(payload), m_left(size) {}

    std::size_t Left() const noexcept { return m_left; }
    unsigned char const* Next() const noexcept { return m_next; }
    /// Whether every read so far fitted.
    bool Ok() const noexcept { return m_ok; }

    template<typename Number>
    Number Get() noexcept
    {
        Number wire{};
        if (Take_(sizeof(wire)))
            std::memcpy(&wire, m_next - sizeof(wire), sizeof(wire));
        return WireForm(wire);
    }

    /// Fills the whole span.
    template<typename Number>
    void GetAll(std::span<Number> values) noexcept
    {
        if (!Take_(values.size_bytes()))
            return;
        unsigned char const* const from = m_next - values.size_bytes();
        CopyWireForms<Number>(reinterpret_cast<unsigned char*>(values.data()), from, values.size());
    }

    /// Whether the payload that is left ends in a zero byte.
    bool EndsInZero() const noexcept { return m_left != 0 && m_next[m_left - 1] == 0; }

    /// The text up to the next zero byte, moving past it. Without one, or with nothing left, the read does not fit.
    std::string_view GetText() noexcept
    {
        void const* const zero = m_left != 0 ? std::memchr(m_next, 0, m_left) : nullptr;
        if (!zero) {
            m_ok = false;
            return {};
        }
        char const* const text = reinterpret_cast<char const*>(m_next);
        auto const length = static_cast<std::size_t>(static_cast<unsigned char const*>(zero) - m_next);
        Take_(length + 1);
        return {text, length};
    }

private:
    bool Take_(std::size_t size) noexcept
    {
        if (size > m_left || !m_ok) {
            m_ok = false;
            return false;
        }
        m_next += size;
        m_left -= size;
        return true;
    }

    unsigned char const* m_next = nullptr;
    std::size_t m_left = 0;
    bool m_ok = true;
};

/// The size word of a record holds 32 bits: what does not fit reads as the greatest.
inline unsigned int ClampSize(std::uint64_t size) noexcept
{
    constexpr auto max = std::numeric_limits<unsigned int>::max();
    return size < max ? static_cast<unsigned int>(size) : max;
}

/// Names the item and the size of its payload in a record.
inline void WriteHeader(ItemBase const& item, std::uint32_t size, ItemBase::SerialStruct_t& record)
{
    record.id = boost::endian::native_to_big(static_cast<std::uint32_t>(item.GetId()));
    record.size = boost::endian::native_to_big(size);
    record.type = static_cast<unsigned char>(item.GetType());
    record.numericType = static_cast<unsigned char>(item.GetNumericType());
}

/// Writes a record whose `size` word and allocation are given apart; `fill` takes a `PayloadWriter`.
template<typename Fill>
int WriteRecord(ItemBase const& item, ItemBase::SerialStruct_t* record, std::uint64_t sizeWord, std::uint64_t allocate,
                Fill&& fill)
{
    if (!record)
        return IfErrInvalidArgument;
    if (sizeWord >= std::numeric_limits<std::uint32_t>::max() || allocate > std::numeric_limits<std::size_t>::max())
        return IfErrInvalidArgument;
    std::unique_ptr<unsigned char[]> payload(new unsigned char[static_cast<std::size_t>(allocate)]);
    fill(PayloadWriter(payload.get()));
    WriteHeader(item, static_cast<std::uint32_t>(sizeWord), *record);
    record->data = payload.release();
    return 0;
}

/// Writes a record of `size` payload bytes: header, allocation, and what `fill` gives out.
template<typename Fill>
int WriteRecord(ItemBase const& item, ItemBase::SerialStruct_t* record, std::uint64_t size, Fill&& fill)
{
    return WriteRecord(item, record, size, size, std::forward<Fill>(fill));
}

/// Tests the header of a record against the item that it must name, in the order in which callers tell the codes apart,
/// and opens its payload.
inline int OpenRecord(ItemBase const& item, ItemBase::ConstSerialStruct_t const* record, PayloadReader& payload)
{
    if (!record)
        return IfErrNullArgument;
    if (boost::endian::big_to_native(std::uint32_t{record->id}) != item.GetId())
        return IfErrInvalidArgument;
    if (record->type != static_cast<unsigned char>(item.GetType()))
        return IfErrInvalidArgument;
    if (record->numericType != static_cast<unsigned char>(item.GetNumericType()))
        return IfErrInvalidArgument;
    std::size_t const size = boost::endian::big_to_native(std::uint32_t{record->size});
    if (size != 0 && !record->data)
        return IfErrInvalidArgument;
    payload = PayloadReader(record->data, size);
    return 0;
}

/// Writes and reads the record of a value whose payload is one number.
template<typename Number>
int WriteNumberRecord(ItemBase const& item, ItemBase::SerialStruct_t* record, Number value)
{
    return WriteRecord(item, record, sizeof(value), [value](PayloadWriter payload) { payload.Put(value); });
}

template<typename Number>
int ReadNumberRecord(ItemBase const& item, ItemBase::ConstSerialStruct_t const* record, Number& value)
{
    PayloadReader payload;
    if (int const code = OpenRecord(item, record, payload))
        return code;
    if (payload.Left() != sizeof(value))
        return IfErrInvalidArgument;
    value = payload.Get<Number>();
    return 0;
}

/// Reads the record of a value whose payload is one text: up to the first zero byte, of which the last byte is one.
inline int ReadTextRecord(ItemBase const& item, ItemBase::ConstSerialStruct_t const* record, std::string& text)
{
    PayloadReader payload;
    if (int const code = OpenRecord(item, record, payload))
        return code;
    if (!payload.EndsInZero())
        return IfErrInvalidArgument;
    text = payload.GetText();
    return 0;
}

} // namespace Legacy::If::Detail
