#include "KitSupport.h"

#include <concepts>
#include <typeinfo>

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
    std::tuple<std::size_t, char const*, char const*> const refused[] = {
        {1, "fast", "is no value"},    {3, "-1", "whole number from 0 to 255"},
        {3, "1.5", "whole number"},    {3, "256", "whole number from 0"},
        {3, "", "is no value"},        {3, "1 2", "is no value"},
        {4, "2 a b", "is no value"},   {4, "a", "is no value"},
        {5, "perhaps", "is no value"}, {3, "\033[2J", "'?[2J' is no value"},
    };
    for (auto const& [info, text, why] : refused)
        EXPECT_NE(read(info, text).find(why), std::string::npos) << read(info, text);
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

Texts TextsOf(LocalizedString const& message)
{
    Texts texts{message.GetKey()};
    for (auto const& argument : message.GetArguments())
        texts.push_back(argument->GetValAsString());
    return texts;
}

template<typename Info>
InfoPtr AtMost(std::string const& name, int most)
{
    auto const info = Named<Info>(name);
    info->SetMax(static_cast<typename Info::Element>(most));
    return info;
}

TEST(Explain, SaysWhatValidationFound)
{
    ItemPtr const byte(NumericItem<S8Traits>::Create(1, 66));
    auto const info = AtMost<NumericInfo<S8Traits>>("level", 65);
    EXPECT_EQ(TextsOf(Explain(*byte, info)), (Texts{"TypesSystemNumericValidationMax", "level", "65"}));
    EXPECT_EQ(Explain(std::as_const(*byte), info).GetString("de"), "level: Der Wert liegt über dem Maximum von 65.");
    ItemPtr const bytes(NumericArrayItem<U8Traits>::Create(1, {9, 66}));
    EXPECT_EQ(TextsOf(Explain(*bytes, AtMost<NumericArrayInfo<U8Traits>>("levels", 65))).back(), "65");

    EXPECT_EQ(TextsOf(Explain(*byte, nullptr)),
              (Texts{"TypesSystemValidateTypeMismatch", "Unknown", "NULL-Info", "Numeric(S8)"}));
    EXPECT_EQ(TextsOf(Explain(CoordinateItem<U16Traits>(1), nullptr)),
              (Texts{"TypesSystemIllegalValidatationError", "Unknown", "Coordinate(U16)"}));
    EXPECT_EQ(TextsOf(Explain(*byte, AtMost<NumericInfo<S8Traits>>("level", 66))), Texts{""});
    FindingScope const scope;
    static_cast<void>(Explain(*byte, nullptr));
    EXPECT_FALSE(scope.GetMessage().IsValid()); // what it finds is its own
}

/// A value that makes its findings itself.
struct Grumpy : BoolItem
{
    using BoolItem::BoolItem;
    std::shared_ptr<ResultElem const> Validate(boost::intrusive_ptr<InfoBase const> const&) override
    {
        return std::make_shared<ResultElem const>(Orlek::SeverityLevel_t::Error, nullptr, nullptr);
    }
};

TEST(Explain, TakesNoFailureForAPass)
{
    Grumpy grumpy(1);
    EXPECT_EQ(TextsOf(Explain(grumpy, Named<BoolInfo>("mood"))),
              (Texts{"TypesSystemIllegalValidatationError", "mood", "Bool(Undefined)"}));
}

TEST(Explain, GoesIntoCompositesOfAnyDepth)
{
    auto const inner = Named<CompositeInfo>("inner");
    inner->SetInfos({AtMost<NumericInfo<U8Traits>>("low", 9), AtMost<NumericInfo<U8Traits>>("high", 9)});
    auto const outer = Named<CompositeInfo>("outer");
    outer->SetInfos({Named<BoolInfo>("flag"), inner, AtMost<NumericInfo<U8Traits>>("last", 9)});
    ItemPtr const made(outer->CreateItem());
    auto& item = dynamic_cast<CompositeItem&>(*made);
    EXPECT_FALSE(Explain(item, outer).IsValid());

    auto& nested = dynamic_cast<CompositeItem&>(*item.GetItem(1));
    nested.SetItem(1, NumericItem<U8Traits>::Create(1, 10));
    item.SetItem(2, NumericItem<U8Traits>::Create(1, 11));
    EXPECT_EQ(item.Validate(outer), nullptr);
    EXPECT_EQ(TextsOf(Explain(std::as_const(item), outer)), (Texts{"TypesSystemNumericValidationMax", "high", "9"}));
    std::vector<std::pair<std::vector<unsigned int>, std::string>> seen;
    auto const note = [&](MemberPlace place, LocalizedString const& message) {
        seen.push_back({{place.begin(), place.end()}, TextsOf(message)[1]});
        return true;
    };
    ExplainEach(item, outer, note);
    EXPECT_EQ(seen, (decltype(seen){{{1, 1}, "high"}, {{2}, "last"}}));

    seen.clear();
    nested.SetItems({}); // fails as a whole, and nothing in it is told
    ExplainEach(item, outer, note);
    EXPECT_EQ(seen, (decltype(seen){{{1}, "inner"}, {{2}, "last"}}));
    ItemPtr const deep = Deep(ItemPtr(NumericItem<U8Traits>::Create(1, 10)));
    EXPECT_EQ(TextsOf(Explain(*deep, Deep(AtMost<NumericInfo<U8Traits>>("deep", 9))))[1], "deep");
}

/// Tells the class as which an object was given. One visitor for all: each one is instantiated for every class.
struct TypeOf
{
    template<typename Given>
    std::type_info const* operator()(Given&) const
    {
        return &typeid(Given);
    }
};

TEST(Visit, CallsTheCaseOfEachClass)
{
    std::size_t classes = 0;
    AllFamilies::ForEach([&]<typename Info, typename Item>(Family<Info, Item>) {
        ItemPtr const item = Make<Item>(1U);
        EXPECT_EQ(*Visit(*item, TypeOf()), typeid(Item));
        EXPECT_EQ(*Visit(std::as_const(*item), TypeOf()), typeid(Item));
        if constexpr (!std::is_void_v<Info>) {
            InfoPtr const info = Named<Info>("name");
            EXPECT_EQ(*Visit(*info, TypeOf()), typeid(Info));
            EXPECT_EQ(*Visit(std::as_const(*info), TypeOf()), typeid(Info));
        }
        ++classes;
    });
    EXPECT_EQ(classes, 53U);
}

/// A value with any tags and of no class of the library.
struct Liar : If::Test::Tagged<NumericItem<U8Traits>>
{
    Liar(int asType, int asNumericType) : Tagged(1)
    {
        type = static_cast<IfType_t>(asType);
        numericType = static_cast<NumericType_t>(asNumericType);
    }
};

TEST(Visit, TrustsNoTag)
{
    auto const seen = [](Liar const& liar) {
        return Visit(
            liar, [](NumericItem<U8Traits> const&) { return 1; }, [](BoolItem const&) { return 2; },
            [](ItemBase const&) { return 3; });
    };
    EXPECT_EQ(seen({2, 1}), 1); // derived from the class that the tags name
    for (int const type : {0, 1, 3, 0x80, 0x8a, 0xff, 256, -1, 1 << 30})
        for (int const numericType : {0, 1, 10, 11, -1, 1 << 30})
            EXPECT_EQ(seen({type, numericType}), 3) << type << ' ' << numericType;
    EXPECT_EQ(seen({2, 2}), 3);
}

TEST(Visit, NeedsACaseForEachClass)
{
    auto const one = [](BoolItem const&) { return 1; };
    auto const numbers = []<typename T>(NumericItem<T> const&) { return 1; };
    auto const standard = [](ItemBase const&) { return 2; };
    auto const each = []<typename T>(T const&) requires(std::derived_from<T, ItemBase> && !std::is_same_v<T, ItemBase>)
    {
        return 3;
    };
    auto const foreign = [](Foreign<ItemBase const> const& item) { return item.object.GetId() == 1 ? 4 : 5; };
    static_assert(VisitorOf<ItemBase const, decltype(one), decltype(standard)>);
    static_assert(!VisitorOf<ItemBase const, decltype(one), decltype(numbers), decltype(foreign)>);
    static_assert(!VisitorOf<InfoBase const, decltype(one), decltype(standard)>);
    static_assert(VisitorOf<ItemBase const, decltype(each), decltype(foreign)>);
    static_assert(!VisitorOf<ItemBase const, decltype(each)>);
    EXPECT_EQ(Visit(Liar(9, 9), each, foreign), 4);
    EXPECT_EQ(Visit(Liar(2, 1), each, foreign), 3);
    EXPECT_EQ(Visit(Liar(9, 9), each, foreign, standard), 2); // a default is for foreign ones too
}

} // namespace
} // namespace Legacy::IfKit::Test
