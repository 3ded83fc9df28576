/// @file Rounds.h
/// @brief Times an item's contenders in alternating rounds.

#ifndef KORVANE_BENCH_ROUNDS_H
#define KORVANE_BENCH_ROUNDS_H

#include <optional>
#include <string>
#include <vector>

#include "bench/Goals.h"
#include "bench/Items.h"
#include "kernels/kernels.h"

namespace bench {

using KernelSet = KORVANELASERALGO::kernels::KernelSet;

/// The set of a name, where this processor has it, or null.
const KernelSet* kernelSetNamed(const std::string& name);
/// The widest set of this processor.
const KernelSet& widestKernelSet();

struct Plan {
    double seconds = 1.0;  ///< for the rounds of one item
    int leastRounds = 9;
    int mostRounds = 1000;
    int singleCalls = 1000;  ///< timed one by one, for the tail; fewer where they take four times `seconds`
    const KernelSet* chosen = nullptr;
    const KernelSet* capped = nullptr;  ///< null where there is no SSE2
};

/// Medians over the rounds; times in seconds. Ratios are medians of each round's ratio, so that what slows the machine
/// down for a while slows both sides.
struct Figures {
    int rounds = 0;
    double chosen = 0.0;  ///< time of a call with the chosen kernels
    double floor = 0.0;
    double threads = 0.0;
    std::optional<double> chosenOverFloor;  ///< floor: threads and `passes` floors where there are threads
    std::optional<double> cappedOverFloor;
    double chosenOverTwin = 0.0;
    std::optional<double> chosenOverOther;
    std::optional<double> tail;     ///< the time that one single call of a thousand exceeds, where there were as many
    std::optional<double> longest;  ///< of the single calls
};

/// Where the item has threads, its goals count passes on top of the threads, and the ratios come out as the time over
/// threads and that many passes.
Figures measure(const Item& item, const Goal& goal, const Plan& plan);

/// The library alone: the median time of a call for each of several items, measured in turn.
std::vector<double> medianTimes(const std::vector<Item>& items, const Plan& plan);

/// Holds library and twin against each other on every input; throws std::runtime_error where they differ.
void requireSameResults(const Item& item);

}  // namespace bench

#endif  // KORVANE_BENCH_ROUNDS_H
