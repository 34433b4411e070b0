#include "convert/Change.h"
#include "convert/Visit.h"
#include "core/Finding.h"
#include "numbers/NumericList.h"
#include "record/SerialRecord.h"
#include "text/Text.h"

#include <Legacy/If/NumericSparse.h>

namespace Legacy::If {

template<typename T>
NumericSparseInfo<T>::NumericSparseInfo(unsigned int const& id, std::string const& name, Permission_t const& permission)
    : Family(id, name, permission)
{}

template<typename T>
NumericSparseInfo<T>* NumericSparseInfo<T>::DeepCopy(unsigned int id, std::string const& name,
                                                     Permission_t const& permission) const
{
    return this->CopyAs_(id, name, permission);
}

template<typename T>
ItemBase* NumericSparseInfo<T>::CreateItem() const
{
    return NumericSparseItem<T>::Create(this->GetId(), m_allowed.Default());
}

template<typename T>
int NumericSparseInfo<T>::SetTable(std::vector<Element> const& table)
{
    m_allowed.SetTable(table);
    return 0;
}

template<typename T>
int NumericSparseInfo<T>::SetDefault(Element value)
{
    return m_allowed.SetDefault(value);
}

template<typename T>
bool NumericSparseInfo<T>::IsPresent(Element value) const noexcept
{
    return m_allowed.IsPresent(value);
}

template<typename T>
bool NumericSparseInfo<T>::IsEqualBounds(boost::intrusive_ptr<InfoBase const> const&) const
{
    return false;
}

template<typename T>
int NumericSparseInfo<T>::MergeBounds(boost::intrusive_ptr<InfoBase const> const& other)
{
    return this->IsEqualType(other) ? IfErrTypeNotAssignable : IfErrBoundsTypeMismatch;
}

template<typename T>
int NumericSparseInfo<T>::AssignValue(boost::intrusive_ptr<InfoBase const> const& source, bool* changed)
{
    if (!source)
        return IfErrNullSource;
    if (source->GetType() != IfType_t::NumericSparse)
        return IfErrTypeNotAssignable;
    return Detail::VisitFamily<If::NumericSparseInfo>(*source, [this, changed](auto const& schema) {
        Detail::Change change;
        Detail::AssignByBytes(
            change, m_allowed.Table(), schema.GetTable(),
            [](auto* to, std::size_t count, auto valueAt) { return Detail::StoreAll(to, count, valueAt); });
        change.Store(m_allowed.Default(), Detail::ConvertTo<Element>(schema.GetDefault()));
        return change.Report(changed);
    });
}

template<typename T>
void NumericSparseInfo<T>::DumpVal(std::ostream& os) const
{
    Detail::DumpNumericHead(os, *this);
    Detail::DumpLine(os, "default: ", m_allowed.Default());
}

template<typename T>
std::ostream& NumericSparseInfo<T>::operator<<(std::ostream& os) const
{
    Detail::PrintAllowed(os, m_allowed,
                         [](std::ostream& to, Element value) { to << Detail::TextForm<Element>{value}; });
    return os;
}

template<typename T>
NumericSparseItem<T>::NumericSparseItem(unsigned int id) : Family(id)
{}

template<typename T>
NumericSparseItem<T>* NumericSparseItem<T>::DeepCopy(unsigned int id) const
{
    return this->CopyAs_(id);
}

template<typename T>
void NumericSparseItem<T>::SetVal(Element value, NumericSparseInfo<T> const& info) noexcept
{
    m_value = info.m_allowed.AllowedOrDefault(value);
}

template<typename T>
int NumericSparseItem<T>::AssignArrayValue(boost::intrusive_ptr<ItemBase const> const& source, unsigned int,
                                           bool* changed)
{
    if (!source)
        return IfErrNullSource;
    auto const take = [this, changed](auto const& item) {
        Detail::Change change;
        change.Store(m_value, Detail::ConvertTo<Element>(item.Val()));
        return change.Report(changed);
    };
    if (auto const* const own = Detail::SourceAs<NumericSparseItem>(*source)) // whatever element tag it shows
        return take(*own);
    if (source->GetType() != IfType_t::NumericSparse)
        return IfErrTypeNotAssignable;
    return Detail::VisitFamily<If::NumericSparseItem>(*source, take);
}

template<typename T>
unsigned int NumericSparseItem<T>::GetSerialDataSize() const
{
    return sizeof(Element);
}

template<typename T>
int NumericSparseItem<T>::Serialize(ItemBase::SerialStruct_t* record) const
{
    return Detail::WriteNumberRecord(*this, record, m_value);
}

template<typename T>
int NumericSparseItem<T>::Deserialize(ItemBase::ConstSerialStruct_t const* record)
{
    return Detail::ReadNumberRecord(*this, record, m_value);
}

template<typename T>
std::shared_ptr<ResultElem const> NumericSparseItem<T>::Validate(boost::intrusive_ptr<InfoBase const> const& info)
{
    return Detail::IllegalValidation(info, *this);
}

template<typename T>
bool NumericSparseItem<T>::SetValFromStream(std::istream& in, std::ostream& out,
                                            boost::intrusive_ptr<InfoBase const> const&)
{
    return Detail::ReadNumber(in, out, "numericSparseItem", m_value);
}

template<typename T>
void NumericSparseItem<T>::DumpVal(std::ostream& os) const
{
    Detail::DumpHead(os, *this);
    Detail::DumpLine(os, "value: ", m_value);
}

template<typename T>
std::ostream& NumericSparseItem<T>::operator<<(std::ostream& os) const
{
    return os << Detail::TextForm<Element>{m_value};
}

template class NumericSparseInfo<U8Traits>;
template class NumericSparseInfo<S8Traits>;
template class NumericSparseInfo<U16Traits>;
template class NumericSparseInfo<S16Traits>;
template class NumericSparseInfo<U32Traits>;
template class NumericSparseInfo<S32Traits>;
template class NumericSparseInfo<U64Traits>;
template class NumericSparseInfo<S64Traits>;
template class NumericSparseInfo<FloatTraits>;
template class NumericSparseInfo<DoubleTraits>;

template class NumericSparseItem<U8Traits>;
template class NumericSparseItem<S8Traits>;
template class NumericSparseItem<U16Traits>;
template class NumericSparseItem<S16Traits>;
template class NumericSparseItem<U32Traits>;
template class NumericSparseItem<S32Traits>;
template class NumericSparseItem<U64Traits>;
template class NumericSparseItem<S64Traits>;
template class NumericSparseItem<FloatTraits>;
template class NumericSparseItem<DoubleTraits>;

} // namespace Legacy::If
