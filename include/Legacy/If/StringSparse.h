#pragma once

#include <Legacy/If/Detail/AllowedValues.h>
#include <Legacy/If/Detail/Family.h>
#include <Legacy/If/Detail/ValueItem.h>
#include <Legacy/If/Export.h>

#include <memory>
#include <string>
#include <vector>

namespace Legacy::If {

/// Schema of a text out of a list: the allowed texts, in the order given, and a default. The list binds the default and
/// the setter that names the schema; nothing validates against it.
class LEGACY_IF_API StringSparseInfo : public Detail::InfoFamily<StringSparseInfo, IfType_t::StringSparse>
{
public:
    /// An empty list and an empty default.
    StringSparseInfo(unsigned int const& id, std::string const& name, Permission_t const& permission);

    using InfoFamily::DeepCopy;
    [[nodiscard]] StringSparseInfo* DeepCopy(unsigned int id, std::string const& name,
                                             Permission_t const& permission) const override;
    [[nodiscard]] ItemBase* CreateItem() const override;

    std::string GetDefault() const { return m_allowed.Default(); }
    /// @return 0; #IfErrNotInSet, and nothing stored, for a text that is not in the list.
    int SetDefault(std::string text);

    unsigned int GetSize() const noexcept { return m_allowed.Size(); }
    std::vector<std::string>& GetTable() noexcept { return m_allowed.Table(); } ///< the default is not looked at
    std::vector<std::string> const& GetTable() const noexcept { return m_allowed.Table(); }
    /// Copies the list. A default that is not in it becomes its first text, or empty with an empty list. Always 0.
    int SetTable(std::vector<std::string> const& table);
    /// Whether the list holds the text, byte for byte.
    bool IsPresent(std::string text) const;

    /// Always false, also for an own copy.
    ///
    /// Contract: callers that look for bounds to share must never share a list.
    bool IsEqualBounds(boost::intrusive_ptr<InfoBase const> const& other) const override;
    /// Merges nothing.
    /// @return #IfErrTypeNotAssignable; #IfErrBoundsTypeMismatch for another type.
    int MergeBounds(boost::intrusive_ptr<InfoBase const> const& other) override;
    /// From a schema of the same family: list and default.
    int AssignValue(boost::intrusive_ptr<InfoBase const> const& source, bool* changed) override;

    void DumpVal(std::ostream& os) const override;
    std::ostream& operator<<(std::ostream& os) const override;

private:
    Detail::AllowedValues<std::string> m_allowed;

    friend class StringSparseItem;
};

/// Value of a parameter that is a text out of a list. It never counts as empty, not even with an empty text.
class LEGACY_IF_API StringSparseItem : public Detail::ValueItem<StringSparseItem, IfType_t::StringSparse, std::string>
{
public:
    explicit StringSparseItem(unsigned int id); ///< an empty text

    using ValueItem::DeepCopy;
    [[nodiscard]] StringSparseItem* DeepCopy(unsigned int id) const override;

    using ValueItem::SetVal;
    /// Stores the text if the schema lists it and the schema's default otherwise; the caller is not told which.
    void SetVal(std::string value, StringSparseInfo const& info);

    /// From a value of the same family.
    int AssignArrayValue(boost::intrusive_ptr<ItemBase const> const& source, unsigned int index,
                         bool* changed) override;

    /// The text and a zero byte.
    ///
    /// Contract: the record's size word is 5, and the size told here 24, whatever the text. Readers in the field step
    /// over records by these numbers, so neither follows the text. The payload itself holds the whole text and a zero
    /// byte, and more zeros up to the fifth byte. Reading asks for a zero in the last byte that the size word counts:
    /// so texts of up to four bytes come back, and a longer one is refused unless its own fifth byte is 0. Records of
    /// other sizes are read by the same rule.
    /// @{
    unsigned int GetSerialDataSize() const override;
    int Serialize(SerialStruct_t* record) const override;
    int Deserialize(ConstSerialStruct_t const* record) override;
    /// @}

    /// Always passes.
    std::shared_ptr<ResultElem const> Validate(boost::intrusive_ptr<InfoBase const> const& info) override;
    /// Reads one word, listed or not.
    bool SetValFromStream(std::istream& in, std::ostream& out,
                          boost::intrusive_ptr<InfoBase const> const& info) override;
    std::ostream& operator<<(std::ostream& os) const override;
};

} // namespace Legacy::If
