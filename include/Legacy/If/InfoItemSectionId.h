#pragma once

#include <Legacy/If/Export.h>

#include <compare>
#include <concepts>
#include <cstddef>
#include <functional>

namespace Legacy::If {

/// The packed number of a section or a parameter, which tells its place in the section tree without a lookup.
///
/// From the top: two bits for the depth less one, then six bits for the subsection on each level down to the depth, and
/// below them the item field: 24, 18, 12 or 6 bits at depth 1 to 4. The number of a section has an item field of all
/// ones, that of a parameter in it any other. A level holds 0 to 62; 63 on the deepest one marks a wildcard, and the
/// levels above are not looked at. 0xFFFFFFFF stands for none throughout, although it has the form of a wildcard: those
/// who care test for it first.
///
/// The order is that of the numbers: all of depth 1 before all of depth 2, and a section after its own parameters. A
/// plain value.
class InfoItemSectionId
{
public:
    constexpr InfoItemSectionId(unsigned int const& id) noexcept : m_id(id) {}

    constexpr operator unsigned int() const noexcept { return m_id; }

    /// The section on the topmost level; the low six bits of `sub` count.
    static constexpr InfoItemSectionId CreateLevel1SectionId(unsigned char const& sub) noexcept
    {
        return (sub & k_levelMask) << LevelShift_(1) | ItemMask_(1);
    }

    /// The subsection below this id, whatever this id is; the low six bits of `sub` count. 0xFFFFFFFF at depth 4.
    constexpr InfoItemSectionId CreateSectionId(unsigned char const& sub) const noexcept
    {
        unsigned int const depth = Depth();
        if (depth == k_maxDepth)
            return k_none;
        unsigned int const upper = m_id & ~k_depthMask & ~ItemMask_(depth);
        return depth << k_depthShift | upper | (sub & k_levelMask) << LevelShift_(depth + 1) | ItemMask_(depth + 1);
    }

    /// Parameter number `item` of this section. A number that does not fit is cut, and one with all bits of the field
    /// set gives the section itself. 0xFFFFFFFF if this id is not valid.
    constexpr InfoItemSectionId CreateInfoItemId(unsigned int const& item) const noexcept
    {
        if (!IsValid())
            return k_none;
        unsigned int const mask = ItemMask_(Depth());
        return (m_id & ~mask) | (item & mask);
    }

    /// The section on a level from 1 to the depth; 0xFFFFFFFF for any other, and if this id is not valid.
    constexpr InfoItemSectionId GetSectionId(unsigned int level) const noexcept
    {
        if (!IsValid() || level > Depth() || level == 0)
            return k_none;
        // At the last level the depth bits are set without being cleared, which comes to the same.
        return (level - 1) << k_depthShift | (m_id & ~k_depthMask) | ItemMask_(level);
    }

    /// The subsection on a level from 1 to the depth; 0xFF for any other, and if this id is not valid.
    constexpr unsigned char GetSubsectionId(unsigned int level) const noexcept
    {
        if (!IsValid() || level > Depth() || level == 0)
            return k_noSubsection;
        return static_cast<unsigned char>(m_id >> LevelShift_(level) & k_levelMask);
    }

    /// The parameter's number; 0xFF if this is not the id of a parameter.
    ///
    /// Contract: only the low eight bits, although the field is wider at depth 1 to 3. Parameters are numbered with
    /// this value, and stored ids depend on that numbering.
    constexpr unsigned char GetInfoItemSubsectionId() const noexcept
    {
        if (!IsValidInfoItemId())
            return k_noSubsection;
        return static_cast<unsigned char>(Depth() == k_maxDepth ? m_id & ItemMask_(k_maxDepth) : m_id & 0xFFU);
    }

    /// 1 to 4, for every number.
    constexpr unsigned int Depth() const noexcept { return (m_id >> k_depthShift) + 1; }

    /// The largest item field, and the number of parameters that fit; 0 if this id is not valid.
    constexpr unsigned int MaxNumInfoItemsInSection() const noexcept { return IsValid() ? ItemMask_(Depth()) : 0; }

    /// The deepest level that there is.
    static constexpr unsigned int MaxDepth() noexcept { return k_maxDepth; }
    /// The greatest subsection number: 63 subsections fit on a level.
    static constexpr unsigned int MaxSubsectionPerSubsection() noexcept { return k_levelMask - 1; }

    /// Any of the three below.
    constexpr bool IsValid() const noexcept { return !IsWildcardLevel_() || HasNoItem_(); }
    constexpr bool IsValidWildcardSectionId() const noexcept { return IsWildcardLevel_() && HasNoItem_(); }
    constexpr bool IsValidSectionId() const noexcept { return !IsWildcardLevel_() && HasNoItem_(); }
    constexpr bool IsValidInfoItemId() const noexcept { return !IsWildcardLevel_() && !HasNoItem_(); }

    /// Makes it 0xFFFFFFFF.
    constexpr void Clear() noexcept { m_id = k_none; }

    friend constexpr bool operator==(InfoItemSectionId const&, InfoItemSectionId const&) noexcept = default;
    friend constexpr auto operator<=>(InfoItemSectionId const&, InfoItemSectionId const&) noexcept = default;
    /// Against a plain number, which the conversions both ways would leave ambiguous.
    template<std::integral Number>
    friend constexpr bool operator==(InfoItemSectionId const& id, Number number) noexcept
    {
        return id.m_id == static_cast<unsigned int>(number);
    }
    template<std::integral Number>
    friend constexpr auto operator<=>(InfoItemSectionId const& id, Number number) noexcept
    {
        return id.m_id <=> static_cast<unsigned int>(number);
    }

private:
    static constexpr unsigned int k_maxDepth = 4;
    static constexpr unsigned int k_none = 0xFFFFFFFF;
    static constexpr unsigned int k_depthShift = 30;
    static constexpr unsigned int k_depthMask = 0xC0000000;
    static constexpr unsigned int k_levelBits = 6;
    static constexpr unsigned int k_levelMask = 0x3F;
    static constexpr unsigned char k_noSubsection = 0xFF;

    static constexpr unsigned int LevelShift_(unsigned int level) noexcept
    {
        return k_depthShift - k_levelBits * level;
    }
    static constexpr unsigned int ItemMask_(unsigned int depth) noexcept { return (1U << LevelShift_(depth)) - 1; }

    constexpr bool IsWildcardLevel_() const noexcept
    {
        return (m_id >> LevelShift_(Depth()) & k_levelMask) == k_levelMask;
    }
    constexpr bool HasNoItem_() const noexcept { return (~m_id & ItemMask_(Depth())) == 0; }

    unsigned int m_id;
};

} // namespace Legacy::If

/// For sets and maps of this process: never store or send a hash.
template<>
struct std::hash<Legacy::If::InfoItemSectionId>
{
    std::size_t operator()(Legacy::If::InfoItemSectionId const& id) const noexcept
    {
        return std::hash<unsigned int>()(id);
    }
};
