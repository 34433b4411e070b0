// What it costs to write a value's record and to rebuild the value from it.
#include "Records.h"

#include <Legacy/If/AppEndpoint.h>
#include <Legacy/If/Numeric.h>
#include <Legacy/If/NumericArray.h>
#include <Legacy/If/String.h>
#include <Pb/Legacy/If/AppEndpoint.pb.h>

#include <Peers.pb.h>

#include <concepts>
#include <cstring>

namespace {

using namespace Legacy::If;
using namespace Bench;

template<typename Message>
void AddPair(std::string const& subject, ItemPtr const& item, Message const& message)
{
    AddRow("serialize", subject, k_ours, [=](benchmark::State& state) { Serialize(state, item); });
    AddRow("serialize", subject, "protobuf", [=](benchmark::State& state) { SerializeMessage(state, message); });
    AddRow("rebuild", subject, k_ours, [=](benchmark::State& state) { Rebuild(state, item); });
    AddRow("rebuild", subject, "protobuf", [=](benchmark::State& state) { ParseMessage(state, message); });
}

void AddScalars()
{
    Bench::Scalar scalar;
    scalar.set_value(7);
    AddPair("u32", NumericItem<U32Traits>::Create(k_id, 7), scalar);
    Bench::Text text;
    text.set_value(k_text);
    AddPair("text", StringItem::Create(k_id, k_text), text);
}

template<typename Element>
Bench::Numbers MakeNumbers(std::vector<Element> const& list)
{
    Bench::Numbers numbers;
    if constexpr (sizeof(Element) == 1)
        numbers.set_u8(list.data(), list.size());
    else if constexpr (std::same_as<Element, float>)
        numbers.mutable_real32()->Assign(list.begin(), list.end());
    else if constexpr (std::same_as<Element, double>)
        numbers.mutable_real64()->Assign(list.begin(), list.end());
    else if constexpr (sizeof(Element) == 8 && std::unsigned_integral<Element>)
        numbers.mutable_u64()->Assign(list.begin(), list.end());
    else if constexpr (sizeof(Element) == 8)
        numbers.mutable_s64()->Assign(list.begin(), list.end());
    else if constexpr (std::unsigned_integral<Element>)
        numbers.mutable_u32()->Assign(list.begin(), list.end());
    else
        numbers.mutable_s32()->Assign(list.begin(), list.end());
    return numbers;
}

template<typename Traits>
void AddList()
{
    using Element = typename Traits::T;
    auto const list = MakeList<Element>();
    boost::intrusive_ptr<NumericArrayItem<Traits>> const item(new NumericArrayItem<Traits>(k_id));
    item->SetVal(list);
    AddPair(ListName<Traits>(), item, MakeNumbers(list));

    // The limit: bytes copied into a new allocation.
    AddRow("serialize", ListName<Traits>(), "memcpy", [list](benchmark::State& state) {
        Measure(state, [&list] {
            std::unique_ptr<unsigned char[]> const bytes(new unsigned char[list.size() * sizeof(Element)]);
            std::memcpy(bytes.get(), list.data(), list.size() * sizeof(Element));
            benchmark::DoNotOptimize(bytes.get());
            benchmark::ClobberMemory();
        });
    });
    AddRow("rebuild", ListName<Traits>(), "memcpy", [list](benchmark::State& state) {
        Measure(state, [&list] {
            std::vector<Element> copy(list);
            benchmark::DoNotOptimize(copy.data());
            benchmark::ClobberMemory();
        });
    });
}

void AddEndpoint()
{
    AppEndpoint<Net::Endpoint<Net::AddrStr>> const endpoint(AppProtocolInfo_t(AppProtocolType_t::Rtsp, 1, 1),
                                                            {Net::AddrStr("camera-7.example.net"), 554}, 3);
    Pb::Legacy::If::AppEndpointStr message;
    auto& info = *message.mutable_protocol_info();
    info.set_app_protocol_type(Pb::Legacy::If::APP_PROTOCOL_TYPE_RTSP);
    info.set_version(1);
    info.set_compat_version(1);
    message.mutable_endpoint()->set_addr("camera-7.example.net");
    message.mutable_endpoint()->set_port(554);
    message.set_addr_group_prefix(3);
    AddPair("app-endpoint", AppEndpointItem::Create(k_id, endpoint), message);
}

struct Rows
{
    Rows()
    {
        AddScalars();
        AddEndpoint();
        ForAllElements([]<typename Traits>(Traits) { AddList<Traits>(); });
    }
} const k_rows;

} // namespace
