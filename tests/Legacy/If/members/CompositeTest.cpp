#include "../Families.h"
#include "record/SerialRecord.h"

namespace Legacy::If::Test {
namespace {

using U32Info = NumericInfo<U32Traits>;
using U32Item = NumericItem<U32Traits>;

constexpr unsigned int k_deep = 300'000; // more than any stack has room for

Item Number(unsigned int value) { return Hold(U32Item::Create(value, value)); }
Item Text(std::string const& value) { return Hold(StringItem::Create(9, value)); }

template<typename List = CompositeItem>
boost::intrusive_ptr<List> ListOf(std::vector<Item> const& items, unsigned int id = 1)
{
    auto list = Make<List>(id);
    list->SetItems(items);
    return list;
}

template<typename List = CompositeInfo>
boost::intrusive_ptr<List> SchemaOf(std::vector<Info> const& infos)
{
    auto list = MakeInfo<List>();
    list->SetInfos(infos);
    return list;
}

/// A member that notes its end.
struct Logged : StringItem
{
    Logged(unsigned int id, std::vector<unsigned int>& log) : StringItem(id), m_log(log) {}
    ~Logged() override { m_log.push_back(GetId()); }
    std::vector<unsigned int>& m_log;
};

template<typename Family>
using Lists = testing::Test;
using ListFamilies = testing::Types<Family<CompositeInfo, CompositeItem>, Family<CollectionInfo, CollectionItem>>;
TYPED_TEST_SUITE(Lists, ListFamilies);

TYPED_TEST(Lists, HoldNoNull)
{
    auto const schema = MakeInfo<typename TypeParam::Info>();
    Info const a = MakeInfo<U32Info>();
    unsigned int index = 77;
    EXPECT_TRUE(!schema->AddInfo(nullptr, index) && index == 77);
    EXPECT_TRUE(schema->AddInfo(a) && schema->AddInfo(a, index) && index == 1); // the same object twice
    EXPECT_FALSE(schema->SetInfo(2, a) || schema->SetInfo(0, nullptr) || schema->GetInfo(2));
    auto const value = Make<typename TypeParam::Item>(1U);
    Item const x = Number(1);
    value->SetItems({nullptr, x, nullptr, Number(2)});
    EXPECT_TRUE(value->SetItem(1, x) && !value->SetItem(2, x));
    std::vector<Item> items(5);
    value->GetItems(items);
    EXPECT_EQ(items, (std::vector<Item>{x, x}));
}

TYPED_TEST(Lists, ShareMembersUnlessDuplicated)
{
    using Schema = typename TypeParam::Info;
    using Value = typename TypeParam::Item;
    auto const value = ListOf<Value>({Number(1), ListOf<Value>({Number(2)}, 8)});
    Value assigned(3);
    assigned = *value;
    EXPECT_EQ(assigned.GetItem(0), value->GetItem(0));
    auto const copy = Hold(value->DeepCopy(4));
    EXPECT_NE(copy->GetItem(0), value->GetItem(0));
    EXPECT_EQ(copy->GetItem(1)->GetId(), 8U);

    auto const schema = SchemaOf<Schema>({MakeInfo<U32Info>(), SchemaOf<Schema>({MakeInfo<StringInfo>()})});
    auto const twin = Hold(schema->DeepCopy(9, "twin"));
    EXPECT_NE(twin->GetInfo(1), schema->GetInfo(1));
    Schema target(2, "target", {});
    for (int round = 0; round < 2; ++round)
        EXPECT_EQ(Assign(target, schema), (Outcome{0, 1})); // whatever the lists
    EXPECT_EQ(target.GetInfo(1), schema->GetInfo(1));
}

TYPED_TEST(Lists, CompareAndPrintMemberByMember)
{
    using Schema = typename TypeParam::Info;
    using Value = typename TypeParam::Item;
    auto const nested = [](Item const& inner) { return ListOf<Value>({Number(1), inner}); };
    auto const value = nested(ListOf<Value>({Number(2), Text("")}));
    EXPECT_EQ(Printed(*value), "(1, (2, ))");
    EXPECT_EQ(Printed(*ListOf<Value>({value, ListOf<Value>({})})), "((1, (2, )), ())");
    EXPECT_TRUE(Dumped(*value).ends_with("\nvalue: (2 items)"));
    EXPECT_TRUE(value->IsEqualValue(nested(ListOf<Value>({Number(2), Text("")}))));
    for (auto const& other : {nested(ListOf<Value>({Number(2), Text("x")})), nested(ListOf<Value>({Text("2")})),
                              nested(ListOf<Value>({Number(2)})), nested(Number(2)), nested(ListOf<Value>({}))})
    {
        EXPECT_FALSE(value->IsEqualValue(other)) << Printed(*other);
        EXPECT_FALSE(other->IsEqualValue(value)) << Printed(*other);
    }
    EXPECT_FALSE(nested(ListOf<CompositeItem>({}))->IsEqualValue(nested(ListOf<CollectionItem>({}))));
    auto const bounded = MakeInfo<StringInfo>();
    bounded->SetMaxLength(1);
    auto const schema = SchemaOf<Schema>({SchemaOf<Schema>({MakeInfo<StringInfo>(), bounded})});
    EXPECT_EQ(Printed(*schema), "((\"\"; max length=256, \"\"; max length=1))");
    EXPECT_FALSE(schema->IsEqualBounds(SchemaOf<Schema>({SchemaOf<Schema>({bounded, bounded})})));
}

TYPED_TEST(Lists, ReleaseMembersInOrderAndOnce)
{
    using Value = typename TypeParam::Item;
    std::vector<unsigned int> log;
    auto const logged = [&log](unsigned int id) { return Item(new Logged(id, log)); };
    Item const kept = logged(9);
    auto value = ListOf<Value>({logged(1), ListOf<Value>({logged(4), kept}), logged(2), kept, kept, logged(3)});
    value.reset();
    intrusive_ptr_release(static_cast<ItemBase const*>(new Logged(5, log))); // without a reference
    EXPECT_EQ(log, (std::vector<unsigned int>{1, 2, 3, 4, 5}));              // members of members follow
    EXPECT_EQ(kept->GetRefCount(), 1);
}

TEST(Composite, DuplicatesWhereACollectionShares)
{
    auto const composite = ListOf({ListOf({Number(1), Number(2)}), Number(3)});
    auto const collection = ListOf<CollectionItem>({ListOf<CollectionItem>({Number(1)})});
    CompositeItem copied(2);
    CollectionItem shared(2);
    for (int round = 0; round < 2; ++round) {
        EXPECT_EQ(Assign(copied, composite), (Outcome{0, 1})); // whatever the values
        EXPECT_EQ(Assign(shared, collection), (Outcome{0, 1}));
    }
    EXPECT_NE(copied.GetItem(0), composite->GetItem(0));
    EXPECT_EQ(shared.GetItem(0), collection->GetItem(0));

    EXPECT_EQ(composite->AssignValue(composite, nullptr), 0); // from itself, and from a member of its own
    EXPECT_EQ(Printed(*composite), "((1, 2), 3)");
    EXPECT_EQ(composite->AssignValue(composite->GetItem(0), nullptr), 0);
    EXPECT_EQ(Printed(*composite), "(1, 2)");

    auto const text = MakeInfo<StringInfo>();
    text->SetDefault("x");
    auto const schema = SchemaOf({text, SchemaOf({text}), SchemaOf<CollectionInfo>({text})});
    EXPECT_EQ(Printed(*Hold(schema->CreateItem())), "(x, (x), ())");
}

/// A schema that only claims to be a composite's.
struct FalseInfo : StringInfo
{
    using StringInfo::StringInfo;
    IfType_t GetType() const override { return IfType_t::Composite; }
};

TEST(Composite, ValidatesShapeAlone)
{
    auto const number = MakeInfo<U32Info>();
    number->SetMax(5);
    auto const schema = SchemaOf({number, MakeInfo<StringInfo>()});
    auto const item = ListOf({Number(6), Text("x")}); // the number is out of its bounds
    EXPECT_EQ(Validated(*item, schema), Texts{});
    item->SetItem(1, Number(6));
    EXPECT_EQ(Validated(*item, schema), (Texts{"TypesSystemCompositeTypeMismatch", "speed", "1"}));
    schema->AddInfo(number);
    EXPECT_EQ(Validated(*item, schema), (Texts{"TypesSystemCompositeValidationSize", "speed", "2"}));

    Info const impostor = MakeInfo<FalseInfo>();
    EXPECT_EQ(Validated(*item, impostor).at(0), "TypesSystemValidateTypeMismatch");
    EXPECT_EQ(Assign(*schema, impostor), (Outcome{IfErrTypeNotAssignable, -1}));
    EXPECT_FALSE(SchemaOf({Info(SchemaOf({}))})->IsEqualBounds(SchemaOf({impostor})));
}

TEST(Composite, ReadsOneLevelOfMembers)
{
    auto const pair = SchemaOf({MakeInfo<U32Info>(), MakeInfo<StringInfo>()});
    auto const item = ListOf({Text("old")});
    std::string const invalid = "Invalid use of CompositeItem::SetValFromStream\n";
    std::string const of3 = "CompositeItem with 3 items\n";
    for (InfoPtr const& info : {InfoPtr(), InfoPtr(MakeInfo<CollectionInfo>()), InfoPtr(MakeInfo<FalseInfo>())})
        EXPECT_EQ(ReadText(*item, "1 x", info), std::pair(false, invalid));
    EXPECT_EQ(Printed(*item), "(old)");
    EXPECT_EQ(ReadText(*item, "1 x", pair), std::pair(true, std::string("CompositeItem with 2 items\n")));
    EXPECT_EQ(Printed(*item), "(1, x)");
    pair->AddInfo(SchemaOf({}));
    EXPECT_EQ(ReadText(*item, "2 y", pair), std::pair(false, of3 + invalid));
    EXPECT_EQ(Printed(*item), "(2, y)"); // what was read stays
    EXPECT_EQ(ReadText(*item, "z y", pair), std::pair(false, of3 + "Error parsing numericItem\n"));
    EXPECT_TRUE(item->IsEmpty());
    EXPECT_EQ(ReadText(*ListOf<CollectionItem>({}), "1"), std::pair(false, std::string("Impl. me")));
}

/// A number, but not to be written as one: it predicts and writes so many bytes, if it shows them, and returns a code.
struct Scripted : NumericItem<U8Traits>
{
    Scripted(unsigned int predicted, unsigned int written, bool shown)
        : NumericItem(0x55), m_predicted(predicted), m_written(written), m_shown(shown)
    {}
    unsigned int GetSerialDataSize() const override { return m_predicted; }
    int Serialize(SerialStruct_t* record) const override
    {
        Detail::WriteHeader(*this, m_written, *record);
        record->data = m_shown ? new unsigned char[m_written]{'x'} : nullptr;
        return IfErrNotSerializable;
    }
    unsigned int m_predicted;
    unsigned int m_written;
    bool m_shown;
};

Bytes Joined(auto const&... parts)
{
    Bytes all;
    (all.insert(all.end(), parts.begin(), parts.end()), ...);
    return all;
}

TEST(CompositeRecord, HasItsBytesAndCountsInSixteenBits)
{
    Bytes const number{0, 0, 0, 1, 0, 0, 0, 4, 2, 5, 0, 0, 0, 1};
    Bytes const composite{0, 0, 0, 4, 0, 0, 0, 16, 0xfd, 0, 0, 1};
    EXPECT_EQ(RecordOf(*ListOf({Number(1), ListOf({Number(1)}, 4)})).payload,
              Joined(Bytes{0, 2}, number, composite, number));
    // Five bytes of the sparse text stand where 24 were measured; the next follows at once, the rest is zero.
    Bytes const sparse{0, 0, 0, 7, 0, 0, 0, 5, 9, 0, 'a', 'b', 'c', 'd', 0};
    EXPECT_EQ(RecordOf(*ListOf({Hold(StringSparseItem::Create(7, "abcd")), Number(1)})).payload,
              Joined(Bytes{0, 2}, sparse, number, Bytes(19, 0)));
    Record const record = RecordOf(*ListOf(std::vector<Item>(65'537, Number(5))));
    EXPECT_EQ(record.payload.size(), 2 + 65'537 * 14U);
    EXPECT_EQ(Printed(*Rebuild(record).second), "(5)");
}

/// What a composite should write, by what each of its members writes alone.
Bytes PlainPayload(CompositeItem const& composite)
{
    Bytes bytes(2);
    boost::endian::store_big_u16(bytes.data(), static_cast<std::uint16_t>(composite.GetSize()));
    for (unsigned int i = 0; i < composite.GetSize(); ++i) {
        ItemBase::SerialStruct_t record;
        composite.GetItem(i)->Serialize(&record); // whatever it returns
        if (!record.data)
            record.Clear(); // a size without bytes is no record
        std::span const header(reinterpret_cast<unsigned char const*>(&record), 10);
        bytes = Joined(bytes, header, std::span(record.data, boost::endian::big_to_native(std::uint32_t{record.size})));
    }
    bytes.resize(std::max<std::size_t>(bytes.size(), composite.GetSerialDataSize()));
    return bytes;
}

/// Reads a composite by what each record in it gives alone.
int PlainRead(CompositeItem& composite, Bytes const& payload)
{
    if (payload.size() < 2)
        return IfErrInvalidArgument;
    std::size_t next = 12; // behind the header of the next member
    for (int left = payload[0] << 8 | payload[1]; left > 0; --left) {
        if (payload.size() < next)
            return -1;
        auto const* const data = payload.data() + next;
        std::size_t const size = boost::endian::load_big_u32(data - 6);
        if (size > payload.size() - next)
            return -1;
        auto const [code, member] =
            Rebuild({boost::endian::load_big_u32(data - 10), data[-2], data[-1], Bytes(data, data + size)});
        if (code != 0)
            return -1;
        composite.AddItem(member);
        next += 10 + member->GetSerialDataSize();
    }
    return 0;
}

TEST(CompositeRecord, IsWhatItsMembersAreAloneWhateverTheBytes)
{
    std::mt19937 random(1);
    auto const below = [&random](std::size_t end) { return static_cast<unsigned int>(random() % end); };
    std::vector<Item> leaves{Text("two words"), Make<CollectionItem>(4U), Hold(StringSparseItem::Create(5, "abcd"))};
    leaves.insert(leaves.end(), {new Scripted(9, 1, false), new Scripted(30, 1, true), new Scripted(0, 40, true)});
    leaves.insert(leaves.end(), {BoolItem::Create(6, true), new BoolItem(7), EnumItem::Create(8, -3), Text("")});
    leaves.push_back(Hold(NumericArrayItem<U8Traits>::Create(9, {1, 2, 3, 4, 5, 6, 7, 8}))); // as large as a number
    for (std::size_t const size : {1U, 15U, 16U, 565U, 566U, 700U, 5000U}) // longer than what is written straight
        leaves.push_back(Text(std::string(size, 'x')));
    leaves.push_back(Text({"a\0b", 3})); // read back, it ends early
    ForAllTraits([&]<typename T>(T) {    // more of each class than are written at once
        for (unsigned char i = 0; i < 100; ++i)
            leaves.push_back(Hold(NumericItem<T>::Create(i, typename T::T(i))));
    });
    auto const grow = [&](auto const& self, unsigned int depth) -> boost::intrusive_ptr<CompositeItem> {
        auto const composite = Make<CompositeItem>(below(1000));
        for (unsigned int i = below(5); i > 0; --i) {
            auto const rest = std::span(leaves).subspan(below(below(2) == 0 ? 18 : leaves.size()));
            for (Item const& leaf : rest.first(std::min<std::size_t>(rest.size(), below(20) == 0 ? 200 : 1)))
                composite->AddItem(leaf);
            if (depth > 0 && below(2) == 0)
                composite->AddItem(self(self, depth - 1));
        }
        return composite;
    };
    for (int round = 0; round < 1000; ++round) {
        auto const tree = grow(grow, 5);
        Record record = RecordOf(*tree);
        ASSERT_EQ(record.payload, PlainPayload(*tree));
        ASSERT_TRUE(Hold(tree->DeepCopy())->IsEqualValue(tree));
        for (int damage = 0; damage < 20; ++damage) {
            auto const expected = ListOf({Number(1)}, record.id); // a reading appends
            auto const actual = Hold(expected->DeepCopy());
            ASSERT_EQ(Read(*actual, record), PlainRead(*expected, record.payload));
            ASSERT_EQ(RecordOf(*actual).payload, RecordOf(*expected).payload);
            record.payload.resize(record.payload.size() - below(record.payload.size() / 8 + 1));
            for (unsigned int i = below(3); i > 0; --i)
                record.payload[below(record.payload.size())] = static_cast<unsigned char>(below(2) * below(256));
        }
    }
}

/// A chain of lists around one member.
auto Nest(auto list, unsigned int depth, auto&& make)
{
    for (; depth > 0; --depth)
        list = make(list);
    return list;
}

TEST(DeepTree, IsWalkedOnABoundedStack)
{
    auto const make = [](Info const& member) { return Info(SchemaOf({member})); };
    Info const schema = Nest(Info(MakeInfo<U32Info>()), k_deep, make);
    EXPECT_TRUE(schema->IsEqualBounds(Hold(schema->DeepCopy())));
    EXPECT_GT(Printed(*schema).size(), k_deep * 2U);

    auto const item = Hold(schema->CreateItem());
    EXPECT_EQ(item->Validate(schema), nullptr);
    EXPECT_EQ(item->GetSerialDataSize(), k_deep * 12U + 4);
    auto const rebuilt = Rebuild(RecordOf(*item)).second;
    EXPECT_EQ(Printed(*rebuilt).size(), k_deep * 2U + 1);
    CompositeItem copy(1);
    EXPECT_EQ(copy.AssignValue(rebuilt, nullptr), 0);
    EXPECT_TRUE(item->IsEqualValue(Hold(copy.DeepCopy())));
}

// Each list stands twice in the next one, so that there are 2^40 leaves.
TEST(DeepTree, OfSharedListsIsComparedOnce)
{
    auto const twice = [](Item const& member) { return Item(ListOf({member, member})); };
    auto const nan = Hold(NumericItem<FloatTraits>::Create(1, std::numeric_limits<float>::quiet_NaN()));
    auto const tree = [&](Item const& leaf) { return Nest(leaf, 40, twice); };
    Item const item = tree(Number(1));
    EXPECT_TRUE(item->IsEqualValue(item) && item->IsEqualValue(tree(Number(1))));
    EXPECT_FALSE(item->IsEqualValue(tree(Number(2))));
    EXPECT_FALSE(tree(nan)->IsEqualValue(tree(nan))); // equality is still that of the leaves
}

/// Derived classes may have destructors and fields of their own: ending them is still no recursion.
struct Holding : CompositeItem
{
    using CompositeItem::CompositeItem;
    Item held;
};

TEST(DeepTree, OfAnyClassesEndsOnABoundedStack)
{
    std::vector<unsigned int> log;
    auto make = [i = 0](Item const& member) mutable -> Item {
        if (++i % 2 == 0)
            return ListOf<CollectionItem>({member, member}); // shared within one list
        auto const holding = ListOf<Holding>({i % 4 == 1 ? member : Number(2)});
        holding->held = member;
        return holding;
    };
    // A list inside that someone else holds ends the walk there, and lives on.
    Item half = Nest(Item(new Logged(1, log)), k_deep / 3, make);
    Item whole = Nest(half, k_deep / 3, make);
    whole.reset();
    EXPECT_EQ(half->GetRefCount(), 1);
    half.reset();
    EXPECT_EQ(log.size(), 1U);
}

} // namespace
} // namespace Legacy::If::Test
