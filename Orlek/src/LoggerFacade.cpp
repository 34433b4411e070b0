#include <Orlek/LoggerFacade.h>

#include <boost/log/attributes/attribute_value_impl.hpp>
#include <boost/log/keywords/channel.hpp>

#include <utility>

namespace Orlek {

LoggerFacade::LoggerFacade() noexcept : m_level(LogLevel_t::Fatal) {}

LoggerFacade::LoggerFacade(std::string channel, LogLevel_t level)
    : m_channel(std::move(channel)), m_level(level),
      m_logger(std::make_unique<Logger_t>(boost::log::keywords::channel = m_channel))
{}

LoggerFacade::~LoggerFacade() = default;

void LoggerFacade::AttachLocation(boost::log::record& record, CodeLocation const& location)
{
    record.attribute_values().insert(k_locationAttribute, boost::log::attributes::make_attribute_value(location));
}

} // namespace Orlek
