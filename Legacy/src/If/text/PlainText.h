#pragma once

#include "core/DefaultText.h"

#include <array>
#include <cstddef>
#include <cstring>
#include <locale>
#include <ostream>
#include <string_view>

namespace Legacy::If::Detail {

/// Gathers the text of a list or of a composite and writes it in large pieces: on a stream, each number and each
/// separator alone costs more to hand over than to print. Only for streams that #Suits finds plain, on which the text
/// is the same, byte for byte.
class PlainText
{
public:
    explicit PlainText(std::ostream& os) noexcept : m_os(os) {}
    PlainText(PlainText const&) = delete;
    PlainText& operator=(PlainText const&) = delete;

    /// Whether a stream has no format and no locale of its own.
    static bool Suits(std::ostream const& os)
    {
        return os.flags() == (std::ios_base::dec | std::ios_base::skipws) && os.width() == 0 && os.precision() == 6 &&
               os.getloc() == std::locale::classic();
    }

    PlainText& operator<<(std::string_view text)
    {
        if (text.size() > m_buffer.size() - m_size) {
            Flush();
            if (text.size() > m_buffer.size()) {
                m_os.write(text.data(), static_cast<std::streamsize>(text.size()));
                return *this;
            }
        }
        std::memcpy(m_buffer.data() + m_size, text.data(), text.size());
        m_size += text.size();
        return *this;
    }

    /// As #PrintDefault prints it.
    template<typename Number>
    void PutNumber(Number value)
    {
        if (m_buffer.size() - m_size < k_longestNumber)
            Flush();
        char* const place = m_buffer.data() + m_size;
        m_size += static_cast<std::size_t>(PrintDefault(place, value) - place);
    }

    /// Writes what was gathered. To be called at the end, and before anybody else writes.
    void Flush()
    {
        if (m_size == 0)
            return;
        m_os.write(m_buffer.data(), static_cast<std::streamsize>(m_size));
        m_size = 0;
    }

private:
    std::ostream& m_os;
    std::size_t m_size = 0;
    std::array<char, 1024> m_buffer;
};

} // namespace Legacy::If::Detail
