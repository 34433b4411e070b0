#include <Orlek/Localization.h>

#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <locale>
#include <thread>

namespace Orlek {
namespace {

namespace fs = std::filesystem;
using namespace std::string_literals;

std::string const k_minKey = "TypesSystemNumericValidationMin";
std::string const k_minEnglish = "{1}: the value is below the minimum of {2}.";
std::string const k_minGerman = "{1}: Der Wert liegt unter dem Minimum von {2}.";

std::string Look(std::string const& key, std::string const& language) { return Localization::GetString(key, language); }

TEST(Localization, EveryKeyHasATextWithAllItsPlaceholdersInEachLanguage)
{
    for (std::string const key :
         {"TypesSystemValidateTypeMismatch", "TypesSystemIllegalValidatationError", "TypesSystemNumericValidationMin",
          "TypesSystemNumericValidationMax", "TypesSystemNumericArrayValidationMinSize",
          "TypesSystemNumericArrayValidationMaxSize", "TypesSystemStringArrayValidationMinSize",
          "TypesSystemStringArrayValidationMaxSize", "BoolArrayValidationMinSize", "TypesSystemStringValidationLength",
          "TypesSystemBoolValidationFixedVal", "TypesSystemEnumValidationValue", "TypesSystemCompositeValidationSize",
          "TypesSystemCompositeTypeMismatch"})
    {
        auto const last = key == "TypesSystemValidateTypeMismatch" ? '3' : '2';
        EXPECT_NE(Look(key, "en"), Look(key, "de")) << key;
        for (auto const& text : {Look(key, "en"), Look(key, "de")})
            for (char number = '1'; number <= '4'; ++number)
                EXPECT_EQ(text.find({'{', number, '}'}) != text.npos, number <= last) << text;
    }
}

TEST(Localization, FallsBackFromCountryToLanguageToDefaultToKey)
{
    for (auto const* german : {"de", "de-AT", "de_DE.UTF-8@euro", "de.UTF-8", "de_"})
        EXPECT_EQ(Look(k_minKey, german), k_minGerman) << german;
    for (auto const* other : {"", "en_GB.UTF-8", "xx", "C", "d", "deu", ".UTF-8", "../../de", "_de"})
        EXPECT_EQ(Look(k_minKey, other), k_minEnglish) << other;
    for (auto const& key : {""s, "No such {1}%s"s, k_minKey + "\0x"s, std::string(100'000, 'k')})
        EXPECT_EQ(Look(key, "de"), key);

    Localization::SetDefaultLanguage("de_CH.UTF-8");
    EXPECT_EQ(Look(k_minKey, ""), k_minGerman);
    EXPECT_EQ(Look(k_minKey, "en"), k_minEnglish);
    Localization::SetDefaultLanguage("xx");
    EXPECT_EQ(Look(k_minKey, ""), k_minEnglish);
    EXPECT_EQ(std::locale(), std::locale::classic()); // the global one is left alone
}

TEST(LocalizationHelper, SubstitutesWithoutLosingText)
{
    using Helper = LocalizationHelper;
    EXPECT_EQ((Helper("{2}{4}{2}") % "a" % "b" % "c" % "d").ToString(), "bdb a c");
    EXPECT_EQ((Helper("{{1}}: {2}.") % "a").ToString(), "{a}: {2}.");
    EXPECT_EQ((Helper("{1}.") % "a" % "b" % "").ToString(), "a. b ");
    EXPECT_EQ((Helper("{1}{2}") % "{2}" % "{1}%s").ToString(), "{2}{1}%s"); // arguments are never looked at
    for (std::string const none : {"{1", "{", "{}{0}{x}{-1}{+1}{ 1}{1 }{1,num}{99999999999999999999999}"})
        EXPECT_EQ((Helper(none) % "a").ToString(), none + " a");
}

TEST(Localization, DirectoryOverridesAndAddsLanguagesAndMayHoldAnything)
{
    std::ifstream in(fs::path(ORLEK_LOCALE_DIR) / "de/LC_MESSAGES/legacyif.mo", std::ios::binary);
    std::string german(std::istreambuf_iterator<char>(in), {});
    auto const root = fs::path(testing::TempDir()) / ("orlek-" + std::to_string(getpid()));
    auto const use = [&root](std::string const& language, std::string const& content) {
        fs::create_directories(root / language / "LC_MESSAGES");
        std::ofstream(root / language / "LC_MESSAGES/legacyif.mo", std::ios::binary) << content;
        return Localization::SetCatalogueDirectory(root.string());
    };
    // Cut off anywhere, and with any byte of header or tables changed, a file must neither throw nor be read astray.
    for (std::size_t size = 0; size < german.size(); size += size < 300 ? 1 : 97)
        EXPECT_EQ(use("de", german.substr(0, size)), 0U) << size;
    for (std::size_t at = 0; at < 28 + 16 * 15; ++at)
        for (char const value : {'\0', '\x7F', '\xFF', static_cast<char>(german.at(at) ^ 1)}) {
            use("de", std::string(german).replace(at, 1, 1, value));
            Look(k_minKey, "de");
            EXPECT_EQ(Look(k_minKey, "en"), k_minEnglish);
        }

    // So must one of another kind or revision, whose keys are out of order or twice there, or whose texts are not in
    // UTF-8.
    for (std::size_t const word : {0U, 4U})
        EXPECT_EQ(use("de", std::string(german).replace(word, 4, 4, '\x7F')), 0U);
    EXPECT_EQ(use("de", std::string(german).replace(28 + 24, 8, german, 28 + 16, 8)), 0U);
    std::string damaged = german;
    std::swap_ranges(&damaged[28], &damaged[28 + 8], &damaged[28 + 8]);
    EXPECT_EQ(use("de", damaged), 0U);
    EXPECT_EQ(use("de", std::string(german).replace(german.find("UTF-8"), 5, "UTF-7")), 0U);
    EXPECT_EQ(use("de", std::string(german).replace(german.find("charset="), 8, "CHARSET ")), 0U);

    // A machine of the other byte order may have compiled it.
    german.replace(german.find("Der Wert liegt unter"), 3, "DER");
    std::string swapped = german;
    for (auto word = swapped.begin(); word != swapped.begin() + 28 + 16 * 15; word += 4)
        std::reverse(word, word + 4);
    EXPECT_EQ(use("de", swapped), 1U);
    EXPECT_TRUE(Look(k_minKey, "de").starts_with("{1}: DER Wert"));

    EXPECT_EQ(use("pt_BR", german), 2U);
    for (char const* const there : {"de_DE", "pt-BR.UTF-8"})
        EXPECT_TRUE(Look(k_minKey, there).starts_with("{1}: DER Wert"));
    for (char const* const missing : {"pt", "pt+BR"})
        EXPECT_EQ(Look(k_minKey, missing), k_minEnglish);
    fs::remove_all(root);
    EXPECT_EQ(Localization::SetCatalogueDirectory(root.string()), 0U);
    EXPECT_EQ(Look(k_minKey, "de"), k_minGerman);
}

TEST(Localization, LookUpsRunBesideChanges)
{
    std::jthread const reader([] {
        for (int i = 0; i < 1000; ++i)
            EXPECT_NE(Look(k_minKey, i % 2 == 0 ? "de" : ""), k_minKey);
    });
    for (std::size_t i = 0; i < 20; ++i) {
        EXPECT_EQ(Localization::SetCatalogueDirectory(i % 2 == 0 ? "" : ORLEK_LOCALE_DIR), i % 2 * 2);
        Localization::SetDefaultLanguage(i % 2 == 0 ? "de" : "en");
    }
    EXPECT_EQ(Localization::GetDefaultLanguage(), "en");
}

} // namespace
} // namespace Orlek
