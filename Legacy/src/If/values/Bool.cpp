#include "convert/Change.h"
#include "core/Finding.h"
#include "numbers/Source.h"
#include "record/SerialRecord.h"
#include "text/Text.h"

#include <Legacy/If/Bool.h>
#include <Legacy/If/Detail/Cast.h>

namespace Legacy::If {

BoolInfo::BoolInfo(unsigned int const& id, std::string const& name, Permission_t const& permission)
    : InfoFamily(id, name, permission)
{}

BoolInfo* BoolInfo::DeepCopy(unsigned int id, std::string const& name, Permission_t const& permission) const
{
    return CopyAs_(id, name, permission);
}

ItemBase* BoolInfo::CreateItem() const { return BoolItem::Create(GetId(), m_default); }

bool BoolInfo::IsEqualBounds(boost::intrusive_ptr<InfoBase const> const& other) const
{
    auto const* const schema = Detail::CastTo<BoolInfo>(other);
    return schema && IsEqualType(other) && m_fixed == schema->m_fixed;
}

int BoolInfo::MergeBounds(boost::intrusive_ptr<InfoBase const> const& other)
{
    auto const* const schema = Detail::CastTo<BoolInfo>(other);
    if (!schema || !IsEqualType(other))
        return IfErrBoundsTypeMismatch;
    m_fixed = m_fixed || schema->m_fixed;
    return 0;
}

int BoolInfo::AssignValue(boost::intrusive_ptr<InfoBase const> const& source, bool* changed)
{
    return Detail::AssignFrom<BoolInfo>(source, changed, [this](auto& change, auto const& schema) {
        change.Assign(m_default, schema.m_default);
        change.Assign(m_fixed, schema.m_fixed);
    });
}

void BoolInfo::DumpVal(std::ostream& os) const
{
    Detail::DumpHead(os, *this);
    Detail::DumpLine(os, "fixed: ", m_fixed);
    Detail::DumpLine(os, "default: ", m_default);
}

std::ostream& BoolInfo::operator<<(std::ostream& os) const
{
    return os << "default=" << Detail::BoolText(m_default) << (m_fixed ? " (fixed)" : "");
}

BoolItem::BoolItem(unsigned int id) : ValueItem(id) {}

BoolItem* BoolItem::DeepCopy(unsigned int id) const { return CopyAs_(id); }

void BoolItem::BoundVal(BoolInfo const& info) noexcept
{
    if (info.GetFixed())
        m_value = info.GetDefault();
}

bool BoolItem::WithinBounds(BoolInfo const& info) const noexcept
{
    return !info.GetFixed() || m_value == info.GetDefault();
}

int BoolItem::AssignArrayValue(boost::intrusive_ptr<ItemBase const> const& source, unsigned int index, bool* changed)
{
    if (!source)
        return IfErrNullSource;
    bool value = false;
    if (int const code = Detail::ReadTruth(*source, index, value))
        return code;
    Detail::Change change;
    change.Assign(m_value, value);
    return change.Report(changed);
}

unsigned int BoolItem::GetSerialDataSize() const { return 1; }

int BoolItem::Serialize(SerialStruct_t* record) const
{
    return Detail::WriteNumberRecord<unsigned char>(*this, record, m_value);
}

int BoolItem::Deserialize(ConstSerialStruct_t const* record)
{
    unsigned char byte = 0;
    if (int const code = Detail::ReadNumberRecord(*this, record, byte))
        return code;
    m_value = byte != 0;
    return 0;
}

std::shared_ptr<ResultElem const> BoolItem::Validate(boost::intrusive_ptr<InfoBase const> const& info)
{
    auto const* const schema = Detail::CastTo<BoolInfo>(info);
    if (!schema)
        return Detail::TypeMismatch(info, *this);
    if (!WithinBounds(*schema))
        return Detail::MakeFinding("TypesSystemBoolValidationFixedVal", info, *this, schema->GetDefault());
    return {};
}

bool BoolItem::SetValFromStream(std::istream& in, std::ostream& out, boost::intrusive_ptr<InfoBase const> const&)
{
    return Detail::ReadValue(in, out, "boolItem", m_value);
}

void BoolItem::DumpVal(std::ostream& os) const
{
    Detail::DumpHead(os, *this);
    Detail::DumpLine(os, "value: ", m_value);
}

std::ostream& BoolItem::operator<<(std::ostream& os) const { return os << Detail::BoolText(m_value); }

} // namespace Legacy::If
