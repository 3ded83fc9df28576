// The search-and-follow walk that Cal2DPoint1 and Cal2DPoint3 share.
//
// A stripe is searched from the top of a column and then followed to the right: in the next column only a window
// around the row of the last centroid is looked at. A column in which the stripe does not continue is searched again.
// The thresholds are the policy of the method:
//
//     const int* searchThresholds()             one per column: a pixel above it is bright
//     int fillThreshold(int column, int peak)   while following: rows of at least this grey value belong to the stripe;
//                                               `peak` is the largest of the three pixels around the predicted row

#ifndef KORVANE_EXTRACT_STRIPETRACKER_H
#define KORVANE_EXTRACT_STRIPETRACKER_H

#include <algorithm>
#include <cstddef>
#include <vector>

#include "algo/AlgoContext.h"
#include "algo/ImageView.h"
#include "algo/Int32.h"
#include "extract/ColumnCentroid.h"
#include "extract/PointOutput.h"
#include "kernels/kernels.h"

namespace KORVANELASERALGO::extract {

/// Rows that the walk looks at, above and below the row of interest.
struct TrackingWindow {
    int half;   ///< rows of a search fill, halved
    int track;  ///< rows above the predicted row and below it while following

    explicit TrackingWindow(int height) : half(height < 41 ? height / 2 - 1 : 20), track(3 * half / 4) {}
};

template <class Thresholds>
class StripeTracker {
public:
    StripeTracker(const ImageView& image, const Thresholds& thresholds)
        : image_(image),
          thresholds_(thresholds),
          window_(image.height),
          starts_(static_cast<std::size_t>(image.width)) {}

    /// Finds the stripe in the columns 1 .. width - 2; writes ROI coordinates and mask entries of the columns found.
    void run(bool* mask, std::vector<tagKorvaneLaserPoint2d>& points) {
        bool tracking = false;
        int predictedRow = 0;
        tagKorvaneLaserPoint2d last = {0.0, 0.0};

        for (int c = 1; c < image_.width - 1; ++c) {
            // A prediction on the first or last row matches no row that is scanned, in this column or any later one:
            // tracking is not dropped, the rest of the frame stays without points. This is meant.
            if (tracking && (predictedRow < 1 || predictedRow > image_.height - 2)) return;

            tracking = (tracking && follow(c, predictedRow, last)) || search(c, last);
            if (!tracking) continue;

            points[static_cast<std::size_t>(c)] = last;
            mask[c] = true;
            predictedRow = truncateToInt32(last.y + 0.5);
        }
    }

private:
    static constexpr int kManyColumns = 32;
    static constexpr double kContinuity = 0.9;  // share of the left neighbour's grey value that must remain

    // Searches the column from above; on success sets `point`, unless all of the filled pixels are zero.
    bool search(int column, tagKorvaneLaserPoint2d& point) {
        if (column >= searchedEnd_) searchColumnsFrom(column);
        const int firstRow = starts_[static_cast<std::size_t>(column)];
        if (firstRow == kernels::kNoStripe) {
            ++lostColumns_;
            return false;
        }
        lostColumns_ = 0;

        const int endRow = std::min(firstRow + 2 * window_.half, image_.height - 1);
        const int threshold = thresholds_.searchThresholds()[column];
        ColumnCentroid centroid(firstRow);
        const unsigned char* pixel = image_.row(firstRow) + column;
        for (int r = firstRow; r <= endRow && *pixel >= threshold; ++r, pixel += image_.width) centroid.add(r, *pixel);
        centroid.writeTo(point, column);
        return true;
    }

    // Columns of a block share cache lines, so they are searched together. Where many in a row held no stripe, the
    // next ones are likely to hold none either: all that are left are searched in one sweep.
    void searchColumnsFrom(int column) {
        const int inner = image_.width - 1;
        searchedEnd_ = lostColumns_ < kManyColumns
                           ? std::min((column / kernels::kBlockColumns + 1) * kernels::kBlockColumns, inner)
                           : inner;

        const int endRow = image_.height - window_.half - 1;
        kernels::active().findStripeStarts(image_.bytes, image_.width, column, searchedEnd_, 2, endRow,
                                           thresholds_.searchThresholds(), starts_.data());
    }

    // Looks for the stripe around the predicted row; on success sets `point`.
    bool follow(int column, int row, tagKorvaneLaserPoint2d& point) {
        const std::ptrdiff_t stride = image_.width;
        const unsigned char* middle = image_.row(row) + column;
        const int centre = *middle;
        const int peak = std::max({centre, int{middle[-stride]}, int{middle[stride]}});
        const bool bright = peak >= thresholds_.searchThresholds()[column];
        if (!bright || !(centre > kContinuity * middle[-1])) return false;

        // The window is symmetric: where the image cuts it on one side, it is as short on the other. This is meant.
        const int reach = std::min({window_.track, row, image_.height - 1 - row});
        const int threshold = thresholds_.fillThreshold(column, peak);

        // The middle row counts whatever its grey value.
        ColumnCentroid centroid(row - reach);
        centroid.add(row, centre);
        const unsigned char* pixel = middle + stride;
        for (int r = row + 1; r <= row + reach && *pixel >= threshold; ++r, pixel += stride) centroid.add(r, *pixel);
        pixel = middle - stride;
        for (int r = row - 1; r >= row - reach && *pixel >= threshold; --r, pixel -= stride) centroid.add(r, *pixel);
        centroid.writeTo(point, column);
        return true;
    }

    const ImageView& image_;
    const Thresholds& thresholds_;
    TrackingWindow window_;
    std::vector<int> starts_;  // per column, valid below searchedEnd_
    int searchedEnd_ = 0;
    int lostColumns_ = 0;  // searched without a stripe since the last one with it
};

/// Finds and follows the stripe, and moves all points to the full sensor's pixels.
template <class Thresholds>
void trackStripe(const AlgoContext& context, const ImageView& image, const Thresholds& thresholds, bool* mask,
                 std::vector<tagKorvaneLaserPoint2d>& points) {
    StripeTracker<Thresholds>(image, thresholds).run(mask, points);
    moveToSensor(context.roi, points);
}

}  // namespace KORVANELASERALGO::extract

#endif  // KORVANE_EXTRACT_STRIPETRACKER_H
