#include "convert/Change.h"
#include "core/Finding.h"
#include "record/SerialRecord.h"
#include "text/Text.h"

#include <Legacy/If/Bool.h>
#include <Legacy/If/BoolArray.h>
#include <Legacy/If/Detail/Cast.h>

#include <stdexcept>

namespace Legacy::If {

namespace {

constexpr unsigned int k_initialMaxSize = 0x7FFFFFFF;
constexpr std::size_t k_bitsInByte = 8;

/// The elements that one byte of a payload holds, from `begin` on; the first stands in the highest bit.
unsigned char PackByte(std::vector<bool> const& list, std::size_t begin)
{
    unsigned int byte = 0;
    std::size_t const end = std::min(begin + k_bitsInByte, list.size());
    for (std::size_t i = begin; i < end; ++i)
        byte |= (list[i] ? 0x80U : 0U) >> (i - begin);
    return static_cast<unsigned char>(byte);
}

} // namespace

BoolArrayInfo::BoolArrayInfo(unsigned int const& id, std::string const& name, Permission_t const& permission)
    : ArrayInfo(id, name, permission, Detail::SizeBounds(0, k_initialMaxSize))
{}

BoolArrayInfo* BoolArrayInfo::DeepCopy(unsigned int id, std::string const& name, Permission_t const& permission) const
{
    return CopyAs_(id, name, permission);
}

ItemBase* BoolArrayInfo::CreateItem() const { return BoolArrayItem::Create(GetId(), m_default); }

int BoolArrayInfo::AssignValue(boost::intrusive_ptr<InfoBase const> const& source, bool* changed)
{
    return Detail::AssignFrom<BoolArrayInfo>(source, changed, [this](auto& change, auto const& schema) {
        change.Assign(m_default, schema.m_default);
        change.Assign(m_size, schema.m_size);
    });
}

BoolArrayItem::BoolArrayItem(unsigned int id) : ArrayItem(id) {}

BoolArrayItem* BoolArrayItem::DeepCopy(unsigned int id) const { return CopyAs_(id); }

int BoolArrayItem::AssignArrayValue(boost::intrusive_ptr<ItemBase const> const& source, unsigned int index,
                                    bool* changed)
{
    if (!source)
        return IfErrNullSource;
    Detail::Change change;
    if (auto const* const truth = Detail::SourceAs<BoolItem>(*source)) {
        change.GrowTo(m_value, index);
        change.Note(m_value[index] != truth->GetVal());
        m_value[index] = truth->GetVal();
    } else if (auto const* const list = Detail::SourceAs<BoolArrayItem>(*source)) {
        change.Assign(m_value, list->m_value);
    } else {
        return IfErrTypeNotAssignable;
    }
    return change.Report(changed);
}

unsigned int BoolArrayItem::GetSerialDataSize() const
{
    return m_value.empty() ? 1 : Detail::ClampSize((std::uint64_t{m_value.size()} - 1) / k_bitsInByte + 2);
}

int BoolArrayItem::Serialize(SerialStruct_t* record) const
{
    return Detail::WriteRecord(*this, record, BoolArrayItem::GetSerialDataSize(),
                               [this](Detail::PayloadWriter payload) {
                                   payload.Put(static_cast<unsigned char>(m_value.size() % k_bitsInByte));
                                   for (std::size_t begin = 0; begin < m_value.size(); begin += k_bitsInByte)
                                       payload.Put(PackByte(m_value, begin));
                               });
}

int BoolArrayItem::Deserialize(ConstSerialStruct_t const* record)
{
    Detail::PayloadReader payload;
    if (int const code = Detail::OpenRecord(*this, record, payload))
        return code;
    auto const rest = payload.Get<unsigned char>();
    if (!payload.Ok() || rest >= k_bitsInByte)
        return IfErrInvalidArgument;
    if (payload.Left() == 0)
        return 0;
    if (payload.Left() > m_value.max_size() / k_bitsInByte) // where sizes are narrow, the product must not wrap
        throw std::length_error("vector<bool>");
    std::size_t const begin = m_value.size();
    std::size_t const count = (payload.Left() - 1) * k_bitsInByte + (rest == 0 ? k_bitsInByte : rest);
    m_value.resize(begin + count);
    unsigned int byte = 0;
    for (std::size_t i = 0; i < count; ++i) {
        byte = i % k_bitsInByte == 0 ? payload.Get<unsigned char>() : byte << 1;
        m_value[begin + i] = (byte & 0x80U) != 0;
    }
    return 0;
}

std::shared_ptr<ResultElem const> BoolArrayItem::Validate(boost::intrusive_ptr<InfoBase const> const& info)
{
    auto const* const schema = Detail::CastTo<BoolArrayInfo>(info);
    if (!schema)
        return Detail::TypeMismatch(info, *this);
    return Detail::CheckSize(schema->Sizes(), m_value.size(), "BoolArrayValidationMinSize",
                             "BoolArrayValidationMinSize", info, *this);
}

bool BoolArrayItem::SetValFromStream(std::istream& in, std::ostream& out, boost::intrusive_ptr<InfoBase const> const&)
{
    return Detail::ReadList(in, out, m_value, [&in, &out](char const* word, bool& value) {
        return Detail::ReadValue(in, out, word, value);
    });
}

std::ostream& BoolArrayItem::operator<<(std::ostream& os) const
{
    os << '(';
    Detail::PrintList(os, m_value, [](std::ostream& to, bool value) { to << Detail::BoolText(value); });
    return os << ')';
}

} // namespace Legacy::If
