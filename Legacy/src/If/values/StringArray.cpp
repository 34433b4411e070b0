#include "convert/Change.h"
#include "core/Finding.h"
#include "core/ReserveMore.h"
#include "record/SerialRecord.h"
#include "text/Text.h"

#include <Legacy/If/Bool.h>
#include <Legacy/If/Detail/Cast.h>
#include <Legacy/If/String.h>
#include <Legacy/If/StringArray.h>

#include <algorithm>
#include <cstdint>

namespace Legacy::If {

StringArrayInfo::StringArrayInfo(unsigned int const& id, std::string const& name, Permission_t const& permission)
    : ArrayInfo(id, name, permission, Detail::SizeBounds(0, 0))
{}

StringArrayInfo* StringArrayInfo::DeepCopy(unsigned int id, std::string const& name,
                                           Permission_t const& permission) const
{
    return CopyAs_(id, name, permission);
}

ItemBase* StringArrayInfo::CreateItem() const { return StringArrayItem::Create(GetId(), m_default); }

int StringArrayInfo::AssignValue(boost::intrusive_ptr<InfoBase const> const& source, bool* changed)
{
    return Detail::AssignFrom<StringArrayInfo>(source, changed, [this](auto& change, auto const& schema) {
        change.AssignList(m_default, schema.m_default);
        change.Assign(m_size, schema.m_size);
    });
}

StringArrayItem::StringArrayItem(unsigned int id) : ArrayItem(id) {}

StringArrayItem* StringArrayItem::DeepCopy(unsigned int id) const { return CopyAs_(id); }

int StringArrayItem::AssignArrayValue(boost::intrusive_ptr<ItemBase const> const& source, unsigned int index,
                                      bool* changed)
{
    if (!source)
        return IfErrNullSource;
    Detail::Change change;
    if (auto const* const truth = Detail::SourceAs<BoolItem>(*source)) {
        change.GrowTo(m_value, index);
        change.Assign(m_value[index], Detail::BoolText(truth->GetVal()));
    } else if (auto const* const text = Detail::SourceAs<StringItem>(*source)) {
        change.GrowTo(m_value, index);
        change.Assign(m_value[index], text->Val());
    } else if (auto const* const list = Detail::SourceAs<StringArrayItem>(*source)) {
        change.AssignList(m_value, list->m_value);
    } else {
        return IfErrTypeNotAssignable;
    }
    return change.Report(changed);
}

unsigned int StringArrayItem::GetSerialDataSize() const
{
    std::uint64_t size = 0;
    for (std::string const& text : m_value)
        size += std::uint64_t{text.size()} + 1;
    return Detail::ClampSize(size);
}

int StringArrayItem::Serialize(SerialStruct_t* record) const
{
    return Detail::WriteRecord(*this, record, StringArrayItem::GetSerialDataSize(),
                               [this](Detail::PayloadWriter payload) {
                                   for (std::string const& text : m_value)
                                       payload.PutText(text);
                               });
}

int StringArrayItem::Deserialize(ConstSerialStruct_t const* record)
{
    Detail::PayloadReader payload;
    if (int const code = Detail::OpenRecord(*this, record, payload))
        return code;
    if (payload.Left() != 0 && !payload.EndsInZero())
        return IfErrInvalidArgument;
    // Counted first: a list that grows step by step takes half as much again, and a text may be a single byte here.
    auto const* const bytes = payload.Next();
    Detail::ReserveMore(m_value, static_cast<std::size_t>(std::count(bytes, bytes + payload.Left(), 0)));
    while (payload.Left() != 0)
        m_value.emplace_back(payload.GetText());
    return 0;
}

std::shared_ptr<ResultElem const> StringArrayItem::Validate(boost::intrusive_ptr<InfoBase const> const& info)
{
    auto const* const schema = Detail::CastTo<StringArrayInfo>(info);
    if (!schema)
        return Detail::TypeMismatch(info, *this);
    return Detail::CheckSize(schema->Sizes(), m_value.size(), "TypesSystemStringArrayValidationMinSize",
                             "TypesSystemStringArrayValidationMaxSize", info, *this);
}

bool StringArrayItem::SetValFromStream(std::istream& in, std::ostream& out, boost::intrusive_ptr<InfoBase const> const&)
{
    return Detail::ReadList(in, out, m_value, [&in, &out](char const* word, std::string& text) {
        return Detail::ReadValue(in, out, word, text);
    });
}

std::ostream& StringArrayItem::operator<<(std::ostream& os) const
{
    os << '(';
    Detail::PrintList(os, m_value, [](std::ostream& to, std::string const& text) { to << text; });
    return os << ')';
}

} // namespace Legacy::If
