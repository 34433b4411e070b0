#include "convert/Change.h"
#include "convert/Convert.h"
#include "convert/Visit.h"
#include "core/Finding.h"
#include "core/ReserveMore.h"
#include "record/NumberTuple.h"
#include "record/SerialRecord.h"
#include "shapes/Parts.h"
#include "text/Text.h"

#include <Legacy/If/Detail/Cast.h>
#include <Legacy/If/NumericArray.h>
#include <Legacy/If/RectArray.h>

#include <algorithm>
#include <cstddef>
#include <span>

namespace Legacy::If {

namespace {

constexpr unsigned int k_initialMaxSize = 0x7FFFFFFF;
// Contract: the greatest number of rectangles that a list holds is the same on every machine, whatever its memory.
constexpr std::uint64_t k_maxRects = 0x0CCCCCCC;

} // namespace

template<typename T>
RectArrayInfo<T>::RectArrayInfo(unsigned int const& id, std::string const& name, Permission_t const& permission)
    : Family(id, name, permission), m_size(0, k_initialMaxSize)
{}

template<typename T>
RectArrayInfo<T>::RectArrayInfo(unsigned int id, std::string const& name, Permission_t const& permission,
                                RectArrayInfo const& other)
    : Family(id, name, permission, other), m_size(other.m_size)
{}

template<typename T>
RectArrayInfo<T>* RectArrayInfo<T>::DeepCopy(unsigned int id, std::string const& name,
                                             Permission_t const& permission) const
{
    return new RectArrayInfo(id, name, permission, *this);
}

template<typename T>
ItemBase* RectArrayInfo<T>::CreateItem() const
{
    return new RectArrayItem<T>(this->GetId());
}

template<typename T>
int RectArrayInfo<T>::SetMinSize(unsigned int n)
{
    m_size.SetMin(n);
    return 0;
}

template<typename T>
int RectArrayInfo<T>::SetMaxSize(unsigned int n)
{
    m_size.SetMax(n);
    return 0;
}

template<typename T>
int RectArrayInfo<T>::AssignValue(boost::intrusive_ptr<InfoBase const> const& source, bool* changed)
{
    if (!source)
        return IfErrNullSource;
    if (source->GetType() == IfType_t::NumericArray)
        return Detail::VisitFamily<NumericArrayInfo>(
            *source, [this, changed](auto const& schema) { return this->AssignNumbers_(schema, changed); });
    auto const* const schema = Detail::SourceAs<RectArrayInfo>(*source);
    if (!schema)
        return IfErrTypeNotAssignable;
    Detail::Change change;
    int const code = Detail::AssignBoth(change, *m_first, schema->m_first.Get(), *m_second, schema->m_second.Get());
    change.Assign(m_size, schema->m_size);
    return code != 0 ? code : change.Report(changed);
}

template<typename T>
template<typename Schema>
int RectArrayInfo<T>::AssignNumbers_(Schema const& schema, bool* changed)
{
    auto const& numbers = schema.GetDefault();
    unsigned int const minSize = schema.GetMinSize();
    unsigned int const maxSize = schema.GetMaxSize();
    if (minSize % Detail::k_rectNumbers != 0 || maxSize % Detail::k_rectNumbers != 0 ||
        (!numbers.empty() && numbers.size() != Detail::k_rectNumbers))
        return IfErrInvalidArgument;
    Detail::Change change;
    change.Assign(m_size, Detail::SizeBounds(minSize / Detail::k_rectNumbers, maxSize / Detail::k_rectNumbers));
    if (numbers.empty())
        return change.Report(changed);
    auto const least = Detail::ConvertTo<typename T::T>(schema.GetMin());
    auto number = numbers.begin();
    for (auto const& axis : {m_first->X(), m_first->Y(), m_second->X(), m_second->Y()}) {
        auto const before = axis->GetDefault();
        axis->SetDefault(Detail::ConvertTo<typename T::T>(*number++));
        axis->SetMin(least);
        axis->SetMax(least); // the least number here too, as told in the header
        change.Note(axis->GetDefault() != before);
    }
    return change.Report(changed);
}

template<typename T>
void RectArrayInfo<T>::DumpVal(std::ostream& os) const
{
    Detail::DumpNumericHead(os, *this);
    Detail::DumpLine(os, "minSize: ", m_size.Min());
    Detail::DumpLine(os, "maxSize: ", m_size.Max());
    Detail::DumpCorners(os, *m_first, *m_second);
}

template<typename T>
std::ostream& RectArrayInfo<T>::operator<<(std::ostream& os) const
{
    return os << "size(" << m_size.Min() << Detail::k_separator << m_size.Max() << ") " << *m_first
              << Detail::k_partSeparator << *m_second;
}

template<typename T>
RectArrayItem<T>::RectArrayItem(unsigned int id) : Family(id)
{}

template<typename T>
RectArrayItem<T>* RectArrayItem<T>::DeepCopy(unsigned int id) const
{
    return this->CopyAs_(id);
}

template<typename T>
int RectArrayItem<T>::SetVal(std::vector<Rect> const& value, RectArrayInfo<T> const& info)
{
    return info.Sizes().Store(value, m_value);
}

template<typename T>
void RectArrayItem<T>::BoundVal(RectArrayInfo<T> const& info) noexcept
{
    for (Rect& rect : m_value) {
        rect.TopLeft()->BoundVal(*info.TopLeft());
        rect.BottomRight()->BoundVal(*info.TopLeft());
    }
}

template<typename T>
bool RectArrayItem<T>::WithinBounds(RectArrayInfo<T> const& info) const noexcept
{
    return std::all_of(m_value.begin(), m_value.end(), [&info](Rect const& rect) {
        return rect.TopLeft()->WithinBounds(*info.TopLeft()) && rect.BottomRight()->WithinBounds(*info.BottomRight());
    });
}

template<typename T>
bool RectArrayItem<T>::IsEmpty() const
{
    return m_value.empty();
}

template<typename T>
bool RectArrayItem<T>::IsEqualVal_(unsigned int index, Rect const& rect) const noexcept
{
    return Detail::Equal<T>(m_value[index].GetFlat(), rect.GetFlat());
}

template<typename T>
bool RectArrayItem<T>::IsEqualValue(boost::intrusive_ptr<ItemBase const> const& other) const
{
    auto const* const item = Detail::CastTo<RectArrayItem>(other);
    if (!item || !this->IsEqualType(other) || m_value.size() != item->m_value.size())
        return false;
    for (unsigned int i = 0; i < GetSize(); ++i)
        if (!IsEqualVal_(i, item->m_value[i]))
            return false;
    return true;
}

template<typename T>
bool RectArrayItem<T>::ResizeArray_(std::uint64_t n)
{
    if (n == m_value.size())
        return false;
    Detail::CheckLength(n, k_maxRects);
    if (n < m_value.size()) {
        m_value.erase(m_value.begin() + static_cast<std::ptrdiff_t>(n), m_value.end());
    } else {
        Detail::ReserveMore(m_value, static_cast<std::size_t>(n) - m_value.size());
        while (m_value.size() < n)
            m_value.emplace_back(0);
    }
    return true;
}

template<typename T>
bool RectArrayItem<T>::AssignRectValue_(unsigned int index, Element left, Element top, Element right,
                                        Element bottom) noexcept
{
    typename Rect::Flat const numbers{left, top, right, bottom};
    bool const changed = m_value[index].GetFlat() != numbers;
    m_value[index].SetFlat(numbers);
    return changed;
}

template<typename T>
template<typename Source>
int RectArrayItem<T>::AssignNumbers_(std::vector<Source> const& numbers, bool* changed)
{
    if (numbers.size() % k_coordSize != 0)
        return IfErrInvalidArgument;
    Detail::Change change;
    change.Note(ResizeArray_(numbers.size() / k_coordSize));
    auto number = numbers.begin();
    auto const next = [&number] { return Detail::ConvertTo<Element>(*number++); };
    for (unsigned int i = 0; i < GetSize(); ++i) {
        typename Rect::Flat const flat{next(), next(), next(), next()};
        change.Note(AssignRectValue_(i, flat[0], flat[1], flat[2], flat[3]));
    }
    return change.Report(changed);
}

template<typename T>
int RectArrayItem<T>::AssignRect_(ItemBase const& source, unsigned int index, bool* changed)
{
    return Detail::VisitShape<RectItem>(source, [this, index, changed](auto const& rect) {
        // Held, since growing moves a source that is one of the list's own.
        auto const topLeft = rect.TopLeft();
        auto const bottomRight = rect.BottomRight();
        Detail::Change change;
        if (index >= m_value.size())
            change.Note(ResizeArray_(std::uint64_t{index} + 1));
        if (int const code = Detail::AssignCorners(change, m_value[index], topLeft, bottomRight))
            return code;
        return change.Report(changed);
    });
}

template<typename T>
int RectArrayItem<T>::AssignRects_(RectArrayItem const& source, bool* changed)
{
    Detail::Change change;
    change.Note(ResizeArray_(source.m_value.size()));
    for (std::size_t i = 0; i < m_value.size(); ++i)
        if (int const code =
                Detail::AssignCorners(change, m_value[i], source.m_value[i].TopLeft(), source.m_value[i].BottomRight()))
            return code;
    return change.Report(changed);
}

template<typename T>
int RectArrayItem<T>::AssignArrayValue(boost::intrusive_ptr<ItemBase const> const& source, unsigned int index,
                                       bool* changed)
{
    if (!source)
        return IfErrNullSource;
    if (source->GetType() == IfType_t::NumericArray)
        return Detail::VisitFamily<NumericArrayItem>(
            *source, [this, changed](auto const& list) { return this->AssignNumbers_(list.Val(), changed); });
    if (source->GetType() == IfType_t::Rectangle)
        return AssignRect_(*source, index, changed);
    if (auto const* const list = Detail::SourceAs<RectArrayItem>(*source))
        return AssignRects_(*list, changed);
    return IfErrTypeNotAssignable;
}

template<typename T>
unsigned int RectArrayItem<T>::GetSerialDataSize() const
{
    return Detail::ClampSize(std::uint64_t{m_value.size()} * k_elementSize);
}

template<typename T>
int RectArrayItem<T>::Serialize(ItemBase::SerialStruct_t* record) const
{
    return Detail::WriteRecord(*this, record, std::uint64_t{m_value.size()} * k_elementSize,
                               [this](Detail::PayloadWriter payload) {
                                   for (Rect const& rect : m_value)
                                       payload.PutAll(std::span<Element const>(rect.GetFlat()));
                               });
}

template<typename T>
int RectArrayItem<T>::Deserialize(ItemBase::ConstSerialStruct_t const* record)
{
    Detail::PayloadReader payload;
    if (int const code = Detail::OpenRecord(*this, record, payload))
        return code;
    if (payload.Left() % k_elementSize != 0)
        return IfErrInvalidArgument;
    std::vector<Rect> rects;
    rects.reserve(payload.Left() / k_elementSize);
    while (payload.Left() != 0) {
        typename Rect::Flat numbers;
        payload.GetAll(std::span<Element>(numbers));
        rects.emplace_back(0).SetFlat(numbers);
    }
    m_value = std::move(rects);
    return 0;
}

template<typename T>
std::shared_ptr<ResultElem const> RectArrayItem<T>::Validate(boost::intrusive_ptr<InfoBase const> const& info)
{
    return Detail::IllegalValidation(info, *this);
}

template<typename T>
bool RectArrayItem<T>::SetValFromStream(std::istream& in, std::ostream& out,
                                        boost::intrusive_ptr<InfoBase const> const& info)
{
    unsigned int count = 0;
    if (!in.eof())
        in >> count;
    if (in.eof())
        return Detail::ParseError(out, "arraySize");
    std::vector<Rect> rects;
    Detail::ReserveClaimed(rects, count, k_maxRects);
    for (unsigned int i = 0; i < count; ++i)
        if (!rects.emplace_back(0).SetValFromStream(in, out, info))
            return false;
    m_value = std::move(rects);
    return true;
}

template<typename T>
std::ostream& RectArrayItem<T>::operator<<(std::ostream& os) const
{
    os << '(';
    Detail::PrintList(os, m_value, [](std::ostream& to, Rect const& rect) { rect.operator<<(to); });
    return os << ')';
}

template class RectArrayInfo<U16Traits>;
template class RectArrayItem<U16Traits>;

} // namespace Legacy::If
