// medianfilter1 and medianfilter2: a sliding median of the heights. Small windows have a network; a large one is kept
// sorted, and loses a value and takes one in from point to point.
//
// Heights pass through single precision, also where the median is the point's own: this is meant. In a sorted
// window they are integers in the order of the floats, so that a height that is not a number has a place as well.

#include <algorithm>
#include <bit>
#include <cstdint>
#include <limits>
#include <vector>

#include "kernels/kernels.h"
#include "profile/HeightList.h"
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

// Large windows, and any height: slides one sorted window along the list.
void slideSortedWindow(HeightList& heights, std::size_t r) {
    SortedWindow window;
    for (std::size_t n = 0; n < r; ++n) window.insert(keyOf(heights.begin()[n]));
    for (std::size_t j = 0; j < heights.size(); ++j) {
        const bool enters = j + r < heights.size();
        const bool leaves = j > r;
        // There are enough points that in every turn a height enters or leaves.
        if (enters && leaves) {
            window.replace(keyOf(heights.begin()[j - r - 1]), keyOf(heights.begin()[j + r]));
        } else if (enters) {
            window.insert(keyOf(heights.begin()[j + r]));
        } else {
            window.erase(keyOf(heights.begin()[j - r - 1]));
        }
        heights.results()[j] = heightOf(window.median());
    }
}

}  // namespace

void medianfilter(Profile& profile, int halfWindow) {
    if (halfWindow < 0) return;
    const std::size_t r = static_cast<std::size_t>(halfWindow);
    if (profile.size() < 2 * r + 1) return;
    HeightList heights(profile, r + 1);
    if (heights.size() < 2 * r + 1) return;

    // A window that is cut short at an end is filled up with a high value, a low one, a high one ...: the median of the
    // whole is the upper of the two middle values of an even rest, and the middle one of an odd rest.
    constexpr double kInfinity = std::numeric_limits<double>::infinity();
    heights.fillMargins([](std::size_t i) { return i % 2 == 0 ? kInfinity : -kInfinity; });
    const bool found =
        kernels::active().findMedians(heights.withMargins(), heights.size(), halfWindow, heights.results());
    if (!found) slideSortedWindow(heights, r);
    heights.storeResults(profile);
}

}  // namespace KORVANELASERALGO::profile
