#include "convert/Change.h"
#include "core/Finding.h"
#include "text/Text.h"

#include <Legacy/If/Detail/Cast.h>
#include <Legacy/If/Extended.h>

namespace Legacy::If {

ExtendedInfo::ExtendedInfo(unsigned int const& id, std::string const& name, Permission_t const& permission)
    : InfoFamily(id, name, permission)
{}

ExtendedInfo* ExtendedInfo::DeepCopy(unsigned int id, std::string const& name, Permission_t const& permission) const
{
    return CopyAs_(id, name, permission);
}

ItemBase* ExtendedInfo::CreateItem() const { return ExtendedItem::Create(GetId(), m_default); }

int ExtendedInfo::SetDefault(std::pair<std::string, std::string> const& texts)
{
    m_default = std::pair(texts); // both or none, also if memory ends
    return 0;
}

bool ExtendedInfo::IsEqualBounds(boost::intrusive_ptr<InfoBase const> const&) const { return false; }

int ExtendedInfo::MergeBounds(boost::intrusive_ptr<InfoBase const> const&) { return IfErrTypeNotAssignable; }

int ExtendedInfo::AssignValue(boost::intrusive_ptr<InfoBase const> const& source, bool* changed)
{
    return Detail::AssignFrom<ExtendedInfo>(
        source, changed, [this](auto& change, auto const& schema) { change.Assign(m_default, schema.m_default); });
}

void ExtendedInfo::DumpVal(std::ostream& os) const { Detail::DumpHead(os, *this); }

std::ostream& ExtendedInfo::operator<<(std::ostream& os) const { return os; }

ExtendedItem::ExtendedItem(unsigned int id) : ValueItem(id) {}

ExtendedItem* ExtendedItem::DeepCopy(unsigned int id) const { return CopyAs_(id); }

void ExtendedItem::SetVal(std::pair<std::string, std::string> const& value, ExtendedInfo const&) { SetVal(value); }

bool ExtendedItem::IsEmpty() const { return m_value.first.empty(); }

int ExtendedItem::AssignArrayValue(boost::intrusive_ptr<ItemBase const> const& source, unsigned int, bool* changed)
{
    return Detail::AssignFrom<ExtendedItem>(
        source, changed, [this](auto& change, auto const& item) { change.Assign(m_value, item.m_value); });
}

unsigned int ExtendedItem::GetSerialDataSize() const { return 0; }

int ExtendedItem::Serialize(SerialStruct_t*) const { return IfErrNotSerializable; }

int ExtendedItem::Deserialize(ConstSerialStruct_t const*) { return IfErrNotSerializable; }

std::shared_ptr<ResultElem const> ExtendedItem::Validate(boost::intrusive_ptr<InfoBase const> const& info)
{
    if (!Detail::CastTo<ExtendedInfo>(info))
        return Detail::TypeMismatch(info, *this);
    return {};
}

bool ExtendedItem::SetValFromStream(std::istream&, std::ostream&, boost::intrusive_ptr<InfoBase const> const&)
{
    return false;
}

void ExtendedItem::DumpVal(std::ostream& os) const { Detail::DumpHead(os, *this); }

std::ostream& ExtendedItem::operator<<(std::ostream& os) const { return os; }

} // namespace Legacy::If
