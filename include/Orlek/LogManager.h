#pragma once

#include <Orlek/Export.h>

#include <iosfwd>
#include <memory>
#include <string>

namespace Orlek {

class LoggerFacade;

/// Hands out the logger channels of the process and connects the log with the console.
///
/// There is one manager. It is made at first use, be it by a static initializer, and never destroyed, so that it also
/// serves static destructors; the same holds for the channels. All members may be called by any thread at any time.
///
/// As long as no sink is added, here or to the core of Boost.Log, that core prints the messages on the standard output
/// by itself and in its own form, which knows neither channels nor these levels and calls every record "info". A
/// program that wants them adds a sink and sets a level:
///
///     Orlek::LogManager::Instance().AddConsoleSink();
///     auto const log = Orlek::LogManager::Instance().GetLogger("app");
///     log->SetLevel(Orlek::LogLevel_t::Warning);
///
/// Sinks that write files should be removed from the core before `main` ends: what a static destructor logs
/// still reaches the sinks that are there then.
class ORLEK_API LogManager
{
public:
    static LogManager& Instance();

    LogManager(LogManager const&) = delete;
    LogManager& operator=(LogManager const&) = delete;

    /// The facade of a channel; the same one for the same channel, whoever asks. Never null.
    ///
    /// A channel that is asked for the first time takes its level from `parent`, or lets everything pass if `parent` is
    /// null; later parents change nothing. A non-empty `instance` names one of several like objects and makes a channel
    /// of its own, `channel[instance]`.
    std::shared_ptr<LoggerFacade> GetLogger(std::string const& channel,
                                            std::shared_ptr<LoggerFacade> const& parent = nullptr,
                                            std::string const& instance = {});

    /// Prints every record of the process as one line on the standard error stream.
    void AddConsoleSink();

    /// Prints every record of the process on `out` and flushes it: time (UTC), level, channel and message, and behind
    /// them the attribute "Location" of records that have it. A second call with the same stream changes nothing. The
    /// stream must live, and be left alone by others, until `RemoveConsoleSink`.
    void AddConsoleSink(std::ostream& out);

    /// Stops printing on `out`: on return the stream is not touched any more, also not by a record that another thread
    /// has under way. Nothing happens if the stream was never added.
    void RemoveConsoleSink(std::ostream& out);

private:
    LogManager();
    ~LogManager();

    struct State_t;
    std::unique_ptr<State_t> m_state;
};

} // namespace Orlek
