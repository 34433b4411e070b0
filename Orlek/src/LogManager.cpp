#include "ConsoleSink.h"

#include <Orlek/LogManager.h>
#include <Orlek/LoggerFacade.h>

#include <iostream>
#include <map>
#include <mutex>
#include <unordered_map>

namespace Orlek {

struct LogManager::State_t
{
    std::mutex mutex;
    std::unordered_map<std::string, std::shared_ptr<LoggerFacade>> loggers;
    // Kept here as well, so that the core outlives its own static pointer and late records find it.
    boost::log::core_ptr const core = boost::log::core::get();
    std::map<std::ostream*, Detail::ConsoleSink> consoles;
};

LogManager::LogManager() : m_state(std::make_unique<State_t>()) {}
LogManager::~LogManager() = default;

LogManager& LogManager::Instance()
{
    // Never destroyed on purpose: libraries unloaded after this one still hold and use their channels.
    static auto* const instance = new LogManager;
    return *instance;
}

std::shared_ptr<LoggerFacade> LogManager::GetLogger(std::string const& channel,
                                                    std::shared_ptr<LoggerFacade> const& parent,
                                                    std::string const& instance)
{
    auto const name = instance.empty() ? channel : channel + '[' + instance + ']';
    std::lock_guard const lock(m_state->mutex);
    auto const found = m_state->loggers.find(name);
    if (found != m_state->loggers.end())
        return found->second;
    auto const level = parent ? parent->GetLevel() : LogLevel_t::Trace;
    auto logger = std::make_shared<LoggerFacade>(name, level);
    m_state->loggers.emplace(name, logger);
    return logger;
}

void LogManager::AddConsoleSink() { AddConsoleSink(std::cerr); }

void LogManager::AddConsoleSink(std::ostream& out)
{
    std::lock_guard const lock(m_state->mutex);
    m_state->consoles.try_emplace(&out, m_state->core, out);
}

void LogManager::RemoveConsoleSink(std::ostream& out)
{
    std::lock_guard const lock(m_state->mutex);
    m_state->consoles.erase(&out);
}

} // namespace Orlek
