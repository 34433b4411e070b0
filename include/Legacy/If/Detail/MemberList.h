#pragma once

#include <Legacy/If/Detail/Family.h>
#include <Legacy/If/Export.h>

#include <cstddef>
#include <span>
#include <vector>

namespace Legacy::If::Detail {

struct MemberAccess;

/// The members of one composite or collection, in order; `Root` is `InfoBase` or `ItemBase`. It never holds a null
/// pointer. Copies share the members; one object may stand in several lists, and more than once in one.
///
/// Letting a list go releases its members in order, and after them, list by list, the members of lists that thereby
/// came to their end. So a tree of any depth and of any classes ends in time linear in its size, on a bounded stack and
/// without an allocation. While this goes on, every list that the same thread lets go only lines up, whosever it is: a
/// member's destructor that clears or replaces another list finds the members of that one alive until it has returned.
template<typename Root>
class LEGACY_IF_API MemberList
{
public:
    using Pointer = boost::intrusive_ptr<Root>;

    MemberList() noexcept = default;
    MemberList(MemberList const& other);
    MemberList& operator=(MemberList const& other);
    ~MemberList();

    void Swap(MemberList& other) noexcept { std::swap(m_node, other.m_node); }

    /// Appends; false for null.
    bool Add(Pointer member);
    /// Replaces; false, and nothing changes, for null and for an index past the end.
    bool Set(unsigned int index, Pointer const& member);
    /// Takes over the pointers that are not null.
    void Assign(std::span<Pointer const> members);
    void Reserve(std::size_t count);
    void Clear() noexcept;

    std::span<Pointer const> View() const noexcept;
    unsigned int Size() const noexcept { return static_cast<unsigned int>(View().size()); }
    /// Null for an index past the end.
    Pointer At(unsigned int index) const;

private:
    friend struct MemberAccess;

    struct Node;

    static void Drop_(Node* node) noexcept;

    Node* m_node = nullptr; // null while nothing was ever added
};

extern template class MemberList<InfoBase>;
extern template class MemberList<ItemBase>;

/// What composite and collection schemas say alike: an ordered list of member schemas of any family, further
/// composites and collections among them. There is no limit to the depth. `Self` is the family's own class.
///
/// Members are shared, not duplicated, by everything but #DeepCopy: what one list's owner changes in a member, the
/// other sees, also on another thread. They are released when the last list that holds them ends, but while a member of
/// some list is being destroyed, those of other lists that its destructor lets go are put off until it has returned.
/// Each operation takes time linear in the number of members at all depths and a bounded stack; a member of a class
/// that an application derived answers through its own virtual operations.
///
/// A member counts as often as it stands there. Forty schemas each of which stands twice in the next have 2^40 leaves:
/// printing, copying and validating take a step for each, and only a comparison looks at each shared schema once. A
/// schema that is put among its own members, however deep, is never released, and walks over it do not end. Records and
/// texts cannot bring such trees about, since each place in them makes an object of its own; it is for callers to avoid
/// them.
template<typename Self, IfType_t Type>
class LEGACY_IF_API InfoList : public InfoFamily<Self, Type>
{
public:
    using Pointer = boost::intrusive_ptr<InfoBase>;
    using ConstPointer = boost::intrusive_ptr<InfoBase const>;

    /// No members.
    InfoList(unsigned int const& id, std::string const& name, Permission_t const& permission)
        : InfoFamily<Self, Type>(id, name, permission)
    {}

    /// Appends a schema; false for null.
    bool AddInfo(Pointer const& info) { return m_members.Add(info); }
    /// The same; `index` becomes its position, and is left alone on false.
    bool AddInfo(Pointer const& info, unsigned int& index);
    /// Replaces the member at `index`; false, and nothing changes, for null and for an index past the end.
    bool SetInfo(unsigned int index, Pointer const& info) { return m_members.Set(index, info); }
    /// Replaces all members; null pointers are left out silently.
    void SetInfos(std::vector<Pointer> const& infos) { m_members.Assign(infos); }

    /// Replaces the content of `infos` with the members.
    void GetInfos(std::vector<Pointer>& infos);
    void GetInfos(std::vector<ConstPointer>& infos) const;
    /// The member, or null for an index past the end.
    Pointer GetInfo(unsigned int index) { return m_members.At(index); }
    ConstPointer GetInfo(unsigned int index) const { return m_members.At(index); }

    unsigned int GetSize() const noexcept { return m_members.Size(); }
    bool IsPresent(unsigned int index) const noexcept { return index < GetSize(); }

    /// Equal types and counts, and each member bounds its values as its counterpart does.
    bool IsEqualBounds(ConstPointer const& other) const override;
    /// There is nothing to merge.
    /// @return #IfErrTypeNotAssignable, always.
    int MergeBounds(ConstPointer const& other) override;
    /// From a schema of the same type: its members, shared.
    ///
    /// Contract: `changed` becomes true whatever the members were; comparing trees of schemas costs more than the
    /// update that callers hang on it.
    int AssignValue(ConstPointer const& source, bool* changed) override;

    /// The members are not descended into.
    void DumpVal(std::ostream& os) const override;
    /// The members in parentheses, each in its own form.
    std::ostream& operator<<(std::ostream& os) const override;

protected:
    /// A new object of the family's class under the given identity that holds a duplicate of each member.
    Self* DuplicateAs_(unsigned int id, std::string const& name, Permission_t const& permission) const;

    MemberList<InfoBase> m_members;

private:
    friend struct MemberAccess;
};

/// What composite and collection values say alike: an ordered list of member values of any family, further composites
/// and collections among them. There is no limit to the depth. `Self` is the family's own class.
///
/// Members are shared by copies, by `=`, by what sets and gets them, and where a collection is assigned; they are
/// duplicated by #DeepCopy and where a composite is assigned. What `InfoList` says of shared members, their release,
/// cost, derived classes and cycles holds here too.
template<typename Self, IfType_t Type>
class LEGACY_IF_API ItemList : public ItemFamily<Self, Type>
{
public:
    using Pointer = boost::intrusive_ptr<ItemBase>;
    using ConstPointer = boost::intrusive_ptr<ItemBase const>;

    /// No members.
    explicit ItemList(unsigned int id) : ItemFamily<Self, Type>(id) {}

    /// Appends a value; false for null.
    bool AddItem(Pointer const& item) { return m_members.Add(item); }
    /// The same; `index` becomes its position, and is left alone on false.
    bool AddItem(Pointer const& item, unsigned int& index);
    /// Replaces the member at `index`; false, and nothing changes, for null and for an index past the end.
    bool SetItem(unsigned int index, Pointer const& item) { return m_members.Set(index, item); }
    /// Replaces all members; null pointers are left out silently.
    void SetItems(std::vector<Pointer> const& items) { m_members.Assign(items); }

    /// Replaces the content of `items` with the members.
    void GetItems(std::vector<Pointer>& items);
    void GetItems(std::vector<ConstPointer>& items) const;
    /// The member, or null for an index past the end.
    Pointer GetItem(unsigned int index) { return m_members.At(index); }
    ConstPointer GetItem(unsigned int index) const { return m_members.At(index); }

    unsigned int GetSize() const noexcept { return m_members.Size(); }
    bool IsPresent(unsigned int index) const noexcept { return index < GetSize(); }

    bool IsEmpty() const override; ///< there are no members
    /// Equal types and counts, and each member equals its counterpart.
    bool IsEqualValue(ConstPointer const& other) const override;

    /// The third line tells the number of members.
    ///
    /// Contract: that line has no end; callers go on in it with what they print of the members.
    void DumpVal(std::ostream& os) const override;
    /// The members in parentheses, each in its own form.
    std::ostream& operator<<(std::ostream& os) const override;

protected:
    /// A new object of the family's class under the given id that holds a duplicate of each member.
    Self* DuplicateAs_(unsigned int id) const;
    /// Empties the list.
    void Cleanup_() noexcept { m_members.Clear(); }

    MemberList<ItemBase> m_members;

private:
    friend struct MemberAccess;
};

} // namespace Legacy::If::Detail
