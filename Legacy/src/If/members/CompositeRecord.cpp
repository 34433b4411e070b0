#include "members/MemberWalk.h"
#include "record/SerialRecord.h"

#include <Legacy/If/Bool.h>
#include <Legacy/If/Enum.h>
#include <Legacy/If/Numeric.h>
#include <Legacy/If/String.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
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

        explicit Step(Detail::MemberList<ItemBase> const& list) noexcept : left(list) {}
    };
    Detail::Path<Step> path(members);
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
            path.Descend(Detail::MemberAccess::Of(static_cast<CompositeItem const&>(member)));
        else
            here.size += member.GetSerialDataSize();
    }
}

/// A payload in the making, which grows as it is written. A small one stands on the stack until it is done.
class Payload
{
public:
    std::size_t Size() const noexcept { return static_cast<std::size_t>(m_next - m_bytes); }
    /// How much can be written before it has to grow.
    std::size_t Room() const noexcept { return static_cast<std::size_t>(m_end - m_next); }
    /// Where the next byte goes.
    unsigned char* Next() const noexcept { return m_next; }
    /// Counts in what was written up to there.
    void Advance(unsigned char* next) noexcept { m_next = next; }

    /// Makes room for so many bytes more.
    void EnsureRoom(std::size_t size)
    {
        if (size > Room())
            Grow_(size);
    }

    /// So many bytes more, to be written by the caller.
    unsigned char* Extend(std::size_t size)
    {
        EnsureRoom(size);
        unsigned char* const place = m_next;
        m_next += size;
        return place;
    }

    void Put(void const* bytes, std::size_t size)
    {
        if (size != 0)
            std::memcpy(Extend(size), bytes, size);
    }

    /// Fills up with zeros.
    void PadTo(std::size_t size)
    {
        if (size > Size()) {
            std::size_t const gap = size - Size();
            std::memset(Extend(gap), 0, gap);
        }
    }

    /// Sets the size word of a header that ends at `end` to all that was written since.
    void CloseHeader(std::size_t end) noexcept
    {
        auto const word = boost::endian::native_to_big(static_cast<std::uint32_t>(Size() - end));
        std::memcpy(m_bytes + end - k_headerSize + offsetof(ItemBase::SerialStruct_t, size), &word, sizeof(word));
    }

    /// The payload in storage of its own size.
    std::unique_ptr<unsigned char[]> Take() const
    {
        std::unique_ptr<unsigned char[]> bytes(new unsigned char[Size()]);
        std::memcpy(bytes.get(), m_bytes, Size());
        return bytes;
    }

    /// Makes room for a payload of so many bytes in all.
    void Reserve(std::size_t room)
    {
        std::size_t const size = Size();
        if (room <= size + Room())
            return;
        std::unique_ptr<unsigned char[]> grown(new unsigned char[room]);
        std::memcpy(grown.get(), m_bytes, size);
        m_grown = std::move(grown);
        m_bytes = m_grown.get();
        m_next = m_bytes + size;
        m_end = m_bytes + room;
    }

private:
    void Grow_(std::size_t size)
    {
        if (size > std::numeric_limits<std::size_t>::max() / 2 - Size())
            throw std::bad_alloc();
        Reserve((Size() + size) * 2);
    }

    unsigned char m_small[4096];
    std::unique_ptr<unsigned char[]> m_grown;
    unsigned char* m_bytes = m_small;
    unsigned char* m_next = m_small;
    unsigned char* m_end = m_small + sizeof(m_small);
};

/// The header of a record whose payload is written next.
void PutHeader(Detail::PayloadWriter& to, std::uint32_t id, std::uint32_t size, IfType_t type,
               NumericType_t numericType) noexcept
{
    to.Put(id);
    to.Put(size);
    to.Put(static_cast<unsigned char>(type));
    to.Put(static_cast<unsigned char>(numericType));
}

/// Any member: header and payload as it writes them itself, whatever code it returns. Gives the payload size that it
/// predicts, with a header.
std::uint64_t PutMember(Payload& payload, ItemBase const& member)
{
    ItemBase::SerialStruct_t record;
    member.Serialize(&record);
    std::size_t const size = boost::endian::big_to_native(std::uint32_t{record.size});
    if (size != 0 && !record.data)
        record.Clear();
    // Field by field: read as a whole, a header that was just filled makes processors wait for its parts.
    Detail::PayloadWriter writer(payload.Extend(k_headerSize));
    PutHeader(writer, boost::endian::big_to_native(std::uint32_t{record.id}),
              boost::endian::big_to_native(std::uint32_t{record.size}), static_cast<IfType_t>(record.type),
              static_cast<NumericType_t>(record.numericType));
    if (record.data)
        payload.Put(record.data, size);
    return k_headerSize + std::uint64_t{member.GetSerialDataSize()};
}

/// Where writing stands: in the payload, and among the members.
struct Place
{
    unsigned char* to;
    boost::intrusive_ptr<ItemBase> const* from;
};

/// Writes the records of one or more members of one class straight into the payload, where there is room for
/// #k_mostAtOnce bytes, and moves past them: the same bytes as the members write themselves, without an allocation for
/// each. A writer that stays where it is leaves a member to #PutMember.
using Writer = Place (*)(Place place, boost::intrusive_ptr<ItemBase> const* end);

constexpr std::size_t k_longestRun = 32;
constexpr std::size_t k_mostAtOnce = k_longestRun * (k_headerSize + sizeof(std::uint64_t));

/// Single values, stored as a `Stored`: a run of them, since most neighbours are of one class.
template<typename Item, typename Stored>
Place PutRun(Place place, boost::intrusive_ptr<ItemBase> const* end)
{
    constexpr std::size_t k_recordSize = k_headerSize + sizeof(Stored);
    static_assert(k_recordSize * k_longestRun <= k_mostAtOnce);
    if (static_cast<std::size_t>(end - place.from) > k_longestRun)
        end = place.from + k_longestRun;
    do {
        auto const& item = static_cast<Item const&>(**place.from);
        Detail::PayloadWriter writer(place.to);
        PutHeader(writer, item.GetId(), sizeof(Stored), Item::GetTypeStatic(), Item::GetNumericTypeStatic());
        writer.Put(static_cast<Stored>(item.GetVal()));
        place.to += k_recordSize;
        ++place.from;
    } while (place.from != end && Detail::IsExactly<Item>(**place.from));
    return place;
}

Place PutText(Place place, boost::intrusive_ptr<ItemBase> const*)
{
    auto const& item = static_cast<StringItem const&>(**place.from);
    std::string const& text = item.Val();
    std::size_t const size = text.size() + 1;
    if (size > k_mostAtOnce - k_headerSize)
        return place;
    Detail::PayloadWriter writer(place.to);
    PutHeader(writer, item.GetId(), static_cast<std::uint32_t>(size), IfType_t::String, NumericType_t::Undefined);
    writer.PutText(text);
    return {place.to + k_headerSize + size, place.from + 1};
}

/// The writers by the exact class of a member, which the address of its identity tells: neighbours of several classes
/// cost one look each, not a comparison with every class.
class Writers
{
public:
    Writers() noexcept
    {
        Enter_<NumericItem, U8Traits, S8Traits, U16Traits, S16Traits, U32Traits, S32Traits, U64Traits, S64Traits,
               FloatTraits, DoubleTraits>();
        Enter_(typeid(BoolItem), &PutRun<BoolItem, unsigned char>);
        Enter_(typeid(EnumItem), &PutRun<EnumItem, int>);
        Enter_(typeid(StringItem), &PutText);
    }

    /// Null for a class that has none.
    Writer For(ItemBase const& member) const noexcept
    {
        std::type_info const& type = typeid(member);
        std::size_t i = SlotOf_(type);
        while (m_slots[i].type != &type && m_slots[i].type)
            i = (i + 1) % k_slots;
        return m_slots[i].writer;
    }

private:
    struct Slot
    {
        std::type_info const* type = nullptr;
        Writer writer = nullptr;
    };

    static constexpr std::size_t k_slots = 64;

    static std::size_t SlotOf_(std::type_info const& type) noexcept
    {
        auto const address = reinterpret_cast<std::uintptr_t>(&type) / alignof(std::type_info);
        return static_cast<std::uint32_t>(address) * 0x9E3779B1U >> 26U;
    }

    template<template<typename> typename Item, typename... Traits>
    void Enter_() noexcept
    {
        (Enter_(typeid(Item<Traits>), &PutRun<Item<Traits>, typename Traits::T>), ...);
    }

    void Enter_(std::type_info const& type, Writer writer) noexcept
    {
        std::size_t i = SlotOf_(type);
        while (m_slots[i].type)
            i = (i + 1) % k_slots;
        m_slots[i] = {&type, writer};
    }

    std::array<Slot, k_slots> m_slots;
};

/// Writes as many members as have writers and as there is room for, and gives the number of bytes.
std::size_t PutStraight(Payload& payload, Detail::Remaining<ItemBase>& left, Writers const& writers)
{
    auto const members = left.View();
    auto const* const end = members.data() + members.size();
    Place place{payload.Next(), members.data()};
    auto const* const full = payload.Next() + payload.Room();
    while (place.from != end && static_cast<std::size_t>(full - place.to) >= k_mostAtOnce) {
        Writer const writer = writers.For(**place.from);
        Place const next = writer ? writer(place, end) : place;
        if (next.from == place.from)
            break;
        place = next;
    }
    auto const size = static_cast<std::size_t>(place.to - payload.Next());
    payload.Advance(place.to);
    left.Skip(static_cast<std::size_t>(place.from - members.data()));
    return size;
}

/// Writes the payload of a composite with those of the composites within. False for more than a record can hold, which
/// a few objects that stand in many lists can reach: so a large payload is measured before the bulk of it is written.
bool PutMembers(Payload& payload, Detail::MemberList<ItemBase> const& members)
{
    struct Step
    {
        Detail::Remaining<ItemBase> left;
        std::size_t begin;
        std::uint64_t predicted = k_countSize; // the payload size, as far as the members were seen

        Step(Detail::MemberList<ItemBase> const& list, std::size_t at) noexcept : left(list), begin(at) {}
    };
    // Contract: the count wraps at 16 bits while all members are written; a reader takes those that the count tells.
    auto const countOf = [](Detail::MemberList<ItemBase> const& list) {
        return static_cast<std::uint16_t>(Detail::MemberAccess::View(list).size());
    };
    static Writers const writers;
    std::uint64_t limit = k_large;
    Detail::PayloadWriter(payload.Extend(k_countSize)).Put(countOf(members));
    Detail::Path<Step> path(members, std::size_t{0});
    for (;;) {
        Step& here = path.Here();
        if (std::max<std::uint64_t>(payload.Size(), here.begin + here.predicted) >= limit) {
            std::uint64_t const size = Measure(members);
            if (limit == k_tooLarge || size >= k_tooLarge)
                return false;
            payload.Reserve(static_cast<std::size_t>(size + k_mostAtOnce));
            limit = k_tooLarge;
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
            auto const& nested = Detail::MemberAccess::Of(static_cast<CompositeItem const&>(member));
            Detail::PayloadWriter writer(payload.Extend(k_headerSize + k_countSize));
            PutHeader(writer, member.GetId(), 0, IfType_t::Composite, NumericType_t::Undefined);
            writer.Put(countOf(nested));
            path.Descend(nested, payload.Size() - k_countSize);
            continue;
        }
        payload.EnsureRoom(k_mostAtOnce);
        if (std::size_t const size = PutStraight(payload, here.left, writers)) {
            here.predicted += size;
        } else {
            here.left.Skip(1);
            here.predicted += PutMember(payload, member);
        }
    }
}

/// The record of a member, in place among the bytes that its composite is rebuilt from.
struct MemberRecord
{
    std::uint32_t id;
    std::uint32_t size;
    unsigned int tags;
    unsigned char const* payload;

    unsigned char const* Header() const noexcept { return payload - k_headerSize; }
};

/// Both tags as they stand in a record, in one number.
constexpr unsigned int Tags(IfType_t type, NumericType_t numericType) noexcept
{
    return static_cast<unsigned int>(type) << 8U | static_cast<unsigned int>(numericType);
}

template<typename Item>
constexpr unsigned int k_tags = Tags(Item::GetTypeStatic(), Item::GetNumericTypeStatic());

/// A composite in the making: the bytes that it is rebuilt from, and where in them the next member starts.
struct Rebuilding
{
    boost::intrusive_ptr<CompositeItem> item; // null for the outermost, which belongs to the caller
    Detail::MemberList<ItemBase>* members;
    unsigned char const* payload;
    std::uint64_t size;
    std::uint64_t next = k_countSize;
    unsigned int left; // members still to come

    Rebuilding(boost::intrusive_ptr<CompositeItem> made, Detail::MemberList<ItemBase>& list, unsigned char const* bytes,
               std::size_t byteCount)
        : item(std::move(made)), members(&list), payload(bytes), size(byteCount),
          left(Detail::PayloadReader(bytes, byteCount).Get<std::uint16_t>())
    {}

    /// Takes the member that was rebuilt from the record at #next, with its payload size.
    void Close(boost::intrusive_ptr<ItemBase> member, std::uint64_t memberSize)
    {
        Detail::MemberAccess::Append(*members, std::move(member));
        next += k_headerSize + memberSize;
        --left;
    }
};

using Rebuilt = boost::intrusive_ptr<ItemBase>;

/// A single value straight out of its record, which is what most members are; null for a record that does not fit.
template<typename Item, typename Stored>
Rebuilt RebuildSingle(MemberRecord record)
{
    if (record.size != sizeof(Stored))
        return nullptr;
    auto* const item = new Item(record.id);
    auto member = Detail::FirstReference::OfNew<ItemBase>(item);
    auto const stored = Detail::PayloadReader(record.payload, sizeof(Stored)).template Get<Stored>();
    if constexpr (std::is_same_v<Item, BoolItem>)
        item->Val() = stored != 0;
    else
        item->Val() = stored;
    return member;
}

template<typename Traits>
Rebuilt RebuildNumber(MemberRecord record)
{
    return RebuildSingle<NumericItem<Traits>, typename Traits::T>(record);
}

Rebuilt RebuildText(MemberRecord record)
{
    Detail::PayloadReader payload(record.payload, record.size);
    if (!payload.EndsInZero())
        return nullptr;
    auto* const item = new StringItem(record.id);
    auto member = Detail::FirstReference::OfNew<ItemBase>(item);
    item->Val() = payload.GetText();
    return member;
}

/// Any other member, and what fits none, through the table of classes.
Rebuilt RebuildAny(MemberRecord record)
{
    ItemBase::ConstSerialStruct_t header;
    std::memcpy(static_cast<void*>(&header), record.Header(), k_headerSize);
    header.data = record.payload;
    Rebuilt member;
    return ItemBase::Deserialize(&header, member) < 0 ? nullptr : member;
}

enum class Stop
{
    AtEnd,
    AtComposite, // whose record is read
    AtFault,
};

/// Rebuilds members as far as they have none of their own. All in one loop, whose variables nothing else sees: so they
/// stay in registers, and neighbours of several classes, which is what values of devices are, cost no more than such of
/// one class.
Stop RebuildLeaves(Rebuilding& composite, MemberRecord& opened)
{
    constexpr unsigned int k_composite = Tags(IfType_t::Composite, NumericType_t::Undefined);
    auto& members = *composite.members;
    unsigned char const* const payload = composite.payload;
    std::uint64_t const size = composite.size;
    std::uint64_t next = composite.next;
    for (unsigned int left = composite.left; left != 0; --left) {
        if (next > size || size - next < k_headerSize)
            return Stop::AtFault;
        Detail::PayloadReader reader(payload + next, k_headerSize);
        MemberRecord record; // NOLINT(cppcoreguidelines-pro-type-member-init): in the order of its bytes
        record.id = reader.Get<std::uint32_t>();
        record.size = reader.Get<std::uint32_t>();
        record.tags = reader.Get<std::uint16_t>();
        record.payload = payload + next + k_headerSize;
        if (record.size > size - next - k_headerSize)
            return Stop::AtFault;
        Rebuilt member;
        std::uint64_t memberSize = record.size;
        switch (record.tags) {
        case k_tags<NumericItem<U8Traits>>:
            member = RebuildNumber<U8Traits>(record);
            break;
        case k_tags<NumericItem<S8Traits>>:
            member = RebuildNumber<S8Traits>(record);
            break;
        case k_tags<NumericItem<U16Traits>>:
            member = RebuildNumber<U16Traits>(record);
            break;
        case k_tags<NumericItem<S16Traits>>:
            member = RebuildNumber<S16Traits>(record);
            break;
        case k_tags<NumericItem<U32Traits>>:
            member = RebuildNumber<U32Traits>(record);
            break;
        case k_tags<NumericItem<S32Traits>>:
            member = RebuildNumber<S32Traits>(record);
            break;
        case k_tags<NumericItem<U64Traits>>:
            member = RebuildNumber<U64Traits>(record);
            break;
        case k_tags<NumericItem<S64Traits>>:
            member = RebuildNumber<S64Traits>(record);
            break;
        case k_tags<NumericItem<FloatTraits>>:
            member = RebuildNumber<FloatTraits>(record);
            break;
        case k_tags<NumericItem<DoubleTraits>>:
            member = RebuildNumber<DoubleTraits>(record);
            break;
        case k_tags<BoolItem>:
            member = RebuildSingle<BoolItem, unsigned char>(record);
            break;
        case k_tags<EnumItem>:
            member = RebuildSingle<EnumItem, int>(record);
            break;
        case k_tags<StringItem>:
            member = RebuildText(record);
            if (member) // the next record stands where the text ends, be there more bytes or not
                memberSize = static_cast<StringItem const&>(*member).Val().size() + 1;
            break;
        case k_composite:
            composite.next = next;
            composite.left = left;
            opened = record;
            return Stop::AtComposite;
        default:
            member = RebuildAny(record);
            if (member)
                memberSize = member->GetSerialDataSize();
        }
        if (!member)
            return Stop::AtFault;
        Detail::MemberAccess::Append(members, std::move(member));
        next += k_headerSize + memberSize;
    }
    composite.next = next;
    composite.left = 0;
    return Stop::AtEnd;
}

/// Rebuilds members into a list, at all depths, up to the first that fails. A composite joins the list above it only
/// once it stands as a whole.
int RebuildMembers(Detail::MemberList<ItemBase>& members, Detail::PayloadReader const& payload)
{
    // Room is made for the count that a payload claims as far as its bytes could hold that many headers, and in all no
    // more than the whole record could: else each level could claim the same bytes again.
    std::size_t room = payload.Left() / k_headerSize;
    auto const makeRoom = [&room](Rebuilding const& composite) {
        std::size_t const count = std::min<std::size_t>(composite.left, room);
        room -= count;
        if (Detail::MemberAccess::View(*composite.members).empty())
            Detail::MemberAccess::Reserve(*composite.members, count);
    };
    Detail::Path<Rebuilding> path(nullptr, members, payload.Next(), payload.Left());
    makeRoom(path.Here());
    for (;;) {
        Rebuilding& here = path.Here();
        MemberRecord record;
        Stop const stop = RebuildLeaves(here, record);
        if (stop == Stop::AtEnd) {
            boost::intrusive_ptr<ItemBase> done = std::move(here.item);
            std::uint64_t const size = here.next; // which is what measuring the rebuilt composite would give
            if (!path.Ascend())
                return 0;
            path.Here().Close(std::move(done), size);
            continue;
        }
        if (stop == Stop::AtFault || record.size < k_countSize)
            return IfErrNotSerializable;
        auto item = Detail::FirstReference::OfNew(new CompositeItem(record.id));
        Detail::MemberList<ItemBase>& list = Detail::MemberAccess::Of(*item);
        path.Descend(std::move(item), list, record.payload, record.size);
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
