#pragma once

#include <Legacy/If/Export.h>
#include <Legacy/If/InfoItemSectionId.h>
#include <Legacy/If/SectionId.h>

#include <list>
#include <memory>
#include <string>
#include <vector>

namespace Legacy::If {

class SectionMapElement;

/// The tree of sections: which exist, under which path and packed id, and which parameter names and ids each holds. It
/// gives out the ids of new sections and parameters. A node is reached by its path or by its id, or by the id of any
/// parameter in it. Nothing is removed but by #Clear.
///
/// One leading delimiter is skipped on each level of a path, so that `/a/b`, `a/b` and `a//b` name one section; a level
/// that is empty all the same is #IfErrInvalidArgument. Output vectors and lists are appended to. Copies share the
/// tree, until one of them is cleared. Const operations may run on many threads while none changes the tree.
class LEGACY_IF_API SectionMap
{
public:
    SectionMap();
    SectionMap(SectionMap const& other);
    SectionMap& operator=(SectionMap const& other);
    ~SectionMap();

    /// Adds the section under its own id, and what is missing above it.
    /// @return 0, also if it exists; #IfErrInvalidArgument for the invalid section, for an empty level, and for a
    ///         section on the way that stands under another spelling of its path; #IfErrAlreadyExists if a name on the
    ///         way has another id or an id another name. Sections made on the way down stay.
    int AddSection(SectionId const& id);
    /// Adds the section, and what is missing above it, under ids of the map's choice: one more than the greatest in use
    /// at that level, and once 62 is in use the first that is free.
    ///
    /// Contract: a section that exists is #IfErrAlreadyExists here, with `section` filled, and 0 in the other form;
    /// callers add by path to learn the id in either case.
    /// @return 0; #IfErrInvalidArgument for an empty path or level and for a fifth level; #IfErrNoFreeId if a section
    ///         has 63 subsections. Sections made on the way down stay.
    int AddSection(std::string const& path, SectionId& section);

    /// @return 0; #IfErrNotFound, also for an empty path; #IfErrInvalidArgument. `section` is written on success alone.
    int FindSection(std::string const& path, SectionId& section) const;
    /// @return 0; #IfErrNotFound; #IfErrInvalidArgument for 0xFFFFFFFF and malformed ids. `section` is written on
    ///         success alone.
    int FindSection(InfoItemSectionId const& id, SectionId& section) const;

    /// In ascending id order.
    void GetTopLevelSections(std::vector<SectionId>& sections) const;
    /// The children of a section in ascending id order.
    /// @return as #FindSection.
    int GetSubsections(InfoItemSectionId const& id, std::vector<SectionId>& sections) const;
    /// All sections without children, depth first in name order.
    void GetLeafSections(std::list<SectionId>& sections) const;

    /// Enters a parameter under its own id in the section that the id names.
    /// @return 0; #IfErrNotFound or #IfErrInvalidArgument if there is no such section; #IfErrAlreadyExists if the
    ///         section holds the id or the name.
    int AddInfo(InfoItemSectionId const& id, std::string const& name);
    /// Enters a parameter under an id of the map's choice: one more than the greatest in use, as far as that can be
    /// told from its low eight bits.
    ///
    /// Contract: after 257 parameters at depth 1 to 3 the numbers start over at one that is taken, and the call fails
    /// with #IfErrAlreadyExists. At depth 4 number 63, whose id is the section's own, is given out too, and then fails
    /// so. Ids that were numbered this way are stored, and the same sections must number the same way again.
    /// @param id is the new id, or the id of the parameter that bears the name; it may be overwritten on failure.
    /// @return 0; #IfErrNotFound, also for an empty path; #IfErrInvalidArgument; #IfErrAlreadyExists; #IfErrNoFreeId.
    int AddInfo(std::string const& path, std::string const& name, InfoItemSectionId& id);

    /// @return 0; #IfErrNotFound; #IfErrInvalidArgument. `id` is written on success alone.
    int FindInfo(std::string const& path, std::string const& name, InfoItemSectionId& id) const;
    /// @return 0; #IfErrNotFound; #IfErrInvalidArgument for an id that is not a parameter's. `path` and `name` are
    ///         written on success alone.
    int FindInfo(InfoItemSectionId const& id, std::string& path, std::string& name) const;
    /// The parameters of a section and of all below it, depth first: a section's own, in name order, before those of
    /// its subsections, in name order.
    ///
    /// Contract: the id of a parameter is #IfErrNotFound here, while everywhere else it stands for its section.
    /// @return 0; #IfErrNotFound, also for a wildcard; #IfErrInvalidArgument.
    int GetInfos(InfoItemSectionId const& id, std::vector<unsigned int>& infos) const;

    /// Drops the tree; numbering starts at 0 again.
    void Clear();

private:
    friend class InfoItemDirectory;

    std::shared_ptr<SectionMapElement> m_root;
};

} // namespace Legacy::If
