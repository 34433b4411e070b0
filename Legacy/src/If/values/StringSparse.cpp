#include "convert/Change.h"
#include "core/Finding.h"
#include "record/SerialRecord.h"
#include "text/Text.h"

#include <Legacy/If/StringSparse.h>

#include <algorithm>
#include <utility>

namespace Legacy::If {

namespace {

constexpr std::uint64_t k_recordSize = 5;
constexpr unsigned int k_announcedSize = 24;

} // namespace

StringSparseInfo::StringSparseInfo(unsigned int const& id, std::string const& name, Permission_t const& permission)
    : InfoFamily(id, name, permission)
{}

StringSparseInfo* StringSparseInfo::DeepCopy(unsigned int id, std::string const& name,
                                             Permission_t const& permission) const
{
    return CopyAs_(id, name, permission);
}

ItemBase* StringSparseInfo::CreateItem() const { return StringSparseItem::Create(GetId(), m_allowed.Default()); }

int StringSparseInfo::SetDefault(std::string text) { return m_allowed.SetDefault(std::move(text)); }

int StringSparseInfo::SetTable(std::vector<std::string> const& table)
{
    m_allowed.SetTable(table);
    return 0;
}

bool StringSparseInfo::IsPresent(std::string text) const { return m_allowed.IsPresent(text); }

bool StringSparseInfo::IsEqualBounds(boost::intrusive_ptr<InfoBase const> const&) const { return false; }

int StringSparseInfo::MergeBounds(boost::intrusive_ptr<InfoBase const> const& other)
{
    return IsEqualType(other) ? IfErrTypeNotAssignable : IfErrBoundsTypeMismatch;
}

int StringSparseInfo::AssignValue(boost::intrusive_ptr<InfoBase const> const& source, bool* changed)
{
    return Detail::AssignFrom<StringSparseInfo>(source, changed, [this](auto& change, auto const& schema) {
        change.AssignList(m_allowed.Table(), schema.m_allowed.Table());
        change.Assign(m_allowed.Default(), schema.m_allowed.Default());
    });
}

void StringSparseInfo::DumpVal(std::ostream& os) const
{
    Detail::DumpHead(os, *this);
    Detail::DumpLine(os, "default: ", m_allowed.Default());
}

std::ostream& StringSparseInfo::operator<<(std::ostream& os) const
{
    Detail::PrintAllowed(os, m_allowed, [](std::ostream& to, std::string const& text) { to << text; });
    return os;
}

StringSparseItem::StringSparseItem(unsigned int id) : ValueItem(id) {}

StringSparseItem* StringSparseItem::DeepCopy(unsigned int id) const { return CopyAs_(id); }

void StringSparseItem::SetVal(std::string value, StringSparseInfo const& info)
{
    m_value = info.m_allowed.AllowedOrDefault(std::move(value));
}

int StringSparseItem::AssignArrayValue(boost::intrusive_ptr<ItemBase const> const& source, unsigned int, bool* changed)
{
    return Detail::AssignFrom<StringSparseItem>(
        source, changed, [this](auto& change, auto const& item) { change.Assign(m_value, item.m_value); });
}

unsigned int StringSparseItem::GetSerialDataSize() const { return k_announcedSize; }

int StringSparseItem::Serialize(SerialStruct_t* record) const
{
    std::uint64_t const allocated = std::max(std::uint64_t{m_value.size()} + 1, k_recordSize);
    return Detail::WriteRecord(*this, record, k_recordSize, allocated, [&](Detail::PayloadWriter payload) {
        payload.PutText(m_value);
        for (std::uint64_t i = m_value.size() + 1; i < allocated; ++i)
            payload.Put(std::uint8_t{0});
    });
}

int StringSparseItem::Deserialize(ConstSerialStruct_t const* record)
{
    return Detail::ReadTextRecord(*this, record, m_value);
}

std::shared_ptr<ResultElem const> StringSparseItem::Validate(boost::intrusive_ptr<InfoBase const> const&) { return {}; }

bool StringSparseItem::SetValFromStream(std::istream& in, std::ostream& out,
                                        boost::intrusive_ptr<InfoBase const> const&)
{
    return Detail::ReadValue(in, out, "stringSparseItem", m_value);
}

std::ostream& StringSparseItem::operator<<(std::ostream& os) const { return os << m_value; }

} // namespace Legacy::If
