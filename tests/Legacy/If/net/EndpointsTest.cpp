#include "../TestSupport.h"

#include <Legacy/If/Addr.h>
#include <Legacy/If/AppEndpoint.h>
#include <Legacy/If/AppEndpointArray.h>
#include <Legacy/If/Endpoint.h>

#include <iostream>

namespace Legacy::If::Test {
namespace {

using namespace std::string_literals;
using Place = Net::Endpoint<Net::AddrStr>;
using App = AppEndpoint<Place>;

App const k_cam({AppProtocolType_t::Https, 0x1234, 0x5678}, Place("cam", 443), 9);
App const k_dom({AppProtocolType_t::Rtsp, 1, 1}, Place("rtsp://dom/a"), 0);
std::string const k_camRecord = "\x07\x09\x12\x34\x56\x78" + "cam:443\0"s;

template<typename Info, typename Item, typename Value>
void ExpectFamily(std::string const& name, Value const& value, std::string const& shown, std::string const& payload)
{
    auto const info = MakeInfo<Info>();
    auto const fresh = MakeInfo<Info>();
    EXPECT_EQ(info->SetDefault(value), 0);
    EXPECT_TRUE(fresh->IsEqualBounds(info));
    EXPECT_EQ(fresh->MergeBounds(info), 0);
    EXPECT_NE(fresh->GetDefault(), value);
    EXPECT_EQ(Assign(*fresh, info), (Outcome{0, 1}));
    EXPECT_EQ(Assign(*fresh, info), (Outcome{0, 0}));
    EXPECT_EQ(Printed(*info), name + "Info");
    EXPECT_EQ(Dumped(*info), "id: 7\npermission: 4660\nname: speed\ntype: " + name + "\ndefault: " + shown + "\n");

    auto const item = Make<Item>(7U);
    EXPECT_FALSE(item->IsEmpty());
    EXPECT_EQ(Assign(*item, Hold(info->CreateItem()), 99), (Outcome{0, 1}));
    EXPECT_EQ(Assign(*item, Hold(info->CreateItem())), (Outcome{0, 0}));
    EXPECT_EQ(Dumped(*item), "id: 7\ntype: " + name + "\nvalue: " + shown + "\n");

    Record record = RecordOf(*item);
    EXPECT_EQ(record.payload, Bytes(payload.begin(), payload.end()));
    auto const readPayload = [&](std::string const& bytes) {
        record.payload.assign(bytes.begin(), bytes.end());
        return Read(*item, record);
    };
    // A record that does not fit: no text, a text without an end, a zero byte within the prefix.
    std::size_t const prefixSize = Item::GetTypeStatic() == IfType_t::AppEndpoint ? 6 : 0;
    for (std::string const& bad : {std::string(prefixSize, '\0'), payload.substr(0, payload.size() - 1), ""s})
        EXPECT_EQ(readPayload(bad), IfErrInvalidArgument);
    // The text ends at its first zero byte, whatever follows.
    item->SetVal({}, *info);
    EXPECT_EQ(readPayload(payload + "x\0"s), 0);
    EXPECT_EQ(item->Val(), value);

    // One word is read. At the end nothing is; among blanks the read fails and counts as an empty word.
    item->SetVal({});
    std::pair<bool, std::string> const taken(true, "");
    EXPECT_EQ(ReadText(*item, "  "s + (payload.c_str() + prefixSize) + " x", info), taken);
    std::istringstream in;
    in.get();
    EXPECT_TRUE(item->SetValFromStream(in, std::cerr, info));
    EXPECT_EQ(Printed(*item), shown);
    EXPECT_EQ(ReadText(*item, " ", info), taken);
    EXPECT_NE(Printed(*item), shown);
}

TEST(NetValues, HaveTextsAndRecordsButNoBounds)
{
    ExpectFamily<AddrInfo, AddrItem>("Addr", Net::AddrStr("cam"), "cam", "cam\0"s);
    ExpectFamily<EndpointInfo, EndpointItem>("Endpoint", Place("::1", 80), "[::1]:80", "[::1]:80\0"s);
    ExpectFamily<AppEndpointInfo, AppEndpointItem>("AppEndpoint", k_cam, "https://cam:443", k_camRecord);
}

TEST(AppEndpointItem, TakesItsProtocolFromItsSchemaWhenItIsRead)
{
    auto const item = Hold(AppEndpointItem::Create(7, k_dom));
    auto const info = MakeInfo<AppEndpointInfo>();
    info->SetDefault(k_cam);
    std::istringstream ended;
    ended.get();
    for (InfoPtr const& other : {InfoPtr(MakeInfo<AddrInfo>()), InfoPtr()}) {
        EXPECT_EQ(ReadText(*item, "dom:8", other), std::pair(false, ""s));
        EXPECT_FALSE(item->SetValFromStream(ended, std::cerr, other));
    }
    EXPECT_EQ(item->Val(), k_dom);
    EXPECT_TRUE(ReadText(*item, "dom:8", info).first);
    EXPECT_EQ(item->Val(), App(k_cam.GetAppProtocolInfo(), {"dom", 8}, 0));
}

TEST(AppEndpointArrayInfo, StoresItsSizesApartAndTakesOverOneDifferenceInEachCall)
{
    auto const source = MakeInfo<AppEndpointArrayInfo>();
    source->SetDefault({k_cam, k_dom});
    EXPECT_EQ(source->SetMinSize(4) + source->SetMaxSize(1), 0);
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
    auto const one = Hold(AppEndpointItem::Create(7, k_cam));
    EXPECT_EQ(Assign(*list, one, 2), (Outcome{0, 1}));
    EXPECT_EQ(list->Val(), (AppEndpointList{App(), App(), k_cam}));
    EXPECT_EQ(Assign(*list, one, 2), (Outcome{0, 0}));
    EXPECT_EQ(Assign(*list, Make<AppEndpointItem>(7U), 3), (Outcome{0, 1})); // by growing alone
    auto const target = Hold(list->DeepCopy(8));
    target->Val()[1].SetAddrGroupPrefix(1); // the same place, but compared exactly
    EXPECT_FALSE(target->IsEqualValue(list));
    EXPECT_EQ(Assign(*target, list, 99), (Outcome{0, 1}));
    EXPECT_EQ(Assign(*target, list), (Outcome{0, 0}));
    EXPECT_EQ(ReadText(*list, "cam:1"), std::pair(false, "Impl. me"s));
}

TEST(AppEndpointArrayItem, ReadsTheElementsThatAreWhole)
{
    auto const list = Make<AppEndpointArrayItem>(7U);
    list->SetVal({k_cam, k_dom});
    EXPECT_EQ(Dumped(*list), "id: 7\ntype: Invalid\nvalue: (https://cam:443, rtsp://rtsp://dom/a:0)\n");
    Record record = RecordOf(*list);
    std::string const both = k_camRecord + "\x42\0\0\1\0\1rtsp://dom/a:0\0"s;
    EXPECT_EQ(record.payload, Bytes(both.begin(), both.end()));
    // Up to five bytes behind the last element are ignored.
    AppEndpointList whole{k_cam, k_dom};
    for (std::size_t size = both.size() + 5; size > 0; --size) {
        record.payload.resize(size);
        whole.resize(size < k_camRecord.size() ? 0 : size < both.size() ? 1 : 2);
        EXPECT_EQ(Read(*list, record), 0);
        EXPECT_EQ(list->Val(), whole) << size;
    }
}

} // namespace
} // namespace Legacy::If::Test
