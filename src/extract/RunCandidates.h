// From a column's bright runs to stripe candidates: a whole run, or the humps of one.

#ifndef KORVANE_EXTRACT_RUNCANDIDATES_H
#define KORVANE_EXTRACT_RUNCANDIDATES_H

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "algo/ImageView.h"
#include "extract/FindPeaks.h"
#include "extract/StripeCandidates.h"
#include "kernels/ColumnRuns.h"

namespace KORVANELASERALGO::extract {

/// A run of bright pixels in a column of the image.
class BrightRun {
public:
    BrightRun(const ImageView& image, int column, const kernels::Run& run)
        : firstRow(run.firstRow), length(run.length), top_(image.row(run.firstRow) + column), stride_(image.width) {}

    /// The grey value at a position, counted from the run's first row.
    int grey(int i) const { return top_[i * stride_]; }

    /// As a profile from top to bottom.
    std::size_t size() const { return static_cast<std::size_t>(length); }
    int operator[](std::size_t i) const { return grey(static_cast<int>(i)); }

    const int firstRow;
    const int length;  ///< rows

private:
    const unsigned char* top_;
    std::ptrdiff_t stride_;
};

/// The grey-weighted mean ROI row over the positions first .. last of a run, clipped to the run. Every product and sum
/// is an integer below 2^53, so an integer sum converted once equals a sum in double.
inline double runCentroid(const BrightRun& run, int first, int last) {
    const int end = std::min(last, run.length - 1);
    std::int64_t sum = 0;
    std::int64_t moment = 0;  // about the run's first row
    for (int i = std::max(first, 0); i <= end; ++i) {
        const int grey = run.grey(i);
        sum += grey;
        moment += std::int64_t{i} * grey;
    }
    return static_cast<double>(moment + run.firstRow * sum) / static_cast<double>(sum);
}

/// Adds the run as one candidate, whose width passes: its centroid, the grey value of the pixel there, its length.
inline void addWholeRun(const BrightRun& run, const tagKorvaneLaserAlgoLineSelectInfo& bounds,
                        ColumnLists<Candidate>& candidates) {
    const double centre = runCentroid(run, 0, run.length - 1);
    const int grey = run.grey(static_cast<int>(centre) - run.firstRow);
    if (passesGreyBounds(bounds, grey)) candidates.add({centre, grey, run.length});
}

/// The humps of one run after the other, in buffers that are reused.
class RunHumps {
public:
    /// @param runs all runs of the image, which are brighter than `level`
    RunHumps(const ImageView& image, const kernels::ColumnRuns& runs, unsigned char level)
        : leastPeak_(level + 1 + kLeastDropToAFoot) {
        // Where runs are long, as in ambient light, only spots that are bright enough for a peak are looked at.
        const auto isLong = [](const kernels::Run& run) { return run.length > kLongRun; };
        if (std::none_of(runs.runs.begin(), runs.runs.end(), isLong)) return;
        const std::vector<unsigned char> thresholds(static_cast<std::size_t>(image.width),
                                                    static_cast<unsigned char>(leastPeak_ - 1));
        spots_ = kernels::findColumnRuns(image.bytes, image.width, image.height, thresholds.data());
    }

    /// Finds the humps of a run of a column.
    void find(const BrightRun& run, int column) {
        positions_.clear();
        values_.clear();
        leftFeet_.clear();
        rightFeet_.clear();
        if (run.length <= kLongRun) return findWithin(run, 0, run.length);
        for (const kernels::Run& spot : spots_.ofColumn(column)) {
            const int first = std::max(spot.firstRow - run.firstRow, 0);
            const int end = std::min(spot.firstRow + spot.length - run.firstRow, run.length);
            if (first < end) findWithin(run, first, end);
        }
    }

    bool none() const { return positions_.empty(); }

    /// Adds those that pass the bounds: the centroid from foot to foot, the grey value of the peak, and the difference
    /// of the feet as the width. (Not the number of rows from foot to foot, which is one more: this is meant.)
    void addCandidates(const BrightRun& run, const tagKorvaneLaserAlgoLineSelectInfo& bounds,
                       ColumnLists<Candidate>& candidates) const {
        for (std::size_t k = 0; k < positions_.size(); ++k) {
            const int width = rightFeet_[k] - leftFeet_[k];
            if (!passesGreyBounds(bounds, values_[k]) || !passesWidthBounds(bounds, width)) continue;
            candidates.add({runCentroid(run, leftFeet_[k], rightFeet_[k]), values_[k], width});
        }
    }

private:
    static constexpr int kLongRun = 64;  // rows

    void findWithin(const BrightRun& run, int first, int end) {
        FindPeaksWithFeetWithin(run, static_cast<std::size_t>(first), static_cast<std::size_t>(end), leastPeak_,
                                positions_, values_, leftFeet_, rightFeet_);
    }

    int leastPeak_;              // grey levels: a hump falls by kLeastDropToAFoot within its run
    kernels::ColumnRuns spots_;  // bright enough for a peak; empty where no run is long
    std::vector<int> positions_;
    std::vector<int> values_;
    std::vector<int> leftFeet_;
    std::vector<int> rightFeet_;
};

}  // namespace KORVANELASERALGO::extract

#endif  // KORVANE_EXTRACT_RUNCANDIDATES_H
