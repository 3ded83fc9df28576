// Local maxima of a grey-value profile that stand out enough, measured in two ways that differ on purpose.

#include "extract/FindPeaks.h"

#include <cassert>
#include <cstddef>

namespace KORVANELASERALGO::extract {
namespace {

constexpr int kLeastDrop = 5;          // grey levels, toward the surroundings
constexpr int kLeastDropToAFoot = 50;  // grey levels, on at least one side

// Strict on the left, not on the right, so that a flat top counts once, at its first sample.
bool isPeak(std::span<const int> profile, std::size_t i) {
    return profile[i] > profile[i - 1] && profile[i] >= profile[i + 1];
}

// How far the profile falls from a peak before it rises again.
int dropAround(std::span<const int> profile, std::size_t peak) {
    int lowest = profile[peak];
    for (std::size_t j = peak; j > 0 && profile[j - 1] < lowest; --j) lowest = profile[j - 1];
    // The right walk goes on from the lowest value of the left walk, not from the peak. This is meant.
    for (std::size_t j = peak + 1; j < profile.size() && profile[j] < lowest; ++j) lowest = profile[j];
    return profile[peak] - lowest;
}

// Where the descent to the left ends. A flat stretch ends it.
std::size_t leftFootOf(std::span<const int> profile, std::size_t peak) {
    std::size_t foot = peak;
    while (foot > 0 && profile[foot - 1] < profile[foot]) --foot;
    return foot;
}

// Where the descent to the right ends. It goes on through flat stretches, unlike the one to the left: this is meant.
// A peak is never lower than its right neighbour, so the walk always takes a step.
std::size_t rightFootOf(std::span<const int> profile, std::size_t peak) {
    std::size_t foot = peak;
    while (foot + 1 < profile.size() && profile[foot + 1] <= profile[foot]) ++foot;
    return foot;
}

}  // namespace

void FindPeaks(std::span<const int> profile, std::vector<int>& positions, std::vector<int>& values) {
    assert(!profile.empty());
    for (std::size_t i = 1; i + 1 < profile.size(); ++i) {
        if (!isPeak(profile, i) || dropAround(profile, i) < kLeastDrop) continue;
        positions.push_back(static_cast<int>(i));
        values.push_back(profile[i]);
    }
}

void FindPeaksWithFeet(std::span<const int> profile, std::vector<int>& positions, std::vector<int>& values,
                       std::vector<int>& leftFeet, std::vector<int>& rightFeet) {
    assert(!profile.empty());
    for (std::size_t i = 1; i + 1 < profile.size(); ++i) {
        if (!isPeak(profile, i)) continue;
        const std::size_t leftFoot = leftFootOf(profile, i);
        const std::size_t rightFoot = rightFootOf(profile, i);
        const bool fallsLeft = profile[i] - profile[leftFoot] >= kLeastDropToAFoot;
        const bool fallsRight = profile[i] - profile[rightFoot] >= kLeastDropToAFoot;
        if (!fallsLeft && !fallsRight) continue;
        positions.push_back(static_cast<int>(i));
        values.push_back(profile[i]);
        leftFeet.push_back(static_cast<int>(leftFoot));
        rightFeet.push_back(static_cast<int>(rightFoot));
    }
}

}  // namespace KORVANELASERALGO::extract
