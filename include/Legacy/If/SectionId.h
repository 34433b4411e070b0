#pragma once

#include <Legacy/If/Export.h>
#include <Legacy/If/InfoItemSectionId.h>

#include <array>
#include <string>

namespace Legacy::If {

/// A section by both its names: its path, `a/b/c`, and its packed id, which agree in depth.
///
/// A path may start with the delimiter, which belongs to no level. It has one to four levels, each of which may be
/// empty, the one behind a last delimiter too: `a/` has two. What would be a fifth level belongs to the fourth,
/// delimiters included. A path and an id that do not agree give the invalid section: an empty path and the id
/// 0xFFFFFFFF, equal to a default-constructed one. A plain value.
class LEGACY_IF_API SectionId
{
public:
    static constexpr char k_sectionDelim = '/';

    /// The invalid section.
    SectionId();
    /// Invalid unless `id` is the id of a section, not of a parameter or a wildcard, whose depth is the number of
    /// levels in `name`.
    SectionId(std::string const& name, InfoItemSectionId const& id);
    SectionId(SectionId const& other) = default;
    /// The source becomes the invalid section.
    SectionId(SectionId&& other) noexcept;
    /// Where memory fails, this section is as it was.
    SectionId& operator=(SectionId const& other) = default;
    SectionId& operator=(SectionId&& other) noexcept;
    ~SectionId() = default;

    /// The subsection with that name and number, of which the low six bits count. Invalid on the last level, for the
    /// number 63, which is the wildcard, and for a name that holds a delimiter, but on the fourth level, whose name
    /// may.
    SectionId CreateSectionId(std::string const& subsectionName, unsigned char const& subsectionId) const;

    void Clear() noexcept;

    /// By packed id first, then by path, byte for byte.
    bool operator==(SectionId const& other) const noexcept;
    bool operator!=(SectionId const& other) const noexcept { return !(*this == other); }
    bool operator<(SectionId const& other) const noexcept;
    bool operator<=(SectionId const& other) const noexcept { return *this < other || *this == other; }

    /// The whole path.
    std::string const& GetSectionName() const noexcept { return m_sectionName; }
    /// The path down to a level from 1 to the depth, with its leading delimiter if it has one; empty for other levels.
    std::string GetSectionName(unsigned int level) const;
    /// The name of one level alone; empty for levels other than 1 to the depth.
    std::string GetSubsectionName(unsigned int level) const;

    InfoItemSectionId const& GetInfoItemSectionId() const noexcept { return m_infoItemSectionId; }
    /// The packed id of the section on that level; 0xFFFFFFFF for levels other than 1 to the depth.
    InfoItemSectionId GetInfoItemSectionId(unsigned int level) const noexcept
    {
        return m_infoItemSectionId.GetSectionId(level);
    }
    /// The number on that level; 0xFF for levels other than 1 to the depth.
    unsigned char GetSubsectionId(unsigned int level) const noexcept
    {
        return m_infoItemSectionId.GetSubsectionId(level);
    }

    /// Number of levels; 0 for the invalid section.
    unsigned int GetSectionDepth() const noexcept { return m_levels.count; }
    unsigned int GetMaxNumInfoItemsInSection() const noexcept { return m_infoItemSectionId.MaxNumInfoItemsInSection(); }

    bool IsValid() const noexcept { return m_isValid; }
    /// Whether there are four levels, so that there can be no subsections.
    bool IsLastSectionLevel() const noexcept { return GetSectionDepth() == k_maxSectionLevels; }

private:
    static constexpr unsigned int k_maxSectionLevels = 4;

    /// Where the name of each level starts.
    struct Levels
    {
        std::array<unsigned int, k_maxSectionLevels> offsets{};
        unsigned int count = 0;
    };

    void ParseSectionName_() noexcept;
    bool Validate_() const noexcept;

    std::string m_sectionName; // first, since its assignment alone can fail
    InfoItemSectionId m_infoItemSectionId;
    Levels m_levels;
    bool m_isValid;
};

} // namespace Legacy::If
