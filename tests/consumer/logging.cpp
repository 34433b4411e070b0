// A program that logs through the base library alone.
#include <Orlek/LogManager.h>
#include <Orlek/LoggerFacade.h>

#include <boost/log/sources/record_ostream.hpp>
#include <boost/log/sources/severity_channel_logger.hpp>

#include <iostream>

int main()
{
    Orlek::LogManager::Instance().AddConsoleSink(std::cout);
    auto const logger = Orlek::LogManager::Instance().GetLogger("Consumer", nullptr, "");
    BOOST_LOG_SEV(*logger->get(), Orlek::LogLevel_t::Error) << "logged";
}
