#include "convert/Change.h"
#include "convert/Visit.h"
#include "core/Finding.h"
#include "numbers/Source.h"
#include "record/SerialRecord.h"
#include "text/Text.h"

#include <Legacy/If/Detail/Cast.h>
#include <Legacy/If/Numeric.h>

#include <algorithm>

namespace Legacy::If {

template<typename T>
NumericInfo<T>::NumericInfo(unsigned int const& id, std::string const& name, Permission_t const& permission)
    : Family(id, name, permission), m_default(0), m_max(T::k_defaultMax), m_min(T::k_defaultMin)
{}

template<typename T>
NumericInfo<T>* NumericInfo<T>::DeepCopy(unsigned int id, std::string const& name, Permission_t const& permission) const
{
    return this->CopyAs_(id, name, permission);
}

template<typename T>
ItemBase* NumericInfo<T>::CreateItem() const
{
    return NumericItem<T>::Create(this->GetId(), m_default);
}

template<typename T>
void NumericInfo<T>::SetDefault(Element value) noexcept
{
    if (value < m_min)
        m_default = m_min;
    else if (value > m_max)
        m_default = m_max;
    else
        m_default = value;
}

template<typename T>
void NumericInfo<T>::SetMin(Element value) noexcept
{
    if (m_max < value)
        m_max = value;
    m_min = value;
    if (m_default < value)
        m_default = value;
}

template<typename T>
void NumericInfo<T>::SetMax(Element value) noexcept
{
    if (m_min > value)
        m_min = value;
    m_max = value;
    if (m_default > value)
        m_default = value;
}

template<typename T>
bool NumericInfo<T>::IsEqualBounds(boost::intrusive_ptr<InfoBase const> const& other) const
{
    auto const* const schema = Detail::CastTo<NumericInfo>(other);
    return schema && this->IsEqualType(other) && T::Equal(m_min, schema->m_min) && T::Equal(m_max, schema->m_max);
}

template<typename T>
int NumericInfo<T>::MergeBounds(boost::intrusive_ptr<InfoBase const> const& other)
{
    auto const* const schema = Detail::CastTo<NumericInfo>(other);
    if (!schema || !this->IsEqualType(other))
        return IfErrBoundsTypeMismatch;
    if (schema->m_min > m_max || m_min > schema->m_max)
        return IfErrBoundsDisjoint;
    m_min = std::max(m_min, schema->m_min);
    m_max = std::min(m_max, schema->m_max);
    return 0;
}

template<typename T>
int NumericInfo<T>::AssignValue(boost::intrusive_ptr<InfoBase const> const& source, bool* changed)
{
    if (!source)
        return IfErrNullSource;
    if (source->GetType() != IfType_t::Numeric)
        return IfErrTypeNotAssignable;
    return Detail::VisitFamily<If::NumericInfo>(*source, [this, changed](auto const& schema) {
        Detail::Change change;
        change.Store(m_default, Detail::ConvertTo<Element>(schema.GetDefault()));
        change.Store(m_max, Detail::ConvertTo<Element>(schema.GetMax()));
        change.Store(m_min, Detail::ConvertTo<Element>(schema.GetMin()));
        return change.Report(changed);
    });
}

template<typename T>
void NumericInfo<T>::DumpVal(std::ostream& os) const
{
    Detail::DumpNumericHead(os, *this);
    Detail::DumpLine(os, "min: ", m_min);
    Detail::DumpLine(os, "max: ", m_max);
    Detail::DumpLine(os, "default: ", m_default);
}

template<typename T>
std::ostream& NumericInfo<T>::operator<<(std::ostream& os) const
{
    using Text = Detail::TextForm<Element>;
    return os << Text{m_min} << " <= " << Text{m_default} << " <= " << Text{m_max};
}

template<typename T>
NumericItem<T>* NumericItem<T>::DeepCopy(unsigned int id) const
{
    return this->CopyAs_(id);
}

template<typename T>
void NumericItem<T>::SetVal(Element value, NumericInfo<T> const& info) noexcept
{
    m_value = value;
    if (!WithinBounds(info))
        m_value = info.GetDefault();
}

template<typename T>
void NumericItem<T>::BoundVal(NumericInfo<T> const& info) noexcept
{
    if (m_value < info.GetMin())
        m_value = info.GetMin();
    else if (m_value > info.GetMax())
        m_value = info.GetMax();
}

template<typename T>
bool NumericItem<T>::WithinBounds(NumericInfo<T> const& info) const noexcept
{
    return !(info.GetMin() > m_value) && !(m_value > info.GetMax());
}

template<typename T>
int NumericItem<T>::AssignArrayValue(boost::intrusive_ptr<ItemBase const> const& source, unsigned int index,
                                     bool* changed)
{
    if (!source)
        return IfErrNullSource;
    Element value{};
    if (int const code = Detail::ReadNumber(*source, index, value))
        return code;
    Detail::Change change;
    change.Store(m_value, value);
    return change.Report(changed);
}

template<typename T>
unsigned int NumericItem<T>::GetSerialDataSize() const
{
    return sizeof(Element);
}

template<typename T>
int NumericItem<T>::Serialize(ItemBase::SerialStruct_t* record) const
{
    return Detail::WriteNumberRecord(*this, record, m_value);
}

template<typename T>
int NumericItem<T>::Deserialize(ItemBase::ConstSerialStruct_t const* record)
{
    return Detail::ReadNumberRecord(*this, record, m_value);
}

template<typename T>
std::shared_ptr<ResultElem const> NumericItem<T>::Validate(boost::intrusive_ptr<InfoBase const> const& info)
{
    // Nearly every value is of this very class, and passes: both halves would find so.
    auto const* const schema = Detail::IsExactly<NumericItem>(*this) ? Detail::CastTo<NumericInfo<T>>(info) : nullptr;
    if (schema && WithinBounds(*schema))
        return {};
    if (auto finding = this->ValidateMin(info))
        return finding;
    return this->ValidateMax(info);
}

template<typename T>
std::shared_ptr<ResultElem const> NumericItem<T>::ValidateMin(boost::intrusive_ptr<InfoBase const> const& info)
{
    auto const* const schema = Detail::CastTo<NumericInfo<T>>(info);
    if (!schema)
        return Detail::TypeMismatch(info, *this);
    if (schema->GetMin() > m_value)
        return Detail::MakeFinding("TypesSystemNumericValidationMin", info, *this, schema->GetMin());
    return {};
}

template<typename T>
std::shared_ptr<ResultElem const> NumericItem<T>::ValidateMax(boost::intrusive_ptr<InfoBase const> const& info)
{
    auto const* const schema = Detail::CastTo<NumericInfo<T>>(info);
    if (!schema)
        return Detail::TypeMismatch(info, *this);
    if (m_value > schema->GetMax())
        return Detail::MakeFinding("TypesSystemNumericValidationMax", info, *this, schema->GetMax());
    return {};
}

template<typename T>
bool NumericItem<T>::SetValFromStream(std::istream& in, std::ostream& out, boost::intrusive_ptr<InfoBase const> const&)
{
    return Detail::ReadNumber(in, out, "numericItem", m_value);
}

template<typename T>
void NumericItem<T>::DumpVal(std::ostream& os) const
{
    Detail::DumpHead(os, *this);
    Detail::DumpLine(os, "value: ", m_value);
}

template<typename T>
std::ostream& NumericItem<T>::operator<<(std::ostream& os) const
{
    return os << Detail::TextForm<Element>{m_value};
}

template class NumericInfo<U8Traits>;
template class NumericInfo<S8Traits>;
template class NumericInfo<U16Traits>;
template class NumericInfo<S16Traits>;
template class NumericInfo<U32Traits>;
template class NumericInfo<S32Traits>;
template class NumericInfo<U64Traits>;
template class NumericInfo<S64Traits>;
template class NumericInfo<FloatTraits>;
template class NumericInfo<DoubleTraits>;

template class NumericItem<U8Traits>;
template class NumericItem<S8Traits>;
template class NumericItem<U16Traits>;
template class NumericItem<S16Traits>;
template class NumericItem<U32Traits>;
template class NumericItem<S32Traits>;
template class NumericItem<U64Traits>;
template class NumericItem<S64Traits>;
template class NumericItem<FloatTraits>;
template class NumericItem<DoubleTraits>;

} // namespace Legacy::If
