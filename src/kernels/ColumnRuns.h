// The runs of pixels above a per-column threshold, from the transitions that a sweep finds.

#ifndef KORVANE_KERNELS_COLUMNRUNS_H
#define KORVANE_KERNELS_COLUMNRUNS_H

#include <span>
#include <vector>

#include "kernels/kernels.h"

namespace KORVANELASERALGO::kernels {

/// Vertically consecutive bright pixels of one column.
struct Run {
    int firstRow;
    int length;  ///< rows, at least 1
};

/// The runs of all columns in one flat array, column by column and from top to bottom within a column.
struct ColumnRuns {
    std::vector<Run> runs;
    std::vector<std::size_t> firstRun;  ///< per column, and one past the last

    bool none() const { return runs.empty(); }
    std::span<const Run> ofColumn(int column) const {
        const std::size_t c = static_cast<std::size_t>(column);
        return std::span(runs).subspan(firstRun[c], firstRun[c + 1] - firstRun[c]);
    }
};

/// Finds the maximal runs of pixels that are greater than their column's threshold.
/// @param thresholds one per column
/// @param active null, or what findColumnMaxima noted with a floor that no threshold is below
ColumnRuns findColumnRuns(const unsigned char* image, int width, int height, const unsigned char* thresholds,
                          const unsigned char* active = nullptr);

}  // namespace KORVANELASERALGO::kernels

#endif  // KORVANE_KERNELS_COLUMNRUNS_H
