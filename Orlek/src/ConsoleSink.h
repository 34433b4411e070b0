#pragma once

#include <boost/log/sinks/sink.hpp>
#include <boost/smart_ptr/shared_ptr.hpp>

#include <iosfwd>

namespace Orlek::Detail {

/// A sink, not yet known to the core, that prints one line for a record on `out`.
boost::shared_ptr<boost::log::sinks::sink> MakeConsoleSink(std::ostream& out);

} // namespace Orlek::Detail
