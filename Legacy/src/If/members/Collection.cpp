#include "text/Text.h"

#include <Legacy/If/Collection.h>
#include <Legacy/If/Detail/Cast.h>

#include <ostream>

namespace Legacy::If {

CollectionInfo::CollectionInfo(unsigned int const& id, std::string const& name, Permission_t const& permission)
    : InfoList(id, name, permission)
{}

CollectionInfo* CollectionInfo::DeepCopy(unsigned int id, std::string const& name, Permission_t const& permission) const
{
    return DuplicateAs_(id, name, permission);
}

ItemBase* CollectionInfo::CreateItem() const { return new CollectionItem(GetId()); }

CollectionItem::CollectionItem(unsigned int id) : ItemList(id) {}

CollectionItem* CollectionItem::DeepCopy(unsigned int id) const { return DuplicateAs_(id); }

int CollectionItem::AssignArrayValue(boost::intrusive_ptr<ItemBase const> const& source, unsigned int, bool* changed)
{
    if (!source)
        return IfErrNullSource;
    auto const* const collection = Detail::SourceAs<CollectionItem>(*source);
    if (!collection)
        return IfErrTypeNotAssignable;
    m_members = collection->m_members;
    if (changed)
        *changed = true;
    return 0;
}

unsigned int CollectionItem::GetSerialDataSize() const { return 0; }
int CollectionItem::Serialize(SerialStruct_t*) const { return IfErrTypeNotAssignable; }
int CollectionItem::Deserialize(ConstSerialStruct_t const*) { return IfErrTypeNotAssignable; }

std::shared_ptr<ResultElem const> CollectionItem::Validate(boost::intrusive_ptr<InfoBase const> const&) { return {}; }

bool CollectionItem::SetValFromStream(std::istream&, std::ostream& out, boost::intrusive_ptr<InfoBase const> const&)
{
    return Detail::NotReadable(out);
}

} // namespace Legacy::If
