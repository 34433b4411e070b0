#pragma once

#include <Legacy/If/InfoItemDirectory.h>
#include <Legacy/If/InfoItemDirectoryDelta.h>
#include <Legacy/IfKit/Export.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

/// How two directories differ.
///
/// @code
/// InfoItemDirectory former, latter;
/// for (auto const& line : DifferenceLines(former, latter)) std::cout << line << '\n';
/// former.UpdateFromDelta(MakeDelta(former, latter), true, true); // now they are alike
/// @endcode
///
/// All of this only reads, and may be called from any thread while nobody changes the directories or what is in them.
namespace Legacy::IfKit {

/// One difference. What one of the directories does not have is null, or the invalid section.
struct Difference_t
{
    enum class Kind_t
    {
        Section,
        Schema,
        Value,
    };

    Kind_t kind;
    std::string path;      ///< of the section or the parameter
    If::SectionId section; ///< of the section, as the directory names it that has it
    boost::intrusive_ptr<If::InfoItemHolder const> former;
    boost::intrusive_ptr<If::InfoItemHolder const> latter;
    bool isGone; ///< the second directory lacks it
    bool isNew;  ///< the first directory lacks it
};

/// Goes through all differences: sections, then schemas, then values, each in ascending id order. Schemas count as the
/// same if nothing about them differs, see #IsSameSchema, and values if `IsEqualValue` says so or both are the same NaN
/// or list with a NaN.
LEGACY_IFKIT_API void ForEachDifference(If::InfoItemDirectory const& former, If::InfoItemDirectory const& latter,
                                        std::function<void(Difference_t const&)> const& use);

/// What makes the first directory like the second one. It shares the holders of the second one. What the second one
/// lacks stays, since a delta has no word for it, and so does a schema whose name or type has changed: applying the
/// delta then fails there.
LEGACY_IFKIT_API std::shared_ptr<If::InfoItemDirectoryDelta> MakeDelta(If::InfoItemDirectory const& former,
                                                                       If::InfoItemDirectory const& latter);

/// The differences for people, one to a line and printable: "+ section network", "- network/mtu", "network/mtu: 1500
/// -> 9000", with the units and the names of elements that the schemas give.
LEGACY_IFKIT_API std::vector<std::string> DifferenceLines(If::InfoItemDirectory const& former,
                                                          If::InfoItemDirectory const& latter,
                                                          std::string const& language = {});

/// Whether two schemas agree in all that they hold: class, id, name, permission, bounds, tables, default and members.
/// This is not `IsEqualBounds`, by which enumerations, for one, are never alike. Foreign classes are compared by their
/// texts.
LEGACY_IFKIT_API bool IsSameSchema(If::InfoBase const& one, If::InfoBase const& other);

/// The path of a parameter: that of its section, a delimiter, and its name.
LEGACY_IFKIT_API std::string PathOf(If::InfoItemDirectory const& directory, If::InfoBase const& info);

/// All sections of a directory, each before those below it and these in ascending id order.
LEGACY_IFKIT_API std::vector<If::SectionId> AllSections(If::InfoItemDirectory const& directory);

} // namespace Legacy::IfKit
