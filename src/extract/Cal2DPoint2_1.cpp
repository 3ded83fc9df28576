// Cal2DPoint2_1: every plausible centre of every column, kept where it lies on a long straight piece of the stripe,
// pruned against a line between unambiguous columns, then chosen by following the neighbouring columns.
//
//   1. Candidates     the bright runs of a column and their humps, within the bounds of the line selection
//   2. Segments       long straight pieces among all candidates (Hough transform)
//   3. Segment filter a column keeps the candidates on segments; a column without any keeps all
//   4. Groups         neighbouring columns whose candidates are far apart
//   5. Pruning        in a group, candidates far from the line between the columns beside it are dropped
//   6. Selection      to the right and back to the left

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>

#include "algo/ImageView.h"
#include "extract/FindLineSegments.h"
#include "extract/PointOutput.h"
#include "extract/RunCandidates.h"
#include "extract/StripeCandidates.h"
#include "extract/extract.h"
#include "kernels/ColumnRuns.h"

namespace KORVANELASERALGO::extract {
namespace {

using LineSelect = tagKorvaneLaserAlgoLineSelectInfo;

constexpr unsigned char kBright = 30;       // grey levels; a run is brighter
constexpr int kLongSingleRun = 20;          // rows; a single run of this length is split into its humps
constexpr int kShortestRun = 3;             // rows, of a run in a column of several
constexpr float kRhoStep = 1.0f;            // pixels
constexpr float kAngleStep = 0.017453292f;  // radians, one degree
constexpr float kDensityRatio = 0.8f;       // points per column of a segment
constexpr double kSegmentTolerance = 2.0;   // rows, exclusive
constexpr double kAmbiguousSpread = 15.0;   // rows, exclusive
constexpr int kGroupGap = 10;               // columns, inclusive
constexpr double kPruningTolerance = 10.0;  // rows; farther candidates are dropped

// ---- candidates ----

ColumnLists<Candidate> gatherCandidates(const ImageView& image, const kernels::ColumnRuns& runs,
                                        const LineSelect& bounds) {
    ColumnLists<Candidate> candidates(image.width);
    RunHumps humps(image, runs, kBright);
    const auto addWhole = [&](const BrightRun& run) {
        if (passesWidthBounds(bounds, run.length)) addWholeRun(run, bounds, candidates);
    };

    for (int c = 0; c < image.width; ++c) {
        const auto column = runs.ofColumn(c);
        if (column.size() == 1) {
            const BrightRun run(image, c, column.front());
            if (run.length < kLongSingleRun) {
                addWhole(run);
            } else {
                // A long single run without a hump gives no candidate, unlike one among several: this is meant.
                humps.find(run, c);
                humps.addCandidates(run, bounds, candidates);
            }
        } else {
            for (const kernels::Run& extent : column) {
                if (extent.length < kShortestRun) continue;
                const BrightRun run(image, c, extent);
                humps.find(run, c);
                humps.addCandidates(run, bounds, candidates);
                if (humps.none()) addWhole(run);
            }
        }
        candidates.closeColumn();
    }
    return candidates;
}

// ---- segments ----

std::vector<LineSegment> findSegments(const AlgoContext& context, const ColumnLists<Candidate>& candidates, int width) {
    std::vector<VotePoint> votes;
    for (int c = 0; c < width; ++c) {
        for (const Candidate& candidate : candidates.ofColumn(c))
            votes.push_back({c, static_cast<int>(candidate.centre)});
    }
    std::vector<LineSegment> segments;
    FindLineSegments(context, votes, kRhoStep, kAngleStep, kDensityRatio, segments);
    return segments;
}

// A column's list holds its candidates on segments in the order of the segments. A candidate on two segments stands in
// it twice; the two end columns of a segment are not visited. Both are meant.
ColumnLists<Candidate> keepOnSegments(const ColumnLists<Candidate>& candidates,
                                      const std::vector<LineSegment>& segments, int width) {
    struct OnSegment {
        int column;
        const Candidate* candidate;
    };
    std::vector<OnSegment> kept;
    for (const LineSegment& segment : segments) {
        const float slope = static_cast<float>(segment.y2 - segment.y1) / static_cast<float>(segment.x2 - segment.x1);
        for (int x = segment.x1 + 1; x < segment.x2; ++x) {
            const float row = static_cast<float>(x - segment.x1) * slope + static_cast<float>(segment.y1);
            for (const Candidate& candidate : candidates.ofColumn(x)) {
                if (std::fabs(static_cast<double>(row) - candidate.centre) < kSegmentTolerance)
                    kept.push_back({x, &candidate});
            }
        }
    }
    std::stable_sort(kept.begin(), kept.end(),
                     [](const OnSegment& a, const OnSegment& b) { return a.column < b.column; });

    ColumnLists<Candidate> filtered(width);
    auto next = kept.begin();
    for (int c = 0; c < width; ++c) {
        if (next == kept.end() || next->column != c) {
            for (const Candidate& candidate : candidates.ofColumn(c)) filtered.add(candidate);
        }
        for (; next != kept.end() && next->column == c; ++next) filtered.add(*next->candidate);
        filtered.closeColumn();
    }
    return filtered;
}

// ---- groups and pruning ----

bool isAmbiguous(std::span<const Candidate> column) {
    // From the first to the last of the list, with its sign, not between the extremes: this is meant.
    return !column.empty() && column.back().centre - column.front().centre > kAmbiguousSpread;
}

bool isUnambiguous(std::span<const Candidate> column) {
    return !column.empty() && !isAmbiguous(column);
}

// An unambiguous column beside a group, and the mean of its centres.
struct Anchor {
    int column;
    double row;  // 0.0 where there is no such column
};

// The first unambiguous column from `begin` on in steps of +1 or -1.
Anchor findAnchor(const ColumnLists<Candidate>& candidates, int width, int begin, int step) {
    for (int c = begin; c >= 0 && c < width; c += step) {
        const auto column = candidates.ofColumn(c);
        if (!isUnambiguous(column)) continue;
        double sum = 0.0;
        for (const Candidate& candidate : column) sum += candidate.centre;
        return {c, sum / static_cast<double>(column.size())};
    }
    return {0, 0.0};
}

// Not a number marks a column in which no row is expected: no distance from it exceeds the tolerance.
constexpr float kNothingExpected = std::numeric_limits<float>::quiet_NaN();

// The row expected in each column of a group that has an anchor on both sides.
std::vector<float> expectRows(const ColumnLists<Candidate>& candidates, int width) {
    std::vector<float> expected(static_cast<std::size_t>(width), kNothingExpected);
    std::vector<int> ambiguous;
    for (int c = 0; c < width; ++c) {
        if (isAmbiguous(candidates.ofColumn(c))) ambiguous.push_back(c);
    }

    for (auto first = ambiguous.begin(); first != ambiguous.end();) {
        auto end = first + 1;
        while (end != ambiguous.end() && *end - *(end - 1) <= kGroupGap) ++end;

        const Anchor left = findAnchor(candidates, width, *first - 1, -1);
        const Anchor right = findAnchor(candidates, width, *(end - 1) + 1, +1);
        if (left.row > 0.0 && right.row > 0.0) {
            for (auto member = first; member != end; ++member) {
                const double share = static_cast<double>(*member - left.column) / (right.column - left.column);
                expected[static_cast<std::size_t>(*member)] =
                    static_cast<float>(share * (right.row - left.row) + left.row);
            }
        }
        first = end;
    }
    return expected;
}

ColumnLists<Candidate> prune(const ColumnLists<Candidate>& candidates, int width) {
    const std::vector<float> expected = expectRows(candidates, width);
    ColumnLists<Candidate> pruned(width);
    for (int c = 0; c < width; ++c) {
        const double row = static_cast<double>(expected[static_cast<std::size_t>(c)]);
        for (const Candidate& candidate : candidates.ofColumn(c)) {
            if (!(std::fabs(candidate.centre - row) > kPruningTolerance)) pruned.add(candidate);
        }
        pruned.closeColumn();
    }
    return pruned;
}

// ---- selection ----

const Candidate& brightest(std::span<const Candidate> candidates) {
    const auto darker = [](const Candidate& a, const Candidate& b) { return a.grey < b.grey; };
    return *std::max_element(candidates.begin(), candidates.end(), darker);
}

const Candidate& narrowest(std::span<const Candidate> candidates, int width) {
    const Candidate* choice = &candidates.front();
    int smallest = width;
    for (const Candidate& candidate : candidates) {
        if (candidate.width >= smallest) continue;
        choice = &candidate;
        smallest = candidate.width;
    }
    return *choice;
}

// A candidate replaces the choice only when it is brighter and narrower at once.
const Candidate& brighterAndNarrower(std::span<const Candidate> candidates, int width) {
    const Candidate* choice = &candidates.front();
    int grey = 0;
    int smallest = width;
    for (const Candidate& candidate : candidates) {
        if (candidate.grey <= grey || candidate.width >= smallest) continue;
        choice = &candidate;
        grey = candidate.grey;
        smallest = candidate.width;
    }
    return *choice;
}

// The nearest to the tracked row within the tolerance, else by SelectMode. The search starts from the height in both
// directions.
const Candidate& choose(std::span<const Candidate> candidates, const ImageView& image, int selectMode, double row) {
    const auto nearest = findNearest(candidates, row, static_cast<float>(image.height));
    if (nearest.withinTolerance()) return *nearest.candidate;
    switch (selectMode) {
        case 1:
            return brightest(candidates);
        case 2:
            return narrowest(candidates, image.width);
        case 3:
            return candidates.front();
        case 4:
            return candidates.back();
        default:
            return brighterAndNarrower(candidates, image.width);
    }
}

}  // namespace

void Cal2DPoint2_1(const AlgoContext& context, bool* mask, const unsigned char* image, Points2d& points) {
    const ImageView view(context.roi, image);
    const int selectMode = context.lineSelect.SelectMode;
    points.assign(static_cast<std::size_t>(view.width), {0.0, 0.0});
    const auto pointOf = [&](int c) -> tagKorvaneLaserPoint2d& { return points[static_cast<std::size_t>(c)]; };

    // Candidates, segments, pruning.
    const std::vector<unsigned char> thresholds(points.size(), kBright);
    const auto runs = kernels::findColumnRuns(view.bytes, view.width, view.height, thresholds.data());
    if (runs.none()) return moveToSensor(context.roi, points);
    const auto gathered = gatherCandidates(view, runs, context.lineSelect);
    const auto segments = findSegments(context, gathered, view.width);
    const auto filtered = keepOnSegments(gathered, segments, view.width);
    const auto candidates = prune(filtered, view.width);

    // Left to right: an only candidate is taken wherever it lies.
    double previous = 0.0;
    for (int c = 0; c < view.width; ++c) {
        const auto column = candidates.ofColumn(c);
        if (column.size() == 1) {
            previous = column.front().centre;
        } else if (!column.empty() && previous > 0.0) {
            previous = choose(column, view, selectMode, previous).centre;
        } else {
            continue;
        }
        pointOf(c) = {static_cast<double>(c), previous};
    }

    // Right to left: a column that holds a point is never revised: this is meant.
    double next = 0.0;
    for (int c = view.width - 2; c >= 0; --c) {
        if (pointOf(c + 1).y > 0.0) next = pointOf(c + 1).y;
        const auto column = candidates.ofColumn(c);
        if (pointOf(c).y != 0.0 || !(next > 0.0) || column.size() < 2) continue;
        next = choose(column, view, selectMode, next).centre;
        pointOf(c) = {static_cast<double>(c), next};
    }

    markFoundColumns(points, mask);
    moveToSensor(context.roi, points);
}

}  // namespace KORVANELASERALGO::extract
