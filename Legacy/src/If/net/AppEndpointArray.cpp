#include "convert/Change.h"
#include "net/NetForm.h"
#include "record/SerialRecord.h"
#include "text/Text.h"

#include <Legacy/If/AppEndpointArray.h>
#include <Legacy/If/Detail/Cast.h>

#include <cstdint>
#include <utility>

namespace Legacy::If {

namespace {

using Form = Detail::NetForm<AppEndpointList::value_type>;

} // namespace

AppEndpointArrayInfo::AppEndpointArrayInfo(unsigned int const& id, std::string const& name,
                                           Permission_t const& permission)
    : InfoFamily(id, name, permission)
{}

AppEndpointArrayInfo* AppEndpointArrayInfo::DeepCopy(unsigned int id, std::string const& name,
                                                     Permission_t const& permission) const
{
    auto copy = std::make_unique<AppEndpointArrayInfo>(id, name, permission);
    copy->m_default = m_default;
    return copy.release();
}

ItemBase* AppEndpointArrayInfo::CreateItem() const { return AppEndpointArrayItem::Create(GetId(), m_default); }

int AppEndpointArrayInfo::SetDefault(AppEndpointList const& list)
{
    m_default = AppEndpointList(list);
    return 0;
}

int AppEndpointArrayInfo::SetMinSize(unsigned int n)
{
    m_minSize = n;
    return 0;
}

int AppEndpointArrayInfo::SetMaxSize(unsigned int n)
{
    m_maxSize = n;
    return 0;
}

bool AppEndpointArrayInfo::IsEqualBounds(boost::intrusive_ptr<InfoBase const> const& other) const
{
    return IsEqualType(other);
}

int AppEndpointArrayInfo::MergeBounds(boost::intrusive_ptr<InfoBase const> const& other)
{
    return IsEqualType(other) ? 0 : IfErrBoundsTypeMismatch;
}

int AppEndpointArrayInfo::AssignValue(boost::intrusive_ptr<InfoBase const> const& source, bool* changed)
{
    return Detail::AssignFrom<AppEndpointArrayInfo>(source, changed, [this](auto& change, auto const& schema) {
        if (m_default != schema.m_default)
            change.Assign(m_default, schema.m_default);
        else if (m_minSize != schema.m_minSize)
            change.Assign(m_minSize, schema.m_minSize);
        else
            change.Assign(m_maxSize, schema.m_maxSize);
    });
}

void AppEndpointArrayInfo::DumpVal(std::ostream& os) const
{
    Detail::DumpHead(os, *this);
    Detail::DumpLine(os, "default: ", "[empty array]");
}

std::ostream& AppEndpointArrayInfo::operator<<(std::ostream& os) const { return os << "AppEndpointArrayInfo"; }

AppEndpointArrayItem::AppEndpointArrayItem(unsigned int id) : ValueItem(id) {}

AppEndpointArrayItem* AppEndpointArrayItem::DeepCopy(unsigned int id) const { return CopyAs_(id); }

bool AppEndpointArrayItem::IsEmpty() const { return m_value.empty(); }

int AppEndpointArrayItem::AssignArrayValue(boost::intrusive_ptr<ItemBase const> const& source, unsigned int index,
                                           bool* changed)
{
    if (!source)
        return IfErrNullSource;
    Detail::Change change;
    if (auto const* const endpoint = Detail::SourceAs<AppEndpointItem>(*source)) {
        change.GrowTo(m_value, index);
        change.Assign(m_value[index], endpoint->Val());
    } else if (auto const* const list = Detail::SourceAs<AppEndpointArrayItem>(*source)) {
        change.AssignList(m_value, list->m_value);
    } else {
        return IfErrTypeNotAssignable;
    }
    return change.Report(changed);
}

unsigned int AppEndpointArrayItem::GetSerialDataSize() const
{
    std::uint64_t size = 0;
    for (auto const& endpoint : m_value)
        size += Detail::NetRecordSize<AppEndpointList::value_type>(Form::RecordText(endpoint).size());
    return Detail::ClampSize(size);
}

int AppEndpointArrayItem::Serialize(SerialStruct_t* record) const
{
    return Detail::WriteRecord(*this, record, AppEndpointArrayItem::GetSerialDataSize(),
                               [this](Detail::PayloadWriter payload) {
                                   for (auto const& endpoint : m_value) {
                                       Form::PutPrefix(payload, endpoint);
                                       payload.PutText(Form::RecordText(endpoint));
                                   }
                               });
}

int AppEndpointArrayItem::Deserialize(ConstSerialStruct_t const* record)
{
    if (!record)
        return IfErrNullArgument;
    m_value.clear();
    Detail::PayloadReader payload;
    if (int const code = Detail::OpenRecord(*this, record, payload))
        return code;
    while (payload.Left() >= Form::k_prefixSize) {
        auto endpoint = Form::Get(payload);
        if (!payload.Ok())
            break;
        m_value.push_back(std::move(endpoint));
    }
    return 0;
}

std::shared_ptr<ResultElem const> AppEndpointArrayItem::Validate(boost::intrusive_ptr<InfoBase const> const&)
{
    return {};
}

bool AppEndpointArrayItem::SetValFromStream(std::istream&, std::ostream& out,
                                            boost::intrusive_ptr<InfoBase const> const&)
{
    return Detail::NotReadable(out);
}

std::ostream& AppEndpointArrayItem::operator<<(std::ostream& os) const
{
    os << '(';
    Detail::PrintList(os, m_value, [](std::ostream& to, auto const& endpoint) { to << endpoint.ToString(); });
    return os << ')';
}

} // namespace Legacy::If
