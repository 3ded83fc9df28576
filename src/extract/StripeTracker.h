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
#include <array>
#include <cstdint>
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
    int track;  ///< rows above the predicted row while following

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
    static constexpr int kSearchedColumns =
        kernels::kBlockColumns;                 // columns that are searched together, for they share cache lines
    static constexpr double kContinuity = 0.9;  // share of the left neighbour's grey value that must remain

    // Searches the column from above; on success sets `point`, unless all of the filled pixels are zero.
    bool search(int column, tagKorvaneLaserPoint2d& point) {
        if (column >= searchedEnd_) searchColumnsFrom(column);
        const int firstRow = starts_[static_cast<std::size_t>(column)];
        if (firstRow == kernels::kNoStripe) return false;

        const int endRow = std::min(firstRow + 2 * window_.half, image_.height - 1);
        const int count = endRow - firstRow + 1;
        const int threshold = thresholds_.searchThresholds()[column];
        std::fill_n(greys_.begin(), count, 0u);
        for (int r = firstRow; r <= endRow && image_.row(r)[column] >= threshold; ++r) {
            const int i = r - firstRow;
            greys_[static_cast<std::size_t>(i)] = image_.row(r)[column];
        }
        ColumnCentroid(column, firstRow, count, greys_.data(), point);
        return true;
    }

    void searchColumnsFrom(int column) {
        searchedEnd_ = std::min(column + kSearchedColumns, image_.width - 1);
        const int endRow = std::min(image_.height - window_.half - 1, image_.height - 1);
        kernels::active().findStripeStarts(image_.bytes, image_.width, column, searchedEnd_, 2, endRow,
                                           thresholds_.searchThresholds(), starts_.data());
    }

    // Looks for the stripe around the predicted row; on success sets `point`.
    bool follow(int column, int row, tagKorvaneLaserPoint2d& point) {
        const int centre = image_.row(row)[column];
        const int peak = std::max({centre, pixel(row - 1, column), pixel(row + 1, column)});
        const bool bright = peak >= thresholds_.searchThresholds()[column];
        if (!bright || !(centre > kContinuity * image_.row(row)[column - 1])) return false;

        // The window is symmetric although it may reach twice as far down as up before it is cut: this is meant.
        const int low = std::max(row - window_.track, 0);
        const int high = std::min(row + 2 * window_.track, image_.height - 1);
        const int reach = std::min(row - low, high - row);
        const int count = 2 * reach + 1;
        const int threshold = thresholds_.fillThreshold(column, peak);

        // The middle row counts whatever its grey value.
        std::fill_n(greys_.begin(), count, 0u);
        const auto entry = [&](int r) -> std::uint32_t& {
            const int i = r - row + reach;
            return greys_[static_cast<std::size_t>(i)];
        };
        entry(row) = static_cast<std::uint32_t>(centre);
        for (int r = row + 1; r <= row + reach && pixel(r, column) >= threshold; ++r) entry(r) = image_.row(r)[column];
        for (int r = row - 1; r >= row - reach && pixel(r, column) >= threshold; --r) entry(r) = image_.row(r)[column];
        ColumnCentroid(column, row - reach, count, greys_.data(), point);
        return true;
    }

    int pixel(int row, int column) const { return image_.row(row)[column]; }

    const ImageView& image_;
    const Thresholds& thresholds_;
    TrackingWindow window_;
    std::vector<int> starts_;                   // per column, valid below searchedEnd_
    int searchedEnd_ = 0;                       // columns from here on are not searched yet
    std::array<std::uint32_t, 41> greys_ = {};  // the longest fill: 2 * 20 + 1 rows
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
