#include "Store.h"

#include "Terminal.h"

#include <Legacy/IfKit/AtomicFile.h>
#include <Legacy/IfKit/DirectoryFile.h>
#include <Legacy/IfKit/FreshSchema.h>
#include <Legacy/IfKit/TypeNames.h>
#include <Legacy/IfKit/ValueText.h>

#include <cerrno>
#include <filesystem>
#include <fstream>
#include <iomanip>
#include <iostream>
#include <memory>
#include <sstream>
#include <system_error>

namespace Command {

using namespace Legacy::If;
using namespace Legacy::IfKit;

namespace {

std::string Hex(unsigned int id)
{
    std::ostringstream os;
    os << "0x" << std::hex << std::setfill('0') << std::setw(8) << id;
    return os.str();
}

std::string SkippedText(std::string const& name, DirectoryTransfer_t::Skipped_t const& skipped)
{
    auto const type = NameOf(skipped.type);
    std::string const what =
        type.empty() ? "type " + std::to_string(static_cast<int>(skipped.type)) : std::string(type);
    return Printable(name) + ": byte " + std::to_string(skipped.offset) + ": skipped the value " + Hex(skipped.id) +
           " of " + what + ", expected one that fits its parameter (code " + std::to_string(skipped.code) + ")";
}

void ReadRecords(Source& source, Store_t& store)
{
    RecordFileReader reader(source.Stream(), source.GetName());
    auto const transfer = LoadDirectory(reader, store.directory);
    for (auto const& skipped : transfer.skipped)
        store.skipped.push_back(SkippedText(source.GetName(), skipped));
    if (transfer.error)
        store.damage.push_back(transfer.error->ToText());
}

/// Puts what a document says into a directory as far as it goes.
class Collector
{
public:
    Collector(std::string const& name, Store_t& store) : m_name(name), m_store(store) {}

    JsonParts_t Parts()
    {
        JsonParts_t parts;
        parts.section = [this](SectionId const& section) {
            Note_(m_store.directory.AddSection(section), "a section");
            return std::string();
        };
        parts.info = [this](JsonParts_t::InfoPtr const& info) {
            m_infos.push_back(info);
            return std::string();
        };
        parts.item = [this](JsonParts_t::ItemPtr const& item, std::string const& name) {
            m_items.emplace_back(item, name);
            return std::string();
        };
        return parts;
    }

    /// To be called when all was read: the parts stand in any order.
    void Finish()
    {
        for (auto const& info : m_infos) {
            m_store.hasSchemas = true;
            if (!m_store.directory.FindInfo(info->GetInfo()->GetId()))
                Note_(m_store.directory.AddInfo(info), "the schema " + Hex(info->GetInfo()->GetId()));
        }
        for (auto const& [item, name] : m_items) {
            ItemBase const& value = *item->GetItem();
            if (!m_store.directory.FindInfo(value.GetId())) {
                auto const info = FreshSchema(value.GetType(), value.GetNumericType(), value.GetId(), name);
                if (info)
                    m_store.directory.AddInfo(new InfoHolder(info));
            }
            Note_(m_store.directory.SetItem(item), "the value " + Hex(value.GetId()));
        }
    }

private:
    void Note_(int code, std::string const& what)
    {
        if (code != 0)
            m_store.skipped.push_back(Printable(m_name) + ": skipped " + what +
                                      ", which has no place in the directory (code " + std::to_string(code) + ")");
    }

    std::string const& m_name;
    Store_t& m_store;
    std::vector<JsonParts_t::InfoPtr> m_infos;
    std::vector<std::pair<JsonParts_t::ItemPtr, std::string>> m_items;
};

void ReadDocument(Source& source, Store_t& store)
{
    Collector collector(source.GetName(), store);
    auto const fault = ReadJson(source.Stream(), collector.Parts());
    collector.Finish();
    if (fault)
        store.damage.push_back(Printable(source.GetName()) + ": " + Printable(fault->ToString()));
}

void ReadSchemas(std::string const& path, Store_t& store)
{
    Source source(path);
    auto const delta = std::make_shared<InfoItemDirectoryDelta>();
    if (auto const fault = ReadJson(source.Stream(), *delta))
        throw Failure(Printable(path) + ": " + Printable(fault->ToString()));
    if (int const code = store.directory.UpdateFromDelta(delta, true, false))
        throw Failure(Printable(path) + ": the schemas make no directory, code " + std::to_string(code));
    store.hasSchemas = true;
}

} // namespace

struct Source::Impl
{
    std::string name;
    std::ifstream file;
    std::unique_ptr<ProgressBuffer> buffer;
    std::unique_ptr<std::istream> stream;
};

Source::Source(std::string const& path) : m_impl(std::make_unique<Impl>())
{
    m_impl->name = path == "-" ? "standard input" : path;
    std::error_code error;
    std::uint64_t size = 0;
    if (path != "-") {
        auto const status = std::filesystem::status(path, error);
        if (std::filesystem::is_directory(status))
            throw Failure(Printable(path) + ": byte 0: expected a file, found a directory");
        errno = 0;
        m_impl->file.open(path, std::ios::binary);
        if (!m_impl->file)
            throw Failure(Printable(path) + ": byte 0: " + std::generic_category().message(errno));
        if (std::filesystem::is_regular_file(status))
            size = std::filesystem::file_size(path, error);
    }
    auto& source = path == "-" ? *std::cin.rdbuf() : *m_impl->file.rdbuf();
    m_impl->buffer = std::make_unique<ProgressBuffer>(source, error ? 0 : size);
    m_impl->stream = std::make_unique<std::istream>(m_impl->buffer.get());
}

Source::~Source() = default;

std::istream& Source::Stream() noexcept { return *m_impl->stream; }

bool Source::IsJson()
{
    int const first = Stream().peek();
    return first == '{' || first == ' ' || first == '\n' || first == '\r' || first == '\t';
}

std::string const& Source::GetName() const noexcept { return m_impl->name; }

Store_t ReadStore(std::string const& path, std::string const& schema)
{
    Store_t store;
    if (!schema.empty())
        ReadSchemas(schema, store);
    Source source(path);
    store.isJson = source.IsJson();
    store.isJson ? ReadDocument(source, store) : ReadRecords(source, store);
    return store;
}

JsonContent_t ContentOf(Store_t const& store)
{
    return store.hasSchemas ? JsonContent_t::Everything : JsonContent_t::Values;
}

void WriteRecords(InfoItemDirectory const& directory, std::string const& path)
{
    auto const transfer = SaveDirectory(directory, path);
    if (transfer.error)
        throw Failure(transfer.error->ToText());
    if (!transfer.skipped.empty())
        throw Failure(Printable(path) + ": " + std::to_string(transfer.skipped.size()) +
                      " values were left out, which have no record");
}

void WriteStore(Store_t const& store, std::string const& path)
{
    if (!store.isJson)
        return WriteRecords(store.directory, path);
    std::ostringstream text;
    if (auto const fault = WriteJson(text, store.directory, ContentOf(store), JsonLayout_t::Indented))
        throw Failure(Printable(path) + ": " + fault->ToString());
    AtomicFile file(path);
    file.Write(text.str());
    if (auto const error = file.Commit())
        throw Failure(error->ToText());
}

} // namespace Command
