#include "TestSupport.h"

#include <Legacy/If/Collection.h>
#include <Legacy/If/Composite.h>
#include <Legacy/If/Numeric.h>
#include <Legacy/If/String.h>
#include <Legacy/If/StringArray.h>
#include <Legacy/If/StringSparse.h>

#include <sys/resource.h>

#include <cstring>
#include <random>
#include <span>

namespace Legacy::If::Test {
namespace {

using U32Info = NumericInfo<U32Traits>;
using U32Item = NumericItem<U32Traits>;
using Item = boost::intrusive_ptr<ItemBase>;
using Info = boost::intrusive_ptr<InfoBase>;

#if defined(__SANITIZE_ADDRESS__)
constexpr unsigned int k_deep = 200'000; // the checker's own book-keeping is what takes long
#else
constexpr unsigned int k_deep = 1'000'000;
#endif

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

/// A member that counts how many of its kind live.
struct Counted : StringItem
{
    explicit Counted(int& living) : StringItem(5), m_living(living) { ++m_living; }
    ~Counted() override { --m_living; }
    int& m_living;
};

template<typename Types>
struct Lists : testing::Test
{};

template<typename InfoClass, typename ItemClass, IfType_t Tag>
struct Family
{
    using Schema = InfoClass;
    using Value = ItemClass;
    static constexpr IfType_t k_type = Tag;
};

using Families = testing::Types<Family<CompositeInfo, CompositeItem, IfType_t::Composite>,
                                Family<CollectionInfo, CollectionItem, IfType_t::Collection>>;
TYPED_TEST_SUITE(Lists, Families);

TYPED_TEST(Lists, HoldNoNull)
{
    auto const schema = MakeInfo<typename TypeParam::Schema>();
    auto const value = Make<typename TypeParam::Value>(1U);
    EXPECT_EQ(schema->GetType(), TypeParam::k_type);
    EXPECT_EQ(value->GetType(), TypeParam::k_type);
    EXPECT_EQ(value->GetNumericType(), NumericType_t::Undefined);
    EXPECT_TRUE(value->IsEmpty());

    Info const a = MakeInfo<U32Info>();
    Item const x = Number(1);
    unsigned int index = 77;
    EXPECT_FALSE(schema->AddInfo(nullptr));
    EXPECT_FALSE(schema->AddInfo(nullptr, index));
    EXPECT_FALSE(value->AddItem(nullptr, index));
    EXPECT_EQ(index, 77U);
    EXPECT_TRUE(schema->AddInfo(a));
    EXPECT_TRUE(schema->AddInfo(a, index)); // the same object twice
    EXPECT_EQ(index, 1U);
    EXPECT_TRUE(value->AddItem(x, index));
    EXPECT_EQ(index, 0U);
    EXPECT_FALSE(schema->SetInfo(2, a));
    EXPECT_FALSE(schema->SetInfo(0, nullptr));
    EXPECT_FALSE(value->SetItem(1, x));
    EXPECT_EQ(schema->GetInfo(2), nullptr);
    EXPECT_EQ(std::as_const(*value).GetItem(1), nullptr);
    EXPECT_FALSE(value->IsPresent(1));

    Item const y = Number(2);
    value->SetItems({nullptr, x, nullptr, y});
    EXPECT_EQ(value->GetSize(), 2U);
    EXPECT_EQ(value->GetItem(1), y);
    EXPECT_TRUE(value->SetItem(0, y));
    std::vector<Item> items(5);
    value->GetItems(items);
    EXPECT_EQ(items, (std::vector<Item>{y, y}));
    std::vector<typename TypeParam::Schema::ConstPointer> infos(5);
    std::as_const(*schema).GetInfos(infos);
    EXPECT_EQ(infos.size(), 2U);
    value->SetItems({});
    EXPECT_TRUE(value->IsEmpty());
    EXPECT_EQ(x->GetRefCount(), 1);
    EXPECT_EQ(y->GetRefCount(), 3);
}

TYPED_TEST(Lists, ShareMembersUnlessDuplicated)
{
    using Schema = typename TypeParam::Schema;
    using Value = typename TypeParam::Value;
    auto const value = ListOf<Value>({Number(1), ListOf<Value>({Number(2)}, 8)});
    Value assigned(3);
    assigned = *value;
    EXPECT_EQ(assigned.GetId(), 3U);
    EXPECT_EQ(assigned.GetItem(0), value->GetItem(0));
    EXPECT_EQ(Value(*value).GetId(), 1U);
    auto const copy = Hold(value->DeepCopy(4));
    static_assert(std::is_same_v<decltype(copy), boost::intrusive_ptr<Value> const>);
    EXPECT_EQ(copy->GetId(), 4U);
    EXPECT_NE(copy->GetItem(0), value->GetItem(0));
    EXPECT_EQ(copy->GetItem(0)->GetId(), 1U);
    EXPECT_EQ(copy->GetItem(1)->GetId(), 8U);
    EXPECT_EQ(copy->GetItem(1)->GetRefCount(), 2); // the list's and this one
    EXPECT_TRUE(copy->IsEqualValue(value));
    EXPECT_EQ(Printed(*copy), "(1, (2))");

    auto const schema = SchemaOf<Schema>({MakeInfo<U32Info>(), SchemaOf<Schema>({MakeInfo<StringInfo>()})});
    auto const twin = Hold(schema->DeepCopy(9, "twin"));
    EXPECT_EQ(twin->GetName(), "twin");
    EXPECT_NE(twin->GetInfo(1), schema->GetInfo(1));
    EXPECT_EQ(twin->GetInfo(1)->GetName(), "speed");
    EXPECT_TRUE(twin->IsEqualBounds(schema));
    Schema target(2, "target", {});
    EXPECT_EQ(Assign(target, schema), (Outcome{0, 1}));
    EXPECT_EQ(Assign(target, schema), (Outcome{0, 1})); // whatever the lists
    EXPECT_EQ(target.GetInfo(1), schema->GetInfo(1));
    EXPECT_EQ(target.GetName(), "target");
    EXPECT_EQ(Assign(target, nullptr), (Outcome{IfErrNullSource, -1}));
    EXPECT_EQ(Assign(target, MakeInfo<U32Info>()), (Outcome{IfErrTypeNotAssignable, -1}));
    EXPECT_EQ(schema->MergeBounds(schema), IfErrTypeNotAssignable);
    EXPECT_EQ(target.GetSize(), 2U);
}

TYPED_TEST(Lists, AreEqualMemberByMember)
{
    using Schema = typename TypeParam::Schema;
    using Value = typename TypeParam::Value;
    struct Derived : Value
    {
        using Value::Value;
    };
    auto const derived = Make<Derived>(1U);
    derived->AddItem(Number(2));
    auto const nested = [](Item const& inner) { return ListOf<Value>({Number(1), inner}); };
    struct Case
    {
        Item a, b;
        bool equal;
    };
    for (auto const& [a, b, equal] :
         {Case{nested(Text("")), nested(Text("")), true}, Case{nested(Number(2)), nested(Number(3)), false},
          Case{nested(Number(2)), nested(Text("2")), false}, Case{nested(Number(2)), ListOf<Value>({Number(1)}), false},
          Case{ListOf<Value>({}), ListOf<Value>({}), true},
          Case{ListOf<CompositeItem>({}), ListOf<CollectionItem>({}), false},
          Case{nested(ListOf<Value>({})), nested(ListOf<Value>({Number(1)})), false},
          Case{nested(ListOf<CompositeItem>({})), nested(ListOf<CollectionItem>({})), false},
          Case{nested(ListOf<Value>({Number(2)})), nested(derived), true}, Case{nested(Number(2)), nullptr, false}})
    {
        EXPECT_EQ(a->IsEqualValue(b), equal) << Printed(*a);
        if (b) {
            EXPECT_EQ(b->IsEqualValue(a), equal) << Printed(*b);
        }
    }
    auto const bounded = MakeInfo<StringInfo>();
    auto const schema = SchemaOf<Schema>({SchemaOf<Schema>({MakeInfo<StringInfo>()})});
    auto const other = SchemaOf<Schema>({SchemaOf<Schema>({bounded})});
    EXPECT_TRUE(schema->IsEqualBounds(other));
    bounded->SetMaxLength(1);
    EXPECT_FALSE(schema->IsEqualBounds(other));
    EXPECT_FALSE(schema->IsEqualBounds(nullptr));
    EXPECT_FALSE(schema->IsEqualBounds(MakeInfo<Schema>()));
}

TYPED_TEST(Lists, PrintTheirMembers)
{
    using Value = typename TypeParam::Value;
    auto const schema = SchemaOf<typename TypeParam::Schema>({MakeInfo<StringInfo>(), MakeInfo<StringInfo>()});
    std::string const type = TypeParam::k_type == IfType_t::Composite ? "Composite" : "Collection";
    EXPECT_EQ(Dumped(*schema), "id: 7\npermission: 4660\nname: speed\ntype: " + type + "\n");
    EXPECT_EQ(Printed(*schema), "(\"\"; max length=256, \"\"; max length=256)");
    auto const value = ListOf<Value>({Number(1), ListOf<Value>({}), Number(2), ListOf<Value>({Number(3)})});
    EXPECT_EQ(Printed(*value), "(1, (), 2, (3))");
    EXPECT_EQ(Dumped(*value), "id: 1\ntype: " + type + "\nvalue: (4 items)");
    EXPECT_EQ(Printed(Value(1)), "()");
}

TYPED_TEST(Lists, ReleaseMembersInOrderAndOnce)
{
    using Value = typename TypeParam::Value;
    struct Logged : StringItem
    {
        Logged(unsigned int id, std::vector<unsigned int>& log) : StringItem(id), m_log(log) {}
        ~Logged() override { m_log.push_back(GetId()); }
        std::vector<unsigned int>& m_log;
    };
    std::vector<unsigned int> log;
    auto const logged = [&log](unsigned int id) { return Item(new Logged(id, log)); };
    Item const kept = logged(9);
    auto value = ListOf<Value>({logged(1), ListOf<Value>({logged(4), kept}), logged(2), kept, kept, logged(3)});
    value.reset();
    EXPECT_EQ(log, (std::vector<unsigned int>{1, 2, 3, 4})); // members of members follow
    EXPECT_EQ(kept->GetRefCount(), 1);

    int living = 0;
    auto const list = ListOf<Value>({Item(new Counted(living)), Item(new Counted(living))});
    list->SetItem(0, list->GetItem(1));
    EXPECT_EQ(living, 1);
    list->SetItems({list->GetItem(0), list->GetItem(1)}); // from its own members
    *list = *list;
    EXPECT_EQ(list->GetSize(), 2U);
    EXPECT_EQ(living, 1);
    *list = Value(3);
    EXPECT_EQ(living, 0);
}

TEST(Composite, AndCollectionDifferHere)
{
    auto const composite = ListOf<CompositeItem>({Number(1)});
    auto const collection = ListOf<CollectionItem>({Number(1)});
    CompositeItem copied(2);
    CollectionItem shared(2);
    EXPECT_EQ(Assign(copied, composite), (Outcome{0, 1}));
    EXPECT_EQ(Assign(copied, composite), (Outcome{0, 1})); // whatever the values
    EXPECT_EQ(Assign(shared, collection), (Outcome{0, 1}));
    EXPECT_NE(copied.GetItem(0), composite->GetItem(0));
    EXPECT_EQ(shared.GetItem(0), collection->GetItem(0));
    EXPECT_EQ(Assign(copied, collection), (Outcome{IfErrTypeNotAssignable, 0})); // written, unlike elsewhere
    bool changed = true;
    EXPECT_EQ(copied.AssignArrayValue(collection, 0, &changed), IfErrTypeNotAssignable);
    EXPECT_FALSE(changed);
    EXPECT_EQ(Assign(shared, composite), (Outcome{IfErrTypeNotAssignable, -1}));
    EXPECT_EQ(Assign(copied, nullptr), (Outcome{IfErrNullSource, -1}));
    EXPECT_EQ(Assign(shared, nullptr), (Outcome{IfErrNullSource, -1}));
    EXPECT_EQ(copied.GetSize() + shared.GetSize(), 2U);

    auto const number = MakeInfo<U32Info>();
    number->SetDefault(5);
    EXPECT_EQ(Printed(*Hold(SchemaOf<CompositeInfo>(
                                {number, SchemaOf<CompositeInfo>({number}), SchemaOf<CollectionInfo>({number})})
                                ->CreateItem())),
              "(5, (5), ())");
    auto const created = Hold(SchemaOf<CollectionInfo>({number})->CreateItem());
    EXPECT_EQ(Printed(*created), "()");
    EXPECT_EQ(created->GetType(), IfType_t::Collection);
    EXPECT_EQ(created->GetId(), 7U);

    EXPECT_EQ(Validated(*collection, nullptr), Texts{});
    EXPECT_EQ(ReadText(*collection, "1"), std::pair(false, std::string("Impl. me")));
    ItemBase::SerialStruct_t record;
    EXPECT_EQ(collection->GetSerialDataSize(), 0U);
    EXPECT_EQ(collection->Serialize(&record), IfErrTypeNotAssignable);
    EXPECT_EQ(collection->Serialize(nullptr), IfErrTypeNotAssignable);
    EXPECT_EQ(record.data, nullptr);
    EXPECT_EQ(Rebuild({1, 0xfe, 0, {}}).first, IfErrTypeNotAssignable);
}

TEST(Composite, TakesItselfAndItsOwnMembers)
{
    auto const composite = ListOf({ListOf({Number(1), Number(2)}), Number(3)});
    auto const before = composite->GetItem(0);
    EXPECT_EQ(composite->AssignValue(composite, nullptr), 0);
    EXPECT_EQ(Printed(*composite), "((1, 2), 3)");
    EXPECT_EQ(before->GetRefCount(), 1); // duplicates took its place
    EXPECT_EQ(composite->AssignArrayValue(composite->GetItem(0), 0, nullptr), 0);
    EXPECT_EQ(Printed(*composite), "(1, 2)");
    auto const collection = ListOf<CollectionItem>({ListOf<CollectionItem>({Number(1)})});
    EXPECT_EQ(collection->AssignValue(collection, nullptr), 0);
    EXPECT_EQ(collection->AssignArrayValue(collection->GetItem(0), 0, nullptr), 0);
    EXPECT_EQ(Printed(*collection), "(1)");
}

TEST(Composite, ValidatesShapeAlone)
{
    auto const number = MakeInfo<U32Info>();
    number->SetMax(5);
    auto const schema = SchemaOf<CompositeInfo>({number, MakeInfo<StringInfo>()});
    auto const item = ListOf({Number(1), Text("x")});
    EXPECT_EQ(Validated(*item, schema), Texts{});
    item->SetItem(0, Number(6)); // out of its bounds
    EXPECT_EQ(Validated(*item, schema), Texts{});
    item->SetItem(1, Number(6));
    EXPECT_EQ(Validated(*item, schema), (Texts{"TypesSystemCompositeTypeMismatch", "speed", "1"}));
    schema->AddInfo(number);
    EXPECT_EQ(Validated(*item, schema), (Texts{"TypesSystemCompositeValidationSize", "speed", "2"}));
    EXPECT_EQ(Validated(*item, nullptr),
              (Texts{"TypesSystemValidateTypeMismatch", "Unknown", "NULL-Info", "Composite(Undefined)"}));
    EXPECT_EQ(Validated(*item, MakeInfo<CollectionInfo>()),
              (Texts{"TypesSystemValidateTypeMismatch", "speed", "Collection(Undefined)", "Composite(Undefined)"}));
    for (auto const half : {&ItemBase::ValidateMin, &ItemBase::ValidateMax})
        EXPECT_EQ(MessageOf(*item, [&] { return (item.get()->*half)(schema); }),
                  (Texts{"TypesSystemIllegalValidatationError", "speed", "Composite(Undefined)"}));
}

TEST(Composite, ReadsOneLevelOfMembers)
{
    auto const pair = SchemaOf<CompositeInfo>({MakeInfo<U32Info>(), MakeInfo<StringInfo>()});
    auto const item = ListOf({Text("old")});
    std::string const invalid = "Invalid use of CompositeItem::SetValFromStream\n";
    for (InfoPtr const& info : {InfoPtr(), InfoPtr(MakeInfo<CollectionInfo>()), InfoPtr(MakeInfo<U32Info>())}) {
        EXPECT_EQ(ReadText(*item, "1 x", info), std::pair(false, invalid));
        EXPECT_EQ(Printed(*item), "(old)");
    }
    EXPECT_EQ(ReadText(*item, "1 x", pair), std::pair(true, std::string("CompositeItem with 2 items\n")));
    EXPECT_EQ(Printed(*item), "(1, x)");
    EXPECT_EQ(item->GetItem(0)->GetRefCount(), 2);
    pair->AddInfo(SchemaOf<CompositeInfo>({}));
    EXPECT_EQ(ReadText(*item, "2 y", pair), std::pair(false, "CompositeItem with 3 items\n" + invalid));
    EXPECT_EQ(Printed(*item), "(2, y)"); // what was read stays
    EXPECT_EQ(ReadText(*item, "z y", pair),
              std::pair(false, std::string("CompositeItem with 3 items\nError parsing numericItem\n")));
    EXPECT_TRUE(item->IsEmpty());
}

/// Schema and value that only claim to be composites.
struct FalseInfo : StringInfo
{
    using StringInfo::StringInfo;
    IfType_t GetType() const override { return IfType_t::Composite; }
};

struct FalseItem : StringItem
{
    using StringItem::StringItem;
    IfType_t GetType() const override { return IfType_t::Composite; }
};

TEST(Composite, IsNotDeceivedByATag)
{
    auto const item = ListOf({Number(1)});
    EXPECT_EQ(Assign(*item, Make<FalseItem>(1U)), (Outcome{IfErrTypeNotAssignable, 0}));
    EXPECT_EQ(Assign(*MakeInfo<CompositeInfo>(), MakeInfo<FalseInfo>()), (Outcome{IfErrTypeNotAssignable, -1}));
    EXPECT_FALSE(item->IsEqualValue(Make<FalseItem>(1U)));
    EXPECT_FALSE(ListOf({item})->IsEqualValue(ListOf({Make<FalseItem>(1U)})));
    EXPECT_FALSE(SchemaOf({Info(MakeInfo<CompositeInfo>())})->IsEqualBounds(SchemaOf({Info(MakeInfo<FalseInfo>())})));
    EXPECT_EQ(Validated(*item, MakeInfo<FalseInfo>()).at(0), "TypesSystemValidateTypeMismatch");
    EXPECT_FALSE(ReadText(*item, "1", MakeInfo<FalseInfo>()).first);
    EXPECT_EQ(item->GetSize(), 1U);
}

/// A member whose record is what a test says: it predicts `predicted` bytes, writes `payload` and returns `code`.
struct Scripted : StringItem
{
    Scripted(unsigned int predicted, Bytes payload, int code = 0)
        : StringItem(0x55), m_predicted(predicted), m_payload(std::move(payload)), m_code(code)
    {}
    unsigned int GetSerialDataSize() const override { return m_predicted; }
    int Serialize(SerialStruct_t* record) const override
    {
        record->id = boost::endian::native_to_big(std::uint32_t{0x55});
        record->size = boost::endian::native_to_big(static_cast<std::uint32_t>(m_payload.size()));
        record->type = 6;
        record->data = m_code == IfErrInvalidArgument ? nullptr : new unsigned char[m_payload.size()];
        if (record->data)
            std::copy(m_payload.begin(), m_payload.end(), record->data);
        return m_code;
    }
    unsigned int m_predicted;
    Bytes m_payload;
    int m_code;
};

Bytes Joined(std::initializer_list<Bytes> parts)
{
    Bytes all;
    for (Bytes const& part : parts)
        all.insert(all.end(), part.begin(), part.end());
    return all;
}

/// The record of a member as it stands in a composite.
Bytes Wire(unsigned char id, unsigned char type, Bytes const& payload, unsigned char numericType = 0)
{
    return Joined({{0, 0, 0, id, 0, 0, 0, static_cast<unsigned char>(payload.size()), type, numericType}, payload});
}

TEST(CompositeRecord, HasItsBytes)
{
    Bytes const zeros(10, 0);
    Bytes const number = Wire(1, 2, {0, 0, 0, 1}, 5);
    Bytes const two{0, 2};
    auto const scripted = [](unsigned int predicted, Bytes const& payload, int code = 0) {
        return Item(new Scripted(predicted, payload, code));
    };
    struct Case
    {
        std::vector<Item> members;
        Bytes payload;
    };
    for (auto const& [members, payload] : {
             Case{{}, {0, 0}},
             Case{{Number(1), Text("ab")}, Joined({two, number, Wire(9, 6, {'a', 'b', 0})})},
             Case{{ListOf({}, 3), ListOf({Number(1)}, 4)},
                  Joined({two, Wire(3, 0xfd, {0, 0}), Wire(4, 0xfd, Joined({{0, 1}, number}))})},
             Case{{ListOf<CollectionItem>({Number(1)}), Number(1)}, Joined({two, zeros, number})},
             // Five bytes of the sparse text stand where 24 were measured; the next follows at once, the rest is zero.
             Case{{Hold(StringSparseItem::Create(7, "abcd")), Number(1)},
                  Joined({two, Wire(7, 9, {'a', 'b', 'c', 'd', 0}), number, Bytes(19, 0)})},
             Case{{ListOf({Hold(StringSparseItem::Create(7, "abcd"))}, 3), Number(1)},
                  Joined({two, Wire(3, 0xfd, Joined({{0, 1}, Wire(7, 9, {'a', 'b', 'c', 'd', 0}), Bytes(19, 0)})),
                          number})},
             // More than was predicted is room made and told, at each level.
             Case{{ListOf({scripted(0, Bytes(40, 7))}, 3), Number(1)},
                  Joined({two, Wire(3, 0xfd, Joined({{0, 1}, Wire(0x55, 6, Bytes(40, 7))})), number})},
             Case{{scripted(3, {7}), scripted(0, {8, 8})}, Joined({two, Wire(0x55, 6, {7}), Wire(0x55, 6, {8, 8})})},
             // A code is not looked at; a size without bytes is no record.
             Case{{scripted(1, {7}, IfErrNotSerializable), Number(1)}, Joined({two, Wire(0x55, 6, {7}), number})},
             Case{{scripted(0, {7}, IfErrInvalidArgument), Number(1)}, Joined({two, zeros, number})},
         })
    {
        auto const composite = ListOf(members, 0x01020304);
        Record const record = RecordOf(*composite);
        EXPECT_EQ(record.payload, payload) << Printed(*composite);
        EXPECT_EQ(record.id, 0x01020304U);
        EXPECT_EQ(record.type, 0xfd);
        EXPECT_EQ(record.numericType, 0);
    }
    EXPECT_EQ(CompositeItem(1).Serialize(nullptr), IfErrInvalidArgument);
}

/// Address space that the program may use while this lives; the address checker has its own idea of that.
class MemoryLimit
{
public:
    explicit MemoryLimit([[maybe_unused]] rlim_t bytes)
    {
        getrlimit(RLIMIT_AS, &m_before);
#if !defined(__SANITIZE_ADDRESS__)
        rlimit const limit{bytes, m_before.rlim_max};
        setrlimit(RLIMIT_AS, &limit);
#endif
    }
    ~MemoryLimit() { setrlimit(RLIMIT_AS, &m_before); }
    MemoryLimit(MemoryLimit const&) = delete;
    MemoryLimit& operator=(MemoryLimit const&) = delete;

private:
    rlimit m_before{};
};

template<typename Traits>
void ExpectNumberAsItWritesItself()
{
    for (double const value : {0.0, 1.5, 77.0, -3.0}) {
        Item const number = Hold(
            NumericItem<Traits>::Create(0x01020304, static_cast<typename Traits::T>(static_cast<long long>(value))));
        ItemBase::SerialStruct_t record;
        number->Serialize(&record);
        auto const* const header = reinterpret_cast<unsigned char const*>(&record);
        Bytes const expected = Joined({{0, 1}, Bytes(header, header + 10), RecordOf(*number).payload});
        EXPECT_EQ(RecordOf(*ListOf({number})).payload, expected);
    }
}

TEST(CompositeRecord, HoldsNumbersAsTheyWriteThemselves)
{
    ExpectNumberAsItWritesItself<U8Traits>();
    ExpectNumberAsItWritesItself<S8Traits>();
    ExpectNumberAsItWritesItself<U16Traits>();
    ExpectNumberAsItWritesItself<S16Traits>();
    ExpectNumberAsItWritesItself<U32Traits>();
    ExpectNumberAsItWritesItself<S32Traits>();
    ExpectNumberAsItWritesItself<U64Traits>();
    ExpectNumberAsItWritesItself<S64Traits>();
    ExpectNumberAsItWritesItself<FloatTraits>();
    ExpectNumberAsItWritesItself<DoubleTraits>();
}

TEST(CompositeRecord, IsRefusedBeyondItsSizeWord)
{
    constexpr auto most = std::numeric_limits<unsigned int>::max();
    auto const huge = Item(new Scripted(most - 12, {}));
    for (auto const& members : {std::vector<Item>{huge}, std::vector<Item>{ListOf({huge, huge}), ListOf({huge, huge})}})
    {
        ItemBase::SerialStruct_t record;
        EXPECT_EQ(ListOf(members)->Serialize(&record), IfErrInvalidArgument);
        EXPECT_EQ(record.data, nullptr);
        EXPECT_EQ(ListOf(members)->GetSerialDataSize(), most);
    }

    // One text in a thousand places: more than can be written, and refused before it is.
    Item many = Text(std::string(16'000'000, 'x'));
    for (int i = 0; i < 10; ++i)
        many = ListOf({many, many});
    MemoryLimit const limit(1'000'000'000);
    ItemBase::SerialStruct_t record;
    EXPECT_EQ(many->Serialize(&record), IfErrInvalidArgument);
}

TEST(CompositeRecord, CountsInSixteenBits)
{
    auto const many = ListOf(std::vector<Item>(65'537, Text("")));
    Record const record = RecordOf(*many);
    EXPECT_EQ(record.payload.size(), 2 + 65'537 * 11U);
    EXPECT_EQ(record.payload[1], 1);
    auto const [code, item] = Rebuild(record);
    EXPECT_EQ(code, 0);
    EXPECT_EQ(Printed(*item), "()"); // one empty text
    EXPECT_EQ(dynamic_cast<CompositeItem&>(*item).GetSize(), 1U);
}

TEST(CompositeRecord, ComesBack)
{
    auto const tree = ListOf({Number(1), ListOf({Text("a b"), ListOf({}), ListOf({Number(2)}, 5)}), Text("")}, 6);
    auto const [code, item] = Rebuild(RecordOf(*tree));
    EXPECT_EQ(code, 0);
    EXPECT_EQ(item->GetId(), 6U);
    EXPECT_TRUE(item->IsEqualValue(tree));
    EXPECT_EQ(RecordOf(*item).payload, RecordOf(*tree).payload);
    EXPECT_EQ(Read(*item, RecordOf(*tree)), 0); // appended to what stands
    EXPECT_EQ(dynamic_cast<CompositeItem&>(*item).GetSize(), 6U);

    for (Record const& foreign : {Record{7, 0xfd, 0, {0, 0}}, Record{6, 0xfe, 0, {0, 0}}, Record{6, 0xfd, 1, {0, 0}},
                                  Record{6, 0xfd, 0, {0}}, Record{6, 0xfd, 0, {}}})
        EXPECT_EQ(Read(*tree, foreign), IfErrInvalidArgument);
    EXPECT_EQ(tree->Deserialize(nullptr), IfErrNullArgument);
    EXPECT_EQ(tree->GetSize(), 3U);
}

TEST(CompositeRecord, KeepsWhatCameBeforeAFailure)
{
    Bytes const text = Wire(9, 6, {'a', 0});
    Bytes const good = Joined({text, Wire(3, 0xfd, {0, 0})});
    Bytes const sparse = Wire(7, 9, {'a', 'b', 'c', 'd', 0});
    struct Case
    {
        Bytes payload;
        int code;
        char const* kept;
    };
    for (auto const& [payload, code, kept] : {
             Case{Joined({{0, 3}, good}), -1, "(a, ())"},                    // one too few
             Case{Joined({{0, 1}, good}), 0, "(a)"},                         // one too many is not looked at
             Case{Joined({{0, 3}, good, Bytes(10, 0)}), -1, "(a, ())"},      // no serial form
             Case{Joined({{0, 3}, good, Wire(1, 0xfe, {})}), -1, "(a, ())"}, // a collection
             Case{Joined({{0, 3}, good, Wire(1, 2, {1}, 5)}), -1, "(a, ())"},
             Case{Joined({{0, 3}, good, Wire(1, 0xfd, {0})}), -1, "(a, ())"},
             Case{Joined({{0, 3}, good, Wire(1, 0xfd, {0, 0}, 1)}), -1, "(a, ())"},
             Case{Joined({{0, 2}, text, Wire(1, 0xfd, Joined({{0, 2}, text}))}), -1, "(a)"}, // the inner one goes
             Case{Joined({{0, 2}, text, {0, 0, 0, 1, 0xff, 0xff, 0xff, 0xff, 0xfd, 0, 0, 0}}), -1, "(a)"},
             Case{Joined({{0xff, 0xff}}), -1, "()"},
             // The step behind a sparse text is 34, not 15: the last may be one, the next is looked for further on.
             Case{Joined({{0, 1}, sparse}), 0, "(abcd)"},
             Case{Joined({{0, 2}, sparse, text, Bytes(19, 0)}), -1, "(abcd)"},
             Case{Joined({{0, 2}, sparse, Bytes(19, 1), text}), 0, "(abcd, a)"},
             Case{Joined({{0, 2}, Wire(3, 0xfd, Joined({{0, 1}, sparse})), Bytes(19, 1), text}), 0, "((abcd), a)"},
             // A text that ends before its size does leaves the next header to be found inside it.
             Case{Joined({{0, 2}, Wire(9, 6, Joined({{'b', 0}, text}))}), 0, "(b, a)"},
         })
    {
        auto const [result, item] = Rebuild({1, 0xfd, 0, payload});
        EXPECT_EQ(result, code) << kept;
        EXPECT_EQ(Printed(*item), kept);
    }
}

/// The contract of writing and reading, spelled out level by level: what the real thing does with a stack of its own.
Bytes ReferencePayload(CompositeItem const& composite)
{
    Bytes payload{static_cast<unsigned char>(composite.GetSize() >> 8),
                  static_cast<unsigned char>(composite.GetSize())};
    for (unsigned int i = 0; i < composite.GetSize(); ++i) {
        ItemPtr const member = composite.GetItem(i);
        ItemBase::SerialStruct_t record;
        Bytes bytes;
        if (auto const* const nested = dynamic_cast<CompositeItem const*>(member.get())) {
            bytes = ReferencePayload(*nested);
            record.id = boost::endian::native_to_big(nested->GetId());
            record.size = boost::endian::native_to_big(static_cast<std::uint32_t>(bytes.size()));
            record.type = 0xfd;
        } else {
            member->Serialize(&record);
            bytes.assign(record.data, record.data + boost::endian::big_to_native(std::uint32_t{record.size}));
        }
        auto const* const header = reinterpret_cast<unsigned char const*>(&record);
        payload.insert(payload.end(), header, header + 10);
        payload.insert(payload.end(), bytes.begin(), bytes.end());
    }
    payload.resize(composite.GetSerialDataSize());
    return payload;
}

int ReferenceRead(CompositeItem& composite, std::span<unsigned char const> payload)
{
    if (payload.size() < 2)
        return IfErrInvalidArgument;
    std::size_t next = 2;
    for (int left = payload[0] << 8 | payload[1]; left > 0; --left) {
        ItemBase::ConstSerialStruct_t record;
        if (payload.size() < next || payload.size() - next < 10)
            return -1;
        std::memcpy(static_cast<void*>(&record), payload.data() + next, 10);
        auto const rest = payload.subspan(next + 10);
        std::size_t const size = boost::endian::big_to_native(std::uint32_t{record.size});
        if (size > rest.size())
            return -1;
        record.data = rest.data();
        Item member;
        int code = -1;
        if (record.type == 0xfd && record.numericType == 0) {
            auto const nested = Make<CompositeItem>(boost::endian::big_to_native(std::uint32_t{record.id}));
            code = ReferenceRead(*nested, rest.first(size));
            member = nested;
        } else if (record.type != 0xfd) {
            code = ItemBase::Deserialize(&record, member);
        }
        if (code < 0 || !member)
            return -1;
        composite.AddItem(member);
        next += 10 + member->GetSerialDataSize();
    }
    return 0;
}

TEST(CompositeRecord, AgreesWithItsContractOnAnyBytes)
{
    std::mt19937 random(1);
    auto const below = [&random](unsigned int end) { return static_cast<unsigned int>(random() % end); };
    auto const grow = [&](auto const& self, unsigned int depth) -> boost::intrusive_ptr<CompositeItem> {
        auto const composite = Make<CompositeItem>(below(1000));
        for (unsigned int i = below(5); i > 0; --i) {
            switch (below(depth == 0 ? 3 : 5)) {
            case 0:
                composite->AddItem(Number(below(99)));
                break;
            case 1:
                composite->AddItem(Text(std::string(below(6), 'x')));
                break;
            case 2:
                composite->AddItem(Hold(StringSparseItem::Create(1, std::string(below(2) * 4, 'y'))));
                break;
            default:
                composite->AddItem(self(self, depth - 1));
            }
        }
        return composite;
    };
    for (int round = 0; round < 300; ++round) {
        auto const tree = grow(grow, 5);
        Record record = RecordOf(*tree);
        ASSERT_EQ(record.payload, ReferencePayload(*tree));
        ASSERT_EQ(record.payload.size(), tree->GetSerialDataSize());
        ASSERT_EQ(Printed(*Hold(tree->DeepCopy())), Printed(*tree));
        Bytes const whole = record.payload;
        for (std::size_t cut = 0; cut <= whole.size(); cut += round < 30 ? 1 : 1 + below(200)) {
            record.payload.assign(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(cut));
            if (cut == whole.size() || below(2) != 0) {
                for (unsigned int i = below(3); i > 0 && cut != 0; --i)
                    record.payload[below(static_cast<unsigned int>(cut))] =
                        static_cast<unsigned char>(below(2) * below(256));
            }
            CompositeItem expected(record.id);
            int const code = ReferenceRead(expected, record.payload);
            auto const [result, item] = Rebuild(record);
            ASSERT_EQ(result, code);
            ASSERT_EQ(Printed(*item), Printed(expected));
            ASSERT_EQ(RecordOf(*item).payload, ReferencePayload(expected));
        }
    }
}

/// A chain of lists around one number.
template<typename List, typename Leaf, typename MakeList>
boost::intrusive_ptr<List> Nest(Leaf const& leaf, unsigned int depth, MakeList&& make)
{
    boost::intrusive_ptr<List> list = make(leaf);
    for (unsigned int i = 1; i < depth; ++i)
        list = make(list);
    return list;
}

template<typename List = CompositeItem>
boost::intrusive_ptr<List> DeepItem(unsigned int depth = k_deep)
{
    return Nest<List>(Number(1), depth, [](Item const& member) { return ListOf<List>({member}); });
}

TEST(DeepTree, IsWalkedOnABoundedStack)
{
    auto const item = DeepItem();
    EXPECT_EQ(item->GetSerialDataSize(), k_deep * 12U + 4);
    Record const record = RecordOf(*item);
    EXPECT_EQ(record.payload.size(), k_deep * 12U + 4);
    auto const [code, rebuilt] = Rebuild(record);
    EXPECT_EQ(code, 0);
    EXPECT_TRUE(rebuilt->IsEqualValue(item));
    std::string const text = Printed(*rebuilt);
    EXPECT_EQ(text.size(), k_deep * 2U + 1);
    auto const copy = Hold(rebuilt->DeepCopy());
    dynamic_cast<CompositeItem&>(*rebuilt).SetItems({});
    EXPECT_EQ(rebuilt->AssignValue(copy, nullptr), 0);
    EXPECT_TRUE(item->IsEqualValue(copy));
    EXPECT_NE(item->ValidateMin(nullptr), nullptr); // holds a copy

    // The innermost payload fails, at the bottom of all that was built on the way.
    Record broken = record;
    broken.payload[broken.payload.size() - 5] = 1;
    auto const [failure, partial] = Rebuild(broken);
    EXPECT_EQ(failure, -1);
    EXPECT_EQ(Printed(*partial), "()");
}

TEST(DeepTree, OfSchemasIsWalkedOnABoundedStack)
{
    auto const make = [](Info const& member) { return SchemaOf<CompositeInfo>({member}); };
    auto const schema = Nest<CompositeInfo>(MakeInfo<U32Info>(), k_deep, make);
    auto const created = Hold(schema->CreateItem());
    EXPECT_EQ(created->GetSerialDataSize(), k_deep * 12U + 4);
    EXPECT_EQ(Validated(dynamic_cast<CompositeItem&>(*created), schema), Texts{});
    auto const copy = Hold(schema->DeepCopy());
    EXPECT_TRUE(schema->IsEqualBounds(copy));
    EXPECT_GT(Printed(*copy).size(), k_deep * 2U);
}

/// Derived classes may have destructors and fields of their own: ending them is still no recursion.
struct Holding : CompositeItem
{
    using CompositeItem::CompositeItem;
    Item held;
};

TEST(DeepTree, OfAnyClassesEndsOnABoundedStack)
{
    int living = 0;
    {
        Item const leaf(new Counted(living));
        auto const mixed = Nest<ItemBase>(leaf, k_deep, [i = 0](Item const& member) mutable -> Item {
            switch (++i % 4) {
            case 0:
                return ListOf<CompositeItem>({member, Number(1)});
            case 1:
                return ListOf<CollectionItem>({member, member}); // shared within one list
            case 2:
                return ListOf<Holding>({member});
            default:
                auto const holding = Make<Holding>(1U);
                holding->held = member;
                return holding->AddItem(Number(2)) ? holding : nullptr;
            }
        });
        EXPECT_EQ(mixed->GetRefCount(), 1);
    }
    EXPECT_EQ(living, 0);

    // A list inside that someone else holds ends the walk there, and lives on.
    auto const half = DeepItem(k_deep / 2);
    auto whole = Nest<CompositeItem>(half, k_deep / 2, [](Item const& member) { return ListOf({member}); });
    whole.reset();
    EXPECT_EQ(half->GetRefCount(), 1);
    EXPECT_EQ(half->GetSerialDataSize(), k_deep / 2 * 12U + 4);
    EXPECT_EQ(DeepItem<CollectionItem>()->GetSize(), 1U);
}

TEST(DeepTree, ThatLiesAllocatesNoMoreThanItsRecord)
{
    // Each level claims all that could be there, so room made for each on its own word would be gigabytes.
    constexpr unsigned int levels = k_deep / 10;
    Record record{1, 0xfd, 0, {}};
    for (unsigned int i = 0; i < levels; ++i) {
        std::uint32_t const size = boost::endian::native_to_big((levels - 1 - i) * 12 + 2);
        Bytes header{0xff, 0xff, 0, 0, 0, 1, 0, 0, 0, 0, 0xfd, 0};
        std::memcpy(header.data() + 6, &size, 4);
        record.payload.insert(record.payload.end(), header.begin(), header.end());
    }
    record.payload.insert(record.payload.end(), {0xff, 0xff});
    MemoryLimit const limit(1'000'000'000);
    EXPECT_EQ(Rebuild(record).first, -1);
}

} // namespace
} // namespace Legacy::If::Test
