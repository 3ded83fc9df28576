#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <vector>

#include "plain.h"
#include "reference.h"

namespace reference {

namespace {

float distanceBetween(const VotePoint& a, const VotePoint& b) {
    const std::int64_t dx = static_cast<std::int64_t>(b.x) - a.x;
    const std::int64_t dy = static_cast<std::int64_t>(b.y) - a.y;
    return static_cast<float>(std::sqrt(static_cast<double>(dx * dx + dy * dy)));
}

/// Appends the segment when it is long and dense enough. A vertical one divides by zero and passes as infinitely dense.
void closeSegment(const VotePoint& start, const VotePoint& end, int steps, float densityRatio,
                  std::vector<LineSegment>& segments) {
    const std::int64_t columns = std::abs(static_cast<std::int64_t>(end.x) - start.x);
    if (distanceBetween(start, end) >= 50.0f &&
        static_cast<float>(steps) / static_cast<float>(columns) > densityRatio) {
        segments.push_back(LineSegment{start.x, start.y, end.x, end.y});
    }
}

/// Cuts the points of one line at gaps of more than 20 pixels.
void splitLine(std::vector<VotePoint> inliers, float densityRatio, std::vector<LineSegment>& segments) {
    if (inliers.size() < 2) {
        return;
    }
    std::sort(inliers.begin(), inliers.end(),
              [](const VotePoint& a, const VotePoint& b) { return a.x != b.x ? a.x < b.x : a.y < b.y; });

    // A segment closed by a gap counts the step across the gap, the last one does not: meant.
    VotePoint start = inliers[0];
    VotePoint previous = inliers[0];
    int steps = 0;
    for (std::size_t i = 1; i < inliers.size(); ++i) {
        const VotePoint& point = inliers[i];
        steps += 1;
        if (distanceBetween(previous, point) > 20.0f) {
            closeSegment(start, previous, steps, densityRatio, segments);
            start = point;
            steps = 0;
        }
        previous = point;
    }
    closeSegment(start, previous, steps, densityRatio, segments);
}

}  // namespace

void FindLineSegments(const Settings& settings, const std::vector<VotePoint>& points, float rhoStep, float angleStep,
                      float densityRatio, std::vector<LineSegment>& segments) {
    const int width = countOf(settings.roi.Width);
    const int height = countOf(settings.roi.Height);

    // Sizes.
    const int numangle = countOf(toInt32(3.141592653589793 / static_cast<double>(angleStep) + 0.5));
    const std::int64_t diameter = (static_cast<std::int64_t>(width) + height) * 2 + 1;
    const int numrho = countOf(toInt32(static_cast<double>(static_cast<float>(diameter) / rhoStep + 0.5f)));
    const std::int64_t stride = static_cast<std::int64_t>(numrho) + 2;
    const auto cellOf = [&](int n, int r) { return static_cast<std::size_t>((n + std::int64_t{1}) * stride + r + 1); };
    std::vector<int> counters(static_cast<std::size_t>((numangle + std::int64_t{2}) * stride), 0);

    // Angle tables, single precision.
    std::vector<float> sines;
    std::vector<float> cosines;
    for (int n = 0; n < numangle; ++n) {
        const float theta = static_cast<float>(n) * angleStep;
        sines.push_back(std::sin(theta) / rhoStep);
        cosines.push_back(std::cos(theta) / rhoStep);
    }

    // Votes.
    for (const VotePoint& point : points) {
        for (int n = 0; n < numangle; ++n) {
            const float rho = static_cast<float>(point.x) * cosines[static_cast<std::size_t>(n)] +
                              static_cast<float>(point.y) * sines[static_cast<std::size_t>(n)] + 0.5f;
            const int r = wrappedSum(toInt32(static_cast<double>(rho)), (numrho - 1) / 2);
            // Points of the ROI always hit a cell.
            if (r >= 0 && r < numrho) {
                counters[cellOf(n, r)] += 1;
            }
        }
    }

    // Peaks, in ascending cell index.
    std::vector<std::size_t> peaks;
    for (int n = 0; n < numangle; ++n) {
        for (int r = 0; r < numrho; ++r) {
            const int count = counters[cellOf(n, r)];
            if (count > 100 && count > counters[cellOf(n, r - 1)] && count >= counters[cellOf(n, r + 1)] &&
                count > counters[cellOf(n - 1, r)] && count >= counters[cellOf(n + 1, r)]) {
                peaks.push_back(cellOf(n, r));
            }
        }
    }

    // Greatest count first, equal counts in ascending cell index.
    std::stable_sort(peaks.begin(), peaks.end(),
                     [&](std::size_t a, std::size_t b) { return counters[a] > counters[b]; });

    for (const std::size_t peak : peaks) {
        // Cleared by an earlier peak.
        if (counters[peak] < 1) {
            continue;
        }

        // The line of the cell, single precision.
        const int n = static_cast<int>(static_cast<std::int64_t>(peak) / stride) - 1;
        const int r = static_cast<int>(static_cast<std::int64_t>(peak) % stride) - 1;
        const float rho = (static_cast<float>(r) - static_cast<float>(numrho - 1) * 0.5f) * rhoStep;
        const float theta = static_cast<float>(n) * angleStep;
        const float cosine = std::cos(theta);
        const float sine = std::sin(theta);

        // The points of the line, in point order.
        std::vector<VotePoint> inliers;
        for (const VotePoint& point : points) {
            const float distance = static_cast<float>(point.x) * cosine + static_cast<float>(point.y) * sine - rho;
            if (static_cast<double>(std::fabs(distance)) < std::sqrt(2.0)) {
                inliers.push_back(point);
            }
        }
        if (inliers.empty()) {
            continue;
        }

        splitLine(inliers, densityRatio, segments);

        // Clear the cell and its neighbours.
        for (int i = std::max(n - 1, 0); i <= std::min(n + 1, numangle - 1); ++i) {
            for (int j = std::max(r - 1, 0); j <= std::min(r + 1, numrho - 1); ++j) {
                counters[cellOf(i, j)] = 0;
            }
        }
    }
}

}  // namespace reference
