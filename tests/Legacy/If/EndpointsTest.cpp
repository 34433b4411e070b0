#include "TestSupport.h"

#include <Legacy/If/Addr.h>
#include <Legacy/If/AppEndpoint.h>
#include <Legacy/If/AppEndpointArray.h>
#include <Legacy/If/Endpoint.h>

#include <type_traits>

namespace Legacy::If::Test {
namespace {

using Place = Net::Endpoint<Net::AddrStr>;
using App = AppEndpoint<Place>;

App const k_cam({AppProtocolType_t::Https, 0x1234, 0x5678}, Place("cam", 443), 9);
App const k_dom({AppProtocolType_t::Rtsp, 1, 1}, Place("rtsp://dom/a"), 0);

/// A value of each family with the texts that it has, and the bytes ahead of the text in a record.
template<typename Family>
struct Sample
{
    std::string name;
    typename Family::Value value;
    std::string shown;
    std::string prefix;
    std::string stored;
};

template<typename Family>
Sample<Family> SampleOf()
{
    if constexpr (std::is_same_v<Family, AddrFamily>)
        return {"Addr", "cam", "cam", "", "cam"};
    else if constexpr (std::is_same_v<Family, EndpointFamily>)
        return {"Endpoint", {"::1", 80}, "[::1]:80", "", "[::1]:80"};
    else
        return {"AppEndpoint", k_cam, "https://cam:443", "\x07\x09\x12\x34\x56\x78", "cam:443"};
}

template<typename Family>
class NetValueTest : public testing::Test
{
protected:
    int ReadPayload_(std::string const& payload)
    {
        return Read(*m_item, {7, static_cast<unsigned char>(Family::k_type), 0, Bytes(payload.begin(), payload.end())});
    }

    Sample<Family> m_sample = SampleOf<Family>();
    boost::intrusive_ptr<NetInfo<Family>> m_info = MakeInfo<NetInfo<Family>>();
    boost::intrusive_ptr<NetItem<Family>> m_item = Hold(NetItem<Family>::Create(7, m_sample.value));
};

using Families = testing::Types<AddrFamily, EndpointFamily, AppEndpointFamily>;
TYPED_TEST_SUITE(NetValueTest, Families);

TYPED_TEST(NetValueTest, SchemaHasADefaultAndNoBounds)
{
    auto const& [name, value, shown, prefix, stored] = this->m_sample;
    auto const& info = this->m_info;
    auto const fresh = MakeInfo<NetInfo<TypeParam>>();
    EXPECT_EQ(info->SetDefault(value), 0);
    EXPECT_TRUE(fresh->IsEqualBounds(info));
    EXPECT_EQ(fresh->MergeBounds(info), 0);
    EXPECT_NE(fresh->GetDefault(), value);
    EXPECT_EQ(Assign(*fresh, info), (Outcome{0, 1}));
    EXPECT_EQ(Assign(*fresh, info), (Outcome{0, 0}));
    EXPECT_EQ(Printed(*info), name + "Info");
    EXPECT_EQ(Dumped(*info), "id: 7\npermission: 4660\nname: speed\ntype: " + name + "\ndefault: " + shown + "\n");

    auto const item = Make<NetItem<TypeParam>>(7U);
    EXPECT_FALSE(item->IsEmpty());
    EXPECT_EQ(Assign(*item, this->m_item, 99), (Outcome{0, 1}));
    EXPECT_EQ(Assign(*item, this->m_item), (Outcome{0, 0}));
    EXPECT_EQ(Dumped(*item), "id: 7\ntype: " + name + "\nvalue: " + shown + "\n");
}

TYPED_TEST(NetValueTest, TravelsInARecord)
{
    auto const& [name, value, shown, prefix, stored] = this->m_sample;
    std::string const whole = prefix + stored + '\0';
    EXPECT_EQ(RecordOf(*this->m_item).payload, Bytes(whole.begin(), whole.end()));

    // A record that does not fit leaves the value: no text, a zero byte within the prefix, a text without an end.
    for (std::size_t size = 1; size <= prefix.size(); ++size)
        EXPECT_EQ(this->ReadPayload_(std::string(size, '\0')), IfErrInvalidArgument) << size;
    for (std::size_t size = 0; size < whole.size(); ++size)
        EXPECT_EQ(this->ReadPayload_(whole.substr(0, size)), IfErrInvalidArgument) << size;
    EXPECT_EQ(this->m_item->Val(), value);

    // The text ends at its first zero byte, whatever follows.
    this->m_item->SetVal({}, *this->m_info);
    EXPECT_EQ(this->ReadPayload_(whole + std::string("x\0", 2)), 0);
    EXPECT_EQ(this->m_item->Val(), value);
}

TEST(NetItems, ReadOneWordWhateverItIs)
{
    std::pair<bool, std::string> const taken(true, "");
    auto const addr = Hold(AddrItem::Create(1, "old"));
    EXPECT_EQ(ReadText(*addr, "  cam dom"), taken);
    EXPECT_EQ(addr->Val(), "cam");
    auto const endpoint = Hold(EndpointItem::Create(1, {"old", 1}));
    EXPECT_EQ(ReadText(*endpoint, "cam:99999\n"), taken);
    EXPECT_EQ(endpoint->Val(), Place("cam:99999"));

    // An application endpoint gets its protocol from its schema.
    auto const app = Hold(AppEndpointItem::Create(7, k_dom));
    auto const info = MakeInfo<AppEndpointInfo>();
    info->SetDefault(k_cam);
    for (InfoPtr const& other : {InfoPtr(MakeInfo<AddrInfo>()), InfoPtr()})
        EXPECT_EQ(ReadText(*app, "dom:8", other), std::pair(false, std::string()));
    EXPECT_EQ(app->Val(), k_dom);
    EXPECT_EQ(ReadText(*app, "dom:8", info), taken);
    EXPECT_EQ(app->Val(), App(k_cam.GetAppProtocolInfo(), {"dom", 8}, 0));

    // Nothing but blanks: the read fails and counts as an empty word. At the end nothing is read.
    EXPECT_EQ(ReadText(*endpoint, " "), taken);
    EXPECT_EQ(endpoint->Val(), Place());
    std::istringstream in;
    in.get();
    std::ostringstream out;
    EXPECT_TRUE(addr->SetValFromStream(in, out, nullptr));
    EXPECT_EQ(addr->Val(), "cam");
    EXPECT_TRUE(app->SetValFromStream(in, out, info));
    EXPECT_EQ(app->Val().GetPort(), 8);
    EXPECT_FALSE(app->SetValFromStream(in, out, nullptr));
}

TEST(AppEndpointArrayInfo, StoresItsSizesApartAndTakesOverOneDifferenceInEachCall)
{
    auto const source = MakeInfo<AppEndpointArrayInfo>();
    source->SetDefault({k_cam, k_dom});
    EXPECT_EQ(source->SetMinSize(4), 0);
    EXPECT_EQ(source->SetMaxSize(1), 0);
    EXPECT_EQ(AppEndpointArrayInfo(*source).GetMinSize(), 4U);
    auto const target = Hold(source->DeepCopy()); // without the sizes
    EXPECT_TRUE(target->IsEqualBounds(source));
    EXPECT_EQ(target->MergeBounds(source), 0);
    target->SetDefault({});
    for (int call = 0; call < 4; ++call) {
        EXPECT_EQ(target->GetDefault().size(), call < 1 ? 0U : 2U);
        EXPECT_EQ(target->GetMinSize(), call < 2 ? 0U : 4U);
        EXPECT_EQ(target->GetMaxSize(), call < 3 ? 2147483647U : 1U);
        EXPECT_EQ(Assign(*target, source), (Outcome{0, call < 3}));
    }
    EXPECT_EQ(Printed(*source), "AppEndpointArrayInfo");
    EXPECT_EQ(Dumped(*source), "id: 7\npermission: 4660\nname: speed\ntype: Invalid\ndefault: [empty array]\n");
    EXPECT_EQ(Hold(source->CreateItem())->Validate(source), nullptr);
}

TEST(AppEndpointArrayItem, TakesOneElementOrAWholeList)
{
    auto const list = Make<AppEndpointArrayItem>(7U);
    EXPECT_EQ(list->GetValAsString(), "()");
    auto const one = Hold(AppEndpointItem::Create(7, k_cam));
    EXPECT_EQ(list->AssignArrayValue(one, 2, nullptr), 0);
    EXPECT_EQ(list->Val(), (AppEndpointList{App(), App(), k_cam}));
    EXPECT_EQ(Assign(*list, one, 2), (Outcome{0, 0}));
    EXPECT_EQ(Assign(*list, Make<AppEndpointItem>(7U), 3), (Outcome{0, 1})); // by growing alone

    auto const target = Hold(list->DeepCopy(8));
    target->Val()[1].SetAddrGroupPrefix(1); // the same place, but compared exactly
    EXPECT_FALSE(target->IsEqualValue(list));
    EXPECT_EQ(Assign(*target, list, 99), (Outcome{0, 1}));
    EXPECT_EQ(Assign(*target, list), (Outcome{0, 0}));
    EXPECT_EQ(ReadText(*list, "cam:1"), std::pair(false, std::string("Impl. me")));
}

TEST(AppEndpointArrayItem, ReadsTheElementsThatAreWhole)
{
    auto const list = Make<AppEndpointArrayItem>(7U);
    list->SetVal({k_cam, k_dom});
    EXPECT_EQ(Dumped(*list), "id: 7\ntype: Invalid\nvalue: (https://cam:443, rtsp://rtsp://dom/a:0)\n");
    Record const record = RecordOf(*list);
    std::string const first = "\x07\x09\x12\x34\x56\x78" + std::string("cam:443\0", 8);
    std::string const both = first + std::string("\x42\0\0\1\0\1rtsp://dom/a:0\0", 21);
    EXPECT_EQ(record.payload, Bytes(both.begin(), both.end()));

    // Up to five bytes behind the last element are ignored.
    for (std::size_t size = 0; size <= both.size() + 5; ++size) {
        Record cut = record;
        cut.payload.resize(size);
        EXPECT_EQ(Read(*list, cut), 0);
        EXPECT_EQ(list->Val().size(), size < first.size() ? 0U : size < both.size() ? 1U : 2U) << size;
    }
    EXPECT_EQ(list->Val(), (AppEndpointList{k_cam, k_dom}));

    // The list is emptied before the header is tested, though not for a null record.
    EXPECT_EQ(list->Deserialize(nullptr), IfErrNullArgument);
    EXPECT_FALSE(list->IsEmpty());
    EXPECT_EQ(Read(*list, Record{8, 0x8c, 0, {}}), IfErrInvalidArgument);
    EXPECT_TRUE(list->IsEmpty());
}

} // namespace
} // namespace Legacy::If::Test
