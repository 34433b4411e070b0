#include "../Families.h"

#include <set>

/// What holds for the records of all families alike.
namespace Legacy::If::Test {
namespace {

using Item = boost::intrusive_ptr<ItemBase>;

template<typename Class>
Item FromText(std::string const& text)
{
    auto const item = Make<Class>(0x01020304U);
    EXPECT_TRUE(ReadText(*item, text).first) << text;
    return item;
}

/// At least a fresh and a filled value of each class that has a record.
std::vector<Item> Samples()
{
    std::set const without{IfType_t::Extended, IfType_t::LocalizedString, IfType_t::Collection};
    std::vector<Item> samples;
    ForAllFamilies([&]<typename Info, typename Class>(Family<Info, Class>) {
        if (!without.contains(Class::GetTypeStatic()))
            samples.insert(samples.end(), {Make<Class>(1U), Filled<Class>(0x01020304)});
    });
    ForAllTraits([&samples]<typename T>(T) { samples.push_back(FromText<NumericArrayItem<T>>("5 1 2 3 4 127")); });
    samples.push_back(FromText<RectArrayItem<U16Traits>>("2 1 2 3 4 5 6 7 8"));
    samples.push_back(FromText<StringArrayItem>("3 one two three"));
    for (char const* const bits : {"7 1 0 1 1 0 0 1", "8 1 0 1 1 0 0 1 0", "9 1 0 1 1 0 0 1 0 1"})
        samples.push_back(FromText<BoolArrayItem>(bits));
    auto const outer = Make<CompositeItem>(1U);
    auto const inner = Hold(outer->DeepCopy(2));
    inner->SetItems({FromText<StringItem>("text"), FromText<NumericArrayItem<U32Traits>>("2 1 2")});
    outer->SetItems({inner, FromText<BoolItem>("1"), Make<CompositeItem>(3U)});
    samples.push_back(outer);
    return samples;
}

using Tags = std::pair<unsigned char, unsigned char>;

Tags TagsOf(ItemBase const& item)
{
    return {static_cast<unsigned char>(item.GetType()), static_cast<unsigned char>(item.GetNumericType())};
}

/// Rebuilds a value, whatever comes of it, and uses it in every way that does not need to know what it is.
void Exercise(Record const& record)
{
    auto const [code, item] = Rebuild(record);
    EXPECT_TRUE(code == 0 || code == IfErrInvalidArgument || code == IfErrNotSerializable) << code;
    ASSERT_NE(item, nullptr);
    auto const copy = Hold(item->DeepCopy(5));
    EXPECT_EQ(Printed(*copy), Printed(*item));
    copy->IsEqualValue(Hold(item->DeepCopy()));
    copy->Validate(nullptr);
    RecordOf(*copy);
    EXPECT_EQ(copy->AssignValue(copy, nullptr), 0);
}

TEST(RecordSweep, KnowsEveryClassThatRebuilds)
{
    std::set<Tags> sampled{{0xfe, 0}}; // a collection is built and then not read
    for (Item const& sample : Samples())
        sampled.insert(TagsOf(*sample));
    std::set<Tags> rebuilt;
    for (unsigned int tags = 0; tags < 0x10000; ++tags) {
        auto const type = static_cast<unsigned char>(tags / 256);
        auto const [code, item] = Rebuild({1, type, static_cast<unsigned char>(tags % 256), {}});
        if (item)
            rebuilt.insert(TagsOf(*item));
        else
            EXPECT_EQ(code, IfErrInvalidArgument);
    }
    EXPECT_EQ(rebuilt, sampled);
}

TEST(RecordSweep, RebuildsAndWritesTheSameAgainAndSurvivesTruncationAndAppendix)
{
    for (Item const& item : Samples()) {
        SCOPED_TRACE(Dumped(*item));
        Record record = RecordOf(*item);
        bool const other = item->GetType() == IfType_t::StringSparse; // announces another size than it writes
        EXPECT_TRUE(other || item->GetSerialDataSize() == record.payload.size());
        auto const [code, rebuilt] = Rebuild(record);
        ASSERT_EQ(code, 0);
        EXPECT_EQ(rebuilt->GetId(), item->GetId());
        EXPECT_EQ(TagsOf(*rebuilt), TagsOf(*item));
        EXPECT_EQ(RecordOf(*rebuilt).payload, record.payload);
        EXPECT_EQ(Printed(*rebuilt), Printed(*item));
        Bytes const whole = record.payload;
        for (std::size_t size = 0; size <= whole.size() + 2; ++size) {
            record.payload = whole;
            record.payload.resize(size);
            Exercise(record);
            auto const target = Hold(item->DeepCopy());
            bool const isKept = Read(*target, record) != 0 && item->GetType() != IfType_t::Composite; // which appends
            EXPECT_TRUE(!isKept || Dumped(*target) == Dumped(*item)) << size;
        }
    }
}

} // namespace
} // namespace Legacy::If::Test
