#include "MemberWalk.h"
#include "SerialRecord.h"

#include <algorithm>
#include <cstddef>
#include <limits>
#include <new>

namespace Legacy::If {

namespace {

constexpr std::size_t k_headerSize = offsetof(ItemBase::SerialStruct_t, data);
constexpr std::size_t k_countSize = sizeof(std::uint16_t);
constexpr std::uint64_t k_tooLarge = std::numeric_limits<std::uint32_t>::max(); // what no size word may say

/// The predicted payload sizes of the composites at all depths, each before those inside it: measured once, since
/// asking each composite on the way down would measure the deepest once for each level.
using Sizes = std::vector<std::uint64_t>;

/// The payload size of a composite, or some number too large for a record. `inner` collects the sizes of the composites
/// within, if it is not null.
std::uint64_t Measure(MemberList<ItemBase> const& members, Sizes* inner)
{
    struct Step
    {
        Detail::Remaining<ItemBase> left;
        std::size_t place;  // in `inner`
        std::uint64_t size; // so far
    };
    Detail::Path<Step> path(Step{Detail::Remaining(members), 0, k_countSize});
    for (;;) {
        Step& here = path.Here();
        if (here.size >= k_tooLarge)
            return here.size;
        if (here.left.Empty()) {
            std::uint64_t const size = here.size;
            std::size_t const place = here.place;
            if (!path.Ascend())
                return size;
            path.Here().size += size;
            if (inner)
                (*inner)[place] = size;
            continue;
        }
        here.size += k_headerSize;
        ItemBase const& member = *here.left.Take();
        if (!Detail::IsExactly<CompositeItem>(member)) {
            here.size += member.GetSerialDataSize();
            continue;
        }
        auto const& nested = static_cast<CompositeItem const&>(member);
        path.Descend(Step{Detail::Remaining(Detail::MemberAccess::Of(nested)), inner ? inner->size() : 0, k_countSize});
        if (inner)
            inner->push_back(0);
    }
}

/// A payload in the making. It has room for what was predicted and grows for members that write more than they said.
class Payload
{
public:
    explicit Payload(std::size_t room) : m_bytes(new unsigned char[room]), m_room(room) {}

    std::size_t Size() const noexcept { return m_size; }
    unsigned char* Release() noexcept { return m_bytes.release(); }

    void Put(void const* bytes, std::size_t size)
    {
        unsigned char* const place = Extend_(size);
        if (size != 0)
            std::memcpy(place, bytes, size);
    }

    void PutHeader(ItemBase::SerialStruct_t const& header) { Put(&header, k_headerSize); }

    void PutCount(std::size_t count)
    {
        // Contract: the count wraps at 16 bits while all members are written; a reader takes those that the count
        // tells.
        auto const word = boost::endian::native_to_big(static_cast<std::uint16_t>(count));
        Put(&word, sizeof(word));
    }

    /// Fills up with zeros.
    void PadTo(std::size_t size)
    {
        if (size > m_size) {
            std::size_t const gap = size - m_size;
            std::memset(Extend_(gap), 0, gap);
        }
    }

    /// Sets the size word of a header that ends at `end` to all that was written since.
    void CloseHeader(std::size_t end) noexcept
    {
        auto const word = boost::endian::native_to_big(static_cast<std::uint32_t>(m_size - end));
        std::memcpy(m_bytes.get() + end - k_headerSize + offsetof(ItemBase::SerialStruct_t, size), &word, sizeof(word));
    }

private:
    unsigned char* Extend_(std::size_t size)
    {
        if (size > m_room - m_size)
            Grow_(size);
        unsigned char* const place = m_bytes.get() + m_size;
        m_size += size;
        return place;
    }

    void Grow_(std::size_t size)
    {
        if (size > std::numeric_limits<std::size_t>::max() / 2 - m_size)
            throw std::bad_alloc();
        std::size_t const room = (m_size + size) * 2;
        std::unique_ptr<unsigned char[]> bytes(new unsigned char[room]);
        std::memcpy(bytes.get(), m_bytes.get(), m_size);
        m_bytes = std::move(bytes);
        m_room = room;
    }

    std::unique_ptr<unsigned char[]> m_bytes;
    std::size_t m_room;
    std::size_t m_size = 0;
};

/// Header and payload as the member itself writes them, whatever code it returns.
void PutMember(Payload& payload, ItemBase const& member)
{
    ItemBase::SerialStruct_t record;
    member.Serialize(&record);
    std::size_t const size = boost::endian::big_to_native(std::uint32_t{record.size});
    if (size != 0 && !record.data)
        record.Clear();
    payload.PutHeader(record);
    if (record.data)
        payload.Put(record.data, size);
}

/// Writes the payload of a composite of the predicted size, with those of the composites within, whose predicted sizes
/// are `inner`.
void PutMembers(Payload& payload, MemberList<ItemBase> const& members, std::uint64_t size, Sizes const& inner)
{
    struct Step
    {
        Detail::Remaining<ItemBase> left;
        std::size_t begin;
        std::size_t predictedEnd;
    };
    auto const enter = [&payload](MemberList<ItemBase> const& list, std::uint64_t predicted) {
        std::size_t const begin = payload.Size();
        payload.PutCount(list.Size());
        return Step{Detail::Remaining(list), begin, begin + static_cast<std::size_t>(predicted)};
    };
    auto next = inner.begin();
    Detail::Path<Step> path(enter(members, size));
    do {
        while (!path.Here().left.Empty()) {
            ItemBase const& member = *path.Here().left.Take();
            if (!Detail::IsExactly<CompositeItem>(member)) {
                PutMember(payload, member);
                continue;
            }
            ItemBase::SerialStruct_t header;
            Detail::WriteHeader(member, 0, header);
            payload.PutHeader(header);
            path.Descend(enter(Detail::MemberAccess::Of(static_cast<CompositeItem const&>(member)), *next++));
        }
        Step const& done = path.Here();
        payload.PadTo(done.predictedEnd);
        if (done.begin != 0)
            payload.CloseHeader(done.begin);
    } while (path.Ascend());
}

/// A composite in the making: the bytes that it is rebuilt from, and where in them the next member starts.
struct Rebuilding
{
    boost::intrusive_ptr<CompositeItem> item; // null for the outermost, which belongs to the caller
    MemberList<ItemBase>* members;
    unsigned char const* payload;
    std::uint64_t size;
    std::uint64_t next = k_countSize;
    std::size_t left = 0; // members still to come

    Rebuilding(boost::intrusive_ptr<CompositeItem> made, MemberList<ItemBase>& list, unsigned char const* bytes,
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

    /// Takes a rebuilt member of the given payload size.
    void Close(boost::intrusive_ptr<ItemBase> member, std::uint64_t memberSize)
    {
        members->Add(std::move(member));
        next += memberSize;
    }
};

/// Rebuilds members into a list, at all depths, up to the first that fails. A composite joins the list above it only
/// once it stands as a whole.
int RebuildMembers(MemberList<ItemBase>& members, Detail::PayloadReader const& payload)
{
    // Room is made for the count that a payload claims as far as its bytes could hold that many headers, and in all no
    // more than the whole record could: else each level could claim the same bytes again.
    std::size_t room = payload.Left() / k_headerSize;
    auto const makeRoom = [&room](Rebuilding const& composite) {
        std::size_t const count = std::min(composite.left, room);
        room -= count;
        if (count != 0)
            composite.members->Reserve(composite.members->Size() + count);
    };
    Detail::Path<Rebuilding> path(Rebuilding(nullptr, members, payload.Next(), payload.Left()));
    makeRoom(path.Here());
    for (;;) {
        Rebuilding& here = path.Here();
        if (here.left == 0) {
            boost::intrusive_ptr<ItemBase> const done = std::move(here.item);
            std::uint64_t const size = here.next; // which is what measuring the rebuilt composite would give
            if (!path.Ascend())
                return 0;
            path.Here().Close(done, size);
            continue;
        }
        ItemBase::ConstSerialStruct_t record;
        if (!here.Open(record))
            return IfErrNotSerializable;
        if (record.type != static_cast<unsigned char>(IfType_t::Composite)) {
            boost::intrusive_ptr<ItemBase> member;
            if (ItemBase::Deserialize(&record, member) < 0 || !member)
                return IfErrNotSerializable;
            unsigned int const size = member->GetSerialDataSize();
            here.Close(std::move(member), size);
            continue;
        }
        boost::intrusive_ptr<CompositeItem> const item(
            new CompositeItem(boost::endian::big_to_native(std::uint32_t{record.id})));
        Detail::PayloadReader nested;
        if (Detail::OpenRecord(*item, &record, nested) != 0 || nested.Left() < k_countSize)
            return IfErrNotSerializable;
        path.Descend(Rebuilding(item, Detail::MemberAccess::Of(*item), nested.Next(), nested.Left()));
        makeRoom(path.Here());
    }
}

} // namespace

unsigned int CompositeItem::GetSerialDataSize() const { return Detail::ClampSize(Measure(m_members, nullptr)); }

int CompositeItem::Serialize(SerialStruct_t* record) const
{
    if (!record)
        return IfErrInvalidArgument;
    Sizes inner;
    std::uint64_t const size = Measure(m_members, &inner);
    if (size >= k_tooLarge)
        return IfErrInvalidArgument;
    Payload payload(static_cast<std::size_t>(size));
    PutMembers(payload, m_members, size, inner);
    if (payload.Size() >= k_tooLarge)
        return IfErrInvalidArgument;
    Detail::WriteHeader(*this, static_cast<std::uint32_t>(payload.Size()), *record);
    record->data = payload.Release();
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
