#include "TestSupport.h"

#include <Legacy/If/String.h>
#include <Legacy/If/StringArray.h>

namespace Legacy::If::Test {
namespace {

using List = std::vector<std::string>;

TEST(StringInfo, BoundsItsDefaultByLength)
{
    auto const info = MakeInfo<StringInfo>();
    EXPECT_EQ(info->GetMaxLength(), 256U);
    info->SetMaxLength(3);
    EXPECT_EQ(info->SetDefault("abcdef"), 0);
    EXPECT_EQ(info->GetDefault(), "abc");

    // 0 cuts in the one setter and not in the other.
    info->SetMaxLength(0);
    EXPECT_EQ(info->GetDefault(), "");
    info->SetDefault("abc");
    EXPECT_EQ(info->GetDefault(), "abc");
    auto const item = Hold(info->CreateItem());
    EXPECT_EQ(Validated(*item, info), (Texts{"TypesSystemStringValidationLength", "speed", "0"}));
}

TEST(StringInfo, MergesAndComparesTheLengthAlone)
{
    auto const a = MakeInfo<StringInfo>();
    auto const b = MakeInfo<StringInfo>();
    a->SetMaxLength(20);
    b->SetMaxLength(10);
    EXPECT_FALSE(a->IsEqualBounds(b));
    EXPECT_EQ(a->MergeBounds(b), IfErrTypeNotAssignable); // the merge is made all the same
    EXPECT_EQ(a->GetMaxLength(), 10U);
    b->SetDefault("x");
    EXPECT_TRUE(a->IsEqualBounds(b));
}

TEST(StringInfo, AssignsDefaultUncutAndLength)
{
    auto const a = MakeInfo<StringInfo>();
    auto const b = MakeInfo<StringInfo>();
    b->SetMaxLength(0);
    b->SetDefault("long");
    EXPECT_EQ(Assign(*a, b), (Outcome{0, 1}));
    EXPECT_EQ(a->GetDefault(), "long");
    EXPECT_EQ(a->GetMaxLength(), 0U);
    EXPECT_EQ(Assign(*a, b), (Outcome{0, 0}));
}

TEST(StringItem, ValidatesItsLength)
{
    auto const info = MakeInfo<StringInfo>();
    StringItem item(3);
    item.SetVal(std::string(256, 'x'));
    EXPECT_EQ(Validated(item, info), Texts{});
    item.Val() += 'x';
    EXPECT_EQ(Validated(item, info), (Texts{"TypesSystemStringValidationLength", "speed", "256"}));
    EXPECT_EQ(Validated(item, nullptr),
              (Texts{"TypesSystemValidateTypeMismatch", "Unknown", "NULL-Info", "String(Undefined)"}));
    info->SetMaxLength(0);
    item.SetVal("abc", *info);
    EXPECT_TRUE(item.IsEmpty());
}

TEST(StringArrayInfo, KeepsItsSizesInOrder)
{
    auto const info = MakeInfo<StringArrayInfo>();
    EXPECT_EQ(info->SetDefault({"a"}), IfErrSizeOutOfRange); // both sizes start at 0
    info->SetMinSize(3);
    EXPECT_EQ(info->GetMaxSize(), 3U);
    EXPECT_EQ(info->GetDefaultSize(), 0U); // an empty default stays empty
    info->SetMaxSize(1);
    EXPECT_EQ(info->GetMinSize(), 1U);
    EXPECT_EQ(info->SetDefault({"a"}), 0);
    info->SetMinSize(3);
    EXPECT_EQ(info->GetDefault(), (List{"a", "", ""}));

    StringArrayItem item(1);
    EXPECT_EQ(item.SetVal({"a"}, *info), IfErrSizeOutOfRange);
    item.SetVal({"a"});
    EXPECT_EQ(Validated(item, info), (Texts{"TypesSystemStringArrayValidationMinSize", "speed", "3"}));
    item.SetVal({"a", "b", "c", "d"});
    EXPECT_EQ(Validated(item, info), (Texts{"TypesSystemStringArrayValidationMaxSize", "speed", "3"}));
}

TEST(SizeBounds, MergeToTheirCommonRange)
{
    struct Case
    {
        unsigned int minA, maxA, minB, maxB;
        int code;
        unsigned int min, max;
    };
    for (Case const& c : {Case{1, 5, 3, 9, 0, 3, 5}, Case{1, 5, 5, 9, 0, 5, 5}, Case{5, 9, 1, 5, 0, 5, 5},
                          Case{1, 5, 6, 9, IfErrBoundsDisjoint, 1, 5}, Case{6, 9, 1, 5, IfErrBoundsDisjoint, 6, 9}})
    {
        auto const a = MakeInfo<StringArrayInfo>();
        auto const b = MakeInfo<StringArrayInfo>();
        a->SetMaxSize(c.maxA);
        a->SetMinSize(c.minA);
        b->SetMaxSize(c.maxB);
        b->SetMinSize(c.minB);
        EXPECT_EQ(a->MergeBounds(b), c.code);
        EXPECT_EQ(a->GetMinSize(), c.min);
        EXPECT_EQ(a->GetMaxSize(), c.max);
    }
}

TEST(StringRecords, HaveTheirBytes)
{
    auto const text = Hold(StringItem::Create(0x01020304, "ab"));
    Record const record = RecordOf(*text);
    EXPECT_EQ(record.id, 0x01020304U);
    EXPECT_EQ(record.type, 6);
    EXPECT_EQ(record.payload, (Bytes{'a', 'b', 0}));
    auto const list = Hold(StringArrayItem::Create(1, {"a", "", "b"}));
    EXPECT_EQ(RecordOf(*list).payload, (Bytes{'a', 0, 0, 'b', 0}));
    ItemBase::SerialStruct_t empty;
    EXPECT_EQ(StringArrayItem(1).Serialize(&empty), 0);
    EXPECT_EQ(empty.size, 0U);
    EXPECT_NE(empty.data, nullptr);
}

TEST(StringRecords, AreReadWithinTheirBounds)
{
    auto const text = Hold(StringItem::Create(1, "old"));
    for (Bytes const& bad : {Bytes{}, Bytes{'a'}, Bytes{0, 'a'}}) {
        EXPECT_EQ(Read(*text, {1, 6, 0, bad}), IfErrInvalidArgument);
        EXPECT_EQ(text->GetVal(), "old");
    }
    EXPECT_EQ(Read(*text, {1, 6, 0, {'a', 0, 'b', 0}}), 0);
    EXPECT_EQ(text->GetVal(), "a"); // up to the first zero byte

    auto const list = Hold(StringArrayItem::Create(1, {"old"}));
    EXPECT_EQ(Read(*list, {1, 7, 0, {'a', 0, 'b'}}), IfErrInvalidArgument); // no zero byte behind the last
    EXPECT_EQ(list->GetVal(), (List{"old"}));
    EXPECT_EQ(Read(*list, {1, 7, 0, {'a', 0, 0}}), 0);
    EXPECT_EQ(list->GetVal(), (List{"old", "a", ""})); // appended
}

TEST(StringText, HasItsForms)
{
    auto const info = MakeInfo<StringInfo>();
    info->SetDefault("abc");
    EXPECT_EQ(Dumped(*info), "id: 7\npermission: 4660\nname: speed\ntype: String\nmaxLength: 256\ndefault: abc\n");
    EXPECT_EQ(Printed(*info), "\"abc\"; max length=256");
    auto const item = Hold(StringItem::Create(7, "a b"));
    EXPECT_EQ(Dumped(*item), "id: 7\ntype: String\nvalue: a b\n");

    auto const lists = MakeInfo<StringArrayInfo>();
    lists->SetMaxSize(4);
    lists->SetDefault({"a", "b"});
    EXPECT_EQ(Dumped(*lists), "id: 7\npermission: 4660\nname: speed\ntype: StringArray\nminSize: 0\nmaxSize: 4\n"
                              "defaultSize: 2\n");
    EXPECT_EQ(Printed(*lists), "array size: 0 <= 2 <= 4");
    auto const list = Hold(StringArrayItem::Create(7, {"a", "b c"}));
    EXPECT_EQ(Dumped(*list), "id: 7\ntype: StringArray\nvalue: (a, b c)\n");
}

TEST(StringText, IsReadWordByWord)
{
    StringItem text(1);
    EXPECT_EQ(ReadText(text, " two words"), std::pair(true, std::string()));
    EXPECT_EQ(text.GetVal(), "two");
    EXPECT_EQ(ReadText(text, ""), std::pair(true, std::string())); // the end is only found by reading
    EXPECT_EQ(text.GetVal(), "");
    text.SetVal("kept");
    std::istringstream atEnd("x");
    std::string word;
    atEnd >> word;
    std::ostringstream out;
    EXPECT_TRUE(text.SetValFromStream(atEnd, out, nullptr));
    EXPECT_EQ(text.GetVal(), "kept");

    StringArrayItem list(1);
    list.SetVal({"old"});
    for (auto const& [input, message] :
         {std::pair("", "Error parsing arraySize\n"), std::pair("x", "Error parsing arraySize\n"),
          std::pair("2 a", "Error parsing arrayItem\n"), std::pair("2 a ", "Error parsing arrayItem\n"),
          std::pair("4000000000 a", "Error parsing arrayItem\n")})
    {
        EXPECT_EQ(ReadText(list, input), std::pair(false, std::string(message))) << input;
        EXPECT_EQ(list.GetVal(), (List{"old"}));
    }
    EXPECT_TRUE(ReadText(list, "0").first);
    EXPECT_TRUE(list.IsEmpty());
}

TEST(Roots, CompareByIdentityAndType)
{
    auto const a = Hold(StringItem::Create(1, "a"));
    auto const b = Hold(StringItem::Create(1, "b"));
    StringItem const later(2);
    EXPECT_TRUE(*a == *b);
    EXPECT_TRUE(*a < later && *a <= later && later > *a && later >= *a);
    EXPECT_FALSE(*a == std::string());
    auto const info = MakeInfo<StringInfo>();
    EXPECT_TRUE(*info == std::string("speed"));
    EXPECT_TRUE(info->IsEqualType(a));
    EXPECT_FALSE(info->IsEqualType(ItemPtr()));
    EXPECT_FALSE(info->IsEqualType(InfoPtr()));
}

TEST(Roots, AReleaseOfTheLastReferenceDestroys)
{
    struct Watched : StringItem
    {
        explicit Watched(bool& gone) : StringItem(1), m_gone(gone) {}
        ~Watched() override { m_gone = true; }
        bool& m_gone;
    };
    bool gone = false;
    ItemBase const* const item = new Watched(gone);
    intrusive_ptr_add_ref(item);
    intrusive_ptr_add_ref(item);
    EXPECT_EQ(item->GetRefCount(), 2);
    intrusive_ptr_release(item);
    EXPECT_FALSE(gone);
    intrusive_ptr_release(item);
    EXPECT_TRUE(gone);
    gone = false;
    intrusive_ptr_release(static_cast<ItemBase const*>(new Watched(gone))); // never wrapped
    EXPECT_TRUE(gone);
}

} // namespace
} // namespace Legacy::If::Test
