#pragma once

#include <Orlek/CodeLocation.h>
#include <Orlek/Export.h>
#include <Orlek/LogLevel.h>

#include <boost/log/core/record.hpp>
#include <boost/log/sources/severity_channel_logger.hpp>

#include <atomic>
#include <memory>
#include <string>

namespace Orlek {

/// One logger channel: the Boost.Log logger that writes to it, and the level from which on it is worth writing.
///
/// `LogManager` hands out the facades that the platform shares. All members may be called by any thread at any time.
class ORLEK_API LoggerFacade
{
public:
    using Logger_t = boost::log::sources::severity_channel_logger_mt<LogLevel_t, std::string>;

    /// The name of the record attribute that `AttachLocation` sets; its value is a `CodeLocation`.
    static constexpr char const* k_locationAttribute = "Location";

    /// A facade with no logger behind it: `get()` is null and nothing is enabled. For callers who must pass a facade
    /// and want silence.
    LoggerFacade() noexcept;

    /// A logger for `channel`, with `level` and all above enabled.
    explicit LoggerFacade(std::string channel, LogLevel_t level = LogLevel_t::Trace);

    LoggerFacade(LoggerFacade const&) = delete;
    LoggerFacade& operator=(LoggerFacade const&) = delete;
    ~LoggerFacade();

    /// The logger, owned by the facade; null if it has none. A record opened on it directly is not held back by the
    /// level of the facade: ask `IsEnabled` first.
    Logger_t* get() const noexcept { return m_logger.get(); }

    /// The channel's name, as every record of the logger carries it.
    std::string const& GetChannel() const noexcept { return m_channel; }

    /// Whether a record of this level should be written.
    bool IsEnabled(LogLevel_t level) const noexcept { return m_logger && level >= GetLevel(); }

    /// The lowest level that is enabled.
    LogLevel_t GetLevel() const noexcept { return m_level.load(std::memory_order_relaxed); }

    /// Enables `level` and all above, and disables those below.
    void SetLevel(LogLevel_t level) noexcept { m_level.store(level, std::memory_order_relaxed); }

    /// Gives an open record the place it comes from, as the attribute "Location". A location that the record already
    /// has stays.
    static void AttachLocation(boost::log::record& record, CodeLocation const& location);

private:
    std::string const m_channel;
    std::atomic<LogLevel_t> m_level;
    std::unique_ptr<Logger_t> m_logger;
};

} // namespace Orlek
