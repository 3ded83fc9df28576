// The grey-weighted mean row of pixels of one column, counted from a row of reference.

#ifndef KORVANE_EXTRACT_COLUMNCENTROID_H
#define KORVANE_EXTRACT_COLUMNCENTROID_H

#include "KorvaneLaserAlgo.h"

namespace KORVANELASERALGO::extract {

/// Takes pixels in any order. Sum and moment are integers, which fit for any window of 4,000 rows.
class ColumnCentroid {
public:
    /// @param firstRow the row from which the moment is counted, which decides the last bits of the result
    explicit ColumnCentroid(int firstRow) : firstRow_(firstRow) {}

    void add(int row, int grey) {
        sum_ += grey;
        moment_ += (row - firstRow_) * grey;
    }

    /// Sets `point` to (column, firstRow + moment / sum); leaves it alone where all pixels are zero.
    void writeTo(tagKorvaneLaserPoint2d& point, int column) const {
        if (sum_ == 0) return;
        point.x = column;
        point.y = firstRow_ + static_cast<double>(moment_) / sum_;
    }

private:
    int firstRow_;
    int sum_ = 0;
    int moment_ = 0;
};

}  // namespace KORVANELASERALGO::extract

#endif  // KORVANE_EXTRACT_COLUMNCENTROID_H
