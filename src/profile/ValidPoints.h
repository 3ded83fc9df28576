// The points of a profile that hold a measurement, in order, with their places in the profile. The filters count
// neighbours along this list, across the gaps that empty points leave.

#ifndef KORVANE_PROFILE_VALIDPOINTS_H
#define KORVANE_PROFILE_VALIDPOINTS_H

#include <cstddef>
#include <vector>

#include "profile/profile.h"

namespace KORVANELASERALGO::profile {

/// A point is valid when its x is not 0.0; not a number counts as valid.
inline bool isValid(const tagKorvaneLaserPoint3d& point) {
    return point.x != 0.0;
}

struct ValidPoints {
    std::vector<tagKorvaneLaserPoint3d> points;  ///< copies: filters read these and write the profile
    std::vector<std::size_t> positions;          ///< of each in the profile

    std::size_t size() const { return points.size(); }
};

/// @param accepts says which points are listed
template <class Accepts>
ValidPoints listPoints(const Profile& profile, Accepts accepts) {
    ValidPoints valid;
    valid.points.reserve(profile.size());
    valid.positions.reserve(profile.size());
    for (std::size_t i = 0; i < profile.size(); ++i) {
        if (!accepts(profile[i])) continue;
        valid.points.push_back(profile[i]);
        valid.positions.push_back(i);
    }
    return valid;
}

inline ValidPoints listValidPoints(const Profile& profile) {
    return listPoints(profile, isValid);
}

/// The part of the list that a window around entry j covers, cut short at the ends: entries first .. end - 1.
struct Window {
    std::size_t first;
    std::size_t end;
};

/// From `before` entries before j to `after` entries after it, j itself included.
inline Window windowAround(std::size_t j, std::size_t before, std::size_t after, std::size_t size) {
    return {j < before ? 0 : j - before, size - j <= after ? size : j + after + 1};
}

}  // namespace KORVANELASERALGO::profile

#endif  // KORVANE_PROFILE_VALIDPOINTS_H
