// A weighted mean of the heights around each point that leaves out those beyond a step. Each lane is a point and adds
// its neighbours in their order.
//
// Where all heights that a group of points looks at lie within 0.48 steps of one of them, they differ from one another
// by less than 0.96 steps, also after rounding: every neighbour counts, and the sum of the weights is that of all taps.

#ifndef KORVANE_KERNELS_LANES_SMOOTHING_H
#define KORVANE_KERNELS_LANES_SMOOTHING_H

#include "kernels/lanes/Doubles.h"

namespace KORVANELASERALGO::kernels::KORVANE_KERNEL_SET {

inline constexpr std::size_t kSmoothedLanes = 4;  // of a group

// All neighbours count.
inline void smoothFlatGroup(const double* neighbours, const double* weights, std::size_t taps, double weightSum,
                            double* smoothed) {
    Doubles sums[kSmoothedLanes];
    for (Doubles& sum : sums) sum = Doubles::fill(0.0);
    for (std::size_t k = 0; k < taps; ++k) {
        const Doubles weight = Doubles::fill(weights[k]);
        for (std::size_t i = 0; i < kSmoothedLanes; ++i)
            sums[i] = sums[i] + Doubles::load(neighbours + k + i * Doubles::kCount) * weight;
    }
    const Doubles total = Doubles::fill(weightSum);
    for (std::size_t i = 0; i < kSmoothedLanes; ++i) (sums[i] / total).store(smoothed + i * Doubles::kCount);
}

inline void smoothLane(const double* neighbours, const double* weights, std::size_t taps, double step,
                       double* smoothed) {
    const Doubles centre = Doubles::load(neighbours + taps / 2);
    const Doubles limit = Doubles::fill(step);
    Doubles sum = Doubles::fill(0.0);
    Doubles weightSum = sum;
    for (std::size_t k = 0; k < taps; ++k) {
        const Doubles neighbour = Doubles::load(neighbours + k);
        const Doubles weight = Doubles::fill(weights[k]);
        const DoubleMask counts = less(absolute(centre - neighbour), limit);
        sum = addWhere(counts, sum, neighbour * weight);
        weightSum = addWhere(counts, weightSum, weight);
    }
    (sum / weightSum).store(smoothed);
}

inline void smoothHeights(const double* heights, std::size_t count, const double* weights, std::size_t reach,
                          double step, double* smoothed) {
    constexpr std::size_t kGroup = std::size_t{kSmoothedLanes} * Doubles::kCount;
    const std::size_t taps = 2 * reach + 1;
    double weightSum = 0.0;
    for (std::size_t k = 0; k < taps; ++k) weightSum += weights[k];

    for (std::size_t j = 0; j < count; j += kGroup) {
        const double* neighbours = heights + j;
        // A group that ends behind the list reads what is no height, at most up to a full group.
        if (j + kGroup <= count &&
            allWithin(neighbours, kGroup + 2 * reach, heights[j + reach + kGroup / 2], 0.48 * step)) {
            smoothFlatGroup(neighbours, weights, taps, weightSum, smoothed + j);
            continue;
        }
        for (std::size_t i = 0; i < kGroup && j + i < count; i += Doubles::kCount)
            smoothLane(neighbours + i, weights, taps, step, smoothed + j + i);
    }
}

}  // namespace KORVANELASERALGO::kernels::KORVANE_KERNEL_SET

#endif  // KORVANE_KERNELS_LANES_SMOOTHING_H
