#include "convert/Visit.h"
#include "members/MemberWalk.h"
#include "text/PlainText.h"
#include "text/Text.h"

#include <Legacy/If/Bool.h>
#include <Legacy/If/Numeric.h>
#include <Legacy/If/String.h>

#include <set>
#include <string_view>
#include <utility>

namespace Legacy::If::Detail {

template<typename Root>
MemberList<Root>::MemberList(MemberList const& other)
    : m_node(other.View().empty() ? nullptr : new Node{{}, other.m_node->members})
{}

template<typename Root>
MemberList<Root>& MemberList<Root>::operator=(MemberList const& other)
{
    MemberList copy(other);
    Swap(copy);
    return *this;
}

template<typename Root>
MemberList<Root>::~MemberList()
{
    if (m_node)
        Drop_(m_node);
}

// A member's last release may end lists of its own, and so come back here from within: those lists only line up.
template<typename Root>
void MemberList<Root>::Drop_(Node* node) noexcept
{
    static thread_local constinit Node* first = nullptr;
    static thread_local constinit Node* last = nullptr;

    bool const within = first != nullptr;
    (within ? last->next : first) = node;
    last = node;
    if (within)
        return;
    while (Node* const current = first) {
        current->members.clear(); // from front to back
        first = current->next;
        delete current;
    }
}

template<typename Root>
bool MemberList<Root>::Add(Pointer member)
{
    if (!member)
        return false;
    MemberAccess::Append(*this, std::move(member));
    return true;
}

template<typename Root>
bool MemberList<Root>::Set(unsigned int index, Pointer const& member)
{
    if (!member || index >= View().size())
        return false;
    Pointer replaced(member);
    replaced.swap(m_node->members[index]);
    return true;
}

template<typename Root>
void MemberList<Root>::Assign(std::span<Pointer const> members)
{
    MemberList taken;
    taken.Reserve(members.size());
    for (Pointer const& member : members)
        taken.Add(member);
    Swap(taken);
}

template<typename Root>
void MemberList<Root>::Reserve(std::size_t count)
{
    MemberAccess::Reserve(*this, count);
}

template<typename Root>
void MemberList<Root>::Clear() noexcept
{
    MemberList empty;
    Swap(empty);
}

template<typename Root>
std::span<boost::intrusive_ptr<Root> const> MemberList<Root>::View() const noexcept
{
    return MemberAccess::View(*this);
}

template<typename Root>
boost::intrusive_ptr<Root> MemberList<Root>::At(unsigned int index) const
{
    auto const members = View();
    return index < members.size() ? members[index] : nullptr;
}

template class MemberList<InfoBase>;
template class MemberList<ItemBase>;

namespace {

/// The members of `object` if it is of the same family as `like`, also through a derived class; null otherwise.
template<typename Root>
MemberList<Root> const* MembersAs(Root const& like, Root const& object)
{
    using Composite = typename Nesting<Root>::Composite;
    using Collection = typename Nesting<Root>::Collection;
    if (like.GetType() != object.GetType() || like.GetNumericType() != object.GetNumericType())
        return nullptr;
    if (IsExactly<Composite>(like)) {
        auto const* const composite = ExactCast<Composite>(&object);
        return composite ? &MemberAccess::Of(*composite) : nullptr;
    }
    auto const* const collection = ExactCast<Collection>(&object);
    return collection ? &MemberAccess::Of(*collection) : nullptr;
}

template<typename Root>
bool EqualMembers(MemberList<Root> const& a, MemberList<Root> const& b)
{
    struct Step
    {
        Remaining<Root> a;
        Remaining<Root> b;

        Step(MemberList<Root> const& left, MemberList<Root> const& right) noexcept : a(left), b(right) {}
    };
    if (a.Size() != b.Size())
        return false;
    // Lists that stand in several places come together again. Once is enough, since the first difference ends it all.
    std::set<std::pair<void const*, void const*>> seen;
    Path<Step> path(a, b);
    do {
        while (!path.Here().a.Empty()) {
            auto const& left = path.Here().a.Take();
            auto const& right = path.Here().b.Take();
            MemberList<Root> const* const nested = MembersOf(*left);
            if (!nested) {
                if (!Nesting<Root>::Equal(*left, Borrowed(right).Pointer()))
                    return false;
                continue;
            }
            MemberList<Root> const* const counterpart = MembersAs(*left, *right);
            if (!counterpart || nested->Size() != counterpart->Size())
                return false;
            bool const areShared = left->GetRefCount() > 1 && right->GetRefCount() > 1;
            if (areShared && !seen.emplace(nested, counterpart).second)
                continue;
            path.Descend(*nested, *counterpart);
        }
    } while (path.Ascend());
    return true;
}

/// Prints a number, a boolean or a text, which is what most members are. False for all others, and for classes that an
/// application derived, which print themselves.
bool PutPlain(PlainText& to, ItemBase const& item)
{
    if (IsExactly<StringItem>(item)) {
        to << static_cast<StringItem const&>(item).Val();
        return true;
    }
    if (IsExactly<BoolItem>(item)) {
        to << BoolText(static_cast<BoolItem const&>(item).GetVal());
        return true;
    }
    auto const put = [&to, &item]<typename Traits>(Traits) {
        if (!IsExactly<NumericItem<Traits>>(item))
            return IfErrTypeNotAssignable;
        to.PutNumber(TextForm<typename Traits::T>{static_cast<NumericItem<Traits> const&>(item).GetVal()});
        return 0;
    };
    return VisitElement(item.GetNumericType(), put) == 0;
}

/// Schemas print themselves.
bool PutPlain(PlainText&, InfoBase const&) { return false; }

template<typename Root>
std::ostream& PrintMembers(std::ostream& os, MemberList<Root> const& members)
{
    struct Step
    {
        Remaining<Root> left;
        char const* separator = "";

        explicit Step(MemberList<Root> const& list) noexcept : left(list) {}
    };
    PlainText text(os);
    bool isPlain = PlainText::Suits(os);
    auto const put = [&](std::string_view piece) {
        if (isPlain)
            text << piece;
        else
            os << piece;
    };
    put("(");
    Path<Step> path(members);
    for (;;) {
        while (!path.Here().left.Empty()) {
            put(std::exchange(path.Here().separator, k_separator));
            Root const& member = *path.Here().left.Take();
            if (MemberList<Root> const* const nested = MembersOf(member)) {
                put("(");
                path.Descend(*nested);
            } else if (!isPlain || !PutPlain(text, member)) {
                text.Flush();
                member.operator<<(os);
                isPlain = isPlain && PlainText::Suits(os); // an application's class may leave it another
            }
        }
        if (!path.Ascend())
            break;
        put(")");
    }
    text.Flush();
    return os << ")"; // by itself, so that a stream that took less is left as if it had been given each piece
}

template<typename Root, typename Pointer>
void StorePointers(MemberList<Root> const& members, std::vector<Pointer>& pointers)
{
    auto const view = members.View();
    pointers.assign(view.begin(), view.end());
}

template<typename Root>
bool AddAt(MemberList<Root>& members, boost::intrusive_ptr<Root> const& member, unsigned int& index)
{
    unsigned int const position = members.Size();
    if (!members.Add(member))
        return false;
    index = position;
    return true;
}

} // namespace

template<typename Self, IfType_t Type>
bool InfoList<Self, Type>::AddInfo(Pointer const& info, unsigned int& index)
{
    return AddAt(m_members, info, index);
}

template<typename Self, IfType_t Type>
void InfoList<Self, Type>::GetInfos(std::vector<Pointer>& infos)
{
    StorePointers(m_members, infos);
}

template<typename Self, IfType_t Type>
void InfoList<Self, Type>::GetInfos(std::vector<ConstPointer>& infos) const
{
    StorePointers(m_members, infos);
}

template<typename Self, IfType_t Type>
bool InfoList<Self, Type>::IsEqualBounds(ConstPointer const& other) const
{
    auto const* const schema = CastTo<Self>(other);
    return schema && this->IsEqualType(other) && EqualMembers(m_members, schema->m_members);
}

template<typename Self, IfType_t Type>
int InfoList<Self, Type>::MergeBounds(ConstPointer const&)
{
    return IfErrTypeNotAssignable;
}

template<typename Self, IfType_t Type>
int InfoList<Self, Type>::AssignValue(ConstPointer const& source, bool* changed)
{
    if (!source)
        return IfErrNullSource;
    auto const* const schema = SourceAs<Self>(*source);
    if (!schema)
        return IfErrTypeNotAssignable;
    m_members = schema->m_members;
    if (changed)
        *changed = true;
    return 0;
}

template<typename Self, IfType_t Type>
void InfoList<Self, Type>::DumpVal(std::ostream& os) const
{
    DumpHead(os, *this);
}

template<typename Self, IfType_t Type>
std::ostream& InfoList<Self, Type>::operator<<(std::ostream& os) const
{
    return PrintMembers(os, m_members);
}

template<typename Self, IfType_t Type>
Self* InfoList<Self, Type>::DuplicateAs_(unsigned int id, std::string const& name, Permission_t const& permission) const
{
    auto copy = std::make_unique<Self>(id, name, permission);
    CopyMembers(m_members, copy->m_members);
    return copy.release();
}

template<typename Self, IfType_t Type>
bool ItemList<Self, Type>::AddItem(Pointer const& item, unsigned int& index)
{
    return AddAt(m_members, item, index);
}

template<typename Self, IfType_t Type>
void ItemList<Self, Type>::GetItems(std::vector<Pointer>& items)
{
    StorePointers(m_members, items);
}

template<typename Self, IfType_t Type>
void ItemList<Self, Type>::GetItems(std::vector<ConstPointer>& items) const
{
    StorePointers(m_members, items);
}

template<typename Self, IfType_t Type>
bool ItemList<Self, Type>::IsEmpty() const
{
    return m_members.View().empty();
}

template<typename Self, IfType_t Type>
bool ItemList<Self, Type>::IsEqualValue(ConstPointer const& other) const
{
    auto const* const item = CastTo<Self>(other);
    return item && this->IsEqualType(other) && EqualMembers(m_members, item->m_members);
}

template<typename Self, IfType_t Type>
void ItemList<Self, Type>::DumpVal(std::ostream& os) const
{
    DumpHead(os, *this);
    os << "value: (" << GetSize() << " items)";
}

template<typename Self, IfType_t Type>
std::ostream& ItemList<Self, Type>::operator<<(std::ostream& os) const
{
    return PrintMembers(os, m_members);
}

template<typename Self, IfType_t Type>
Self* ItemList<Self, Type>::DuplicateAs_(unsigned int id) const
{
    auto copy = std::make_unique<Self>(id);
    CopyMembers(m_members, copy->m_members);
    return copy.release();
}

template class InfoList<CompositeInfo, IfType_t::Composite>;
template class InfoList<CollectionInfo, IfType_t::Collection>;
template class ItemList<CompositeItem, IfType_t::Composite>;
template class ItemList<CollectionItem, IfType_t::Collection>;

} // namespace Legacy::If::Detail
