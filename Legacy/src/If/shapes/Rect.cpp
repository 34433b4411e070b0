#include "convert/Change.h"
#include "convert/Visit.h"
#include "core/Finding.h"
#include "record/NumberTuple.h"
#include "shapes/Parts.h"
#include "text/Text.h"

#include <Legacy/If/Detail/Cast.h>
#include <Legacy/If/Rect.h>

#include <concepts>
#include <cstdint>

namespace Legacy::If {

namespace {

// How many places there are from one to the other, both counted. Integers wrap.
template<typename Element>
Element Extent(Element first, Element last) noexcept
{
    if constexpr (std::floating_point<Element>)
        return Detail::Rounded(Detail::Rounded(last - first) + Element{1});
    else
        return static_cast<Element>(static_cast<std::uint32_t>(last) - static_cast<std::uint32_t>(first) + 1);
}

} // namespace

template<typename T>
RectInfo<T>::RectInfo(unsigned int const& id, std::string const& name, Permission_t const& permission)
    : Family(id, name, permission)
{}

template<typename T>
RectInfo<T>::RectInfo(unsigned int id, std::string const& name, Permission_t const& permission, RectInfo const& other)
    : Family(id, name, permission, other)
{}

template<typename T>
RectInfo<T>* RectInfo<T>::DeepCopy(unsigned int id, std::string const& name, Permission_t const& permission) const
{
    return new RectInfo(id, name, permission, *this);
}

template<typename T>
ItemBase* RectInfo<T>::CreateItem() const
{
    auto item = std::make_unique<RectItem<T>>(this->GetId());
    item->SetValTopLeft(m_first.Get());
    item->SetValBottomRight(m_second.Get());
    return item.release();
}

template<typename T>
int RectInfo<T>::AssignValue(boost::intrusive_ptr<InfoBase const> const& source, bool* changed)
{
    if (!source)
        return IfErrNullSource;
    if (source->GetType() != IfType_t::Rectangle)
        return IfErrTypeNotAssignable;
    return Detail::VisitShape<If::RectInfo>(*source, [this, changed](auto const& schema) {
        Detail::Change change;
        if (int const code = Detail::AssignBoth(change, *m_first, schema.TopLeft(), *m_second, schema.BottomRight()))
            return code;
        return change.Report(changed);
    });
}

template<typename T>
void RectInfo<T>::DumpVal(std::ostream& os) const
{
    Detail::DumpNumericHead(os, *this);
    Detail::DumpCorners(os, *m_first, *m_second);
}

template<typename T>
std::ostream& RectInfo<T>::operator<<(std::ostream& os) const
{
    return os << "TLC[" << *m_first << "] BRC[" << *m_second << ']';
}

template<typename T>
RectItem<T>::RectItem(unsigned int id) : Family(id), m_topLeft(new Corner(0)), m_bottomRight(new Corner(0))
{}

template<typename T>
RectItem<T>* RectItem<T>::DeepCopy(unsigned int id) const
{
    return this->CopyAs_(id);
}

template<typename T>
typename RectItem<T>::Flat RectItem<T>::GetFlat() const noexcept
{
    return {m_topLeft->X()->GetVal(), m_topLeft->Y()->GetVal(), m_bottomRight->X()->GetVal(),
            m_bottomRight->Y()->GetVal()};
}

template<typename T>
void RectItem<T>::SetFlat(Flat const& numbers) noexcept
{
    m_topLeft->SetValX(numbers[0]);
    m_topLeft->SetValY(numbers[1]);
    m_bottomRight->SetValX(numbers[2]);
    m_bottomRight->SetValY(numbers[3]);
}

template<typename T>
typename RectItem<T>::Element RectItem<T>::GetWidth() const noexcept
{
    return Extent(m_topLeft->X()->GetVal(), m_bottomRight->X()->GetVal());
}

template<typename T>
typename RectItem<T>::Element RectItem<T>::GetHeight() const noexcept
{
    return Extent(m_topLeft->Y()->GetVal(), m_bottomRight->Y()->GetVal());
}

template<typename T>
void RectItem<T>::SetValTopLeft(boost::intrusive_ptr<CoordinateInfo<T>> const& corner) noexcept
{
    m_topLeft->SetValX(corner->GetDefaultX());
    m_topLeft->SetValY(corner->GetDefaultY());
}

template<typename T>
void RectItem<T>::SetValBottomRight(boost::intrusive_ptr<CoordinateInfo<T>> const& corner) noexcept
{
    m_bottomRight->SetValX(corner->GetDefaultX());
    m_bottomRight->SetValY(corner->GetDefaultY());
}

template<typename T>
void RectItem<T>::BoundVal(RectInfo<T> const& info) noexcept
{
    m_topLeft->BoundVal(*info.TopLeft());
    m_bottomRight->BoundVal(*info.BottomRight());
}

template<typename T>
bool RectItem<T>::WithinBounds(RectInfo<T> const& info) const noexcept
{
    return m_topLeft->WithinBounds(*info.TopLeft()) && m_bottomRight->WithinBounds(*info.BottomRight());
}

template<typename T>
bool RectItem<T>::IsEqualValue(boost::intrusive_ptr<ItemBase const> const& other) const
{
    auto const* const item = Detail::CastTo<RectItem>(other);
    return item && this->IsEqualType(other) && Detail::Equal<T>(GetFlat(), item->GetFlat());
}

template<typename T>
int RectItem<T>::AssignArrayValue(boost::intrusive_ptr<ItemBase const> const& source, unsigned int, bool* changed)
{
    if (!source)
        return IfErrNullSource;
    if (source->GetType() != IfType_t::Rectangle)
        return IfErrTypeNotAssignable;
    return Detail::VisitShape<If::RectItem>(*source, [this, changed](auto const& item) {
        Detail::Change change;
        if (int const code = Detail::AssignCorners(change, *this, item.TopLeft(), item.BottomRight()))
            return code;
        return change.Report(changed);
    });
}

template<typename T>
unsigned int RectItem<T>::GetSerialDataSize() const
{
    return sizeof(Flat);
}

template<typename T>
int RectItem<T>::Serialize(ItemBase::SerialStruct_t* record) const
{
    return Detail::WriteNumbers(*this, record, GetFlat());
}

template<typename T>
int RectItem<T>::Deserialize(ItemBase::ConstSerialStruct_t const* record)
{
    Detail::PayloadReader payload;
    if (int const code = Detail::OpenRecord(*this, record, payload))
        return code;
    if (payload.Left() < sizeof(Flat))
        return IfErrInvalidArgument;
    Flat numbers;
    payload.GetAll(std::span<Element>(numbers));
    SetFlat(numbers);
    return 0;
}

template<typename T>
std::shared_ptr<ResultElem const> RectItem<T>::Validate(boost::intrusive_ptr<InfoBase const> const& info)
{
    return Detail::IllegalValidation(info, *this);
}

template<typename T>
bool RectItem<T>::SetValFromStream(std::istream& in, std::ostream& out,
                                   boost::intrusive_ptr<InfoBase const> const& info)
{
    if (!m_topLeft->SetValFromStream(in, out, info))
        return Detail::ParseError(out, "TopLeft");
    if (!m_bottomRight->SetValFromStream(in, out, info))
        return Detail::ParseError(out, "BottomRight");
    return true;
}

template<typename T>
std::ostream& RectItem<T>::operator<<(std::ostream& os) const
{
    return os << "(TLC" << *m_topLeft << Detail::k_partSeparator << "BRC" << *m_bottomRight << ')';
}

template class RectInfo<U16Traits>;
template class RectInfo<S32Traits>;
template class RectInfo<FloatTraits>;

template class RectItem<U16Traits>;
template class RectItem<S32Traits>;
template class RectItem<FloatTraits>;

} // namespace Legacy::If
