#include <Orlek/Localization.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <array>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <locale>
#include <thread>
#include <vector>

namespace Orlek {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;

std::string const k_minKey = "TypesSystemNumericValidationMin";
std::string const k_minEnglish = "{1}: the value is below the minimum of {2}.";
std::string const k_minGerman = "{1}: Der Wert liegt unter dem Minimum von {2}.";

std::string Look(std::string const& key, std::string const& language) { return Localization::GetString(key, language); }

TEST(Localization, EveryKeyHasATextWithAllItsPlaceholdersInEachLanguage)
{
    struct
    {
        char const* key;
        int arguments;
    } const cases[] = {{"TypesSystemValidateTypeMismatch", 3},
                       {"TypesSystemIllegalValidatationError", 2},
                       {"TypesSystemNumericValidationMin", 2},
                       {"TypesSystemNumericValidationMax", 2},
                       {"TypesSystemNumericArrayValidationMinSize", 2},
                       {"TypesSystemNumericArrayValidationMaxSize", 2},
                       {"TypesSystemStringArrayValidationMinSize", 2},
                       {"TypesSystemStringArrayValidationMaxSize", 2},
                       {"BoolArrayValidationMinSize", 2},
                       {"TypesSystemStringValidationLength", 2},
                       {"TypesSystemBoolValidationFixedVal", 2},
                       {"TypesSystemEnumValidationValue", 2},
                       {"TypesSystemCompositeValidationSize", 2},
                       {"TypesSystemCompositeTypeMismatch", 2}};
    for (auto const& c : cases) {
        EXPECT_NE(Look(c.key, "en"), Look(c.key, "de")) << c.key;
        for (std::string const language : {"en", "de"}) {
            auto const text = Look(c.key, language);
            EXPECT_NE(text, c.key) << language;
            for (int i = 1; i <= 4; ++i) {
                auto const placeholder = '{' + std::to_string(i) + '}';
                EXPECT_EQ(text.find(placeholder) != std::string::npos, i <= c.arguments) << text;
            }
        }
    }
}

TEST(Localization, FallsBackFromCountryToLanguageToDefaultToKey)
{
    struct
    {
        char const* language;
        bool german;
    } const cases[] = {{"", false},
                       {"en", false},
                       {"en_GB.UTF-8", false},
                       {"de", true},
                       {"de_DE", true},
                       {"de-AT", true},
                       {"de_DE.UTF-8@euro", true},
                       {"de.UTF-8", true},
                       {"de_", true},
                       {"xx", false},
                       {"C", false},
                       {"d", false},
                       {"deu", false},
                       {".UTF-8", false},
                       {"../../de", false},
                       {"_de", false}};
    for (auto const& c : cases)
        EXPECT_EQ(Look(k_minKey, c.language), c.german ? k_minGerman : k_minEnglish) << c.language;

    for (std::string const& key : {std::string(), std::string("No such key"), k_minKey + '\0', k_minKey + '\0' + 'x',
                                   std::string("{1}%s"), std::string(100'000, 'k')})
    {
        EXPECT_EQ(Look(key, ""), key);
        EXPECT_EQ(Look(key, "de"), key);
    }
}

TEST(Localization, DefaultLanguageServesWhatIsEmptyOrUnknown)
{
    EXPECT_EQ(Localization::GetDefaultLanguage(), "en");
    Localization::SetDefaultLanguage("de_CH.UTF-8");
    EXPECT_EQ(Localization::GetDefaultLanguage(), "de_CH.UTF-8");
    EXPECT_EQ(Look(k_minKey, ""), k_minGerman);
    EXPECT_EQ(Look(k_minKey, "xx"), k_minGerman);
    EXPECT_EQ(Look(k_minKey, "en"), k_minEnglish);
    Localization::SetDefaultLanguage("xx");
    EXPECT_EQ(Look(k_minKey, ""), k_minEnglish);
    Localization::SetDefaultLanguage("en");
}

TEST(Localization, LeavesTheGlobalLocaleAlone)
{
    Look(k_minKey, "de");
    EXPECT_EQ(std::locale(), std::locale::classic());
}

TEST(LocalizationHelper, SubstitutesWithoutLosingText)
{
    struct
    {
        char const* message;
        std::vector<std::string> arguments;
        char const* result;
    } const cases[] = {
        {"{1}: {2}", {"a", "b"}, "a: b"},
        {"{2}{1}{2}", {"a", "b"}, "bab"},
        {"{10}{1}", {"a", "2", "3", "4", "5", "6", "7", "8", "9", "j"}, "ja 2 3 4 5 6 7 8 9"},
        {"", {}, ""},
        // Too few, too many.
        {"{1}: {2}.", {}, "{1}: {2}."},
        {"{1}: {2}.", {"a"}, "a: {2}."},
        {"{1}.", {"a", "b", ""}, "a. b "},
        {"{2}.", {"a", "b"}, "b. a"},
        // What is no placeholder.
        {"{1", {"a"}, "{1 a"},
        {"{", {}, "{"},
        {"{}{0}{x}{-1}{+1}{ 1}{1 }{1,num}", {"a"}, "{}{0}{x}{-1}{+1}{ 1}{1 }{1,num} a"},
        {"{{1}}", {"a"}, "{a}"},
        {"{99999999999999999999999}{18446744073709551615}", {"a"}, "{99999999999999999999999}{18446744073709551615} a"},
        // Arguments are never looked at.
        {"{1}{2}", {"{2}", "{1}%s"}, "{2}{1}%s"},
    };
    for (auto const& c : cases) {
        LocalizationHelper helper(c.message);
        for (auto const& argument : c.arguments)
            EXPECT_EQ(&(helper % argument), &helper);
        std::string const text = helper;
        EXPECT_EQ(text, c.result) << c.message;
        EXPECT_EQ(helper.ToString(), c.result) << c.message;
    }
}

/// A catalogue directory of one test, gone with it.
class CatalogueDirectory : public testing::Test
{
protected:
    void SetUp() override
    {
        std::ifstream in(fs::path(ORLEK_LOCALE_DIR) / "de/LC_MESSAGES/legacyif.mo", std::ios::binary);
        m_german.assign(std::istreambuf_iterator<char>(in), {});
        ASSERT_GT(m_german.size(), 28U);
        m_root = fs::path(testing::TempDir()) / ("orlek-" + std::to_string(getpid()));
    }

    void TearDown() override
    {
        Localization::SetCatalogueDirectory("");
        fs::remove_all(m_root);
    }

    std::size_t Use(std::string const& language, std::string const& content)
    {
        auto const directory = m_root / language / "LC_MESSAGES";
        fs::create_directories(directory);
        std::ofstream(directory / "legacyif.mo", std::ios::binary | std::ios::trunc) << content;
        return Localization::SetCatalogueDirectory(m_root.string());
    }

    std::string m_german;
    fs::path m_root;
};

TEST_F(CatalogueDirectory, OverridesAndAddsLanguages)
{
    auto changed = m_german;
    changed.replace(changed.find("Der Wert liegt unter"), 3, "DER");
    EXPECT_EQ(Use("de", changed), 1U);
    EXPECT_THAT(Look(k_minKey, "de_DE"), HasSubstr("DER Wert"));
    EXPECT_EQ(Use("pt_BR", m_german), 2U);
    EXPECT_EQ(Look(k_minKey, "pt-BR.UTF-8"), k_minGerman);
    EXPECT_EQ(Look(k_minKey, "pt"), k_minEnglish);
    EXPECT_EQ(Localization::SetCatalogueDirectory((m_root / "missing").string()), 0U);
    EXPECT_EQ(Look(k_minKey, "de"), k_minGerman);
    EXPECT_EQ(Look(k_minKey, "pt_BR"), k_minEnglish);
}

TEST_F(CatalogueDirectory, DamagedFilesAreHarmless)
{
    // Every truncation, and every header and table byte at its ends and flipped, must neither throw nor read astray.
    for (std::size_t size = 0; size < m_german.size(); size += size < 300 ? 1 : 97) {
        EXPECT_EQ(Use("de", m_german.substr(0, size)), 0U) << size;
        EXPECT_EQ(Look(k_minKey, "de"), k_minGerman);
    }
    for (std::size_t at = 0; at < 28 + 16 * 15; ++at) {
        for (char const value : {'\0', '\x7F', '\xFF', static_cast<char>(m_german[at] ^ 1)}) {
            auto damaged = m_german;
            damaged[at] = value;
            Use("de", damaged);
            Look(k_minKey, "de");
            EXPECT_EQ(Look(k_minKey, "en"), k_minEnglish);
        }
    }
    EXPECT_EQ(Use("de", m_german), 1U);
}

TEST_F(CatalogueDirectory, LookUpsRunBesideChanges)
{
    Use("de", m_german);
    std::array<std::thread, 3> readers;
    for (auto& reader : readers)
        reader = std::thread([] {
            for (int i = 0; i < 500; ++i) {
                EXPECT_EQ(Look(k_minKey, "de"), k_minGerman);
                EXPECT_NE(Look(k_minKey, ""), k_minKey);
            }
        });
    for (int i = 0; i < 20; ++i) {
        Localization::SetCatalogueDirectory(i % 2 == 0 ? "" : m_root.string());
        Localization::SetDefaultLanguage(i % 2 == 0 ? "de" : "en");
    }
    for (auto& reader : readers)
        reader.join();
}

} // namespace
} // namespace Orlek
