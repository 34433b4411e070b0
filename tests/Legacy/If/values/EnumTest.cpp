#include "../TestSupport.h"

#include <Legacy/If/Enum.h>

namespace Legacy::If::Test {
namespace {

using Elem = ElemType<int>;

boost::intrusive_ptr<EnumInfo> Switch()
{
    auto info = MakeInfo<EnumInfo>(true);
    for (Elem const& elem : {Elem{"off", 0}, Elem{"auto", 1, true}, Elem{"on", 2}})
        EXPECT_EQ(info->AddElem(elem), 0);
    return info;
}

TEST(EnumInfo, FindsItsElements)
{
    auto const info = Switch();
    for (Elem const& taken : {Elem{"new", 2}, Elem{"on", 9}})
        EXPECT_EQ(info->AddElem(taken), IfErrAlreadyExists);
    EXPECT_EQ(info->AddElem({"On", 9}), 0); // names compare byte for byte
    Elem elem;
    std::string name;
    int value = 0;
    EXPECT_EQ(info->GetElem(1, elem) + info->GetElemName(2, name) + info->GetElemVal("on", value), 0);
    for (int const code : {info->GetElem(3, elem), info->GetElemName(3, name), info->GetElemVal("none", value),
                           info->DisableElem(3), info->EnableElem(3), info->RemoveElem(3)})
        EXPECT_EQ(code, IfErrNotFound);
    EXPECT_EQ(elem, (Elem{"auto", 1, true}));
    EXPECT_EQ(std::pair(name, value), std::pair(std::string("on"), 2));
    EXPECT_TRUE(info->IsPresent(1) && !info->IsEnabled(1) && !info->IsEnabled(3));
    EXPECT_TRUE(info->EnableElem(1) == 0 && info->IsEnabled(1));
    EXPECT_EQ(info->RemoveElem(1), 0);
    EXPECT_EQ(Printed(*info), "off=0, on=2, On=9; default=0");
}

TEST(EnumInfo, KeepsADefaultAsFarAsTold)
{
    auto const info = MakeInfo<EnumInfo>(false);
    EXPECT_EQ(info->SetDefault(7), 0); // anything goes without elements
    info->AddElem({"one", 1});
    EXPECT_EQ(info->GetDefault(), 7);
    EXPECT_EQ(info->SetDefault(8), IfErrNotInSet);
    EXPECT_EQ(info->SetTable({{"a", 1}, {"b", 2}}), 0);
    EXPECT_EQ(info->GetDefault(), 1);
    info->DisableElem(2);
    EXPECT_EQ(info->SetDefault(2), 0);
    EXPECT_EQ(info->RemoveElem(2), 0);
    EXPECT_EQ(Validated(*Hold(info->CreateItem()), info), (Texts{"TypesSystemEnumValidationValue", "speed", "2"}));
    EXPECT_EQ(info->SetTable({}), 0);
    EXPECT_EQ(info->GetDefault(), 2);
}

TEST(EnumInfo, AssignsAllButWhetherItIsLocalized)
{
    auto const info = Switch();
    EXPECT_TRUE(Hold(info->DeepCopy(9))->IsLocalized());
    auto const target = MakeInfo<EnumInfo>(false);
    for (auto const change : {+[](EnumInfo& i) { i.EnableElem(1); }, +[](EnumInfo& i) { i.SetDefault(2); },
                              +[](EnumInfo& i) { i.GetTable()[0].name = "zero"; }})
    {
        change(*info);
        EXPECT_EQ(Assign(*target, info), (Outcome{0, 1}));
        EXPECT_EQ(Assign(*target, info), (Outcome{0, 0}));
    }
    EXPECT_FALSE(target->IsLocalized()); // stays
}

TEST(Enum, HasItsFormsAndRefusesInItsCheckedSetterOnly)
{
    auto const info = Switch();
    info->SetDefault(2);
    EXPECT_EQ(Dumped(*info) + Printed(*info), "id: 7\npermission: 4660\nname: speed\ntype: Enum\n"
                                              "off=0, auto*=1, on=2; default=2");
    auto const item = Hold(EnumItem::Create(7, -2));
    EXPECT_EQ(Dumped(*item), "id: 7\ntype: Enum\nvalue: -2\n");
    EXPECT_EQ(RecordOf(*item).payload, (Bytes{0xFF, 0xFF, 0xFF, 0xFE}));
    EXPECT_EQ(Read(*item, {7, 5, 0, {0, 0, 1}}), IfErrInvalidArgument);
    for (char const* const bad : {"", "on", "4294967296"})
        EXPECT_EQ(ReadText(*item, bad), std::pair(false, std::string("Error parsing enumItem\n")));
    EXPECT_EQ(Printed(*item), "-2");
    EXPECT_TRUE(ReadText(*item, "4294967295").first); // unsigned, its bits taken
    EXPECT_EQ(Printed(*item), "-1");
    item->SetVal(0, *info);
    EXPECT_EQ(item->GetVal(), 0);
    item->SetVal(1, *info); // disabled
    EXPECT_EQ(item->GetVal(), 2);
    item->SetVal(1);
    EXPECT_EQ(Validated(*item, info), Texts{}); // disabled and valid
}

} // namespace
} // namespace Legacy::If::Test
