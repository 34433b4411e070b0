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

ItemHolder::ItemHolder(boost::intrusive_ptr<ItemBase> const& item) : m_item(item) {}
ItemHolder::~ItemHolder() = default;

std::string ItemHolder::GetDisplayText() const { return m_item ? m_item->GetValAsString() : std::string(); }

ItemHolder* ItemHolder::DeepCopy() const
{
    return new ItemHolder(boost::intrusive_ptr<ItemBase>(m_item ? m_item->DeepCopy() : nullptr));
}

InfoItemHolder::InfoItemHolder(boost::intrusive_ptr<InfoHolder const> const& info) : m_info(info)
{
    // Contract: the place is a fixed text and not this line, since those who catch the error tell it by its place.
    if (!info || !info->GetInfo())
        throw Orlek::LogicError(IfErrNullArgument, "Null InfoHolder Pointer",
                                Orlek::CodeLocation("..\\..\\include\\Legacy/If/InfoItemHolderDefs",
                                                    "Legacy::If::InfoItemHolder::InfoItemHolder", 273));
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
    return true;
}

bool InfoItemHolder::SetItem(boost::intrusive_ptr<ItemHolder const> const& item)
{
    boost::intrusive_ptr<ItemHolder const> former;
    return SetItem_(item, former);
}

/// Hands out the former value without counting it.
bool InfoItemHolder::SetItem_(boost::intrusive_ptr<ItemHolder const> const& item,
                              boost::intrusive_ptr<ItemHolder const>& former)
{
    if (!item || !item->GetItem())
        return false;
    InfoBase const& current = *m_info->GetInfo();
    ItemBase const& candidate = *item->GetItem();
    if (candidate.GetId() != current.GetId())
        return false;
    if (candidate.GetType() != current.GetType())
        return false;
    if (candidate.GetNumericType() != current.GetNumericType())
        return false;
    auto taken = item; // which may be the former value itself
    former = std::exchange(m_item, std::move(taken));
    return true;
}

} // namespace Legacy::If
