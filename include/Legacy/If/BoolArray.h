#pragma once

#include <Legacy/If/Detail/Array.h>
#include <Legacy/If/Export.h>

#include <memory>
#include <string>
#include <vector>

namespace Legacy::If {

/// Schema of a list of booleans: how many there may be, and a default. The elements themselves are not bounded.
class LEGACY_IF_API BoolArrayInfo : public Detail::ArrayInfo<BoolArrayInfo, IfType_t::BoolArray, bool>
{
public:
    /// An empty default and the sizes 0 to 2147483647, so that a schema left as it is refuses no list.
    BoolArrayInfo(unsigned int const& id, std::string const& name, Permission_t const& permission);

    using ArrayInfo::DeepCopy;
    [[nodiscard]] BoolArrayInfo* DeepCopy(unsigned int id, std::string const& name,
                                          Permission_t const& permission) const override;
    [[nodiscard]] ItemBase* CreateItem() const override;

    /// From a schema of a list of booleans: default and sizes.
    int AssignValue(boost::intrusive_ptr<InfoBase const> const& source, bool* changed) override;
};

/// Value of a parameter that is a list of booleans.
class LEGACY_IF_API BoolArrayItem : public Detail::ArrayItem<BoolArrayItem, BoolArrayInfo, IfType_t::BoolArray, bool>
{
public:
    explicit BoolArrayItem(unsigned int id); ///< empty

    using ArrayItem::DeepCopy;
    [[nodiscard]] BoolArrayItem* DeepCopy(unsigned int id) const override;

    /// From a boolean, into the element at `index`: the list grows to hold it, with false before it. From a list of
    /// booleans as a whole, with `index` ignored.
    int AssignArrayValue(boost::intrusive_ptr<ItemBase const> const& source, unsigned int index,
                         bool* changed) override;

    /// The number of elements modulo 8 in one byte, then the elements as bits, the first in the highest, the last byte
    /// filled up with zeros. Reading appends to the list as it stands.
    unsigned int GetSerialDataSize() const override;
    int Serialize(SerialStruct_t* record) const override;
    /// @return 0; also #IfErrInvalidArgument, with nothing appended, for no payload or a first byte above 7.
    int Deserialize(ConstSerialStruct_t const* record) override;

    /// Fails if the number of elements is outside the schema's sizes; the elements are not looked at.
    ///
    /// Contract: one key, whose word is Min, serves both ends; message catalogues hold no other.
    std::shared_ptr<ResultElem const> Validate(boost::intrusive_ptr<InfoBase const> const& info) override;
    /// Reads a count and that many booleans; on failure the list stays as it was.
    bool SetValFromStream(std::istream& in, std::ostream& out,
                          boost::intrusive_ptr<InfoBase const> const& info) override;
    std::ostream& operator<<(std::ostream& os) const override;
};

} // namespace Legacy::If
