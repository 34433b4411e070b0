#pragma once

#include <Legacy/If/Detail/NodePool.h>
#include <Legacy/If/Export.h>
#include <Legacy/If/InfoItemSectionId.h>
#include <Legacy/If/ReturnCodes.h>
#include <Legacy/If/SectionId.h>

#include <cstdint>
#include <functional>
#include <list>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace Legacy::If {

namespace Detail {
template<typename Place>
class PlaceIndex;
}

/// One node of the section tree: a section, its subsections and the names and ids of its parameters, or the root, which
/// is no section and holds no parameters. The operations are those of #SectionMap, seen from this node; they lead down
/// at most four levels.
///
/// Each child and each parameter is entered by name and by id. Const operations may run on many threads while
/// none changes the tree.
class LEGACY_IF_API SectionMapElement
{
    struct InTree
    {
        std::shared_ptr<Detail::NodePool> const& pool;
    };

public:
    /// A section without children and parameters.
    explicit SectionMapElement(SectionId const& sectionId);
    /// Copies the whole subtree.
    ///
    /// Contract: the copy has two separate copies of each child, one found by name and one by id, and refuses to add a
    /// section that exists. Applications keep such copies as snapshots and rely on their refusing changes.
    SectionMapElement(SectionMapElement const& other);
    SectionMapElement& operator=(SectionMapElement const&) = delete;
    /// A section of this tree.
    SectionMapElement(SectionId const& sectionId, InTree const& tree);
    virtual ~SectionMapElement();

    SectionId const& GetSectionId() const noexcept { return m_sectionId; }

protected:
    /// The root.
    SectionMapElement();

    int AddSection_(SectionId const& id);
    int AddSection_(std::string_view path, SectionId& section);
    int FindSection_(std::string_view path, SectionId& section) const;
    int FindSection_(InfoItemSectionId const& id, SectionId& section) const;
    void GetTopLevelSections_(std::vector<SectionId>& sections) const;
    int GetSubsections_(InfoItemSectionId const& id, std::vector<SectionId>& sections) const;
    void GetLeafSections_(std::list<SectionId>& sections) const;
    int AddInfo_(InfoItemSectionId const& id, std::string const& name);
    int AddInfo_(std::string_view path, std::string const& name, InfoItemSectionId& id);
    int FindInfo_(std::string_view path, std::string_view name, InfoItemSectionId& id) const;
    int FindInfo_(InfoItemSectionId const& id, std::string& path, std::string& name) const;
    int GetInfos_(InfoItemSectionId const& id, std::vector<unsigned int>& infos) const;

private:
    friend class InfoItemDirectory;
    friend class SectionMap;

    using Child = std::shared_ptr<SectionMapElement>;
    using PathIndex = Detail::PlaceIndex<SectionMapElement*>;

    /// The node of the section with that path, which has that hash, or null.
    SectionMapElement const* At_(std::string_view path, std::uint32_t pathHash) const;
    /// The same, for a root, if the path is the section's own.
    SectionMapElement* Known_(std::string_view path, std::uint32_t pathHash) const;
    int AddInfoAt_(InfoItemSectionId const& id, std::string const& name, SectionMapElement*& element);
    unsigned int Depth_() const noexcept { return m_sectionId.GetSectionDepth(); }
    int AddNewSectionMapElement_(SectionId const& child, Child& element);
    int AddNewInfo_(InfoItemSectionId const& id, std::string const& name, InfoItemSectionId& stored);
    int AllocateSubsectionId_(unsigned char& sub) const;
    int AllocateInfoNumber_(unsigned int& number) const;
    int FindNextSectionMapElement_(std::string_view path, std::string_view& rest, SectionMapElement*& next) const;
    int FindNextSectionMapElement_(InfoItemSectionId const& id, SectionMapElement*& next) const;
    static void ParseSectionName_(std::string_view path, std::string_view& first, std::string_view& rest);
    template<typename Self>
    static int Descend_(Self& self, std::string_view path, Self*& element);
    template<typename Self>
    static int Walk_(Self& self, std::string_view path, Self*& element);
    template<typename Self>
    static int Descend_(Self& self, InfoItemSectionId const& id, int mismatch, Self*& element);

    /// The parameters by name and by id.
    struct Infos;

    SectionId m_sectionId;
    std::shared_ptr<Detail::NodePool> m_pool; // of all parameters of the tree, outlives them
    std::map<std::string, Child, std::less<>> m_subsectionsByName;
    std::map<unsigned char, Child> m_subsectionsById;
    std::unique_ptr<Infos> m_infos; // null before the first
    bool m_isRoot;
    std::uint32_t m_pathHash = 0;                  // of a section under a root
    std::vector<SectionMapElement*> m_subsections; // by id, null where there is none
    std::unique_ptr<PathIndex> m_ownPaths;         // of a root: its sections by their paths
    PathIndex* m_paths = nullptr;                  // of the root that this node came to stand under
};

} // namespace Legacy::If
