#pragma once

#include "Device.h"
#include "Findings.h"
#include "Model.h"
#include "Options.h"

#include <chrono>
#include <cstddef>
#include <ostream>
#include <string>
#include <vector>

namespace HostNetwork {

/// What the closing summary tells.
struct Summary_t
{
    std::size_t records = 0;  ///< values in the record file
    std::size_t fileSize = 0; ///< in bytes
    std::size_t findings = 0;
    std::chrono::steady_clock::duration time{};
};

/// Prints what the program has to say, as much of it as the options ask for.
class Report
{
public:
    Report(std::ostream& out, Options_t const& options);

    /// Opens the report on a device.
    /// @throws UsageError if the options name a section that the device does not have.
    void Title(std::string const& text, Device const& device);
    void Heading(std::string const& text);
    /// One line of a chapter.
    void Line(std::string const& text);

    /// What could not be had from the host.
    void Notes(Notes_t const& notes);
    /// All sections with their packed ids and the numbers of what is in them.
    void Sections(Device const& device, std::vector<Finding_t> const& findings);
    /// Schemas and values of the sections that are to be shown.
    void Values(Device const& device);
    /// Logs the findings and shows each with what reached the log and with its message.
    void Findings(std::vector<Finding_t> const& findings);
    void Summary(Device const& device, Summary_t const& summary);

private:
    bool IsQuiet_() const noexcept { return m_options.detail == Detail_t::Quiet; }
    bool IsFull_() const noexcept { return m_options.detail == Detail_t::Full; }
    /// Whether the options ask for the section of that path, or the one with the parameter of that path.
    bool IsChosen_(std::string const& path) const;
    /// Whether the values of the section are to be shown, if `interface` is the path of the one that serves as example.
    bool IsWanted_(std::string const& path, std::string const& interface) const;
    /// Shows the first entries, or all if everything is asked for, and tells how many are left.
    template<typename Entry, typename Show>
    void Shorten_(std::vector<Entry> const& entries, std::size_t limit, Show&& show);

    std::ostream& m_out;
    Options_t const& m_options;
    std::size_t m_lineLength; // unless everything is asked for
};

} // namespace HostNetwork
