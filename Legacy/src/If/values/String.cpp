#include "convert/Change.h"
#include "core/Finding.h"
#include "record/SerialRecord.h"
#include "text/Text.h"

#include <Legacy/If/Bool.h>
#include <Legacy/If/Detail/Cast.h>
#include <Legacy/If/String.h>
#include <Legacy/If/StringArray.h>

namespace Legacy::If {

namespace {

constexpr unsigned int k_initialMaxLength = 256;

void Cut(std::string& text, unsigned int maxLength)
{
    if (text.size() > maxLength)
        text.resize(maxLength);
}

} // namespace

StringInfo::StringInfo(unsigned int const& id, std::string const& name, Permission_t const& permission)
    : InfoFamily(id, name, permission), m_maxLength(k_initialMaxLength)
{}

StringInfo* StringInfo::DeepCopy(unsigned int id, std::string const& name, Permission_t const& permission) const
{
    return CopyAs_(id, name, permission);
}

ItemBase* StringInfo::CreateItem() const { return StringItem::Create(GetId(), m_default); }

int StringInfo::SetDefault(std::string const& text)
{
    m_default = text;
    if (m_maxLength != 0)
        Cut(m_default, m_maxLength);
    return 0;
}

int StringInfo::SetMaxLength(unsigned int maxLength)
{
    m_maxLength = maxLength;
    Cut(m_default, m_maxLength);
    return 0;
}

bool StringInfo::IsEqualBounds(boost::intrusive_ptr<InfoBase const> const& other) const
{
    auto const* const schema = Detail::CastTo<StringInfo>(other);
    return schema && IsEqualType(other) && m_maxLength == schema->m_maxLength;
}

int StringInfo::MergeBounds(boost::intrusive_ptr<InfoBase const> const& other)
{
    auto const* const schema = Detail::CastTo<StringInfo>(other);
    if (!schema || !IsEqualType(other))
        return IfErrBoundsTypeMismatch;
    m_maxLength = std::min(m_maxLength, schema->m_maxLength);
    return IfErrTypeNotAssignable;
}

int StringInfo::AssignValue(boost::intrusive_ptr<InfoBase const> const& source, bool* changed)
{
    return Detail::AssignFrom<StringInfo>(source, changed, [this](auto& change, auto const& schema) {
        change.Assign(m_default, schema.m_default);
        change.Assign(m_maxLength, schema.m_maxLength);
    });
}

void StringInfo::DumpVal(std::ostream& os) const
{
    Detail::DumpHead(os, *this);
    Detail::DumpLine(os, "maxLength: ", m_maxLength);
    Detail::DumpLine(os, "default: ", m_default);
}

std::ostream& StringInfo::operator<<(std::ostream& os) const
{
    return os << '"' << m_default << "\"; max length=" << m_maxLength;
}

StringItem::StringItem(unsigned int id) : ValueItem(id) {}

StringItem* StringItem::DeepCopy(unsigned int id) const { return CopyAs_(id); }

void StringItem::SetVal(std::string const& value, StringInfo const& info)
{
    m_value = value;
    Cut(m_value, info.GetMaxLength());
}

void StringItem::SetVal(std::string&& value, StringInfo const& info)
{
    m_value = std::move(value);
    Cut(m_value, info.GetMaxLength());
}

bool StringItem::IsEmpty() const { return m_value.empty(); }

int StringItem::AssignArrayValue(boost::intrusive_ptr<ItemBase const> const& source, unsigned int index, bool* changed)
{
    if (!source)
        return IfErrNullSource;
    Detail::Change change;
    if (auto const* const truth = Detail::SourceAs<BoolItem>(*source)) {
        change.Assign(m_value, Detail::BoolText(truth->GetVal()));
    } else if (auto const* const text = Detail::SourceAs<StringItem>(*source)) {
        change.Assign(m_value, text->m_value);
    } else if (auto const* const list = Detail::SourceAs<StringArrayItem>(*source)) {
        if (index >= list->Val().size())
            return IfErrInvalidArgument;
        change.Assign(m_value, list->Val()[index]);
    } else {
        return IfErrTypeNotAssignable;
    }
    return change.Report(changed);
}

unsigned int StringItem::GetSerialDataSize() const { return Detail::ClampSize(std::uint64_t{m_value.size()} + 1); }

int StringItem::Serialize(SerialStruct_t* record) const
{
    return Detail::WriteRecord(*this, record, std::uint64_t{m_value.size()} + 1,
                               [this](Detail::PayloadWriter payload) { payload.PutText(m_value); });
}

int StringItem::Deserialize(ConstSerialStruct_t const* record)
{
    return Detail::ReadTextRecord(*this, record, m_value);
}

std::shared_ptr<ResultElem const> StringItem::Validate(boost::intrusive_ptr<InfoBase const> const& info)
{
    auto const* const schema = Detail::CastTo<StringInfo>(info);
    if (!schema)
        return Detail::TypeMismatch(info, *this);
    if (m_value.size() > schema->GetMaxLength())
        return Detail::MakeFinding("TypesSystemStringValidationLength", info, *this, schema->GetMaxLength());
    return {};
}

bool StringItem::SetValFromStream(std::istream& in, std::ostream&, boost::intrusive_ptr<InfoBase const> const&)
{
    if (!in.eof()) {
        m_value.clear();
        in >> m_value;
    }
    return true;
}

std::ostream& StringItem::operator<<(std::ostream& os) const { return os << m_value; }

} // namespace Legacy::If
