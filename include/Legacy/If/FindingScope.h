#pragma once

#include <Legacy/If/Export.h>
#include <Legacy/If/LocalizedString.h>

#include <cstddef>

namespace Legacy::If {

namespace Detail {
struct FindingAccess;
}

/// Listens to the findings that are made on this thread while it lives: a finding carries no message of its own, and
/// here it can be had.
///
///     FindingScope const scope;
///     if (item->Validate(info))
///         std::cerr << scope.GetMessage().GetString("de") << '\n';
///
/// Scopes nest: the innermost one hears a finding, those around it do not, so that what a function validates for itself
/// stays its own. They end in the reverse order, on the thread that made them. Where no scope lives, the message of a
/// finding is not built at all.
class LEGACY_IF_API FindingScope
{
public:
    /// How messages tell the bounds of 8-bit numbers.
    enum class Bytes_t
    {
        AsCharacters, ///< as the character of that code, as in dumps
        AsNumbers,    ///< as a number, for people
    };

    explicit FindingScope(Bytes_t bytes = Bytes_t::AsCharacters) noexcept;
    FindingScope(FindingScope const&) = delete;
    FindingScope& operator=(FindingScope const&) = delete;
    ~FindingScope();

    /// The message of the last finding that was heard; one without a key if there was none. All its arguments are
    /// texts: the name of the schema, "Unknown" without one, and then what the key asks for.
    LocalizedString const& GetMessage() const noexcept { return m_message; }

    /// A scope lives in a block.
    static void* operator new(std::size_t) = delete;

private:
    friend struct Detail::FindingAccess;

    FindingScope* m_outer;
    Bytes_t m_bytes;
    LocalizedString m_message;
};

} // namespace Legacy::If
