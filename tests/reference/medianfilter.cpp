#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <vector>

#include "reference.h"

namespace reference {

void medianfilter(std::vector<Point3d>& points, const int& halfWindow) {
    const std::int64_t r = halfWindow;

    // The valid points and their places in the profile.
    std::vector<Point3d> valid;
    std::vector<std::size_t> positions;
    for (std::size_t i = 0; i < points.size(); ++i) {
        if (points[i].x != 0.0) {
            valid.push_back(points[i]);
            positions.push_back(i);
        }
    }
    const std::int64_t n = static_cast<std::int64_t>(valid.size());

    const std::int64_t size = 2 * r + 1;
    if (r < 0 || size > std::numeric_limits<std::int32_t>::max() || n < size) {
        return;
    }

    // The heights pass through single precision, and the windows read the unfiltered copies: both meant.
    for (std::int64_t j = 0; j < n; ++j) {
        std::vector<float> window;
        for (std::int64_t m = j - r; m <= j + r; ++m) {
            if (m >= 0 && m < n) {
                window.push_back(static_cast<float>(valid[static_cast<std::size_t>(m)].z));
            }
        }

        // A not-a-number sorts last, so that the order is one: such a window may yield any of its values.
        std::sort(window.begin(), window.end(), [](float a, float b) {
            if (std::isnan(a)) {
                return false;
            }
            return std::isnan(b) || a < b;
        });

        // The upper of the two middle values where the count is even.
        points[positions[static_cast<std::size_t>(j)]].z = static_cast<double>(window[window.size() / 2]);
    }
}

}  // namespace reference
