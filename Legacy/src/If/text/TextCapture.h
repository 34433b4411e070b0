#pragma once

#include <ostream>
#include <streambuf>
#include <string>

namespace Legacy::If::Detail {

/// Appends what is written to a text.
class StringBuffer : public std::streambuf
{
public:
    explicit StringBuffer(std::string& text) noexcept : m_text(text) {}

protected:
    int_type overflow(int_type c) override
    {
        if (!traits_type::eq_int_type(c, traits_type::eof()))
            m_text.push_back(traits_type::to_char_type(c));
        return traits_type::not_eof(c);
    }

    std::streamsize xsputn(char const* text, std::streamsize size) override
    {
        m_text.append(text, static_cast<std::size_t>(size));
        return size;
    }

private:
    std::string& m_text;
};

/// Runs `print` on a default-formatted stream and returns what it wrote, without the copy that a string stream makes.
template<typename Print>
std::string CaptureText(Print&& print)
{
    std::string text;
    StringBuffer buffer(text);
    std::ostream os(&buffer);
    print(os);
    return text;
}

} // namespace Legacy::If::Detail
