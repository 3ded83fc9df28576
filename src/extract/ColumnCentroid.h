// The grey-weighted mean row of a run of pixels in one column, counted from the run's first row.

#ifndef KORVANE_EXTRACT_COLUMNCENTROID_H
#define KORVANE_EXTRACT_COLUMNCENTROID_H

#include <cstdint>

#include "KorvaneLaserAlgo.h"

namespace KORVANELASERALGO::extract {

/// Sets `point` to (column, firstRow + sum of i * values[i] / sum of values[i]); leaves it alone where all of the
/// `count` values are zero.
inline void ColumnCentroid(int column, int firstRow, int count, const std::uint32_t* values,
                           tagKorvaneLaserPoint2d& point) {
    std::uint32_t sum = 0;
    double moment = 0.0;
    for (int i = 0; i < count; ++i) {
        sum += values[i];
        moment += static_cast<std::int32_t>(static_cast<std::uint32_t>(i) * values[i]);
    }
    if (sum == 0) return;

    point.x = column;
    point.y = firstRow + moment / static_cast<std::int32_t>(sum);
}

}  // namespace KORVANELASERALGO::extract

#endif  // KORVANE_EXTRACT_COLUMNCENTROID_H
