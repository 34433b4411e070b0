#include "Terminal.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <charconv>
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <iostream>
#include <numeric>
#include <utility>

namespace Command {

namespace {

constexpr std::size_t k_gap = 2;         // between columns
constexpr std::size_t k_leastColumn = 6; // what stays of a column that gives way
constexpr std::size_t k_chunk = 64 * 1024;
constexpr std::size_t k_barLength = 40;
constexpr std::int64_t k_firstDraw = 500; // milliseconds
constexpr std::int64_t k_drawEvery = 100;

bool IsContinuation(char c) { return (static_cast<unsigned char>(c) & 0xC0) == 0x80; }

bool IsSet(char const* name)
{
    char const* const value = std::getenv(name);
    return value && *value != '\0';
}

std::int64_t Now()
{
    using namespace std::chrono;
    return duration_cast<milliseconds>(steady_clock::now().time_since_epoch()).count();
}

std::optional<std::size_t> ColumnsFromEnvironment()
{
    char const* const text = std::getenv("COLUMNS");
    std::size_t columns = 0;
    if (!text || std::from_chars(text, text + std::strlen(text), columns).ec != std::errc() || columns == 0)
        return std::nullopt;
    return columns;
}

} // namespace

Screen_t Screen_t::OfOutput()
{
    Screen_t screen;
    screen.width = ColumnsFromEnvironment();
    if (::isatty(STDOUT_FILENO) == 0)
        return screen;
    char const* const terminal = std::getenv("TERM");
    screen.isColoured = !IsSet("NO_COLOR") && terminal && std::string_view(terminal) != "dumb";
    winsize size{};
    if (!screen.width && ::ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0)
        screen.width = size.ws_col;
    return screen;
}

std::string Screen_t::Marked_(char const* start, std::string const& text) const
{
    return isColoured && !text.empty() ? start + text + "\033[0m" : text;
}

std::size_t Width(std::string_view text)
{
    return static_cast<std::size_t>(std::count_if(text.begin(), text.end(), [](char c) { return !IsContinuation(c); }));
}

std::string Cut(std::string_view text, std::size_t width)
{
    if (Width(text) <= width)
        return std::string(text);
    std::size_t end = 0;
    for (std::size_t shown = 0; shown < width; ++shown) {
        do
            ++end;
        while (end < text.size() && IsContinuation(text[end]));
        if (shown + 1 == width)
            while (end > 0 && IsContinuation(text[--end])) {
            }
    }
    return std::string(text.substr(0, end)) + (width == 0 ? "" : "…");
}

std::vector<std::size_t> Table::Widths_(std::optional<std::size_t> screen) const
{
    std::vector<std::size_t> widths(m_rows.front().size());
    for (auto const& row : m_rows) {
        for (std::size_t i = 0; i < row.size(); ++i)
            widths[i] = std::max(widths[i], Width(row[i]));
    }
    // Columns in which nothing stands take no room, and neither does a gap before them.
    std::size_t total = 0;
    for (std::size_t const width : widths)
        total += width == 0 ? 0 : width + k_gap;
    // The widest one gives way until all fit or none can any more.
    while (screen && total > *screen + k_gap) {
        auto const widest = std::max_element(widths.begin(), widths.end());
        if (*widest <= k_leastColumn)
            break;
        --*widest;
        --total;
    }
    return widths;
}

std::vector<std::string> Table::PrintedRow_(std::vector<std::string> const& row,
                                            std::vector<std::size_t> const& widths) const
{
    std::vector<std::string> cells;
    for (std::size_t i = 0; i < row.size(); ++i)
        cells.push_back(Cut(row[i], widths[i]));
    return cells;
}

void Table::Print(std::ostream& os, Screen_t const& screen, std::size_t marked) const
{
    if (m_rows.empty())
        return;
    auto const widths = Widths_(screen.width);
    for (auto const& row : m_rows) {
        auto const cells = PrintedRow_(row, widths);
        std::size_t missing = 0; // columns between what is printed and the next cell
        for (std::size_t i = 0; i < cells.size(); ++i) {
            if (!cells[i].empty())
                os << std::string(std::exchange(missing, 0), ' ') << (i == marked ? screen.Red(cells[i]) : cells[i]);
            if (widths[i] != 0)
                missing += widths[i] - Width(cells[i]) + k_gap;
        }
        os << '\n';
    }
}

ProgressBuffer::ProgressBuffer(std::streambuf& source, std::uint64_t size)
    : m_source(source), m_size(size), m_isTerminal(::isatty(STDERR_FILENO) != 0), m_nextDraw(Now() + k_firstDraw),
      m_chunk(k_chunk)
{}

ProgressBuffer::~ProgressBuffer()
{
    if (m_isDrawn)
        std::cerr << "\r\033[K" << std::flush;
}

ProgressBuffer::int_type ProgressBuffer::underflow()
{
    auto const size = m_source.sgetn(m_chunk.data(), static_cast<std::streamsize>(m_chunk.size()));
    if (size <= 0)
        return traits_type::eof();
    m_read += static_cast<std::uint64_t>(size);
    if (m_isTerminal && Now() >= m_nextDraw)
        Draw_();
    setg(m_chunk.data(), m_chunk.data(), m_chunk.data() + size);
    return traits_type::to_int_type(*gptr());
}

void ProgressBuffer::Draw_()
{
    m_nextDraw = Now() + k_drawEvery;
    m_isDrawn = true;
    std::cerr << '\r';
    if (m_size != 0) {
        std::size_t const done = static_cast<std::size_t>(std::min(m_read, m_size) * k_barLength / m_size);
        std::cerr << '[' << std::string(done, '#') << std::string(k_barLength - done, ' ') << "] ";
    }
    std::cerr << m_read / 1024 << " KiB" << std::flush;
}

} // namespace Command
