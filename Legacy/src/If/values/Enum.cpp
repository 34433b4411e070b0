#include "convert/Change.h"
#include "core/Finding.h"
#include "numbers/Source.h"
#include "record/SerialRecord.h"
#include "text/Text.h"

#include <Legacy/If/Detail/Cast.h>
#include <Legacy/If/Enum.h>

#include <algorithm>

namespace Legacy::If {

namespace {

/// Sets `elem` to the first element with that name or value, or to the end, and tells whether there is one.
template<typename Table, typename Key, typename Iterator>
bool FindBy(Table& table, Key ElemType<int>::*field, Key const& key, Iterator& elem)
{
    elem = std::ranges::find(table, key, field);
    return elem != table.end();
}

} // namespace

EnumInfo::EnumInfo(unsigned int const& id, std::string const& name, Permission_t const& permission, bool localized)
    : InfoFamily(id, name, permission), m_localized(localized)
{}

EnumInfo* EnumInfo::DeepCopy(unsigned int id, std::string const& name, Permission_t const& permission) const
{
    return CopyAs_(id, name, permission, m_localized);
}

ItemBase* EnumInfo::CreateItem() const { return EnumItem::Create(GetId(), m_default); }

int EnumInfo::SetDefault(int value)
{
    if (!m_table.empty() && !IsPresent(value))
        return IfErrNotInSet;
    m_default = value;
    return 0;
}

int EnumInfo::SetTable(std::vector<ElemType<int>> const& table)
{
    m_table = Table(table); // the old elements or the new ones, and none half copied, if memory ends
    if (!m_table.empty() && !IsPresent(m_default))
        m_default = m_table.front().value;
    return 0;
}

int EnumInfo::GetElem(int value, ElemType<int>& elem) const
{
    Table::const_iterator found;
    if (!Find(value, found))
        return IfErrNotFound;
    elem = *found;
    return 0;
}

int EnumInfo::GetElemName(int value, std::string& name) const
{
    Table::const_iterator found;
    if (!Find(value, found))
        return IfErrNotFound;
    name = found->name;
    return 0;
}

int EnumInfo::GetElemVal(std::string const& name, int& value) const
{
    Table::const_iterator found;
    if (!Find(name, found))
        return IfErrNotFound;
    value = found->value;
    return 0;
}

int EnumInfo::AddElem(ElemType<int> const& elem)
{
    auto const taken = [&elem](auto const& row) { return row.value == elem.value || row.name == elem.name; };
    if (std::ranges::any_of(m_table, taken))
        return IfErrAlreadyExists;
    m_table.push_back(elem);
    return 0;
}

int EnumInfo::RemoveElem(int value)
{
    Table::iterator found;
    if (!Find(value, found))
        return IfErrNotFound;
    m_table.erase(found);
    return 0;
}

int EnumInfo::EnableElem(int value) { return SetDisabled_(value, false); }
int EnumInfo::DisableElem(int value) { return SetDisabled_(value, true); }

int EnumInfo::SetDisabled_(int value, bool disabled)
{
    Table::iterator found;
    if (!Find(value, found))
        return IfErrNotFound;
    found->disabled = disabled;
    return 0;
}

bool EnumInfo::IsEnabled(int value) const
{
    Table::const_iterator found;
    return Find(value, found) && !found->disabled;
}

bool EnumInfo::IsPresent(int value) const
{
    Table::const_iterator found;
    return Find(value, found);
}

bool EnumInfo::IsEqualBounds(boost::intrusive_ptr<InfoBase const> const&) const { return false; }

int EnumInfo::MergeBounds(boost::intrusive_ptr<InfoBase const> const& other)
{
    return IsEqualType(other) ? IfErrTypeNotAssignable : IfErrBoundsTypeMismatch;
}

int EnumInfo::AssignValue(boost::intrusive_ptr<InfoBase const> const& source, bool* changed)
{
    return Detail::AssignFrom<EnumInfo>(source, changed, [this](auto& change, auto const& schema) {
        change.AssignList(m_table, schema.m_table);
        change.Assign(m_default, schema.m_default);
    });
}

void EnumInfo::DumpVal(std::ostream& os) const { Detail::DumpHead(os, *this); }

std::ostream& EnumInfo::operator<<(std::ostream& os) const
{
    Detail::PrintList(os, m_table, [](std::ostream& to, ElemType<int> const& elem) {
        to << elem.name << (elem.disabled ? "*" : "") << '=' << elem.value;
    });
    return os << "; default=" << m_default;
}

bool EnumInfo::Find(int value, Table::iterator& elem) { return FindBy(m_table, &ElemType<int>::value, value, elem); }

bool EnumInfo::Find(int value, Table::const_iterator& elem) const
{
    return FindBy(m_table, &ElemType<int>::value, value, elem);
}

bool EnumInfo::Find(std::string const& name, Table::iterator& elem)
{
    return FindBy(m_table, &ElemType<int>::name, name, elem);
}

bool EnumInfo::Find(std::string const& name, Table::const_iterator& elem) const
{
    return FindBy(m_table, &ElemType<int>::name, name, elem);
}

EnumItem::EnumItem(unsigned int id) : ValueItem(id) {}

EnumItem* EnumItem::DeepCopy(unsigned int id) const { return CopyAs_(id); }

void EnumItem::SetVal(int value, EnumInfo const& info) { m_value = info.IsEnabled(value) ? value : info.GetDefault(); }

int EnumItem::AssignArrayValue(boost::intrusive_ptr<ItemBase const> const& source, unsigned int index, bool* changed)
{
    if (!source)
        return IfErrNullSource;
    int value = 0;
    if (int const code = Detail::ReadNumber(*source, index, value))
        return code;
    Detail::Change change;
    change.Assign(m_value, value);
    return change.Report(changed);
}

unsigned int EnumItem::GetSerialDataSize() const { return sizeof(m_value); }

int EnumItem::Serialize(SerialStruct_t* record) const { return Detail::WriteNumberRecord(*this, record, m_value); }

int EnumItem::Deserialize(ConstSerialStruct_t const* record)
{
    return Detail::ReadNumberRecord(*this, record, m_value);
}

std::shared_ptr<ResultElem const> EnumItem::Validate(boost::intrusive_ptr<InfoBase const> const& info)
{
    auto const* const schema = Detail::CastTo<EnumInfo>(info);
    if (!schema)
        return Detail::TypeMismatch(info, *this);
    if (!schema->IsPresent(m_value))
        return Detail::MakeFinding("TypesSystemEnumValidationValue", info, *this, m_value);
    return {};
}

bool EnumItem::SetValFromStream(std::istream& in, std::ostream& out, boost::intrusive_ptr<InfoBase const> const&)
{
    unsigned int value = 0;
    if (!Detail::ReadValue(in, out, "enumItem", value))
        return false;
    m_value = static_cast<int>(value);
    return true;
}

std::ostream& EnumItem::operator<<(std::ostream& os) const { return os << m_value; }

} // namespace Legacy::If
