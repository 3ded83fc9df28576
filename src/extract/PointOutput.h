// What extraction methods do with their points at the end.

#ifndef KORVANE_EXTRACT_POINTOUTPUT_H
#define KORVANE_EXTRACT_POINTOUTPUT_H

#include <cstddef>
#include <vector>

#include "KorvaneLaserAlgo.h"

namespace KORVANELASERALGO::extract {

/// Marks the columns whose point lies below row 0. A point in row 0.0 exactly counts as not found: this is meant.
inline void markFoundColumns(const std::vector<tagKorvaneLaserPoint2d>& points, bool* mask) {
    for (std::size_t c = 0; c < points.size(); ++c) {
        if (points[c].y > 0.0) mask[c] = true;
    }
}

/// From the ROI's pixels to the full sensor's, found or not.
inline void moveToSensor(const tagKorvaneLaserAlgoROIInfo& roi, std::vector<tagKorvaneLaserPoint2d>& points) {
    for (tagKorvaneLaserPoint2d& point : points) {
        point.x += roi.OffsetX;
        point.y += roi.OffsetY;
    }
}

}  // namespace KORVANELASERALGO::extract

#endif  // KORVANE_EXTRACT_POINTOUTPUT_H
