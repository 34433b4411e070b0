#include "controller/Terminal.h"

#include <boost/asio/post.hpp>
#include <editline/readline.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <iostream>
#include <sstream>
#include <system_error>
#include <utility>

namespace Fleet {

namespace {

constexpr char k_prompt[] = "fleet> ";
constexpr int k_historySize = 1000;
constexpr std::size_t k_maxText = 64 * 1024;

/// The one terminal of the process: the line editor calls plain functions.
Terminal* g_terminal = nullptr;

std::string HistoryFile()
{
    namespace fs = std::filesystem;
    char const* const state = std::getenv("XDG_STATE_HOME");
    char const* const home = std::getenv("HOME");
    if (!(state && *state) && !(home && *home))
        return {};
    auto const folder = (state && *state ? fs::path(state) : fs::path(home) / ".local/state") / "legacyif-fleet";
    std::error_code error;
    fs::create_directories(folder, error);
    return error ? std::string() : (folder / "history").string();
}

} // namespace

Terminal::Terminal(boost::asio::io_context& context, std::function<void(std::string const&)> line,
                   std::function<void()> ended, Complete complete)
    : m_input(context, dup(STDIN_FILENO)), m_line(std::move(line)), m_ended(std::move(ended)),
      m_complete(std::move(complete)), m_isTerminal(isatty(STDIN_FILENO) != 0 && isatty(STDOUT_FILENO) != 0)
{
    struct stat status = {};
    m_isRegular = fstat(STDIN_FILENO, &status) == 0 && S_ISREG(status.st_mode);
    g_terminal = this;
}

Terminal::~Terminal()
{
    if (m_isTerminal)
        rl_callback_handler_remove();
    if (!m_history.empty())
        write_history(m_history.c_str());
    g_terminal = nullptr;
}

void Terminal::Start()
{
    if (m_isTerminal) {
        rl_readline_name = const_cast<char*>("legacyif-fleet"); // the library only reads it
        using_history();
        stifle_history(k_historySize);
        m_history = HistoryFile();
        if (!m_history.empty())
            read_history(m_history.c_str());
        rl_attempted_completion_function = &Terminal::OnComplete_;
    }
    Wait_();
}

void Terminal::SetReading(bool isReading)
{
    if (std::exchange(m_isReading, isReading) == isReading || !isReading)
        return;
    boost::asio::post(m_input.get_executor(), [this] {
        HandOut_();
        Wait_();
    });
}

void Terminal::Print(std::string const& text)
{
    if (m_isEditing)
        std::cout << "\r\033[K";
    std::cout << text << std::endl;
    if (m_isEditing)
        rl_forced_update_display();
}

void Terminal::StartEditing_()
{
    if (!std::exchange(m_isEditing, true))
        rl_callback_handler_install(k_prompt, &Terminal::OnLine_);
}

void Terminal::Wait_()
{
    if (m_isWaiting || !m_isReading || m_isAtEnd)
        return;
    m_isWaiting = true;
    if (m_isTerminal)
        StartEditing_();
    auto const take = [this](boost::system::error_code const& error) {
        m_isWaiting = false;
        if (error)
            return;
        TakeInput_();
        HandOut_();
        Wait_();
    };
    if (m_isRegular)
        boost::asio::post(m_input.get_executor(), [take] { take({}); });
    else
        m_input.async_wait(boost::asio::posix::stream_descriptor::wait_read, take);
}

void Terminal::TakeInput_()
{
    if (m_isTerminal) {
        rl_callback_read_char();
        return;
    }
    std::array<char, 4096> buffer;
    auto const count = read(STDIN_FILENO, buffer.data(), buffer.size());
    if (count > 0)
        m_text.append(buffer.data(), static_cast<std::size_t>(count));
    else
        m_isAtEnd = true;
    if (m_text.size() > k_maxText && m_text.find('\n') == std::string::npos)
        m_text.clear();
}

/// The lines that are whole, and at the end of the input the last one.
void Terminal::HandOut_()
{
    for (auto end = m_text.find('\n'); m_isReading && end != std::string::npos; end = m_text.find('\n')) {
        auto const line = m_text.substr(0, end);
        m_text.erase(0, end + 1);
        m_line(line);
    }
    if (!m_isAtEnd || !m_isReading || m_isOver)
        return;
    if (auto const line = std::exchange(m_text, {}); !line.empty())
        m_line(line);
    if (m_isReading && !std::exchange(m_isOver, true))
        m_ended();
}

void Terminal::OnLine_(char* line)
{
    auto& self = *g_terminal;
    // The editor has left the terminal to itself, and takes it again for the next line.
    self.m_isEditing = false;
    if (!line) {
        std::cout << std::endl;
        self.m_isAtEnd = true;
        return;
    }
    if (*line != '\0')
        add_history(line);
    self.m_text.append(line).append("\n");
    std::free(line);
}

char** Terminal::OnComplete_(char const* text, int start, int)
{
    auto& self = *g_terminal;
    std::istringstream words(std::string(rl_line_buffer, static_cast<std::size_t>(start)));
    std::vector<std::string> before;
    for (std::string word; words >> word;)
        before.push_back(word);
    self.m_candidates.clear();
    for (auto& candidate : self.m_complete(before))
        if (candidate.starts_with(text))
            self.m_candidates.push_back(std::move(candidate));
    rl_attempted_completion_over = 1; // no names of files
    return rl_completion_matches(text, &Terminal::NextCandidate_);
}

char* Terminal::NextCandidate_(char const*, int state)
{
    static std::size_t next = 0;
    if (state == 0)
        next = 0;
    auto const& candidates = g_terminal->m_candidates;
    return next < candidates.size() ? strdup(candidates[next++].c_str()) : nullptr;
}

} // namespace Fleet
