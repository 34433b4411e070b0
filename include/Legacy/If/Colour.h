#pragma once

#include <Legacy/If/Detail/Family.h>
#include <Legacy/If/Detail/ValueItem.h>
#include <Legacy/If/Export.h>
#include <Legacy/If/NumericTraits.h>
#include <Orlek/Colour.h>

#include <cstdint>
#include <memory>
#include <string>

namespace Legacy::If {

/// Schema of a colour: a least and a greatest colour, for whoever wants to know them, and a default. Nothing here or in
/// the value enforces the two.
///
/// A colour can be read as one packed word: alpha in bits 31 to 24, then red, green and blue. Each component is
/// multiplied by 255, cut towards zero, and its low 8 bits are kept: there is no rounding and no clamping, so 0.999
/// gives 254 and 1.5 gives 126. A component that is not a number, or too large for 64 bits, gives 0.
class LEGACY_IF_API ColourInfo : public Detail::InfoFamily<ColourInfo, IfType_t::Colour>
{
public:
    /// Three colours with all components 0.
    ColourInfo(unsigned int const& id, std::string const& name, Permission_t const& permission);

    using InfoFamily::DeepCopy;
    [[nodiscard]] ColourInfo* DeepCopy(unsigned int id, std::string const& name,
                                       Permission_t const& permission) const override;
    [[nodiscard]] ItemBase* CreateItem() const override;

    Orlek::Colour_t const& GetMin() const noexcept { return m_min; }
    Orlek::Colour_t const& GetMax() const noexcept { return m_max; }
    Orlek::Colour_t const& GetDefault() const noexcept { return m_default; }
    void SetMin(Orlek::Colour_t const& colour) noexcept { m_min = colour; }         ///< stored as it stands
    void SetMax(Orlek::Colour_t const& colour) noexcept { m_max = colour; }         ///< stored as it stands
    void SetDefault(Orlek::Colour_t const& colour) noexcept { m_default = colour; } ///< stored as it stands

    /// The packed words.
    ///
    /// Contract: unlike in `ColourItem::GetARGB` a negative component wraps in its byte, -0.5 to 0x81; callers compare
    /// the words of schemas with words that they stored earlier.
    /// @{
    std::uint32_t GetMinARGB() const noexcept;
    std::uint32_t GetMaxARGB() const noexcept;
    std::uint32_t GetDefaultARGB() const noexcept;
    /// @}

    /// Always true, whatever the argument, also for null: no colour schema bounds anything.
    bool IsEqualBounds(boost::intrusive_ptr<InfoBase const> const& other) const override;
    /// Merges nothing.
    /// @return 0; #IfErrBoundsTypeMismatch for another type.
    int MergeBounds(boost::intrusive_ptr<InfoBase const> const& other) override;
    /// From a colour schema: the three colours.
    ///
    /// Contract: these are compared exactly and not within the tolerance of values, so that a tiny difference between
    /// two schemas is taken over and reported.
    int AssignValue(boost::intrusive_ptr<InfoBase const> const& source, bool* changed) override;

    void DumpVal(std::ostream& os) const override;
    std::ostream& operator<<(std::ostream& os) const override;

private:
    Orlek::Colour_t m_min;
    Orlek::Colour_t m_max;
    Orlek::Colour_t m_default;
};

using SameColour = SameParts<&Orlek::Colour_t::a, &Orlek::Colour_t::r, &Orlek::Colour_t::g, &Orlek::Colour_t::b>;

/// Value of a colour parameter. Two values are equal if each component differs by no more than `k_floatTolerance`.
class LEGACY_IF_API ColourItem
    : public Detail::ValueItem<ColourItem, IfType_t::Colour, Orlek::Colour_t, NumericType_t::Undefined, SameColour>
{
public:
    explicit ColourItem(unsigned int id); ///< all components 0

    using ValueItem::DeepCopy;
    [[nodiscard]] ColourItem* DeepCopy(unsigned int id) const override;

    float GetA() const noexcept { return m_value.a; }
    float GetR() const noexcept { return m_value.r; }
    float GetG() const noexcept { return m_value.g; }
    float GetB() const noexcept { return m_value.b; }
    /// The packed word, as told at `ColourInfo`, but with 0 for a component that is 0 or less.
    std::uint32_t GetARGB() const noexcept;

    void Set(float a, float r, float g, float b) noexcept { m_value = {a, r, g, b}; }
    /// Contract: alpha becomes 0, fully transparent, and not 1; callers that draw set it afterwards.
    void Set(float r, float g, float b) noexcept { m_value = {0.0F, r, g, b}; }
    void Set(Orlek::Colour_t const& colour) noexcept { m_value = colour; }

    /// From a colour. One that is equal within the tolerance is not taken over and counts as no change.
    int AssignArrayValue(boost::intrusive_ptr<ItemBase const> const& source, unsigned int index,
                         bool* changed) override;

    /// Alpha, red, green and blue as floats of the record.
    unsigned int GetSerialDataSize() const override;
    int Serialize(SerialStruct_t* record) const override;
    int Deserialize(ConstSerialStruct_t const* record) override;

    /// Always passes.
    std::shared_ptr<ResultElem const> Validate(boost::intrusive_ptr<InfoBase const> const& info) override;
    /// Reads what the virtual `operator<<` writes. The first character is skipped whatever it is, and a closing bracket
    /// stays in the stream.
    bool SetValFromStream(std::istream& in, std::ostream& out,
                          boost::intrusive_ptr<InfoBase const> const& info) override;
    void DumpVal(std::ostream& os) const override;
    std::ostream& operator<<(std::ostream& os) const override;
};

} // namespace Legacy::If
