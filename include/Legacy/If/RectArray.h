#pragma once

#include <Legacy/If/Coordinate.h>
#include <Legacy/If/Detail/Family.h>
#include <Legacy/If/Detail/OwnedPart.h>
#include <Legacy/If/Detail/PairInfo.h>
#include <Legacy/If/Detail/SizeBounds.h>
#include <Legacy/If/Export.h>
#include <Legacy/If/Rect.h>

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace Legacy::If {

/// Schema of a list of rectangles: how many there may be, and one point's schema for all top left and one for all
/// bottom right corners. There is no default. The element type is that of `U16Traits` alone.
///
/// The corners are objects of their own, always there and never shared with another schema.
///
/// Contract: the sizes take no part in `IsEqualBounds` and `MergeBounds`. Callers share the bounds of regions between
/// lists of different lengths.
template<typename T>
class LEGACY_IF_API RectArrayInfo
    : public Detail::PairInfo<RectArrayInfo<T>, IfType_t::RectArray, CoordinateInfo<T>, T::k_numericType>
{
    using Family = Detail::PairInfo<RectArrayInfo, IfType_t::RectArray, CoordinateInfo<T>, T::k_numericType>;

public:
    using Corner = CoordinateInfo<T>;

    /// From 0 to 2147483647 rectangles; corners with their own initial bounds, the id 0, no name and this permission.
    RectArrayInfo(unsigned int const& id, std::string const& name, Permission_t const& permission);

    /// Contract: the tag of a single rectangle and not that of the virtual #GetType. Callers choose an editor by it,
    /// and the one for rectangles serves lists of them; nothing in the library goes by it.
    static IfType_t GetTypeStatic() noexcept { return IfType_t::Rectangle; }

    using Family::DeepCopy;
    /// The corners keep their own identity.
    [[nodiscard]] RectArrayInfo* DeepCopy(unsigned int id, std::string const& name,
                                          Permission_t const& permission) const override;
    [[nodiscard]] ItemBase* CreateItem() const override; ///< an empty list

    unsigned int GetMinSize() const noexcept { return m_size.Min(); }
    unsigned int GetMaxSize() const noexcept { return m_size.Max(); }
    Detail::SizeBounds const& Sizes() const noexcept { return m_size; } ///< the least and the greatest size
    int SetMinSize(unsigned int n);                                     ///< Pushes the greatest size along. Always 0.
    int SetMaxSize(unsigned int n);                                     ///< Pushes the least size along. Always 0.

    boost::intrusive_ptr<Corner> const& TopLeft() noexcept { return m_first.Get(); }
    boost::intrusive_ptr<Corner> const& BottomRight() noexcept { return m_second.Get(); }
    boost::intrusive_ptr<Corner const> TopLeft() const noexcept { return m_first.Get(); }
    boost::intrusive_ptr<Corner const> BottomRight() const noexcept { return m_second.Get(); }

    /// From a schema of a list of rectangles: corners and sizes. From a schema of a list of numbers, four to a
    /// rectangle: sizes, and with a default of four numbers the corners' defaults.
    ///
    /// Contract: with such a default every axis ends with both bounds at the source's least number; its greatest plays
    /// no part, and bounds do not count as a change. Callers widen the bounds afterwards.
    /// @return 0; #IfErrNullSource; #IfErrTypeNotAssignable; #IfErrInvalidArgument, with nothing changed, for sizes
    ///         that are no multiples of 4 and for a default that has neither 0 nor 4 numbers.
    int AssignValue(boost::intrusive_ptr<InfoBase const> const& source, bool* changed) override;

    /// Contract: the line of the bottom right corner is labelled "topRight", by which readers of dumps know it.
    void DumpVal(std::ostream& os) const override;
    std::ostream& operator<<(std::ostream& os) const override;

private:
    RectArrayInfo(unsigned int id, std::string const& name, Permission_t const& permission, RectArrayInfo const& other);
    template<typename Schema>
    int AssignNumbers_(Schema const& schema, bool* changed);

    Detail::SizeBounds m_size;
    using Family::m_first;
    using Family::m_second;
};

/// Value of a parameter that is a list of rectangles, each held by value with the id 0.
template<typename T>
class LEGACY_IF_API RectArrayItem : public Detail::ItemFamily<RectArrayItem<T>, IfType_t::RectArray, T::k_numericType>
{
    using Family = Detail::ItemFamily<RectArrayItem<T>, IfType_t::RectArray, T::k_numericType>;

public:
    using Element = typename T::T; ///< the type of the numbers
    using Rect = RectItem<T>;

    explicit RectArrayItem(unsigned int id); ///< empty

    using Family::DeepCopy;
    [[nodiscard]] RectArrayItem* DeepCopy(unsigned int id) const override;

    unsigned int GetSize() const noexcept { return static_cast<unsigned int>(m_value.size()); }
    std::vector<Rect>& Val() noexcept { return m_value; } ///< no bound is applied
    std::vector<Rect> const& Val() const noexcept { return m_value; }
    std::vector<Rect> GetVal() const { return m_value; }
    void SetVal(std::vector<Rect> const& value) { m_value = value; }
    void SetVal(std::vector<Rect>&& value) noexcept { m_value = std::move(value); }
    /// @return 0; #IfErrSizeOutOfRange, and nothing stored, for a list outside the schema's sizes.
    int SetVal(std::vector<Rect> const& value, RectArrayInfo<T> const& info);

    /// Moves what lies beyond a bound to that bound.
    ///
    /// Contract: the schema of the top left corner serves both corners here, unlike in #WithinBounds, which a list can
    /// therefore fail afterwards. Callers keep regions inside the frame of the top left corner so.
    void BoundVal(RectArrayInfo<T> const& info) noexcept;
    /// Whether each corner of each rectangle lies within its own bounds. The number of rectangles is not looked at.
    bool WithinBounds(RectArrayInfo<T> const& info) const noexcept;

    bool IsEmpty() const override; ///< there are no rectangles
    bool IsEqualValue(boost::intrusive_ptr<ItemBase const> const& other) const override;
    /// From a list of numbers, four to a rectangle, or a list of rectangles, as a whole and with `index` ignored. From
    /// a rectangle of any element type into the place `index`: the list grows to hold it. Numbers are converted.
    /// @return 0; #IfErrNullSource; #IfErrTypeNotAssignable; #IfErrInvalidArgument, with nothing changed, for a list of
    ///         numbers that cannot be cut into rectangles.
    /// @throws std::length_error for an `index` of 214748364 or more
    int AssignArrayValue(boost::intrusive_ptr<ItemBase const> const& source, unsigned int index,
                         bool* changed) override;

    /// The four numbers of each rectangle in flat order, with no count.
    unsigned int GetSerialDataSize() const override;
    int Serialize(ItemBase::SerialStruct_t* record) const override;
    int Deserialize(ItemBase::ConstSerialStruct_t const* record) override;

    /// Contract: always fails, as with points and rectangles; a list is checked through #WithinBounds.
    std::shared_ptr<ResultElem const> Validate(boost::intrusive_ptr<InfoBase const> const& info) override;
    /// Reads a count and that many rectangles; on failure the list stays as it was.
    ///
    /// Contract: behind the count only the end of the input is looked for. A count that ends the input is refused, and
    /// a word that is no number counts as 0 and empties the list.
    /// @throws std::length_error for a count above 214748364
    bool SetValFromStream(std::istream& in, std::ostream& out,
                          boost::intrusive_ptr<InfoBase const> const& info) override;
    std::ostream& operator<<(std::ostream& os) const override;

private:
    static constexpr unsigned int k_coordSize = 4;                               // numbers of a rectangle
    static constexpr unsigned int k_elementSize = k_coordSize * sizeof(Element); // bytes of a rectangle in a record

    bool ResizeArray_(std::uint64_t n);
    bool IsEqualVal_(unsigned int index, Rect const& rect) const noexcept;
    bool AssignRectValue_(unsigned int index, Element left, Element top, Element right, Element bottom) noexcept;
    template<typename Source>
    int AssignNumbers_(std::vector<Source> const& numbers, bool* changed);
    int AssignRect_(ItemBase const& source, unsigned int index, bool* changed);
    int AssignRects_(RectArrayItem const& source, bool* changed);

    std::vector<Rect> m_value;
};

extern template class RectArrayInfo<U16Traits>;
extern template class RectArrayItem<U16Traits>;

} // namespace Legacy::If
