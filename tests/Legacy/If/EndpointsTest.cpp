#include "TestSupport.h"

#include <Legacy/If/Addr.h>
#include <Legacy/If/AppEndpoint.h>
#include <Legacy/If/AppEndpointArray.h>
#include <Legacy/If/Endpoint.h>
#include <Legacy/If/String.h>

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
    boost::intrusive_ptr<NetItem<Family>> m_fresh = Make<NetItem<Family>>(7U);
};

using Families = testing::Types<AddrFamily, EndpointFamily, AppEndpointFamily>;
TYPED_TEST_SUITE(NetValueTest, Families);

TYPED_TEST(NetValueTest, SchemaHasADefaultAndNoBounds)
{
    auto const& value = this->m_sample.value;
    auto const& info = this->m_info;
    auto const fresh = MakeInfo<NetInfo<TypeParam>>();
    auto const other = MakeInfo<StringInfo>();
    EXPECT_EQ(info->SetDefault(value), 0);
    EXPECT_TRUE(Hold(info->CreateItem())->IsEqualValue(this->m_item));
    EXPECT_EQ(Hold(info->DeepCopy(9))->GetDefault(), value);

    EXPECT_TRUE(fresh->IsEqualBounds(info));
    EXPECT_FALSE(fresh->IsEqualBounds(other));
    EXPECT_EQ(fresh->MergeBounds(info), 0);
    EXPECT_NE(fresh->GetDefault(), value);
    EXPECT_EQ(fresh->MergeBounds(other), IfErrBoundsTypeMismatch);
    EXPECT_EQ(fresh->MergeBounds(nullptr), IfErrBoundsTypeMismatch);

    EXPECT_EQ(Assign(*fresh, nullptr), (Outcome{IfErrNullSource, -1}));
    EXPECT_EQ(Assign(*fresh, other), (Outcome{IfErrTypeNotAssignable, -1}));
    EXPECT_EQ(Assign(*fresh, info), (Outcome{0, 1}));
    EXPECT_EQ(Assign(*fresh, info), (Outcome{0, 0}));
    EXPECT_EQ(fresh->GetDefault(), value);

    auto const& [name, v, shown, prefix, stored] = this->m_sample;
    EXPECT_EQ(Printed(*info), name + "Info");
    EXPECT_EQ(Dumped(*info), "id: 7\npermission: 4660\nname: speed\ntype: " + name + "\ndefault: " + shown + "\n");
    EXPECT_EQ(Dumped(*this->m_item), "id: 7\ntype: " + name + "\nvalue: " + shown + "\n");
}

TYPED_TEST(NetValueTest, ValueIsComparedAssignedAndNeverRefused)
{
    auto& target = *this->m_fresh;
    auto const text = Hold(StringItem::Create(7, "cam"));
    EXPECT_FALSE(target.IsEmpty());
    EXPECT_EQ(target.Validate(nullptr), nullptr);
    EXPECT_EQ(target.Validate(MakeInfo<StringInfo>()), nullptr);
    EXPECT_TRUE(this->m_item->IsEqualValue(Hold(this->m_item->DeepCopy(8))));
    EXPECT_FALSE(this->m_item->IsEqualValue(this->m_fresh));
    EXPECT_FALSE(this->m_item->IsEqualValue(text));

    EXPECT_EQ(Assign(target, nullptr), (Outcome{IfErrNullSource, -1}));
    EXPECT_EQ(Assign(target, text), (Outcome{IfErrTypeNotAssignable, -1}));
    EXPECT_EQ(Assign(target, Make<AppEndpointArrayItem>(7U)), (Outcome{IfErrTypeNotAssignable, -1}));
    EXPECT_EQ(Assign(target, this->m_item, 99), (Outcome{0, 1}));
    EXPECT_EQ(Assign(target, this->m_item), (Outcome{0, 0}));
    EXPECT_EQ(target.Val(), this->m_sample.value);
}

TYPED_TEST(NetValueTest, TravelsInARecord)
{
    auto const& [name, value, shown, prefix, stored] = this->m_sample;
    auto const record = RecordOf(*this->m_item);
    std::string const whole = prefix + stored + '\0';
    EXPECT_EQ(record.payload, Bytes(whole.begin(), whole.end()));
    EXPECT_EQ(this->m_item->GetSerialDataSize(), whole.size());
    auto const [code, rebuilt] = Rebuild(record);
    ASSERT_EQ(code, 0);
    EXPECT_TRUE(this->m_item->IsEqualValue(rebuilt));

    // A record that does not fit leaves the value: no text, a zero byte within the prefix, a text without an end.
    EXPECT_EQ(this->m_item->Serialize(nullptr), IfErrInvalidArgument);
    EXPECT_EQ(this->m_item->Deserialize(nullptr), IfErrNullArgument);
    EXPECT_EQ(Read(*Make<NetItem<TypeParam>>(8U), record), IfErrInvalidArgument);
    EXPECT_EQ(this->ReadPayload_(""), IfErrInvalidArgument);
    for (std::size_t size = 1; size <= prefix.size(); ++size)
        EXPECT_EQ(this->ReadPayload_(std::string(size, '\0')), IfErrInvalidArgument) << size;
    for (std::size_t size = 1; size < whole.size(); ++size)
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
    std::pair<bool, std::string> const refused(false, "");
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
    EXPECT_EQ(ReadText(*app, "dom:8", MakeInfo<StringInfo>()), refused);
    EXPECT_EQ(ReadText(*app, "dom:8"), refused);
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

TEST(AppEndpointItem, ComparesExactly)
{
    App other = k_cam;
    other.SetAppProtocolVersion(1);
    EXPECT_TRUE(other.IsEqual(k_cam));
    EXPECT_FALSE(Hold(AppEndpointItem::Create(1, other))->IsEqualValue(Hold(AppEndpointItem::Create(1, k_cam))));
}

TEST(AppEndpointArrayInfo, StoresItsSizesApartAndLosesThemInACopy)
{
    auto const info = MakeInfo<AppEndpointArrayInfo>();
    EXPECT_EQ(info->SetDefault({k_cam, k_dom, k_cam}), 0);
    EXPECT_EQ(info->SetMinSize(4), 0);
    EXPECT_EQ(info->SetMaxSize(1), 0);
    EXPECT_EQ(info->GetMinSize(), 4U);
    EXPECT_EQ(info->GetDefault().size(), 3U);
    EXPECT_EQ(AppEndpointArrayInfo(*info).GetMinSize(), 4U);

    auto const copy = Hold(info->DeepCopy());
    EXPECT_EQ(copy->GetDefault(), info->GetDefault());
    EXPECT_TRUE(copy->IsEqualBounds(info));
    EXPECT_EQ(copy->MergeBounds(info), 0);
    EXPECT_EQ(copy->GetMinSize(), 0U);
    EXPECT_EQ(copy->GetMaxSize(), 2147483647U);
    EXPECT_EQ(copy->MergeBounds(MakeInfo<AppEndpointInfo>()), IfErrBoundsTypeMismatch);

    auto const item = Hold(info->CreateItem());
    EXPECT_EQ(dynamic_cast<AppEndpointArrayItem&>(*item).Val(), info->GetDefault());
    EXPECT_EQ(Printed(*info), "AppEndpointArrayInfo");
    EXPECT_EQ(Dumped(*info), "id: 7\npermission: 4660\nname: speed\ntype: Invalid\ndefault: [empty array]\n");
}

TEST(AppEndpointArrayInfo, TakesOverOneDifferenceInEachCall)
{
    auto const source = MakeInfo<AppEndpointArrayInfo>();
    source->SetDefault({k_cam});
    source->SetMinSize(1);
    source->SetMaxSize(4);
    auto const target = MakeInfo<AppEndpointArrayInfo>();
    for (int call = 1; call <= 4; ++call) {
        bool changed = call == 4;
        EXPECT_EQ(target->AssignValue(source, &changed), 0);
        EXPECT_EQ(changed, call != 4);
        EXPECT_EQ(target->GetDefault(), source->GetDefault());
        EXPECT_EQ(target->GetMinSize(), call < 2 ? 0U : 1U);
        EXPECT_EQ(target->GetMaxSize(), call < 3 ? 2147483647U : 4U);
    }
    EXPECT_EQ(Assign(*target, nullptr), (Outcome{IfErrNullSource, -1}));
    EXPECT_EQ(Assign(*target, MakeInfo<AppEndpointInfo>()), (Outcome{IfErrTypeNotAssignable, -1}));
}

TEST(AppEndpointArrayItem, TakesOneElementOrAWholeList)
{
    auto const list = Make<AppEndpointArrayItem>(7U);
    auto const one = Hold(AppEndpointItem::Create(7, k_cam));
    EXPECT_TRUE(list->IsEmpty());
    EXPECT_EQ(list->AssignArrayValue(one, 2, nullptr), 0);
    EXPECT_EQ(list->Val(), (AppEndpointList{App(), App(), k_cam}));
    EXPECT_EQ(Assign(*list, one, 2), (Outcome{0, 0}));
    EXPECT_EQ(Assign(*list, Make<AppEndpointItem>(7U), 3), (Outcome{0, 1})); // by growing alone

    auto const target = Make<AppEndpointArrayItem>(8U);
    EXPECT_EQ(Assign(*target, list, 99), (Outcome{0, 1}));
    EXPECT_EQ(Assign(*target, list), (Outcome{0, 0}));
    EXPECT_TRUE(target->IsEqualValue(list));
    target->Val()[1].SetAddrGroupPrefix(1);
    EXPECT_FALSE(target->IsEqualValue(list));
    EXPECT_EQ(Assign(*target, list), (Outcome{0, 1}));
    EXPECT_EQ(Assign(*target, nullptr), (Outcome{IfErrNullSource, -1}));
    EXPECT_EQ(Assign(*target, Make<EndpointItem>(7U)), (Outcome{IfErrTypeNotAssignable, -1}));
    EXPECT_TRUE(target->IsEqualValue(Hold(target->DeepCopy(1))));
}

TEST(AppEndpointArrayItem, PrintsAndIsNeitherReadNorRefused)
{
    auto const list = Make<AppEndpointArrayItem>(7U);
    EXPECT_EQ(list->GetValAsString(), "()");
    list->SetVal({k_cam, k_dom});
    EXPECT_EQ(Dumped(*list), "id: 7\ntype: Invalid\nvalue: (https://cam:443, rtsp://rtsp://dom/a:0)\n");
    EXPECT_EQ(ReadText(*list, "cam:1"), std::pair(false, std::string("Impl. me")));
    auto const info = MakeInfo<AppEndpointArrayInfo>();
    info->SetMaxSize(1);
    EXPECT_EQ(list->Validate(info), nullptr);
    EXPECT_EQ(list->Validate(nullptr), nullptr);
    EXPECT_EQ(list->Val().size(), 2U);
}

TEST(AppEndpointArrayItem, ReadsTheElementsThatAreWhole)
{
    auto const list = Make<AppEndpointArrayItem>(7U);
    EXPECT_EQ(RecordOf(*list).payload, Bytes());
    list->SetVal({k_cam, k_dom});
    Record const record = RecordOf(*list);
    std::string const first = "\x07\x09\x12\x34\x56\x78" + std::string("cam:443\0", 8);
    std::string const both = first + std::string("\x42\0\0\1\0\1rtsp://dom/a:0\0", 21);
    EXPECT_EQ(record.payload, Bytes(both.begin(), both.end()));
    EXPECT_EQ(list->GetSerialDataSize(), both.size());
    EXPECT_TRUE(list->IsEqualValue(Rebuild(record).second));

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
    EXPECT_EQ(list->Serialize(nullptr), IfErrInvalidArgument);
}

} // namespace
} // namespace Legacy::If::Test
