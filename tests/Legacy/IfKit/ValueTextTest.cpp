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
