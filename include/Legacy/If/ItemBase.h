#pragma once

#include <Legacy/If/Detail/CachedObject.h>
#include <Legacy/If/Export.h>
#include <Legacy/If/IfType.h>
#include <Legacy/If/ReturnCodes.h>
#include <Orlek/Atomic32.h>

#include <boost/smart_ptr/intrusive_ptr.hpp>

#include <cstddef>
#include <cstdint>
#include <iosfwd>
#include <memory>
#include <new>
#include <string>
#include <utility>

namespace Legacy::If {

class InfoBase;
class ResultElem;

namespace Detail {
struct FirstReference;
}

/// Root of all values: the value of one parameter, under the parameter's id.
///
/// Values are made with `new` and shared through `boost::intrusive_ptr`. A new object has the count 0: wrap it at once.
/// Any thread may take and drop references, and const operations may run on many threads while none changes the object.
class LEGACY_IF_API ItemBase
{
    using Storage_ = Detail::CachedObject;

public:
    /// A serial record that owns its payload.
    ///
    /// Ten header bytes as they travel (both words big-endian), then the address of the payload, which never travels.
    /// #Serialize allocates the payload and stores its address over whatever was there: use one record for one call.
    /// Exactly one record with a given payload may be destroyed; release a payload of your own with `delete[]`.
    struct [[gnu::packed]] SerialStruct_t
    {
        std::uint32_t id = 0;          ///< the value's id, big-endian
        std::uint32_t size = 0;        ///< number of payload bytes, big-endian
        unsigned char type = 0;        ///< an `IfType_t`
        unsigned char numericType = 0; ///< a `NumericType_t`
        unsigned char* data = nullptr; ///< the payload

        SerialStruct_t() noexcept = default;
        SerialStruct_t(SerialStruct_t const&) = delete;

        /// Takes the payload over and leaves the other record empty.
        SerialStruct_t(SerialStruct_t&& other) noexcept { *this = std::move(other); }

        ~SerialStruct_t() { delete[] data; }

        /// Copies every field as it stands, the address of the payload included, and releases nothing: both records
        /// then own the payload, and all but one must be cleared before they end.
        SerialStruct_t& operator=(SerialStruct_t const& other) noexcept = default;

        /// Takes the payload over and leaves the other record empty. Releases nothing either: a payload of its own is
        /// to be cleared or kept before.
        SerialStruct_t& operator=(SerialStruct_t&& other) noexcept
        {
            if (this != &other) {
                *this = other;
                other.Clear();
            }
            return *this;
        }

        /// Zeroes every field and releases nothing: the payload belongs to whoever kept its address.
        void Clear() noexcept
        {
            id = 0;
            size = 0;
            type = 0;
            numericType = 0;
            data = nullptr;
        }
    };

    /// A serial record that borrows its payload, which must outlive every call that reads it. The layout is that of
    /// `SerialStruct_t`; fill it field by field.
    struct [[gnu::packed]] ConstSerialStruct_t
    {
        std::uint32_t id = 0;                ///< the value's id, big-endian
        std::uint32_t size = 0;              ///< number of payload bytes, big-endian
        unsigned char type = 0;              ///< an `IfType_t`
        unsigned char numericType = 0;       ///< a `NumericType_t`
        unsigned char const* data = nullptr; ///< the payload

        /// Zeroes every field.
        void Clear() noexcept { *this = ConstSerialStruct_t(); }
    };

    explicit ItemBase(unsigned int id) noexcept : m_id(id) {}
    virtual ~ItemBase() = default;

    /// Assigns nothing: id and count belong to the object, so `a = b` on two values of a family takes over the value
    /// alone. The copy constructor differs on purpose.
    ItemBase& operator=(ItemBase const&) noexcept { return *this; }

    /// A root has no base: it says itself that its objects get their storage as every Detail::CachedObject does.
    /// @{
    static void* operator new(std::size_t size) { return Storage_::operator new(size); }
    static void* operator new(std::size_t size, std::nothrow_t const& tag) noexcept
    {
        return Storage_::operator new(size, tag);
    }
    static void* operator new(std::size_t size, std::align_val_t at) { return Storage_::operator new(size, at); }
    static void* operator new(std::size_t, void* place) noexcept { return place; }
    static void operator delete(void* object, std::size_t size) noexcept { Storage_::operator delete(object, size); }
    static void operator delete(void* object, std::nothrow_t const& tag) noexcept
    {
        Storage_::operator delete(object, tag);
    }
    static void operator delete(void* object, std::align_val_t at) noexcept { Storage_::operator delete(object, at); }
    static void operator delete(void*, void*) noexcept {}
    /// @}

    /// A new value of the same class and content under the given id. The caller owns it: count 0.
    [[nodiscard]] virtual ItemBase* DeepCopy(unsigned int id) const = 0;
    /// The same under the own id.
    [[nodiscard]] ItemBase* DeepCopy() const { return DeepCopy(m_id); }

    /// The type tag of the family.
    virtual IfType_t GetType() const = 0;
    /// The element tag; `Undefined` outside the numeric families.
    virtual NumericType_t GetNumericType() const;
    static IfType_t GetTypeStatic() noexcept { return IfType_t::Undefined; }
    static NumericType_t GetNumericTypeStatic() noexcept { return NumericType_t::Undefined; }

    /// Whether the value holds nothing; false in families that have no such notion.
    virtual bool IsEmpty() const;

    /// Whether both tags agree; false for a null pointer.
    virtual bool IsEqualType(boost::intrusive_ptr<ItemBase const> const& other) const;
    /// Whether both tags and the values agree; false for a null pointer.
    virtual bool IsEqualValue(boost::intrusive_ptr<ItemBase const> const& other) const = 0;

    /// Takes over the value of another item, converted where the family knows how. Nothing is validated.
    /// @param index a place in this value, in the source, or of no account: as the family says.
    /// @param changed may be null; written only with the result 0 (but see composites): whether the value differs now.
    /// @return 0; #IfErrNullSource; #IfErrTypeNotAssignable; #IfErrInvalidArgument for an index past the source's end
    /// and
    ///         for numbers that cannot be cut into rectangles.
    virtual int AssignArrayValue(boost::intrusive_ptr<ItemBase const> const& source, unsigned int index,
                                 bool* changed) = 0;
    /// The same with the index 0.
    int AssignValue(boost::intrusive_ptr<ItemBase const> const& source, bool* changed)
    {
        return AssignArrayValue(source, 0, changed);
    }

    /// Number of payload bytes that a record of this value has.
    virtual unsigned int GetSerialDataSize() const = 0;
    /// Writes header and payload; the payload is allocated here and belongs to the record.
    /// @return 0; #IfErrInvalidArgument for a null record and for a value too large for the record's 32-bit size. A
    ///         family without a record writes nothing and gives its own code for any argument, null included:
    ///         #IfErrNotSerializable for extended values, #IfErrTypeNotAssignable for localized texts and collections.
    virtual int Serialize(SerialStruct_t* record) const = 0;
    /// Takes the value from a record that names this very item: its id, type and element type. Lists of texts, booleans
    /// and members append to what they hold.
    /// @return 0; #IfErrNullArgument for a null record; #IfErrInvalidArgument for one that does not fit;
    ///         #IfErrNotSerializable for a composite's member that cannot be rebuilt; the codes of #Serialize from the
    ///         families without a record. The value is unchanged then (but see composites and lists of endpoints).
    virtual int Deserialize(ConstSerialStruct_t const* record) = 0;

    /// Tests the value against its schema and stops at the first failure.
    /// @return empty for a pass; otherwise one finding with a copy of this value.
    virtual std::shared_ptr<ResultElem const> Validate(boost::intrusive_ptr<InfoBase const> const& info) = 0;
    /// The lower and the upper half of #Validate. Families without a minimum and maximum always fail.
    virtual std::shared_ptr<ResultElem const> ValidateMin(boost::intrusive_ptr<InfoBase const> const& info);
    virtual std::shared_ptr<ResultElem const> ValidateMax(boost::intrusive_ptr<InfoBase const> const& info);

    /// Reads the value from text and reports a failure on `out`.
    /// @return true if the value was read. Texts, addresses and endpoints return true also at the end of the input,
    /// where
    ///         they keep their value, and where no word could be read, which counts as an empty one. On false the value
    ///         is unchanged, but points and rectangles keep the numbers read before, and a composite was emptied and
    ///         keeps the members read before.
    virtual bool SetValFromStream(std::istream& in, std::ostream& out,
                                  boost::intrusive_ptr<InfoBase const> const& info) = 0;
    /// Prints the value field by field, one to a line, each line flushed.
    virtual void DumpVal(std::ostream& os) const = 0;
    /// Prints the value alone, without a line end.
    virtual std::ostream& operator<<(std::ostream& os) const = 0;

    unsigned int const& GetId() const noexcept { return m_id; }
    /// A value has no name of its own: always the same empty text.
    std::string const& GetName() const noexcept;
    /// What the virtual `operator<<` prints on a default-formatted stream.
    std::string GetValAsString() const;

    /// Number of references held now.
    std::int32_t GetRefCount() const noexcept { return m_refCount.Get(); }

    /// Identity is the id: the value is not looked at.
    bool operator==(unsigned int id) const noexcept { return m_id == id; }
    bool operator==(ItemBase const& other) const noexcept { return m_id == other.m_id; }
    /// Always false: a value has no name.
    bool operator==(std::string const&) const noexcept { return false; }

    bool operator<(unsigned int id) const noexcept { return m_id < id; }
    bool operator<(ItemBase const& other) const noexcept { return m_id < other.m_id; }
    bool operator<=(ItemBase const& other) const noexcept { return m_id <= other.m_id; }
    bool operator>(ItemBase const& other) const noexcept { return m_id > other.m_id; }
    bool operator>=(ItemBase const& other) const noexcept { return m_id >= other.m_id; }

    /// Builds a new value of the class that the record's two tags name, under the record's id.
    ///
    /// With a result of 0 `item` holds the value. When the payload does not fit, the code of the virtual #Deserialize
    /// is returned and `item` holds the new, empty value: test the code, not the pointer.
    /// @return 0; #IfErrNullArgument for a null record, #IfErrInvalidArgument for tags that name no class, both with
    ///         `item` untouched; otherwise the code of the class.
    static int Deserialize(ConstSerialStruct_t const* record, boost::intrusive_ptr<ItemBase>& item);

protected:
    /// Copies the id; the copy is an object of its own, with the count 0.
    ItemBase(ItemBase const& other) noexcept : m_id(other.m_id) {}

private:
    friend struct Detail::FirstReference;
    friend void intrusive_ptr_add_ref(ItemBase const* item) noexcept;
    friend void intrusive_ptr_release(ItemBase const* item) noexcept;

    unsigned int m_id;
    mutable Orlek::Atomic32 m_refCount;
};

static_assert(sizeof(ItemBase::SerialStruct_t) == 10 + sizeof(void*) && offsetof(ItemBase::SerialStruct_t, data) == 10);
static_assert(sizeof(ItemBase::ConstSerialStruct_t) == 10 + sizeof(void*) &&
              offsetof(ItemBase::ConstSerialStruct_t, data) == 10);

/// Takes a reference; `item` is not null.
inline void intrusive_ptr_add_ref(ItemBase const* item) noexcept { item->m_refCount.Increment(); }

/// Drops a reference and destroys the object with the last one, also one that was never taken.
inline void intrusive_ptr_release(ItemBase const* item) noexcept
{
    if (item->m_refCount.Release())
        delete item;
}

/// Prints the value.
LEGACY_IF_API std::ostream& operator<<(std::ostream& os, ItemBase const& item);

} // namespace Legacy::If

// The two roots name each other in their interfaces: whoever has one has both.
#include <Legacy/If/InfoBase.h>
