#include "KitSupport.h"

#include <random>

namespace Legacy::IfKit::Test {
namespace {

TEST(ValueText, NamesWhatANumberHides)
{
    auto const mode = Named<EnumInfo>("mode");
    mode->SetTable({{"off", 0, false}, {"a\nb", 1, false}});
    auto const list = Named<CompositeInfo>("list");
    auto const inner = Named<CompositeInfo>("inner");
    inner->SetInfos({mode, Named<NumericInfo<U8Traits>>("level")});
    list->SetInfos({inner, mode, Named<BoolInfo>("flag")});
    auto const orientation = Make<OrientationItem>(1U);
    orientation->Set({1.5F, 2, 3});
    ItemPtr const element(EnumItem::Create(1, 1));
    ItemPtr const extended(ExtendedItem::Create(1, {"a", "b"}));
    EXPECT_EQ(ValueText(*element), "1");
    EXPECT_EQ(ValueText(*element, mode.get()), "a?b");
    EXPECT_EQ(ValueText(*ItemPtr(EnumItem::Create(1, 2)), mode.get()), "2");
    EXPECT_EQ(ValueText(*ItemPtr(list->CreateItem()), list.get()), "((off, 0), off, False)");
    EXPECT_EQ(ValueText(*ItemPtr(list->CreateItem()), mode.get()), "((0, 0), 0, False)"); // another's schema
    EXPECT_EQ(ValueText(*orientation), "(1.5 2 3)");
    EXPECT_EQ(ValueText(*extended), "(a, b)");
    EXPECT_EQ(ValueText(*ItemPtr(NumericSparseItem<U8Traits>::Create(1, 65))), "65");
    auto const collection = Make<CollectionItem>(1U);
    collection->SetItems({extended, orientation});
    EXPECT_EQ(ValueText(*collection), "((a, b), (1.5 2 3))");

    auto const localized = Make<EnumInfo>(1U, "mode", Permission_t{}, true);
    localized->SetTable({{"TypesSystemNumericValidationMax", 1, false}});
    EXPECT_NE(ValueText(*element, localized.get(), "de"), ValueText(*element, localized.get(), "en"));

    struct Speed : InfoHolder
    {
        using InfoHolder::InfoHolder;
        std::string GetUnit() const override { return "km\t/h"; }
    };
    ItemPtr const speed(NumericItem<U8Traits>::Create(1, 50));
    EXPECT_EQ(ValueText(Speed(Named<NumericInfo<U8Traits>>("speed")), *speed), "50 km?/h");
}

TEST(ValueText, IsReadAsPeopleWriteIt)
{
    auto const mode = Named<EnumInfo>("mode");
    mode->SetTable({{"off", 0, false}, {"auto", 2, false}});
    boost::intrusive_ptr<InfoBase> const infos[] = {
        Named<StringInfo>("text"),       mode,
        Named<EndpointInfo>("peer"),     Named<NumericInfo<U8Traits>>("number"),
        Named<StringArrayInfo>("texts"), Named<BoolInfo>("truth"),
    };
    auto const read = [&](std::size_t info, std::string const& text) {
        std::string fault;
        auto const item = ParseValueText(*infos[info], text, fault);
        EXPECT_EQ(item == nullptr, !fault.empty());
        return item ? ValueText(*item, infos[info].get()) : "refused: " + fault;
    };
    EXPECT_EQ(read(0, "two words"), "two words");
    EXPECT_EQ(read(1, "auto"), "auto");
    EXPECT_EQ(read(1, "2"), "auto");
    EXPECT_EQ(read(2, "host:80"), "host:80");
    EXPECT_EQ(read(3, "255"), "255");
    EXPECT_EQ(read(4, R"(["a", "b c"])"), "(a, b c)");
    struct
    {
        std::size_t info;
        char const* text;
        char const* why;
    } const refused[] = {
        {1, "fast", "is no value"},    {3, "-1", "whole number from 0 to 255"},
        {3, "1.5", "whole number"},    {3, "256", "whole number from 0"},
        {3, "", "is no value"},        {3, "1 2", "is no value"},
        {4, "2 a b", "is no value"},   {4, "a", "is no value"},
        {5, "perhaps", "is no value"}, {3, "\033[2J", "'?[2J' is no value"},
    };
    for (auto const& row : refused)
        EXPECT_NE(read(row.info, row.text).find(row.why), std::string::npos) << read(row.info, row.text);
}

TEST(ValueText, IsPrintableWhateverTheBytes)
{
    EXPECT_EQ(Printable("Grüße, 你好 \U0001F600"), "Grüße, 你好 \U0001F600");
    EXPECT_EQ(Printable("a\033[2Jb\x7f\r\n"), "a?[2Jb???");
    EXPECT_EQ(Printable("\u0085\u009b\u061c\u200e\u200f\u202a\u202e\u2066\u2069\u2028\u2029"), "???????????");
    // Not UTF-8: a lone C1 byte, a cut character, a surrogate, an overlong escape, a code beyond the last.
    EXPECT_EQ(Printable("\x9b|\xe2\x82|\xed\xa0\x80|\xc0\x9b|\xf4\x90\x80\x80|\xff"), "?|??|???|??|????|?");
    std::mt19937 random(3); // NOLINT: the same in every run
    for (int round = 0; round < 2000; ++round) {
        std::string bytes(random() % 40, '\0');
        for (char& byte : bytes)
            byte = static_cast<char>(random());
        std::string const text = Printable(bytes);
        EXPECT_EQ(Printable(text), text);
        for (std::size_t i = 0; i < text.size(); ++i) {
            auto const byte = static_cast<unsigned char>(text[i]);
            EXPECT_TRUE(byte >= 0x20 && byte != 0x7f);
            EXPECT_FALSE(byte == 0xc2 && static_cast<unsigned char>(text[i + 1]) < 0xa0);
        }
    }
}

} // namespace
} // namespace Legacy::IfKit::Test
