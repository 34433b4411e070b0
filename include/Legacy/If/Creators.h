#pragma once

#include <Legacy/If/AppEndpoint.h>
#include <Legacy/If/Bool.h>
#include <Legacy/If/BoolArray.h>
#include <Legacy/If/Colour.h>
#include <Legacy/If/Composite.h>
#include <Legacy/If/Endpoint.h>
#include <Legacy/If/Export.h>
#include <Legacy/If/Numeric.h>
#include <Legacy/If/NumericArray.h>
#include <Legacy/If/Permission.h>
#include <Legacy/If/Rect.h>
#include <Legacy/If/RectArray.h>
#include <Legacy/If/String.h>
#include <Legacy/If/StringArray.h>

#include <string>

namespace Legacy::If {

/// Makes values of one class without naming it, for instance out of a table by parameter type. Creators have no state
/// and may be used from any thread.
class LEGACY_IF_API ItemCreatorBase
{
public:
    virtual ~ItemCreatorBase();

    /// A new value in its family's first state: it knows no schema, so a schema's default is not in it (see
    /// `InfoBase::CreateItem`). The caller owns it: count 0.
    [[nodiscard]] virtual ItemBase* CreateItem(unsigned int const& id) const = 0;
};

/// Makes schemas of one class without naming it. Creators have no state and may be used from any thread.
class LEGACY_IF_API InfoCreatorBase
{
public:
    virtual ~InfoCreatorBase();

    /// A new schema in its family's first state. The caller owns it: count 0.
    [[nodiscard]] virtual InfoBase* CreateInfo(unsigned int const& id, std::string const& name,
                                               Permission_t const& permission) const = 0;
};

/// Makes values of the class `T`. Exactly the classes named below have a creator.
template<typename T>
class LEGACY_IF_API ItemCreator : public ItemCreatorBase
{
public:
    [[nodiscard]] ItemBase* CreateItem(unsigned int const& id) const override;
    /// The same, typed.
    [[nodiscard]] T* CreateDerivedItem(unsigned int const& id) const;
};

/// Makes schemas of the class `T`. Exactly the class named below has a creator.
template<typename T>
class LEGACY_IF_API InfoCreator : public InfoCreatorBase
{
public:
    [[nodiscard]] InfoBase* CreateInfo(unsigned int const& id, std::string const& name,
                                       Permission_t const& permission) const override;
    /// The same, typed.
    [[nodiscard]] T* CreateDerivedInfo(unsigned int const& id, std::string const& name,
                                       Permission_t const& permission) const;
};

// Contract: the gaps are part of the interface, numbers of `double` among them; tables of creators are built from what
// is here, and a class that is missing is one that devices do not announce.
extern template class ItemCreator<NumericItem<U8Traits>>;
extern template class ItemCreator<NumericItem<S8Traits>>;
extern template class ItemCreator<NumericItem<U16Traits>>;
extern template class ItemCreator<NumericItem<S16Traits>>;
extern template class ItemCreator<NumericItem<U32Traits>>;
extern template class ItemCreator<NumericItem<S32Traits>>;
extern template class ItemCreator<NumericItem<U64Traits>>;
extern template class ItemCreator<NumericItem<S64Traits>>;
extern template class ItemCreator<NumericItem<FloatTraits>>;
extern template class ItemCreator<NumericArrayItem<U8Traits>>;
extern template class ItemCreator<NumericArrayItem<S8Traits>>;
extern template class ItemCreator<NumericArrayItem<U16Traits>>;
extern template class ItemCreator<NumericArrayItem<S16Traits>>;
extern template class ItemCreator<NumericArrayItem<U32Traits>>;
extern template class ItemCreator<NumericArrayItem<S32Traits>>;
extern template class ItemCreator<NumericArrayItem<U64Traits>>;
extern template class ItemCreator<NumericArrayItem<S64Traits>>;
extern template class ItemCreator<NumericArrayItem<FloatTraits>>;
extern template class ItemCreator<RectItem<U16Traits>>;
extern template class ItemCreator<RectArrayItem<U16Traits>>;
extern template class ItemCreator<BoolItem>;
extern template class ItemCreator<BoolArrayItem>;
extern template class ItemCreator<StringItem>;
extern template class ItemCreator<StringArrayItem>;
extern template class ItemCreator<ColourItem>;
extern template class ItemCreator<EndpointItem>;
extern template class ItemCreator<AppEndpointItem>;
extern template class ItemCreator<CompositeItem>;
extern template class InfoCreator<NumericArrayInfo<U64Traits>>;

} // namespace Legacy::If
