#pragma once

#include <Legacy/If/Detail/Array.h>
#include <Legacy/If/Export.h>

#include <memory>
#include <string>
#include <vector>

namespace Legacy::If {

/// Schema of a list of texts: how many there may be, and a default. The length of a text is not bounded.
class LEGACY_IF_API StringArrayInfo : public Detail::ArrayInfo<StringArrayInfo, IfType_t::StringArray, std::string>
{
public:
    /// An empty default, and both sizes 0: only the empty list passes until #SetMaxSize is called.
    StringArrayInfo(unsigned int const& id, std::string const& name, Permission_t const& permission);

    using ArrayInfo::DeepCopy;
    [[nodiscard]] StringArrayInfo* DeepCopy(unsigned int id, std::string const& name,
                                            Permission_t const& permission) const override;
    [[nodiscard]] ItemBase* CreateItem() const override;

    /// From a schema of a list of texts: default and sizes.
    int AssignValue(boost::intrusive_ptr<InfoBase const> const& source, bool* changed) override;
};

/// Value of a parameter that is a list of texts.
class LEGACY_IF_API StringArrayItem
    : public Detail::ArrayItem<StringArrayItem, StringArrayInfo, IfType_t::StringArray, std::string>
{
public:
    explicit StringArrayItem(unsigned int id); ///< empty

    using ArrayItem::DeepCopy;
    [[nodiscard]] StringArrayItem* DeepCopy(unsigned int id) const override;

    /// From a boolean or a text, into the element at `index`: the list grows to hold it, with empty texts before it.
    /// From a list of texts as a whole, with `index` ignored.
    int AssignArrayValue(boost::intrusive_ptr<ItemBase const> const& source, unsigned int index,
                         bool* changed) override;

    /// Each text and a zero byte, with no count. Reading appends to the list as it stands.
    unsigned int GetSerialDataSize() const override;
    int Serialize(SerialStruct_t* record) const override;
    /// @return 0; also #IfErrInvalidArgument, with nothing appended, if the last text has no zero byte.
    int Deserialize(ConstSerialStruct_t const* record) override;

    /// Fails if the number of texts is outside the schema's sizes; the texts are not looked at.
    std::shared_ptr<ResultElem const> Validate(boost::intrusive_ptr<InfoBase const> const& info) override;
    /// Reads a count and that many words; on failure the list stays as it was.
    bool SetValFromStream(std::istream& in, std::ostream& out,
                          boost::intrusive_ptr<InfoBase const> const& info) override;
    std::ostream& operator<<(std::ostream& os) const override;
};

} // namespace Legacy::If
