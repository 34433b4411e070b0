#include "TestSupport.h"

#include <Legacy/If/String.h>
#include <Legacy/If/StringArray.h>
#include <Legacy/If/StringSparse.h>

namespace Legacy::If::Test {
namespace {

using List = std::vector<std::string>;

boost::intrusive_ptr<StringSparseInfo> MakeSchema(List const& table, std::string const& defaultVal = {})
{
    auto info = MakeInfo<StringSparseInfo>();
    info->SetTable(table);
    if (!defaultVal.empty()) {
        EXPECT_EQ(info->SetDefault(defaultVal), 0);
    }
    return info;
}

TEST(StringSparseInfo, KeepsItsDefaultInTheList)
{
    auto const info = MakeInfo<StringSparseInfo>();
    for (char const* const text : {"", "a"})
        EXPECT_EQ(info->SetDefault(text), IfErrNotInSet); // nothing is listed yet, not even the empty text
    EXPECT_EQ(info->SetTable({"a", "b", "c"}), 0);
    EXPECT_EQ(info->GetDefault(), "a");
    EXPECT_EQ(info->SetDefault("b"), 0);
    EXPECT_EQ(info->SetDefault("B"), IfErrNotInSet);
    EXPECT_EQ(info->SetDefault(std::string("b\0", 2)), IfErrNotInSet);
    info->SetTable({"x", "b"});
    EXPECT_EQ(info->GetDefault(), "b");
    info->SetTable({"x", "y"});
    EXPECT_EQ(info->GetDefault(), "x");
    info->SetTable(info->GetTable());
    EXPECT_EQ(info->GetTable(), (List{"x", "y"}));
    info->GetTable().clear(); // nobody looks at the default
    EXPECT_EQ(info->GetDefault(), "x");
    EXPECT_EQ(info->GetSize(), 0U);
    info->SetTable({});
    EXPECT_EQ(info->GetDefault(), "");
    auto const item = Hold(info->CreateItem());
    EXPECT_EQ(item->GetValAsString(), "");
    EXPECT_FALSE(item->IsEmpty());
}

TEST(StringSparseInfo, HasNoBoundsToShare)
{
    auto const info = MakeSchema({"a", "b"}, "b");
    auto const copy = Hold(info->DeepCopy(9, "other"));
    EXPECT_EQ(copy->GetTable(), info->GetTable());
    EXPECT_EQ(copy->GetDefault(), "b");
    EXPECT_FALSE(info->IsEqualBounds(copy));
    EXPECT_FALSE(info->IsEqualBounds(info));
    EXPECT_EQ(info->MergeBounds(copy), IfErrTypeNotAssignable);
    EXPECT_EQ(info->MergeBounds(MakeInfo<StringInfo>()), IfErrBoundsTypeMismatch);
    EXPECT_EQ(info->MergeBounds(nullptr), IfErrBoundsTypeMismatch);
}

TEST(StringSparseInfo, AssignsListAndDefault)
{
    auto const source = MakeSchema({"a", "b"}, "b");
    for (auto const& target : {MakeSchema({}), MakeSchema({"a", "b"}), MakeSchema({"b", "a"}, "b"),
                               MakeSchema({"a", "b", "c"}, "b"), MakeSchema({"b"})})
    {
        EXPECT_EQ(Assign(*target, source), (Outcome{0, 1}));
        EXPECT_EQ(target->GetTable(), source->GetTable());
        EXPECT_EQ(target->GetDefault(), "b");
        EXPECT_EQ(Assign(*target, source), (Outcome{0, 0}));
    }
    EXPECT_EQ(Assign(*source, nullptr), (Outcome{IfErrNullSource, -1}));
    EXPECT_EQ(Assign(*source, MakeInfo<StringArrayInfo>()), (Outcome{IfErrTypeNotAssignable, -1}));
    EXPECT_EQ(source->GetTable(), (List{"a", "b"}));
}

TEST(StringSparseItem, IsHeldToTheListByOneSetterAlone)
{
    auto const info = MakeSchema({"a", "b"}, "b");
    StringSparseItem item(7);
    item.SetVal("a", *info);
    EXPECT_EQ(item.GetVal(), "a");
    item.SetVal("z", *info);
    EXPECT_EQ(item.GetVal(), "b");
    item.SetVal("z");
    EXPECT_EQ(item.GetVal(), "z");
    EXPECT_EQ(Validated(item, info), Texts{});
    EXPECT_EQ(Validated(item, nullptr), Texts{});
    EXPECT_EQ(ReadText(item, " q rest", info), std::pair(true, std::string()));
    EXPECT_EQ(item.GetVal(), "q");
    for (char const* const none : {"", "  "})
        EXPECT_EQ(ReadText(item, none), std::pair(false, std::string("Error parsing stringSparseItem\n")));
    EXPECT_EQ(item.GetVal(), "q");
}

TEST(StringSparseItem, IsAssignedFromItsOwnFamilyAlone)
{
    auto const item = Hold(StringSparseItem::Create(1, "a"));
    auto const other = Hold(StringSparseItem::Create(2, "b"));
    EXPECT_FALSE(item->IsEqualValue(other));
    EXPECT_EQ(Assign(*item, other, 99), (Outcome{0, 1}));
    EXPECT_EQ(Assign(*item, other), (Outcome{0, 0}));
    EXPECT_TRUE(item->IsEqualValue(other));
    EXPECT_TRUE(Hold(item->DeepCopy(5))->IsEqualValue(item));
    EXPECT_FALSE(item->IsEqualValue(Hold(StringItem::Create(1, "b"))));
    EXPECT_EQ(Assign(*item, nullptr), (Outcome{IfErrNullSource, -1}));
    for (ItemPtr const& foreign : {ItemPtr(StringItem::Create(1, "c")), ItemPtr(StringArrayItem::Create(1, {"c"}))})
        EXPECT_EQ(Assign(*item, foreign), (Outcome{IfErrTypeNotAssignable, -1}));
    EXPECT_EQ(item->GetVal(), "b");
}

// Five bytes are announced for every text and 24 to whoever asks beforehand, but the whole text is written.
TEST(StringSparseRecords, HaveTheSameSizeForEveryText)
{
    struct Case
    {
        std::string text;
        int code;
    };
    for (Case const& c : {Case{"", 0}, Case{"abc", 0}, Case{"abcd", 0}, Case{"abcde", IfErrInvalidArgument},
                          Case{std::string("abcd\0e", 6), 0}, Case{std::string(100, 'x'), IfErrInvalidArgument}})
    {
        auto const item = Hold(StringSparseItem::Create(7, c.text));
        EXPECT_EQ(item->GetSerialDataSize(), 24U);
        ItemBase::SerialStruct_t written;
        ASSERT_EQ(item->Serialize(&written), 0);
        EXPECT_EQ(written.size, boost::endian::native_to_big(std::uint32_t{5}));
        Bytes expected(c.text.begin(), c.text.end());
        expected.resize(std::max<std::size_t>(c.text.size() + 1, 5));
        EXPECT_EQ(Bytes(written.data, written.data + expected.size()), expected);

        Record const record = RecordOf(*item);
        EXPECT_EQ(record.type, 9);
        auto const [code, copy] = Rebuild(record);
        EXPECT_EQ(code, c.code) << c.text;
        EXPECT_EQ(copy->GetValAsString(), c.code == 0 ? c.text.c_str() : "");
    }
}

TEST(StringSparseRecords, AreReadWithinTheirBounds)
{
    auto const item = Hold(StringSparseItem::Create(1, "old"));
    for (Record const& bad : {Record{1, 9, 0, {}}, Record{1, 9, 0, {'a'}}, Record{1, 9, 0, {0, 'a'}},
                              Record{2, 9, 0, {0}}, Record{1, 6, 0, {0}}, Record{1, 9, 1, {0}}})
    {
        EXPECT_EQ(Read(*item, bad), IfErrInvalidArgument);
        EXPECT_EQ(item->GetVal(), "old");
    }
    EXPECT_EQ(item->Serialize(nullptr), IfErrInvalidArgument);
    EXPECT_EQ(item->Deserialize(nullptr), IfErrNullArgument);
    EXPECT_EQ(Read(*item, {1, 9, 0, {'a', 'b', 'c', 'd', 'e', 'f', 0}}), 0); // of any size
    EXPECT_EQ(item->GetVal(), "abcdef");
}

TEST(StringSparseText, HasItsForms)
{
    auto const info = MakeSchema({"a", "b"}, "b");
    EXPECT_EQ(Printed(*info), "a, b; default=b");
    EXPECT_EQ(Printed(*MakeSchema({})), "; default=");
    EXPECT_EQ(Dumped(*info), "id: 7\npermission: 4660\nname: speed\ntype: Invalid\ndefault: b\n");
    auto const item = Hold(info->CreateItem());
    EXPECT_EQ(Dumped(*item), "id: 7\ntype: Invalid\nvalue: b\n");
    EXPECT_EQ(Printed(*item), "b");
}

} // namespace
} // namespace Legacy::If::Test
