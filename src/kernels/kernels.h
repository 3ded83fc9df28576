// Passes over plain arrays. Images are row-major bytes with stride = width and are swept row by row, because walking
// down a column touches a new cache line at every pixel. This room knows no record and no algorithm.

#ifndef KORVANE_KERNELS_KERNELS_H
#define KORVANE_KERNELS_KERNELS_H

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace KORVANELASERALGO::kernels {

// ---- column runs ----

/// Vertically consecutive bright pixels of one column.
struct Run {
    int firstRow;
    int length;             ///< rows, at least 1
    std::size_t firstGrey;  ///< index of the run's first grey value in ColumnRuns::greys
};

/// The runs of all columns in flat arrays, column by column and from top to bottom within a column.
class ColumnRuns {
public:
    std::span<const Run> ofColumn(int column) const {
        const std::size_t c = static_cast<std::size_t>(column);
        return std::span(runs).subspan(firstRun[c], firstRun[c + 1] - firstRun[c]);
    }
    std::span<const unsigned char> greysOf(const Run& run) const {
        return std::span(greys).subspan(run.firstGrey, static_cast<std::size_t>(run.length));
    }

    std::vector<Run> runs;
    std::vector<unsigned char> greys;   ///< the bright pixels, in the order of their runs
    std::vector<std::size_t> firstRun;  ///< per column, and one past the last
};

/// Finds the maximal runs of pixels that are greater than their column's threshold.
/// @param thresholds one per column
ColumnRuns findColumnRuns(const unsigned char* image, int width, int height, const unsigned char* thresholds);

// ---- column statistics ----

/// @param maxima receives the largest pixel of each column, 0 for no rows
void findColumnMaxima(const unsigned char* image, int width, int height, unsigned char* maxima);

/// @param counts one per column; the number of its pixels greater than `level` is added
void countAbove(const unsigned char* image, int width, int height, unsigned char level, std::uint32_t* counts);

/// @param sums one per column; the sum of its pixels greater than `level` is added
void sumAbove(const unsigned char* image, int width, int height, unsigned char level, std::uint64_t* sums);

// ---- stripe starts ----

/// Marks a column in which no stripe starts.
inline constexpr int kNoStripe = -1;

/// For each column of [firstColumn, endColumn), finds the first row of [firstRow, endRow) at which a stripe starts: a
/// pixel above the column's threshold, with another one above it among the three pixels to the right and the two above
/// and below, and not darker than both its vertical neighbours. All those neighbours must lie inside the image.
/// @param thresholds, starts indexed by column
void findStripeStarts(const unsigned char* image, int width, int firstColumn, int endColumn, int firstRow, int endRow,
                      const int* thresholds, int* starts);

}  // namespace KORVANELASERALGO::kernels

#endif  // KORVANE_KERNELS_KERNELS_H
