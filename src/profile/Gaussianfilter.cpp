// Gaussianfilter: a Gaussian mean of the heights that leaves out neighbours beyond a step, so that edges stay sharp
// (a bilateral filter with a box for the heights).

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <new>

#include "profile/ValidPoints.h"
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
    double sum = 0.0;
    for (std::int64_t i = -r; i <= r; ++i) {
        double& weight = weights[static_cast<std::size_t>(i + r)];
        weight = std::exp(static_cast<double>(-(i * i)) / ((sigma + sigma) * sigma));
        sum += weight;
    }
    for (double& weight : weights) weight /= sum;
    return weights;
}

}  // namespace

void Gaussianfilter(Profile& profile, int halfWindow) {
    // A kernel of impossible size fails as its allocation would, also for an empty profile: this is meant.
    const std::int64_t r = halfWindow;
    if (r < 0 || 2 * r + 1 > INT32_MAX) throw std::bad_alloc();
    const std::size_t reach = static_cast<std::size_t>(r);

    const ValidPoints valid = listValidPoints(profile);
    if (valid.size() < 2 * reach + 1) return;
    const std::vector<double> weights = gaussianWeights(r);

    for (std::size_t j = 0; j < valid.size(); ++j) {
        const double centre = valid.points[j].z;
        const Window window = windowAround(j, reach, reach, valid.size());
        double height = 0.0;
        double weightSum = 0.0;
        for (std::size_t m = window.first; m < window.end; ++m) {
            const double neighbour = valid.points[m].z;
            if (!(std::fabs(centre - neighbour) < kStep)) continue;
            const double weight = weights[m + reach - j];
            height += neighbour * weight;
            weightSum += weight;
        }
        // A height that is not a number has no neighbour within the step, not even itself, and stays not a number.
        profile[valid.positions[j]].z = height / weightSum;
    }
}

}  // namespace KORVANELASERALGO::profile
