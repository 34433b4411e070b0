#include "TestSupport.h"

#include <Legacy/If/InfoItemHolderDefs.h>
#include <Legacy/If/String.h>
#include <Legacy/If/StringArray.h>
#include <Orlek/LogicError.h>

#include <memory>

namespace Legacy::If::Test {
namespace {

boost::intrusive_ptr<InfoHolder> HolderOf(boost::intrusive_ptr<InfoBase> const& info) { return Make<InfoHolder>(info); }
boost::intrusive_ptr<ItemHolder> HolderOf(boost::intrusive_ptr<ItemBase> const& item) { return Make<ItemHolder>(item); }

TEST(InfoItemHolder, CannotDoWithoutASchema)
{
    for (auto const& none : {boost::intrusive_ptr<InfoHolder>(), Make<InfoHolder>(nullptr)})
        try {
            auto const made = Make<InfoItemHolder>(none);
            ADD_FAILURE() << "no exception";
        } catch (Orlek::LogicError const& error) {
            EXPECT_EQ(error.GetCode(), -32);
            EXPECT_EQ(error.GetMessage(), "Null InfoHolder Pointer");
            EXPECT_EQ(error.GetLocation().GetFile(), R"(..\..\include\Legacy/If/InfoItemHolderDefs)");
            EXPECT_EQ(error.GetLocation().GetFunction(), "Legacy::If::InfoItemHolder::InfoItemHolder");
            EXPECT_EQ(error.GetLocation().GetLine(), 273);
        }
}

TEST(InfoItemHolder, TakesSchemasOfTheSameParameter)
{
    auto const first = HolderOf(MakeInfo<StringInfo>());
    auto const pair = Make<InfoItemHolder>(first);
    EXPECT_EQ(pair->GetInfo(), first);
    EXPECT_EQ(pair->GetItem(), nullptr);
    EXPECT_EQ(first->GetRefCount(), 2);

    EXPECT_FALSE(pair->SetInfo(nullptr));
    EXPECT_FALSE(pair->SetInfo(Make<InfoHolder>(nullptr)));
    EXPECT_FALSE(pair->SetInfo(HolderOf(Make<StringInfo>(8U, "speed", Permission_t{}))));
    EXPECT_FALSE(pair->SetInfo(HolderOf(Make<StringInfo>(7U, "Speed", Permission_t{}))));
    EXPECT_FALSE(pair->SetInfo(HolderOf(MakeInfo<StringArrayInfo>())));
    EXPECT_EQ(pair->GetInfo(), first);

    auto const wider = Make<StringInfo>(7U, "speed", Permission_t{9});
    wider->SetMaxLength(1000);
    EXPECT_TRUE(pair->SetInfo(HolderOf(wider)));
    EXPECT_EQ(pair->GetInfo()->GetInfo(), wider);
    EXPECT_EQ(first->GetRefCount(), 1);
}

TEST(InfoItemHolder, TakesValuesOfItsTypeWithoutValidation)
{
    auto const info = MakeInfo<StringInfo>();
    info->SetMaxLength(1);
    auto const pair = Make<InfoItemHolder>(HolderOf(info));
    auto const tooLong = HolderOf(Hold(StringItem::Create(7, "long")));
    EXPECT_TRUE(pair->SetItem(tooLong));
    EXPECT_FALSE(pair->SetItem(nullptr));
    EXPECT_FALSE(pair->SetItem(Make<ItemHolder>(nullptr)));
    EXPECT_FALSE(pair->SetItem(HolderOf(Hold(StringItem::Create(8, "x")))));
    EXPECT_FALSE(pair->SetItem(HolderOf(Hold(StringArrayItem::Create(7, {"x"})))));
    EXPECT_EQ(pair->GetItem(), tooLong);
    EXPECT_TRUE(pair->SetItem(HolderOf(Hold(StringItem::Create(7, "x")))));
    EXPECT_EQ(tooLong->GetRefCount(), 1);
}

TEST(Holder, CopiesWhatItHolds)
{
    auto const info = HolderOf(MakeInfo<StringInfo>());
    auto const infoCopy = Hold(info->DeepCopy());
    EXPECT_NE(infoCopy->GetInfo(), info->GetInfo());
    EXPECT_EQ(infoCopy->GetInfo()->GetName(), "speed");
    EXPECT_EQ(infoCopy->GetInfo()->GetRefCount(), 1);
    EXPECT_EQ(infoCopy->GetRefCount(), 1);
    EXPECT_EQ(Make<InfoHolder>(*info)->GetInfo(), info->GetInfo());

    auto const item = HolderOf(Hold(StringItem::Create(7, "x")));
    auto const itemCopy = Hold(item->DeepCopy());
    EXPECT_NE(itemCopy->GetItem(), item->GetItem());
    EXPECT_TRUE(itemCopy->GetItem()->IsEqualValue(item->GetItem()));

    EXPECT_EQ(Hold(Make<InfoHolder>(nullptr)->DeepCopy())->GetInfo(), nullptr);
    EXPECT_EQ(Hold(Make<ItemHolder>(nullptr)->DeepCopy())->GetItem(), nullptr);
}

TEST(Holder, AnswersForApplicationsThatAddNothing)
{
    auto const info = HolderOf(MakeInfo<StringInfo>());
    EXPECT_EQ(info->GetDisplayName(), "speed");
    EXPECT_EQ(info->GetDescription() + info->GetUnit(), "");
    EXPECT_EQ(HolderOf(Hold(StringItem::Create(7, "x")))->GetDisplayText(), "x");
    EXPECT_EQ(Make<InfoHolder>(nullptr)->GetDisplayName() + Make<ItemHolder>(nullptr)->GetDisplayText(), "");
}

} // namespace
} // namespace Legacy::If::Test
