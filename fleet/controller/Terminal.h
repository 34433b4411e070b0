#pragma once

#include <boost/asio/io_context.hpp>
#include <boost/asio/posix/stream_descriptor.hpp>

#include <functional>
#include <string>
#include <vector>

namespace Fleet {

/// Where commands come from and answers go: a terminal, with a history and completion, or any other input line by line.
class Terminal
{
public:
    /// What a word may go on as, behind the words of the line that stand before it.
    using Complete = std::function<std::vector<std::string>(std::vector<std::string> const& before)>;

    /// @param line is called with each line of the input, while #SetReading allows
    /// @param ended is called once at the end of the input
    Terminal(boost::asio::io_context& context, std::function<void(std::string const& line)> line,
             std::function<void()> ended, Complete complete);
    Terminal(Terminal const&) = delete;
    Terminal& operator=(Terminal const&) = delete;
    /// Keeps the history, and leaves the terminal as it was.
    ~Terminal();

    void Start();
    /// Whether lines are taken now.
    void SetReading(bool isReading);
    /// Prints a line of printable text, above the one that is being written.
    void Print(std::string const& text);

private:
    static void OnLine_(char* line);
    static char** OnComplete_(char const* text, int start, int end);
    static char* NextCandidate_(char const* text, int state);

    void Wait_();
    void TakeInput_();
    void HandOut_();
    void StartEditing_();

    boost::asio::posix::stream_descriptor m_input;
    std::function<void(std::string const&)> m_line;
    std::function<void()> m_ended;
    Complete m_complete;
    std::vector<std::string> m_candidates;
    std::string m_history; // the file
    std::string m_text;    // that was read and not handed out
    bool const m_isTerminal;
    bool m_isRegular = false; // a file, which cannot be waited for
    bool m_isReading = true;
    bool m_isEditing = false;
    bool m_isWaiting = false;
    bool m_isAtEnd = false;
    bool m_isOver = false; // the end was told
};

} // namespace Fleet
