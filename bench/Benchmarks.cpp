// The single figures, with Google Benchmark: "method input contender" for floors, twin, the library with every set of
// kernels that the processor has, and what others would write.

#include <benchmark/benchmark.h>

#include <memory>
#include <string>

#include "bench/Clock.h"
#include "bench/Floors.h"
#include "bench/Items.h"
#include "bench/Other.h"
#include "bench/Rounds.h"

namespace {

using bench::Item;
using bench::ItemMaker;

/// Benchmarks run in the order in which they are registered, those of one item after one another.
const Item& itemOf(const ItemMaker& maker) {
    static std::string name;
    static Item item;
    if (name != maker.name()) {
        item = {};
        item = maker.make();
        name = maker.name();
    }
    return item;
}

/// Every input in turn, and the clock around all of them.
void run(benchmark::State& state, const Item& item, const bench::Call& call, bool changesInput) {
    if (!call) {
        state.SkipWithError("nothing to compare with");
        return;
    }
    const bench::Clock clock = item.threads ? bench::wallSeconds : bench::threadSeconds;
    while (state.KeepRunningBatch(item.copies)) {
        const double start = clock();
        for (int copy = 0; copy < item.copies; ++copy) call(copy);
        state.SetIterationTime(clock() - start);
        for (int copy = 0; copy < item.copies && changesInput; ++copy) item.restore(copy);
    }
}

template <class CallOf>
void add(const ItemMaker& maker, const std::string& contender, CallOf callOf, bool mayChangeInput) {
    benchmark::RegisterBenchmark((maker.name() + " " + contender).c_str(), [=](benchmark::State& state) {
        const Item& item = itemOf(maker);
        run(state, item, callOf(item), item.changesInput && mayChangeInput);
    })->UseManualTime();
}

}  // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 2;
    bench::other::useOneThread();
    for (const ItemMaker& maker : bench::allItems({1280, 1024})) {
        add(
            maker, "floor", [](const Item& item) { return item.floor; }, false);
        add(
            maker, "twin", [](const Item& item) { return item.twin; }, true);
        for (const auto& candidate : KORVANELASERALGO::kernels::setsOfBuild()) {
            if (!candidate.supported) continue;
            const auto libraryCall = [set = candidate.set](const Item& item) {
                KORVANELASERALGO::kernels::activate(*set);
                return item.library;
            };
            add(maker, candidate.set->name, libraryCall, true);
        }
        add(
            maker, "other", [](const Item& item) { return item.other; }, false);
    }
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
