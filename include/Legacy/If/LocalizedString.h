#pragma once

#include <Legacy/If/Export.h>
#include <Legacy/If/ItemBase.h>

#include <boost/smart_ptr/intrusive_ptr.hpp>

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
    explicit LocalizedString(std::string const& key) : m_key(key) {}
    LocalizedString(LocalizedString const&) = default;
    LocalizedString& operator=(LocalizedString const&) = default;
    virtual ~LocalizedString();

    /// Equal keys and, place by place, the very same argument objects: values are not compared, so two messages built
    /// apart with arguments differ while a message and its copy agree.
    bool operator==(LocalizedString const& other) const;

    std::string GetKey() const { return m_key; }
    /// The arguments stay.
    void SetKey(std::string const& key) { m_key = key; }

    /// Appends an argument, to be shown as its `GetValAsString`.
    /// @param argument not null if #GetString is to be called.
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

} // namespace Legacy::If
