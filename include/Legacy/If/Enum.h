#pragma once

#include <Legacy/If/Detail/Family.h>
#include <Legacy/If/Detail/ValueItem.h>
#include <Legacy/If/Export.h>

#include <memory>
#include <string>
#include <vector>

namespace Legacy::If {

/// One element of an enumeration. A plain value.
template<typename Value>
struct ElemType
{
    std::string name;
    Value value{};
    bool disabled = false; ///< not to be chosen, though a value that names the element stays valid

    friend bool operator==(ElemType const&, ElemType const&) = default;
};

/// Schema of an enumeration: its elements in the order in which they were added, and a default.
///
/// Names and values are unique as far as #AddElem made the table; in a table that was given as a whole, look-ups find
/// the first match. A disabled element is found and valid like any other: only the checked setter of the value
/// refuses it.
class LEGACY_IF_API EnumInfo : public Detail::InfoFamily<EnumInfo, IfType_t::Enum>
{
public:
    /// No elements and the default 0.
    /// @param localized whether the names are keys of a message catalogue: kept for callers, nothing here acts on it.
    EnumInfo(unsigned int const& id, std::string const& name, Permission_t const& permission, bool localized);

    using InfoFamily::DeepCopy;
    [[nodiscard]] EnumInfo* DeepCopy(unsigned int id, std::string const& name,
                                     Permission_t const& permission) const override;
    [[nodiscard]] ItemBase* CreateItem() const override;

    int GetDefault() const noexcept { return m_default; }
    /// @return 0; #IfErrNotInSet, and nothing stored, for a value of no element, unless there are no elements at all.
    int SetDefault(int value);
    unsigned int GetSize() const noexcept { return static_cast<unsigned int>(m_table.size()); }
    std::vector<ElemType<int>>& GetTable() noexcept { return m_table; } ///< no rule is applied to changes
    std::vector<ElemType<int>> const& GetTable() const noexcept { return m_table; }
    /// Replaces the elements. A default that is the value of none becomes that of the first; without elements it stays.
    /// Always 0.
    int SetTable(std::vector<ElemType<int>> const& table);

    /// @return 0; #IfErrNotFound, and nothing written, if there is no such element. Likewise the next two.
    int GetElem(int value, ElemType<int>& elem) const;
    int GetElemName(int value, std::string& name) const;
    /// Names compare byte for byte.
    int GetElemVal(std::string const& name, int& value) const;
    /// Appends an element; the default stays. The table is walked for its value and name, as by every look-up: one of
    /// thousands of elements is better given as a whole.
    /// @return 0; #IfErrAlreadyExists, and nothing added, if its value or its name is taken.
    int AddElem(ElemType<int> const& elem);
    /// Takes an element out; the default stays, even if it was the element's value.
    /// @return 0; #IfErrNotFound. Likewise the next two.
    int RemoveElem(int value);
    int EnableElem(int value);
    int DisableElem(int value);
    bool IsEnabled(int value) const; ///< there is such an element and it is not disabled
    bool IsPresent(int value) const; ///< there is such an element, disabled or not
    bool IsLocalized() const noexcept { return m_localized; }

    /// Contract: always false, even for an equal table: callers take enumerations for different and send them anew.
    bool IsEqualBounds(boost::intrusive_ptr<InfoBase const> const& other) const override;
    /// Merges nothing.
    /// @return #IfErrTypeNotAssignable for an enumeration, otherwise #IfErrBoundsTypeMismatch.
    int MergeBounds(boost::intrusive_ptr<InfoBase const> const& other) override;
    /// From an enumeration's schema: elements and default. What #IsLocalized tells stays.
    int AssignValue(boost::intrusive_ptr<InfoBase const> const& source, bool* changed) override;

    /// The elements and the default are not printed.
    void DumpVal(std::ostream& os) const override;
    /// The elements, a disabled one marked by a star, and the default.
    std::ostream& operator<<(std::ostream& os) const override;

private:
    using Table = std::vector<ElemType<int>>;

    bool Find(int value, Table::iterator& elem);
    bool Find(int value, Table::const_iterator& elem) const;
    bool Find(std::string const& name, Table::iterator& elem);
    bool Find(std::string const& name, Table::const_iterator& elem) const;
    int SetDisabled_(int value, bool disabled);

    Table m_table;
    int m_default = 0;
    bool m_localized;
};

/// Value of an enumeration parameter: the number, not the name.
class LEGACY_IF_API EnumItem : public Detail::ValueItem<EnumItem, IfType_t::Enum, int>
{
public:
    explicit EnumItem(unsigned int id); ///< 0

    using ValueItem::DeepCopy;
    [[nodiscard]] EnumItem* DeepCopy(unsigned int id) const override;

    using ValueItem::SetVal;
    /// Stores the value of an enabled element, and the schema's default for any other.
    void SetVal(int value, EnumInfo const& info);

    /// From a boolean (1 or 0), a number, an enumeration value, or the element at `index` of a list of numbers, whose
    /// end is #IfErrInvalidArgument. The number is converted and need not name an element.
    int AssignArrayValue(boost::intrusive_ptr<ItemBase const> const& source, unsigned int index,
                         bool* changed) override;

    /// Four bytes, big-endian.
    unsigned int GetSerialDataSize() const override;
    int Serialize(SerialStruct_t* record) const override;
    int Deserialize(ConstSerialStruct_t const* record) override;

    /// Fails if the value is that of no element.
    std::shared_ptr<ResultElem const> Validate(boost::intrusive_ptr<InfoBase const> const& info) override;
    /// Reads the number, not a name, as an unsigned one whose bits are taken.
    bool SetValFromStream(std::istream& in, std::ostream& out,
                          boost::intrusive_ptr<InfoBase const> const& info) override;
    std::ostream& operator<<(std::ostream& os) const override;
};

} // namespace Legacy::If
