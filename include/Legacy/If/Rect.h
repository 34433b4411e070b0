#pragma once

#include <Legacy/If/Coordinate.h>
#include <Legacy/If/Detail/Family.h>
#include <Legacy/If/Detail/OwnedPart.h>
#include <Legacy/If/Detail/PairInfo.h>
#include <Legacy/If/Export.h>

#include <array>
#include <memory>
#include <string>

namespace Legacy::If {

/// Schema of a rectangle: a point's schema for each of its two corners. `T` is `U16Traits`, `S32Traits` or
/// `FloatTraits`.
///
/// The corners are objects of their own, always there and never shared with another rectangle. Whatever is done with a
/// rectangle is done with the top left corner and then with the bottom right one.
template<typename T>
class LEGACY_IF_API RectInfo
    : public Detail::PairInfo<RectInfo<T>, IfType_t::Rectangle, CoordinateInfo<T>, T::k_numericType>
{
    using Family = Detail::PairInfo<RectInfo, IfType_t::Rectangle, CoordinateInfo<T>, T::k_numericType>;

public:
    using Corner = CoordinateInfo<T>;

    /// Two corners with their own initial bounds, the id 0, no name and the rectangle's permission.
    RectInfo(unsigned int const& id, std::string const& name, Permission_t const& permission);

    using Family::DeepCopy;
    /// The corners keep their own identity.
    [[nodiscard]] RectInfo* DeepCopy(unsigned int id, std::string const& name,
                                     Permission_t const& permission) const override;
    [[nodiscard]] ItemBase* CreateItem() const override;

    boost::intrusive_ptr<Corner> const& TopLeft() noexcept { return m_first.Get(); }
    boost::intrusive_ptr<Corner> const& BottomRight() noexcept { return m_second.Get(); }
    boost::intrusive_ptr<Corner const> TopLeft() const noexcept { return m_first.Get(); }
    boost::intrusive_ptr<Corner const> BottomRight() const noexcept { return m_second.Get(); }

    /// From a rectangle's schema of any element type: default and bounds of both corners, converted.
    int AssignValue(boost::intrusive_ptr<InfoBase const> const& source, bool* changed) override;

    /// Contract: the line of the bottom right corner is labelled "topRight", by which readers of dumps know it.
    void DumpVal(std::ostream& os) const override;
    std::ostream& operator<<(std::ostream& os) const override;

private:
    RectInfo(unsigned int id, std::string const& name, Permission_t const& permission, RectInfo const& other);

    using Family::m_first;
    using Family::m_second;
};

/// Value of a parameter that is a rectangle with sides along the axes. Both corners belong to it, as with pixels.
/// Nothing requires the top left corner to lie above and left of the other.
///
/// The corners are objects of their own, always there and never shared with another rectangle; assigning a rectangle
/// keeps them and changes their values.
template<typename T>
class LEGACY_IF_API RectItem : public Detail::ItemFamily<RectItem<T>, IfType_t::Rectangle, T::k_numericType>
{
    using Family = Detail::ItemFamily<RectItem<T>, IfType_t::Rectangle, T::k_numericType>;

public:
    using Element = typename T::T; ///< the type of the numbers
    using Corner = CoordinateItem<T>;
    /// X and Y of the top left corner, then X and Y of the bottom right one: the order in which the four numbers of a
    /// rectangle stand in lists and records.
    using Flat = std::array<Element, 4>;

    explicit RectItem(unsigned int id); ///< all numbers 0, with corners of the id 0

    using Family::DeepCopy;
    [[nodiscard]] RectItem* DeepCopy(unsigned int id) const override;

    boost::intrusive_ptr<Corner> const& TopLeft() noexcept { return m_topLeft.Get(); }
    boost::intrusive_ptr<Corner> const& BottomRight() noexcept { return m_bottomRight.Get(); }
    boost::intrusive_ptr<Corner const> TopLeft() const noexcept { return m_topLeft.Get(); }
    boost::intrusive_ptr<Corner const> BottomRight() const noexcept { return m_bottomRight.Get(); }
    Flat GetFlat() const noexcept;
    void SetFlat(Flat const& numbers) noexcept; ///< no bound is applied

    /// The number of columns and rows, both edges counted, in the arithmetic of the element type: with the corners the
    /// wrong way round it wraps or is negative.
    /// @{
    Element GetWidth() const noexcept;
    Element GetHeight() const noexcept;
    /// @}

    /// Contract: these take the schema of a point and store its default; callers reset a corner so. The numbers of a
    /// corner are set through the corner.
    /// @param corner not null
    /// @{
    void SetValTopLeft(boost::intrusive_ptr<CoordinateInfo<T>> const& corner) noexcept;
    void SetValBottomRight(boost::intrusive_ptr<CoordinateInfo<T>> const& corner) noexcept;
    /// @}

    /// Moves what lies beyond a bound of its own corner and axis to that bound. The corners are not put in order.
    void BoundVal(RectInfo<T> const& info) noexcept;
    /// Whether each corner lies within its own bounds. The corners are not compared with each other.
    bool WithinBounds(RectInfo<T> const& info) const noexcept;

    /// Equal types and corners, within the tolerance for `float`.
    bool IsEqualValue(boost::intrusive_ptr<ItemBase const> const& other) const override;
    /// From a rectangle of any element type, converted.
    int AssignArrayValue(boost::intrusive_ptr<ItemBase const> const& source, unsigned int index,
                         bool* changed) override;

    /// The four numbers in flat order. A longer record is read too, and its end ignored.
    unsigned int GetSerialDataSize() const override;
    int Serialize(ItemBase::SerialStruct_t* record) const override;
    int Deserialize(ItemBase::ConstSerialStruct_t const* record) override;

    /// Contract: always fails, as with points; a rectangle is checked through #WithinBounds.
    std::shared_ptr<ResultElem const> Validate(boost::intrusive_ptr<InfoBase const> const& info) override;
    /// Reads the four numbers in flat order. What was read before a failure stays.
    bool SetValFromStream(std::istream& in, std::ostream& out,
                          boost::intrusive_ptr<InfoBase const> const& info) override;
    std::ostream& operator<<(std::ostream& os) const override;

private:
    Detail::OwnedPart<Corner> m_topLeft;
    Detail::OwnedPart<Corner> m_bottomRight;
};

extern template class RectInfo<U16Traits>;
extern template class RectInfo<S32Traits>;
extern template class RectInfo<FloatTraits>;

extern template class RectItem<U16Traits>;
extern template class RectItem<S32Traits>;
extern template class RectItem<FloatTraits>;

} // namespace Legacy::If
