#pragma once

#include <Legacy/If/Export.h>
#include <Legacy/If/ResultElem.h>

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

namespace Orlek {
class LoggerFacade;
}

namespace Legacy::If {

/// Findings gathered under one identifier, to be filtered by severity and logged.
///
/// A validation returns one finding at a time; callers gather those of many parameters here:
///
///     Result result(deviceId);
///     for (auto const& [info, item] : parameters)
///         result.AddResultElem(item->Validate(info));
///
/// Findings are shared and never dropped. Const operations may run on many threads while none changes the object.
class LEGACY_IF_API Result
{
public:
    /// Nothing gathered yet.
    /// @param id what was validated; the caller's own.
    explicit Result(unsigned int id) noexcept : m_id(id) {}

    /// A copy shares the findings.
    Result(Result const& other);
    Result& operator=(Result const& other);

    /// A copy, made by the copy constructor.
    [[nodiscard]] virtual std::shared_ptr<Result> Clone() const;

    virtual ~Result();

    /// Appends a finding; a null pointer, which stands for a validation that passed, is ignored.
    void AddResultElem(std::shared_ptr<ResultElem const> elem);

    /// Appends, in order, the findings whose severity is `level` or above. Room is made for all that are given and for
    /// no more: who gathers thousands of small lists does better with #AddResultElem, which makes room ahead.
    void AddResults(std::vector<std::shared_ptr<ResultElem const>> const& elems, Orlek::SeverityLevel_t level);
    /// The same with the findings of another collection; nothing happens for null and for this very collection.
    void AddResults(std::shared_ptr<Result const> const& other, Orlek::SeverityLevel_t level);

    unsigned int const& GetId() const noexcept { return m_id; }
    /// The findings in order of arrival.
    std::vector<std::shared_ptr<ResultElem const>> const& GetResultArray() const noexcept { return m_results; }
    std::size_t GetNumResults() const noexcept { return m_results.size(); }

    /// Whether any finding has the severity `level` or above.
    bool ContainsResultOfSeverity(Orlek::SeverityLevel_t level) const;

    /// Always false: no finding asks to be shown at once. Callers that present findings ask for this and go on.
    bool ContainsPromptableResultElem() const noexcept { return false; }
    /// Does nothing, there being no such findings.
    void RemovePromptableResultElems() noexcept {}

    /// Logs one record for each finding whose level `logger` lets pass. Its message is `prefix` and the finding's text.
    ///
    /// Contract: a finding's text is empty, so the message is `prefix` alone; and each record carries one fixed place
    /// as its attribute "Location", by which log readers recognise these records.
    /// @param logger null is allowed and logs nothing.
    void LogResults(std::shared_ptr<Orlek::LoggerFacade> logger, std::string const& prefix) const;

private:
    unsigned int m_id;
    std::vector<std::shared_ptr<ResultElem const>> m_results;
};

} // namespace Legacy::If
