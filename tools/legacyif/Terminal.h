#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <ostream>
#include <streambuf>
#include <string>
#include <string_view>
#include <vector>

namespace Command {

/// How the standard output is looked at.
struct Screen_t
{
    bool isColoured = false;
    std::optional<std::size_t> width; ///< in columns; nothing where lines may be of any length

    /// Colours go to a terminal alone, and not where the user does not want them; so does the width, unless COLUMNS
    /// names one.
    static Screen_t OfOutput();

    std::string Bold(std::string const& text) const { return Marked_("\033[1m", text); }
    std::string Red(std::string const& text) const { return Marked_("\033[31m", text); }

private:
    std::string Marked_(char const* start, std::string const& text) const;
};

/// Number of columns that a text of printable characters takes, each counted as one.
std::size_t Width(std::string_view text);

/// The text, with "…" in place of what is too much.
std::string Cut(std::string_view text, std::size_t width);

/// Rows of cells in columns as wide as their contents; the last columns give way where the screen is narrow.
class Table
{
public:
    void Add(std::vector<std::string> row) { m_rows.push_back(std::move(row)); }
    /// @param marked the column that is shown in red, where it is not empty
    void Print(std::ostream& os, Screen_t const& screen, std::size_t marked) const;

private:
    std::vector<std::string> PrintedRow_(std::vector<std::string> const& row,
                                         std::vector<std::size_t> const& widths) const;
    std::vector<std::size_t> Widths_(std::optional<std::size_t> screen) const;

    std::vector<std::vector<std::string>> m_rows; // all of one length
};

/// Hands on what another buffer reads and, if that takes long, draws a bar on the standard error's terminal.
class ProgressBuffer : public std::streambuf
{
public:
    /// @param size of the whole in bytes; 0 if that is not known
    ProgressBuffer(std::streambuf& source, std::uint64_t size);
    ~ProgressBuffer() override;

protected:
    int_type underflow() override;

private:
    void Draw_();

    std::streambuf& m_source;
    std::uint64_t m_size;
    std::uint64_t m_read = 0;
    bool m_isTerminal;
    std::int64_t m_nextDraw; // in milliseconds of a steady clock
    bool m_isDrawn = false;
    std::vector<char> m_chunk;
};

} // namespace Command
