#include "TestSupport.h"

#include <Legacy/If/Addr.h>
#include <Legacy/If/AppEndpoint.h>
#include <Legacy/If/AppEndpointArray.h>
#include <Legacy/If/Bool.h>
#include <Legacy/If/BoolArray.h>
#include <Legacy/If/Collection.h>
#include <Legacy/If/Colour.h>
#include <Legacy/If/Composite.h>
#include <Legacy/If/Coordinate.h>
#include <Legacy/If/Endpoint.h>
#include <Legacy/If/Enum.h>
#include <Legacy/If/Numeric.h>
#include <Legacy/If/NumericArray.h>
#include <Legacy/If/NumericSparse.h>
#include <Legacy/If/Orientation.h>
#include <Legacy/If/Rect.h>
#include <Legacy/If/RectArray.h>
#include <Legacy/If/String.h>
#include <Legacy/If/StringArray.h>
#include <Legacy/If/StringSparse.h>

#include <random>
#include <set>

/// What holds for the records of all families alike. A family that joins adds its samples to `Samples`.
namespace Legacy::If::Test {
namespace {

using Item = boost::intrusive_ptr<ItemBase>;

/// The oddities that a family's records have by contract.
enum class Oddity
{
    None,
    PredictsOtherwise, ///< announces another size than it writes
    HasNoRecord,       ///< rebuilds, but neither writes nor reads
};

struct Sample
{
    Item item;
    Oddity oddity = Oddity::None;
};

template<typename Class>
Item FromText(std::string const& text)
{
    auto const item = Make<Class>(0x01020304U);
    EXPECT_TRUE(ReadText(*item, text).first) << text;
    return item;
}

template<typename Class>
Item FromBytes(IfType_t type, Bytes const& payload)
{
    auto const item = Make<Class>(0x01020304U);
    EXPECT_EQ(Read(*item, {0x01020304, static_cast<unsigned char>(type), 0, payload}), 0);
    return item;
}

/// At least one value of each class that a record can name.
std::vector<Sample> Samples()
{
    std::vector<Sample> samples;
    auto const add = [&samples](Item const& item, Oddity oddity = Oddity::None) { samples.push_back({item, oddity}); };
    ForAllTraits([&add]<typename T>(T) {
        add(FromText<NumericItem<T>>("77"));
        add(FromText<NumericSparseItem<T>>("77"));
        add(Make<NumericArrayItem<T>>(1U));
        add(FromText<NumericArrayItem<T>>("5 1 2 3 4 127"));
    });
    TraitsList<U16Traits, S32Traits, FloatTraits>::ForEach([&add]<typename T>(T) {
        add(FromText<CoordinateItem<T>>("1 2"));
        add(FromText<RectItem<T>>("1 2 3 4"));
    });
    add(Make<RectArrayItem<U16Traits>>(1U));
    add(FromText<RectArrayItem<U16Traits>>("2 1 2 3 4 5 6 7 8"));
    add(FromText<BoolItem>("1"));
    add(FromText<EnumItem>("70000"));
    add(Make<StringItem>(1U));
    add(FromText<StringItem>("text"));
    add(Make<StringArrayItem>(1U));
    add(FromText<StringArrayItem>("3 one two three"));
    add(Make<BoolArrayItem>(1U));
    for (char const* const bits : {"7 1 0 1 1 0 0 1", "8 1 0 1 1 0 0 1 0", "9 1 0 1 1 0 0 1 0 1"})
        add(FromText<BoolArrayItem>(bits));
    add(FromText<StringSparseItem>("four"), Oddity::PredictsOtherwise);
    Bytes whole(16);
    add(FromBytes<ColourItem>(IfType_t::Colour, whole));
    whole.resize(12);
    add(FromBytes<OrientationItem>(IfType_t::Orientation, whole));
    add(FromText<AddrItem>("host"));
    add(FromText<EndpointItem>("host:80"));
    Bytes const endpoint{1, 2, 0, 3, 0, 4, 'h', 'o', 's', 't', ':', '8', '0', 0};
    add(FromBytes<AppEndpointItem>(IfType_t::AppEndpoint, endpoint));
    Bytes twice = endpoint;
    twice.insert(twice.end(), endpoint.begin(), endpoint.end());
    add(Make<AppEndpointArrayItem>(1U));
    add(FromBytes<AppEndpointArrayItem>(IfType_t::AppEndpointArray, twice));

    auto const inner = Make<CompositeItem>(2U);
    inner->SetItems({FromText<StringItem>("text"), FromText<NumericArrayItem<U32Traits>>("2 1 2")});
    auto const outer = Make<CompositeItem>(1U);
    outer->SetItems({inner, FromText<BoolItem>("1"), Make<CompositeItem>(3U)});
    add(Make<CompositeItem>(1U));
    add(outer);
    add(Make<CollectionItem>(1U), Oddity::HasNoRecord);
    return samples;
}

using Tags = std::pair<unsigned char, unsigned char>;

Tags TagsOf(ItemBase const& item)
{
    return {static_cast<unsigned char>(item.GetType()), static_cast<unsigned char>(item.GetNumericType())};
}

/// Whether a code is one that reading a payload gives.
bool IsReadingCode(int code)
{
    return code == 0 || code == IfErrInvalidArgument || code == IfErrTypeNotAssignable || code == -1;
}

/// Uses a value in every way that does not need to know what it is.
void Exercise(ItemBase& item)
{
    auto const copy = Hold(item.DeepCopy(5));
    EXPECT_EQ(Printed(*copy), Printed(item));
    EXPECT_FALSE(Dumped(*copy).empty());
    copy->IsEqualValue(Hold(item.DeepCopy()));
    copy->Validate(nullptr);
    ItemBase::SerialStruct_t record;
    copy->Serialize(&record);
    bool changed = false;
    EXPECT_EQ(copy->AssignValue(copy, &changed), 0);
}

TEST(RecordSweep, KnowsEveryClassThatRebuilds)
{
    std::set<Tags> sampled;
    for (Sample const& sample : Samples())
        sampled.insert(TagsOf(*sample.item));
    std::set<Tags> rebuilt;
    for (unsigned int type = 0; type < 256; ++type) {
        for (unsigned int numericType = 0; numericType < 256; ++numericType) {
            Record const record{1, static_cast<unsigned char>(type), static_cast<unsigned char>(numericType), {}};
            auto const [code, item] = Rebuild(record);
            if (item)
                rebuilt.insert(TagsOf(*item));
            else
                EXPECT_EQ(code, IfErrInvalidArgument);
        }
    }
    EXPECT_EQ(rebuilt, sampled);
}

TEST(RecordSweep, RebuildsAndWritesTheSameAgain)
{
    for (auto const& [item, oddity] : Samples()) {
        SCOPED_TRACE(Dumped(*item));
        if (oddity == Oddity::HasNoRecord) {
            ItemBase::SerialStruct_t record;
            EXPECT_EQ(item->Serialize(&record), IfErrTypeNotAssignable);
            EXPECT_EQ(record.data, nullptr);
            continue;
        }
        Record const record = RecordOf(*item);
        EXPECT_EQ(item->GetSerialDataSize() == record.payload.size(), oddity != Oddity::PredictsOtherwise);
        auto const [code, rebuilt] = Rebuild(record);
        ASSERT_EQ(code, 0);
        EXPECT_EQ(rebuilt->GetId(), item->GetId());
        EXPECT_EQ(TagsOf(*rebuilt), TagsOf(*item));
        Record const again = RecordOf(*rebuilt);
        EXPECT_EQ(again.id, record.id);
        EXPECT_EQ(again.payload, record.payload);
        EXPECT_EQ(Printed(*rebuilt), Printed(*item));
        Exercise(*rebuilt);
        EXPECT_EQ(item->Serialize(nullptr), IfErrInvalidArgument);
        EXPECT_EQ(item->Deserialize(nullptr), IfErrNullArgument);
    }
}

TEST(RecordSweep, RefusesForeignHeaders)
{
    for (auto const& [item, oddity] : Samples()) {
        if (oddity == Oddity::HasNoRecord)
            continue;
        SCOPED_TRACE(Dumped(*item));
        Record const record = RecordOf(*item);
        Record foreign[3] = {record, record, record};
        ++foreign[0].id;
        ++foreign[1].type;
        ++foreign[2].numericType;
        for (Record const& header : foreign) {
            auto const target = Hold(item->DeepCopy());
            EXPECT_EQ(Read(*target, header), IfErrInvalidArgument);
        }
    }
}

TEST(RecordSweep, SurvivesTruncationAndAppendixAlike)
{
    for (auto const& [item, oddity] : Samples()) {
        if (oddity == Oddity::HasNoRecord)
            continue;
        SCOPED_TRACE(Dumped(*item));
        Record const whole = RecordOf(*item);
        for (std::size_t size = 0; size <= whole.payload.size() + 2; ++size) {
            Record record = whole;
            record.payload.resize(size);
            auto const [code, rebuilt] = Rebuild(record);
            EXPECT_TRUE(IsReadingCode(code)) << code;
            ASSERT_NE(rebuilt, nullptr);
            Exercise(*rebuilt);
        }
    }
}

TEST(RecordSweep, SurvivesWhateverThePayload)
{
    std::mt19937 random(20260101);
    for (auto const& [item, oddity] : Samples()) {
        auto const [type, numericType] = TagsOf(*item);
        for (int round = 0; round < 200; ++round) {
            Record record{1, type, numericType, Bytes(random() % 40)};
            // Few different bytes make counts, ends of texts and nested headers likely.
            for (unsigned char& byte : record.payload)
                byte = static_cast<unsigned char>(random() % 3 != 0 ? random() % 10 : random());
            if (!record.payload.empty() && round % 2 != 0)
                record.payload.back() = 0;
            auto const [code, rebuilt] = Rebuild(record);
            ASSERT_TRUE(IsReadingCode(code)) << code;
            Exercise(*rebuilt);
        }
    }
}

} // namespace
} // namespace Legacy::If::Test
