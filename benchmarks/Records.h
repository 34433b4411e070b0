#pragma once

#include "Rows.h"

#include <Legacy/If/ItemBase.h>

#include <string>

namespace Bench {

using ItemPtr = boost::intrusive_ptr<Legacy::If::ItemBase>;

/// The record as a reader sees it: the same header, the payload borrowed.
inline Legacy::If::ItemBase::ConstSerialStruct_t Borrow(Legacy::If::ItemBase::SerialStruct_t const& record)
{
    Legacy::If::ItemBase::ConstSerialStruct_t view;
    view.id = record.id;
    view.size = record.size;
    view.type = record.type;
    view.numericType = record.numericType;
    view.data = record.data;
    return view;
}

/// Writes the record of a value again and again.
inline void Serialize(benchmark::State& state, ItemPtr const& item)
{
    bool right = true;
    Measure(state, [&] {
        Legacy::If::ItemBase::SerialStruct_t record;
        right &= item->Serialize(&record) == 0;
        auto* const payload = record.data; // a packed member cannot be referred to
        benchmark::DoNotOptimize(payload);
    });
    Check(state, right);
}

/// Rebuilds a value from its record again and again, each time as a new object, and compares the last one.
inline void Rebuild(benchmark::State& state, ItemPtr const& item)
{
    Legacy::If::ItemBase::SerialStruct_t record;
    item->Serialize(&record);
    auto const view = Borrow(record);
    ItemPtr rebuilt;
    bool right = true;
    Measure(state, [&] { right &= Legacy::If::ItemBase::Deserialize(&view, rebuilt) == 0; });
    Check(state, right && rebuilt->IsEqualValue(item));
}

template<typename Message>
void SerializeMessage(benchmark::State& state, Message const& message)
{
    std::size_t size = 0;
    Measure(state, [&] {
        std::string bytes;
        message.SerializeToString(&bytes);
        size = bytes.size();
        benchmark::DoNotOptimize(bytes.data());
    });
    Check(state, size == message.ByteSizeLong());
}

template<typename Message>
void ParseMessage(benchmark::State& state, Message const& message)
{
    std::string const bytes = message.SerializeAsString();
    bool right = true;
    Measure(state, [&] {
        Message rebuilt;
        right &= rebuilt.ParseFromString(bytes);
        benchmark::DoNotOptimize(rebuilt);
    });
    Message last;
    last.ParseFromString(bytes);
    Check(state, right && last.SerializeAsString() == bytes);
}

} // namespace Bench
