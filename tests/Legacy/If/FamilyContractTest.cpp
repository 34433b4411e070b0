#include "../../../Legacy/src/If/TypeText.h"
#include "Families.h"

#include <set>

/// What all families have in common, and where one of them departs from it.
namespace Legacy::If::Test {
namespace {

using enum IfType_t;
using Types = std::set<IfType_t>;

Types const k_neverValid{NumericSparse, Coordinate, Rectangle, RectArray};
Types const k_alwaysValid{StringSparse, Colour,      Orientation,      Addr,      LocalizedString,
                          Endpoint,     AppEndpoint, AppEndpointArray, Collection};
Types const k_withoutMerge{LocalizedString, Extended, Composite, Collection};
Types const k_withoutRecord{LocalizedString, Extended, Collection};

/// None, and objects of families that no other has to do with.
template<typename Pointer>
std::vector<Pointer> Foreign(IfType_t own, Pointer const& first, Pointer const& second)
{
    std::vector<Pointer> foreign{nullptr, first, second};
    std::erase_if(foreign, [&](Pointer const& object) { return object && object->GetType() == own; });
    return foreign;
}

std::vector<InfoPtr> ForeignInfos(IfType_t own)
{
    return Foreign<InfoPtr>(own, MakeInfo<ExtendedInfo>(), MakeInfo<CollectionInfo>());
}

void ExpectValidation(ItemBase& item, InfoPtr const& info)
{
    IfType_t const type = item.GetType();
    std::string const own = Detail::CombinedTypeText(item);
    Texts const mismatch{"TypesSystemValidateTypeMismatch", info ? "speed" : "Unknown",
                         info ? Detail::CombinedTypeText(*info) : "NULL-Info", own};
    Texts const illegal{"TypesSystemIllegalValidatationError", mismatch[1], own};
    Texts const valid = k_alwaysValid.contains(type) ? Texts{} : mismatch;
    EXPECT_EQ(Validated(item, info), k_neverValid.contains(type) ? illegal : valid);
    for (auto const half : {&ItemBase::ValidateMin, &ItemBase::ValidateMax})
        EXPECT_EQ(MessageOf(item, [&] { return (item.*half)(info); }), type == Numeric ? mismatch : illegal);
}

template<typename Item>
void ExpectValue(Item& item)
{
    IfType_t const type = item.GetType();
    EXPECT_EQ(Item::GetTypeStatic(), type);
    EXPECT_EQ(Item::GetNumericTypeStatic(), item.GetNumericType());
    auto const expectCopy = [&](boost::intrusive_ptr<Item> const& copy, unsigned int id) {
        EXPECT_EQ(copy->GetId(), id);
        EXPECT_EQ(copy->GetRefCount(), 1);
        EXPECT_TRUE(copy->IsEqualType(&item) && copy->IsEqualValue(&item));
    };
    auto const assigned = Make<Item>(8U);
    EXPECT_FALSE(assigned->IsEqualValue(&item));
    *assigned = item;
    for (ItemPtr const& foreign : Foreign<ItemPtr>(type, Make<ExtendedItem>(7U), Make<CollectionItem>(7U))) {
        // Contract: a composite clears the flag before it looks at the source's type, and callers read it then.
        Outcome const refused{IfErrTypeNotAssignable, type == Composite ? 0 : -1};
        EXPECT_EQ(Assign(item, foreign), (foreign ? refused : Outcome{IfErrNullSource, -1}));
        EXPECT_FALSE(item.IsEqualValue(foreign));
    }
    for (InfoPtr const& info : ForeignInfos(type))
        ExpectValidation(item, info);

    int const code = type == Extended ? IfErrNotSerializable : IfErrTypeNotAssignable;
    EXPECT_EQ(item.Serialize(nullptr), k_withoutRecord.contains(type) ? code : IfErrInvalidArgument);
    EXPECT_EQ(item.Deserialize(nullptr), k_withoutRecord.contains(type) ? code : IfErrNullArgument);
    for (int part = 0; part < 3 && !k_withoutRecord.contains(type); ++part) {
        auto const target = Hold(item.DeepCopy());
        Record record = RecordOf(item);
        record.id += part == 0;
        record.type ^= part == 1;
        record.numericType ^= part == 2;
        EXPECT_EQ(Read(*target, record), IfErrInvalidArgument);
        // Contract: a list of endpoints is emptied before the header is looked at, and callers count on the empty list.
        EXPECT_TRUE(target->IsEqualValue(type == AppEndpointArray ? Make<Item>(7U) : &item));
    }
    expectCopy(assigned, 8);
    expectCopy(Make<Item>(item), 7);
    expectCopy(Hold(item.DeepCopy()), 7);
    expectCopy(Hold(item.DeepCopy(9)), 9);
}

template<typename Info>
void ExpectSchema(Info& info)
{
    IfType_t const type = info.GetType();
    // Contract: a schema of lists of rectangles tells static callers that it is one of rectangles, and they rely on it.
    EXPECT_EQ(Info::GetTypeStatic(), type == RectArray ? Rectangle : type);
    EXPECT_EQ(Info::GetNumericTypeStatic(), info.GetNumericType());
    auto const expectCopy = [&](boost::intrusive_ptr<Info> const& copy, unsigned int id, std::string const& name,
                                Permission_t permission) {
        EXPECT_EQ(copy->GetId(), id);
        EXPECT_EQ(copy->GetName(), name);
        EXPECT_EQ(copy->GetPermission(), permission);
        EXPECT_EQ(copy->GetRefCount(), 1);
        EXPECT_EQ(Printed(*copy), Printed(info));
        auto const created = Hold(copy->CreateItem());
        EXPECT_EQ(created->GetId(), id);
        EXPECT_TRUE(copy->IsEqualType(created) && created->IsEqualValue(Hold(info.CreateItem())));
    };
    auto const assigned = FreshInfo<Info>(8, "own", {5});
    *assigned = info;
    for (InfoPtr const& foreign : ForeignInfos(type)) {
        EXPECT_EQ(Assign(info, foreign), (Outcome{foreign ? IfErrTypeNotAssignable : IfErrNullSource, -1}));
        EXPECT_EQ(info.MergeBounds(foreign),
                  k_withoutMerge.contains(type) ? IfErrTypeNotAssignable : IfErrBoundsTypeMismatch);
        EXPECT_EQ(info.IsEqualBounds(foreign), type == Colour); // a colour has none to compare
    }
    expectCopy(assigned, 8, "own", {5});
    expectCopy(Make<Info>(info), 7, "speed", {0x1234});
    expectCopy(Hold(info.DeepCopy()), 7, "speed", {0x1234});
    expectCopy(Hold(info.DeepCopy(9, "other")), 9, "other", {0x1234});
    expectCopy(Hold(info.DeepCopy(9, "other", {6})), 9, "other", {6});
}

TEST(Families, HoldToWhatTheyHaveInCommon)
{
    ForAllFamilies([]<typename Info, typename Item>(Family<Info, Item>) {
        auto const item = Filled<Item>(7);
        SCOPED_TRACE(Dumped(*item));
        ExpectValue(*item);
        if constexpr (!std::is_void_v<Info>)
            ExpectSchema(*FilledInfo<Info, Item>());
    });
}

} // namespace
} // namespace Legacy::If::Test
