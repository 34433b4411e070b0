#pragma once

#include <Legacy/If/Detail/ValueItem.h>
#include <Legacy/If/Export.h>
#include <Legacy/If/NumericTraits.h>

#include <memory>

namespace Legacy::If {

/// Three angles. Their unit and range are the callers' own.
struct LEGACY_IF_API Orientation_t
{
    float bearing = 0.0F;
    float inclination = 0.0F;
    float roll = 0.0F;

    /// Exact, angle by angle: no tolerance, and a NaN equals nothing.
    friend constexpr bool operator==(Orientation_t const&, Orientation_t const&) = default;
};

using SameOrientation = SameParts<&Orientation_t::bearing, &Orientation_t::inclination, &Orientation_t::roll>;

/// Value of an orientation. There is no schema for it. Two values are equal if each angle differs by no more than
/// `k_floatTolerance`.
class LEGACY_IF_API OrientationItem : public Detail::ValueItem<OrientationItem, IfType_t::Orientation, Orientation_t,
                                                               NumericType_t::Undefined, SameOrientation>
{
public:
    explicit OrientationItem(unsigned int id); ///< all angles 0

    using ValueItem::DeepCopy;
    [[nodiscard]] OrientationItem* DeepCopy(unsigned int id) const override;

    float GetBearing() const noexcept { return m_value.bearing; }
    float GetInclination() const noexcept { return m_value.inclination; }
    float GetRoll() const noexcept { return m_value.roll; }
    void Set(Orientation_t const& orientation) noexcept { m_value = orientation; }

    /// From an orientation. One that is equal within the tolerance is not taken over and counts as no change.
    int AssignArrayValue(boost::intrusive_ptr<ItemBase const> const& source, unsigned int index,
                         bool* changed) override;

    /// Bearing, inclination and roll as floats of the record.
    unsigned int GetSerialDataSize() const override;
    int Serialize(SerialStruct_t* record) const override;
    int Deserialize(ConstSerialStruct_t const* record) override;

    /// Always passes.
    std::shared_ptr<ResultElem const> Validate(boost::intrusive_ptr<InfoBase const> const& info) override;
    /// Always false: an orientation cannot be read from text, and `out` is told so.
    bool SetValFromStream(std::istream& in, std::ostream& out,
                          boost::intrusive_ptr<InfoBase const> const& info) override;
    void DumpVal(std::ostream& os) const override;
    /// Prints the name of the class and not the value.
    std::ostream& operator<<(std::ostream& os) const override;
};

} // namespace Legacy::If
