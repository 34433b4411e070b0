#pragma once

#include <Legacy/If/Export.h>
#include <Legacy/If/InfoItemHolderDefs.h>
#include <Legacy/If/InfoItemSectionId.h>
#include <Legacy/If/SectionId.h>

#include <boost/smart_ptr/intrusive_ptr.hpp>

#include <list>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace Legacy::If {

class InfoItemDirectoryDelta;
class InfoItemHolderMap;
class SectionMap;

/// Which sections exist, and what the schema and the value of each parameter are.
///
/// A parameter's life: its section is added, #AddInfo enters its schema without a value, #SetItem gives it a value and
/// later another, #SetInfo replaces the schema by one of the same parameter. Parameters are not removed singly.
/// Applications derive from the directory to be told of changes.
///
/// Copies share sections and parameters: a change through one is a change through all, and only the hook of the object
/// that was called runs. Const operations may run on many threads while none changes the directory or one of its
/// copies.
class LEGACY_IF_API InfoItemDirectory
{
public:
    InfoItemDirectory();
    /// Shares sections and parameters; the hooks are each object's own.
    InfoItemDirectory(InfoItemDirectory const& other);
    InfoItemDirectory& operator=(InfoItemDirectory const& other);
    virtual ~InfoItemDirectory();

    /// Adds the section, and what is missing above it, under ids of the directory's choice.
    /// @return 0; #IfErrAlreadyExists, with `section` filled all the same; the other codes of `SectionMap::AddSection`.
    int AddSection(std::string const& path, SectionId& section);
    /// Adds the section under its own id, and what is missing above it.
    /// @return 0, also if it exists; the codes of `SectionMap::AddSection`.
    int AddSection(SectionId const& section);

    /// The section, or the invalid one.
    SectionId FindSection(std::string const& path) const;
    /// The same; the id of a parameter stands for its section.
    SectionId FindSection(InfoItemSectionId const& id) const;
    /// Replaces the content of the vector by the sections in ascending id order.
    void GetTopLevelSections(std::vector<SectionId>& sections) const;
    /// Replaces the content of the vector by the children of the section in ascending id order.
    /// @return 0; #IfErrNotFound or #IfErrInvalidArgument, with the vector empty.
    int GetSubsections(InfoItemSectionId const& id, std::vector<SectionId>& sections) const;
    /// Appends all sections without children, depth first in name order.
    void GetLeafSections(std::list<SectionId>& sections) const;

    /// Enters a parameter under the id and the name of the schema. The section that the id names must exist.
    /// @return 0; #IfErrNullArgument for null and for a holder of nothing; #IfErrAlreadyExists if the id or, in its
    ///         section, the name is taken; #IfErrNotFound or #IfErrInvalidArgument if there is no such section. On
    ///         failure the directory is unchanged.
    int AddInfo(boost::intrusive_ptr<InfoHolder const> const& info);
    /// Replaces the schema of a parameter.
    /// @return 0; #IfErrNullArgument for null and for a holder of nothing; #IfErrNotFound for an unknown id;
    ///         #IfErrInvalidArgument if name, type or element type differ. On failure the directory is unchanged.
    int SetInfo(boost::intrusive_ptr<InfoHolder const> const& info);
    /// Sets the value of a parameter. It is not validated.
    /// @return 0; #IfErrNullArgument for null and for a holder of nothing; #IfErrNotFound for an unknown id;
    ///         #IfErrInvalidArgument if type or element type differ. On failure the directory is unchanged.
    int SetItem(boost::intrusive_ptr<ItemHolder const> const& item);

    /// The schema, or null.
    boost::intrusive_ptr<InfoHolder const> FindInfo(unsigned int const& id) const;
    boost::intrusive_ptr<InfoHolder const> FindInfo(std::string const& sectionPath, std::string const& infoName) const;
    /// The value, or null, also if the parameter has none yet.
    boost::intrusive_ptr<ItemHolder const> FindItem(unsigned int const& id) const;
    boost::intrusive_ptr<ItemHolder const> FindItem(std::string const& sectionPath, std::string const& infoName) const;
    /// Takes what follows the last delimiter as the path of the section and what precedes it as the parameter's name.
    ///
    /// Contract: the halves are reversed, unlike in #FindInfoItem. So `a/b/speed` finds nothing unless a section
    /// `speed` holds a parameter `a/b`; callers hand over such reversed paths.
    boost::intrusive_ptr<ItemHolder const> FindItem(std::string const& infoPath) const;
    /// Schema and value together, or null.
    boost::intrusive_ptr<InfoItemHolder const> FindInfoItem(unsigned int const& id) const;
    boost::intrusive_ptr<InfoItemHolder const> FindInfoItem(std::string const& sectionPath,
                                                            std::string const& infoName) const;
    /// Takes what precedes the last delimiter as the path of the section and what follows it as the parameter's name;
    /// null without a delimiter.
    boost::intrusive_ptr<InfoItemHolder const> FindInfoItem(std::string const& infoPath) const;

    /// Append what the parameters of a section and of all below it have, in the order of `SectionMap::GetInfos`;
    /// parameters without a value are left out of #FindItems.
    /// @return 0; #IfErrNotFound, also for the id of a parameter; #IfErrInvalidArgument. On failure the vector is
    ///         untouched.
    int FindInfos(InfoItemSectionId const& id, std::vector<boost::intrusive_ptr<InfoHolder const>>& infos) const;
    int FindItems(InfoItemSectionId const& id, std::vector<boost::intrusive_ptr<ItemHolder const>>& items) const;
    int FindInfoItems(InfoItemSectionId const& id,
                      std::vector<boost::intrusive_ptr<InfoItemHolder const>>& infoItems) const;
    /// Replaces the content of the vector by all parameters in ascending id order.
    void GetAllInfoItems(std::vector<boost::intrusive_ptr<InfoItemHolder const>>& infoItems) const;

    /// Applies a delta without rollback: at the first failure everything before it stays applied, its hooks have run,
    /// and the rest is not looked at.
    ///
    /// Sections come first, whatever the flags say; one that exists passes. Then, if asked for, each schema, by
    /// #SetInfo where the parameter exists and by #AddInfo otherwise; then, if asked for, each value by #SetItem. Each
    /// kind is taken in ascending id order.
    /// @return 0; #IfErrNullArgument; otherwise the code of the step that failed: a value without a parameter is
    ///         #IfErrNotFound.
    int UpdateFromDelta(std::shared_ptr<InfoItemDirectoryDelta> const& delta, bool updateInfos, bool updateItems);

    /// Whether there are no parameters; sections do not count.
    bool Empty() const;
    /// Drops all sections and parameters, also of the copies, without calling a hook.
    void Clear();

protected:
    /// Called at the end of each successful #AddInfo, with a null `former`, and #SetInfo, also those of a delta, on the
    /// thread of that call. The directory holds the change already, which `infoItem` shows, and is in order: a hook may
    /// call anything on it but must leave a delta that is being applied alone. What it throws goes to the caller of the
    /// operation, and the change stays.
    virtual void InfoChanged_(boost::intrusive_ptr<InfoHolder const> const& former,
                              boost::intrusive_ptr<InfoItemHolder const> const& infoItem);
    /// The same for #SetItem; `former` is null for the first value.
    virtual void ItemChanged_(boost::intrusive_ptr<ItemHolder const> const& former,
                              boost::intrusive_ptr<InfoItemHolder const> const& infoItem);

private:
    bool ParseInfoPath_(std::string_view infoPath, std::string_view& sectionPath, std::string_view& infoName) const;
    template<typename Pointer>
    int FindAll_(InfoItemSectionId const& id, std::vector<Pointer>& found,
                 Pointer (*part)(InfoItemHolder const*)) const;
    int SetItem_(unsigned int id, boost::intrusive_ptr<ItemHolder const> const& item);
    int SetItems_(std::map<unsigned int, boost::intrusive_ptr<ItemHolder const>> const& items);
    InfoItemHolder* Find_(std::string_view sectionPath, std::string_view infoName) const;

    std::shared_ptr<SectionMap> m_sectionMap;
    std::shared_ptr<InfoItemHolderMap> m_infoItemHolderMap;
};

} // namespace Legacy::If
