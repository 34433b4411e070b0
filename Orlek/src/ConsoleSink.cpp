#include "ConsoleSink.h"

#include <Orlek/LogLevel.h>
#include <Orlek/LoggerFacade.h>

#include <boost/core/null_deleter.hpp>
#include <boost/log/attributes/attribute_name.hpp>
#include <boost/log/attributes/value_extraction.hpp>
#include <boost/log/core/record_view.hpp>
#include <boost/log/expressions/message.hpp>
#include <boost/log/utility/formatting_ostream.hpp>
#include <boost/smart_ptr/make_shared_object.hpp>

#include <array>
#include <chrono>
#include <cstdio>
#include <string>
#include <utility>

namespace Orlek::Detail {

namespace {

namespace logging = boost::log;

/// The time as 2024-02-29T23:59:59.999Z.
std::string FormatUtc(std::chrono::system_clock::time_point time)
{
    using namespace std::chrono;
    auto const day = floor<days>(time);
    year_month_day const date(day);
    hh_mm_ss const clock(floor<milliseconds>(time - day));
    std::array<char, 40> text{};
    std::snprintf(text.data(), text.size(), "%04d-%02u-%02uT%02d:%02d:%02d.%03dZ", static_cast<int>(date.year()),
                  static_cast<unsigned>(date.month()), static_cast<unsigned>(date.day()),
                  static_cast<int>(clock.hours().count()), static_cast<int>(clock.minutes().count()),
                  static_cast<int>(clock.seconds().count()), static_cast<int>(clock.subseconds().count()));
    return text.data();
}

/// The feeding is synchronous, so that the time of printing is the time of the record. Any record of the process comes
/// along here, also those of foreign loggers: whatever it lacks is left out.
void FormatRecord(logging::record_view const& record, logging::formatting_ostream& out)
{
    out << FormatUtc(std::chrono::system_clock::now());
    if (auto const level = logging::extract<LogLevel_t>("Severity", record))
        out << ' ' << GetLogLevelText(*level);
    if (auto const channel = logging::extract<std::string>("Channel", record))
        out << ' ' << *channel;
    out << ": ";
    if (auto const message = logging::extract<std::string>("Message", record))
        out << *message;
    if (auto const location = logging::extract<CodeLocation>(LoggerFacade::k_locationAttribute, record))
        out << " (" << *location << ')';
}

} // namespace

ConsoleSink::ConsoleSink(logging::core_ptr core, std::ostream& out)
    : m_core(std::move(core)), m_out(&out, boost::null_deleter()), m_sink(boost::make_shared<Sink_t>())
{
    m_sink->locked_backend()->add_stream(m_out);
    m_sink->locked_backend()->auto_flush(true);
    m_sink->set_formatter(&FormatRecord);
    m_core->add_sink(m_sink);
}

ConsoleSink::~ConsoleSink()
{
    m_core->remove_sink(m_sink);
    // A record that another thread opened before still holds the sink and may be printed any time later. It must not
    // find the stream, which may be gone by then.
    m_sink->locked_backend()->remove_stream(m_out);
}

} // namespace Orlek::Detail
