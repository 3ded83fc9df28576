/// @file Measured.h
/// @brief Which columns of a profile hold a measurement.

#ifndef KORVANE_EXAMPLES_MEASURED_H
#define KORVANE_EXAMPLES_MEASURED_H

#include <cmath>

#include "KorvaneLaserAlgo.h"

namespace examples {

/// Whether a column of a profile holds a measurement: neither the empty point (0, 0, 0) nor bad numbers.
inline bool isMeasured(const KORVANELASERALGO::tagKorvaneLaserPoint3d& point) {
    const bool isEmpty = point.x == 0.0 && point.y == 0.0 && point.z == 0.0;
    return !isEmpty && std::isfinite(point.x) && std::isfinite(point.y) && std::isfinite(point.z);
}

}  // namespace examples

#endif  // KORVANE_EXAMPLES_MEASURED_H
