#pragma once

#include <Legacy/If/Detail/Family.h>
#include <Legacy/If/Detail/ValueItem.h>
#include <Legacy/If/Export.h>

#include <memory>
#include <string>
#include <utility>

namespace Legacy::If {

/// Schema of a pair of texts that only the callers understand: nothing but a default.
class LEGACY_IF_API ExtendedInfo : public Detail::InfoFamily<ExtendedInfo, IfType_t::Extended>
{
public:
    /// Two empty texts.
    ExtendedInfo(unsigned int const& id, std::string const& name, Permission_t const& permission);

    using InfoFamily::DeepCopy;
    [[nodiscard]] ExtendedInfo* DeepCopy(unsigned int id, std::string const& name,
                                         Permission_t const& permission) const override;
    [[nodiscard]] ItemBase* CreateItem() const override;

    std::pair<std::string, std::string> const& GetDefault() const noexcept { return m_default; }
    /// Always 0.
    int SetDefault(std::pair<std::string, std::string> const& texts);

    /// Always false, whatever the argument, also for an own copy: nothing is known about the texts.
    bool IsEqualBounds(boost::intrusive_ptr<InfoBase const> const& other) const override;
    /// Always #IfErrTypeNotAssignable, whatever the argument.
    int MergeBounds(boost::intrusive_ptr<InfoBase const> const& other) override;
    /// From a schema of the same family: the default.
    int AssignValue(boost::intrusive_ptr<InfoBase const> const& source, bool* changed) override;

    /// The default is not printed.
    void DumpVal(std::ostream& os) const override;
    /// Prints nothing.
    std::ostream& operator<<(std::ostream& os) const override;

private:
    std::pair<std::string, std::string> m_default;
};

/// Value that is a pair of texts. It lives in memory alone: it has no serial form and no text form.
class LEGACY_IF_API ExtendedItem
    : public Detail::ValueItem<ExtendedItem, IfType_t::Extended, std::pair<std::string, std::string>>
{
public:
    explicit ExtendedItem(unsigned int id); ///< two empty texts

    using ValueItem::DeepCopy;
    [[nodiscard]] ExtendedItem* DeepCopy(unsigned int id) const override;

    using ValueItem::SetVal;
    /// The same: the schema has nothing to say.
    void SetVal(std::pair<std::string, std::string> const& value, ExtendedInfo const& info);

    bool IsEmpty() const override; ///< the first text has no bytes; the second does not count
    /// From a value of the same family: both texts.
    int AssignArrayValue(boost::intrusive_ptr<ItemBase const> const& source, unsigned int index,
                         bool* changed) override;

    unsigned int GetSerialDataSize() const override; ///< always 0
    /// Always #IfErrNotSerializable.
    ///
    /// Contract: no argument is looked at, so a null record gives this code too and not those of other families;
    /// callers ask in that way whether a value travels, without a record to write to.
    /// @{
    int Serialize(SerialStruct_t* record) const override;
    int Deserialize(ConstSerialStruct_t const* record) override;
    /// @}

    /// Fails only for a schema of another class; the texts are not looked at.
    std::shared_ptr<ResultElem const> Validate(boost::intrusive_ptr<InfoBase const> const& info) override;
    /// Always false; nothing is read or written.
    bool SetValFromStream(std::istream& in, std::ostream& out,
                          boost::intrusive_ptr<InfoBase const> const& info) override;
    /// The texts are not printed.
    void DumpVal(std::ostream& os) const override;
    /// Prints nothing.
    std::ostream& operator<<(std::ostream& os) const override;
};

} // namespace Legacy::If
