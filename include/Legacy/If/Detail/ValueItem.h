#pragma once

#include <Legacy/If/Detail/Cast.h>
#include <Legacy/If/Detail/Family.h>
#include <Legacy/If/Export.h>

#include <functional>
#include <memory>
#include <type_traits>
#include <utility>

namespace Legacy::If::Detail {

/// What the values say alike that are one C++ object: how it is read, set and compared. `Self` is the family's own
/// class, `Held` the type of the object, a number, a text or a list, and `Same` tells whether two of them are equal.
template<typename Self, IfType_t Type, typename Held, NumericType_t Element = NumericType_t::Undefined,
         typename Same = std::equal_to<Held>>
class LEGACY_IF_API ValueItem : public ItemFamily<Self, Type, Element>
{
public:
    /// Numbers are handed over by value.
    using Argument = std::conditional_t<std::is_arithmetic_v<Held>, Held, Held const&>;

    /// 0, false, an empty text, an empty list: the default of the object's type.
    explicit ValueItem(unsigned int id) : ItemFamily<Self, Type, Element>(id) {}

    /// A value with that content, whatever any schema says. The caller owns it: count 0.
    /// @{
    [[nodiscard]] static Self* Create(unsigned int id, Held const& value)
    {
        auto item = std::make_unique<Self>(id);
        item->Val() = value;
        return item.release();
    }
    [[nodiscard]] static Self* Create(unsigned int id, Held&& value) requires std::is_class_v<Held>
    {
        auto item = std::make_unique<Self>(id);
        item->Val() = std::move(value);
        return item.release();
    }
    /// @}

    Held GetVal() const noexcept(std::is_nothrow_copy_constructible_v<Held>) { return m_value; }
    Held& Val() noexcept { return m_value; } ///< no schema is asked
    Held const& Val() const noexcept { return m_value; }
    /// Stores the content as it stands: no schema is asked.
    /// @{
    void SetVal(Argument value) noexcept(std::is_nothrow_copy_assignable_v<Held>)
    {
        if constexpr (requires { typename Held::allocator_type; })
            m_value = value; // texts and lists keep their storage
        else
            m_value = Held(value); // the old or the new one, and nothing between them, if memory ends
    }
    void SetVal(Held&& value) noexcept(std::is_nothrow_move_assignable_v<Held>) requires std::is_class_v<Held>
    {
        m_value = std::move(value);
    }
    /// @}

    /// Equal types and contents; floating-point numbers are equal within the tolerance.
    bool IsEqualValue(boost::intrusive_ptr<ItemBase const> const& other) const override
    {
        ValueItem const* const item = CastTo<Self>(other);
        // Two of the class itself are of one type, whatever a derived one says of its own.
        return item && ((IsExactly<Self>(*this) && IsExactly<Self>(*item)) || this->IsEqualType(other)) &&
               Same()(m_value, item->m_value);
    }

protected:
    Held m_value{};
};

} // namespace Legacy::If::Detail
