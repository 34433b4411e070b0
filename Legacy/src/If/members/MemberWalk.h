#pragma once

#include "core/Borrowed.h"
#include "core/FirstReference.h"

#include <Legacy/If/Collection.h>
#include <Legacy/If/Composite.h>
#include <Legacy/If/Detail/Cast.h>

#include <boost/container/small_vector.hpp>

#include <span>
#include <utility>

namespace Legacy::If::Detail {

/// Outlives the list that it belonged to for as long as its members wait to be released.
template<typename Root>
struct MemberList<Root>::Node : CachedObject
{
    boost::container::small_vector<Pointer, 2> members; // a list of one or two needs no further block
    Node* next = nullptr;
};

/// Opens the lists of the two families to the walks below, without the calls that the list's own operations are.
struct MemberAccess
{
    template<typename Root>
    static std::span<boost::intrusive_ptr<Root> const> View(MemberList<Root> const& list) noexcept
    {
        if (!list.m_node)
            return {};
        return {list.m_node->members.data(), list.m_node->members.size()};
    }

    template<typename Root>
    static void Reserve(MemberList<Root>& list, std::size_t count)
    {
        if (count == 0)
            return;
        if (!list.m_node)
            list.m_node = new typename MemberList<Root>::Node;
        list.m_node->members.reserve(count);
    }

    /// Adds a member that is not null.
    template<typename Root>
    static void Append(MemberList<Root>& list, boost::intrusive_ptr<Root> member)
    {
        if (!list.m_node)
            list.m_node = new typename MemberList<Root>::Node;
        list.m_node->members.push_back(std::move(member));
    }

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

/// The way down to where a walk through a tree stands. All but its begin lies on the heap, so the depth of the tree is
/// no matter to the stack. Steps are built where they stay: one that is moved right after it was filled piece by piece
/// makes processors wait for the pieces.
template<typename Step>
class Path
{
public:
    /// The first step, made of the arguments.
    template<typename... Arguments>
    explicit Path(Arguments&&... arguments) : m_here(&m_steps.emplace_back(std::forward<Arguments>(arguments)...))
    {}
    Path(Path const&) = delete;
    Path& operator=(Path const&) = delete;

    Step& Here() noexcept { return *m_here; }

    /// One step down, made of the arguments.
    template<typename... Arguments>
    void Descend(Arguments&&... arguments)
    {
        if (m_steps.size() == m_steps.capacity())
            m_steps.reserve(m_steps.capacity() * 2);
        m_here = &m_steps.emplace_back(std::forward<Arguments>(arguments)...);
    }

    /// False at the top.
    bool Ascend() noexcept
    {
        if (m_steps.size() == 1)
            return false;
        m_steps.pop_back();
        m_here = &m_steps.back();
        return true;
    }

private:
    static constexpr std::size_t k_usualDepth = 32;

    boost::container::small_vector<Step, k_usualDepth> m_steps;
    Step* m_here;
};

/// What is left of a list that a walk passes through.
template<typename Root>
class Remaining
{
public:
    explicit Remaining(MemberList<Root> const& members) noexcept : m_members(MemberAccess::View(members)) {}

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

/// Builds one member of `to` from each of `from`, at all depths. `branch` is given a member and what to call for one
/// that is built with members of its own: it takes the object, where its members come from and where they go to. For
/// all others `branch` returns false, and `leaf` makes a raw object, or null.
template<typename From, typename To, typename Branch, typename MakeLeaf>
void BuildMembers(MemberList<From> const& from, MemberList<To>& to, Branch&& branch, MakeLeaf&& leaf)
{
    struct Step
    {
        Remaining<From> left;
        MemberList<To>* to;

        Step(MemberList<From> const& list, MemberList<To>& made) noexcept : left(list), to(&made) {}
    };
    MemberAccess::Reserve(to, MemberAccess::View(from).size());
    Path<Step> path(from, to);
    do {
        // By hand, since the compiler cannot know that nothing else sees the step.
        Remaining<From> left = path.Here().left;
        MemberList<To>* target = path.Here().to;
        auto const descend = [&](boost::intrusive_ptr<To> object, MemberList<From> const& source,
                                 MemberList<To>& members) {
            MemberAccess::Append(*target, std::move(object));
            MemberAccess::Reserve(members, MemberAccess::View(source).size());
            path.Here().left = left;
            path.Descend(source, members);
            left = path.Here().left;
            target = &members;
            return true;
        };
        while (!left.Empty()) {
            From const& member = *left.Take();
            if (branch(member, descend))
                continue;
            if (auto made = FirstReference::Of<To>(leaf(member)))
                MemberAccess::Append(*target, std::move(made));
        }
    } while (path.Ascend());
}

/// Fills `to` with a duplicate of each member, under the member's own identity.
template<typename Root>
void CopyMembers(MemberList<Root> const& from, MemberList<Root>& to)
{
    auto const copy = []<typename Family>(Family const& object, auto& descend) {
        auto made = FirstReference::OfNew(Nesting<Root>::template MakeLike<Family>(object));
        MemberList<Root>& members = MemberAccess::Of(*made);
        return descend(std::move(made), MemberAccess::Of(object), members);
    };
    BuildMembers(
        from, to,
        [&copy](Root const& member, auto& descend) {
            using Composite = typename Nesting<Root>::Composite;
            using Collection = typename Nesting<Root>::Collection;
            if (IsExactly<Composite>(member))
                return copy(static_cast<Composite const&>(member), descend);
            if (IsExactly<Collection>(member))
                return copy(static_cast<Collection const&>(member), descend);
            return false;
        },
        [](Root const& member) { return member.DeepCopy(); });
}

} // namespace Legacy::If::Detail
