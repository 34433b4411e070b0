#include "KitSupport.h"

namespace Legacy::IfKit::Test {
namespace {

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

TEST(Explain, GoesIntoComposites)
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
}

TEST(Explain, StandsAnyDepth)
{
    InfoPtr info = AtMost<NumericInfo<U8Traits>>("deep", 9);
    ItemPtr item(NumericItem<U8Traits>::Create(1, 10));
    for (int depth = 0; depth < 100'000; ++depth) {
        auto const around = Named<CompositeInfo>("around");
        around->AddInfo(info);
        info = around;
        auto const whole = Make<CompositeItem>(1U);
        whole->AddItem(item);
        item = whole;
    }
    EXPECT_EQ(TextsOf(Explain(*item, info))[1], "deep");
}

} // namespace
} // namespace Legacy::IfKit::Test
