#pragma once

#include <Legacy/If/Detail/Family.h>
#include <Legacy/If/Export.h>

#include <boost/smart_ptr/intrusive_ptr.hpp>

#include <memory>
#include <string>
#include <vector>

namespace Legacy::If {

/// A message held as a localization key with arguments, to be turned into text only when it is shown.
///
/// Copies share the argument items, which are to be treated as immutable once added. One object is for one thread at a
/// time while somebody changes it.
class LEGACY_IF_API LocalizedString
{
public:
    LocalizedString() = default; ///< no key, no arguments: no message
    /// No arguments. A key may stand wherever a message is asked for.
    LocalizedString(std::string const& key) : m_key(key) {}
    LocalizedString(LocalizedString const&) = default;
    LocalizedString& operator=(LocalizedString const& other);
    virtual ~LocalizedString();

    /// Equal keys and, place by place, the very same argument objects: values are not compared, so two messages built
    /// apart with arguments differ while a message and its copy agree.
    bool operator==(LocalizedString const& other) const;

    std::string GetKey() const { return m_key; }
    /// The arguments stay.
    void SetKey(std::string const& key) { m_key = key; }

    /// Appends an argument, to be shown as its `GetValAsString`; a null one is shown as an empty text.
    void AddArgument(boost::intrusive_ptr<ItemBase const> const& argument) { m_arguments.push_back(argument); }
    std::vector<boost::intrusive_ptr<ItemBase const>> const& GetArguments() const noexcept { return m_arguments; }

    bool IsEmpty() const noexcept { return m_key.empty(); } ///< there is no key, whatever the arguments
    bool IsValid() const noexcept { return !m_key.empty(); }

    /// The message in the given language; an empty language is the default one. Empty without a key.
    std::string GetString(std::string const& language) const;

private:
    std::string m_key;
    std::vector<boost::intrusive_ptr<ItemBase const>> m_arguments;
};

/// Schema of a localized message: nothing but a default.
class LEGACY_IF_API LocalizedStringInfo : public Detail::InfoFamily<LocalizedStringInfo, IfType_t::LocalizedString>
{
public:
    /// No message as the default.
    LocalizedStringInfo(unsigned int const& id, std::string const& name, Permission_t const& permission);

    using InfoFamily::DeepCopy;
    [[nodiscard]] LocalizedStringInfo* DeepCopy(unsigned int id, std::string const& name,
                                                Permission_t const& permission) const override;
    [[nodiscard]] ItemBase* CreateItem() const override;

    LocalizedString const& GetDefault() const noexcept { return m_default; }
    void SetDefault(LocalizedString const& message) { m_default = message; }

    /// Always false, whatever the argument, also for an own copy.
    bool IsEqualBounds(boost::intrusive_ptr<InfoBase const> const& other) const override;
    /// Always #IfErrTypeNotAssignable, whatever the argument.
    int MergeBounds(boost::intrusive_ptr<InfoBase const> const& other) override;
    /// From a schema of the same family: the default, if it is another message.
    int AssignValue(boost::intrusive_ptr<InfoBase const> const& source, bool* changed) override;

    void DumpVal(std::ostream& os) const override;
    /// Prints a quote and the default in the default language.
    ///
    /// Contract: no quote follows; whoever takes the text apart goes by the first one alone.
    std::ostream& operator<<(std::ostream& os) const override;

private:
    LocalizedString m_default;
};

/// Value that is a localized message. It lives in memory alone: it has no serial form and cannot be read from text.
/// Copies share the arguments of the message.
class LEGACY_IF_API LocalizedStringItem : public Detail::ItemFamily<LocalizedStringItem, IfType_t::LocalizedString>
{
public:
    explicit LocalizedStringItem(unsigned int id); ///< no message; even so the value does not count as empty

    using ItemFamily::DeepCopy;
    [[nodiscard]] LocalizedStringItem* DeepCopy(unsigned int id) const override;

    LocalizedString const& GetVal() const noexcept { return m_value; }
    void SetVal(LocalizedString const& message) { m_value = message; }

    bool IsEqualValue(boost::intrusive_ptr<ItemBase const> const& other) const override;
    /// From a localized message, if it is another one.
    int AssignArrayValue(boost::intrusive_ptr<ItemBase const> const& source, unsigned int index,
                         bool* changed) override;

    unsigned int GetSerialDataSize() const override; ///< always 0
    /// Always #IfErrTypeNotAssignable; no argument is looked at.
    /// @{
    int Serialize(SerialStruct_t* record) const override;
    int Deserialize(ConstSerialStruct_t const* record) override;
    /// @}

    /// Always passes.
    std::shared_ptr<ResultElem const> Validate(boost::intrusive_ptr<InfoBase const> const& info) override;
    /// Always false: a message cannot be read from text, and `out` is told so.
    bool SetValFromStream(std::istream& in, std::ostream& out,
                          boost::intrusive_ptr<InfoBase const> const& info) override;
    /// Prints the message in the default language.
    std::ostream& operator<<(std::ostream& os) const override;

private:
    LocalizedString m_value;
};

} // namespace Legacy::If
