#include "TestSupport.h"

#include <Legacy/If/InfoItemHolderDefs.h>
#include <Legacy/If/String.h>
#include <Legacy/If/StringArray.h>
#include <Orlek/LogicError.h>

namespace Legacy::If::Test {
namespace {

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
    auto const first = Make<InfoHolder>(MakeInfo<StringInfo>());
    auto const pair = Make<InfoItemHolder>(first);
    EXPECT_FALSE(pair->SetInfo(nullptr));
    for (InfoBase* const other :
         std::initializer_list<InfoBase*>{nullptr, new StringInfo(8, "speed", {}), new StringInfo(7, "Speed", {}),
                                          new StringArrayInfo(7, "speed", {})})
        EXPECT_FALSE(pair->SetInfo(Make<InfoHolder>(other)));
    EXPECT_EQ(pair->GetInfo(), first);
    auto const narrow = Make<StringInfo>(7U, "speed", Permission_t{9});
    narrow->SetMaxLength(1);
    EXPECT_TRUE(pair->SetInfo(Make<InfoHolder>(narrow)));
    EXPECT_EQ(pair->GetInfo()->GetInfo(), narrow);

    auto const tooLong = Make<ItemHolder>(StringItem::Create(7, "long"));
    EXPECT_TRUE(pair->SetItem(tooLong));
    EXPECT_FALSE(pair->SetItem(nullptr));
    for (ItemBase* const other :
         std::initializer_list<ItemBase*>{nullptr, StringItem::Create(8, "x"), StringArrayItem::Create(7, {"x"})})
        EXPECT_FALSE(pair->SetItem(Make<ItemHolder>(other)));
    EXPECT_EQ(pair->GetItem(), tooLong);
}

TEST(Holder, CopiesWhatItHoldsAndAnswersForApplicationsThatAddNothing)
{
    auto const info = Make<InfoHolder>(MakeInfo<StringInfo>());
    auto const item = Make<ItemHolder>(StringItem::Create(7, "x"));
    EXPECT_EQ(Make<InfoHolder>(*info)->GetInfo(), info->GetInfo());
    EXPECT_NE(Hold(info->DeepCopy())->GetInfo(), info->GetInfo());
    EXPECT_NE(Hold(item->DeepCopy())->GetItem(), item->GetItem());
    EXPECT_EQ(info->GetDisplayName() + info->GetUnit() + item->GetDisplayText(), "speedx");
    EXPECT_EQ(Hold(Make<InfoHolder>(nullptr)->DeepCopy())->GetDisplayName(), "");
    EXPECT_EQ(Hold(Make<ItemHolder>(nullptr)->DeepCopy())->GetDisplayText(), "");
}

} // namespace
} // namespace Legacy::If::Test
