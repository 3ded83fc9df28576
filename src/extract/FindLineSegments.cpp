// Standard Hough transform (Duda and Hart, "Use of the Hough transformation to detect lines and curves in pictures",
// Communications of the ACM 15, 1972) over the candidate centres of a frame. The points near each peak of the
// accumulator are then split where they leave a gap, and the long, dense pieces are kept.
//
// Angles, distances and votes are in single precision throughout.

#include "extract/FindLineSegments.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdlib>
#include <limits>
#include <numeric>
#include <tuple>
#include <utility>

#include "algo/ImageView.h"
#include "algo/Int32.h"
#include "extract/VoteBounds.h"
#include "kernels/kernels.h"

namespace KORVANELASERALGO::extract {
namespace {

constexpr double kPi = 3.141592653589793;
constexpr std::int32_t kLeastVotes = 101;
constexpr std::int64_t kLargestSquaredGap = std::int64_t{20} * 20;   // pixels squared, inclusive
constexpr std::int64_t kLeastSquaredLength = std::int64_t{50} * 50;  // pixels squared, inclusive

// Pixels, exclusive: the single-precision number after the square root of 2. None lies between the two.
constexpr float kInlierDistance = 0x1.6a09e8p0f;
static_assert(static_cast<double>(0x1.6a09e6p0f) < 1.4142135623730951 &&
              static_cast<double>(kInlierDistance) >= 1.4142135623730951);

// Far more than the rounding errors of a distance, each at most 2^-24 of the sizes that enter.
constexpr float kLeastSlack = 0.01f;  // pixels
constexpr float kRelativeSlack = 0x1p-18f;

constexpr float kNotANumber = std::numeric_limits<float>::quiet_NaN();

// ---- votes ----

// The voting points by column, then row, as single-precision coordinates and with boxes around those that follow one
// another. Whatever follows the last point or box to a full lane is not a number, which is near no line.
struct Voters {
    explicit Voters(std::span<const VotePoint> votePoints) : points(votePoints.begin(), votePoints.end()) {
        const auto before = [](const VotePoint& a, const VotePoint& b) { return a.x != b.x ? a.x < b.x : a.y < b.y; };
        if (!std::is_sorted(points.begin(), points.end(), before)) std::sort(points.begin(), points.end(), before);

        constexpr std::size_t kLane = kernels::kBoxPoints;
        const std::size_t boxes = (points.size() + kLane * kLane - 1) / (kLane * kLane) * kLane;
        for (auto* list : {&x, &y}) list->assign(boxes * kLane, kNotANumber);
        for (auto* list : {&centreX, &centreY, &halfWidth, &halfHeight}) list->assign(boxes, kNotANumber);
        for (std::size_t i = 0; i < points.size(); ++i) {
            x[i] = static_cast<float>(points[i].x);
            y[i] = static_cast<float>(points[i].y);
        }
        for (std::size_t first = 0; first < points.size(); first += kLane) {
            const auto begin = static_cast<std::ptrdiff_t>(first);
            const auto end = static_cast<std::ptrdiff_t>(std::min(first + kLane, points.size()));
            const auto [top, bottom] = std::minmax_element(y.begin() + begin, y.begin() + end);
            const std::size_t box = first / kLane;
            centreX[box] = (x[first] + x[static_cast<std::size_t>(end) - 1]) * 0.5f;
            centreY[box] = (*top + *bottom) * 0.5f;
            halfWidth[box] = (x[static_cast<std::size_t>(end) - 1] - x[first]) * 0.5f;
            halfHeight[box] = (*bottom - *top) * 0.5f;
        }
    }

    kernels::BoxedPoints boxed() const {
        return {x.data(),       y.data(),         centreX.size(),   centreX.data(),
                centreY.data(), halfWidth.data(), halfHeight.data()};
    }

    std::vector<VotePoint> points;
    std::vector<float> x, y;
    std::vector<float> centreX, centreY, halfWidth, halfHeight;
};

struct Direction {
    float cosine;
    float sine;
};

struct Peak {
    int angle;
    int distance;
    std::int32_t votes;  // 0 once it is suppressed
};

// The votes of three angles side by side: what a peak is compared with. A row is counted when it is asked for.
class Accumulator {
public:
    Accumulator(const Voters& voters, const std::vector<Direction>& directions, int distances)
        : voters_(voters),
          directions_(directions),
          middle_((distances - 1) / 2),
          stride_(std::ptrdiff_t{distances} + 2),
          cells_(static_cast<std::size_t>(stride_) * (kSums + kernels::kVoteRows), 0) {
        const std::size_t last = voters.points.size() - 1;
        const auto [top, bottom] = std::minmax_element(voters.y.data(), voters.y.data() + last + 1);
        const float left = voters.x[0];
        const float right = voters.x[last];
        corners_ = {{{left, *top}, {left, *bottom}, {right, *top}, {right, *bottom}}};
    }

    // The peaks of an angle; angles are asked for in ascending order. Strict on one side, not on the other, so that of
    // two equal neighbours one is the peak.
    void appendPeaks(int angle, std::vector<Peak>& peaks) {
        const Row& counted = rowOf(angle);
        if (counted.largest < kLeastVotes) return;
        const std::int32_t* before = cellsOf(rowOf(angle - 1));
        const std::int32_t* row = cellsOf(counted);
        const std::int32_t* after = cellsOf(rowOf(angle + 1));
        for (int r = counted.first; r < counted.end; ++r) {
            const std::int32_t votes = row[r];
            if (votes >= kLeastVotes && votes > row[r - 1] && votes >= row[r + 1] && votes > before[r] &&
                votes >= after[r])
                peaks.push_back({angle, r, votes});
        }
    }

private:
    static constexpr std::size_t kSums = 3;  // rows of sums, before the rows that take the votes
    static constexpr int kNoAngle = -2;

    // Distances outside first .. end - 1 have no vote.
    struct Row {
        int angle = kNoAngle;
        int first = 0;
        int end = 0;
        std::int32_t largest = 0;
    };
    struct Corner {
        float x;
        float y;
    };

    // The row of an angle, in place of that of an earlier angle. There is no vote beside the first and the
    // last angle.
    const Row& rowOf(int angle) {
        Row& row = rows_[static_cast<std::size_t>(angle + 1) % kSums];
        if (row.angle == angle) return row;
        std::fill(cellsOf(row) + row.first, cellsOf(row) + row.end, 0);
        row = {.angle = angle};
        if (angle >= 0 && angle < static_cast<int>(directions_.size()))
            count(directions_[static_cast<std::size_t>(angle)], row);
        return row;
    }

    // The steps of a distance never turn the order of two numbers round, so all distances lie between those of the
    // corners around the points.
    void count(const Direction& direction, Row& row) {
        std::array<std::int32_t, 4> ends;
        for (std::size_t i = 0; i < ends.size(); ++i)
            ends[i] =
                static_cast<std::int32_t>(corners_[i].x * direction.cosine + corners_[i].y * direction.sine + 0.5f);
        row.first = middle_ + *std::min_element(ends.begin(), ends.end());
        row.end = middle_ + *std::max_element(ends.begin(), ends.end()) + 1;

        const kernels::KernelSet& pass = kernels::active();
        std::int32_t* votes = cellsOf(kSums);
        pass.castVotes(voters_.x.data(), voters_.y.data(), voters_.points.size(), direction.cosine, direction.sine,
                       votes + middle_, stride_);
        row.largest = pass.sumVotes(votes + row.first, stride_, row.end - row.first, cellsOf(row) + row.first);
    }

    // Distance index 0 of a row; one cell before it and one after the last are always 0.
    std::int32_t* cellsOf(std::size_t row) { return cells_.data() + static_cast<std::ptrdiff_t>(row) * stride_ + 1; }
    std::int32_t* cellsOf(const Row& row) { return cellsOf(static_cast<std::size_t>(&row - rows_.data())); }

    const Voters& voters_;
    const std::vector<Direction>& directions_;  // in steps of the distance
    int middle_;                                // index of distance 0
    std::ptrdiff_t stride_;
    std::vector<std::int32_t> cells_;
    std::array<Corner, 4> corners_;
    std::array<Row, kSums> rows_;
};

// In the order of angles, then distances.
std::vector<Peak> findPeaks(const Voters& voters, std::vector<Direction> directions, float rhoStep, int distances) {
    for (Direction& direction : directions) direction = {direction.cosine / rhoStep, direction.sine / rhoStep};
    std::vector<Peak> peaks;
    VoteBounds bounds(voters.points, distances);
    Accumulator votes(voters, directions, distances);
    for (std::size_t n = 0; n < directions.size(); ++n) {
        if (bounds.mayReach(kLeastVotes, directions[n].cosine, directions[n].sine))
            votes.appendPeaks(static_cast<int>(n), peaks);
    }
    return peaks;
}

// Suppresses a peak and those in the eight cells around it.
void suppressAround(const Peak& peak, std::vector<Peak>& peaks) {
    const int distance = peak.distance;
    for (int angle = peak.angle - 1, last = peak.angle + 1; angle <= last; ++angle) {
        const auto before = [](const Peak& a, const std::pair<int, int>& cell) {
            return std::tie(a.angle, a.distance) < std::tie(cell.first, cell.second);
        };
        auto next = std::lower_bound(peaks.begin(), peaks.end(), std::pair(angle, distance - 1), before);
        for (; next != peaks.end() && next->angle == angle && next->distance <= distance + 1; ++next) next->votes = 0;
    }
}

// ---- segments ----

std::int64_t squaredDistance(const VotePoint& a, const VotePoint& b) {
    const std::int64_t dx = std::int64_t{a.x} - b.x;
    const std::int64_t dy = std::int64_t{a.y} - b.y;
    return dx * dx + dy * dy;
}

// Keeps the piece from `start` to `end` when it is long and dense enough. A piece with one x has infinite density.
void closeSegment(const VotePoint& start, const VotePoint& end, int steps, float densityRatio,
                  std::vector<LineSegment>& segments) {
    if (squaredDistance(start, end) < kLeastSquaredLength) return;
    const float density = static_cast<float>(steps) / static_cast<float>(std::abs(end.x - start.x));
    if (density > densityRatio) segments.push_back({start.x, start.y, end.x, end.y});
}

// Splits the points of one line, at least one, where they leave a gap. The step across a gap still counts for the
// segment before it, while the last segment has one step fewer than points: this is meant.
void splitAtGaps(const std::vector<VotePoint>& points, std::span<const std::size_t> inliers, float densityRatio,
                 std::vector<LineSegment>& segments) {
    VotePoint start = points[inliers.front()];
    VotePoint previous = start;
    int steps = 0;
    for (const std::size_t i : inliers.subspan(1)) {
        ++steps;
        if (squaredDistance(previous, points[i]) > kLargestSquaredGap) {
            closeSegment(start, previous, steps, densityRatio, segments);
            start = points[i];
            steps = 0;
        }
        previous = points[i];
    }
    closeSegment(start, previous, steps, densityRatio, segments);
}

}  // namespace

void FindLineSegments(const AlgoContext& context, std::span<const VotePoint> points, float rhoStep, float angleStep,
                      float densityRatio, std::vector<LineSegment>& segments) {
    if (points.size() < static_cast<std::size_t>(kLeastVotes)) return;  // no cell can have the votes of a peak

    const std::int64_t perimeter =
        (std::int64_t{columnsOf(context.roi)} + std::int64_t{rowsOf(context.roi)}) * 2 + 1;  // pixels
    const int angles = truncateToInt32(kPi / static_cast<double>(angleStep) + 0.5);
    const int distances = truncateToInt32(static_cast<double>(static_cast<float>(perimeter) / rhoStep + 0.5f));
    std::vector<Direction> directions(static_cast<std::size_t>(angles));
    for (std::size_t n = 0; n < directions.size(); ++n) {
        const float theta = static_cast<float>(n) * angleStep;
        directions[n] = {std::cos(theta), std::sin(theta)};
    }

    const Voters voters(points);
    std::vector<Peak> peaks = findPeaks(voters, directions, rhoStep, distances);

    // By votes; equal ones by angle, then distance.
    std::vector<std::size_t> order(peaks.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::stable_sort(order.begin(), order.end(),
                     [&](std::size_t a, std::size_t b) { return peaks[a].votes > peaks[b].votes; });

    // The points near each peak's line, and the segments among them.
    const kernels::BoxedPoints boxed = voters.boxed();
    const float slack = kLeastSlack + static_cast<float>(perimeter) * kRelativeSlack;
    std::vector<std::size_t> inliers(peaks.empty() ? 0 : voters.x.size());
    for (const std::size_t i : order) {
        const Peak peak = peaks[i];
        if (peak.votes < 1) continue;
        const Direction& direction = directions[static_cast<std::size_t>(peak.angle)];
        const float rho = (static_cast<float>(peak.distance) - static_cast<float>(distances - 1) * 0.5f) * rhoStep;
        const std::size_t count = kernels::active().findNearLine(boxed, direction.cosine, direction.sine, rho,
                                                                 kInlierDistance, slack, inliers.data());
        if (count == 0) continue;
        splitAtGaps(voters.points, std::span(inliers).first(count), densityRatio, segments);
        suppressAround(peak, peaks);
    }
}

}  // namespace KORVANELASERALGO::extract
