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

    const int firstRow;
    const int length;  ///< rows

private:
    const unsigned char* top_;
    std::ptrdiff_t stride_;
};

/// The grey-weighted mean ROI row over the positions first .. last of a run, clipped to the run. Every product and sum
/// is an integer below 2^53, so an integer sum converted once equals a sum in double.
inline double runCentroid(const BrightRun& run, int first, int last) {
    std::int64_t sum = 0;
    std::int64_t moment = 0;
    for (int i = std::max(first, 0); i <= std::min(last, run.length - 1); ++i) {
        const std::int64_t grey = run.grey(i);
        sum += grey;
        moment += grey * (run.firstRow + i);
    }
    return static_cast<double>(moment) / static_cast<double>(sum);
}

/// The run as one candidate: its centroid, the grey value of the pixel there, its length.
inline Candidate wholeRunCandidate(const BrightRun& run) {
    const double centre = runCentroid(run, 0, run.length - 1);
    return {centre, run.grey(static_cast<int>(centre) - run.firstRow), run.length};
}

/// Copies a run's grey values.
inline void copyGreys(const BrightRun& run, std::vector<int>& greys) {
    greys.resize(static_cast<std::size_t>(run.length));
    for (int i = 0; i < run.length; ++i) greys[static_cast<std::size_t>(i)] = run.grey(i);
}

/// The humps of one run after the other, in buffers that are reused.
class RunHumps {
public:
    /// Finds the humps of a run.
    void find(const BrightRun& run) {
        copyGreys(run, profile_);
        positions_.clear();
        values_.clear();
        leftFeet_.clear();
        rightFeet_.clear();
        FindPeaksWithFeet(profile_, positions_, values_, leftFeet_, rightFeet_);
    }

    bool none() const { return positions_.empty(); }

    /// Adds those that pass the bounds: the centroid from foot to foot, the grey value of the peak, and the difference
    /// of the feet as the width. (Not the number of rows from foot to foot, which is one more: this is meant.)
    void addCandidates(const BrightRun& run, const tagKorvaneLaserAlgoLineSelectInfo& bounds,
                       ColumnLists<Candidate>& candidates) const {
        for (std::size_t k = 0; k < positions_.size(); ++k) {
            const int width = rightFeet_[k] - leftFeet_[k];
            if (!passesBounds(bounds, values_[k], width)) continue;
            candidates.add({runCentroid(run, leftFeet_[k], rightFeet_[k]), values_[k], width});
        }
    }

private:
    std::vector<int> profile_;
    std::vector<int> positions_;
    std::vector<int> values_;
    std::vector<int> leftFeet_;
    std::vector<int> rightFeet_;
};

}  // namespace KORVANELASERALGO::extract

#endif  // KORVANE_EXTRACT_RUNCANDIDATES_H
