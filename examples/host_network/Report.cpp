#include "Report.h"

#include "ValueText.h"

#include <Legacy/If/FormattedInfoItemDump.h>
#include <Legacy/If/Result.h>
#include <Legacy/IfKit/Difference.h>
#include <Legacy/IfKit/ValueText.h>
#include <Orlek/LogManager.h>
#include <Orlek/LoggerFacade.h>

#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <iomanip>
#include <iterator>
#include <map>
#include <sstream>

namespace HostNetwork {

namespace {

using namespace Legacy::If;
using Legacy::IfKit::AllSections;
using Legacy::IfKit::Printable;
using Legacy::IfKit::ValueText;

constexpr std::size_t k_lineLength = 118;   // where there is no terminal
constexpr std::size_t k_numbersLength = 42; // of the columns behind the paths of sections
constexpr std::size_t k_notesShown = 5;
constexpr std::size_t k_findingsShown = 12;
constexpr char const* k_indent = "  ";

/// The width of the terminal, if the output goes to one.
std::size_t LineLength()
{
    winsize size = {};
    bool const isKnown = ::ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > k_numbersLength + 20;
    return isKnown ? size.ws_col : k_lineLength;
}

/// As much of a text as fits, with a mark where it was cut.
std::string Cut(std::string const& text, std::size_t length)
{
    if (text.size() <= length)
        return text;
    std::size_t end = length - 3;
    while (end > 0 && (static_cast<unsigned char>(text[end]) & 0xC0) == 0x80)
        --end; // not in the middle of a character
    return text.substr(0, end) + "...";
}

std::string SectionNumber(SectionId const& section)
{
    std::ostringstream text;
    text << "0x" << std::hex << std::setfill('0') << std::setw(8)
         << static_cast<unsigned int>(section.GetInfoItemSectionId());
    return text.str();
}

std::string SizeText(std::size_t bytes)
{
    std::ostringstream text;
    if (bytes < 1024)
        text << Count(bytes, "byte");
    else
        text << std::fixed << std::setprecision(1) << static_cast<double>(bytes) / 1024.0 << " KiB";
    return text.str();
}

/// Lets the log speak about one finding and returns what reached it.
std::string Logged(Finding_t const& finding)
{
    std::ostringstream log;
    auto& manager = Orlek::LogManager::Instance();
    manager.AddConsoleSink(log);
    finding.result.LogResults(manager.GetLogger("HostNetwork"), finding.path);
    manager.RemoveConsoleSink(log);
    // The line ends with the place in the code that logs findings, which is the same for all.
    std::string const line = log.str();
    return line.substr(0, line.rfind(" ("));
}

/// The interface whose values serve as example: one with an address, and the loopback only where there is no other.
std::string ExampleInterface(Device const& device, std::vector<SectionId> const& sections)
{
    auto const rank = [&](std::string const& path) {
        return path == "interface/lo" ? 1 : device.FindInfo(path + "/ipv4", "address 1") ? 3 : 2;
    };
    std::string example;
    for (auto const& section : sections) {
        std::string const& path = section.GetSectionName();
        bool const isInterface = path.starts_with("interface/") && section.GetSectionDepth() == 2;
        if (isInterface && (example.empty() || rank(path) > rank(example)))
            example = path;
    }
    return example;
}

} // namespace

Report::Report(std::ostream& out, Options_t const& options) : m_out(out), m_options(options), m_lineLength(LineLength())
{}

void Report::Title(std::string const& text, Device const& device)
{
    auto const sections = AllSections(device);
    if (std::none_of(sections.begin(), sections.end(), [&](auto const& s) { return IsChosen_(s.GetSectionName()); }))
        throw UsageError("there is no section '" + m_options.section + "'");
    if (!IsQuiet_())
        m_out << text << '\n';
}

void Report::Heading(std::string const& text)
{
    if (!IsQuiet_())
        m_out << '\n' << text << '\n';
}

void Report::Line(std::string const& text)
{
    if (!IsQuiet_())
        m_out << k_indent << (IsFull_() ? text : Cut(text, m_lineLength - 2)) << '\n';
}

void Report::Notes(Notes_t const& notes)
{
    // A note starts with the path that it is about.
    Notes_t chosen;
    std::copy_if(notes.begin(), notes.end(), std::back_inserter(chosen),
                 [&](auto const& note) { return IsChosen_(note.substr(0, note.find(':'))); });
    if (!chosen.empty())
        Heading("Not to be had from this host (" + std::to_string(chosen.size()) + ")");
    Shorten_(chosen, k_notesShown, [&](auto const& note) { Line(note); });
}

void Report::Sections(Device const& device, std::vector<Finding_t> const& findings)
{
    if (IsQuiet_())
        return;
    auto const sections = AllSections(device);
    auto const parameters = ParametersBySection(device);
    std::map<InfoItemSectionId, std::size_t> numFindings;
    for (auto const& finding : findings) {
        InfoItemSectionId const id(finding.result.GetId());
        ++numFindings[id.GetSectionId(id.Depth())];
    }
    std::size_t width = 0;
    for (auto const& section : sections)
        width = std::max(width, section.GetSectionName().size());

    Heading("Sections (" + std::to_string(sections.size()) + ")");
    std::size_t const room = IsFull_() ? width : m_lineLength - k_numbersLength - 4;
    int const column = static_cast<int>(std::min(width, room)) + 2;
    m_out << k_indent << std::left << std::setw(column) << "path"
          << "id          parameters  values  findings\n";
    for (auto const& section : sections) {
        if (!IsChosen_(section.GetSectionName()))
            continue;
        auto const found = parameters.find(section.GetInfoItemSectionId());
        auto const here = found == parameters.end() ? std::vector<ParameterPtr>() : found->second;
        auto const values =
            std::count_if(here.begin(), here.end(), [](auto const& p) { return p->GetItem() != nullptr; });
        m_out << k_indent << std::left << std::setw(column) << Cut(Printable(section.GetSectionName()), room)
              << SectionNumber(section) << std::right << std::setw(12) << here.size() << std::setw(8) << values
              << std::setw(10) << numFindings[section.GetInfoItemSectionId()] << '\n';
    }
}

void Report::Values(Device const& device)
{
    auto const sections = AllSections(device);
    auto parameters = ParametersBySection(device);
    std::string const interface = ExampleInterface(device, sections);
    for (auto const& section : sections) {
        std::string const& path = section.GetSectionName();
        auto const& here = parameters[section.GetInfoItemSectionId()];
        if (here.empty() || !IsWanted_(path, interface))
            continue;
        Heading("Values of " + Printable(path));
        for (auto const& parameter : here) {
            std::ostringstream line;
            FormattedInfoItemDump(line, parameter->GetInfo()->GetInfo(),
                                  parameter->GetItem() ? parameter->GetItem()->GetItem() : nullptr);
            Line(Printable(line.str()));
        }
    }
}

void Report::Findings(std::vector<Finding_t> const& findings)
{
    if (IsQuiet_())
        return;
    std::vector<Finding_t> chosen;
    std::copy_if(findings.begin(), findings.end(), std::back_inserter(chosen),
                 [&](auto const& finding) { return IsChosen_(finding.path); });
    Heading("Findings (" + std::to_string(chosen.size()) +
            "): values outside their schema, each as logged and with its message");
    Shorten_(chosen, k_findingsShown, [&](auto const& finding) {
        std::string const unit = finding.unit.empty() ? "" : ' ' + finding.unit;
        Line(Logged(finding) + " = " + ValueText(*finding.item, finding.info.get()) + unit);
        Line("    " + Printable(finding.message.GetString(m_options.language)));
    });
}

void Report::Summary(Device const& device, Summary_t const& summary)
{
    std::vector<ParameterPtr> parameters;
    device.GetAllInfoItems(parameters);
    auto const values =
        std::count_if(parameters.begin(), parameters.end(), [](auto const& p) { return p->GetItem() != nullptr; });
    Heading("Summary");
    m_out << "  sections    " << AllSections(device).size() << '\n'
          << "  parameters  " << parameters.size() << ", " << values << " of them with a value\n"
          << "  records     " << summary.records << " in a file of " << SizeText(summary.fileSize) << '\n'
          << "  findings    " << summary.findings << '\n'
          << "  time        " << std::fixed << std::setprecision(1)
          << std::chrono::duration<double, std::milli>(summary.time).count() << " ms\n";
}

bool Report::IsChosen_(std::string const& path) const
{
    std::string const& chosen = m_options.section;
    return chosen.empty() || path == chosen || path.starts_with(chosen + SectionId::k_sectionDelim);
}

template<typename Entry, typename Show>
void Report::Shorten_(std::vector<Entry> const& entries, std::size_t limit, Show&& show)
{
    std::size_t const shown = IsFull_() ? entries.size() : std::min(entries.size(), limit);
    std::for_each(entries.begin(), entries.begin() + static_cast<std::ptrdiff_t>(shown), show);
    if (shown < entries.size())
        Line("... and " + std::to_string(entries.size() - shown) + " more, see --full");
}

bool Report::IsWanted_(std::string const& path, std::string const& interface) const
{
    if (IsFull_() || !m_options.section.empty())
        return IsChosen_(path);
    return path == "host" || path == interface || path == interface + "/ipv4";
}

} // namespace HostNetwork
