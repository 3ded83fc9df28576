// Outlierdetect1: a point stays when enough of its neighbours agree with its depth, or with the local direction of the
// profile. All decisions are taken on the unchanged profile.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <memory>

#include "kernels/kernels.h"
#include "profile/profile.h"

namespace KORVANELASERALGO::profile {
namespace {

// Directions agree when their difference, rounded to single precision, is less than 0.3. That is when it lies below the
// middle of the two floats around 0.3, 0x1.333332p-2 and 0x1.333334p-2; the middle itself rounds to the upper one.
constexpr double kDirectionBound = 0x1.333333p-2;

}  // namespace

void Outlierdetect1(Profile& profile, int halfWidth, float threshold) {
    if (halfWidth < 0) return;
    const std::size_t w = static_cast<std::size_t>(halfWidth);
    const std::size_t points = profile.size();
    if (points < 2 * w + 1) return;

    // The usable points, in order, and where they come from.
    const std::size_t room = points + kernels::kLaneRoom;
    const auto numbers = std::make_unique_for_overwrite<double[]>(w + room + w + room + room);
    double* const z = numbers.get() + w;
    double* const x = z + room + w;
    double* const slopes = x + room;
    const auto positions = std::make_unique_for_overwrite<std::int32_t[]>(room);
    const std::size_t usable = kernels::active().listUsable(&profile.data()->x, 0, points, x, z, positions.get());
    if (usable < 2 * w + 1) return;

    // A depth beyond the ends agrees with none.
    constexpr double kNone = std::numeric_limits<double>::quiet_NaN();
    std::fill_n(z - w, w, kNone);
    std::fill_n(z + usable, w + kernels::kLaneRoom, kNone);
    const std::size_t outliers = kernels::active().keepOutliers(x, z, usable, w, static_cast<double>(threshold),
                                                                kDirectionBound, slopes, positions.get());
    for (std::size_t i = 0; i < outliers; ++i) profile[static_cast<std::size_t>(positions[i])] = {0.0, 0.0, 0.0};
}

}  // namespace KORVANELASERALGO::profile
