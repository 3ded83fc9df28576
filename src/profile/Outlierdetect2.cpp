// Outlierdetect2: cuts the profile into runs at jumps in x or z and clears short ones.
//
// A run's size is checked in every turn, not only at its end, so the first w - 1 members of every run are cleared while
// it is still shorter than w. This is meant.

#include <cmath>
#include <cstddef>
#include <cstdint>

#include "kernels/kernels.h"
#include "profile/ValidPoints.h"
#include "profile/profile.h"

namespace KORVANELASERALGO::profile {
namespace {

constexpr tagKorvaneLaserPoint3d kEmpty = {0.0, 0.0, 0.0};

}  // namespace

void Outlierdetect2(Profile& profile, int halfWidth, float threshold) {
    if (profile.empty()) return;
    const double limit = static_cast<double>(threshold);

    // The run in hand: its number of members, and a copy of the last one, which the profile may have lost by now.
    std::int64_t size = isValid(profile[0]) ? 1 : 0;
    tagKorvaneLaserPoint3d last = profile[0];

    // Members are cleared in the turn in which they join while the run is short, so only position 0, which no turn of
    // its own checks, has to wait for the next one.
    bool firstWaits = size == 1;

    for (std::size_t i = 1; i < profile.size(); ++i) {
        // A run that is long enough loses no further member: on to the first point that does not follow at once.
        if (size >= halfWidth && isValid(profile[i - 1])) {
            const std::size_t followers = kernels::active().countFollowers(&profile[i].x, profile.size() - i, limit);
            size += static_cast<std::int64_t>(followers);
            i += followers;
            last = profile[i - 1];
            if (i == profile.size()) break;
        }

        const tagKorvaneLaserPoint3d point = profile[i];
        const bool usable = isValid(point);

        if (usable) {
            if (size == 0) {
                // A first point after empty ones is then compared with itself and counts twice: this is meant.
                last = point;
                size = 1;
            }
            const bool follows = std::fabs(point.z - last.z) < limit && std::fabs(point.x - last.x) < limit;
            size = follows ? size + 1 : 1;
            last = point;
        }

        if (size < halfWidth) {
            if (firstWaits) profile[0] = kEmpty;
            if (usable) profile[i] = kEmpty;
        }
        firstWaits = false;
    }
}

}  // namespace KORVANELASERALGO::profile
