#pragma once

#include <Legacy/If/Detail/Family.h>
#include <Legacy/If/Detail/OwnedPart.h>
#include <Legacy/If/Detail/PairInfo.h>
#include <Legacy/If/Export.h>
#include <Legacy/If/Numeric.h>

#include <array>
#include <memory>
#include <string>

namespace Legacy::If {

/// Schema of a point: a number's schema for each of its two axes. `T` is `U16Traits`, `S32Traits` or `FloatTraits`.
///
/// The axes are objects of their own, always there and never shared with another point. Whatever is done with a point
/// is done with X and then with Y.
template<typename T>
class LEGACY_IF_API CoordinateInfo
    : public Detail::PairInfo<CoordinateInfo<T>, IfType_t::Coordinate, NumericInfo<T>, T::k_numericType>
{
    using Family = Detail::PairInfo<CoordinateInfo, IfType_t::Coordinate, NumericInfo<T>, T::k_numericType>;

public:
    using Element = typename T::T; ///< the type of the numbers
    using Axis = NumericInfo<T>;

    /// Two axes with their own initial bounds, the id 0, no name and the point's permission.
    CoordinateInfo(unsigned int const& id, std::string const& name, Permission_t const& permission);

    using Family::DeepCopy;
    /// The axes keep their own identity.
    [[nodiscard]] CoordinateInfo* DeepCopy(unsigned int id, std::string const& name,
                                           Permission_t const& permission) const override;
    [[nodiscard]] ItemBase* CreateItem() const override;

    boost::intrusive_ptr<Axis> const& X() noexcept { return m_first.Get(); }
    boost::intrusive_ptr<Axis> const& Y() noexcept { return m_second.Get(); }
    boost::intrusive_ptr<Axis const> X() const noexcept { return m_first.Get(); }
    boost::intrusive_ptr<Axis const> Y() const noexcept { return m_second.Get(); }
    Element GetDefaultX() const noexcept { return m_first->GetDefault(); }
    Element GetDefaultY() const noexcept { return m_second->GetDefault(); }

    /// From a point's schema of any element type: default and bounds of both axes, converted.
    int AssignValue(boost::intrusive_ptr<InfoBase const> const& source, bool* changed) override;

    void DumpVal(std::ostream& os) const override;
    std::ostream& operator<<(std::ostream& os) const override;

private:
    CoordinateInfo(unsigned int id, std::string const& name, Permission_t const& permission,
                   CoordinateInfo const& other);

    using Family::m_first;
    using Family::m_second;
};

/// Value of a parameter that is a point.
///
/// The axes are objects of their own, always there and never shared with another point; assigning a point keeps them
/// and changes their values.
template<typename T>
class LEGACY_IF_API CoordinateItem
    : public Detail::ItemFamily<CoordinateItem<T>, IfType_t::Coordinate, T::k_numericType>
{
    using Family = Detail::ItemFamily<CoordinateItem<T>, IfType_t::Coordinate, T::k_numericType>;

public:
    using Element = typename T::T; ///< the type of the numbers
    using Axis = NumericItem<T>;

    explicit CoordinateItem(unsigned int id); ///< (0, 0), with axes of the id 0

    using Family::DeepCopy;
    [[nodiscard]] CoordinateItem* DeepCopy(unsigned int id) const override;

    boost::intrusive_ptr<Axis> const& X() noexcept { return m_x.Get(); }
    boost::intrusive_ptr<Axis> const& Y() noexcept { return m_y.Get(); }
    boost::intrusive_ptr<Axis const> X() const noexcept { return m_x.Get(); }
    boost::intrusive_ptr<Axis const> Y() const noexcept { return m_y.Get(); }
    void SetValX(Element const& value) noexcept { m_x->SetVal(value); } ///< no bound is applied
    void SetValY(Element const& value) noexcept { m_y->SetVal(value); } ///< no bound is applied
    /// X and Y.
    std::array<Element, 2> GetPair() const noexcept { return {m_x->GetVal(), m_y->GetVal()}; }

    /// Moves what lies beyond a bound of its axis to that bound.
    void BoundVal(CoordinateInfo<T> const& info) noexcept;
    /// Whether each number lies within the bounds of its axis; true for a NaN. This is how a point is checked.
    bool WithinBounds(CoordinateInfo<T> const& info) const noexcept;

    /// Equal types and numbers, within the tolerance for `float`.
    bool IsEqualValue(boost::intrusive_ptr<ItemBase const> const& other) const override;
    /// From a point of any element type, converted.
    int AssignArrayValue(boost::intrusive_ptr<ItemBase const> const& source, unsigned int index,
                         bool* changed) override;

    /// X and Y in their wire form.
    unsigned int GetSerialDataSize() const override;
    int Serialize(ItemBase::SerialStruct_t* record) const override;
    int Deserialize(ItemBase::ConstSerialStruct_t const* record) override;

    /// Contract: always fails, also within the bounds and without a schema. Callers tell by this finding the families
    /// that are checked through #WithinBounds, and gather it beside those of other values.
    std::shared_ptr<ResultElem const> Validate(boost::intrusive_ptr<InfoBase const> const& info) override;
    /// Reads X and then Y. Where Y cannot be read, X keeps its new value.
    bool SetValFromStream(std::istream& in, std::ostream& out,
                          boost::intrusive_ptr<InfoBase const> const& info) override;
    std::ostream& operator<<(std::ostream& os) const override;

private:
    Detail::OwnedPart<Axis> m_x;
    Detail::OwnedPart<Axis> m_y;
};

extern template class CoordinateInfo<U16Traits>;
extern template class CoordinateInfo<S32Traits>;
extern template class CoordinateInfo<FloatTraits>;

extern template class CoordinateItem<U16Traits>;
extern template class CoordinateItem<S32Traits>;
extern template class CoordinateItem<FloatTraits>;

} // namespace Legacy::If
