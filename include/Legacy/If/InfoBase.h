#pragma once

#include <Legacy/If/Detail/CachedObject.h>
#include <Legacy/If/Export.h>
#include <Legacy/If/IfType.h>
#include <Legacy/If/Permission.h>
#include <Legacy/If/ReturnCodes.h>
#include <Orlek/Atomic32.h>

#include <boost/smart_ptr/intrusive_ptr.hpp>

#include <cstddef>
#include <cstdint>
#include <iosfwd>
#include <new>
#include <string>

namespace Legacy::If {

class ItemBase;

namespace Detail {
struct FirstReference;
}

/// Root of all schemas: what a parameter is called, who may touch it, and, in the families, what values it may take.
///
/// Schemas are made with `new` and shared through `boost::intrusive_ptr`. A new object has the count 0: wrap it at
/// once. Any thread may take and drop references; const operations may run on many threads while none changes it.
class LEGACY_IF_API InfoBase
{
    using Storage_ = Detail::CachedObject;

public:
    InfoBase(unsigned int const& id, std::string const& name, Permission_t const& permission);

    /// Copies id, name and permission; the copy is an object of its own, with the count 0.
    InfoBase(InfoBase const& other);

    virtual ~InfoBase() = default;

    /// Assigns nothing: id, name, permission and count belong to the object, so `a = b` on two schemas of a family
    /// takes over the bounds and the default alone. The copy constructor differs on purpose.
    InfoBase& operator=(InfoBase const&) noexcept { return *this; }

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

    /// A new schema of the same class and content under the given identity. The caller owns it: count 0.
    [[nodiscard]] virtual InfoBase* DeepCopy(unsigned int id, std::string const& name,
                                             Permission_t const& permission) const = 0;
    /// The same under the own identity, as far as none is given.
    [[nodiscard]] InfoBase* DeepCopy() const { return DeepCopy(m_id, m_name, m_permission); }
    [[nodiscard]] InfoBase* DeepCopy(unsigned int id) const { return DeepCopy(id, m_name, m_permission); }
    [[nodiscard]] InfoBase* DeepCopy(unsigned int id, std::string const& name) const
    {
        return DeepCopy(id, name, m_permission);
    }

    /// A new value with this schema's id and default. The caller owns it: count 0.
    [[nodiscard]] virtual ItemBase* CreateItem() const = 0;

    /// The type tag of the family.
    virtual IfType_t GetType() const = 0;
    /// The element tag; `Undefined` outside the numeric families.
    virtual NumericType_t GetNumericType() const;

    /// Whether both tags agree; false for a null pointer.
    virtual bool IsEqualType(boost::intrusive_ptr<ItemBase const> const& item) const;
    virtual bool IsEqualType(boost::intrusive_ptr<InfoBase const> const& info) const;

    /// Whether the other schema bounds its values alike, in the family's own sense.
    virtual bool IsEqualBounds(boost::intrusive_ptr<InfoBase const> const& other) const = 0;

    /// Narrows this schema to what both allow, in the family's own sense.
    /// @return 0; #IfErrBoundsTypeMismatch, #IfErrBoundsDisjoint or #IfErrTypeNotAssignable as the family says.
    virtual int MergeBounds(boost::intrusive_ptr<InfoBase const> const& other) = 0;

    /// Takes over bounds and default of another schema.
    /// @param changed may be null; written only with the result 0: whether anything differed (but see composites).
    /// @return 0; #IfErrNullSource; #IfErrTypeNotAssignable for a source of a type that is not accepted;
    ///         #IfErrInvalidArgument, from a schema of rectangles, for one of numbers that cannot be cut into
    ///         rectangles.
    virtual int AssignValue(boost::intrusive_ptr<InfoBase const> const& source, bool* changed) = 0;

    /// Prints the schema field by field, one to a line, each line flushed.
    virtual void DumpVal(std::ostream& os) const = 0;
    /// Prints a compact form without a line end.
    virtual std::ostream& operator<<(std::ostream& os) const = 0;

    unsigned int const& GetId() const noexcept { return m_id; }
    std::string const& GetName() const noexcept { return m_name; }
    Permission_t const& GetPermission() const noexcept { return m_permission; }

    /// Number of references held now.
    std::int32_t GetRefCount() const noexcept { return m_refCount.Get(); }

    /// Identity is the id: name, type and bounds are not looked at.
    bool operator==(unsigned int id) const noexcept { return m_id == id; }
    bool operator==(InfoBase const& other) const noexcept { return m_id == other.m_id; }
    /// Byte for byte, case-sensitive.
    bool operator==(std::string const& name) const noexcept { return m_name == name; }

    bool operator<(unsigned int id) const noexcept { return m_id < id; }
    bool operator<(InfoBase const& other) const noexcept { return m_id < other.m_id; }
    bool operator<=(InfoBase const& other) const noexcept { return m_id <= other.m_id; }
    bool operator>(InfoBase const& other) const noexcept { return m_id > other.m_id; }
    bool operator>=(InfoBase const& other) const noexcept { return m_id >= other.m_id; }

private:
    friend struct Detail::FirstReference;
    friend void intrusive_ptr_add_ref(InfoBase const* info) noexcept;
    friend void intrusive_ptr_release(InfoBase const* info) noexcept;

    unsigned int m_id;
    std::string m_name;
    Permission_t m_permission;
    mutable Orlek::Atomic32 m_refCount;
};

/// Takes a reference; `info` is not null.
inline void intrusive_ptr_add_ref(InfoBase const* info) noexcept { info->m_refCount.Increment(); }

/// Drops a reference and destroys the object with the last one, also one that was never taken.
inline void intrusive_ptr_release(InfoBase const* info) noexcept
{
    if (info->m_refCount.Release())
        delete info;
}

/// Prints the compact form.
LEGACY_IF_API std::ostream& operator<<(std::ostream& os, InfoBase const& info);

} // namespace Legacy::If

// The two roots name each other in their interfaces: whoever has one has both.
#include <Legacy/If/ItemBase.h>
