#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <vector>

#include "reference.h"

namespace reference {

void Outlierdetect1(std::vector<Point3d>& profile, const int& halfWidth, const float& threshold) {
    const std::int64_t w = halfWidth;
    const double limit = static_cast<double>(threshold);

    // The usable points and their places in the profile.
    std::vector<Point3d> usable;
    std::vector<std::size_t> positions;
    for (std::size_t i = 0; i < profile.size(); ++i) {
        if (profile[i].x != 0.0 && profile[i].z != 0.0) {
            usable.push_back(profile[i]);
            positions.push_back(i);
        }
    }
    const std::int64_t m = static_cast<std::int64_t>(usable.size());

    // Nothing to do for a negative width, for one whose window leaves 32 bits, or with fewer points than the window.
    const std::int64_t window = 2 * w + 1;
    if (window < 0 || window > std::numeric_limits<std::int32_t>::max() || m < window) {
        return;
    }

    // Change of x per change of z from the usable point before.
    const auto slopeOf = [&](std::int64_t i) {
        const Point3d& here = usable[static_cast<std::size_t>(i)];
        const Point3d& before = usable[static_cast<std::size_t>(i - 1)];
        return (here.x - before.x) / (here.z - before.z);
    };

    // Decide on the unchanged list, then clear.
    std::vector<std::int64_t> outliers;
    for (std::int64_t j = 0; j < m; ++j) {
        // Index 1 has a predecessor but no slope: meant.
        const float slope = j >= 2 ? static_cast<float>(slopeOf(j)) : 0.0f;

        // The offset +w is not visited: meant.
        std::int64_t nearby = 0;
        std::int64_t similar = 0;
        for (std::int64_t k = -w; k <= w - 1; ++k) {
            const std::int64_t n = j + k;
            if (n < 0 || n >= m) {
                continue;
            }
            if (slope != 0.0f && n >= 1 && k != 0) {
                const float difference = static_cast<float>(static_cast<double>(slope) - slopeOf(n));
                if (static_cast<double>(std::fabs(difference)) < 0.3) {
                    similar += 1;
                }
            }
            // The point itself counts too.
            if (std::fabs(usable[static_cast<std::size_t>(n)].z - usable[static_cast<std::size_t>(j)].z) < limit) {
                nearby += 1;
            }
        }
        if (nearby <= w && similar <= w) {
            outliers.push_back(j);
        }
    }

    for (const std::int64_t j : outliers) {
        profile[positions[static_cast<std::size_t>(j)]] = Point3d{0.0, 0.0, 0.0};
    }
}

}  // namespace reference
