#pragma once

#include <boost/log/core/core.hpp>
#include <boost/log/sinks/sync_frontend.hpp>
#include <boost/log/sinks/text_ostream_backend.hpp>
#include <boost/smart_ptr/shared_ptr.hpp>

#include <ostream>

namespace Orlek::Detail {

/// Prints the records of the core, one line each, on a stream: from construction to destruction and not a moment
/// longer.
class ConsoleSink
{
public:
    ConsoleSink(boost::log::core_ptr core, std::ostream& out);
    ConsoleSink(ConsoleSink const&) = delete;
    ConsoleSink& operator=(ConsoleSink const&) = delete;
    ~ConsoleSink();

private:
    using Sink_t = boost::log::sinks::synchronous_sink<boost::log::sinks::text_ostream_backend>;

    boost::log::core_ptr const m_core;
    boost::shared_ptr<std::ostream> const m_out;
    boost::shared_ptr<Sink_t> const m_sink;
};

} // namespace Orlek::Detail
