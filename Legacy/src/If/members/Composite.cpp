#include "core/Finding.h"
#include "members/MemberWalk.h"

#include <ostream>

namespace Legacy::If {

CompositeInfo::CompositeInfo(unsigned int const& id, std::string const& name, Permission_t const& permission)
    : InfoList(id, name, permission)
{}

CompositeInfo* CompositeInfo::DeepCopy(unsigned int id, std::string const& name, Permission_t const& permission) const
{
    return DuplicateAs_(id, name, permission);
}

ItemBase* CompositeInfo::CreateItem() const
{
    auto item = std::make_unique<CompositeItem>(GetId());
    Detail::BuildMembers(
        m_members, Detail::MemberAccess::Of(*item),
        [](InfoBase const& member, auto& descend) {
            if (!Detail::IsExactly<CompositeInfo>(member))
                return false;
            auto made = Detail::FirstReference::OfNew(new CompositeItem(member.GetId()));
            Detail::MemberList<ItemBase>& items = Detail::MemberAccess::Of(*made);
            auto const& schemas = Detail::MemberAccess::Of(static_cast<CompositeInfo const&>(member));
            return descend(std::move(made), schemas, items);
        },
        [](InfoBase const& member) { return member.CreateItem(); });
    return item.release();
}

CompositeItem::CompositeItem(unsigned int id) : ItemList(id) {}

CompositeItem* CompositeItem::DeepCopy(unsigned int id) const { return DuplicateAs_(id); }

int CompositeItem::AssignArrayValue(boost::intrusive_ptr<ItemBase const> const& source, unsigned int, bool* changed)
{
    if (!source)
        return IfErrNullSource;
    if (changed)
        *changed = false;
    auto const* const composite = Detail::SourceAs<CompositeItem>(*source);
    if (!composite)
        return IfErrTypeNotAssignable;
    // The source may be this item or one of its members: it is left alone until the duplicates stand.
    Detail::MemberList<ItemBase> members;
    Detail::CopyMembers(composite->m_members, members);
    m_members.Swap(members);
    if (changed)
        *changed = true;
    return 0;
}

std::shared_ptr<ResultElem const> CompositeItem::Validate(boost::intrusive_ptr<InfoBase const> const& info)
{
    bool const fits = info && info->GetType() == IfType_t::Composite;
    auto const* const schema = fits ? Detail::CastTo<CompositeInfo>(info) : nullptr;
    if (!schema)
        return Detail::TypeMismatch(info, *this);
    if (GetSize() != schema->GetSize())
        return Detail::MakeFinding("TypesSystemCompositeValidationSize", info, *this, GetSize());
    auto const schemas = Detail::MemberAccess::Of(*schema).View();
    auto const items = m_members.View();
    for (unsigned int i = 0; i < items.size(); ++i) {
        if (!schemas[i]->IsEqualType(Detail::Borrowed(items[i]).Pointer()))
            return Detail::MakeFinding("TypesSystemCompositeTypeMismatch", info, *this, i);
    }
    return {};
}

bool CompositeItem::SetValFromStream(std::istream& in, std::ostream& out,
                                     boost::intrusive_ptr<InfoBase const> const& info)
{
    bool const fits = info && info->GetType() == IfType_t::Composite;
    boost::intrusive_ptr<ItemBase const> const created(fits ? info->CreateItem() : nullptr);
    auto const* const fresh = Detail::CastTo<CompositeItem>(created);
    if (!fresh) {
        out << "Invalid use of CompositeItem::SetValFromStream\n";
        return false;
    }
    Cleanup_();
    out << "CompositeItem with " << fresh->GetSize() << " items\n";
    for (Pointer const& member : fresh->m_members.View()) {
        if (!member->SetValFromStream(in, out, nullptr))
            return false;
        m_members.Add(member);
    }
    return true;
}

} // namespace Legacy::If
