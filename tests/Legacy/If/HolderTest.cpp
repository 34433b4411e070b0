#include "TestSupport.h"

#include <Legacy/If/InfoItemHolderDefs.h>
#include <Legacy/If/String.h>
#include <Legacy/If/StringArray.h>
#include <Orlek/LogicError.h>

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

TEST(InfoItemHolder, TakesWhatIsOfTheSameParameterWithoutValidation)
{
    auto const first = HolderOf(MakeInfo<StringInfo>());
    auto const pair = Make<InfoItemHolder>(first);
    for (auto const& other :
         {InfoPtr(), InfoPtr(Make<StringInfo>(8U, "speed", Permission_t{})),
          InfoPtr(Make<StringInfo>(7U, "Speed", Permission_t{})), InfoPtr(MakeInfo<StringArrayInfo>())})
        EXPECT_FALSE(pair->SetInfo(HolderOf(boost::const_pointer_cast<InfoBase>(other))));
    EXPECT_FALSE(pair->SetInfo(nullptr));
    EXPECT_EQ(pair->GetInfo(), first);
    auto const narrow = Make<StringInfo>(7U, "speed", Permission_t{9});
    narrow->SetMaxLength(1);
    EXPECT_TRUE(pair->SetInfo(HolderOf(narrow)));
    EXPECT_EQ(pair->GetInfo()->GetInfo(), narrow);

    auto const tooLong = HolderOf(Hold(StringItem::Create(7, "long")));
    EXPECT_TRUE(pair->SetItem(tooLong));
    EXPECT_FALSE(pair->SetItem(nullptr));
    EXPECT_FALSE(pair->SetItem(Make<ItemHolder>(nullptr)));
    EXPECT_FALSE(pair->SetItem(HolderOf(Hold(StringItem::Create(8, "x")))));
    EXPECT_FALSE(pair->SetItem(HolderOf(Hold(StringArrayItem::Create(7, {"x"})))));
    EXPECT_EQ(pair->GetItem(), tooLong);
}

TEST(Holder, CopiesWhatItHoldsAndAnswersForApplicationsThatAddNothing)
{
    auto const info = HolderOf(MakeInfo<StringInfo>());
    auto const item = HolderOf(Hold(StringItem::Create(7, "x")));
    auto const infoCopy = Hold(info->DeepCopy());
    EXPECT_NE(infoCopy->GetInfo(), info->GetInfo());
    EXPECT_EQ(infoCopy->GetInfo()->GetRefCount(), 1);
    EXPECT_NE(Hold(item->DeepCopy())->GetItem(), item->GetItem());
    EXPECT_EQ(Make<InfoHolder>(*info)->GetInfo(), info->GetInfo());
    EXPECT_EQ(infoCopy->GetDisplayName() + infoCopy->GetUnit(), "speed");
    EXPECT_EQ(Hold(item->DeepCopy())->GetDisplayText(), "x");

    auto const noInfo = Hold(Make<InfoHolder>(nullptr)->DeepCopy());
    auto const noItem = Hold(Make<ItemHolder>(nullptr)->DeepCopy());
    EXPECT_EQ(noInfo->GetDisplayName() + noItem->GetDisplayText(), "");
}

} // namespace
} // namespace Legacy::If::Test
