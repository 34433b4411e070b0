#include "convert/Visit.h"
#include "members/MemberWalk.h"
#include "record/SerialRecord.h"

#include <Legacy/If/Numeric.h>

#include <algorithm>
#include <cstddef>
#include <limits>
#include <new>

namespace Legacy::If {

namespace {

constexpr std::size_t k_headerSize = offsetof(ItemBase::SerialStruct_t, data);
constexpr std::size_t k_countSize = sizeof(std::uint16_t);
constexpr std::uint64_t k_large = 1 << 24; // what is worth to be measured before more of it is written
constexpr std::uint64_t k_tooLarge = std::numeric_limits<std::uint32_t>::max(); // what no size word may say

/// The payload size of a composite, or some number too large for a record.
std::uint64_t Measure(Detail::MemberList<ItemBase> const& members)
{
    struct Step
    {
        Detail::Remaining<ItemBase> left;
        std::uint64_t size = k_countSize; // so far
    };
    Detail::Path<Step> path(Step{Detail::Remaining(members)});
    for (;;) {
        Step& here = path.Here();
        if (here.size >= k_tooLarge)
            return here.size;
        if (here.left.Empty()) {
            std::uint64_t const size = here.size;
            if (!path.Ascend())
                return size;
            path.Here().size += size;
            continue;
        }
        here.size += k_headerSize;
        ItemBase const& member = *here.left.Take();
        if (Detail::IsExactly<CompositeItem>(member))
            path.Descend(Step{Detail::Remaining(Detail::MemberAccess::Of(static_cast<CompositeItem const&>(member)))});
        else
            here.size += member.GetSerialDataSize();
    }
}

/// A payload in the making, which grows as it is written. A small one stands on the stack until it is done.
class Payload
{
public:
    std::size_t Size() const noexcept { return m_size; }

    /// Room for so many bytes more, to be written by the caller.
    unsigned char* Extend(std::size_t size)
    {
        if (size > m_room - m_size)
            Grow_(size);
        unsigned char* const place = m_bytes + m_size;
        m_size += size;
        return place;
    }

    void Put(void const* bytes, std::size_t size)
    {
        if (size != 0)
            std::memcpy(Extend(size), bytes, size);
    }

    /// Field by field: read as a whole, a header that was just filled makes processors wait for its parts.
    void PutHeader(ItemBase::SerialStruct_t const& header)
    {
        std::uint32_t const words[] = {header.id, header.size};
        unsigned char* const place = Extend(k_headerSize);
        std::memcpy(place, &words[0], sizeof(words[0]));
        std::memcpy(place + sizeof(words[0]), &words[1], sizeof(words[1]));
        place[sizeof(words)] = header.type;
        place[sizeof(words) + 1] = header.numericType;
    }

    /// Contract: the count wraps at 16 bits while all members are written; a reader takes those that the count tells.
    void PutCount(std::size_t count)
    {
        auto const word = boost::endian::native_to_big(static_cast<std::uint16_t>(count));
        Put(&word, sizeof(word));
    }

    /// Fills up with zeros.
    void PadTo(std::size_t size)
    {
        if (size > m_size) {
            std::size_t const gap = size - m_size;
            std::memset(Extend(gap), 0, gap);
        }
    }

    /// Sets the size word of a header that ends at `end` to all that was written since.
    void CloseHeader(std::size_t end) noexcept
    {
        auto const word = boost::endian::native_to_big(static_cast<std::uint32_t>(m_size - end));
        std::memcpy(m_bytes + end - k_headerSize + offsetof(ItemBase::SerialStruct_t, size), &word, sizeof(word));
    }

    /// The payload in storage of its own size.
    std::unique_ptr<unsigned char[]> Take() const
    {
        std::unique_ptr<unsigned char[]> bytes(new unsigned char[m_size]);
        std::memcpy(bytes.get(), m_bytes, m_size);
        return bytes;
    }

    /// Makes room for a payload of so many bytes in all.
    void Reserve(std::size_t room)
    {
        if (room <= m_room)
            return;
        std::unique_ptr<unsigned char[]> grown(new unsigned char[room]);
        std::memcpy(grown.get(), m_bytes, m_size);
        m_grown = std::move(grown);
        m_bytes = m_grown.get();
        m_room = room;
    }

private:
    void Grow_(std::size_t size)
    {
        if (size > std::numeric_limits<std::size_t>::max() / 2 - m_size)
            throw std::bad_alloc();
        Reserve((m_size + size) * 2);
    }

    unsigned char m_small[2048];
    std::unique_ptr<unsigned char[]> m_grown;
    unsigned char* m_bytes = m_small;
    std::size_t m_room = sizeof(m_small);
    std::size_t m_size = 0;
};

/// Writes the records of one or more members from the front of `left`, takes them from there, and returns the sum of
/// the payload sizes that they predict, with a header for each.
using Writer = std::uint64_t (*)(Payload& payload, Detail::Remaining<ItemBase>& left);

/// Any member: header and payload as it writes them itself, whatever code it returns.
std::uint64_t PutMember(Payload& payload, Detail::Remaining<ItemBase>& left)
{
    ItemBase const& member = *left.Take();
    ItemBase::SerialStruct_t record;
    member.Serialize(&record);
    std::size_t const size = boost::endian::big_to_native(std::uint32_t{record.size});
    if (size != 0 && !record.data)
        record.Clear();
    payload.PutHeader(record);
    if (record.data)
        payload.Put(record.data, size);
    return k_headerSize + std::uint64_t{member.GetSerialDataSize()};
}

/// Numbers of one class, which is what most members are: the same bytes for a run of them, without an allocation or a
/// look at the room in between.
template<typename Traits>
std::uint64_t PutNumbers(Payload& payload, Detail::Remaining<ItemBase>& left)
{
    using Number = NumericItem<Traits>;
    constexpr std::size_t k_recordSize = k_headerSize + sizeof(typename Traits::T);
    constexpr std::size_t k_longestRun = 64;
    auto run = left.View().first(std::min(left.View().size(), k_longestRun));
    run = run.first(static_cast<std::size_t>(
        std::ranges::find_if_not(run, [](auto const& member) { return Detail::IsExactly<Number>(*member); }) -
        run.begin()));
    Detail::PayloadWriter writer(payload.Extend(run.size() * k_recordSize));
    for (auto const& member : run) {
        writer.Put(static_cast<std::uint32_t>(member->GetId()));
        writer.Put(static_cast<std::uint32_t>(sizeof(typename Traits::T)));
        writer.Put(static_cast<unsigned char>(IfType_t::Numeric));
        writer.Put(static_cast<unsigned char>(Traits::k_numericType));
        writer.Put(static_cast<Number const&>(*member).GetVal());
    }
    left.Skip(run.size());
    return run.size() * k_recordSize;
}

/// Finds the writer for a member by its exact class. Neighbours are mostly of one class, so the last answer is kept.
class Writers
{
public:
    Writer For(ItemBase const& member) noexcept
    {
        std::type_info const* const type = &typeid(member);
        if (type != m_type) {
            m_type = type;
            m_writer = Find_<U8Traits, S8Traits, U16Traits, S16Traits, U32Traits, S32Traits, U64Traits, S64Traits,
                             FloatTraits, DoubleTraits>(member);
        }
        return m_writer;
    }

private:
    template<typename... Traits>
    static Writer Find_(ItemBase const& member) noexcept
    {
        Writer writer = &PutMember;
        ((Detail::IsExactly<NumericItem<Traits>>(member) ? void(writer = &PutNumbers<Traits>) : void()), ...);
        return writer;
    }

    std::type_info const* m_type = nullptr;
    Writer m_writer = nullptr;
};

/// Writes the payload of a composite with those of the composites within. False for more than a record can hold, which
/// a few objects that stand in many lists can reach: so a large payload is measured before the bulk of it is written.
bool PutMembers(Payload& payload, Detail::MemberList<ItemBase> const& members)
{
    struct Step
    {
        Detail::Remaining<ItemBase> left;
        std::size_t begin;
        std::uint64_t predicted = k_countSize; // the payload size, as far as the members were seen
    };
    auto const enter = [&payload](Detail::MemberList<ItemBase> const& list) {
        std::size_t const begin = payload.Size();
        payload.PutCount(list.Size());
        return Step{Detail::Remaining(list), begin};
    };
    Writers writers;
    std::uint64_t limit = k_large;
    Detail::Path<Step> path(enter(members));
    for (;;) {
        Step& here = path.Here();
        if (std::max<std::uint64_t>(payload.Size(), here.begin + here.predicted) >= limit) {
            std::uint64_t const size = Measure(members);
            if (limit == k_tooLarge || size >= k_tooLarge)
                return false;
            payload.Reserve(static_cast<std::size_t>(size));
            limit = k_tooLarge;
            continue;
        }
        if (here.left.Empty()) {
            std::uint64_t const predicted = here.predicted;
            payload.PadTo(here.begin + static_cast<std::size_t>(predicted));
            if (here.begin != 0)
                payload.CloseHeader(here.begin);
            if (!path.Ascend())
                return true;
            path.Here().predicted += predicted;
            continue;
        }
        ItemBase const& member = *here.left.View().front();
        if (Detail::IsExactly<CompositeItem>(member)) {
            here.left.Skip(1);
            here.predicted += k_headerSize;
            ItemBase::SerialStruct_t header;
            Detail::WriteHeader(member, 0, header);
            payload.PutHeader(header);
            path.Descend(enter(Detail::MemberAccess::Of(static_cast<CompositeItem const&>(member))));
        } else {
            here.predicted += writers.For(member)(payload, here.left);
        }
    }
}

/// A composite in the making: the bytes that it is rebuilt from, and where in them the next member starts.
struct Rebuilding
{
    boost::intrusive_ptr<CompositeItem> item; // null for the outermost, which belongs to the caller
    Detail::MemberList<ItemBase>* members;
    unsigned char const* payload;
    std::uint64_t size;
    std::uint64_t next = k_countSize;
    std::size_t left = 0; // members still to come

    Rebuilding(boost::intrusive_ptr<CompositeItem> made, Detail::MemberList<ItemBase>& list, unsigned char const* bytes,
               std::size_t byteCount)
        : item(std::move(made)), members(&list), payload(bytes), size(byteCount)
    {
        left = Detail::PayloadReader(payload, byteCount).Get<std::uint16_t>();
    }

    /// Opens the record of the next member; false if it is not there in full.
    bool Open(ItemBase::ConstSerialStruct_t& record)
    {
        if (next > size || size - next < k_headerSize)
            return false;
        std::memcpy(static_cast<void*>(&record), payload + next, k_headerSize);
        next += k_headerSize;
        record.data = payload + next;
        --left;
        return boost::endian::big_to_native(std::uint32_t{record.size}) <= size - next;
    }

    /// The same for a record that has the size and the tags of the one before; false, and nothing is opened, for all
    /// others, be they faulty or of another class.
    bool OpenLike(ItemBase::ConstSerialStruct_t& record)
    {
        constexpr std::size_t alike = offsetof(ItemBase::ConstSerialStruct_t, size);
        std::size_t const recordSize = k_headerSize + boost::endian::big_to_native(std::uint32_t{record.size});
        unsigned char const* const header = payload + next;
        if (left == 0 || size - next < recordSize ||
            std::memcmp(header + alike, reinterpret_cast<unsigned char const*>(&record) + alike,
                        k_headerSize - alike) != 0)
            return false;
        std::uint32_t id = 0;
        std::memcpy(&id, header, sizeof(id));
        record.id = id;
        record.data = header + k_headerSize;
        next += k_headerSize;
        --left;
        return true;
    }

    /// Takes a rebuilt member of the given payload size.
    void Close(boost::intrusive_ptr<ItemBase> member, std::uint64_t memberSize)
    {
        members->Add(std::move(member));
        next += memberSize;
    }
};

/// Numbers of one class, which is what most members are, out of their records and without a detour through the table of
/// classes: the one that was opened, and those behind it that are like it. False for a member of another class and for
/// a record that does not fit.
bool RebuildNumbers(Rebuilding& composite, ItemBase::ConstSerialStruct_t record)
{
    if (record.type != static_cast<unsigned char>(IfType_t::Numeric))
        return false;
    auto const rebuild = [&composite, &record]<typename Traits>(Traits) {
        using Element = typename Traits::T;
        if (boost::endian::big_to_native(std::uint32_t{record.size}) != sizeof(Element))
            return IfErrInvalidArgument;
        do {
            auto* const number = new NumericItem<Traits>(boost::endian::big_to_native(std::uint32_t{record.id}));
            auto member = Detail::FirstReference::Of<ItemBase>(number);
            number->SetVal(Detail::PayloadReader(record.data, sizeof(Element)).Get<Element>());
            composite.Close(std::move(member), sizeof(Element));
        } while (composite.OpenLike(record));
        return 0;
    };
    return Detail::VisitElement(static_cast<NumericType_t>(record.numericType), rebuild) == 0;
}

/// Rebuilds members into a list, at all depths, up to the first that fails. A composite joins the list above it only
/// once it stands as a whole.
int RebuildMembers(Detail::MemberList<ItemBase>& members, Detail::PayloadReader const& payload)
{
    // Room is made for the count that a payload claims as far as its bytes could hold that many headers, and in all no
    // more than the whole record could: else each level could claim the same bytes again.
    std::size_t room = payload.Left() / k_headerSize;
    auto const makeRoom = [&room](Rebuilding const& composite) {
        std::size_t const count = std::min(composite.left, room);
        room -= count;
        if (composite.members->Size() == 0)
            composite.members->Reserve(count);
    };
    Detail::Path<Rebuilding> path(Rebuilding(nullptr, members, payload.Next(), payload.Left()));
    makeRoom(path.Here());
    for (;;) {
        Rebuilding& here = path.Here();
        if (here.left == 0) {
            boost::intrusive_ptr<ItemBase> done = std::move(here.item);
            std::uint64_t const size = here.next; // which is what measuring the rebuilt composite would give
            if (!path.Ascend())
                return 0;
            path.Here().Close(std::move(done), size);
            continue;
        }
        ItemBase::ConstSerialStruct_t record;
        if (!here.Open(record))
            return IfErrNotSerializable;
        if (record.type != static_cast<unsigned char>(IfType_t::Composite)) {
            if (RebuildNumbers(here, record))
                continue;
            boost::intrusive_ptr<ItemBase> member;
            if (ItemBase::Deserialize(&record, member) < 0 || !member)
                return IfErrNotSerializable;
            unsigned int const size = member->GetSerialDataSize();
            here.Close(std::move(member), size);
            continue;
        }
        auto item =
            Detail::FirstReference::Of(new CompositeItem(boost::endian::big_to_native(std::uint32_t{record.id})));
        Detail::PayloadReader nested;
        if (Detail::OpenRecord(*item, &record, nested) != 0 || nested.Left() < k_countSize)
            return IfErrNotSerializable;
        Detail::MemberList<ItemBase>& list = Detail::MemberAccess::Of(*item);
        path.Descend(Rebuilding(std::move(item), list, nested.Next(), nested.Left()));
        makeRoom(path.Here());
    }
}

} // namespace

unsigned int CompositeItem::GetSerialDataSize() const { return Detail::ClampSize(Measure(m_members)); }

int CompositeItem::Serialize(SerialStruct_t* record) const
{
    if (!record)
        return IfErrInvalidArgument;
    Payload payload;
    if (!PutMembers(payload, m_members))
        return IfErrInvalidArgument;
    auto bytes = payload.Take();
    Detail::WriteHeader(*this, static_cast<std::uint32_t>(payload.Size()), *record);
    record->data = bytes.release();
    return 0;
}

int CompositeItem::Deserialize(ConstSerialStruct_t const* record)
{
    Detail::PayloadReader payload;
    if (int const code = Detail::OpenRecord(*this, record, payload))
        return code;
    if (payload.Left() < k_countSize)
        return IfErrInvalidArgument;
    return RebuildMembers(m_members, payload);
}

} // namespace Legacy::If
