#pragma once

#include <Legacy/If/Detail/Family.h>
#include <Legacy/If/Detail/ValueItem.h>
#include <Legacy/If/Export.h>

#include <memory>
#include <string>

namespace Legacy::If {

/// Schema of a yes-or-no parameter: a default, and whether the value may only be the default.
class LEGACY_IF_API BoolInfo : public Detail::InfoFamily<BoolInfo, IfType_t::Bool>
{
public:
    /// Not fixed, and false by default.
    BoolInfo(unsigned int const& id, std::string const& name, Permission_t const& permission);

    using InfoFamily::DeepCopy;
    [[nodiscard]] BoolInfo* DeepCopy(unsigned int id, std::string const& name,
                                     Permission_t const& permission) const override;
    [[nodiscard]] ItemBase* CreateItem() const override;

    bool GetDefault() const noexcept { return m_default; }
    bool GetFixed() const noexcept { return m_fixed; }
    void SetDefault(bool value) noexcept { m_default = value; }
    void SetFixed(bool fixed) noexcept { m_fixed = fixed; }

    /// Equal types and fixed alike; the default is not compared.
    bool IsEqualBounds(boost::intrusive_ptr<InfoBase const> const& other) const override;
    /// Becomes fixed if the other is; never free again, and the default stays.
    /// @return 0; #IfErrBoundsTypeMismatch.
    int MergeBounds(boost::intrusive_ptr<InfoBase const> const& other) override;
    /// From a boolean's schema: default and fixed.
    int AssignValue(boost::intrusive_ptr<InfoBase const> const& source, bool* changed) override;

    void DumpVal(std::ostream& os) const override;
    std::ostream& operator<<(std::ostream& os) const override;

private:
    bool m_fixed = false;
    bool m_default = false;
};

/// Value of a yes-or-no parameter.
///
/// Contract: it prints as "True" or "False" in its compact form and as 1 or 0 in dumps and findings; whoever takes one
/// of these apart knows the words of that one alone.
class LEGACY_IF_API BoolItem : public Detail::ValueItem<BoolItem, IfType_t::Bool, bool>
{
public:
    explicit BoolItem(unsigned int id); ///< false

    using ValueItem::DeepCopy;
    [[nodiscard]] BoolItem* DeepCopy(unsigned int id) const override;

    using ValueItem::SetVal;
    /// Takes the default of a fixed schema.
    void BoundVal(BoolInfo const& info) noexcept;
    /// Whether the schema is free or its default is the value.
    bool WithinBounds(BoolInfo const& info) const noexcept;

    /// From a boolean, a number, or the element at `index` of a list of either, whose end is #IfErrInvalidArgument. A
    /// number is true unless it is 0, or, with a fraction, nearer to 0 than the tolerance; a NaN is false.
    int AssignArrayValue(boost::intrusive_ptr<ItemBase const> const& source, unsigned int index,
                         bool* changed) override;

    /// One byte, 1 or 0. Reading takes any other byte for true.
    unsigned int GetSerialDataSize() const override;
    int Serialize(SerialStruct_t* record) const override;
    int Deserialize(ConstSerialStruct_t const* record) override;

    /// Fails if the schema is fixed and the value is not its default.
    std::shared_ptr<ResultElem const> Validate(boost::intrusive_ptr<InfoBase const> const& info) override;
    /// Reads a boolean as the stream reads one: 0 or 1, unless it was set to words.
    bool SetValFromStream(std::istream& in, std::ostream& out,
                          boost::intrusive_ptr<InfoBase const> const& info) override;
    void DumpVal(std::ostream& os) const override;
    std::ostream& operator<<(std::ostream& os) const override;
};

} // namespace Legacy::If
