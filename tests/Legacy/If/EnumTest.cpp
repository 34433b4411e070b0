#include "TestSupport.h"

#include <Legacy/If/Bool.h>
#include <Legacy/If/Enum.h>
#include <Legacy/If/Numeric.h>
#include <Legacy/If/NumericArray.h>

#include <limits>

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
    EXPECT_EQ(info->GetSize(), 4U);

    Elem elem;
    std::string name = "kept";
    int value = 77;
    EXPECT_EQ(info->GetElem(1, elem), 0);
    EXPECT_EQ(elem, (Elem{"auto", 1, true}));
    EXPECT_EQ(info->GetElem(3, elem), IfErrNotFound);
    EXPECT_EQ(info->GetElemName(3, name), IfErrNotFound);
    EXPECT_EQ(info->GetElemVal("none", value), IfErrNotFound);
    EXPECT_EQ(name, "kept");
    EXPECT_EQ(value, 77);
    EXPECT_EQ(info->GetElemName(9, name), 0);
    EXPECT_EQ(name, "On");
    EXPECT_EQ(info->GetElemVal("on", value), 0);
    EXPECT_EQ(value, 2);

    for (auto const& [key, enabled, present] :
         {std::tuple(0, true, true), std::tuple(1, false, true), std::tuple(3, false, false)})
    {
        EXPECT_EQ(info->IsEnabled(key), enabled);
        EXPECT_EQ(info->IsPresent(key), present);
    }
    EXPECT_EQ(info->EnableElem(1), 0);
    EXPECT_TRUE(info->IsEnabled(1));
    EXPECT_EQ(info->DisableElem(1), 0);
    EXPECT_FALSE(info->IsEnabled(1));
    for (auto const change : {&EnumInfo::EnableElem, &EnumInfo::DisableElem, &EnumInfo::RemoveElem})
        EXPECT_EQ((*info.*change)(3), IfErrNotFound);
    EXPECT_EQ(info->RemoveElem(1), 0);
    EXPECT_EQ(info->GetTable(), (std::vector<Elem>{{"off", 0}, {"on", 2}, {"On", 9}}));
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
    auto const item = Hold(info->CreateItem());
    EXPECT_EQ(Printed(*item), "2");
    EXPECT_EQ(Validated(*item, info), (Texts{"TypesSystemEnumValidationValue", "speed", "2"}));
    EXPECT_EQ(info->SetTable({}), 0);
    EXPECT_EQ(info->GetDefault(), 2);
}

TEST(EnumInfo, IsNeverEqualAndNeverMerged)
{
    auto const info = Switch();
    auto const copy = Hold(info->DeepCopy(9, "copy"));
    EXPECT_EQ(copy->GetTable(), info->GetTable());
    EXPECT_TRUE(copy->IsLocalized());
    EXPECT_FALSE(info->IsEqualBounds(copy));
    EXPECT_EQ(info->MergeBounds(copy), IfErrTypeNotAssignable);
    EXPECT_EQ(info->MergeBounds(MakeInfo<BoolInfo>()), IfErrBoundsTypeMismatch);
    EXPECT_EQ(info->MergeBounds(nullptr), IfErrBoundsTypeMismatch);

    auto const target = MakeInfo<EnumInfo>(false);
    EXPECT_EQ(Assign(*target, info), (Outcome{0, 1}));
    EXPECT_EQ(target->GetTable(), info->GetTable());
    EXPECT_FALSE(target->IsLocalized()); // stays
    EXPECT_EQ(Assign(*target, info), (Outcome{0, 0}));
    for (auto const change :
         {+[](EnumInfo& i) { i.EnableElem(1); }, +[](EnumInfo& i) { i.SetDefault(2); },
          +[](EnumInfo& i) { i.GetTable()[0].name = "zero"; }, +[](EnumInfo& i) { i.RemoveElem(0); }})
    {
        change(*info);
        EXPECT_EQ(Assign(*target, info), (Outcome{0, 1}));
        EXPECT_EQ(Assign(*target, info), (Outcome{0, 0}));
    }
}

TEST(EnumItem, LetsOnlyItsCheckedSetterRefuse)
{
    auto const info = Switch();
    info->SetDefault(2);
    EnumItem item(3);
    item.SetVal(1, *info); // disabled
    EXPECT_EQ(item.GetVal(), 2);
    item.SetVal(0, *info);
    EXPECT_EQ(item.GetVal(), 0);
    item.SetVal(5, *info);
    EXPECT_EQ(item.GetVal(), 2);
    item.SetVal(1);
    EXPECT_EQ(Validated(item, info), Texts{}); // disabled and valid
    item.SetVal(-5);
    EXPECT_EQ(Validated(item, info), (Texts{"TypesSystemEnumValidationValue", "speed", "-5"}));
    EXPECT_EQ(Validated(item, MakeInfo<BoolInfo>()),
              (Texts{"TypesSystemValidateTypeMismatch", "speed", "Bool(Undefined)", "Enum(Undefined)"}));
}

TEST(EnumItem, TakesIntegersOutOfNumbers)
{
    EnumItem item(1);
    constexpr int low = std::numeric_limits<int>::min();
    auto const list = Make<NumericArrayItem<FloatTraits>>(2U);
    list->SetVal({1.5F, -2.5F});
    struct Case
    {
        ItemPtr source;
        int value;
    };
    for (Case const& c :
         {Case{Hold(BoolItem::Create(2, true)), 1}, Case{Hold(NumericItem<U8Traits>::Create(2, 255)), 255},
          Case{Hold(NumericItem<S8Traits>::Create(2, -1)), -1},
          Case{Hold(NumericItem<U32Traits>::Create(2, 4294967295U)), -1},
          Case{Hold(NumericItem<S64Traits>::Create(2, 0x100000002)), 2},
          Case{Hold(NumericItem<FloatTraits>::Create(2, -1.9F)), -1},
          Case{Hold(NumericItem<FloatTraits>::Create(2, 1e10F)), low},
          Case{Hold(NumericItem<DoubleTraits>::Create(2, -1e10)), low}, Case{Hold(EnumItem::Create(2, 7)), 7},
          Case{list, -2}})
    {
        EXPECT_EQ(Assign(item, c.source, 1).code, 0);
        EXPECT_EQ(item.GetVal(), c.value);
        EXPECT_EQ(Assign(item, c.source, 1), (Outcome{0, 0}));
    }
    EXPECT_EQ(Assign(item, list, 2), (Outcome{IfErrInvalidArgument, -1}));
    EXPECT_TRUE(item.IsEqualValue(Hold(EnumItem::Create(9, -2))));
}

TEST(Enum, HasItsForms)
{
    auto const info = Switch();
    info->SetDefault(2);
    EXPECT_EQ(Printed(*info), "off=0, auto*=1, on=2; default=2");
    EXPECT_EQ(Printed(*MakeInfo<EnumInfo>(false)), "; default=0");
    EXPECT_EQ(Dumped(*info), "id: 7\npermission: 4660\nname: speed\ntype: Enum\n");
    auto const item = Hold(EnumItem::Create(7, -2));
    EXPECT_EQ(Dumped(*item), "id: 7\ntype: Enum\nvalue: -2\n");
    EXPECT_EQ(RecordOf(*item).payload, (Bytes{0xFF, 0xFF, 0xFF, 0xFE}));
    EXPECT_EQ(Read(*item, {7, 5, 0, {0, 0, 1, 0}}), 0);
    EXPECT_EQ(Printed(*item), "256");
    EXPECT_EQ(Read(*item, {7, 5, 0, {0, 0, 1}}), IfErrInvalidArgument);
    EXPECT_EQ(Read(*item, {7, 5, 3, {0, 0, 1, 0}}), IfErrInvalidArgument);
    for (char const* const bad : {"", "on", "4294967296"})
        EXPECT_EQ(ReadText(*item, bad), std::pair(false, std::string("Error parsing enumItem\n")));
    EXPECT_EQ(Printed(*item), "256");
    EXPECT_TRUE(ReadText(*item, "4294967295").first); // unsigned, its bits taken
    EXPECT_EQ(Printed(*item), "-1");
}

} // namespace
} // namespace Legacy::If::Test
