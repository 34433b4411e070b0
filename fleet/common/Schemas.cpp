#include "common/Schemas.h"

#include "common/Topics.h"
#include "common/Wire.h"

#include <Legacy/If/String.h>
#include <Legacy/IfKit/Difference.h>
#include <Legacy/IfKit/Explain.h>
#include <Legacy/IfKit/Json.h>
#include <Legacy/IfKit/Records.h>
#include <Legacy/IfKit/ValueText.h>

#include <boost/iostreams/device/array.hpp>
#include <boost/iostreams/stream.hpp>

#include <sstream>
#include <stdexcept>
#include <vector>

namespace Fleet {

using namespace Legacy::If;
using namespace Legacy::IfKit;

namespace {

constexpr unsigned int k_writableBit = 0x0002;
constexpr char k_notValidated[] = "TypesSystemIllegalValidatationError";

} // namespace

std::string WriteSchemas(InfoItemDirectory const& directory)
{
    std::vector<boost::intrusive_ptr<InfoItemHolder const>> parameters;
    directory.GetAllInfoItems(parameters);
    for (auto const& parameter : parameters) {
        auto const path = PathOf(directory, *parameter->GetInfo()->GetInfo());
        if (!IsPath(path))
            throw std::runtime_error("a parameter cannot be published, since its path is no topic: " + Printable(path));
    }
    std::ostringstream text;
    if (auto const fault = WriteJson(text, directory, JsonContent_t::Schemas))
        throw std::runtime_error("the schemas cannot be published: " + fault->ToString());
    if (text.view().size() > k_maxSchema)
        throw std::runtime_error("the schemas cannot be published: they take " + std::to_string(text.view().size()) +
                                 " bytes, more than " + std::to_string(k_maxSchema));
    return text.str();
}

bool Travels(InfoBase const& info)
{
    std::vector<unsigned char> record;
    return AppendRecord(*ItemPtr(info.CreateItem()), record) == 0;
}

SchemasPtr ReadSchemas(std::string_view text, std::string& fault)
{
    if (text.size() > k_maxSchema) {
        fault = "a document of " + std::to_string(text.size()) + " bytes, more than " + std::to_string(k_maxSchema);
        return {};
    }
    auto const schemas = std::make_shared<Schemas_t>();
    schemas->delta = std::make_shared<InfoItemDirectoryDelta>();
    auto& delta = *schemas->delta;
    JsonParts_t parts;
    parts.section = [&](SectionId const& section) {
        return delta.AddSection(section) == 0 ? std::string() : "a section stands twice";
    };
    parts.info = [&](JsonParts_t::InfoPtr const& info) {
        return delta.AddInfo(info) == 0 ? std::string() : "a schema stands twice";
    };
    parts.item = [](JsonParts_t::ItemPtr const&, std::string const&) { return std::string(); };
    boost::iostreams::stream<boost::iostreams::array_source> stream(text.data(), text.size());
    if (auto const found = ReadJson(stream, parts)) {
        fault = Printable(found->ToString());
        return {};
    }
    // Those who take them over rely on it that they fit together.
    InfoItemDirectory directory;
    if (int const code = directory.UpdateFromDelta(schemas->delta, true, false)) {
        fault = "the schemas make no directory, code " + std::to_string(code);
        return {};
    }
    for (auto const& [id, info] : delta.GetInfoHolderPtrMap_addMod())
        if (Travels(*info->GetInfo()))
            schemas->ids.push_back(id);
    return schemas;
}

SchemasPtr SchemaCache::Read(std::string_view text, std::string& fault)
{
    auto const known = m_known.find(text);
    if (known != m_known.end())
        if (auto schemas = known->second.lock())
            return schemas;
    auto schemas = ReadSchemas(text, fault);
    if (!schemas)
        return schemas;
    if (m_known.size() >= m_sweepAt) {
        std::erase_if(m_known, [](auto const& entry) { return entry.second.expired(); });
        m_sweepAt = 64 + 2 * m_known.size();
    }
    m_known.insert_or_assign(std::string(text), schemas);
    return schemas;
}

bool IsWritable(InfoBase const& info) { return (info.GetPermission().bits & k_writableBit) != 0; }

LocalizedString Judge(ItemBase const& item, InfoPtr const& info)
{
    LocalizedString result;
    ItemPtr const copy(item.DeepCopy()); // validation is not const
    ExplainEach(*copy, info, [&](MemberPlace place, LocalizedString const& finding) {
        if (finding.GetKey() != k_notValidated) {
            result = finding;
        } else if (!IsWithinBounds(*copy, *info, place)) {
            result = LocalizedString("FleetOutsideBounds");
            result.AddArgument(StringItem::Create(0, info->GetName()));
        }
        return !result.IsValid();
    });
    return result;
}

} // namespace Fleet
