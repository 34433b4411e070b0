#include "../../../fuzz/Seal.h"
#include "KitSupport.h"

#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>

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

/// What a reader gives: texts of values, "?" for one that is not known, names as "id=text", at the end the error if
/// any.
Texts Read(RecordFileReader& reader)
{
    Texts texts;
    while (auto const entry = reader.NextEntry()) {
        ItemPtr item;
        if (auto const* const name = std::get_if<RecordFileName_t>(&*entry))
            texts.push_back(std::to_string(name->id) + '=' + std::string(name->text));
        else
            texts.push_back(std::get<Record_t>(*entry).Rebuild(item) == 0 ? ValueText(*item) : "?");
    }
    if (reader.GetError())
        texts.push_back(reader.GetError()->ToText());
    return texts;
}

Texts ReadFile(std::string const& path)
{
    RecordFileReader reader(path);
    return Read(reader);
}

Texts ReadBytes(std::string const& bytes)
{
    std::istringstream in(bytes);
    RecordFileReader reader(in, "f");
    return Read(reader);
}

/// A file of many blocks, and what is in it.
Texts WriteMany(std::string const& path, int count)
{
    Texts expected;
    RecordFileWriter writer(path);
    writer.AppendName(7, "speed");
    expected.emplace_back("7=speed");
    for (int i = 0; i < count; ++i) {
        std::string const text = std::to_string(i) + std::string(static_cast<std::size_t>(i % 97), 'x');
        EXPECT_EQ(writer.Append(*ItemPtr(StringItem::Create(1, text))), 0);
        expected.push_back(text);
    }
    EXPECT_EQ(writer.Commit(), std::nullopt);
    return expected;
}

TEST(RecordFile, GivesBackWhatWasWritten)
{
    Folder const folder;
    std::string const path = folder / "values";
    Texts const many = WriteMany(path, 1000);
    EXPECT_EQ(ReadFile(path), many);
    EXPECT_EQ(ReadBytes(Content(path)), many);
    Texts const none = WriteMany(path, 0);
    EXPECT_EQ(ReadFile(path), none);

    RecordFileWriter writer(path);
    EXPECT_EQ(writer.Append(*Make<ExtendedItem>(1U)), IfErrNotSerializable);
    std::string const large(3'000'000, 'y');
    EXPECT_EQ(writer.Append(*ItemPtr(StringItem::Create(1, large))), 0);
    EXPECT_EQ(writer.Append(*ItemPtr(BoolItem::Create(2, true))), 0);
    writer.AppendName(3, "");
    EXPECT_EQ(writer.Commit(), std::nullopt);
    EXPECT_EQ(ReadFile(path), (Texts{large, "True", "3="}));
    RecordFileReader reader(path);
    EXPECT_EQ(reader.GetCount(), 2U);
    ASSERT_TRUE(reader.Next() && reader.Next());
    EXPECT_EQ(Content(path).substr(static_cast<std::size_t>(reader.GetOffset()), 4), std::string("\0\0\0\2", 4));
    EXPECT_FALSE(reader.Next());
    EXPECT_EQ(folder.Count(), 1U);
}

TEST(RecordFile, LeavesTheFormerFileUnlessItIsWhole)
{
    Folder const folder;
    std::string const path = folder / "values";
    Texts const former = WriteMany(path, 10);
    std::filesystem::permissions(path, std::filesystem::perms(0640));
    {
        RecordFileWriter writer(path);
        for (int i = 0; i < 100'000; ++i)
            writer.Append(*ItemPtr(BoolItem::Create(1, true)));
    }
    EXPECT_EQ(ReadFile(path), former);
    std::filesystem::create_symlink("values", folder / "link");
    Texts const linked = WriteMany(folder / "link", 3);
    EXPECT_EQ(ReadFile(path), linked); // the file behind the link
    EXPECT_EQ(std::filesystem::status(path).permissions(), std::filesystem::perms(0640));
    EXPECT_EQ(folder.Count(), 2U);

    for (std::string const& place : {folder / "missing/values", folder / ".", std::string("/dev/full")}) {
        RecordFileWriter writer(place);
        for (int i = 0; i < 100'000; ++i)
            writer.Append(*ItemPtr(BoolItem::Create(1, true)));
        auto const error = writer.Commit();
        ASSERT_TRUE(error) << place;
        EXPECT_EQ(error->path, place);
    }
    EXPECT_EQ(ReadFile(folder / "gone"),
              Texts{(folder / "gone") + ": byte 0: cannot be opened: No such file or directory"});
    EXPECT_EQ(ReadFile(folder / "."), Texts{(folder / ".") + ": byte 0: expected a file, found a directory"});
}

/// A file that a killed process was saving is the former one or the new one, and never anything between.
TEST(RecordFile, OutlivesAKill)
{
    Folder const folder;
    std::string const path = folder / "values";
    Texts const one = WriteMany(folder / "one", 300);
    Texts const other = WriteMany(path, 200);
    std::mt19937 random(1); // NOLINT: the same in every run
    int replaced = 0;
    for (int round = 0; round < 25 || (replaced == 0 && round < 1000); ++round) {
        pid_t const child = ::fork();
        ASSERT_GE(child, 0);
        if (child == 0) {
            for (int i = 0;; ++i)
                WriteMany(path, i % 2 == 0 ? 300 : 200);
        }
        std::this_thread::sleep_for(std::chrono::microseconds(random() % 20'000));
        ::kill(child, SIGKILL);
        ::waitpid(child, nullptr, 0);
        Texts const found = ReadFile(path);
        ASSERT_TRUE(found == one || found == other) << round << ": " << found.back();
        replaced += found == one;
    }
    EXPECT_GT(replaced, 0); // it was being written indeed
}

/// Each damage is told, at a place not behind it, and what stands before its block is there.
TEST(RecordFile, GivesOutWhatStandsBeforeTheDamage)
{
    Folder const folder;
    Texts const whole = WriteMany(folder / "values", 600);
    std::string const bytes = Content(folder / "values");
    std::mt19937 random(2); // NOLINT: the same in every run
    for (int round = 0; round < 300; ++round) {
        std::string damaged = bytes;
        std::size_t const place = random() % bytes.size();
        if (round % 3 == 0)
            damaged.resize(place);
        else if (round % 3 == 1)
            damaged[place] = static_cast<char>(damaged[place] ^ (1 << random() % 8));
        else
            damaged.insert(place, 1 + random() % 40, static_cast<char>(random()));
        std::istringstream in(damaged);
        RecordFileReader reader(in, "f");
        Texts const found = Read(reader);
        ASSERT_TRUE(reader.GetError()) << round;
        ASSERT_TRUE(std::equal(found.begin(), found.end() - 1, whole.begin())) << round;
        // A block takes 4096 bytes and its header; the damage is in the first one that was not given out.
        std::uint64_t const missing = reader.GetError()->offset > place ? 0 : place - reader.GetError()->offset;
        EXPECT_LE(place < 32 ? 0 : missing, 4096U + 32U) << round;
    }
}

TEST(RecordFile, SaysWhatWasExpectedWhere)
{
    Folder const folder;
    WriteMany(folder / "values", 1);
    std::string const bytes = Content(folder / "values");
    auto const with = [&bytes](std::size_t offset, std::string const& text) {
        std::string changed = bytes;
        changed.replace(offset, text.size(), text);
        return ReadBytes(changed).back();
    };
    EXPECT_EQ(ReadBytes(""), Texts{"f: byte 0: expected a file of records, which begins with the byte 0x8c and LIFR"});
    EXPECT_EQ(with(2, "*"), ReadBytes("").back());
    EXPECT_EQ(with(8, "\2"), "f: byte 8: expected the version 1, found 2");
    EXPECT_TRUE(with(9, "\7").starts_with("f: byte 28: expected the checksum 0x"));
    EXPECT_EQ(ReadBytes(bytes.substr(0, 20)).back(), "f: byte 20: expected 12 more bytes, found the end of the file");
    EXPECT_EQ(ReadBytes(bytes + '!').back(),
              "f: byte " + std::to_string(bytes.size()) + ": expected the end of the file");
    EXPECT_TRUE(with(32 + 16, "*").starts_with("f: byte 36: expected the checksum 0x"));
    EXPECT_TRUE(with(32 + 8, "\x7f").starts_with("f: byte 40: expected a block of 1 to "));
}

TEST(RecordFile, IsReadOnAMachineOfTheOtherByteOrder)
{
    auto const inner = Make<CompositeItem>(1U);
    inner->SetItems({NumericItem<DoubleTraits>::Create(1, 5), NumericItem<U32Traits>::Create(1, 6)});
    auto const outer = Make<CompositeItem>(1U);
    outer->SetItems({NumericItem<FloatTraits>::Create(1, 3), inner, NumericItem<FloatTraits>::Create(1, 7)});
    Bytes records;
    for (ItemPtr const& item : {ItemPtr(NumericItem<U32Traits>::Create(1, 9)),
                                ItemPtr(NumericArrayItem<FloatTraits>::Create(1, {1, 2})), ItemPtr(outer)})
        EXPECT_EQ(AppendRecord(*item, records), 0);
    std::string body(records.begin(), records.end());
    Texts const expected{"9", "(1, 2)", "(3, (5, 6), 7)"};
    EXPECT_EQ(ReadBytes(Seal('R', false, body, 3)), expected);
    // The floats, behind the ten bytes of each header and the two of each count, and their sizes.
    for (auto const& [place, size] : {std::pair(24, 4), {28, 4}, {54, 4}, {80, 8}, {112, 4}})
        std::reverse(body.begin() + place, body.begin() + place + size);
    EXPECT_EQ(ReadBytes(Seal('R', true, body, 3)), expected);
}

} // namespace
} // namespace Legacy::IfKit::Test
