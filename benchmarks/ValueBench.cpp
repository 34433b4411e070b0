// What a single value costs.
#include "Allocations.h"

#include <Legacy/If/Numeric.h>

namespace {

using namespace Legacy::If;

void CreateAndDestroy(benchmark::State& state)
{
    unsigned value = 0;
    Allocations const allocations;
    for (auto _ : state) {
        boost::intrusive_ptr<ItemBase> const item(NumericItem<U32Traits>::Create(1, ++value));
        benchmark::DoNotOptimize(item.get());
    }
    allocations.Report(state);
}
BENCHMARK(CreateAndDestroy);

} // namespace
