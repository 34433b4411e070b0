#pragma once

#include <Legacy/If/Export.h>
#include <Legacy/If/InfoBase.h>
#include <Legacy/If/ItemBase.h>

#include <memory>
#include <string>

namespace Legacy::If::Detail {

/// The dump of a value whose third line is its compact form.
LEGACY_IF_API void DumpValue(std::ostream& os, ItemBase const& item);

/// What the schemas of all families say alike: the two tags and the short copies. `Self` is the family's own class.
template<typename Self, IfType_t Type, NumericType_t Element = NumericType_t::Undefined>
class LEGACY_IF_API InfoFamily : public InfoBase
{
public:
    using InfoBase::InfoBase;

    static constexpr IfType_t k_type = Type; ///< what #GetType says of objects of the family's own class
    static constexpr IfType_t GetTypeStatic() noexcept { return Type; }
    static constexpr NumericType_t GetNumericTypeStatic() noexcept { return Element; }
    IfType_t GetType() const override { return Type; }
    NumericType_t GetNumericType() const override { return Element; }

    /// A copy under the own identity, as far as none is given. The caller owns it: count 0.
    [[nodiscard]] Self* DeepCopy() const { return Derived_().DeepCopy(GetId(), GetName(), GetPermission()); }
    [[nodiscard]] Self* DeepCopy(unsigned int id) const { return Derived_().DeepCopy(id, GetName(), GetPermission()); }
    [[nodiscard]] Self* DeepCopy(unsigned int id, std::string const& name) const
    {
        return Derived_().DeepCopy(id, name, GetPermission());
    }
    using InfoBase::DeepCopy;

protected:
    /// A new object of the family's class under the given identity that takes over all that the family declares. `more`
    /// is what its constructor takes beside the identity.
    template<typename... More>
    Self* CopyAs_(unsigned int id, std::string const& name, Permission_t const& permission, More const&... more) const
    {
        auto copy = std::make_unique<Self>(id, name, permission, more...);
        *copy = Derived_();
        return copy.release();
    }

private:
    Self const& Derived_() const noexcept { return static_cast<Self const&>(*this); }
};

/// What the values of all families say alike: the two tags, the short copy and the dump of most. `Self` is the family's
/// own class.
template<typename Self, IfType_t Type, NumericType_t Element = NumericType_t::Undefined>
class LEGACY_IF_API ItemFamily : public ItemBase
{
public:
    using ItemBase::ItemBase;

    static constexpr IfType_t k_type = Type; ///< what #GetType says of objects of the family's own class
    static constexpr IfType_t GetTypeStatic() noexcept { return Type; }
    static constexpr NumericType_t GetNumericTypeStatic() noexcept { return Element; }
    IfType_t GetType() const override { return Type; }
    NumericType_t GetNumericType() const override { return Element; }

    /// A copy under the own id. The caller owns it: count 0.
    [[nodiscard]] Self* DeepCopy() const { return Derived_().DeepCopy(GetId()); }
    using ItemBase::DeepCopy;

    /// Prints id, type and what the virtual `operator<<` prints.
    void DumpVal(std::ostream& os) const override { DumpValue(os, *this); }

protected:
    /// A new object of the family's class under the given id that takes over all that the family declares.
    Self* CopyAs_(unsigned int id) const
    {
        auto copy = std::make_unique<Self>(id);
        *copy = Derived_();
        return copy.release();
    }

private:
    Self const& Derived_() const noexcept { return static_cast<Self const&>(*this); }
};

} // namespace Legacy::If::Detail
