/// @file Goals.h
/// @brief What the library is meant to cost.

#ifndef KORVANE_BENCH_GOALS_H
#define KORVANE_BENCH_GOALS_H

#include <optional>
#include <string>
#include <vector>

#include "bench/Frames.h"

namespace bench {

/// Times as multiples of the item's floor, and of the twin's time. Where the floor has threads, the figure counts the
/// passes on top of them.
struct Goal {
    std::optional<double> widest;       ///< floors, with the kernels that the library picks on a processor with AVX-512
    std::optional<double> sse2;         ///< floors, with SSE2 kernels
    std::optional<double> twin;         ///< the twin's times, with the picked kernels
    std::optional<double> nsPerColumn;  ///< with the picked kernels
};

/// The goal of a method on an input, or none. Most hold for frames of 1280 x 1024 and profiles of 1280 points.
Goal goalOf(const std::string& method, const std::string& input, Size size);

/// "method input" of every item that has one.
std::vector<std::string> namesWithGoals();

/// A goal counts as missed from here on.
inline constexpr double kMissedBy = 1.1;

}  // namespace bench

#endif  // KORVANE_BENCH_GOALS_H
