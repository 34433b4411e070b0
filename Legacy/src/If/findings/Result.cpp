#include "text/Text.h"

#include <Legacy/If/Result.h>
#include <Orlek/LogExec.h>
#include <Orlek/LogLevel.h>
#include <Orlek/LogManager.h>
#include <Orlek/LoggerFacade.h>

#include <boost/log/keywords/severity.hpp>
#include <boost/log/sources/record_ostream.hpp>

#include <utility>

namespace Legacy::If {

namespace {

/// The library's own channel, asked for when the library is loaded and kept until it is unloaded, so that the channel
/// is there for whoever sets its level. Findings go to the caller's logger; nothing is written here.
std::shared_ptr<Orlek::LoggerFacade> const s_channel =
    Orlek::LogManager::Instance().GetLogger("Orlek.ConfigItem", nullptr, "");

void LogFinding(Orlek::LoggerFacade& logger, Orlek::LogLevel_t level, std::string const& prefix,
                ResultElem const& finding)
{
    auto& channel = *logger.get();
    boost::log::record record = channel.open_record(boost::log::keywords::severity = level);
    if (!record)
        return;
    std::string const text = finding.GetAsString();
    Orlek::LogExec const message("%s%s");
    // Contract: the place is the one that log readers know these records by, not where this code stands today.
    Orlek::LoggerFacade::AttachLocation(
        record, Orlek::CodeLocation("Legacy\\src\\If\\Result", "Legacy::If::Result::LogResults", 161));
    boost::log::record_ostream(record) << (message % prefix % text) << std::flush;
    channel.push_record(std::move(record)); // not reached, and the record dropped, if anything above throws
}

} // namespace

Result::Result(Result const& other) = default;

Result& Result::operator=(Result const& other) = default;

std::shared_ptr<Result> Result::Clone() const { return std::make_shared<Result>(*this); }

Result::~Result() = default;

void Result::AddResultElem(std::shared_ptr<ResultElem const> elem)
{
    if (elem)
        m_results.push_back(std::move(elem));
}

void Result::AddResults(std::vector<std::shared_ptr<ResultElem const>> const& elems, Orlek::SeverityLevel_t level)
{
    if (elems.size() > m_results.max_size() - m_results.size())
        throw std::length_error(Detail::k_tooLong);
    // By count and index, so that a collection can be given its own findings.
    std::size_t const count = elems.size();
    m_results.reserve(m_results.size() + count);
    for (std::size_t i = 0; i < count; ++i) {
        if (elems[i] && elems[i]->GetSeverityLevel() >= level)
            m_results.push_back(elems[i]);
    }
}

void Result::AddResults(std::shared_ptr<Result const> const& other, Orlek::SeverityLevel_t level)
{
    if (other && other.get() != this)
        AddResults(other->m_results, level);
}

bool Result::ContainsResultOfSeverity(Orlek::SeverityLevel_t level) const
{
    for (auto const& finding : m_results) {
        if (finding->GetSeverityLevel() >= level)
            return true;
    }
    return false;
}

void Result::LogResults(std::shared_ptr<Orlek::LoggerFacade> logger, std::string const& prefix) const
{
    if (!logger)
        return;
    for (auto const& finding : m_results) {
        Orlek::LogLevel_t const level = Orlek::GetLogLevelFromSeverity(finding->GetSeverityLevel());
        if (logger->get() && logger->IsEnabled(level))
            LogFinding(*logger, level, prefix, *finding);
    }
}

} // namespace Legacy::If
