#include <Legacy/If/Creators.h>

namespace Legacy::If {

ItemCreatorBase::~ItemCreatorBase() = default;

InfoCreatorBase::~InfoCreatorBase() = default;

template<typename T>
ItemBase* ItemCreator<T>::CreateItem(unsigned int const& id) const
{
    return CreateDerivedItem(id);
}

template<typename T>
T* ItemCreator<T>::CreateDerivedItem(unsigned int const& id) const
{
    return new T(id);
}

template<typename T>
InfoBase* InfoCreator<T>::CreateInfo(unsigned int const& id, std::string const& name,
                                     Permission_t const& permission) const
{
    return CreateDerivedInfo(id, name, permission);
}

template<typename T>
T* InfoCreator<T>::CreateDerivedInfo(unsigned int const& id, std::string const& name,
                                     Permission_t const& permission) const
{
    return new T(id, name, permission);
}

template class ItemCreator<NumericItem<U8Traits>>;
template class ItemCreator<NumericItem<S8Traits>>;
template class ItemCreator<NumericItem<U16Traits>>;
template class ItemCreator<NumericItem<S16Traits>>;
template class ItemCreator<NumericItem<U32Traits>>;
template class ItemCreator<NumericItem<S32Traits>>;
template class ItemCreator<NumericItem<U64Traits>>;
template class ItemCreator<NumericItem<S64Traits>>;
template class ItemCreator<NumericItem<FloatTraits>>;
template class ItemCreator<NumericArrayItem<U8Traits>>;
template class ItemCreator<NumericArrayItem<S8Traits>>;
template class ItemCreator<NumericArrayItem<U16Traits>>;
template class ItemCreator<NumericArrayItem<S16Traits>>;
template class ItemCreator<NumericArrayItem<U32Traits>>;
template class ItemCreator<NumericArrayItem<S32Traits>>;
template class ItemCreator<NumericArrayItem<U64Traits>>;
template class ItemCreator<NumericArrayItem<S64Traits>>;
template class ItemCreator<NumericArrayItem<FloatTraits>>;
template class ItemCreator<RectItem<U16Traits>>;
template class ItemCreator<RectArrayItem<U16Traits>>;
template class ItemCreator<BoolItem>;
template class ItemCreator<BoolArrayItem>;
template class ItemCreator<StringItem>;
template class ItemCreator<StringArrayItem>;
template class ItemCreator<ColourItem>;
template class ItemCreator<EndpointItem>;
template class ItemCreator<AppEndpointItem>;
template class ItemCreator<CompositeItem>;
template class InfoCreator<NumericArrayInfo<U64Traits>>;

} // namespace Legacy::If
