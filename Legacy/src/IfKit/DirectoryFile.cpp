#include <Legacy/IfKit/Difference.h>
#include <Legacy/IfKit/DirectoryFile.h>
#include <Legacy/IfKit/FreshSchema.h>

#include <map>
#include <utility>
#include <variant>

namespace Legacy::IfKit {

using namespace If;

namespace {

using Parameter = boost::intrusive_ptr<InfoItemHolder const>;

/// Puts the entries of a file into a directory.
class Loader
{
public:
    explicit Loader(InfoItemDirectory& directory) : m_directory(directory) {}

    void Take(RecordFileName_t const& name)
    {
        InfoItemSectionId const id(name.id);
        if (id.IsValidSectionId())
            static_cast<void>(m_directory.AddSection(SectionId(std::string(name.text), id))); // values will tell
        else
            m_names.insert_or_assign(name.id, name.text);
    }

    /// @return 0 or why the value was not taken.
    int Take(Record_t const& record)
    {
        boost::intrusive_ptr<ItemBase> item;
        if (int const code = record.Rebuild(item))
            return code;
        if (!m_directory.FindInfo(record.id))
            if (int const code = Enter_(*item))
                return code;
        return m_directory.SetItem(new ItemHolder(item));
    }

private:
    int Enter_(ItemBase const& item)
    {
        auto const name = m_names.find(item.GetId());
        if (name == m_names.end())
            return IfErrNotFound;
        auto const info = FreshSchema(item.GetType(), item.GetNumericType(), item.GetId(), name->second);
        return info ? m_directory.AddInfo(new InfoHolder(info)) : IfErrTypeNotAssignable;
    }

    InfoItemDirectory& m_directory;
    std::map<unsigned int, std::string> m_names; // of the parameters
};

} // namespace

DirectoryTransfer_t SaveDirectory(InfoItemDirectory const& directory, std::string const& path)
{
    DirectoryTransfer_t transfer;
    RecordFileWriter writer(path);
    for (auto const& section : AllSections(directory))
        writer.AppendName(section.GetInfoItemSectionId(), section.GetSectionName());
    std::vector<Parameter> parameters;
    directory.GetAllInfoItems(parameters);
    for (auto const& parameter : parameters) {
        auto const& info = *parameter->GetInfo()->GetInfo();
        writer.AppendName(info.GetId(), info.GetName());
    }
    for (auto const& parameter : parameters) {
        if (!parameter->GetItem())
            continue;
        auto const& item = *parameter->GetItem()->GetItem();
        if (int const code = writer.Append(item))
            transfer.skipped.push_back({item.GetId(), 0, code, item.GetType(), item.GetNumericType()});
        else
            ++transfer.values;
    }
    transfer.error = writer.Commit();
    return transfer;
}

DirectoryTransfer_t LoadDirectory(std::string const& path, InfoItemDirectory& directory)
{
    RecordFileReader reader(path);
    return LoadDirectory(reader, directory);
}

DirectoryTransfer_t LoadDirectory(RecordFileReader& reader, InfoItemDirectory& directory)
{
    DirectoryTransfer_t transfer;
    Loader loader(directory);
    while (auto const entry = reader.NextEntry()) {
        if (auto const* const name = std::get_if<RecordFileName_t>(&*entry)) {
            loader.Take(*name);
            continue;
        }
        auto const& record = std::get<Record_t>(*entry);
        if (int const code = loader.Take(record))
            transfer.skipped.push_back({record.id, reader.GetOffset(), code, record.type, record.numericType});
        else
            ++transfer.values;
    }
    transfer.error = reader.GetError();
    return transfer;
}

} // namespace Legacy::IfKit
