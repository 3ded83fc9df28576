// Small profiles for the tests of the profile filters.

#ifndef KORVANE_TESTS_PROFILE_PROFILESUPPORT_H
#define KORVANE_TESTS_PROFILE_PROFILESUPPORT_H

#include <cstddef>
#include <initializer_list>
#include <limits>
#include <utility>
#include <vector>

#include "KorvaneLaserAlgo.h"
#include "support/Support.h"

namespace support {

constexpr double kNotANumber = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr int kIntMax = std::numeric_limits<int>::max();
constexpr int kIntMin = std::numeric_limits<int>::min();

constexpr Point3d kEmptyPoint{0, 0, 0};

/// x = 1, 2, 3, ..., the heights given, and a y that tells every point from its neighbours.
inline Profile profileOfHeights(const std::vector<double>& heights) {
    Profile profile;
    for (double z : heights) {
        const double x = static_cast<double>(profile.size() + 1);
        profile.push_back({x, 0.25 * x, z});
    }
    return profile;
}

/// The profile with other heights.
inline Profile withHeights(Profile profile, const std::vector<double>& heights) {
    EXPECT_EQ(profile.size(), heights.size());
    for (std::size_t i = 0; i < profile.size() && i < heights.size(); ++i) profile[i].z = heights[i];
    return profile;
}

/// The profile with the points at these positions cleared.
inline Profile withCleared(Profile profile, std::initializer_list<std::size_t> positions) {
    for (std::size_t position : positions) profile.at(position) = kEmptyPoint;
    return profile;
}

/// The profile with some points in front.
inline Profile withFront(const Profile& front, const Profile& profile) {
    Profile joined = front;
    joined.insert(joined.end(), profile.begin(), profile.end());
    return joined;
}

}  // namespace support

#endif  // KORVANE_TESTS_PROFILE_PROFILESUPPORT_H
