#include "convert/Change.h"
#include "convert/Visit.h"
#include "core/Finding.h"
#include "numbers/NumericList.h"
#include "numbers/Source.h"
#include "record/SerialRecord.h"
#include "shapes/Parts.h"
#include "text/PlainText.h"
#include "text/Text.h"

#include <Legacy/If/Detail/Cast.h>
#include <Legacy/If/NumericArray.h>
#include <Legacy/If/Rect.h>
#include <Legacy/If/RectArray.h>

#include <algorithm>
#include <span>

namespace Legacy::If {

namespace {

constexpr unsigned int k_initialMinSize = 1;
constexpr unsigned int k_initialMaxSize = 0x7FFFFFFF;

} // namespace

template<typename T>
NumericArrayInfo<T>::NumericArrayInfo(unsigned int const& id, std::string const& name, Permission_t const& permission)
    : Family(id, name, permission, Detail::SizeBounds(k_initialMinSize, k_initialMaxSize)), m_max(T::k_defaultMax),
      m_min(T::k_defaultMin)
{}

template<typename T>
NumericArrayInfo<T>* NumericArrayInfo<T>::DeepCopy(unsigned int id, std::string const& name,
                                                   Permission_t const& permission) const
{
    auto copy = std::make_unique<NumericArrayInfo>(id, name, permission);
    copy->m_size = m_size;
    copy->m_default = m_default;
    return copy.release();
}

template<typename T>
ItemBase* NumericArrayInfo<T>::CreateItem() const
{
    return NumericArrayItem<T>::Create(this->GetId(), m_default);
}

template<typename T>
void NumericArrayInfo<T>::SetMin(Element value) noexcept
{
    m_min = value;
    if (m_max < value)
        m_max = value;
}

template<typename T>
void NumericArrayInfo<T>::SetMax(Element value) noexcept
{
    m_max = value;
    if (value < m_min)
        m_min = value;
}

template<typename T>
int NumericArrayInfo<T>::AssignValue(boost::intrusive_ptr<InfoBase const> const& source, bool* changed)
{
    if (!source)
        return IfErrNullSource;
    if (auto const* const rects = Detail::SourceAs<RectArrayInfo<U16Traits>>(*source))
        return source->GetNumericType() == NumericType_t::U16 ? AssignRects_(*rects, changed) : IfErrTypeNotAssignable;
    if (source->GetType() != IfType_t::NumericArray)
        return IfErrTypeNotAssignable;
    return Detail::VisitFamily<If::NumericArrayInfo>(*source, [this, changed](auto const& schema) {
        Detail::Change change;
        Detail::AssignByBytes(change, m_default, schema.GetDefault(), [](auto* to, std::size_t count, auto valueAt) {
            return Detail::StoreAll(to, count, valueAt);
        });
        change.Assign(m_size, Detail::SizeBounds(schema.GetMinSize(), schema.GetMaxSize()));
        change.Store(m_max, Detail::ConvertTo<Element>(schema.GetMax()));
        change.Store(m_min, Detail::ConvertTo<Element>(schema.GetMin()));
        return change.Report(changed);
    });
}

template<typename T>
int NumericArrayInfo<T>::AssignRects_(RectArrayInfo<U16Traits> const& schema, bool* changed)
{
    auto const topLeft = schema.TopLeft();
    auto const bottomRight = schema.BottomRight();
    auto const axes = {topLeft->X(), topLeft->Y(), bottomRight->X(), bottomRight->Y()};
    Detail::Change change;
    change.Resize(m_default, Detail::k_rectNumbers); // all that can fail
    change.Assign(m_size, Detail::SizeBounds(Detail::k_rectNumbers * schema.GetMinSize(),
                                             Detail::k_rectNumbers * schema.GetMaxSize()));
    auto number = m_default.begin();
    unsigned short min = U16Traits::k_defaultMax;
    unsigned short max = U16Traits::k_defaultMin;
    for (auto const& axis : axes) {
        change.Replace(*number++, Detail::ConvertTo<Element>(axis->GetDefault()));
        min = std::min(min, axis->GetMin());
        max = std::max(max, axis->GetMax());
    }
    change.Replace(m_max, Detail::ConvertTo<Element>(max));
    change.Replace(m_min, Detail::ConvertTo<Element>(min));
    return change.Report(changed);
}

template<typename T>
NumericArrayItem<T>::NumericArrayItem(unsigned int id) : Family(id)
{}

template<typename T>
NumericArrayItem<T>* NumericArrayItem<T>::DeepCopy(unsigned int id) const
{
    return this->CopyAs_(id);
}

template<typename T>
int NumericArrayItem<T>::AssignArrayValue(boost::intrusive_ptr<ItemBase const> const& source, unsigned int index,
                                          bool* changed)
{
    if (!source)
        return IfErrNullSource;
    Detail::Change change;
    int code = 0;
    switch (source->GetType()) {
    case IfType_t::NumericArray:
        code = Detail::VisitFamily<If::NumericArrayItem>(*source, [this, &change](auto const& list) {
            Detail::AssignByBytes(change, m_value, list.Val(), [](auto* to, std::size_t count, auto valueAt) {
                return Detail::StoreUnequal<T>(to, count, valueAt);
            });
            return 0;
        });
        break;
    case IfType_t::Rectangle:
        if (!Detail::IsShapeElement(source->GetNumericType()))
            return IfErrTypeNotAssignable;
        code = Detail::VisitShape<RectItem>(*source, [this, index, &change](auto const& rect) {
            change.GrowTo(m_value, index, Detail::k_rectNumbers);
            change.Note(AssignRect_(index, rect));
            return 0;
        });
        break;
    case IfType_t::RectArray: {
        auto const* const list = Detail::CastTo<RectArrayItem<U16Traits>>(source);
        if (!list || source->GetNumericType() != NumericType_t::U16)
            return IfErrTypeNotAssignable;
        change.Resize(m_value, Detail::k_rectNumbers * list->Val().size());
        std::size_t place = 0;
        for (auto const& rect : list->Val()) {
            change.Note(AssignRect_(place, rect));
            place += Detail::k_rectNumbers;
        }
        break;
    }
    default: {
        Element value{};
        code = Detail::ReadScalar(*source, value);
        if (code != 0)
            break;
        change.GrowTo(m_value, index);
        if (!IsEqualVal_(index, value)) {
            m_value[index] = value;
            change.Note();
        }
    }
    }
    return code != 0 ? code : change.Report(changed);
}

template<typename T>
template<typename Rect>
bool NumericArrayItem<T>::AssignRect_(std::size_t index, Rect const& rect) noexcept
{
    auto const [left, top, right, bottom] = rect.GetFlat();
    return AssignValueFromRectangle_(index, Detail::ConvertTo<Element>(left), Detail::ConvertTo<Element>(top),
                                     Detail::ConvertTo<Element>(right), Detail::ConvertTo<Element>(bottom));
}

/// Stores the corners of a rectangle in four elements from `index` on, which exist, and tells whether any was another.
/// The comparison is exact.
template<typename T>
bool NumericArrayItem<T>::AssignValueFromRectangle_(std::size_t index, Element left, Element top, Element right,
                                                    Element bottom) noexcept
{
    bool changed = false;
    for (Element const value : {left, top, right, bottom}) {
        changed |= m_value[index] != value;
        m_value[index++] = value;
    }
    return changed;
}

template<typename T>
unsigned int NumericArrayItem<T>::GetSerialDataSize() const
{
    return Detail::ClampSize(std::uint64_t{m_value.size()} * sizeof(Element));
}

template<typename T>
int NumericArrayItem<T>::Serialize(ItemBase::SerialStruct_t* record) const
{
    return Detail::WriteRecord(
        *this, record, NumericArrayItem::GetSerialDataSize(),
        [this](Detail::PayloadWriter payload) { payload.PutAll(std::span<Element const>(m_value)); });
}

template<typename T>
int NumericArrayItem<T>::Deserialize(ItemBase::ConstSerialStruct_t const* record)
{
    Detail::PayloadReader payload;
    if (int const code = Detail::OpenRecord(*this, record, payload))
        return code;
    if (payload.Left() % sizeof(Element) != 0)
        return IfErrInvalidArgument;
    m_value.resize(payload.Left() / sizeof(Element));
    payload.GetAll(std::span<Element>(m_value));
    return 0;
}

template<typename T>
std::shared_ptr<ResultElem const> NumericArrayItem<T>::Validate(boost::intrusive_ptr<InfoBase const> const& info)
{
    auto const* const schema = Detail::CastTo<NumericArrayInfo<T>>(info);
    if (!schema)
        return Detail::TypeMismatch(info, *this);
    if (auto finding = Detail::CheckSize(schema->Sizes(), m_value.size(), "TypesSystemNumericArrayValidationMinSize",
                                         "TypesSystemNumericArrayValidationMaxSize", info, *this))
        return finding;
    Element const min = schema->GetMin();
    Element const max = schema->GetMax();
    if (!Detail::AnyOutside(m_value, min, max))
        return {};
    auto const first =
        std::ranges::find_if(m_value, [min, max](Element value) { return Detail::IsOutside(value, min, max); });
    if (min > *first)
        return Detail::MakeFinding("TypesSystemNumericValidationMin", info, *this, min);
    return Detail::MakeFinding("TypesSystemNumericValidationMax", info, *this, max);
}

template<typename T>
bool NumericArrayItem<T>::SetValFromStream(std::istream& in, std::ostream& out,
                                           boost::intrusive_ptr<InfoBase const> const&)
{
    return Detail::ReadList(in, out, m_value, [&in, &out](char const* word, Element& value) {
        return Detail::ReadNumber(in, out, word, value);
    });
}

template<typename T>
std::ostream& NumericArrayItem<T>::operator<<(std::ostream& os) const
{
    if (!Detail::PlainText::Suits(os)) {
        os << '(';
        Detail::PrintList(os, m_value, [](std::ostream& to, Element value) { to << Detail::TextForm<Element>{value}; });
        return os << ')';
    }
    Detail::PlainText text(os);
    text << "(";
    Detail::PrintList(text, m_value,
                      [](Detail::PlainText& to, Element value) { to.PutNumber(Detail::TextForm<Element>{value}); });
    text.Flush();
    return os << ')'; // by itself, so that a stream that took less is left as if it had been given each piece
}

template class NumericArrayInfo<U8Traits>;
template class NumericArrayInfo<S8Traits>;
template class NumericArrayInfo<U16Traits>;
template class NumericArrayInfo<S16Traits>;
template class NumericArrayInfo<U32Traits>;
template class NumericArrayInfo<S32Traits>;
template class NumericArrayInfo<U64Traits>;
template class NumericArrayInfo<S64Traits>;
template class NumericArrayInfo<FloatTraits>;
template class NumericArrayInfo<DoubleTraits>;

template class NumericArrayItem<U8Traits>;
template class NumericArrayItem<S8Traits>;
template class NumericArrayItem<U16Traits>;
template class NumericArrayItem<S16Traits>;
template class NumericArrayItem<U32Traits>;
template class NumericArrayItem<S32Traits>;
template class NumericArrayItem<U64Traits>;
template class NumericArrayItem<S64Traits>;
template class NumericArrayItem<FloatTraits>;
template class NumericArrayItem<DoubleTraits>;

} // namespace Legacy::If
