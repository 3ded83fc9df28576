#include <cstddef>
#include <cstdint>
#include <vector>

#include "reference.h"

namespace reference {

void FindPeaksWithFeet(std::vector<int> profile, std::vector<int>& positions, std::vector<int>& values,
                       std::vector<int>& leftFeet, std::vector<int>& rightFeet) {
    const int size = static_cast<int>(profile.size());
    const auto at = [&](int i) { return profile[static_cast<std::size_t>(i)]; };

    // Strict on the left, not on the right: a flat top counts once, at its first sample.
    for (int i = 1; i < size - 1; ++i) {
        if (at(i) > at(i - 1) && at(i) >= at(i + 1)) {
            positions.push_back(i);
            values.push_back(at(i));
        }
    }

    std::vector<std::size_t> marked;
    for (std::size_t k = 0; k < positions.size(); ++k) {
        const int position = positions[k];
        const std::int64_t value = values[k];

        // Left foot: the walk down ends at a flat stretch.
        int leftFoot = position - 1;
        for (int j = position - 1; j >= 0 && at(j) < at(j + 1); --j) {
            leftFoot = j;
        }

        // Right foot: the walk down goes on through flat stretches. The two walks differ: meant.
        int rightFoot = size - 1;
        for (int j = position + 1; j < size && at(j) <= at(j - 1); ++j) {
            rightFoot = j;
        }

        leftFeet.push_back(leftFoot);
        rightFeet.push_back(rightFoot);

        // One deep side is enough to keep the peak.
        if (value - at(leftFoot) < 50 && value - at(rightFoot) < 50) {
            marked.push_back(k);
        }
    }

    for (std::size_t m = marked.size(); m > 0; --m) {
        const std::ptrdiff_t k = static_cast<std::ptrdiff_t>(marked[m - 1]);
        positions.erase(positions.begin() + k);
        values.erase(values.begin() + k);
        leftFeet.erase(leftFeet.begin() + k);
        rightFeet.erase(rightFeet.begin() + k);
    }
}

}  // namespace reference
