// Gaussianfilter: a Gaussian mean of the heights that leaves out neighbours beyond a step, so that edges stay sharp
// (a bilateral filter with a box for the heights).

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <new>
#include <numeric>
#include <vector>

#include "kernels/kernels.h"
#include "profile/HeightList.h"
#include "profile/profile.h"

namespace KORVANELASERALGO::profile {
namespace {

constexpr double kTapsPerSigma = 3.0;
constexpr double kStep = 5.0;  // length units; a neighbour counts when its height differs by less

// 2 r + 1 weights whose sum is 1.
std::vector<double> gaussianWeights(std::int64_t r) {
    const std::int64_t taps = 2 * r + 1;
    const double sigma = static_cast<double>(taps) / kTapsPerSigma;
    std::vector<double> weights(static_cast<std::size_t>(taps));
    for (std::int64_t i = -r; i <= 0; ++i) {
        const double weight = std::exp(static_cast<double>(-(i * i)) / ((sigma + sigma) * sigma));
        weights[static_cast<std::size_t>(r + i)] = weight;
        weights[static_cast<std::size_t>(r - i)] = weight;
    }
    const double sum = std::accumulate(weights.begin(), weights.end(), 0.0);
    for (double& weight : weights) weight /= sum;
    return weights;
}

}  // namespace

void Gaussianfilter(Profile& profile, int halfWindow) {
    // A kernel of impossible size fails as its allocation would, also for an empty profile: this is meant.
    const std::int64_t r = halfWindow;
    if (r < 0 || 2 * r + 1 > INT32_MAX) throw std::bad_alloc();
    const std::size_t reach = static_cast<std::size_t>(r);

    if (profile.size() < 2 * reach + 1) return;
    HeightList heights(profile, reach);
    if (heights.size() < 2 * reach + 1) return;
    const std::vector<double> weights = gaussianWeights(r);

    // Beyond the ends there is no neighbour. A height that is not a number has none within the step, not even itself,
    // and stays not a number.
    heights.fillMargins([](std::size_t) { return std::numeric_limits<double>::quiet_NaN(); });
    kernels::active().smoothHeights(heights.withMargins(), heights.size(), weights.data(), reach, kStep,
                                    heights.results());
    heights.storeResults(profile);
}

}  // namespace KORVANELASERALGO::profile
