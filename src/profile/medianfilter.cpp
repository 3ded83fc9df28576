// medianfilter1 and medianfilter2: a sliding median of the heights, kept as one sorted window that loses a value and
// takes one in from point to point.
//
// Heights pass through single precision, also where the median is the point's own: this is meant. In the window they
// are integers in the order of the floats, so that a height that is not a number has a place as well.

#include <algorithm>
#include <bit>
#include <cstdint>

#include "profile/ValidPoints.h"
#include "profile/profile.h"

namespace KORVANELASERALGO::profile {
namespace {

// Maps floats to integers so that a < b exactly when the integers are; not a number lies beyond an infinity. The map is
// its own inverse on the bits.
std::int32_t flipNegative(std::int32_t bits) {
    return bits < 0 ? bits ^ INT32_MAX : bits;
}

std::int32_t keyOf(double height) {
    return flipNegative(std::bit_cast<std::int32_t>(static_cast<float>(height)));
}

double heightOf(std::int32_t key) {
    return static_cast<double>(std::bit_cast<float>(flipNegative(key)));
}

class SortedWindow {
public:
    explicit SortedWindow(std::size_t capacity) { keys_.reserve(capacity); }

    void insert(std::int32_t key) { keys_.insert(std::lower_bound(keys_.begin(), keys_.end(), key), key); }
    void erase(std::int32_t key) { keys_.erase(std::lower_bound(keys_.begin(), keys_.end(), key)); }

    // One value out, one in: only the values between their places move.
    void replace(std::int32_t out, std::int32_t in) {
        const auto hole = std::lower_bound(keys_.begin(), keys_.end(), out);
        const auto place = std::lower_bound(keys_.begin(), keys_.end(), in);
        if (place > hole) {
            std::copy(hole + 1, place, hole);
            *(place - 1) = in;
        } else {
            std::copy_backward(place, hole, hole + 1);
            *place = in;
        }
    }

    // Of an even number, the upper of the two in the middle.
    std::int32_t median() const { return keys_[keys_.size() / 2]; }

private:
    std::vector<std::int32_t> keys_;
};

}  // namespace

void medianfilter(Profile& profile, int halfWindow) {
    const std::int64_t windowSize = 2 * std::int64_t{halfWindow} + 1;
    if (halfWindow < 0 || windowSize > INT32_MAX) return;
    const ValidPoints valid = listValidPoints(profile);
    if (valid.size() < static_cast<std::size_t>(windowSize)) return;

    const std::size_t r = static_cast<std::size_t>(halfWindow);
    std::vector<std::int32_t> keys(valid.size());
    std::transform(valid.points.begin(), valid.points.end(), keys.begin(),
                   [](const tagKorvaneLaserPoint3d& point) { return keyOf(point.z); });

    SortedWindow window(static_cast<std::size_t>(windowSize));
    for (std::size_t n = 0; n < r; ++n) window.insert(keys[n]);
    for (std::size_t j = 0; j < keys.size(); ++j) {
        const bool enters = j + r < keys.size();
        const bool leaves = j > r;
        // There are enough points that in every turn a height enters or leaves.
        if (enters && leaves) {
            window.replace(keys[j - r - 1], keys[j + r]);
        } else if (enters) {
            window.insert(keys[j + r]);
        } else {
            window.erase(keys[j - r - 1]);
        }
        profile[valid.positions[j]].z = heightOf(window.median());
    }
}

}  // namespace KORVANELASERALGO::profile
