#pragma once

#include <Orlek/Export.h>
#include <Orlek/LocalizationHelper.h>

#include <cstddef>
#include <string>

namespace Orlek {

/// The texts behind message keys, in the languages that there are catalogues for.
///
/// English and German are built into the library, so that a look-up needs no file, environment or locale; neither is
/// the global locale ever touched. A directory of catalogues may add languages and override texts.
///
/// A language is named as locales are, such as "de", "de_AT", "pt-BR" or "de_DE.UTF-8". What stands behind a "." or "@"
/// is ignored, and a language that is not there under its full name is tried without its country. All texts are UTF-8.
///
/// All members may be called by any thread at any time. Look-ups take no lock and wait for nobody. Each different
/// default language and each different set of catalogues that was ever set is kept until the process ends.
class ORLEK_API Localization
{
public:
    Localization() = delete;

    /// The message for `key`, ready to be fed its arguments.
    ///
    /// An empty or unknown language, or one that lacks the key, gives the text of the default language, and failing
    /// that the English one. A key without any text is its own message.
    static LocalizationHelper GetString(std::string const& key, std::string const& language);

    /// The language that an empty `language` stands for; English ("en") at first.
    static std::string GetDefaultLanguage();
    static void SetDefaultLanguage(std::string const& language);

    /// Reads the catalogues `<directory>/<language>/LC_MESSAGES/legacyif.mo`, for as many languages as there are, in
    /// place of those of an earlier directory. Their texts come before the built-in ones. The files are read here and
    /// not again. Files that are damaged, not readable or not in UTF-8 are passed over; an empty or missing directory
    /// leaves the built-in texts alone.
    ///
    /// \return the number of catalogues that were read
    static std::size_t SetCatalogueDirectory(std::string const& directory);
};

} // namespace Orlek
