#include "../TestSupport.h"

#include <Legacy/If/StringSparse.h>

#include <iomanip>

namespace Legacy::If::Test {
namespace {

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
