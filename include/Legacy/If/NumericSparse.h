#pragma once

#include <Legacy/If/Detail/AllowedValues.h>
#include <Legacy/If/Detail/Family.h>
#include <Legacy/If/Detail/ValueItem.h>
#include <Legacy/If/Export.h>
#include <Legacy/If/NumericTraits.h>

#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace Legacy::If {

template<typename T>
class LEGACY_IF_API NumericSparseItem;

/// Schema of a number that may take only the values of a table: the table, in the order given and neither sorted nor
/// freed of duplicates, and a default. `T` is one of the ten traits.
///
/// The table binds the default and the checked setter of the value, nothing else.
template<typename T>
class LEGACY_IF_API NumericSparseInfo
    : public Detail::InfoFamily<NumericSparseInfo<T>, IfType_t::NumericSparse, T::k_numericType>
{
    using Family = Detail::InfoFamily<NumericSparseInfo<T>, IfType_t::NumericSparse, T::k_numericType>;

public:
    using Element = typename T::T; ///< the type of the number

    /// An empty table and the default 0.
    NumericSparseInfo(unsigned int const& id, std::string const& name, Permission_t const& permission);

    using Family::DeepCopy;
    [[nodiscard]] NumericSparseInfo* DeepCopy(unsigned int id, std::string const& name,
                                              Permission_t const& permission) const override;
    [[nodiscard]] ItemBase* CreateItem() const override;

    Element GetDefault() const noexcept { return m_allowed.Default(); }
    unsigned int GetSize() const noexcept { return m_allowed.Size(); }
    std::vector<Element>& GetTable() noexcept { return m_allowed.Table(); } ///< the default is not looked after
    std::vector<Element> const& GetTable() const noexcept { return m_allowed.Table(); }
    /// Replaces the table. A default that is not in it becomes its first value, or 0 for an empty one. Always 0. The
    /// argument stays as it is; the form for a list that can be changed is the one that tables of members name.
    /// @{
    int SetTable(std::vector<Element>& table) { return SetTable(std::as_const(table)); }
    int SetTable(std::vector<Element> const& table);
    /// @}
    /// @return 0; #IfErrNotInSet, and nothing stored, for a value that is not in the table.
    int SetDefault(Element value);
    /// Whether the table holds the value, within the tolerance for floating-point types.
    bool IsPresent(Element value) const noexcept;

    /// Contract: always false, even for this very schema: callers take such schemas for different and send them anew.
    bool IsEqualBounds(boost::intrusive_ptr<InfoBase const> const& other) const override;
    /// Merges nothing.
    /// @return #IfErrTypeNotAssignable for a schema of the same type, otherwise #IfErrBoundsTypeMismatch.
    int MergeBounds(boost::intrusive_ptr<InfoBase const> const& other) override;
    /// From a schema of this family of any element type: table and default, converted. A floating-point difference
    /// within the tolerance is stored and not told as a change.
    ///
    /// Contract: the table takes as many values as the bytes of the source's table hold of this element type; see
    /// NumericArrayItem::AssignArrayValue().
    int AssignValue(boost::intrusive_ptr<InfoBase const> const& source, bool* changed) override;

    /// The table is not printed, and 8-bit numbers stand as characters.
    void DumpVal(std::ostream& os) const override;
    std::ostream& operator<<(std::ostream& os) const override;

private:
    Detail::AllowedValues<Element, T::Equal> m_allowed;

    friend class NumericSparseItem<T>;
};

/// Value of a parameter that is a number out of a table. It may at any time lie outside the table.
template<typename T>
class LEGACY_IF_API NumericSparseItem : public Detail::ValueItem<NumericSparseItem<T>, IfType_t::NumericSparse,
                                                                 typename T::T, T::k_numericType, NumericEqual<T>>
{
    using Family = Detail::ValueItem<NumericSparseItem<T>, IfType_t::NumericSparse, typename T::T, T::k_numericType,
                                     NumericEqual<T>>;

public:
    using Element = typename T::T; ///< the type of the number

    explicit NumericSparseItem(unsigned int id); ///< 0

    using Family::DeepCopy;
    [[nodiscard]] NumericSparseItem* DeepCopy(unsigned int id) const override;

    using Family::SetVal;
    /// Stores a value of the table, and the schema's default for any other.
    void SetVal(Element value, NumericSparseInfo<T> const& info) noexcept;

    /// From a value of this family of any element type, converted; `index` is ignored. A floating-point difference
    /// within the tolerance is stored and not told as a change.
    int AssignArrayValue(boost::intrusive_ptr<ItemBase const> const& source, unsigned int index,
                         bool* changed) override;

    /// The number in its wire form.
    unsigned int GetSerialDataSize() const override;
    int Serialize(ItemBase::SerialStruct_t* record) const override;
    int Deserialize(ItemBase::ConstSerialStruct_t const* record) override;

    /// Contract: always fails, even for a value of the table: the family has no validation, and callers ask
    /// NumericSparseInfo::IsPresent() instead.
    std::shared_ptr<ResultElem const> Validate(boost::intrusive_ptr<InfoBase const> const& info) override;
    /// Reads a number, of an 8-bit one the low byte; the table is not consulted.
    bool SetValFromStream(std::istream& in, std::ostream& out,
                          boost::intrusive_ptr<InfoBase const> const& info) override;
    /// Prints an 8-bit number as the character of that code.
    void DumpVal(std::ostream& os) const override;
    std::ostream& operator<<(std::ostream& os) const override;

private:
    using Family::m_value;
};

extern template class NumericSparseInfo<U8Traits>;
extern template class NumericSparseInfo<S8Traits>;
extern template class NumericSparseInfo<U16Traits>;
extern template class NumericSparseInfo<S16Traits>;
extern template class NumericSparseInfo<U32Traits>;
extern template class NumericSparseInfo<S32Traits>;
extern template class NumericSparseInfo<U64Traits>;
extern template class NumericSparseInfo<S64Traits>;
extern template class NumericSparseInfo<FloatTraits>;
extern template class NumericSparseInfo<DoubleTraits>;

extern template class NumericSparseItem<U8Traits>;
extern template class NumericSparseItem<S8Traits>;
extern template class NumericSparseItem<U16Traits>;
extern template class NumericSparseItem<S16Traits>;
extern template class NumericSparseItem<U32Traits>;
extern template class NumericSparseItem<S32Traits>;
extern template class NumericSparseItem<U64Traits>;
extern template class NumericSparseItem<S64Traits>;
extern template class NumericSparseItem<FloatTraits>;
extern template class NumericSparseItem<DoubleTraits>;

} // namespace Legacy::If
