/// @file Items.h
/// @brief What is measured: one item for each row of the table, the same for all programs of the benchmark.

#ifndef KORVANE_BENCH_ITEMS_H
#define KORVANE_BENCH_ITEMS_H

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "bench/Frames.h"

namespace bench {

/// One call on one of the item's inputs.
using Call = std::function<void(int copy)>;

/// The same work for several who do it. All of them find the inputs in the same state: each was touched as many calls
/// ago as there are copies, so frames come from the third-level cache, and profiles from the second.
struct Item {
    std::string method;
    std::string input;
    int columns = 0;
    int copies = 0;        ///< inputs, used in turn
    bool threads = false;  ///< starts threads, so wall time counts

    std::string floorName;  ///< empty where there is no floor
    Call floor;
    int emptyThreads = 0;  ///< started and joined, the floor's fixed part

    Call library;
    Call twin;
    std::string otherName;  ///< what a practitioner would write otherwise; empty for nothing
    Call other;

    bool changesInput = false;  ///< a call changes its input, so the input is restored before it serves again
    /// Gives a changed input its old contents. Called after the clock was read, so that the input lies untouched for as
    /// many calls as any other.
    Call restore;

    /// Forgets what the last call wrote.
    std::function<void()> clearOutputs;
    /// Of everything that a call on this input wrote: the same for library and twin.
    std::function<std::uint64_t(int copy)> digest;
};

struct ItemMaker {
    std::string method;
    std::string input;
    std::function<Item()> make;  ///< renders the frames

    std::string name() const { return method + " " + input; }
};

/// Everything there is at one size of the frame; profiles have as many points as the frame has columns.
std::vector<ItemMaker> allItems(Size size);

/// The two halves of it.
std::vector<ItemMaker> frameItems(Size size);
std::vector<ItemMaker> profileItems(int columns);

/// One of the six extraction methods on frames of any kind.
Item makeExtraction(const std::string& name, const std::string& kind, Size size);

}  // namespace bench

#endif  // KORVANE_BENCH_ITEMS_H
