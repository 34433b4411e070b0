#pragma once

#include <Legacy/If/Export.h>
#include <Legacy/If/Family.h>
#include <Legacy/If/SizeBounds.h>

#include <memory>
#include <string>
#include <vector>

namespace Legacy::If {

/// Schema of a list of texts: how many there may be, and a default. The length of a text is not bounded.
class LEGACY_IF_API StringArrayInfo : public InfoFamily<StringArrayInfo, IfType_t::StringArray>
{
public:
    /// An empty default, and both sizes 0: only the empty list passes until #SetMaxSize is called.
    StringArrayInfo(unsigned int const& id, std::string const& name, Permission_t const& permission);

    using InfoFamily::DeepCopy;
    StringArrayInfo* DeepCopy(unsigned int id, std::string const& name, Permission_t const& permission) const override;
    ItemBase* CreateItem() const override;

    std::vector<std::string> const& GetDefault() const noexcept { return m_default; }
    unsigned int GetDefaultSize() const noexcept { return static_cast<unsigned int>(m_default.size()); }
    unsigned int GetMinSize() const noexcept { return m_size.Min(); }
    unsigned int GetMaxSize() const noexcept { return m_size.Max(); }
    /// Pushes the greatest size along, and fills a default that is not empty up with empty texts. Always 0.
    int SetMinSize(unsigned int n);
    /// Pushes the least size along, and cuts a longer default. Always 0.
    int SetMaxSize(unsigned int n);
    /// @return 0; #IfErrSizeOutOfRange, and nothing stored, for a list outside the sizes.
    int SetDefault(std::vector<std::string> const& list);

    /// Equal types and sizes; the default is not compared.
    bool IsEqualBounds(boost::intrusive_ptr<InfoBase const> const& other) const override;
    /// Narrows the sizes; the default stays, even where it no longer fits.
    /// @return 0; #IfErrBoundsTypeMismatch; #IfErrBoundsDisjoint with nothing changed.
    int MergeBounds(boost::intrusive_ptr<InfoBase const> const& other) override;
    /// From a schema of a list of texts: default and sizes.
    int AssignValue(boost::intrusive_ptr<InfoBase const> const& source, bool* changed) override;

    void DumpVal(std::ostream& os) const override;
    std::ostream& operator<<(std::ostream& os) const override;

private:
    SizeBounds m_size;
    std::vector<std::string> m_default;

    friend class StringArrayItem;
};

/// Value of a parameter that is a list of texts.
class LEGACY_IF_API StringArrayItem : public ItemFamily<StringArrayItem, IfType_t::StringArray>
{
public:
    explicit StringArrayItem(unsigned int id); ///< empty

    /// A value with those texts, whatever any schema says. The caller owns it: count 0.
    static StringArrayItem* Create(unsigned int id, std::vector<std::string> const& value);

    using ItemFamily::DeepCopy;
    StringArrayItem* DeepCopy(unsigned int id) const override;

    unsigned int GetSize() const noexcept { return static_cast<unsigned int>(m_value.size()); }
    std::vector<std::string> GetVal() const { return m_value; }
    std::vector<std::string>& Val() noexcept { return m_value; } ///< no bound is applied
    std::vector<std::string> const& Val() const noexcept { return m_value; }
    void SetVal(std::vector<std::string> const& value) { m_value = value; }
    /// @return 0; #IfErrSizeOutOfRange, and nothing stored, for a list outside the schema's sizes.
    int SetVal(std::vector<std::string> const& value, StringArrayInfo const& info);

    bool IsEmpty() const override; ///< there are no elements; one empty text is an element
    bool IsEqualValue(boost::intrusive_ptr<ItemBase const> const& other) const override;
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
    void DumpVal(std::ostream& os) const override;
    std::ostream& operator<<(std::ostream& os) const override;

private:
    std::vector<std::string> m_value;
};

} // namespace Legacy::If
