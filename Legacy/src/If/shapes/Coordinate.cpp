#include "convert/Change.h"
#include "convert/Visit.h"
#include "core/Finding.h"
#include "record/NumberTuple.h"
#include "shapes/Parts.h"
#include "text/Text.h"

#include <Legacy/If/Coordinate.h>
#include <Legacy/If/Detail/Cast.h>

namespace Legacy::If {

template<typename T>
CoordinateInfo<T>::CoordinateInfo(unsigned int const& id, std::string const& name, Permission_t const& permission)
    : Family(id, name, permission)
{}

template<typename T>
CoordinateInfo<T>::CoordinateInfo(unsigned int id, std::string const& name, Permission_t const& permission,
                                  CoordinateInfo const& other)
    : Family(id, name, permission, other)
{}

template<typename T>
CoordinateInfo<T>* CoordinateInfo<T>::DeepCopy(unsigned int id, std::string const& name,
                                               Permission_t const& permission) const
{
    return new CoordinateInfo(id, name, permission, *this);
}

template<typename T>
ItemBase* CoordinateInfo<T>::CreateItem() const
{
    auto item = std::make_unique<CoordinateItem<T>>(this->GetId());
    item->SetValX(GetDefaultX());
    item->SetValY(GetDefaultY());
    return item.release();
}

template<typename T>
int CoordinateInfo<T>::AssignValue(boost::intrusive_ptr<InfoBase const> const& source, bool* changed)
{
    if (!source)
        return IfErrNullSource;
    if (source->GetType() != IfType_t::Coordinate)
        return IfErrTypeNotAssignable;
    return Detail::VisitShape<If::CoordinateInfo>(*source, [this, changed](auto const& schema) {
        Detail::Change change;
        if (int const code = Detail::AssignBoth(change, *m_first, schema.X(), *m_second, schema.Y()))
            return code;
        return change.Report(changed);
    });
}

template<typename T>
void CoordinateInfo<T>::DumpVal(std::ostream& os) const
{
    Detail::DumpNumericHead(os, *this);
    Detail::DumpLine(os, "X ", *m_first);
    Detail::DumpLine(os, "Y ", *m_second);
}

template<typename T>
std::ostream& CoordinateInfo<T>::operator<<(std::ostream& os) const
{
    return os << "x(" << *m_first << ") y(" << *m_second << ')';
}

template<typename T>
CoordinateItem<T>::CoordinateItem(unsigned int id) : Family(id), m_x(new Axis(0)), m_y(new Axis(0))
{}

template<typename T>
CoordinateItem<T>* CoordinateItem<T>::DeepCopy(unsigned int id) const
{
    return this->CopyAs_(id);
}

template<typename T>
void CoordinateItem<T>::BoundVal(CoordinateInfo<T> const& info) noexcept
{
    m_x->BoundVal(*info.X());
    m_y->BoundVal(*info.Y());
}

template<typename T>
bool CoordinateItem<T>::WithinBounds(CoordinateInfo<T> const& info) const noexcept
{
    return m_x->WithinBounds(*info.X()) && m_y->WithinBounds(*info.Y());
}

template<typename T>
bool CoordinateItem<T>::IsEqualValue(boost::intrusive_ptr<ItemBase const> const& other) const
{
    auto const* const item = Detail::CastTo<CoordinateItem>(other);
    return item && this->IsEqualType(other) && Detail::Equal<T>(GetPair(), item->GetPair());
}

template<typename T>
int CoordinateItem<T>::AssignArrayValue(boost::intrusive_ptr<ItemBase const> const& source, unsigned int, bool* changed)
{
    if (!source)
        return IfErrNullSource;
    if (source->GetType() != IfType_t::Coordinate)
        return IfErrTypeNotAssignable;
    return Detail::VisitShape<If::CoordinateItem>(*source, [this, changed](auto const& item) {
        Detail::Change change;
        if (Detail::AssignBoth(change, *m_x, item.X(), *m_y, item.Y()) != 0)
            return IfErrTypeNotAssignable;
        return change.Report(changed);
    });
}

template<typename T>
unsigned int CoordinateItem<T>::GetSerialDataSize() const
{
    return sizeof(GetPair());
}

template<typename T>
int CoordinateItem<T>::Serialize(ItemBase::SerialStruct_t* record) const
{
    return Detail::WriteNumbers(*this, record, GetPair());
}

template<typename T>
int CoordinateItem<T>::Deserialize(ItemBase::ConstSerialStruct_t const* record)
{
    std::array<Element, 2> pair;
    if (int const code = Detail::ReadNumbers(*this, record, pair))
        return code;
    SetValX(pair[0]);
    SetValY(pair[1]);
    return 0;
}

template<typename T>
std::shared_ptr<ResultElem const> CoordinateItem<T>::Validate(boost::intrusive_ptr<InfoBase const> const& info)
{
    return Detail::IllegalValidation(info, *this);
}

template<typename T>
bool CoordinateItem<T>::SetValFromStream(std::istream& in, std::ostream& out,
                                         boost::intrusive_ptr<InfoBase const> const& info)
{
    if (!m_x->SetValFromStream(in, out, info))
        return Detail::ParseError(out, "X");
    if (!m_y->SetValFromStream(in, out, info))
        return Detail::ParseError(out, "Y");
    return true;
}

template<typename T>
std::ostream& CoordinateItem<T>::operator<<(std::ostream& os) const
{
    return os << '(' << *m_x << Detail::k_partSeparator << *m_y << ')';
}

template class CoordinateInfo<U16Traits>;
template class CoordinateInfo<S32Traits>;
template class CoordinateInfo<FloatTraits>;

template class CoordinateItem<U16Traits>;
template class CoordinateItem<S32Traits>;
template class CoordinateItem<FloatTraits>;

} // namespace Legacy::If
