#pragma once

#include <Legacy/If/Export.h>
#include <Legacy/If/Family.h>
#include <Legacy/If/SizeBounds.h>

#include <memory>
#include <string>
#include <vector>

namespace Legacy::If {

/// Schema of a list of booleans: how many there may be, and a default. The elements themselves are not bounded.
class LEGACY_IF_API BoolArrayInfo : public InfoFamily<BoolArrayInfo, IfType_t::BoolArray>
{
public:
    /// An empty default and the sizes 0 to 2147483647, so that a schema left as it is refuses no list.
    BoolArrayInfo(unsigned int const& id, std::string const& name, Permission_t const& permission);

    using InfoFamily::DeepCopy;
    BoolArrayInfo* DeepCopy(unsigned int id, std::string const& name, Permission_t const& permission) const override;
    ItemBase* CreateItem() const override;

    std::vector<bool> const& GetDefault() const noexcept { return m_default; }
    unsigned int GetDefaultSize() const noexcept { return static_cast<unsigned int>(m_default.size()); }
    unsigned int GetMinSize() const noexcept { return m_size.Min(); }
    unsigned int GetMaxSize() const noexcept { return m_size.Max(); }
    /// Pushes the greatest size along, and fills a default that is not empty up with false. Always 0.
    int SetMinSize(unsigned int n);
    /// Pushes the least size along, and cuts a longer default. Always 0.
    int SetMaxSize(unsigned int n);
    /// @return 0; #IfErrSizeOutOfRange, and nothing stored, for a list outside the sizes.
    int SetDefault(std::vector<bool> const& list);

    /// Equal types and sizes; the default is not compared.
    bool IsEqualBounds(boost::intrusive_ptr<InfoBase const> const& other) const override;
    /// Narrows the sizes; the default stays, even where it no longer fits.
    /// @return 0; #IfErrBoundsTypeMismatch; #IfErrBoundsDisjoint with nothing changed.
    int MergeBounds(boost::intrusive_ptr<InfoBase const> const& other) override;
    /// From a schema of a list of booleans: default and sizes.
    int AssignValue(boost::intrusive_ptr<InfoBase const> const& source, bool* changed) override;

    void DumpVal(std::ostream& os) const override;
    std::ostream& operator<<(std::ostream& os) const override;

private:
    SizeBounds m_size;
    std::vector<bool> m_default;

    friend class BoolArrayItem;
};

/// Value of a parameter that is a list of booleans.
class LEGACY_IF_API BoolArrayItem : public ItemFamily<BoolArrayItem, IfType_t::BoolArray>
{
public:
    explicit BoolArrayItem(unsigned int id); ///< empty

    /// A value with those elements, whatever any schema says. The caller owns it: count 0.
    static BoolArrayItem* Create(unsigned int id, std::vector<bool> const& value);

    using ItemFamily::DeepCopy;
    BoolArrayItem* DeepCopy(unsigned int id) const override;

    unsigned int GetSize() const noexcept { return static_cast<unsigned int>(m_value.size()); }
    std::vector<bool> GetVal() const { return m_value; }
    std::vector<bool>& Val() noexcept { return m_value; } ///< no bound is applied
    std::vector<bool> const& Val() const noexcept { return m_value; }
    void SetVal(std::vector<bool> const& value) { m_value = value; }
    /// @return 0; #IfErrSizeOutOfRange, and nothing stored, for a list outside the schema's sizes.
    int SetVal(std::vector<bool> const& value, BoolArrayInfo const& info);

    bool IsEmpty() const override; ///< there are no elements
    bool IsEqualValue(boost::intrusive_ptr<ItemBase const> const& other) const override;
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
    void DumpVal(std::ostream& os) const override;
    std::ostream& operator<<(std::ostream& os) const override;

private:
    std::vector<bool> m_value;
};

} // namespace Legacy::If
