#pragma once

#include <Legacy/If/InfoBase.h>
#include <Legacy/If/InfoItemDirectory.h>
#include <Legacy/If/InfoItemDirectoryDelta.h>
#include <Legacy/If/ItemBase.h>
#include <Legacy/If/LocalizedString.h>

#include <boost/smart_ptr/intrusive_ptr.hpp>

#include <cstddef>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

/// What devices and controllers make of schemas alike.
namespace Fleet {

using InfoPtr = boost::intrusive_ptr<Legacy::If::InfoBase>;
using ItemPtr = boost::intrusive_ptr<Legacy::If::ItemBase>;

/// Sections and schemas that nobody changes any more, so that many devices may share them.
struct Schemas_t
{
    std::shared_ptr<Legacy::If::InfoItemDirectoryDelta> delta;
    std::vector<unsigned int> ids; ///< of the parameters whose values have a record and so can travel, ascending
};
using SchemasPtr = std::shared_ptr<Schemas_t const>;

/// Sections and schemas as they travel: a document of JSON, a directory without values.
/// @throws std::runtime_error for schemas that make no such document, are too large, or have a parameter whose path
///         cannot be a topic.
std::string WriteSchemas(Legacy::If::InfoItemDirectory const& directory);

/// Whether values of the schema have a record.
bool Travels(Legacy::If::InfoBase const& info);

/// Reads a document that may come from anywhere, be it a directory or a delta. Values in it are passed over.
/// @param fault becomes why it is no such document, or makes no directory; printable.
/// @return null for such a one.
SchemasPtr ReadSchemas(std::string_view text, std::string& fault);

/// Reads documents as ReadSchemas() does, and equal ones once as long as somebody keeps what they gave.
class SchemaCache
{
public:
    SchemasPtr Read(std::string_view text, std::string& fault);

    /// Number of different documents.
    std::size_t Size() const noexcept { return m_known.size(); }

private:
    std::map<std::string, std::weak_ptr<Schemas_t const>, std::less<>> m_known;
    std::size_t m_sweepAt = 64;
};

/// Whether controllers may set the parameter: a meaning that the fleet gives to a bit of the permission.
bool IsWritable(Legacy::If::InfoBase const& info);

/// What is wrong with a value under its schema, as a message for any language; empty, with `IsValid` false, if nothing
/// is. Unlike `Validate` this also judges the families that validate nothing.
Legacy::If::LocalizedString Judge(Legacy::If::ItemBase const& item, InfoPtr const& info);

} // namespace Fleet
