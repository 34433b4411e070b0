#pragma once

#include <Legacy/If/Export.h>
#include <Legacy/If/InfoItemHolderContainer.h>
#include <Orlek/IntrusiveBaseMT.h>

#include <atomic>
#include <cstddef>
#include <functional>
#include <iosfwd>
#include <string>

namespace Legacy::If {

/// Key of an application's section: a number and a text. Not the packed id of a directory's section.
///
/// The hash is computed on first use and kept in the key and its copies; many threads may ask for it at once.
struct LEGACY_IF_API SectionId_t
{
public:
    SectionId_t(unsigned int const& primaryId, std::string const& secondaryId);

    unsigned int const& PrimaryId() const noexcept { return m_primaryId; }
    std::string const& SecondaryId() const noexcept { return m_secondaryId; }

    /// By number first, then by text, byte for byte.
    bool operator<(SectionId_t other) const noexcept;
    bool operator==(SectionId_t other) const noexcept;
    bool operator!=(SectionId_t other) const noexcept;

    /// Good in this process only: never store or send it.
    unsigned int hash_value() const;

private:
    /// One word, so that a hash is there whole or not at all; 0 until it is known, so that a hash of 0 is never kept.
    struct KeptHash
    {
        KeptHash() noexcept = default;
        KeptHash(KeptHash const& other) noexcept : word(other.Get()) {}
        KeptHash& operator=(KeptHash const& other) noexcept
        {
            Set(other.Get());
            return *this;
        }
        unsigned int Get() const noexcept { return word.load(std::memory_order_relaxed); }
        void Set(unsigned int hash) noexcept { word.store(hash, std::memory_order_relaxed); }

        std::atomic<unsigned int> word{0};
    };

    unsigned int m_primaryId;
    std::string m_secondaryId;
    mutable KeptHash m_hash;
};

/// The same, where `boost::hash` finds it.
LEGACY_IF_API std::size_t hash_value(SectionId_t const& id);

/// A section as an application keeps it in a `GenericContainerImpl`: a key, a display name, flags, and holders of
/// schemas and values.
///
/// Made with `new` with the count 0: wrap it at once. Any thread may take and drop references, and const
/// operations may run on many threads while none changes the section.
class LEGACY_IF_API Section : public Orlek::IntrusiveBaseMT, public InfoItemHolderContainer
{
public:
    /// Without schemas and values.
    Section(SectionId_t const& id, std::string const& name, unsigned int flags);
    /// Copies all holders; the copy has the count 0.
    Section(Section const& other);
    Section& operator=(Section const& other);
    ~Section() override;

    /// A new section of the application's own class with copies of all holders. The caller owns it: count 0.
    [[nodiscard]] virtual Section* DeepCopy() const = 0;

    SectionId_t const& GetId() const noexcept { return m_id; }
    unsigned int const& GetPrimaryId() const noexcept { return m_id.PrimaryId(); }
    std::string const& GetSecondaryId() const noexcept { return m_id.SecondaryId(); }
    std::string const& GetName() const noexcept { return m_name; }

    /// Bits that the library gives no meaning.
    unsigned int GetFlags() const noexcept { return m_flags; }
    /// Whether any bit of the mask is set.
    bool CheckFlags(unsigned int mask) const noexcept { return (m_flags & mask) != 0; }
    /// Both return the new flags.
    unsigned int SetFlags(unsigned int mask) noexcept { return m_flags |= mask; }
    unsigned int ClearFlags(unsigned int mask) noexcept { return m_flags &= ~mask; }

    bool operator==(SectionId_t const& id) const noexcept;
    bool operator==(std::string const& name) const noexcept { return m_name == name; }

private:
    SectionId_t m_id;
    std::string m_name;
    unsigned int m_flags;
};

/// Prints name, key and flags, then the compact form of each schema and each value in id order, one to a line, each
/// line flushed.
LEGACY_IF_API std::ostream& operator<<(std::ostream& os, Section const& section);

} // namespace Legacy::If

/// The key's own hash, for sets and maps of this process.
template<>
struct std::hash<Legacy::If::SectionId_t>
{
    std::size_t operator()(Legacy::If::SectionId_t const& id) const { return id.hash_value(); }
};
