#include <cstddef>
#include <cstdint>
#include <vector>

#include "reference.h"

namespace reference {

void FindPeaks(std::vector<int> profile, std::vector<int>& positions, std::vector<int>& values) {
    const int size = static_cast<int>(profile.size());
    const auto at = [&](int i) { return profile[static_cast<std::size_t>(i)]; };

    // Strict on the left, not on the right: a flat top counts once, at its first sample.
    for (int i = 1; i < size - 1; ++i) {
        if (at(i) > at(i - 1) && at(i) >= at(i + 1)) {
            positions.push_back(i);
            values.push_back(at(i));
        }
    }

    // How far the profile falls around each peak. The lowest value of the left walk goes on into the right walk, which
    // therefore only passes samples that are lower still: meant.
    std::vector<std::size_t> marked;
    for (std::size_t k = 0; k < positions.size(); ++k) {
        int lowest = values[k];
        for (int j = positions[k] - 1; j >= 0 && at(j) < lowest; --j) {
            lowest = at(j);
        }
        for (int j = positions[k] + 1; j < size && at(j) < lowest; ++j) {
            lowest = at(j);
        }
        if (static_cast<std::int64_t>(values[k]) - lowest < 5) {
            marked.push_back(k);
        }
    }

    for (std::size_t m = marked.size(); m > 0; --m) {
        const std::ptrdiff_t k = static_cast<std::ptrdiff_t>(marked[m - 1]);
        positions.erase(positions.begin() + k);
        values.erase(values.begin() + k);
    }
}

}  // namespace reference
