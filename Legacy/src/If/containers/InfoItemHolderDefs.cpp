#include <Legacy/If/InfoItemHolderDefs.h>
#include <Orlek/CodeLocation.h>
#include <Orlek/LogicError.h>

#include <utility>

namespace Legacy::If {

InfoHolder::InfoHolder(boost::intrusive_ptr<InfoBase> const& info) : m_info(info) {}
InfoHolder::~InfoHolder() = default;

std::string InfoHolder::GetDisplayName() const { return m_info ? m_info->GetName() : std::string(); }
std::string InfoHolder::GetDescription() const { return {}; }
std::string InfoHolder::GetUnit() const { return {}; }

InfoHolder* InfoHolder::DeepCopy() const
{
    return new InfoHolder(boost::intrusive_ptr<InfoBase>(m_info ? m_info->DeepCopy() : nullptr));
}

ItemHolder::ItemHolder(boost::intrusive_ptr<ItemBase> const& item)
    : m_tags(item ? Detail::PackedTags(*item) : 0), m_item(item)
{}
ItemHolder::~ItemHolder() = default;

std::string ItemHolder::GetDisplayText() const { return m_item ? m_item->GetValAsString() : std::string(); }

ItemHolder* ItemHolder::DeepCopy() const
{
    return new ItemHolder(boost::intrusive_ptr<ItemBase>(m_item ? m_item->DeepCopy() : nullptr));
}

InfoItemHolder::InfoItemHolder(boost::intrusive_ptr<InfoHolder const> const& info)
    : m_tags(0), m_info(info), m_schema(nullptr)
{
    // Contract: the place is a fixed text and not this line, since those who catch the error tell it by its place.
    if (!info || !info->GetInfo())
        throw Orlek::LogicError(IfErrNullArgument, "Null InfoHolder Pointer",
                                Orlek::CodeLocation("..\\..\\include\\Legacy/If/InfoItemHolderDefs",
                                                    "Legacy::If::InfoItemHolder::InfoItemHolder", 273));
    m_schema = info->GetInfo().get();
    m_tags = Detail::PackedTags(*m_schema);
}

InfoItemHolder::~InfoItemHolder() = default;

bool InfoItemHolder::SetInfo(boost::intrusive_ptr<InfoHolder const> const& info)
{
    if (!info || !info->GetInfo())
        return false;
    InfoBase const& current = *m_info->GetInfo();
    InfoBase const& candidate = *info->GetInfo();
    if (candidate.GetId() != current.GetId())
        return false;
    if (candidate.GetName() != current.GetName())
        return false;
    if (candidate.GetType() != current.GetType())
        return false;
    if (candidate.GetNumericType() != current.GetNumericType())
        return false;
    m_info = info;
    m_schema = info->GetInfo().get();
    return true;
}

bool InfoItemHolder::SetItem(boost::intrusive_ptr<ItemHolder const> const& item)
{
    if (!item || !item->GetItem() || item->GetItem()->GetId() != m_schema->GetId())
        return false;
    boost::intrusive_ptr<ItemHolder const> former;
    return SetItem_(item, former);
}

/// Takes a value of that id, without a look at the value or the schema if their tags stand here. Hands out the former
/// one without counting it.
bool InfoItemHolder::SetItem_(boost::intrusive_ptr<ItemHolder const> const& item,
                              boost::intrusive_ptr<ItemHolder const>& former)
{
    if (item->m_tags != m_tags)
        return false;
    if (m_tags == 0 && (item->GetItem()->GetType() != m_schema->GetType() ||
                        item->GetItem()->GetNumericType() != m_schema->GetNumericType()))
        return false;
    auto taken = item; // which may be the former value itself
    former = std::exchange(m_item, std::move(taken));
    return true;
}

} // namespace Legacy::If
