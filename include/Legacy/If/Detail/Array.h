#pragma once

#include <Legacy/If/Detail/Cast.h>
#include <Legacy/If/Detail/Family.h>
#include <Legacy/If/Detail/SizeBounds.h>
#include <Legacy/If/Detail/ValueItem.h>
#include <Legacy/If/Export.h>

#include <cstddef>
#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace Legacy::If::Detail {

/// The dump and the compact form of a list's schema: its sizes, and that of its default.
/// @{
LEGACY_IF_API void DumpSizes(std::ostream& os, InfoBase const& info, SizeBounds const& bounds, std::size_t defaultSize);
LEGACY_IF_API std::ostream& PrintSizes(std::ostream& os, SizeBounds const& bounds, std::size_t defaultSize);
/// @}

/// What the schemas of lists say alike: how many elements there may be, and a default. `Self` is the family's own
/// class, `T` the type of an element.
template<typename Self, IfType_t Type, typename T, NumericType_t Element = NumericType_t::Undefined>
class LEGACY_IF_API ArrayInfo : public InfoFamily<Self, Type, Element>
{
public:
    using List = std::vector<T>;

    List const& GetDefault() const noexcept { return m_default; }
    unsigned int GetDefaultSize() const noexcept { return static_cast<unsigned int>(m_default.size()); }
    unsigned int GetMinSize() const noexcept { return m_size.Min(); }
    unsigned int GetMaxSize() const noexcept { return m_size.Max(); }
    SizeBounds const& Sizes() const noexcept { return m_size; } ///< the least and the greatest size

    /// Pushes the greatest size along, and fills a default that is not empty up with false, 0 or empty texts. Always 0.
    int SetMinSize(unsigned int n)
    {
        m_size.SetMin(n, m_default);
        return 0;
    }

    /// Pushes the least size along, and cuts a longer default. Always 0.
    int SetMaxSize(unsigned int n)
    {
        m_size.SetMax(n, m_default);
        return 0;
    }

    /// @return 0; #IfErrSizeOutOfRange, and nothing stored, for a list outside the sizes.
    int SetDefault(List const& list) { return m_size.Store(List(list), m_default); }

    /// Equal types and sizes; the default is not compared.
    bool IsEqualBounds(boost::intrusive_ptr<InfoBase const> const& other) const override
    {
        ArrayInfo const* const schema = CastTo<Self>(other);
        return schema && this->IsEqualType(other) && m_size == schema->m_size;
    }

    /// Narrows the sizes; the default stays, even where it no longer fits.
    /// @return 0; #IfErrBoundsTypeMismatch; #IfErrBoundsDisjoint with nothing changed.
    int MergeBounds(boost::intrusive_ptr<InfoBase const> const& other) override
    {
        ArrayInfo const* const schema = CastTo<Self>(other);
        if (!schema || !this->IsEqualType(other))
            return IfErrBoundsTypeMismatch;
        return m_size.Merge(schema->m_size);
    }

    /// Prints the sizes and that of the default, not the default.
    void DumpVal(std::ostream& os) const override { DumpSizes(os, *this, m_size, m_default.size()); }
    std::ostream& operator<<(std::ostream& os) const override { return PrintSizes(os, m_size, m_default.size()); }

protected:
    /// An empty default.
    ArrayInfo(unsigned int id, std::string const& name, Permission_t const& permission, SizeBounds const& size)
        : InfoFamily<Self, Type, Element>(id, name, permission), m_size(size)
    {}

    SizeBounds m_size;
    List m_default;
};

/// What the values say alike that are lists. `Info` is the class of the family's schemas.
template<typename Self, typename Info, IfType_t Type, typename T, NumericType_t Element = NumericType_t::Undefined,
         typename Same = std::equal_to<std::vector<T>>>
class LEGACY_IF_API ArrayItem : public ValueItem<Self, Type, std::vector<T>, Element, Same>
{
public:
    using List = std::vector<T>;

    using ValueItem<Self, Type, List, Element, Same>::ValueItem;

    unsigned int GetSize() const noexcept { return static_cast<unsigned int>(this->m_value.size()); }

    using ValueItem<Self, Type, List, Element, Same>::SetVal;
    /// The values of the elements are not looked at.
    /// @return 0; #IfErrSizeOutOfRange, and nothing stored, for a list outside the schema's sizes.
    /// @{
    int SetVal(List const& value, Info const& info) { return info.Sizes().Store(value, this->m_value); }
    int SetVal(List&& value, Info const& info) { return info.Sizes().Store(std::move(value), this->m_value); }
    /// @}

    bool IsEmpty() const override { return this->m_value.empty(); } ///< there are no elements
};

} // namespace Legacy::If::Detail
