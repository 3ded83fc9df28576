// From a column's bright runs to stripe candidates: a whole run, or the humps of one.

#ifndef KORVANE_EXTRACT_RUNCANDIDATES_H
#define KORVANE_EXTRACT_RUNCANDIDATES_H

#include <algorithm>
#include <cstdint>
#include <vector>

#include "extract/FindPeaks.h"
#include "extract/StripeCandidates.h"
#include "kernels/kernels.h"

namespace KORVANELASERALGO::extract {

/// The grey-weighted mean ROI row over the positions first .. last of a run, clipped to the run. Every product and sum
/// is an integer below 2^53, so an integer sum converted once equals a sum in double.
inline double runCentroid(const kernels::ColumnRuns& runs, const kernels::Run& run, int first, int last) {
    const auto greys = runs.greysOf(run);
    std::int64_t sum = 0;
    std::int64_t moment = 0;
    for (int i = std::max(first, 0); i <= std::min(last, run.length - 1); ++i) {
        const std::int64_t grey = greys[static_cast<std::size_t>(i)];
        sum += grey;
        moment += grey * (run.firstRow + i);
    }
    return static_cast<double>(moment) / static_cast<double>(sum);
}

/// The run as one candidate: its centroid, the grey value of the pixel there, its length.
inline Candidate wholeRunCandidate(const kernels::ColumnRuns& runs, const kernels::Run& run) {
    const double centre = runCentroid(runs, run, 0, run.length - 1);
    const int position = static_cast<int>(centre) - run.firstRow;
    return {centre, runs.greysOf(run)[static_cast<std::size_t>(position)], run.length};
}

/// The humps of one run after the other, in buffers that are reused.
class RunHumps {
public:
    /// Finds the humps of a run.
    void find(const kernels::ColumnRuns& runs, const kernels::Run& run) {
        const auto greys = runs.greysOf(run);
        profile_.assign(greys.begin(), greys.end());
        positions_.clear();
        values_.clear();
        leftFeet_.clear();
        rightFeet_.clear();
        FindPeaksWithFeet(profile_, positions_, values_, leftFeet_, rightFeet_);
    }

    bool none() const { return positions_.empty(); }

    /// Adds those that pass the bounds: the centroid from foot to foot, the grey value of the peak, and the difference
    /// of the feet as the width. (Not the number of rows from foot to foot, which is one more: this is meant.)
    void addCandidates(const kernels::ColumnRuns& runs, const kernels::Run& run,
                       const tagKorvaneLaserAlgoLineSelectInfo& bounds, ColumnLists<Candidate>& candidates) const {
        for (std::size_t k = 0; k < positions_.size(); ++k) {
            const int width = rightFeet_[k] - leftFeet_[k];
            if (!passesBounds(bounds, values_[k], width)) continue;
            candidates.add({runCentroid(runs, run, leftFeet_[k], rightFeet_[k]), values_[k], width});
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
