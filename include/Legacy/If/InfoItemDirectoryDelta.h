#pragma once

#include <Legacy/If/Export.h>
#include <Legacy/If/InfoItemHolderDefs.h>
#include <Legacy/If/InfoItemSectionId.h>
#include <Legacy/If/SectionId.h>

#include <boost/smart_ptr/intrusive_ptr.hpp>

#include <map>

namespace Legacy::If {

/// Sections, schemas and values that are to be added to a directory or changed in it, gathered first and applied in one
/// call of `InfoItemDirectory::UpdateFromDelta`. There is no way to express a removal.
///
/// The three kinds stand by themselves: a value needs no schema here. Holders are shared, also by copies of a delta.
/// The maps are in ascending key order, so that a section comes before its subsections. One thread fills a delta and
/// then hands it over.
class LEGACY_IF_API InfoItemDirectoryDelta
{
public:
    InfoItemDirectoryDelta();
    InfoItemDirectoryDelta(InfoItemDirectoryDelta const& other);
    InfoItemDirectoryDelta& operator=(InfoItemDirectoryDelta const& other);
    virtual ~InfoItemDirectoryDelta();

    /// Enters the section under its packed id; the invalid section is taken too, and refused by the directory.
    /// @return 0; #IfErrAlreadyExists: the first entry stays.
    int AddSection(SectionId const& section);
    /// Enters the holder under the id of its schema.
    /// @return 0; #IfErrNullArgument for null and for a holder of nothing; #IfErrAlreadyExists: the first entry stays.
    int AddInfo(boost::intrusive_ptr<InfoHolder const> const& info);
    /// Enters the holder under the id of its value.
    /// @return as #AddInfo.
    int AddItem(boost::intrusive_ptr<ItemHolder const> const& item);

    bool Empty() const noexcept;

    std::map<InfoItemSectionId, SectionId const> const& GetSectionIdMap_addMod() const noexcept
    {
        return m_sectionIdMap;
    }
    std::map<unsigned int, boost::intrusive_ptr<InfoHolder const>> const& GetInfoHolderPtrMap_addMod() const noexcept
    {
        return m_infoHolderPtrMap;
    }
    std::map<unsigned int, boost::intrusive_ptr<ItemHolder const>> const& GetItemHolderPtrMap_addMod() const noexcept
    {
        return m_itemHolderPtrMap;
    }

private:
    std::map<InfoItemSectionId, SectionId const> m_sectionIdMap;
    std::map<unsigned int, boost::intrusive_ptr<InfoHolder const>> m_infoHolderPtrMap;
    std::map<unsigned int, boost::intrusive_ptr<ItemHolder const>> m_itemHolderPtrMap;
};

} // namespace Legacy::If
