// Outlierdetect1: a point stays when enough of its neighbours agree with its depth, or with the local direction of the
// profile. All decisions are taken on the unchanged profile.

#include <cmath>
#include <cstdint>

#include "profile/ValidPoints.h"
#include "profile/profile.h"

namespace KORVANELASERALGO::profile {
namespace {

constexpr double kDirectionTolerance = 0.3;  // of the slope dx/dz, exclusive

bool isUsable(const tagKorvaneLaserPoint3d& point) {
    return point.x != 0.0 && point.z != 0.0;
}

// The change of x per change of z from each usable point's predecessor to it; the first has none.
std::vector<double> segmentSlopes(const Profile& points) {
    std::vector<double> slopes(points.size(), 0.0);
    for (std::size_t i = 1; i < points.size(); ++i) {
        slopes[i] = (points[i].x - points[i - 1].x) / (points[i].z - points[i - 1].z);
    }
    return slopes;
}

std::int64_t countAgreeingDepths(const Profile& points, Window window, std::size_t j, double threshold) {
    std::int64_t count = 0;
    for (std::size_t n = window.first; n < window.end; ++n) count += std::fabs(points[n].z - points[j].z) < threshold;
    return count;
}

std::int64_t countAgreeingDirections(const std::vector<double>& slopes, Window window, std::size_t j) {
    // The second point has a predecessor, yet no slope of its own: this is meant.
    const float own = j >= 2 ? static_cast<float>(slopes[j]) : 0.0f;
    if (own == 0.0f) return 0;

    std::int64_t count = 0;
    for (std::size_t n = window.first; n < window.end; ++n) {
        if (n == 0 || n == j) continue;
        const float difference = static_cast<float>(static_cast<double>(own) - slopes[n]);
        count += static_cast<double>(std::fabs(difference)) < kDirectionTolerance;
    }
    return count;
}

}  // namespace

void Outlierdetect1(Profile& profile, int halfWidth, float threshold) {
    const std::int64_t windowSize = 2 * std::int64_t{halfWidth} + 1;
    if (halfWidth < 0 || windowSize > INT32_MAX) return;
    const ValidPoints usable = listPoints(profile, isUsable);
    if (usable.size() < static_cast<std::size_t>(windowSize)) return;

    const std::vector<double> slopes = segmentSlopes(usable.points);
    const std::size_t w = static_cast<std::size_t>(halfWidth);
    for (std::size_t j = 0; j < usable.size(); ++j) {
        // The neighbours -w .. w - 1; the one at +w is not visited: this is meant. Without a width there are none.
        const Window window = w == 0 ? Window{j, j} : windowAround(j, w, w - 1, usable.size());
        if (countAgreeingDepths(usable.points, window, j, static_cast<double>(threshold)) > halfWidth) continue;
        if (countAgreeingDirections(slopes, window, j) > halfWidth) continue;
        profile[usable.positions[j]] = {0.0, 0.0, 0.0};
    }
}

}  // namespace KORVANELASERALGO::profile
