#include "convert/Change.h"
#include "text/Text.h"

#include <Legacy/If/Detail/Cast.h>
#include <Legacy/If/LocalizedString.h>
#include <Orlek/Localization.h>

namespace Legacy::If {

LocalizedString::~LocalizedString() = default;

LocalizedString& LocalizedString::operator=(LocalizedString const& other)
{
    LocalizedString copy(other); // if memory ends here, key and arguments still belong together
    m_key.swap(copy.m_key);
    m_arguments.swap(copy.m_arguments);
    return *this;
}

bool LocalizedString::operator==(LocalizedString const& other) const
{
    return m_key == other.m_key && m_arguments == other.m_arguments;
}

std::string LocalizedString::GetString(std::string const& language) const
{
    if (m_key.empty())
        return {};
    Orlek::LocalizationHelper message = Orlek::Localization::GetString(m_key, language);
    for (auto const& argument : m_arguments)
        message % (argument ? argument->GetValAsString() : std::string());
    return message;
}

LocalizedStringInfo::LocalizedStringInfo(unsigned int const& id, std::string const& name,
                                         Permission_t const& permission)
    : InfoFamily(id, name, permission)
{}

LocalizedStringInfo* LocalizedStringInfo::DeepCopy(unsigned int id, std::string const& name,
                                                   Permission_t const& permission) const
{
    return CopyAs_(id, name, permission);
}

ItemBase* LocalizedStringInfo::CreateItem() const
{
    auto item = std::make_unique<LocalizedStringItem>(GetId());
    item->SetVal(m_default);
    return item.release();
}

bool LocalizedStringInfo::IsEqualBounds(boost::intrusive_ptr<InfoBase const> const&) const { return false; }

int LocalizedStringInfo::MergeBounds(boost::intrusive_ptr<InfoBase const> const&) { return IfErrTypeNotAssignable; }

int LocalizedStringInfo::AssignValue(boost::intrusive_ptr<InfoBase const> const& source, bool* changed)
{
    return Detail::AssignFrom<LocalizedStringInfo>(
        source, changed, [this](auto& change, auto const& schema) { change.Assign(m_default, schema.m_default); });
}

void LocalizedStringInfo::DumpVal(std::ostream& os) const
{
    Detail::DumpHead(os, *this);
    Detail::DumpLine(os, "default: ", m_default.GetString(""));
}

std::ostream& LocalizedStringInfo::operator<<(std::ostream& os) const { return os << '"' << m_default.GetString(""); }

LocalizedStringItem::LocalizedStringItem(unsigned int id) : ItemFamily(id) {}

LocalizedStringItem* LocalizedStringItem::DeepCopy(unsigned int id) const { return CopyAs_(id); }

bool LocalizedStringItem::IsEqualValue(boost::intrusive_ptr<ItemBase const> const& other) const
{
    auto const* const item = Detail::CastTo<LocalizedStringItem>(other);
    return item && IsEqualType(other) && m_value == item->m_value;
}

int LocalizedStringItem::AssignArrayValue(boost::intrusive_ptr<ItemBase const> const& source, unsigned int,
                                          bool* changed)
{
    return Detail::AssignFrom<LocalizedStringItem>(
        source, changed, [this](auto& change, auto const& item) { change.Assign(m_value, item.m_value); });
}

unsigned int LocalizedStringItem::GetSerialDataSize() const { return 0; }

int LocalizedStringItem::Serialize(SerialStruct_t*) const { return IfErrTypeNotAssignable; }

int LocalizedStringItem::Deserialize(ConstSerialStruct_t const*) { return IfErrTypeNotAssignable; }

std::shared_ptr<ResultElem const> LocalizedStringItem::Validate(boost::intrusive_ptr<InfoBase const> const&)
{
    return {};
}

bool LocalizedStringItem::SetValFromStream(std::istream&, std::ostream& out,
                                           boost::intrusive_ptr<InfoBase const> const&)
{
    return Detail::NotReadable(out);
}

std::ostream& LocalizedStringItem::operator<<(std::ostream& os) const { return os << m_value.GetString(""); }

} // namespace Legacy::If
