#include "KitSupport.h"

namespace Legacy::IfKit::Test {
namespace {

Bytes TwoRecords()
{
    Bytes bytes;
    EXPECT_EQ(AppendRecord(*ItemPtr(StringItem::Create(0x01020304, "on")), bytes), 0);
    EXPECT_EQ(AppendRecord(*ItemPtr(NumericItem<U16Traits>::Create(2, 258)), bytes), 0);
    return bytes;
}

TEST(Records, StandOneBehindTheOther)
{
    Bytes bytes = TwoRecords();
    EXPECT_EQ(bytes, (Bytes{1, 2, 3, 4, 0, 0, 0, 3, 6, 0, 'o', 'n', 0, 0, 0, 0, 2, 0, 0, 0, 2, 2, 3, 1, 2}));
    EXPECT_EQ(AppendRecord(*Make<ExtendedItem>(1U), bytes), IfErrNotSerializable);
    EXPECT_EQ(bytes, TwoRecords());

    RecordReader reader(bytes);
    auto const text = reader.Next();
    ASSERT_TRUE(text);
    EXPECT_EQ(text->id, 0x01020304U);
    EXPECT_EQ(text->type, IfType_t::String);
    EXPECT_EQ(text->payload.data(), bytes.data() + 10); // not a copy
    ItemPtr item;
    EXPECT_EQ(text->Rebuild(item), 0);
    EXPECT_EQ(item->GetValAsString(), "on");
    EXPECT_EQ(reader.GetOffset(), 13U);
    EXPECT_EQ(reader.Next()->Rebuild(item), 0);
    EXPECT_EQ(item->GetValAsString(), "258");
    EXPECT_TRUE(reader.IsAtEnd());
    EXPECT_FALSE(reader.Next());
}

TEST(Records, StopWhereOneIsNotWhole)
{
    Bytes const bytes = TwoRecords();
    for (std::size_t size = 0; size < bytes.size(); ++size) {
        Bytes const cut(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(size));
        RecordReader reader(cut);
        while (reader.Next()) {
        }
        EXPECT_EQ(reader.GetOffset(), size < 13 ? 0U : 13U);
        EXPECT_EQ(reader.IsAtEnd(), size == 0 || size == 13);
    }
    ItemPtr item(new CompositeItem(1));
    auto* const before = item.get();
    EXPECT_EQ(ReadRecord(bytes, item), IfErrInvalidArgument);                               // two of them
    EXPECT_EQ(ReadRecord(Bytes{0, 0, 0, 1, 0, 0, 0, 0, 6, 0}, item), IfErrInvalidArgument); // does not fit
    EXPECT_EQ(ReadRecord(Bytes{0, 0, 0, 1, 0, 0, 0, 0, 77, 0}, item), IfErrInvalidArgument);
    EXPECT_EQ(item.get(), before);
    EXPECT_EQ(ReadRecord(std::span(bytes).first(13), item), 0);
    EXPECT_EQ(item->GetValAsString(), "on");
}

} // namespace
} // namespace Legacy::IfKit::Test
