#include "TestSupport.h"

#include <Legacy/If/Collection.h>
#include <Legacy/If/Composite.h>
#include <Legacy/If/Numeric.h>
#include <Legacy/If/String.h>
#include <Legacy/If/StringSparse.h>

#include <sys/resource.h>

#include <cstring>

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

/// A member that notes its end.
struct Logged : StringItem
{
    Logged(unsigned int id, std::vector<unsigned int>& log) : StringItem(id), m_log(log) {}
    ~Logged() override { m_log.push_back(GetId()); }
    std::vector<unsigned int>& m_log;
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
    Info const a = MakeInfo<U32Info>();
    Item const x = Number(1);
    Item const y = Number(2);
    unsigned int index = 77;
    EXPECT_FALSE(schema->AddInfo(nullptr, index));
    EXPECT_FALSE(value->AddItem(nullptr, index));
    EXPECT_EQ(index, 77U);
    EXPECT_TRUE(schema->AddInfo(a));
    EXPECT_TRUE(schema->AddInfo(a, index)); // the same object twice
    EXPECT_EQ(index, 1U);
    EXPECT_FALSE(schema->SetInfo(2, a));
    EXPECT_FALSE(schema->SetInfo(0, nullptr));
    EXPECT_EQ(schema->GetInfo(2), nullptr);

    value->SetItems({nullptr, x, nullptr, y});
    EXPECT_TRUE(value->SetItem(0, y));
    EXPECT_FALSE(value->SetItem(2, x));
    EXPECT_EQ(std::as_const(*value).GetItem(2), nullptr);
    EXPECT_FALSE(value->IsPresent(2));
    std::vector<Item> items(5);
    value->GetItems(items);
    EXPECT_EQ(items, (std::vector<Item>{y, y}));
    EXPECT_EQ(x->GetRefCount(), 1);
}

TYPED_TEST(Lists, ShareMembersUnlessDuplicated)
{
    using Schema = typename TypeParam::Schema;
    using Value = typename TypeParam::Value;
    auto const value = ListOf<Value>({Number(1), ListOf<Value>({Number(2)}, 8)});
    Value assigned(3);
    assigned = *value;
    EXPECT_EQ(assigned.GetItem(0), value->GetItem(0));
    auto const copy = Hold(value->DeepCopy(4));
    EXPECT_NE(copy->GetItem(0), value->GetItem(0));
    EXPECT_EQ(copy->GetItem(1)->GetId(), 8U);
    EXPECT_EQ(copy->GetItem(1)->GetRefCount(), 2); // the list's and this one
    EXPECT_EQ(Printed(*copy), "(1, (2))");

    auto const schema = SchemaOf<Schema>({MakeInfo<U32Info>(), SchemaOf<Schema>({MakeInfo<StringInfo>()})});
    auto const twin = Hold(schema->DeepCopy(9, "twin"));
    EXPECT_NE(twin->GetInfo(1), schema->GetInfo(1));
    EXPECT_EQ(twin->GetInfo(1)->GetName(), "speed");
    Schema target(2, "target", {});
    EXPECT_EQ(Assign(target, schema), (Outcome{0, 1}));
    EXPECT_EQ(Assign(target, schema), (Outcome{0, 1})); // whatever the lists
    EXPECT_EQ(target.GetInfo(1), schema->GetInfo(1));
    EXPECT_EQ(schema->MergeBounds(schema), IfErrTypeNotAssignable);
}

TYPED_TEST(Lists, AreEqualMemberByMember)
{
    using Schema = typename TypeParam::Schema;
    using Value = typename TypeParam::Value;
    auto const nested = [](Item const& inner) { return ListOf<Value>({Number(1), inner}); };
    struct
    {
        Item a, b;
        bool equal;
    } const rows[] = {
        {nested(Text("")), nested(Text("")), true},
        {nested(Number(2)), nested(Number(3)), false},
        {nested(Number(2)), nested(Text("2")), false},
        {nested(Number(2)), ListOf<Value>({Number(1)}), false},
        {nested(ListOf<Value>({})), nested(ListOf<Value>({Number(1)})), false},
        {nested(ListOf<CompositeItem>({})), nested(ListOf<CollectionItem>({})), false},
    };
    for (auto const& [a, b, equal] : rows) {
        EXPECT_EQ(a->IsEqualValue(b), equal) << Printed(*a);
        EXPECT_EQ(b->IsEqualValue(a), equal) << Printed(*b);
    }
    auto const bounded = MakeInfo<StringInfo>();
    auto const schema = SchemaOf<Schema>({SchemaOf<Schema>({MakeInfo<StringInfo>()})});
    auto const other = SchemaOf<Schema>({SchemaOf<Schema>({bounded})});
    EXPECT_TRUE(schema->IsEqualBounds(other));
    bounded->SetMaxLength(1);
    EXPECT_FALSE(schema->IsEqualBounds(other));
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
}

TYPED_TEST(Lists, ReleaseMembersInOrderAndOnce)
{
    using Value = typename TypeParam::Value;
    std::vector<unsigned int> log;
    auto const logged = [&log](unsigned int id) { return Item(new Logged(id, log)); };
    Item const kept = logged(9);
    auto value = ListOf<Value>({logged(1), ListOf<Value>({logged(4), kept}), logged(2), kept, kept, logged(3)});
    value.reset();
    EXPECT_EQ(log, (std::vector<unsigned int>{1, 2, 3, 4})); // members of members follow
    EXPECT_EQ(kept->GetRefCount(), 1);

    log.clear();
    auto const list = ListOf<Value>({logged(1), logged(2)});
    list->SetItem(0, list->GetItem(1));
    list->SetItems({list->GetItem(0), list->GetItem(1)}); // from its own members
    *list = *list;
    EXPECT_EQ(list->GetSize(), 2U);
    EXPECT_EQ(log, std::vector<unsigned int>{1});
    *list = Value(3);
    EXPECT_EQ(log, (std::vector<unsigned int>{1, 2}));
}

TEST(Composite, DuplicatesWhereACollectionShares)
{
    auto const composite = ListOf({ListOf({Number(1), Number(2)}), Number(3)});
    auto const collection = ListOf<CollectionItem>({ListOf<CollectionItem>({Number(1)})});
    CompositeItem copied(2);
    CollectionItem shared(2);
    EXPECT_EQ(Assign(copied, composite), (Outcome{0, 1}));
    EXPECT_EQ(Assign(copied, composite), (Outcome{0, 1})); // whatever the values
    EXPECT_EQ(Assign(shared, collection), (Outcome{0, 1}));
    EXPECT_NE(copied.GetItem(0), composite->GetItem(0));
    EXPECT_EQ(shared.GetItem(0), collection->GetItem(0));

    // From themselves, and from one of their own members.
    auto const before = composite->GetItem(0);
    EXPECT_EQ(composite->AssignValue(composite, nullptr), 0);
    EXPECT_EQ(Printed(*composite), "((1, 2), 3)");
    EXPECT_EQ(before->GetRefCount(), 1); // duplicates took its place
    EXPECT_EQ(composite->AssignArrayValue(composite->GetItem(0), 0, nullptr), 0);
    EXPECT_EQ(Printed(*composite), "(1, 2)");
    EXPECT_EQ(collection->AssignValue(collection, nullptr), 0);
    EXPECT_EQ(collection->AssignArrayValue(collection->GetItem(0), 0, nullptr), 0);
    EXPECT_EQ(Printed(*collection), "(1)");

    auto const number = MakeInfo<U32Info>();
    number->SetDefault(5);
    auto const schema =
        SchemaOf<CompositeInfo>({number, SchemaOf<CompositeInfo>({number}), SchemaOf<CollectionInfo>({number})});
    EXPECT_EQ(Printed(*Hold(schema->CreateItem())), "(5, (5), ())");
    EXPECT_EQ(ReadText(*collection, "1"), std::pair(false, std::string("Impl. me")));
}

TEST(Composite, ValidatesShapeAlone)
{
    auto const number = MakeInfo<U32Info>();
    number->SetMax(5);
    auto const schema = SchemaOf<CompositeInfo>({number, MakeInfo<StringInfo>()});
    auto const item = ListOf({Number(6), Text("x")}); // the number is out of its bounds
    EXPECT_EQ(Validated(*item, schema), Texts{});
    item->SetItem(1, Number(6));
    EXPECT_EQ(Validated(*item, schema), (Texts{"TypesSystemCompositeTypeMismatch", "speed", "1"}));
    schema->AddInfo(number);
    EXPECT_EQ(Validated(*item, schema), (Texts{"TypesSystemCompositeValidationSize", "speed", "2"}));
}

TEST(Composite, ReadsOneLevelOfMembers)
{
    auto const pair = SchemaOf<CompositeInfo>({MakeInfo<U32Info>(), MakeInfo<StringInfo>()});
    auto const item = ListOf({Text("old")});
    std::string const invalid = "Invalid use of CompositeItem::SetValFromStream\n";
    for (InfoPtr const& info : {InfoPtr(), InfoPtr(MakeInfo<CollectionInfo>())})
        EXPECT_EQ(ReadText(*item, "1 x", info), std::pair(false, invalid));
    EXPECT_EQ(Printed(*item), "(old)");
    EXPECT_EQ(ReadText(*item, "1 x", pair), std::pair(true, std::string("CompositeItem with 2 items\n")));
    EXPECT_EQ(Printed(*item), "(1, x)");
    pair->AddInfo(SchemaOf<CompositeInfo>({}));
    EXPECT_EQ(ReadText(*item, "2 y", pair), std::pair(false, "CompositeItem with 3 items\n" + invalid));
    EXPECT_EQ(Printed(*item), "(2, y)"); // what was read stays
    EXPECT_EQ(ReadText(*item, "z y", pair),
              std::pair(false, std::string("CompositeItem with 3 items\nError parsing numericItem\n")));
    EXPECT_TRUE(item->IsEmpty());
}

/// A schema that only claims to be a composite's.
struct FalseInfo : StringInfo
{
    using StringInfo::StringInfo;
    IfType_t GetType() const override { return IfType_t::Composite; }
};

TEST(Composite, IsNotDeceivedByASchemasTag)
{
    Info const impostor = MakeInfo<FalseInfo>();
    auto const item = ListOf({Number(1)});
    EXPECT_EQ(Assign(*MakeInfo<CompositeInfo>(), impostor), (Outcome{IfErrTypeNotAssignable, -1}));
    EXPECT_FALSE(SchemaOf({Info(MakeInfo<CompositeInfo>())})->IsEqualBounds(SchemaOf({impostor})));
    EXPECT_EQ(Validated(*item, impostor).at(0), "TypesSystemValidateTypeMismatch");
    EXPECT_FALSE(ReadText(*item, "1", impostor).first);
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

/// Address space that the program may use while this lives; the address and thread checkers have their own idea of
/// that.
class MemoryLimit
{
public:
    explicit MemoryLimit([[maybe_unused]] rlim_t bytes)
    {
        getrlimit(RLIMIT_AS, &m_before);
#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
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

TEST(CompositeRecord, HoldsNumbersAsTheyWriteThemselves)
{
    ForAllTraits([]<typename Traits>(Traits) {
        Item const number = Hold(NumericItem<Traits>::Create(9, static_cast<typename Traits::T>(77)));
        Record const record = RecordOf(*number);
        EXPECT_EQ(RecordOf(*ListOf({number})).payload,
                  Joined({{0, 1}, Wire(9, record.type, record.payload, record.numericType)}));
    });
}

TEST(CompositeRecord, IsRefusedBeyondItsSizeWord)
{
    constexpr auto most = std::numeric_limits<unsigned int>::max();
    auto const huge = Item(new Scripted(most - 12, {}));
    ItemBase::SerialStruct_t record;
    for (auto const& members : {std::vector<Item>{huge}, std::vector<Item>{ListOf({huge, huge}), ListOf({huge, huge})}})
    {
        EXPECT_EQ(ListOf(members)->Serialize(&record), IfErrInvalidArgument);
        EXPECT_EQ(record.data, nullptr);
        EXPECT_EQ(ListOf(members)->GetSerialDataSize(), most);
    }

    // One text in a thousand places: more than can be written, and refused before it is.
    Item many = Text(std::string(16'000'000, 'x'));
    for (int i = 0; i < 10; ++i)
        many = ListOf({many, many});
    MemoryLimit const limit(1'000'000'000);
    EXPECT_EQ(many->Serialize(&record), IfErrInvalidArgument);
}

TEST(CompositeRecord, CountsInSixteenBits)
{
    Record const record = RecordOf(*ListOf(std::vector<Item>(65'537, Text(""))));
    EXPECT_EQ(record.payload.size(), 2 + 65'537 * 11U);
    auto const [code, item] = Rebuild(record);
    EXPECT_EQ(code, 0);
    EXPECT_EQ(dynamic_cast<CompositeItem&>(*item).GetSize(), 1U);
}

TEST(CompositeRecord, IsAppendedToWhatStands)
{
    auto const tree = ListOf({Number(1), ListOf({Text("a b"), ListOf({}), ListOf({Number(2)}, 5)}), Text("")}, 6);
    EXPECT_EQ(Read(*tree, {6, 0xfd, 0, {0}}), IfErrInvalidArgument);
    EXPECT_EQ(tree->GetSize(), 3U);
    EXPECT_EQ(Read(*tree, RecordOf(*tree)), 0);
    EXPECT_EQ(Printed(*tree), "(1, (a b, (), (2)), , 1, (a b, (), (2)), )");
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
             Case{Joined({{0, 3}, good, Wire(1, 0xfd, {0})}), -1, "(a, ())"},
             Case{Joined({{0, 3}, good, Wire(1, 0xfd, {0, 0}, 1)}), -1, "(a, ())"},
             Case{Joined({{0, 2}, text, Wire(1, 0xfd, Joined({{0, 2}, text}))}), -1, "(a)"}, // the inner one goes
             Case{Joined({{0, 2}, text, {0, 0, 0, 1, 0xff, 0xff, 0xff, 0xff, 0xfd, 0, 0, 0}}), -1, "(a)"},
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

/// A chain of lists around one member.
template<typename Leaf, typename MakeList>
Leaf Nest(Leaf list, unsigned int depth, MakeList&& make)
{
    for (unsigned int i = 0; i < depth; ++i)
        list = make(list);
    return list;
}

TEST(DeepTree, IsWalkedOnABoundedStack)
{
    Item const item = Nest(Number(1), k_deep, [](Item const& member) { return Item(ListOf({member})); });
    Record const record = RecordOf(*item);
    EXPECT_EQ(record.payload.size(), k_deep * 12U + 4);
    auto const [code, rebuilt] = Rebuild(record);
    EXPECT_EQ(code, 0);
    EXPECT_EQ(Printed(*rebuilt).size(), k_deep * 2U + 1);
    auto const copy = Hold(rebuilt->DeepCopy());
    dynamic_cast<CompositeItem&>(*rebuilt).SetItems({});
    EXPECT_EQ(rebuilt->AssignValue(copy, nullptr), 0);
    EXPECT_TRUE(item->IsEqualValue(rebuilt));
}

TEST(DeepTree, OfSchemasIsWalkedOnABoundedStack)
{
    auto const make = [](Info const& member) { return Info(SchemaOf<CompositeInfo>({member})); };
    Info const schema = Nest(Info(MakeInfo<U32Info>()), k_deep, make);
    auto const created = Hold(schema->CreateItem());
    EXPECT_EQ(created->GetSerialDataSize(), k_deep * 12U + 4);
    EXPECT_EQ(created->Validate(schema), nullptr);
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
    std::vector<unsigned int> log;
    auto make = [i = 0](Item const& member) mutable -> Item {
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
    };
    // A list inside that someone else holds ends the walk there, and lives on.
    Item half = Nest(Item(new Logged(1, log)), k_deep / 10, make);
    Item whole = Nest(half, k_deep / 10, make);
    whole.reset();
    EXPECT_EQ(half->GetRefCount(), 1);
    EXPECT_TRUE(log.empty());
    half.reset();
    EXPECT_EQ(log.size(), 1U);
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
