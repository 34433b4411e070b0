#pragma once

#include <Legacy/If/Detail/Array.h>
#include <Legacy/If/Export.h>
#include <Legacy/If/NumericTraits.h>

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

namespace Legacy::If {

template<typename T>
class LEGACY_IF_API NumericArrayItem;
template<typename T>
class LEGACY_IF_API RectArrayInfo;

/// Schema of a list of numbers: how many there may be, a least and a greatest value for each, all inclusive, and a
/// default. `T` is one of the ten traits. The values of the default are not looked at.
///
/// Contract: the element bounds take no part in `IsEqualBounds` and `MergeBounds`, for any element type: callers take
/// schemas for interchangeable that differ in them alone.
template<typename T>
class LEGACY_IF_API NumericArrayInfo
    : public Detail::ArrayInfo<NumericArrayInfo<T>, IfType_t::NumericArray, typename T::T, T::k_numericType>
{
    using Family = Detail::ArrayInfo<NumericArrayInfo, IfType_t::NumericArray, typename T::T, T::k_numericType>;

public:
    using Element = typename T::T; ///< the type of a number

    /// An empty default, the sizes 1 to 2147483647, and the default bounds of the element type. A value made from such
    /// a schema is too short for it until a default is set or the least size lowered.
    NumericArrayInfo(unsigned int const& id, std::string const& name, Permission_t const& permission);

    using Family::DeepCopy;
    /// Contract: the copy has the element bounds that a new schema has, not those of this one. Applications set them
    /// anew on what they copy; the copy constructor is the way to keep them.
    [[nodiscard]] NumericArrayInfo* DeepCopy(unsigned int id, std::string const& name,
                                             Permission_t const& permission) const override;
    [[nodiscard]] ItemBase* CreateItem() const override;

    Element GetMin() const noexcept { return m_min; }
    Element GetMax() const noexcept { return m_max; }
    /// Stores the least value; a smaller greatest value is raised to it.
    void SetMin(Element value) noexcept;
    /// Stores the greatest value; a greater least value is lowered to it.
    void SetMax(Element value) noexcept;

    /// From a schema of a list of numbers of any element type: default, sizes and element bounds, converted. A
    /// floating-point difference within the tolerance is stored and not told as a change.
    ///
    /// Contract: the default takes as many elements as the bytes of the source's default hold of this element type; see
    /// NumericArrayItem::AssignArrayValue().
    ///
    /// From a schema of a list of rectangles, four numbers to each: the sizes times four, modulo 2^32; the defaults of
    /// the corners; the least and the greatest number that any axis allows. Differences are told exactly here.
    int AssignValue(boost::intrusive_ptr<InfoBase const> const& source, bool* changed) override;

private:
    int AssignRects_(RectArrayInfo<U16Traits> const& schema, bool* changed);

    using Family::m_default;
    using Family::m_size;

    Element m_max;
    Element m_min;
};

/// Value of a parameter that is a list of numbers.
template<typename T>
class LEGACY_IF_API NumericArrayItem
    : public Detail::ArrayItem<NumericArrayItem<T>, NumericArrayInfo<T>, IfType_t::NumericArray, typename T::T,
                               T::k_numericType, NumericEqual<T>>
{
    using Family = Detail::ArrayItem<NumericArrayItem, NumericArrayInfo<T>, IfType_t::NumericArray, typename T::T,
                                     T::k_numericType, NumericEqual<T>>;

public:
    using Element = typename T::T; ///< the type of a number

    explicit NumericArrayItem(unsigned int id); ///< empty

    using Family::DeepCopy;
    [[nodiscard]] NumericArrayItem* DeepCopy(unsigned int id) const override;

    /// From a boolean (1 or 0), a number or an enumeration value, into the element at `index`: the list grows to hold
    /// it, with zeros before it. From a list of numbers as a whole, with `index` ignored. From a rectangle, into the
    /// four elements from `index` on, and from a list of rectangles as a whole, both in the order of RectItem::Flat and
    /// with differences told exactly. Numbers are converted, never cut to a bound. An element equal to the new one, for
    /// floating-point types within the tolerance, keeps its value.
    ///
    /// Contract: a list taken as a whole sets the size to the source's bytes divided by the width of an own element,
    /// so a narrower source gives its first part alone and a wider one leaves zeros behind its elements; receivers
    /// count on the size that this gives.
    int AssignArrayValue(boost::intrusive_ptr<ItemBase const> const& source, unsigned int index,
                         bool* changed) override;

    /// The elements in their wire form, with no count.
    unsigned int GetSerialDataSize() const override;
    int Serialize(ItemBase::SerialStruct_t* record) const override;
    /// @return 0; also #IfErrInvalidArgument, with nothing changed, for a payload that ends within an element.
    int Deserialize(ItemBase::ConstSerialStruct_t const* record) override;

    /// Fails if the number of elements is outside the schema's sizes, then at the first element outside its bounds; the
    /// finding names the bound. A NaN passes.
    std::shared_ptr<ResultElem const> Validate(boost::intrusive_ptr<InfoBase const> const& info) override;
    /// Reads a count and that many numbers, 8-bit ones with the low byte kept; on failure the list stays as it was.
    bool SetValFromStream(std::istream& in, std::ostream& out,
                          boost::intrusive_ptr<InfoBase const> const& info) override;
    std::ostream& operator<<(std::ostream& os) const override;

private:
    bool IsEqualVal_(std::size_t index, Element value) const noexcept { return T::Equal(m_value[index], value); }
    bool AssignValueFromRectangle_(std::size_t index, Element left, Element top, Element right,
                                   Element bottom) noexcept;
    template<typename Rect>
    bool AssignRect_(std::size_t index, Rect const& rect) noexcept;

    using Family::m_value;
};

extern template class NumericArrayInfo<U8Traits>;
extern template class NumericArrayInfo<S8Traits>;
extern template class NumericArrayInfo<U16Traits>;
extern template class NumericArrayInfo<S16Traits>;
extern template class NumericArrayInfo<U32Traits>;
extern template class NumericArrayInfo<S32Traits>;
extern template class NumericArrayInfo<U64Traits>;
extern template class NumericArrayInfo<S64Traits>;
extern template class NumericArrayInfo<FloatTraits>;
extern template class NumericArrayInfo<DoubleTraits>;

extern template class NumericArrayItem<U8Traits>;
extern template class NumericArrayItem<S8Traits>;
extern template class NumericArrayItem<U16Traits>;
extern template class NumericArrayItem<S16Traits>;
extern template class NumericArrayItem<U32Traits>;
extern template class NumericArrayItem<S32Traits>;
extern template class NumericArrayItem<U64Traits>;
extern template class NumericArrayItem<S64Traits>;
extern template class NumericArrayItem<FloatTraits>;
extern template class NumericArrayItem<DoubleTraits>;

} // namespace Legacy::If
