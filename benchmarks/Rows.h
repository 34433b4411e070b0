#pragma once

#include "Allocations.h"

#include <Legacy/If/NumericTraits.h>

#include <cstddef>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

namespace Bench {

/// Adds a row `operation/subject/library`: the rows that agree in the first two words are measured against each other.
template<typename Row>
benchmark::internal::Benchmark* AddRow(std::string const& operation, std::string const& subject,
                                       std::string const& library, Row row)
{
    return benchmark::RegisterBenchmark((operation + '/' + subject + '/' + library).c_str(), std::move(row));
}

/// The name of our own rows.
inline constexpr char k_ours[] = "legacyif";

/// A loop around `step`, whose use of the heap is reported.
template<typename Step>
void Measure(benchmark::State& state, Step&& step, std::size_t operations = 1)
{
    Allocations const allocations;
    for (auto _ : state)
        step();
    allocations.Report(state, operations);
}

template<typename Traits>
inline constexpr char const* k_elementName = std::is_same_v<Traits, Legacy::If::U8Traits>      ? "u8"
                                             : std::is_same_v<Traits, Legacy::If::S8Traits>    ? "s8"
                                             : std::is_same_v<Traits, Legacy::If::U16Traits>   ? "u16"
                                             : std::is_same_v<Traits, Legacy::If::S16Traits>   ? "s16"
                                             : std::is_same_v<Traits, Legacy::If::U32Traits>   ? "u32"
                                             : std::is_same_v<Traits, Legacy::If::S32Traits>   ? "s32"
                                             : std::is_same_v<Traits, Legacy::If::U64Traits>   ? "u64"
                                             : std::is_same_v<Traits, Legacy::If::S64Traits>   ? "s64"
                                             : std::is_same_v<Traits, Legacy::If::FloatTraits> ? "float"
                                                                                               : "double";

/// Calls `add` with an object of each traits class.
template<typename... Traits, typename Add>
void ForElements(Add&& add)
{
    (add(Traits()), ...);
}

template<typename Add>
void ForAllElements(Add&& add)
{
    using namespace Legacy::If;
    ForElements<U8Traits, S8Traits, U16Traits, S16Traits, U32Traits, S32Traits, U64Traits, S64Traits, FloatTraits,
                DoubleTraits>(std::forward<Add>(add));
}

/// The size of every list that is measured, and the ending of its name.
inline constexpr std::size_t k_listSize = 1000;

template<typename Traits>
std::string ListName()
{
    return std::string(k_elementName<Traits>) + "x1000";
}

/// Whole numbers from 1 on that every element type holds, no two neighbours alike.
template<typename Element>
std::vector<Element> MakeList(std::size_t size = k_listSize)
{
    std::vector<Element> list(size);
    for (std::size_t i = 0; i < size; ++i)
        list[i] = static_cast<Element>(1 + i * 37 % 100);
    return list;
}

/// The parameter that the rows are about: its id, its name of 22 letters, and a text of the same length.
inline constexpr unsigned int k_id = 0x00120034;
inline constexpr char k_name[] = "imageSensorExposureMax";
inline constexpr char k_text[] = "first floor, east wing";
static_assert(sizeof(k_name) == 23 && sizeof(k_text) == 23);

} // namespace Bench
