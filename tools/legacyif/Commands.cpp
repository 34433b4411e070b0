#include "Commands.h"

#include "Annotate.h"
#include "Edit.h"
#include "Findings.h"
#include "Store.h"
#include "Terminal.h"

#include <Legacy/IfKit/Difference.h>
#include <Legacy/IfKit/RecordFile.h>
#include <Legacy/IfKit/TypeNames.h>
#include <Legacy/IfKit/ValueText.h>

#include <boost/json/array.hpp>
#include <boost/json/object.hpp>
#include <boost/json/serialize.hpp>

#include <algorithm>
#include <iomanip>
#include <iostream>
#include <map>
#include <sstream>

namespace Command {

using namespace Legacy::If;
using namespace Legacy::IfKit;

namespace {

using ParameterPtr = boost::intrusive_ptr<InfoItemHolder const>;

/// Tells what could not be read. Everything else was shown before.
ExitStatus_t Finish(Store_t const& store, ExitStatus_t status)
{
    std::cout << std::flush;
    for (auto const& lines : {store.skipped, store.damage}) {
        for (auto const& line : lines)
            std::cerr << "legacyif: " << line << '\n';
    }
    return store.damage.empty() ? status : k_trouble;
}

/// The parameters of each section, under its id, in the order of their own.
std::map<unsigned int, std::vector<ParameterPtr>> BySection(InfoItemDirectory const& directory)
{
    std::map<unsigned int, std::vector<ParameterPtr>> sections;
    std::vector<ParameterPtr> parameters;
    directory.GetAllInfoItems(parameters);
    for (auto const& parameter : parameters) {
        InfoItemSectionId const id(parameter->GetInfo()->GetInfo()->GetId());
        sections[id.GetSectionId(id.Depth())].push_back(parameter);
    }
    return sections;
}

std::string TypeText(InfoBase const& info)
{
    std::string text(NameOf(info.GetType()));
    if (info.GetNumericType() != NumericType_t::Undefined)
        text += '(' + std::string(NameOf(info.GetNumericType())) + ')';
    return text;
}

std::string BoundsText(InfoBase const& info)
{
    std::ostringstream os;
    os << info;
    return Printable(os.str());
}

std::vector<std::string> RowOf(Store_t const& store, InfoItemHolder const& parameter, Options_t const& options)
{
    auto const& holder = *parameter.GetInfo();
    auto const& info = *holder.GetInfo();
    std::vector<std::string> row{
        "  " + Printable(info.GetName()), TypeText(info),
        parameter.GetItem() ? ValueText(holder, *parameter.GetItem()->GetItem(), options.language) : "-"};
    std::string findings;
    if (store.hasSchemas) {
        for (auto const& finding : FindingsOf(store.directory, parameter, options.language))
            findings += (findings.empty() ? "" : " ") + finding.message;
        row.push_back(BoundsText(info));
    } else
        row.emplace_back();
    row.push_back(findings);
    return row;
}

std::string HexBytes(std::span<unsigned char const> bytes)
{
    std::ostringstream os;
    os << std::hex << std::setfill('0');
    for (unsigned char const byte : bytes)
        os << (os.tellp() > 0 ? " " : "") << std::setw(2) << static_cast<unsigned int>(byte);
    return os.str();
}

/// A record with a line for each field, and further lines for the bytes of a long one.
void PrintRecord(Record_t const& record, std::uint64_t offset)
{
    constexpr std::size_t k_bytesInLine = 8;
    std::vector<unsigned char> bytes;
    std::string expected;
    auto const fields = Annotate(record, bytes, expected);
    std::size_t end = 0;
    for (auto const& field : fields) {
        end = field.offset + field.size;
        for (std::size_t done = 0; done < field.size; done += k_bytesInLine) {
            std::size_t const size = std::min(k_bytesInLine, field.size - done);
            std::string const hex = HexBytes(std::span(bytes).subspan(field.offset + done, size));
            std::cout << std::hex << std::setfill('0') << std::setw(8) << offset + field.offset + done << std::dec
                      << std::setfill(' ') << "  ";
            if (done == 0)
                std::cout << std::left << std::setw(3 * k_bytesInLine + 1) << hex << std::setw(14) << field.label
                          << field.meaning << std::right << '\n';
            else
                std::cout << hex << '\n';
        }
    }
    if (!expected.empty())
        std::cout << std::hex << std::setfill('0') << std::setw(8) << offset + end << std::dec << std::setfill(' ')
                  << "  stops to make sense: expected " << expected << '\n';
}

ParameterPtr Find(Store_t const& store, Options_t const& options)
{
    auto parameter = store.directory.FindInfoItem(options.path);
    if (!parameter)
        std::cerr << "legacyif: " << Printable(options.file) << ": there is no parameter '" << Printable(options.path)
                  << "'\n";
    return parameter;
}

boost::json::value JsonOf(Finding_t const& finding)
{
    return boost::json::object{
        {"path", finding.path}, {"id", finding.id}, {"key", finding.key}, {"message", finding.message}};
}

} // namespace

ExitStatus_t Show(Options_t const& options)
{
    Store_t const store = ReadStore(options.file, options.schema);
    Screen_t const screen = Screen_t::OfOutput();
    auto const parameters = BySection(store.directory);
    for (auto const& section : AllSections(store.directory)) {
        std::cout << screen.Bold(Printable(section.GetSectionName())) << '\n';
        auto const here = parameters.find(section.GetInfoItemSectionId());
        if (here == parameters.end())
            continue;
        Table table;
        for (auto const& parameter : here->second)
            table.Add(RowOf(store, *parameter, options));
        table.Print(std::cout, screen, 4);
    }
    return Finish(store, k_success);
}

ExitStatus_t Check(Options_t const& options)
{
    Store_t const store = ReadStore(options.file, options.schema);
    std::vector<ParameterPtr> parameters;
    store.directory.GetAllInfoItems(parameters);
    boost::json::array all;
    bool isFine = true;
    for (auto const& parameter : parameters) {
        for (auto const& finding : FindingsOf(store.directory, *parameter, options.language)) {
            isFine = false;
            if (options.format == "json")
                all.push_back(JsonOf(finding));
            else
                std::cout << finding.path << ": " << finding.message << '\n';
        }
    }
    if (options.format == "json")
        std::cout << boost::json::serialize(all) << '\n';
    // A value that its schema has no place for is not what the schema asks for either.
    return Finish(store, isFine && store.skipped.empty() ? k_success : k_finding);
}

ExitStatus_t ToJson(Options_t const& options)
{
    Store_t const store = ReadStore(options.file, options.schema);
    auto const fault = WriteJson(std::cout, store.directory, ContentOf(store),
                                 options.isCompact ? JsonLayout_t::Compact : JsonLayout_t::Indented);
    if (fault)
        throw Failure(Printable(options.file) + ": " + Printable(fault->ToString()));
    if (options.isCompact)
        std::cout << '\n';
    return Finish(store, k_success);
}

ExitStatus_t ToRecords(Options_t const& options)
{
    std::string target = options.second;
    if (target.empty() && options.file == "-")
        throw Failure("the standard input has no name to make that of the file from: give one");
    if (target.empty())
        target =
            (options.file.ends_with(".json") ? options.file.substr(0, options.file.size() - 5) : options.file) + ".rec";
    Store_t const store = ReadStore(options.file, options.schema);
    if (store.damage.empty())
        WriteRecords(store.directory, target);
    return Finish(store, k_success);
}

ExitStatus_t Diff(Options_t const& options)
{
    Store_t const former = ReadStore(options.file, options.schema);
    Store_t const latter = ReadStore(options.second, options.schema);
    auto const lines = DifferenceLines(former.directory, latter.directory, options.language);
    for (auto const& line : lines)
        std::cout << line << '\n';
    auto const status = Finish(former, lines.empty() ? k_success : k_finding);
    return std::max(status, Finish(latter, status));
}

ExitStatus_t ExplainFile(Options_t const& options)
{
    Source source(options.file);
    if (source.IsJson())
        throw Failure(Printable(source.GetName()) + ": byte 0: expected a file of records, found JSON");
    RecordFileReader reader(source.Stream(), source.GetName());
    std::map<unsigned int, std::string> names;
    while (auto const entry = reader.NextEntry()) {
        if (auto const* const name = std::get_if<RecordFileName_t>(&*entry)) {
            names.insert_or_assign(name->id, Printable(name->text));
            continue;
        }
        auto const& record = std::get<Record_t>(*entry);
        std::cout << "record of " << (names.contains(record.id) ? names[record.id] : "no name") << '\n';
        PrintRecord(record, reader.GetOffset());
    }
    std::cout << std::flush;
    if (auto const& error = reader.GetError())
        throw Failure(error->ToText());
    return k_success;
}

ExitStatus_t Get(Options_t const& options)
{
    Store_t const store = ReadStore(options.file, options.schema);
    auto const parameter = Find(store, options);
    if (!parameter || !parameter->GetItem())
        return Finish(store, k_finding);
    auto const& item = *parameter->GetItem()->GetItem();
    if (options.format == "text")
        std::cout << ValueText(*parameter->GetInfo(), item, options.language) << '\n';
    else if (auto const fault = WriteBareJson(std::cout, item, JsonLayout_t::Indented))
        throw Failure(Printable(options.file) + ": " + Printable(fault->ToString()));
    return Finish(store, k_success);
}

ExitStatus_t Set(Options_t const& options)
{
    if (options.file == "-")
        throw Failure("the standard input cannot be changed: name a file");
    Store_t store = ReadStore(options.file, options.schema);
    if (!store.damage.empty() || !store.skipped.empty()) {
        Finish(store, k_trouble);
        throw Failure(Printable(options.file) + ": not changed, since a part of it would be lost");
    }
    auto const parameter = Find(store, options);
    if (!parameter)
        return k_finding;
    auto const item = ParseValue(*parameter->GetInfo()->GetInfo(), options.value);
    if (int const code = store.directory.SetItem(new ItemHolder(item)))
        throw Failure("'" + Printable(options.value) + "' has no place there, code " + std::to_string(code));
    auto const findings =
        store.hasSchemas ? FindingsOf(store.directory, *parameter, options.language) : std::vector<Finding_t>();
    for (auto const& finding : findings)
        std::cerr << "legacyif: " << finding.path << ": " << finding.message << '\n';
    if (!findings.empty())
        return k_finding;
    WriteStore(store, options.file);
    return k_success;
}

} // namespace Command
