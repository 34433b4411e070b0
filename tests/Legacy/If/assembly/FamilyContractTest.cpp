#include "../Families.h"
#include "text/TypeText.h"

/// What all families have in common, and where one of them departs from it.
namespace Legacy::If::Test {
namespace {

using enum IfType_t;
using Types = std::set<IfType_t>;

Types const k_neverValid{NumericSparse, Coordinate, Rectangle, RectArray};
Types const k_alwaysValid{StringSparse, Colour,      Orientation,      Addr,      LocalizedString,
                          Endpoint,     AppEndpoint, AppEndpointArray, Collection};
Types const k_withoutMerge{LocalizedString, Extended, Composite, Collection};
// Contract: the bounds of these are equal to nobody's, own copies included; callers take them for new and send them.
Types const k_neverEqual{NumericSparse, StringSparse, Enum, Extended, LocalizedString};
// Contract: these report so even to an own copy, a text after it was merged; callers go by the other code alone.
Types const k_neverMerged{NumericSparse, StringSparse, Enum, String, Extended, LocalizedString, Composite, Collection};
Types const k_withoutRecord{LocalizedString, Extended, Collection};

/// A schema of a family that no other has to do with.
InfoPtr ForeignInfo(IfType_t own)
{
    return own == Extended ? InfoPtr(MakeInfo<CollectionInfo>()) : MakeInfo<ExtendedInfo>();
}

// Contract: four tags of families have no word of their own and print as unknown ones.
Texts const k_plainWords{"Undefined", "Bool",   "Numeric",     "NumericArray", "NumericSparse",
                         "Enum",      "String", "StringArray", "BoolArray"};
Texts const k_shapeWords{"Colour", "Coordinate",      "Rectangle", "Orientation", "Invalid",   "Invalid",
                         "Addr",   "LocalizedString", "Endpoint",  "AppEndpoint", "Connection"};
Texts const k_listWords{"Composite", "Collection"};
Texts const k_elementWords{"Undefined", "U8", "S8", "U16", "S16", "U32", "S32", "U64", "S64", "Float", "Double"};

std::string WordAt(Texts const& words, int at)
{
    return 0 <= at && at < std::ssize(words) ? words[static_cast<std::size_t>(at)] : "Invalid";
}

std::string Word(NumericType_t type) { return WordAt(k_elementWords, static_cast<int>(type)); }

std::string Word(IfType_t type)
{
    int const tag = static_cast<int>(type);
    auto const& words = tag < 0x80 ? k_plainWords : tag < 0xfd ? k_shapeWords : k_listWords;
    return WordAt(words, tag < 0x80 ? tag : tag < 0xfd ? tag - 0x80 : tag - 0xfd);
}

std::string Words(auto const& object) { return Word(object.GetType()) + '(' + Word(object.GetNumericType()) + ')'; }

void ExpectValidation(ItemBase& item, InfoPtr const& info)
{
    IfType_t const type = item.GetType();
    std::string const own = Words(item);
    Texts const mismatch{"TypesSystemValidateTypeMismatch", info ? "speed" : "Unknown",
                         info ? Words(*info) : "NULL-Info", own};
    Texts const illegal{"TypesSystemIllegalValidatationError", mismatch[1], own};
    Texts const valid = k_alwaysValid.contains(type) ? Texts{} : mismatch;
    EXPECT_EQ(Validated(item, info), k_neverValid.contains(type) ? illegal : valid);
    for (auto const half : {&ItemBase::ValidateMin, &ItemBase::ValidateMax})
        EXPECT_EQ(MessageOf(item, [&] { return (item.*half)(info); }), type == Numeric ? mismatch : illegal);
}

/// What the class of a value gives, as its roots: so that what is expected is compiled once.
struct ValueCase
{
    ItemBase& item;
    IfType_t staticType;
    NumericType_t staticElement;
    Item fresh;       // under the id 7
    Item tagged;      // of a derived class with a tag of its own
    Item assigned;    // under the id 8, by `operator=`
    Item constructed; // from the value
    Item copied;
};

void ExpectValue(ValueCase const& given)
{
    ItemBase& item = given.item;
    IfType_t const type = item.GetType();
    EXPECT_EQ(given.staticType, type);
    EXPECT_EQ(given.staticElement, item.GetNumericType());
    EXPECT_TRUE(Dumped(item).starts_with("id: 7\ntype: " + Word(type) + '\n'));
    EXPECT_FALSE(given.fresh->IsEqualValue(&item));
    ItemPtr const other = type == Extended ? ItemPtr(Make<CollectionItem>(7U)) : Make<ExtendedItem>(7U);
    for (ItemPtr const& foreign : {ItemPtr(), other, ItemPtr(given.tagged)}) {
        // Contract: a composite clears the flag before it looks at the source's type, and callers read it then.
        Outcome const refused{IfErrTypeNotAssignable, type == Composite ? 0 : -1};
        EXPECT_EQ(Assign(item, foreign), (foreign ? refused : Outcome{IfErrNullSource, -1}));
        EXPECT_FALSE(item.IsEqualValue(foreign));
    }
    for (InfoPtr const& info : {InfoPtr(), ForeignInfo(type)})
        ExpectValidation(item, info);

    int const code = type == Extended ? IfErrNotSerializable : IfErrTypeNotAssignable;
    EXPECT_EQ(item.Serialize(nullptr), k_withoutRecord.contains(type) ? code : IfErrInvalidArgument);
    EXPECT_EQ(item.Deserialize(nullptr), k_withoutRecord.contains(type) ? code : IfErrNullArgument);
    if (k_withoutRecord.contains(type)) {
        ItemBase::SerialStruct_t record;
        EXPECT_EQ(item.Serialize(&record), code);
        EXPECT_TRUE(record.id == 0 && !record.data && item.GetSerialDataSize() == 0);
    }
    for (int part = 0; part < 3 && !k_withoutRecord.contains(type); ++part) {
        auto const target = Hold(item.DeepCopy());
        Record record = RecordOf(item);
        record.id += part == 0;
        record.type ^= part == 1;
        record.numericType ^= part == 2;
        EXPECT_EQ(Read(*target, record), IfErrInvalidArgument);
        // Contract: a list of endpoints is emptied before the header is looked at, and callers count on the empty list.
        EXPECT_TRUE(target->IsEqualValue(type == AppEndpointArray ? ItemPtr(given.fresh) : &item));
    }
    for (auto const& [copy, id] :
         {std::pair(given.assigned, 8U), {given.constructed, 7}, {given.copied, 7}, {Hold(item.DeepCopy(9)), 9}})
    {
        EXPECT_EQ(copy->GetId(), id);
        EXPECT_TRUE(copy->IsEqualType(&item) && copy->IsEqualValue(&item));
    }
    EXPECT_TRUE(given.constructed->GetRefCount() == 1 && given.copied->GetRefCount() == 1);
}

/// The same of a schema.
struct SchemaCase
{
    InfoBase& info;
    IfType_t staticType;
    NumericType_t staticElement;
    Info tagged;
    Info assigned; // under an identity of its own
    Info constructed;
    Info copied;
    Info renamed;
};

void ExpectSchema(SchemaCase const& given)
{
    InfoBase& info = given.info;
    IfType_t const type = info.GetType();
    // Contract: a schema of lists of rectangles tells static callers that it is one of rectangles, and they rely on it.
    EXPECT_EQ(given.staticType, type == RectArray ? Rectangle : type);
    EXPECT_EQ(given.staticElement, info.GetNumericType());
    std::string const element = Word(info.GetNumericType());
    EXPECT_TRUE(Dumped(info).starts_with("id: 7\npermission: 4660\nname: speed\ntype: " + Word(type) + '\n' +
                                         (element == "Undefined" ? "" : "numericType: " + element + '\n')));
    int const unmerged = k_withoutMerge.contains(type) ? IfErrTypeNotAssignable : IfErrBoundsTypeMismatch;
    for (InfoPtr const& foreign : {InfoPtr(), ForeignInfo(type), InfoPtr(given.tagged)}) {
        EXPECT_EQ(Assign(info, foreign), (Outcome{foreign ? IfErrTypeNotAssignable : IfErrNullSource, -1}));
        EXPECT_EQ(info.MergeBounds(foreign), unmerged);
        EXPECT_EQ(info.IsEqualBounds(foreign), type == Colour); // a colour has none to compare
    }
    EXPECT_EQ(info.IsEqualBounds(given.copied), !k_neverEqual.contains(type));
    EXPECT_EQ(info.MergeBounds(given.copied), k_neverMerged.contains(type) ? IfErrTypeNotAssignable : 0);
    auto const expectCopy = [&](Info const& copy, unsigned int id, std::string const& name, Permission_t permission) {
        EXPECT_EQ(copy->GetId(), id);
        EXPECT_EQ(copy->GetName(), name);
        EXPECT_EQ(copy->GetPermission(), permission);
        EXPECT_EQ(Printed(*copy), Printed(info));
        auto const created = Hold(copy->CreateItem());
        EXPECT_EQ(created->GetId(), id);
        EXPECT_TRUE(copy->IsEqualType(created) && created->IsEqualValue(Hold(info.CreateItem())));
    };
    expectCopy(given.assigned, 8, "own", {5});
    expectCopy(given.constructed, 7, "speed", {0x1234});
    expectCopy(given.copied, 7, "speed", {0x1234});
    expectCopy(given.renamed, 9, "other", {0x1234});
    expectCopy(Hold(info.DeepCopy(9, "other", {6})), 9, "other", {6});
    EXPECT_TRUE(given.constructed->GetRefCount() == 1 && given.copied->GetRefCount() == 1);
}

TEST(Families, HaveTheirWords)
{
    for (int tag = -1; tag <= 256; ++tag) {
        EXPECT_EQ(Detail::TypeText(static_cast<IfType_t>(tag)), Word(static_cast<IfType_t>(tag)));
        EXPECT_EQ(Detail::TypeText(static_cast<NumericType_t>(tag)), Word(static_cast<NumericType_t>(tag)));
    }
}

TEST(Families, HoldToWhatTheyHaveInCommon)
{
    ForAllFamilies([]<typename InfoClass, typename ItemClass>(Family<InfoClass, ItemClass>) {
        auto const item = Filled<ItemClass>(7);
        SCOPED_TRACE(Dumped(*item));
        auto const assigned = Make<ItemClass>(8U);
        *assigned = *item;
        ExpectValue({*item, ItemClass::GetTypeStatic(), ItemClass::GetNumericTypeStatic(), Make<ItemClass>(7U),
                     Make<Tagged<ItemClass>>(7U), assigned, Make<ItemClass>(*item), Hold(item->DeepCopy())});
        if constexpr (!std::is_void_v<InfoClass>) {
            auto const info = FilledInfo<InfoClass, ItemClass>();
            auto const assignedInfo = FreshInfo<InfoClass>(8, "own", {5});
            *assignedInfo = *info;
            auto const taken = FreshInfo<InfoClass>(7, "speed", {0x1234});
            EXPECT_EQ(Assign(*taken, info).code, 0);
            EXPECT_TRUE(Hold(taken->CreateItem())->IsEqualValue(Hold(info->CreateItem())));
            ExpectSchema({*info, InfoClass::GetTypeStatic(), InfoClass::GetNumericTypeStatic(),
                          FreshInfo<Tagged<InfoClass>>(7, "speed", {0x1234}), assignedInfo, Make<InfoClass>(*info),
                          Hold(info->DeepCopy()), Hold(info->DeepCopy(9, "other"))});
        }
    });
}

/// No schema itself, but one can be had of it.
template<typename Info>
struct Parameter
{
    Info const& info;

    operator Info const&() const { return info; }
};

TEST(Lists, AreCheckedAgainstTheSizesOfTheirSchemas)
{
    auto const expect = []<typename Info, typename Item>(Family<Info, Item>) {
        using List = std::remove_reference_t<decltype(Item(1).Val())>;
        int (Item::*const set)(List const&, Info const&) = &Item::SetVal; // as tables of members name it
        auto const info = MakeInfo<Info>();
        info->SetMaxSize(1);
        List const one = Filled<Item>(1)->GetVal();
        List two = one;
        two.push_back(one[0]);
        Item item(7);
        EXPECT_EQ((item.*set)(two, *info), IfErrSizeOutOfRange);
        EXPECT_TRUE(item.IsEmpty());
        EXPECT_EQ(item.SetVal(one, Parameter<Info>{*info}), 0);
        EXPECT_EQ(item.GetSize(), 1U);
    };
    ForAllTraits([&]<typename T>(T) { expect(Family<NumericArrayInfo<T>, NumericArrayItem<T>>()); });
    TraitsList<Family<RectArrayInfo<U16Traits>, RectArrayItem<U16Traits>>, Family<BoolArrayInfo, BoolArrayItem>,
               Family<StringArrayInfo, StringArrayItem>>::ForEach(expect);
}

template<typename Item>
void ExpectMoved()
{
    using Held = std::remove_reference_t<decltype(Item(1).Val())>;
    auto const roomy = [] {
        Held held;
        held.reserve(1000);
        return held;
    };
    Item item(7);
    item.SetVal(roomy());
    EXPECT_GE(item.Val().capacity(), 1000U);
    if constexpr (requires { Item::Create(7U, Held()); }) {
        EXPECT_GE(Hold(Item::Create(7U, roomy()))->Val().capacity(), 1000U);
    }
}

TEST(Lists, AreTakenOverWithTheirStorage)
{
    ExpectMoved<NumericArrayItem<U8Traits>>();
    ExpectMoved<BoolArrayItem>();
    ExpectMoved<StringItem>();
    ExpectMoved<StringArrayItem>();
    ExpectMoved<RectArrayItem<U16Traits>>();
    ExpectMoved<AppEndpointArrayItem>();
    StringItem text(7);
    std::string roomy;
    roomy.reserve(1000);
    text.SetVal(std::move(roomy), *MakeInfo<StringInfo>());
    EXPECT_GE(text.Val().capacity(), 1000U);
    auto const info = MakeInfo<BoolArrayInfo>();
    info->SetMaxSize(1);
    std::vector<bool> two{true, false};
    BoolArrayItem item(7);
    EXPECT_EQ(item.SetVal(static_cast<std::vector<bool>&&>(two), *info), IfErrSizeOutOfRange);
    EXPECT_EQ(two.size(), 2U); // refused, it is still the caller's
    two.pop_back();
    EXPECT_EQ(item.SetVal(static_cast<std::vector<bool>&&>(two), *info), 0);
    EXPECT_EQ(item.GetVal(), std::vector<bool>{true});
}

TEST(Lists, GrowOneByOneWithoutMovingTheirElementsEachTime)
{
    auto const expect = []<typename One, typename Item>(Family<One, Item>) {
        constexpr unsigned int count = 500;
        auto const one = Filled<One>(1);
        Item item(7);
        std::size_t moved = 0;
        for (unsigned int i = 0; i < count; ++i) {
            auto const capacity = item.Val().capacity();
            EXPECT_EQ(item.AssignArrayValue(one, i, nullptr), 0);
            moved += item.Val().capacity() != capacity ? i : 0;
        }
        EXPECT_LT(moved, 3 * count) << Dumped(*one);
    };
    TraitsList<Family<NumericItem<U8Traits>, NumericArrayItem<U8Traits>>,
               Family<RectItem<U16Traits>, RectArrayItem<U16Traits>>, Family<BoolItem, BoolArrayItem>,
               Family<StringItem, StringArrayItem>, Family<AppEndpointItem, AppEndpointArrayItem>>::ForEach(expect);
}

template<typename Class>
Item FromText(std::string const& text)
{
    auto const item = Make<Class>(0x01020304U);
    EXPECT_TRUE(ReadText(*item, text).first) << text;
    return item;
}

/// At least a fresh and a filled value of each class that has a record.
std::vector<Item> Samples()
{
    std::set const without{IfType_t::Extended, IfType_t::LocalizedString, IfType_t::Collection};
    std::vector<Item> samples;
    ForAllFamilies([&]<typename Info, typename Class>(Family<Info, Class>) {
        if (!without.contains(Class::GetTypeStatic()))
            samples.insert(samples.end(), {Make<Class>(1U), Filled<Class>(0x01020304)});
    });
    ForAllTraits([&samples]<typename T>(T) { samples.push_back(FromText<NumericArrayItem<T>>("5 1 2 3 4 127")); });
    samples.push_back(FromText<RectArrayItem<U16Traits>>("2 1 2 3 4 5 6 7 8"));
    samples.push_back(FromText<StringArrayItem>("3 one two three"));
    for (char const* const bits : {"7 1 0 1 1 0 0 1", "8 1 0 1 1 0 0 1 0", "9 1 0 1 1 0 0 1 0 1"})
        samples.push_back(FromText<BoolArrayItem>(bits));
    auto const outer = Make<CompositeItem>(1U);
    auto const inner = Hold(outer->DeepCopy(2));
    inner->SetItems({FromText<StringItem>("text"), FromText<NumericArrayItem<U32Traits>>("2 1 2")});
    outer->SetItems({inner, FromText<BoolItem>("1"), Make<CompositeItem>(3U)});
    samples.push_back(outer);
    return samples;
}

using Tags = std::pair<unsigned char, unsigned char>;

Tags TagsOf(ItemBase const& item)
{
    return {static_cast<unsigned char>(item.GetType()), static_cast<unsigned char>(item.GetNumericType())};
}

/// Rebuilds a value, whatever comes of it, and uses it in every way that does not need to know what it is.
void Exercise(Record const& record)
{
    auto const [code, item] = Rebuild(record);
    EXPECT_TRUE(code == 0 || code == IfErrInvalidArgument || code == IfErrNotSerializable) << code;
    ASSERT_NE(item, nullptr);
    auto const copy = Hold(item->DeepCopy(5));
    EXPECT_EQ(Printed(*copy), Printed(*item));
    copy->IsEqualValue(Hold(item->DeepCopy()));
    copy->Validate(nullptr);
    RecordOf(*copy);
    EXPECT_EQ(copy->AssignValue(copy, nullptr), 0);
}

TEST(RecordSweep, KnowsEveryClassThatRebuilds)
{
    std::set<Tags> sampled{{0xfe, 0}}; // a collection is built and then not read
    for (Item const& sample : Samples())
        sampled.insert(TagsOf(*sample));
    std::set<Tags> rebuilt;
    for (unsigned int tags = 0; tags < 0x10000; ++tags) {
        auto const type = static_cast<unsigned char>(tags / 256);
        auto const [code, item] = Rebuild({1, type, static_cast<unsigned char>(tags % 256), {}});
        if (item)
            rebuilt.insert(TagsOf(*item));
        else
            EXPECT_EQ(code, IfErrInvalidArgument);
    }
    EXPECT_EQ(rebuilt, sampled);
}

TEST(RecordSweep, RebuildsAndWritesTheSameAgainAndSurvivesTruncationAndAppendix)
{
    for (Item const& item : Samples()) {
        SCOPED_TRACE(Dumped(*item));
        Record record = RecordOf(*item);
        bool const other = item->GetType() == IfType_t::StringSparse; // announces another size than it writes
        EXPECT_TRUE(other || item->GetSerialDataSize() == record.payload.size());
        auto const [code, rebuilt] = Rebuild(record);
        ASSERT_EQ(code, 0);
        EXPECT_EQ(rebuilt->GetId(), item->GetId());
        EXPECT_EQ(TagsOf(*rebuilt), TagsOf(*item));
        EXPECT_EQ(RecordOf(*rebuilt).payload, record.payload);
        EXPECT_EQ(Printed(*rebuilt), Printed(*item));
        Bytes const whole = record.payload;
        for (std::size_t size = 0; size <= whole.size() + 2; ++size) {
            record.payload = whole;
            record.payload.resize(size);
            Exercise(record);
            auto const target = Hold(item->DeepCopy());
            bool const isKept = Read(*target, record) != 0 && item->GetType() != IfType_t::Composite; // which appends
            EXPECT_TRUE(!isKept || Dumped(*target) == Dumped(*item)) << size;
        }
    }
}

} // namespace
} // namespace Legacy::If::Test
