// Long, dense, straight pieces of the stripe among the candidate centres of one frame.

#ifndef KORVANE_EXTRACT_FINDLINESEGMENTS_H
#define KORVANE_EXTRACT_FINDLINESEGMENTS_H

#include <cstdint>
#include <span>
#include <vector>

#include "algo/AlgoContext.h"

namespace KORVANELASERALGO::extract {

/// A candidate centre in whole ROI pixels: column x, row y.
struct VotePoint {
    std::int32_t x;
    std::int32_t y;
};

/// A straight piece from (x1, y1) to (x2, y2), with x1 <= x2.
struct LineSegment {
    std::int32_t x1;
    std::int32_t y1;
    std::int32_t x2;
    std::int32_t y2;
};

/// Standard Hough transform, then each line's points split where they leave a gap.
/// @param context `Width` and `Height` of its ROI are read
/// @param points inside the ROI
/// @param rhoStep resolution of a line's distance from the origin, pixels
/// @param angleStep resolution of its angle, radians
/// @param densityRatio points per column that a segment must exceed
/// @param segments results are appended
void FindLineSegments(const AlgoContext& context, std::span<const VotePoint> points, float rhoStep, float angleStep,
                      float densityRatio, std::vector<LineSegment>& segments);

}  // namespace KORVANELASERALGO::extract

#endif  // KORVANE_EXTRACT_FINDLINESEGMENTS_H
