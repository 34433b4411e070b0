#include "../TestSupport.h"

namespace Legacy::If::Test {
namespace {

using List = std::vector<std::string>;

TEST(String, IsBoundedByLength)
{
    auto const info = MakeInfo<StringInfo>();
    auto const item = Hold(StringItem::Create(3, std::string(256, 'x')));
    EXPECT_EQ(Validated(*item, info), Texts{});
    item->Val() += 'x';
    EXPECT_EQ(Validated(*item, info), (Texts{"TypesSystemStringValidationLength", "speed", "256"}));
    info->SetMaxLength(3);
    EXPECT_EQ(info->SetDefault("abcdef"), 0);
    EXPECT_EQ(info->GetDefault(), "abc");
    item->SetVal(item->GetVal(), *info);
    EXPECT_EQ(item->GetVal(), "xxx");

    // 0 cuts in two setters and not in the third.
    info->SetMaxLength(0);
    EXPECT_EQ(info->GetDefault(), "");
    item->SetVal("abc", *info);
    EXPECT_TRUE(item->IsEmpty());
    info->SetDefault("abc");
    EXPECT_EQ(Validated(*Hold(info->CreateItem()), info), (Texts{"TypesSystemStringValidationLength", "speed", "0"}));

    auto const copy = MakeInfo<StringInfo>();
    EXPECT_FALSE(copy->IsEqualBounds(info));
    EXPECT_EQ(Assign(*copy, info), (Outcome{0, 1}));
    EXPECT_EQ(Printed(*copy), "\"abc\"; max length=0"); // uncut
    copy->SetMaxLength(10);
    EXPECT_EQ(copy->MergeBounds(info), IfErrTypeNotAssignable); // the merge is made all the same
    EXPECT_EQ(copy->GetMaxLength(), 0U);
    copy->SetDefault("x");
    EXPECT_TRUE(copy->IsEqualBounds(info));
}

TEST(StringArray, IsBoundedBySizesThatMergeToTheirCommonRange)
{
    auto const sized = [](unsigned int min, unsigned int max) {
        auto const info = MakeInfo<StringArrayInfo>();
        info->SetMaxSize(max);
        info->SetMinSize(min);
        return info;
    };
    auto const info = sized(0, 0);
    EXPECT_EQ(info->SetDefault({"a"}), IfErrSizeOutOfRange);
    auto const item = Hold(StringArrayItem::Create(1, {"a"}));
    EXPECT_EQ(Validated(*item, info), (Texts{"TypesSystemStringArrayValidationMaxSize", "speed", "0"}));
    info->SetMinSize(3);
    EXPECT_EQ(item->SetVal({"b"}, *info), IfErrSizeOutOfRange);
    EXPECT_EQ(Validated(*item, info), (Texts{"TypesSystemStringArrayValidationMinSize", "speed", "3"}));

    auto const merge = [&](InfoPtr const& into, InfoPtr const& other, int code, InfoPtr const& result) {
        auto const target = Hold(into->DeepCopy());
        EXPECT_EQ(target->MergeBounds(other), code);
        EXPECT_EQ(Printed(*target), Printed(*result));
        EXPECT_EQ(Assign(*target, other).code, 0);
        EXPECT_EQ(Printed(*target), Printed(*other));
    };
    merge(sized(1, 5), sized(5, 9), 0, sized(5, 5));
    merge(sized(5, 9), sized(1, 5), 0, sized(5, 5));
    merge(sized(1, 5), sized(6, 9), IfErrBoundsDisjoint, sized(1, 5));
    merge(sized(6, 9), sized(1, 5), IfErrBoundsDisjoint, sized(6, 9));
}

TEST(StringRecords, HaveTheirBytesAndAreReadWithinThem)
{
    auto const text = Hold(StringItem::Create(1, "old"));
    EXPECT_EQ(RecordOf(*text).payload, (Bytes{'o', 'l', 'd', 0}));
    for (Bytes const& bad : {Bytes{}, Bytes{'a'}, Bytes{0, 'a'}})
        EXPECT_EQ(Read(*text, {1, 6, 0, bad}), IfErrInvalidArgument);
    EXPECT_EQ(text->GetVal(), "old");
    EXPECT_EQ(Read(*text, {1, 6, 0, {'a', 0, 'b', 0}}), 0);
    EXPECT_EQ(text->GetVal(), "a"); // up to the first zero byte

    auto const list = Hold(StringArrayItem::Create(1, {"a", "", "b"}));
    EXPECT_EQ(RecordOf(*list).payload, (Bytes{'a', 0, 0, 'b', 0}));
    EXPECT_EQ(Read(*list, {1, 7, 0, {'a', 0, 'b'}}), IfErrInvalidArgument); // no zero byte behind the last
    EXPECT_EQ(Read(*list, {1, 7, 0, {'c', 0, 0}}), 0);
    EXPECT_EQ(list->GetVal(), (List{"a", "", "b", "c", ""})); // appended

    ItemBase::SerialStruct_t first;
    ItemBase::SerialStruct_t second;
    EXPECT_EQ(text->Serialize(&first) + list->Serialize(&second), 0);
    auto const payloads = [&] { return std::pair{+first.data, +second.data}; };
    auto const [ofText, ofList] = payloads();
    std::swap(first, second); // each payload keeps one owner
    EXPECT_EQ(payloads(), std::pair(ofList, ofText));
    delete[] ofList;
    first = std::move(second);
    EXPECT_EQ(payloads(), std::pair(ofText, static_cast<unsigned char*>(nullptr)));

    ItemBase::SerialStruct_t empty;
    EXPECT_EQ(StringArrayItem(1).Serialize(&empty), 0);
    EXPECT_TRUE(empty.size == 0 && empty.data);
}

TEST(StringText, HasItsForms)
{
    std::string const head = "id: 7\npermission: 4660\nname: speed\ntype: String";
    auto const info = MakeInfo<StringInfo>();
    info->SetDefault("abc");
    EXPECT_EQ(Dumped(*info), head + "\nmaxLength: 256\ndefault: abc\n");
    EXPECT_EQ(Dumped(*Hold(StringItem::Create(7, "a b"))), "id: 7\ntype: String\nvalue: a b\n");

    auto const lists = MakeInfo<StringArrayInfo>();
    lists->SetMaxSize(4);
    lists->SetDefault({"a", "b"});
    EXPECT_EQ(Dumped(*lists), head + "Array\nminSize: 0\nmaxSize: 4\ndefaultSize: 2\n");
    EXPECT_EQ(Printed(*lists), "array size: 0 <= 2 <= 4");
    EXPECT_EQ(Dumped(*Hold(StringArrayItem::Create(7, {"a", "b c"}))), "id: 7\ntype: StringArray\nvalue: (a, b c)\n");
}

TEST(StringText, IsReadWordByWord)
{
    StringItem text(1);
    text.SetVal("old");
    EXPECT_EQ(ReadText(text, ""), std::pair(true, std::string())); // the end is only found by reading
    EXPECT_EQ(text.GetVal(), "");
    std::istringstream in(" two words");
    std::ostringstream out;
    for (char const* const read : {"two", "words", "words"}) { // known to be at its end, it is not read again
        EXPECT_TRUE(text.SetValFromStream(in, out, nullptr));
        EXPECT_EQ(text.GetVal(), read);
    }

    StringArrayItem list(1);
    list.SetVal({"old"});
    for (auto const& [input, place] :
         {std::pair("x", "arraySize"), std::pair("2 a ", "arrayItem"), std::pair("80000000 a", "arrayItem")})
        EXPECT_EQ(ReadText(list, input), std::pair(false, std::string("Error parsing ") + place + '\n')) << input;
    EXPECT_EQ(list.GetVal(), (List{"old"}));
    EXPECT_TRUE(ReadText(list, "0").first);
    EXPECT_TRUE(list.IsEmpty());
}

TEST(Roots, CompareByIdentityAndType)
{
    auto const a = Hold(StringItem::Create(1, "a"));
    StringItem const later(2);
    EXPECT_TRUE(*a == *Hold(StringItem::Create(1, "b")));
    EXPECT_TRUE(*a < later && *a <= later && later > *a && later >= *a);
    EXPECT_FALSE(*a == std::string());
    auto const info = MakeInfo<StringInfo>();
    EXPECT_TRUE(*info == std::string("speed"));
    EXPECT_TRUE(info->IsEqualType(a));
    EXPECT_FALSE(info->IsEqualType(ItemPtr()) || info->IsEqualType(InfoPtr()) || a->IsEqualType(Make<BoolItem>(1U)));
}

boost::intrusive_ptr<StringSparseInfo> MakeSchema(std::vector<std::string> const& table, std::string const& text = {})
{
    auto info = MakeInfo<StringSparseInfo>();
    info->SetTable(table);
    info->SetDefault(text);
    return info;
}

TEST(StringSparseInfo, KeepsItsDefaultInTheList)
{
    auto const info = MakeInfo<StringSparseInfo>();
    EXPECT_EQ(info->SetDefault(""), IfErrNotInSet); // nothing is listed yet, not even the empty text
    EXPECT_EQ(info->SetTable({"a", "b", "c"}), 0);
    EXPECT_EQ(info->GetDefault(), "a");
    EXPECT_EQ(info->SetDefault("b"), 0);
    EXPECT_EQ(info->SetDefault(std::string("b\0", 2)), IfErrNotInSet);
    EXPECT_TRUE(info->IsPresent("b") && !info->IsPresent("B"));
    info->SetTable({"x", "b"});
    EXPECT_EQ(Printed(*info), "x, b; default=b");
    std::ostringstream wide;
    wide << std::setw(3) << *info; // the width is the first text's
    EXPECT_EQ(wide.str(), "  x, b; default=b");
    EXPECT_EQ(Dumped(*info), "id: 7\npermission: 4660\nname: speed\ntype: Invalid\ndefault: b\n");
    info->SetTable({"x", "y"});
    EXPECT_EQ(info->GetDefault(), "x");
    info->GetTable().clear(); // nobody looks at the default
    EXPECT_EQ(info->GetDefault(), "x");
    info->SetTable({});
    EXPECT_EQ(Printed(*info), "; default=");

    auto const source = MakeSchema({"a", "b"}, "b");
    for (auto const& target : {MakeSchema({"a", "b"}), MakeSchema({"b", "a"}, "b"), MakeSchema({"a", "b", "c"}, "b")}) {
        EXPECT_EQ(Assign(*target, source), (Outcome{0, 1}));
        EXPECT_EQ(Printed(*target), "a, b; default=b");
        EXPECT_EQ(Assign(*target, source), (Outcome{0, 0}));
    }
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
    EXPECT_EQ(Validated(item, info), Texts{});
    EXPECT_EQ(ReadText(item, " q rest", info), std::pair(true, std::string()));
    EXPECT_EQ(ReadText(item, " "), std::pair(false, std::string("Error parsing stringSparseItem\n")));
    EXPECT_EQ(Dumped(item), "id: 7\ntype: Invalid\nvalue: q\n");
}

// Five bytes are announced for every text and 24 to whoever asks beforehand, but the whole text is written.
TEST(StringSparseRecords, HaveTheSameSizeForEveryText)
{
    for (std::string const& text : {std::string(), std::string("abcd"), std::string("abcde"), std::string(100, 'x')}) {
        auto const item = Hold(StringSparseItem::Create(7, text));
        EXPECT_EQ(item->GetSerialDataSize(), 24U);
        ItemBase::SerialStruct_t written;
        ASSERT_EQ(item->Serialize(&written), 0);
        EXPECT_EQ(written.size, boost::endian::native_to_big(std::uint32_t{5}));
        Bytes expected(text.begin(), text.end());
        expected.resize(std::max<std::size_t>(text.size() + 1, 5));
        EXPECT_EQ(Bytes(written.data, written.data + expected.size()), expected);
        auto const [code, copy] = Rebuild(RecordOf(*item));
        EXPECT_EQ(code, text.size() < 5 ? 0 : IfErrInvalidArgument);
        EXPECT_EQ(copy->GetValAsString(), code == 0 ? text : "");
    }
    StringSparseItem item(1);
    EXPECT_EQ(Read(item, {1, 9, 0, {'a', 'b', 'c', 'd', 'e', 'f', 0}}), 0); // of any size
    EXPECT_EQ(item.GetVal(), "abcdef");
}

} // namespace
} // namespace Legacy::If::Test
