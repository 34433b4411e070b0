#pragma once

#include <Legacy/If/Detail/Family.h>
#include <Legacy/If/Detail/ValueItem.h>
#include <Legacy/If/Export.h>

#include <memory>
#include <string>

namespace Legacy::If::Detail {

template<class Family>
class LEGACY_IF_API NetItem;

/// Schema of a parameter that is one address or endpoint: a default and nothing to bound.
///
/// The families #AddrInfo, #EndpointInfo and #AppEndpointInfo are its instances. `Family` names the type of the value
/// and the type tag.
template<class Family>
class LEGACY_IF_API NetInfo : public InfoFamily<NetInfo<Family>, Family::k_type>
{
    using Base = InfoFamily<NetInfo, Family::k_type>;

public:
    using Value = typename Family::Value;

    /// The default is the value type's own.
    NetInfo(unsigned int const& id, std::string const& name, Permission_t const& permission);

    using Base::DeepCopy;
    NetInfo* DeepCopy(unsigned int id, std::string const& name, Permission_t const& permission) const override;
    ItemBase* CreateItem() const override;

    Value const& GetDefault() const noexcept { return m_default; }
    /// Stores the value as it stands. Always 0.
    int SetDefault(Value const& value);

    /// Equal types: there are no bounds.
    bool IsEqualBounds(boost::intrusive_ptr<InfoBase const> const& other) const override;
    /// Changes nothing.
    /// @return 0; #IfErrBoundsTypeMismatch.
    int MergeBounds(boost::intrusive_ptr<InfoBase const> const& other) override;
    /// From a schema of the same family: the default.
    int AssignValue(boost::intrusive_ptr<InfoBase const> const& source, bool* changed) override;

    void DumpVal(std::ostream& os) const override;
    /// The bare name of the class.
    std::ostream& operator<<(std::ostream& os) const override;

private:
    Value m_default;
};

/// Value of a parameter that is one address or endpoint. It is never refused: what the networking library makes of a
/// text is all that is checked.
///
/// The families #AddrItem, #EndpointItem and #AppEndpointItem are its instances. `IsEmpty` is always false, also for an
/// unspecified value.
template<class Family>
class LEGACY_IF_API NetItem : public ValueItem<NetItem<Family>, Family::k_type, typename Family::Value>
{
    using Base = ValueItem<NetItem, Family::k_type, typename Family::Value>;

public:
    using Value = typename Family::Value;
    using typename ItemBase::ConstSerialStruct_t;
    using typename ItemBase::SerialStruct_t;

    explicit NetItem(unsigned int id); ///< the value type's default

    using Base::DeepCopy;
    NetItem* DeepCopy(unsigned int id) const override;

    using Base::SetVal;
    /// The same: the schema has nothing to say.
    void SetVal(Value const& value, NetInfo<Family> const&) { SetVal(value); }

    /// From a value of the same family; `index` is ignored.
    int AssignArrayValue(boost::intrusive_ptr<ItemBase const> const& source, unsigned int index,
                         bool* changed) override;

    /// The text that the value prints and a zero byte; for an application endpoint the text of its endpoint, behind six
    /// bytes with the other fields. Reading takes the text up to the first zero byte; the last byte must be zero.
    unsigned int GetSerialDataSize() const override;
    int Serialize(SerialStruct_t* record) const override;
    int Deserialize(ConstSerialStruct_t const* record) override;

    /// Always passes, whatever the schema, also null.
    std::shared_ptr<ResultElem const> Validate(boost::intrusive_ptr<InfoBase const> const& info) override;
    /// Reads one word and stores what the networking library makes of it. Nothing is written to `out`.
    ///
    /// Contract: true also at the end of input, where nothing is read, and for a failed read, which counts as an empty
    /// word; callers clear a value by an empty line and take false for a wrong schema.
    ///
    /// An application endpoint needs its schema: the word is an endpoint and no URI, the protocol is that of the
    /// schema's default, and the address group becomes 0. Without an #AppEndpointInfo it returns false and stays.
    bool SetValFromStream(std::istream& in, std::ostream& out,
                          boost::intrusive_ptr<InfoBase const> const& info) override;
    std::ostream& operator<<(std::ostream& os) const override;

private:
    using Base::m_value;
};

} // namespace Legacy::If::Detail
