// Models the machine that it runs on as a networked device: a tour of the library from schemas over validation, files
// and deltas to a directory that tells of its changes.

#include "Device.h"
#include "Files.h"
#include "Findings.h"
#include "HostReader.h"
#include "Model.h"
#include "Options.h"
#include "Report.h"
#include "ValueText.h"

#include <Legacy/If/Numeric.h>
#include <Legacy/If/String.h>
#include <Legacy/IfKit/Difference.h>
#include <Legacy/IfKit/ValueText.h>

#include <chrono>
#include <exception>
#include <iostream>
#include <memory>
#include <optional>

namespace HostNetwork {

namespace {

using namespace Legacy::If;
using namespace Legacy::IfKit;

using ItemHolderPtr = boost::intrusive_ptr<ItemHolder const>;

enum ExitStatus_t
{
    k_success = 0,
    k_failure = 1,
    k_badUsage = 2,
};

/// Writes a device to its two files and builds a second device from what they say.
void SendAndRebuild(Device const& device, std::string const& path, Device& replica, Summary_t& summary, Report& report)
{
    summary.records = WriteFiles(device, path);
    ReadFiles(path, replica);
    summary.fileSize = std::filesystem::file_size(path);
    report.Line(Count(summary.records, "record") + " written to " + Printable(path) + ", " +
                Count(summary.fileSize, "byte"));
    report.Line("read back into a second directory; schemas have no record and came from " +
                Printable(SchemaPath(path)));
}

bool ReportAgreement(Device const& device, Device const& replica, Report& report)
{
    auto const differences = DifferenceLines(device, replica);
    for (auto const& difference : differences)
        report.Line("DIFFERENT  " + difference);
    if (differences.empty())
        report.Line("both directories agree in sections, schemas and values");
    return differences.empty();
}

/// Sets a number to what another number says, whatever the element types of both are.
void SetNumber(Device& device, InfoBase const& info, unsigned int number)
{
    boost::intrusive_ptr<ItemBase> const source(NumericItem<U32Traits>::Create(0, number));
    boost::intrusive_ptr<ItemBase> const item(info.CreateItem());
    item->AssignValue(source, nullptr);
    device.SetItem(ItemHolderPtr(new ItemHolder(item)));
}

/// Gives the schema of a finding's number room for the value, as a new release of the device might.
void Widen(Device& device, Finding_t const& finding)
{
    auto const holder = device.FindInfo(finding.result.GetId());
    auto const* const value = dynamic_cast<NumericItem<U32Traits> const*>(finding.item.get());
    boost::intrusive_ptr<InfoHolder> const wider(holder ? holder->DeepCopy() : nullptr);
    auto* const info = wider ? dynamic_cast<NumericInfo<U32Traits>*>(wider->GetInfo().get()) : nullptr;
    if (!value || !info || value->GetVal() < info->GetMax())
        return;
    info->SetMax(value->GetVal());
    device.SetInfo(wider);
}

/// Changes the model, not the machine, and shows what listeners hear of it.
void ShowChanges(Device& device, Device& replica, std::vector<Finding_t> const& findings, Report& report)
{
    boost::signals2::scoped_connection const watch =
        device.Connect([&](Change_t const& change) { report.Line(ShownChange(device, change)); });
    if (auto const ttl = device.FindInfo("protocol/ipv4", "ip_default_ttl")) {
        SetNumber(device, *ttl->GetInfo(), 128);
        boost::intrusive_ptr<ItemBase> const text(StringItem::Create(ttl->GetInfo()->GetId(), "many"));
        int const code = device.SetItem(ItemHolderPtr(new ItemHolder(text)));
        report.Line("(none)  a text for ip_default_ttl is refused with code " + std::to_string(code));
    }
    if (auto const name = device.FindInfo("host", "hostname")) {
        boost::intrusive_ptr<ItemBase> const text(StringItem::Create(name->GetInfo()->GetId(), "model-of-this-host"));
        device.SetItem(ItemHolderPtr(new ItemHolder(text)));
    }
    for (auto const& finding : findings)
        Widen(device, finding);

    std::size_t infos = 0;
    std::size_t items = 0;
    boost::signals2::scoped_connection const counter =
        replica.Connect([&](Change_t const& change) { ++(change.IsSchema() ? infos : items); });
    int const code = replica.UpdateFromDelta(MakeDelta(replica, device), true, true);
    report.Line("the second directory took over what differed from a delta, code " + std::to_string(code) +
                "; its listener heard of " + Count(infos, "schema") + " and " + Count(items, "value"));
}

/// Shows an existing record file.
int ShowFile(Options_t const& options, Report& report, Summary_t& summary, Device& device)
{
    summary.records = ReadFiles(options.read, device);
    summary.fileSize = std::filesystem::file_size(options.read);
    Result result(0);
    auto const findings = Examine(device, result);
    summary.findings = result.GetNumResults();
    report.Title("The networked device in " + Printable(options.read), device);
    report.Sections(device, findings);
    report.Values(device);
    report.Findings(findings);
    return k_success;
}

int ShowHost(Options_t const& options, Report& report, Summary_t& summary, Device& device)
{
    Notes_t notes;
    DescribeHost(HostReader(options.root), device, notes);
    Result result(0);
    auto const findings = Examine(device, result);
    summary.findings = result.GetNumResults();
    report.Title("This machine as a networked device", device);
    report.Notes(notes);
    report.Sections(device, findings);
    report.Values(device);
    report.Findings(findings);

    report.Heading("Records");
    std::optional<TemporaryFolder> temporary;
    std::string const path = options.file.empty() ? temporary.emplace().PathOf("device.rec") : options.file;
    Device replica;
    SendAndRebuild(device, path, replica, summary, report);
    bool agree = ReportAgreement(device, replica, report);

    report.Heading("Changes");
    ShowChanges(device, replica, findings, report);
    agree = ReportAgreement(device, replica, report) && agree;
    Result left(0);
    Examine(device, left);
    if (!findings.empty())
        report.Line(Count(left.GetNumResults(), "finding") + " left of " + std::to_string(findings.size()) +
                    ", since schemas have been widened");
    return agree ? k_success : k_failure;
}

int Run(Options_t const& options)
{
    auto const start = std::chrono::steady_clock::now();
    Report report(std::cout, options);
    Summary_t summary;
    Device device;
    int const status =
        options.read.empty() ? ShowHost(options, report, summary, device) : ShowFile(options, report, summary, device);
    summary.time = std::chrono::steady_clock::now() - start;
    report.Summary(device, summary);
    return status;
}

int Main(std::span<char* const> arguments)
{
    try {
        Options_t const options = ParseOptions(arguments);
        int status = k_success;
        if (options.help)
            std::cout << HelpText();
        else
            status = Run(options);
        if (!std::cout.flush()) {
            std::cerr << "host_network: the output cannot be written\n";
            return k_failure;
        }
        return status;
    } catch (UsageError const& error) {
        std::cout.flush();
        std::cerr << "host_network: " << Printable(error.what()) << "\nSee host_network --help.\n";
        return k_badUsage;
    } catch (std::exception const& error) {
        std::cout.flush();
        std::cerr << "host_network: " << Printable(error.what()) << '\n';
        return k_failure;
    }
}

} // namespace

} // namespace HostNetwork

int main(int argc, char* argv[])
{
    std::span<char* const> const arguments(argv, static_cast<std::size_t>(argc));
    return HostNetwork::Main(arguments.empty() ? arguments : arguments.subspan(1));
}
