#include "TestSupport.h"

#include <Legacy/If/Addr.h>
#include <Legacy/If/AppEndpoint.h>
#include <Legacy/If/AppEndpointArray.h>
#include <Legacy/If/Endpoint.h>
#include <Legacy/If/String.h>

#include <iostream>

namespace Legacy::If::Test {
namespace {

using Place = Net::Endpoint<Net::AddrStr>;
using App = AppEndpoint<Place>;

App const k_cam({AppProtocolType_t::Https, 0x1234, 0x5678}, Place("cam", 443), 9);
App const k_dom({AppProtocolType_t::Rtsp, 1, 1}, Place("rtsp://dom/a"), 0);

/// What the one template is told of each family, as its callers see it.
struct AddrCase
{
    using Info = AddrInfo;
    using Item = AddrItem;
    using Value = Net::AddrStr;
    static constexpr auto k_type = IfType_t::Addr;
    static Value Sample() { return "cam"; }
    static std::string Display() { return "cam"; }
    static std::string Prefix() { return ""; }
    static std::string Stored() { return "cam"; }
    static std::string Name() { return "Addr"; }
};

struct EndpointCase
{
    using Info = EndpointInfo;
    using Item = EndpointItem;
    using Value = Place;
    static constexpr auto k_type = IfType_t::Endpoint;
    static Value Sample() { return {"::1", 80}; }
    static std::string Display() { return "[::1]:80"; }
    static std::string Prefix() { return ""; }
    static std::string Stored() { return "[::1]:80"; }
    static std::string Name() { return "Endpoint"; }
};

struct AppEndpointCase
{
    using Info = AppEndpointInfo;
    using Item = AppEndpointItem;
    using Value = App;
    static constexpr auto k_type = IfType_t::AppEndpoint;
    static Value Sample() { return k_cam; }
    static std::string Display() { return "https://cam:443"; }
    static std::string Prefix() { return "\x07\x09\x12\x34\x56\x78"; }
    static std::string Stored() { return "cam:443"; }
    static std::string Name() { return "AppEndpoint"; }
};

Bytes BytesOf(std::string const& text) { return Bytes(text.begin(), text.end()); }

template<typename Case>
class NetValueTest : public testing::Test
{
protected:
    static Record RecordWith(std::string const& payload)
    {
        return {7, static_cast<unsigned char>(Case::k_type), 0, BytesOf(payload)};
    }

    boost::intrusive_ptr<typename Case::Info> m_info = MakeInfo<typename Case::Info>();
    boost::intrusive_ptr<typename Case::Item> m_item = Hold(Case::Item::Create(7, Case::Sample()));
    boost::intrusive_ptr<typename Case::Item> m_empty = Make<typename Case::Item>(7U);
    boost::intrusive_ptr<StringInfo> m_otherInfo = MakeInfo<StringInfo>();
    boost::intrusive_ptr<StringItem> m_otherItem = Hold(StringItem::Create(7, "cam"));
};

using Cases = testing::Types<AddrCase, EndpointCase, AppEndpointCase>;
TYPED_TEST_SUITE(NetValueTest, Cases);

TYPED_TEST(NetValueTest, SchemaHasADefaultAndNoBounds)
{
    auto const& info = this->m_info;
    EXPECT_EQ(info->GetType(), TypeParam::k_type);
    EXPECT_EQ(TypeParam::Info::GetTypeStatic(), TypeParam::k_type);
    EXPECT_EQ(info->GetNumericType(), NumericType_t::Undefined);
    EXPECT_EQ(info->GetDefault(), typename TypeParam::Value());
    EXPECT_EQ(info->SetDefault(TypeParam::Sample()), 0);

    auto const created = Hold(info->CreateItem());
    EXPECT_TRUE(created->IsEqualValue(this->m_item));
    EXPECT_EQ(created->GetId(), 7U);
    auto const copy = Hold(info->DeepCopy(9));
    EXPECT_EQ(copy->GetDefault(), TypeParam::Sample());
    EXPECT_EQ(copy->GetId(), 9U);
    EXPECT_EQ(copy->GetName(), "speed");

    auto const fresh = MakeInfo<typename TypeParam::Info>();
    EXPECT_TRUE(fresh->IsEqualBounds(info));
    EXPECT_FALSE(fresh->IsEqualBounds(this->m_otherInfo));
    EXPECT_FALSE(fresh->IsEqualBounds(nullptr));
    EXPECT_EQ(fresh->MergeBounds(info), 0);
    EXPECT_EQ(fresh->GetDefault(), typename TypeParam::Value());
    EXPECT_EQ(fresh->MergeBounds(this->m_otherInfo), IfErrBoundsTypeMismatch);
    EXPECT_EQ(fresh->MergeBounds(nullptr), IfErrBoundsTypeMismatch);

    EXPECT_EQ(Assign(*fresh, nullptr), (Outcome{IfErrNullSource, -1}));
    EXPECT_EQ(Assign(*fresh, this->m_otherInfo), (Outcome{IfErrTypeNotAssignable, -1}));
    EXPECT_EQ(Assign(*fresh, info), (Outcome{0, 1}));
    EXPECT_EQ(Assign(*fresh, info), (Outcome{0, 0}));
    EXPECT_EQ(fresh->GetDefault(), TypeParam::Sample());
}

TYPED_TEST(NetValueTest, PrintsTheValueAndTheBareNameOfTheSchema)
{
    this->m_info->SetDefault(TypeParam::Sample());
    std::string const type = TypeParam::Name();
    EXPECT_EQ(Printed(*this->m_info), type + "Info");
    EXPECT_EQ(Dumped(*this->m_info),
              "id: 7\npermission: 4660\nname: speed\ntype: " + type + "\ndefault: " + TypeParam::Display() + "\n");
    EXPECT_EQ(this->m_item->GetValAsString(), TypeParam::Display());
    EXPECT_EQ(Dumped(*this->m_item), "id: 7\ntype: " + type + "\nvalue: " + TypeParam::Display() + "\n");
}

TYPED_TEST(NetValueTest, ValueIsComparedAssignedAndNeverRefused)
{
    auto& item = *this->m_item;
    EXPECT_FALSE(this->m_empty->IsEmpty());
    EXPECT_EQ(this->m_empty->GetVal(), typename TypeParam::Value());
    EXPECT_EQ(item.Validate(nullptr), nullptr);
    EXPECT_EQ(item.Validate(this->m_otherInfo), nullptr);
    EXPECT_TRUE(item.IsEqualValue(Hold(item.DeepCopy(8))));
    EXPECT_FALSE(item.IsEqualValue(this->m_empty));
    EXPECT_FALSE(item.IsEqualValue(this->m_otherItem));
    EXPECT_FALSE(item.IsEqualValue(nullptr));

    auto& target = *this->m_empty;
    EXPECT_EQ(Assign(target, nullptr), (Outcome{IfErrNullSource, -1}));
    EXPECT_EQ(Assign(target, this->m_otherItem), (Outcome{IfErrTypeNotAssignable, -1}));
    EXPECT_EQ(Assign(target, Make<AppEndpointArrayItem>(7U)), (Outcome{IfErrTypeNotAssignable, -1}));
    EXPECT_EQ(Assign(target, this->m_item, 99), (Outcome{0, 1}));
    EXPECT_EQ(Assign(target, this->m_item), (Outcome{0, 0}));
    EXPECT_EQ(target.Val(), TypeParam::Sample());
    target.SetVal({}, *this->m_info);
    EXPECT_EQ(target.Val(), typename TypeParam::Value());
}

TYPED_TEST(NetValueTest, TravelsInARecord)
{
    auto const record = RecordOf(*this->m_item);
    EXPECT_EQ(record.payload, BytesOf(TypeParam::Prefix() + TypeParam::Stored() + '\0'));
    EXPECT_EQ(this->m_item->GetSerialDataSize(), record.payload.size());
    auto const [code, rebuilt] = Rebuild(record);
    ASSERT_EQ(code, 0);
    EXPECT_TRUE(this->m_item->IsEqualValue(rebuilt));
    EXPECT_EQ(Read(*this->m_empty, RecordOf(*this->m_empty)), 0);
    EXPECT_EQ(this->m_empty->Val(), typename TypeParam::Value());
}

TYPED_TEST(NetValueTest, RefusesRecordsThatDoNotFit)
{
    auto const kept = TypeParam::Sample();
    auto& item = *this->m_item;
    EXPECT_EQ(item.Serialize(nullptr), IfErrInvalidArgument);
    EXPECT_EQ(item.Deserialize(nullptr), IfErrNullArgument);
    auto const good = RecordOf(*this->m_empty);
    for (int const field : {0, 1, 2}) {
        Record wrong = good;
        wrong.id += field == 0;
        wrong.type = static_cast<unsigned char>(wrong.type ^ (field == 1));
        wrong.numericType = field == 2;
        EXPECT_EQ(Read(item, wrong), IfErrInvalidArgument);
    }
    EXPECT_EQ(Read(item, this->RecordWith("")), IfErrInvalidArgument);
    // A zero byte within the prefix ends no text.
    for (std::size_t size = 1; size <= TypeParam::Prefix().size(); ++size)
        EXPECT_EQ(Read(item, this->RecordWith(std::string(size, '\0'))), IfErrInvalidArgument) << size;
    std::string const unended = TypeParam::Prefix() + "dom:1";
    for (std::size_t size = 1; size <= unended.size(); ++size)
        EXPECT_EQ(Read(item, this->RecordWith(unended.substr(0, size))), IfErrInvalidArgument) << size;
    EXPECT_EQ(item.Val(), kept);

    // The text ends at its first zero byte, whatever follows.
    EXPECT_EQ(Read(item, this->RecordWith(TypeParam::Prefix() + TypeParam::Stored() + std::string("\0x\0", 3))), 0);
    EXPECT_EQ(item.Val(), kept);
    item.SetVal({});
    EXPECT_EQ(Read(item, this->RecordWith(TypeParam::Prefix() + TypeParam::Stored() + '\0')), 0);
    EXPECT_EQ(item.Val(), kept);
}

TEST(NetItems, ReadOneWordWhateverItIs)
{
    auto const addr = Hold(AddrItem::Create(1, "old"));
    EXPECT_EQ(ReadText(*addr, "  cam dom"), std::pair(true, std::string()));
    EXPECT_EQ(addr->Val(), "cam");
    auto const endpoint = Hold(EndpointItem::Create(1, {"old", 1}));
    EXPECT_EQ(ReadText(*endpoint, "cam:99999\n"), std::pair(true, std::string()));
    EXPECT_EQ(endpoint->Val(), Place("cam:99999"));

    // Nothing but blanks: the read fails and counts as an empty word.
    EXPECT_TRUE(ReadText(*addr, " ").first);
    EXPECT_EQ(addr->Val(), Net::AddrStr());
    EXPECT_TRUE(ReadText(*endpoint, " ").first);
    EXPECT_EQ(endpoint->Val(), Place());

    // At the end nothing is read.
    std::istringstream in;
    in.get();
    addr->SetVal("kept");
    EXPECT_TRUE(addr->SetValFromStream(in, std::cout, nullptr));
    EXPECT_EQ(addr->Val(), "kept");
}

TEST(AppEndpointItem, ReadsAnEndpointUnderTheProtocolOfItsSchema)
{
    auto const item = Hold(AppEndpointItem::Create(7, k_dom));
    auto const info = MakeInfo<AppEndpointInfo>();
    info->SetDefault(k_cam);
    EXPECT_EQ(ReadText(*item, "dom:8", MakeInfo<StringInfo>()), std::pair(false, std::string()));
    EXPECT_EQ(ReadText(*item, "dom:8"), std::pair(false, std::string()));
    EXPECT_EQ(item->Val(), k_dom);
    EXPECT_EQ(ReadText(*item, "dom:8", info), std::pair(true, std::string()));
    EXPECT_EQ(item->Val(), App(k_cam.GetAppProtocolInfo(), {"dom", 8}, 0));

    std::istringstream in;
    in.get();
    EXPECT_TRUE(item->SetValFromStream(in, std::cout, info));
    EXPECT_FALSE(item->SetValFromStream(in, std::cout, nullptr));
    EXPECT_EQ(item->Val().GetPort(), 8);
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
    EXPECT_EQ(info->GetMaxSize(), 2147483647U);
    EXPECT_EQ(info->SetDefault({k_cam, k_dom, k_cam}), 0);
    EXPECT_EQ(info->SetMinSize(4), 0);
    EXPECT_EQ(info->SetMaxSize(1), 0);
    EXPECT_EQ(info->GetMinSize(), 4U);
    EXPECT_EQ(info->GetDefault().size(), 3U);

    auto const copy = Hold(info->DeepCopy());
    EXPECT_EQ(copy->GetDefault(), info->GetDefault());
    EXPECT_EQ(copy->GetMinSize(), 0U);
    EXPECT_EQ(copy->GetMaxSize(), 2147483647U);
    EXPECT_TRUE(copy->IsEqualBounds(info));
    EXPECT_EQ(copy->MergeBounds(info), 0);
    EXPECT_EQ(copy->GetMinSize(), 0U);
    EXPECT_EQ(copy->MergeBounds(MakeInfo<AppEndpointInfo>()), IfErrBoundsTypeMismatch);
    EXPECT_EQ(AppEndpointArrayInfo(*info).GetMinSize(), 4U);

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
    auto const next = [&](bool expectChange) {
        bool changed = !expectChange;
        EXPECT_EQ(target->AssignValue(source, &changed), 0);
        EXPECT_EQ(changed, expectChange);
    };
    next(true);
    EXPECT_EQ(target->GetDefault(), source->GetDefault());
    EXPECT_EQ(target->GetMinSize(), 0U);
    next(true);
    EXPECT_EQ(target->GetMinSize(), 1U);
    EXPECT_EQ(target->GetMaxSize(), 2147483647U);
    next(true);
    EXPECT_EQ(target->GetMaxSize(), 4U);
    next(false);
    EXPECT_EQ(target->AssignValue(source, nullptr), 0);
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
    EXPECT_EQ(Assign(*list, one, 0), (Outcome{0, 1}));
    bool changed = false;
    EXPECT_EQ(list->AssignArrayValue(Make<AppEndpointItem>(7U), 3, &changed), 0);
    EXPECT_TRUE(changed); // by growing alone

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
    EXPECT_FALSE(target->IsEmpty());
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
    EXPECT_EQ(record.payload, BytesOf(first + std::string("\x42\0\0\1\0\1rtsp://dom/a:0\0", 21)));
    EXPECT_EQ(list->GetSerialDataSize(), record.payload.size());
    auto const [code, rebuilt] = Rebuild(record);
    ASSERT_EQ(code, 0);
    EXPECT_TRUE(rebuilt->IsEqualValue(list));

    for (std::size_t size = 0; size <= record.payload.size(); ++size) {
        Record cut = record;
        cut.payload.resize(size);
        EXPECT_EQ(Read(*list, cut), 0);
        EXPECT_EQ(list->Val().size(), size < first.size() ? 0U : size < record.payload.size() ? 1U : 2U) << size;
    }
    Record longer = record;
    longer.payload.insert(longer.payload.end(), 5, 0);
    EXPECT_EQ(Read(*list, longer), 0);
    EXPECT_EQ(list->Val(), (AppEndpointList{k_cam, k_dom}));
}

TEST(AppEndpointArrayItem, IsEmptiedBeforeTheHeaderIsTested)
{
    auto const list = Make<AppEndpointArrayItem>(7U);
    list->SetVal({k_cam});
    EXPECT_EQ(list->Serialize(nullptr), IfErrInvalidArgument);
    EXPECT_EQ(list->Deserialize(nullptr), IfErrNullArgument);
    EXPECT_FALSE(list->IsEmpty());
    EXPECT_EQ(Read(*list, Record{8, 0x8c, 0, {}}), IfErrInvalidArgument);
    EXPECT_TRUE(list->IsEmpty());
}

} // namespace
} // namespace Legacy::If::Test
