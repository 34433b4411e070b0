#pragma once

#include <Legacy/If/Detail/Family.h>
#include <Legacy/If/Detail/ValueItem.h>
#include <Legacy/If/Export.h>
#include <Legacy/If/NumericTraits.h>

#include <memory>
#include <string>

namespace Legacy::If {

/// Schema of a number: a least and a greatest value, both inclusive, and a default. `T` is one of the ten traits.
///
/// The bounds act in the operations that name them and nowhere else, so a value may lie outside them at any time.
template<typename T>
class LEGACY_IF_API NumericInfo : public Detail::InfoFamily<NumericInfo<T>, IfType_t::Numeric, T::k_numericType>
{
    using Family = Detail::InfoFamily<NumericInfo<T>, IfType_t::Numeric, T::k_numericType>;

public:
    using Element = typename T::T; ///< the type of the number

    /// The default 0 and the default bounds of the element type. For `float` and `double` these leave 0 out.
    NumericInfo(unsigned int const& id, std::string const& name, Permission_t const& permission);

    using Family::DeepCopy;
    [[nodiscard]] NumericInfo* DeepCopy(unsigned int id, std::string const& name,
                                        Permission_t const& permission) const override;
    [[nodiscard]] ItemBase* CreateItem() const override;

    Element GetDefault() const noexcept { return m_default; }
    Element GetMax() const noexcept { return m_max; }
    Element GetMin() const noexcept { return m_min; }
    /// Stores the value, or the bound that it lies beyond.
    void SetDefault(Element value) noexcept;
    /// Stores the least value; a smaller greatest value and a smaller default are raised to it.
    void SetMin(Element value) noexcept;
    /// Stores the greatest value; a greater least value and a greater default are lowered to it.
    void SetMax(Element value) noexcept;

    /// Equal types and bounds, within the tolerance for floating-point types; the default is not compared.
    bool IsEqualBounds(boost::intrusive_ptr<InfoBase const> const& other) const override;
    /// Narrows the bounds to what both allow; the default stays, even where it no longer lies within them.
    /// @return 0; #IfErrBoundsTypeMismatch; #IfErrBoundsDisjoint with nothing changed.
    int MergeBounds(boost::intrusive_ptr<InfoBase const> const& other) override;
    /// From a number's schema of any element type: default and bounds, each converted. A floating-point difference
    /// within the tolerance is stored and not told as a change.
    int AssignValue(boost::intrusive_ptr<InfoBase const> const& source, bool* changed) override;

    /// Contract: 8-bit numbers stand here and in findings as the character of that code, but as numbers in the compact
    /// forms; both are compared with stored texts.
    void DumpVal(std::ostream& os) const override;
    std::ostream& operator<<(std::ostream& os) const override;

private:
    Element m_default;
    Element m_max;
    Element m_min;
};

/// Value of a parameter that is a number.
template<typename T>
class LEGACY_IF_API NumericItem
    : public Detail::ValueItem<NumericItem<T>, IfType_t::Numeric, typename T::T, T::k_numericType, NumericEqual<T>>
{
    using Family =
        Detail::ValueItem<NumericItem<T>, IfType_t::Numeric, typename T::T, T::k_numericType, NumericEqual<T>>;

public:
    using Element = typename T::T; ///< the type of the number

    explicit NumericItem(unsigned int id) : Family(id) {} ///< 0

    using Family::DeepCopy;
    [[nodiscard]] NumericItem* DeepCopy(unsigned int id) const override;

    using Family::SetVal;
    /// Stores the value if it lies within the bounds and the schema's default otherwise; nothing is cut to a bound.
    void SetVal(Element value, NumericInfo<T> const& info) noexcept;
    /// Moves a value that lies beyond a bound to that bound.
    void BoundVal(NumericInfo<T> const& info) noexcept;
    /// Whether the value is neither below the least nor above the greatest; true for a NaN.
    bool WithinBounds(NumericInfo<T> const& info) const noexcept;

    /// From a boolean (1 or 0), a number or an enumeration value, or the element at `index` of a list of numbers, whose
    /// end is #IfErrInvalidArgument. The number is converted, never cut to a bound. A floating-point difference within
    /// the tolerance is stored and not told as a change.
    int AssignArrayValue(boost::intrusive_ptr<ItemBase const> const& source, unsigned int index,
                         bool* changed) override;

    /// The number in its wire form.
    unsigned int GetSerialDataSize() const override;
    int Serialize(ItemBase::SerialStruct_t* record) const override;
    int Deserialize(ItemBase::ConstSerialStruct_t const* record) override;

    /// Fails if the value is below the least or above the greatest, as the two virtual halves find; the schema must be
    /// of the same element type. A NaN passes.
    std::shared_ptr<ResultElem const> Validate(boost::intrusive_ptr<InfoBase const> const& info) override;
    std::shared_ptr<ResultElem const> ValidateMin(boost::intrusive_ptr<InfoBase const> const& info) override;
    std::shared_ptr<ResultElem const> ValidateMax(boost::intrusive_ptr<InfoBase const> const& info) override;
    /// Reads a number, without regard to any bound.
    ///
    /// Contract: of an 8-bit number the low byte of what was read is kept, so 300 is taken as 44 and not refused.
    bool SetValFromStream(std::istream& in, std::ostream& out,
                          boost::intrusive_ptr<InfoBase const> const& info) override;
    void DumpVal(std::ostream& os) const override;
    std::ostream& operator<<(std::ostream& os) const override;

private:
    using Family::m_value;
};

extern template class NumericInfo<U8Traits>;
extern template class NumericInfo<S8Traits>;
extern template class NumericInfo<U16Traits>;
extern template class NumericInfo<S16Traits>;
extern template class NumericInfo<U32Traits>;
extern template class NumericInfo<S32Traits>;
extern template class NumericInfo<U64Traits>;
extern template class NumericInfo<S64Traits>;
extern template class NumericInfo<FloatTraits>;
extern template class NumericInfo<DoubleTraits>;

extern template class NumericItem<U8Traits>;
extern template class NumericItem<S8Traits>;
extern template class NumericItem<U16Traits>;
extern template class NumericItem<S16Traits>;
extern template class NumericItem<U32Traits>;
extern template class NumericItem<S32Traits>;
extern template class NumericItem<U64Traits>;
extern template class NumericItem<S64Traits>;
extern template class NumericItem<FloatTraits>;
extern template class NumericItem<DoubleTraits>;

} // namespace Legacy::If
