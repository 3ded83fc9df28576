// Which points of a profile hold a measurement.

#ifndef KORVANE_PROFILE_VALIDPOINTS_H
#define KORVANE_PROFILE_VALIDPOINTS_H

#include "profile/profile.h"

namespace KORVANELASERALGO::profile {

/// A point is valid when its x is not 0.0; not a number counts as valid.
inline bool isValid(const tagKorvaneLaserPoint3d& point) {
    return point.x != 0.0;
}

}  // namespace KORVANELASERALGO::profile

#endif  // KORVANE_PROFILE_VALIDPOINTS_H
