#pragma once

#include "core/Borrowed.h"
#include "core/FirstReference.h"

#include <Legacy/If/Collection.h>
#include <Legacy/If/Composite.h>
#include <Legacy/If/Detail/Cast.h>

#include <span>
#include <utility>
#include <vector>

namespace Legacy::If::Detail {

/// Opens the lists of the two families to the walks below.
struct MemberAccess
{
    template<typename Family>
    static auto& Of(Family& object) noexcept
    {
        return object.m_members;
    }
};

/// The classes whose members a walk descends into by itself, and how it treats all others.
template<typename Root>
struct Nesting;

template<>
struct Nesting<InfoBase>
{
    using Composite = CompositeInfo;
    using Collection = CollectionInfo;

    template<typename Family>
    static Family* MakeLike(InfoBase const& info)
    {
        return new Family(info.GetId(), info.GetName(), info.GetPermission());
    }

    static bool Equal(InfoBase const& a, boost::intrusive_ptr<InfoBase const> const& b) { return a.IsEqualBounds(b); }
};

template<>
struct Nesting<ItemBase>
{
    using Composite = CompositeItem;
    using Collection = CollectionItem;

    template<typename Family>
    static Family* MakeLike(ItemBase const& item)
    {
        return new Family(item.GetId());
    }

    static bool Equal(ItemBase const& a, boost::intrusive_ptr<ItemBase const> const& b) { return a.IsEqualValue(b); }
};

/// The members of a composite or collection; null for every other class, derived ones among them, whose own virtual
/// operations then count.
template<typename Root>
MemberList<Root> const* MembersOf(Root const& object) noexcept
{
    using Composite = typename Nesting<Root>::Composite;
    using Collection = typename Nesting<Root>::Collection;
    if (IsExactly<Composite>(object))
        return &MemberAccess::Of(static_cast<Composite const&>(object));
    if (IsExactly<Collection>(object))
        return &MemberAccess::Of(static_cast<Collection const&>(object));
    return nullptr;
}

/// The way down to where a walk through a tree stands. It lies on the heap, so the depth of the tree is no matter to
/// the stack; a list without lists in it allocates nothing.
template<typename Step>
class Path
{
public:
    explicit Path(Step first) : m_step(std::move(first)) {}

    Step& Here() noexcept { return m_step; }

    void Descend(Step next)
    {
        if (m_above.capacity() == 0)
            m_above.reserve(k_usualDepth);
        m_above.push_back(std::move(m_step));
        m_step = std::move(next);
    }

    /// False at the top.
    bool Ascend() noexcept
    {
        if (m_above.empty())
            return false;
        m_step = std::move(m_above.back());
        m_above.pop_back();
        return true;
    }

private:
    static constexpr std::size_t k_usualDepth = 16;

    Step m_step;
    std::vector<Step> m_above;
};

/// What is left of a list that a walk passes through.
template<typename Root>
class Remaining
{
public:
    explicit Remaining(MemberList<Root> const& members) noexcept : m_members(members.View()) {}

    bool Empty() const noexcept { return m_members.empty(); }

    boost::intrusive_ptr<Root> const& Take() noexcept
    {
        auto const& member = m_members.front();
        m_members = m_members.subspan(1);
        return member;
    }

    /// The members that are left, in order.
    std::span<boost::intrusive_ptr<Root> const> View() const noexcept { return m_members; }
    void Skip(std::size_t count) noexcept { m_members = m_members.subspan(count); }

private:
    std::span<boost::intrusive_ptr<Root> const> m_members;
};

/// A member that is built together with members of its own, and where those come from and go to. A leaf has none.
template<typename From, typename To>
struct Branch
{
    boost::intrusive_ptr<To> object;
    MemberList<From> const* from = nullptr;
    MemberList<To>* to = nullptr;
};

/// Builds one member of `to` from each of `from`, at all depths: `branch` tells whether a member has members to descend
/// into, `leaf` makes a raw object, or null, of one that has not.
template<typename From, typename To, typename MakeBranch, typename MakeLeaf>
void BuildMembers(MemberList<From> const& from, MemberList<To>& to, MakeBranch&& branch, MakeLeaf&& leaf)
{
    struct Step
    {
        Remaining<From> left;
        MemberList<To>* to;
    };
    to.Reserve(from.Size());
    Path<Step> path(Step{Remaining(from), &to});
    do {
        while (!path.Here().left.Empty()) {
            From const& member = *path.Here().left.Take();
            Branch<From, To> next = branch(member);
            if (!next.object) {
                path.Here().to->Add(FirstReference::Of<To>(leaf(member)));
                continue;
            }
            path.Here().to->Add(std::move(next.object));
            next.to->Reserve(next.from->Size());
            path.Descend(Step{Remaining(*next.from), next.to});
        }
    } while (path.Ascend());
}

/// Fills `to` with a duplicate of each member, under the member's own identity.
template<typename Root>
void CopyMembers(MemberList<Root> const& from, MemberList<Root>& to)
{
    auto const like = []<typename Family>(Family const& object) {
        auto made = FirstReference::Of(Nesting<Root>::template MakeLike<Family>(object));
        MemberList<Root>& members = MemberAccess::Of(*made);
        return Branch<Root, Root>{std::move(made), &MemberAccess::Of(object), &members};
    };
    BuildMembers(
        from, to,
        [&](Root const& member) {
            using Composite = typename Nesting<Root>::Composite;
            using Collection = typename Nesting<Root>::Collection;
            if (IsExactly<Composite>(member))
                return like(static_cast<Composite const&>(member));
            if (IsExactly<Collection>(member))
                return like(static_cast<Collection const&>(member));
            return Branch<Root, Root>{};
        },
        [](Root const& member) { return member.DeepCopy(); });
}

} // namespace Legacy::If::Detail
