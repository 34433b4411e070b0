// A setter that finds no memory leaves all as it was.
#include "Failing.h"

#include <Legacy/If.h>

#include <gtest/gtest.h>

#include <new>
#include <sstream>

namespace Legacy::If {
namespace {

std::string const k_long(100, 'x'); // no text object has room for it in itself
std::string const k_longer = k_long + 'y';

std::string Show(InfoBase const& info)
{
    std::ostringstream os;
    os << info << ' ' << *boost::intrusive_ptr<ItemBase>(info.CreateItem());
    return os.str();
}

std::string Show(ItemBase const& item) { return item.GetValAsString(); }

std::string Show(ExtendedInfo const& info) { return info.GetDefault().first + ' ' + info.GetDefault().second; }

std::string Show(ExtendedItem const& item) { return item.Val().first + ' ' + item.Val().second; }

/// Lets the first allocation of `set` fail with all that follow, then the second, and so on until it gets through.
template<typename Object>
void ExpectWhole(boost::intrusive_ptr<Object> const& object, auto&& set)
{
    std::string const before = Show(*object);
    SCOPED_TRACE(before);
    std::uint64_t nth = 0;
    for (bool failed = true; failed;) {
        bool thrown = false;
        Failing::Arm(++nth, true);
        try {
            set(*object);
        } catch (std::bad_alloc const&) {
            thrown = true;
        }
        failed = Failing::Disarm();
        EXPECT_EQ(Show(*object) == before, thrown) << nth;
    }
    EXPECT_GT(nth, 1U);
}

template<typename Info>
boost::intrusive_ptr<Info> MakeInfo(auto&& prepare)
{
    boost::intrusive_ptr<Info> info(new Info(7, "speed", Permission_t{}));
    prepare(*info);
    return info;
}

/// The sizes and the default grow together.
template<typename Info>
void ExpectListWhole(typename Info::List const& first, typename Info::List const& second)
{
    auto const info = MakeInfo<Info>([&](Info& made) {
        made.SetMaxSize(2);
        made.SetDefault(first);
    });
    ExpectWhole(info, [&](Info& made) { made.SetDefault(second); });
    ExpectWhole(info, [](Info& made) { made.SetMinSize(1000); });
}

TEST(Setters, LeaveSchemasOfListsWhole)
{
    ExpectListWhole<NumericArrayInfo<U8Traits>>({1}, {2, 3});
    ExpectListWhole<BoolArrayInfo>({true}, {false, false});
    ExpectListWhole<StringArrayInfo>({"a", "b"}, {k_long, k_longer});
    auto const rects = MakeInfo<RectArrayInfo<U16Traits>>([](auto&) {});
    ExpectWhole(MakeInfo<NumericArrayInfo<U8Traits>>([](auto&) {}),
                [&](auto& info) { info.AssignValue(rects, nullptr); });
}

TEST(Setters, LeaveTablesAndTheirDefaultsWhole)
{
    auto const texts = MakeInfo<StringSparseInfo>([](auto& info) { info.SetTable({"a", "b"}); });
    ExpectWhole(texts, [](auto& info) { info.SetTable({k_long, k_longer}); });
    boost::intrusive_ptr<EnumInfo> const elements(new EnumInfo(7, "mode", Permission_t{}, false));
    elements->SetTable({{"a", 1}, {"b", 2}});
    ExpectWhole(elements, [](auto& info) { info.SetTable({{k_long, 3}, {k_longer, 4}}); });
}

TEST(Setters, LeaveDefaultsAndValuesWholeThatHaveParts)
{
    std::pair const texts(k_long, k_longer);
    ExpectWhole(MakeInfo<ExtendedInfo>([](auto&) {}), [&](auto& info) { info.SetDefault(texts); });
    boost::intrusive_ptr<ExtendedItem> const extended(new ExtendedItem(7));
    ExpectWhole(extended, [&](auto& item) { item.SetVal(texts); });

    AppEndpoint<Net::Endpoint<Net::AddrStr>> const place({AppProtocolType_t::Https, 1, 1}, {Net::AddrStr(k_long), 443},
                                                         1);
    AppEndpointList const places{place, place};
    ExpectWhole(MakeInfo<AppEndpointInfo>([](auto&) {}), [&](auto& info) { info.SetDefault(place); });
    auto const list = MakeInfo<AppEndpointArrayInfo>([](auto& info) { info.SetDefault(AppEndpointList(2)); });
    ExpectWhole(list, [&](auto& info) { info.SetDefault(places); });
    boost::intrusive_ptr<AppEndpointItem> const endpoint(new AppEndpointItem(7));
    ExpectWhole(endpoint, [&](auto& item) { item.SetVal(place); });

    LocalizedString message(k_long);
    message.AddArgument(extended);
    boost::intrusive_ptr<LocalizedStringItem> const localized(new LocalizedStringItem(7));
    ExpectWhole(localized, [&](auto& item) { item.SetVal(message); });
}

} // namespace
} // namespace Legacy::If
