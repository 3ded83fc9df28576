// Standard Hough transform (Duda and Hart, "Use of the Hough transformation to detect lines and curves in pictures",
// Communications of the ACM 15, 1972) over the candidate centres of a frame. The points near each peak of the
// accumulator are then split where they leave a gap, and the long, dense pieces are kept.
//
// Angles, distances and votes are in single precision throughout.

#include "extract/FindLineSegments.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdlib>

#include "algo/ImageView.h"
#include "algo/Int32.h"

namespace KORVANELASERALGO::extract {
namespace {

constexpr double kPi = 3.141592653589793;
constexpr std::int32_t kLeastVotes = 101;
constexpr double kInlierDistance = 1.4142135623730951;  // pixels: the square root of 2
constexpr float kLargestGap = 20.0f;                    // pixels, inclusive
constexpr double kLeastLength = 50.0;                   // pixels, inclusive

// Votes per angle and distance, with a border of one empty cell around them.
class Accumulator {
public:
    Accumulator(int angles, int distances)
        : angles_(angles),
          distances_(distances),
          cells_(static_cast<std::size_t>(angles + 2) * static_cast<std::size_t>(distances + 2), 0) {}

    // Angle and distance run from -1 to one past the last.
    std::int32_t& at(int angle, int distance) { return cells_[index(angle, distance)]; }
    std::int32_t at(int angle, int distance) const { return cells_[index(angle, distance)]; }

    // Strict on one side, not on the other, so that of two equal neighbours one is the peak.
    bool isPeak(int angle, int distance) const {
        const std::int32_t votes = at(angle, distance);
        return votes >= kLeastVotes && votes > at(angle, distance - 1) && votes >= at(angle, distance + 1) &&
               votes > at(angle - 1, distance) && votes >= at(angle + 1, distance);
    }

    // Clears a cell and its eight neighbours; the border stays empty.
    void clearAround(int angle, int distance) {
        for (int n = std::max(angle - 1, 0); n <= std::min(angle + 1, angles_ - 1); ++n) {
            for (int r = std::max(distance - 1, 0); r <= std::min(distance + 1, distances_ - 1); ++r) at(n, r) = 0;
        }
    }

private:
    std::size_t index(int angle, int distance) const {
        return static_cast<std::size_t>(angle + 1) * static_cast<std::size_t>(distances_ + 2) +
               static_cast<std::size_t>(distance + 1);
    }

    int angles_;
    int distances_;
    std::vector<std::int32_t> cells_;
};

struct Peak {
    int angle;
    int distance;
    std::int32_t votes;
};

double distanceBetween(const VotePoint& a, const VotePoint& b) {
    const std::int64_t dx = std::int64_t{a.x} - b.x;
    const std::int64_t dy = std::int64_t{a.y} - b.y;
    return std::sqrt(static_cast<double>(dx * dx + dy * dy));
}

// Keeps the piece from `start` to `end` when it is long and dense enough. A piece with one x has infinite density.
void closeSegment(const VotePoint& start, const VotePoint& end, int steps, float densityRatio,
                  std::vector<LineSegment>& segments) {
    if (distanceBetween(start, end) < kLeastLength) return;
    const float density = static_cast<float>(steps) / static_cast<float>(std::abs(end.x - start.x));
    if (density > densityRatio) segments.push_back({start.x, start.y, end.x, end.y});
}

// Splits the points of one line where they leave a gap. The step across a gap still counts for the segment before it,
// while the last segment has one step fewer than points: this is meant.
void splitAtGaps(std::vector<VotePoint>& inliers, float densityRatio, std::vector<LineSegment>& segments) {
    if (inliers.size() < 2) return;
    std::sort(inliers.begin(), inliers.end(),
              [](const VotePoint& a, const VotePoint& b) { return a.x != b.x ? a.x < b.x : a.y < b.y; });

    VotePoint start = inliers.front();
    VotePoint previous = start;
    int steps = 0;
    for (std::size_t i = 1; i < inliers.size(); ++i) {
        ++steps;
        if (static_cast<float>(distanceBetween(previous, inliers[i])) > kLargestGap) {
            closeSegment(start, previous, steps, densityRatio, segments);
            start = inliers[i];
            steps = 0;
        }
        previous = inliers[i];
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
    const int middle = (distances - 1) / 2;  // index of distance 0

    // Votes.
    std::vector<float> cosines(static_cast<std::size_t>(angles));
    std::vector<float> sines(static_cast<std::size_t>(angles));
    for (std::size_t n = 0; n < cosines.size(); ++n) {
        const float angle = static_cast<float>(n) * angleStep;
        cosines[n] = std::cos(angle) / rhoStep;
        sines[n] = std::sin(angle) / rhoStep;
    }
    Accumulator votes(angles, distances);
    for (const VotePoint& point : points) {
        const float x = static_cast<float>(point.x);
        const float y = static_cast<float>(point.y);
        for (int n = 0; n < angles; ++n) {
            const std::size_t i = static_cast<std::size_t>(n);
            ++votes.at(n, static_cast<int>(x * cosines[i] + y * sines[i] + 0.5f) + middle);
        }
    }

    // Peaks, by votes; equal ones by angle, then distance.
    std::vector<Peak> peaks;
    for (int n = 0; n < angles; ++n) {
        for (int r = 0; r < distances; ++r) {
            if (votes.isPeak(n, r)) peaks.push_back({n, r, votes.at(n, r)});
        }
    }
    std::stable_sort(peaks.begin(), peaks.end(), [](const Peak& a, const Peak& b) { return a.votes > b.votes; });

    // The points near each peak's line, and the segments among them.
    std::vector<VotePoint> inliers;
    for (const Peak& peak : peaks) {
        if (votes.at(peak.angle, peak.distance) < 1) continue;
        const float rho = (static_cast<float>(peak.distance) - static_cast<float>(distances - 1) * 0.5f) * rhoStep;
        const float theta = static_cast<float>(peak.angle) * angleStep;
        const float cosine = std::cos(theta);
        const float sine = std::sin(theta);

        inliers.clear();
        for (const VotePoint& point : points) {
            const float offset = static_cast<float>(point.x) * cosine + static_cast<float>(point.y) * sine - rho;
            if (static_cast<double>(std::fabs(offset)) < kInlierDistance) inliers.push_back(point);
        }
        if (inliers.empty()) continue;
        splitAtGaps(inliers, densityRatio, segments);
        votes.clearAround(peak.angle, peak.distance);
    }
}

}  // namespace KORVANELASERALGO::extract
