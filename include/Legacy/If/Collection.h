#pragma once

#include <Legacy/If/Detail/MemberList.h>

#include <memory>
#include <string>

namespace Legacy::If {

/// Schema of a loose list of parameters. It has the shape of a `CompositeInfo`, but says nothing about the values.
class LEGACY_IF_API CollectionInfo : public Detail::InfoList<CollectionInfo, IfType_t::Collection>
{
public:
    CollectionInfo(unsigned int const& id, std::string const& name, Permission_t const& permission);

    using InfoList::DeepCopy;
    /// Duplicates each member under its own identity.
    [[nodiscard]] CollectionInfo* DeepCopy(unsigned int id, std::string const& name,
                                           Permission_t const& permission) const override;
    /// A `CollectionItem` without members.
    [[nodiscard]] ItemBase* CreateItem() const override;
};

extern template class LEGACY_IF_BASE_API Detail::InfoList<CollectionInfo, IfType_t::Collection>;

/// Value that is a loose list of values: never refused, without a serial form, and not to be read from text.
class LEGACY_IF_API CollectionItem : public Detail::ItemList<CollectionItem, IfType_t::Collection>
{
public:
    explicit CollectionItem(unsigned int id);

    using ItemList::DeepCopy;
    /// Duplicates each member under its own id.
    [[nodiscard]] CollectionItem* DeepCopy(unsigned int id) const override;

    /// From a collection: its members, shared and not duplicated. `index` is ignored, and `changed` becomes true on
    /// success, whatever the members were.
    int AssignArrayValue(boost::intrusive_ptr<ItemBase const> const& source, unsigned int index,
                         bool* changed) override;

    unsigned int GetSerialDataSize() const override; ///< 0
    /// @return #IfErrTypeNotAssignable, always; the record is not touched.
    int Serialize(SerialStruct_t* record) const override;
    int Deserialize(ConstSerialStruct_t const* record) override;

    /// Passes under any schema, and under none.
    std::shared_ptr<ResultElem const> Validate(boost::intrusive_ptr<InfoBase const> const& info) override;
    /// Reads nothing, reports "Impl. me" and returns false.
    bool SetValFromStream(std::istream& in, std::ostream& out,
                          boost::intrusive_ptr<InfoBase const> const& info) override;
};

extern template class LEGACY_IF_BASE_API Detail::ItemList<CollectionItem, IfType_t::Collection>;

} // namespace Legacy::If
