#pragma once

#include <Legacy/If/Detail/Family.h>
#include <Legacy/If/Detail/ValueItem.h>
#include <Legacy/If/Export.h>

#include <memory>
#include <string>

namespace Legacy::If::Detail {

/// What the schemas say alike whose parameter is one address or endpoint: a default and nothing to bound. `Self` is the
/// family's own class, `Item` that of its values, `Held` the type of what these hold.
template<typename Self, typename Item, IfType_t Type, typename Held>
class LEGACY_IF_API NetInfo : public InfoFamily<Self, Type>
{
public:
    using Value = Held;

    using InfoFamily<Self, Type>::InfoFamily; // the default is the held type's own

    [[nodiscard]] ItemBase* CreateItem() const override;

    Held const& GetDefault() const noexcept { return m_default; }
    /// Stores the value as it stands. Always 0.
    int SetDefault(Held const& value)
    {
        m_default = Held(value);
        return 0;
    }

    /// Equal types: there are no bounds.
    bool IsEqualBounds(boost::intrusive_ptr<InfoBase const> const& other) const override
    {
        return this->IsEqualType(other);
    }
    /// Changes nothing.
    /// @return 0; #IfErrBoundsTypeMismatch.
    int MergeBounds(boost::intrusive_ptr<InfoBase const> const& other) override
    {
        return this->IsEqualType(other) ? 0 : IfErrBoundsTypeMismatch;
    }
    /// From a schema of the same family: the default.
    int AssignValue(boost::intrusive_ptr<InfoBase const> const& source, bool* changed) override;

    void DumpVal(std::ostream& os) const override;
    /// The bare name of the class.
    std::ostream& operator<<(std::ostream& os) const override;

private:
    Held m_default{};
};

/// What the values say alike that are one address or endpoint. They are never refused: what the networking library
/// makes of a text is all that is checked. `IsEmpty` is always false, also for an unspecified value. `Self` is the
/// family's own class, `Info` that of its schemas, `Held` the type of what is held.
template<typename Self, typename Info, IfType_t Type, typename Held>
class LEGACY_IF_API NetItem : public ValueItem<Self, Type, Held>
{
public:
    using typename ItemBase::ConstSerialStruct_t;
    using typename ItemBase::SerialStruct_t;

    using ValueItem<Self, Type, Held>::ValueItem;
    using ValueItem<Self, Type, Held>::SetVal;
    /// The same: the schema has nothing to say.
    void SetVal(Held const& value, Info const&) { SetVal(value); }

    /// From a value of the same family; `index` is ignored.
    int AssignArrayValue(boost::intrusive_ptr<ItemBase const> const& source, unsigned int index,
                         bool* changed) override;

    /// The text that the value prints and a zero byte; for an application endpoint the text of its endpoint, behind six
    /// bytes with the other fields. Reading takes the text up to the first zero byte; the last byte must be zero.
    unsigned int GetSerialDataSize() const override;
    int Serialize(SerialStruct_t* record) const override;
    int Deserialize(ConstSerialStruct_t const* record) override;

    /// Always passes, whatever the schema, also null.
    std::shared_ptr<ResultElem const> Validate(boost::intrusive_ptr<InfoBase const> const&) override { return {}; }
    /// Reads one word and stores what the networking library makes of it. Nothing is written to `out`.
    ///
    /// Contract: true also at the end of input, where nothing is read, and for a failed read, which counts as an empty
    /// word; callers clear a value by an empty line and take false for a wrong schema.
    ///
    /// An application endpoint needs its schema: the word is an endpoint and no URI, the protocol is that of the
    /// schema's default, and the address group becomes 0. Without an `AppEndpointInfo` it returns false and stays.
    bool SetValFromStream(std::istream& in, std::ostream& out,
                          boost::intrusive_ptr<InfoBase const> const& info) override;
    std::ostream& operator<<(std::ostream& os) const override;

protected:
    using ValueItem<Self, Type, Held>::m_value;
};

} // namespace Legacy::If::Detail
