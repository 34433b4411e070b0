#pragma once

#include <Legacy/If/Detail/MemberList.h>

#include <memory>
#include <string>

namespace Legacy::If {

/// Schema of a parameter that is made of other parameters, position for position.
class LEGACY_IF_API CompositeInfo : public Detail::InfoList<CompositeInfo, IfType_t::Composite>
{
public:
    CompositeInfo(unsigned int const& id, std::string const& name, Permission_t const& permission);

    using InfoList::DeepCopy;
    /// Duplicates each member under its own identity.
    [[nodiscard]] CompositeInfo* DeepCopy(unsigned int id, std::string const& name,
                                          Permission_t const& permission) const override;
    /// A `CompositeItem` with one member for each member of the schema, as that makes it.
    [[nodiscard]] ItemBase* CreateItem() const override;
};

extern template class LEGACY_IF_BASE_API Detail::InfoList<CompositeInfo, IfType_t::Composite>;

/// Value of a parameter that is made of other parameters.
class LEGACY_IF_API CompositeItem : public Detail::ItemList<CompositeItem, IfType_t::Composite>
{
public:
    explicit CompositeItem(unsigned int id);

    using ItemList::DeepCopy;
    /// Duplicates each member under its own id.
    [[nodiscard]] CompositeItem* DeepCopy(unsigned int id) const override;

    /// From a composite: a duplicate of each member. `index` is ignored.
    ///
    /// Contract: unlike other families this writes false to `changed` when the source is of another type, and true on
    /// success even if the values were equal before: callers reset their update flag through it.
    int AssignArrayValue(boost::intrusive_ptr<ItemBase const> const& source, unsigned int index,
                         bool* changed) override;

    /// The count, and a header of ten bytes and a payload for each member; see #Serialize.
    unsigned int GetSerialDataSize() const override;
    /// Writes the low 16 bits of the count, then each member's record, header and payload. A member that has no serial
    /// form, or says it has a payload and shows none, leaves ten zero bytes. What members leave of the predicted size
    /// is zero at the end; where they write more than they predicted, the size is what was written.
    /// @return 0; #IfErrInvalidArgument for a null record and for more than the record's 32-bit size can tell.
    int Serialize(SerialStruct_t* record) const override;
    /// Rebuilds the members and appends them to those that stand.
    ///
    /// Contract: the next member is looked for behind the rebuilt member's own #GetSerialDataSize, not behind the size
    /// in its header. The two agree but for sparse texts; records in store rest on where that lands.
    /// @return 0; #IfErrNullArgument; #IfErrInvalidArgument for a record that does not fit; #IfErrNotSerializable, with
    ///         the members before it kept, at the first member that does not rebuild.
    int Deserialize(ConstSerialStruct_t const* record) override;

    /// Fails on a schema that is no composite's by its tag or its class, then on another number of members than the
    /// schema's, then on the first member of another type than its schema.
    ///
    /// Contract: the members' values are not validated. Callers validate members one by one, to report each under its
    /// own name, and a composite that failed for one of them would be reported twice.
    std::shared_ptr<ResultElem const> Validate(boost::intrusive_ptr<InfoBase const> const& info) override;
    /// Empties the list and reads a member for each of the schema's. What was read before a failure stays.
    ///
    /// Contract: members are read without their schema, so a composite among them always fails: one level can be read.
    bool SetValFromStream(std::istream& in, std::ostream& out,
                          boost::intrusive_ptr<InfoBase const> const& info) override;
};

extern template class LEGACY_IF_BASE_API Detail::ItemList<CompositeItem, IfType_t::Composite>;

} // namespace Legacy::If
