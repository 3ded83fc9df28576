// The humps of a grey-value profile: local maxima that stand out enough, measured in two ways that differ on purpose.
//
// A profile is anything with size() and profile[i], the grey value at position i from top to bottom; it holds at least
// one.

#ifndef KORVANE_EXTRACT_FINDPEAKS_H
#define KORVANE_EXTRACT_FINDPEAKS_H

#include <algorithm>
#include <cassert>
#include <cstddef>
#include <limits>
#include <vector>

namespace KORVANELASERALGO::extract {

inline constexpr int kLeastDrop = 5;          // grey levels, toward the surroundings
inline constexpr int kLeastDropToAFoot = 50;  // grey levels, on at least one side
inline constexpr int kAnyValue = std::numeric_limits<int>::min();

/// Calls `visit` with the index of each local maximum in [first, end) that is at least `leastValue`. Strict on the
/// left, not on the right, so that a flat top counts once, at its first sample.
template <class Profile, class Visit>
void visitPeaks(const Profile& profile, std::size_t first, std::size_t end, int leastValue, Visit visit) {
    first = std::max<std::size_t>(first, 1);
    end = std::min(end, profile.size() - 1);
    if (first >= end) return;
    int before = profile[first - 1];
    int value = profile[first];
    for (std::size_t i = first; i < end; ++i) {
        const int after = profile[i + 1];
        if (value >= leastValue && value > before && value >= after) visit(i);
        before = value;
        value = after;
    }
}

/// How far the profile falls from a peak before it rises again.
template <class Profile>
int dropAround(const Profile& profile, std::size_t peak) {
    int lowest = profile[peak];
    for (std::size_t j = peak; j > 0 && profile[j - 1] < lowest; --j) lowest = profile[j - 1];
    // The right walk goes on from the lowest value of the left walk, not from the peak. This is meant.
    for (std::size_t j = peak + 1; j < profile.size() && profile[j] < lowest; ++j) lowest = profile[j];
    return profile[peak] - lowest;
}

/// Where the descent to the left ends. A flat stretch ends it.
template <class Profile>
std::size_t leftFootOf(const Profile& profile, std::size_t peak) {
    std::size_t foot = peak;
    while (foot > 0 && profile[foot - 1] < profile[foot]) --foot;
    return foot;
}

/// Where the descent to the right ends. It goes on through flat stretches, unlike the one to the left: this is meant.
/// A peak is never lower than its right neighbour, so the walk always takes a step.
template <class Profile>
std::size_t rightFootOf(const Profile& profile, std::size_t peak) {
    std::size_t foot = peak;
    while (foot + 1 < profile.size() && profile[foot + 1] <= profile[foot]) ++foot;
    return foot;
}

/// Finds the local maxima that fall by 5 grey levels or more toward their surroundings.
/// @param positions, values empty on entry; receive index and grey value of each kept peak, in profile order
template <class Profile>
void FindPeaks(const Profile& profile, std::vector<int>& positions, std::vector<int>& values) {
    assert(profile.size() > 0);
    visitPeaks(profile, 0, profile.size(), kAnyValue, [&](std::size_t i) {
        if (dropAround(profile, i) < kLeastDrop) return;
        positions.push_back(static_cast<int>(i));
        values.push_back(profile[i]);
    });
}

/// The peaks of FindPeaksWithFeet in [first, end) that are at least `leastValue`; the feet may lie outside.
template <class Profile>
void FindPeaksWithFeetWithin(const Profile& profile, std::size_t first, std::size_t end, int leastValue,
                             std::vector<int>& positions, std::vector<int>& values, std::vector<int>& leftFeet,
                             std::vector<int>& rightFeet) {
    assert(profile.size() > 0);
    visitPeaks(profile, first, end, leastValue, [&](std::size_t i) {
        const std::size_t leftFoot = leftFootOf(profile, i);
        const std::size_t rightFoot = rightFootOf(profile, i);
        const bool fallsLeft = profile[i] - profile[leftFoot] >= kLeastDropToAFoot;
        const bool fallsRight = profile[i] - profile[rightFoot] >= kLeastDropToAFoot;
        if (!fallsLeft && !fallsRight) return;
        positions.push_back(static_cast<int>(i));
        values.push_back(profile[i]);
        leftFeet.push_back(static_cast<int>(leftFoot));
        rightFeet.push_back(static_cast<int>(rightFoot));
    });
}

/// Finds the local maxima that fall by 50 grey levels or more on at least one side, and where their descents end.
/// @param positions, values, leftFeet, rightFeet empty on entry; receive index, grey value and the indices of both
/// feet of each kept peak, in profile order
template <class Profile>
void FindPeaksWithFeet(const Profile& profile, std::vector<int>& positions, std::vector<int>& values,
                       std::vector<int>& leftFeet, std::vector<int>& rightFeet) {
    FindPeaksWithFeetWithin(profile, 0, profile.size(), kAnyValue, positions, values, leftFeet, rightFeet);
}

}  // namespace KORVANELASERALGO::extract

#endif  // KORVANE_EXTRACT_FINDPEAKS_H
