// Records, whole and damaged, for a reader of another making: each a line of hex, the code that reading gave, the
// value. The whole ones go into the file that is named, too.
#include "../../fuzz/Mutate.h"
#include "../Legacy/IfKit/Samples.h"

#include <Legacy/IfKit/Json.h>
#include <Legacy/IfKit/RecordFile.h>
#include <Legacy/IfKit/Records.h>

#include <cstdio>
#include <iostream>
#include <sstream>

namespace {

using namespace Legacy::IfKit;
using Legacy::If::IfType_t;
using Bytes = std::vector<unsigned char>;

void Show(Bytes const& bytes)
{
    Test::ItemPtr item;
    int const code = ReadRecord(bytes, item);
    std::ostringstream value;
    if (code == 0 && WriteJson(value, *item))
        return; // nested deeper than JSON goes
    for (unsigned char const byte : bytes)
        std::printf("%02x", byte);
    std::printf(" %d %s\n", code, value.str().c_str());
}

void SetSize(Bytes& bytes)
{
    for (std::size_t i = 0; i < 4 && bytes.size() >= k_recordHeaderSize; ++i)
        bytes[7 - i] = static_cast<unsigned char>((bytes.size() - k_recordHeaderSize) >> 8 * i);
}

Bytes Damaged(Bytes const& record, std::mt19937& random)
{
    Bytes bytes = Mutate(record, random);
    if (random() % 8 != 0)
        SetSize(bytes);
    return bytes;
}

/// Texts as a writer would not write them, with members behind them that they misplace or do not.
std::vector<Bytes> OddTexts()
{
    std::vector<Bytes> records;
    for (std::string const text :
         {"cam", "cam:", "[::1]", "::1", "[::1]:00080", "::1:80", "a:b:65536", "[cam]:1", "%:1"}) {
        for (unsigned char const type : Bytes{0x06, 0x86, 0x88}) {
            auto const size = static_cast<unsigned char>(text.size() + 1);
            Bytes record{0, 0, 0, 1, 0, 0, 0, 0, 0xfd, 0, 0, 2, 0, 0, 0, 2, 0, 0, 0, size, type, 0};
            record.insert(record.end(), text.begin(), text.end());
            record.insert(record.end(), {0, 0, 0, 0, 3, 0, 0, 0, 1, 1, 0, 1});
            SetSize(record);
            records.push_back(record);
        }
    }
    return records;
}

} // namespace

int main(int, char** argv)
{
    std::vector<Bytes> records = OddTexts();
    RecordFileWriter file(argv[1]);
    file.AppendName(0x450BFFFF, "a/b/c");
    file.AppendName(Test::k_id, "name é");
    boost::intrusive_ptr<Test::CompositeItem> const all(new Test::CompositeItem(1));
    for (auto const& item : Test::SampleItems()) {
        Bytes bytes;
        if (AppendRecord(*item, bytes) != 0)
            continue;
        records.push_back(bytes);
        file.Append(*item);
        Test::ItemPtr rebuilt;
        if (item->GetType() != IfType_t::StringSparse && ReadRecord(bytes, rebuilt) == 0) // which misplaces the next
            all->AddItem(item);
    }
    Bytes bytes;
    AppendRecord(*all, bytes);
    records.push_back(bytes);

    if (file.Commit())
        return 1;

    std::mt19937 random(20260101);
    for (Bytes const& record : records) {
        Show(record);
        for (int round = 0; round < 60; ++round)
            Show(Damaged(record, random));
    }
}
