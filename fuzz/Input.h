#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

/// Takes an input apart from front to back; what is missing reads as 0 or as nothing.
class Input
{
public:
    Input(std::uint8_t const* data, std::size_t size) : m_data(data), m_size(size) {}

    bool Empty() const { return m_size == 0; }
    std::uint8_t const* Data() const { return m_data; }
    std::size_t Size() const { return m_size; }

    std::uint8_t Byte()
    {
        if (m_size == 0)
            return 0;
        --m_size;
        return *m_data++;
    }

    std::uint32_t Word()
    {
        std::uint32_t word = 0;
        for (int i = 0; i < 4; ++i)
            word = word << 8 | Byte();
        return word;
    }

    /// A length byte and that much text.
    std::string Text()
    {
        std::size_t const length = std::min<std::size_t>(Byte(), m_size);
        std::string text(reinterpret_cast<char const*>(m_data), length);
        m_data += length;
        m_size -= length;
        return text;
    }

    /// All that is left.
    std::string Rest() const { return std::string(reinterpret_cast<char const*>(m_data), m_size); }

private:
    std::uint8_t const* m_data;
    std::size_t m_size;
};

/// Ends the run: what must hold for every input did not.
inline void Require(bool condition)
{
    if (!condition)
        std::abort();
}
