// Cal2DPoint2: row centres of the runs above half of each column's brightest pixel, chosen by following the
// neighbouring columns to the right and back to the left.

#include <algorithm>

#include "algo/ImageView.h"
#include "extract/FindPeaks.h"
#include "extract/PointOutput.h"
#include "extract/RunCandidates.h"
#include "extract/StripeCandidates.h"
#include "extract/extract.h"
#include "kernels/ColumnRuns.h"
#include "kernels/kernels.h"

namespace KORVANELASERALGO::extract {
namespace {

constexpr unsigned char kFloor = 30;  // grey levels, smallest threshold of a column
constexpr int kSpan = 3;              // rows on each side of a peak that belong to its centroid
constexpr int kLongSingleRun = 20;    // rows; a single run of this length is not taken for the stripe
constexpr int kShortestMargin = 5;    // rows; runs less than this longer than the shortest are examined for peaks

// Half of each column's brightest pixel, at least the floor, and where pixels brighter than the floor are.
struct Brightness {
    std::vector<unsigned char> thresholds;
    std::vector<unsigned char> active;

    explicit Brightness(const ImageView& image)
        : thresholds(static_cast<std::size_t>(image.width)),
          active(static_cast<std::size_t>(kernels::bandsOf(image.height)) *
                 static_cast<std::size_t>(kernels::blocksOf(image.width))) {
        kernels::active().findColumnMaxima(image.bytes, image.width, image.height, kFloor, thresholds.data(),
                                           active.data());
        for (unsigned char& threshold : thresholds)
            threshold = std::max(static_cast<unsigned char>(threshold / 2), kFloor);
    }
};

// Of the rows around the first maximum; a short run has no others.
double singleRunCentre(const BrightRun& run) {
    int peak = 0;
    for (int i = 1; i < run.length; ++i) {
        if (run.grey(i) > run.grey(peak)) peak = i;
    }
    return runCentroid(run, peak - kSpan, peak + kSpan);
}

// Peaks of a run, in buffers that are reused from run to run.
struct PeakBuffers {
    std::vector<int> positions;
    std::vector<int> values;
};

void addPeakCentres(const BrightRun& run, PeakBuffers& peaks, ColumnLists<double>& centres) {
    peaks.positions.clear();
    peaks.values.clear();
    FindPeaks(run, peaks.positions, peaks.values);

    for (std::size_t k = 0; k < peaks.positions.size(); ++k) {
        int plateauEnd = peaks.positions[k];
        while (plateauEnd + 1 < run.length && run.grey(plateauEnd + 1) == peaks.values[k]) ++plateauEnd;
        centres.add(runCentroid(run, peaks.positions[k] - kSpan, plateauEnd + kSpan));
    }
}

ColumnLists<double> gatherCentres(const ImageView& image, const kernels::ColumnRuns& runs) {
    ColumnLists<double> centres(image.width);
    PeakBuffers peaks;
    for (int c = 0; c < image.width; ++c) {
        const auto column = runs.ofColumn(c);
        if (column.size() == 1) {
            const BrightRun run(image, c, column.front());
            if (run.length < kLongSingleRun) centres.add(singleRunCentre(run));
        } else if (column.size() > 1) {
            // The short runs are examined peak by peak, the long ones taken whole: this is meant.
            const auto shorter = [](const kernels::Run& a, const kernels::Run& b) { return a.length < b.length; };
            const int shortest = std::min_element(column.begin(), column.end(), shorter)->length;
            for (const kernels::Run& extent : column) {
                const BrightRun run(image, c, extent);
                if (run.length - shortest < kShortestMargin) {
                    addPeakCentres(run, peaks, centres);
                } else {
                    centres.add(runCentroid(run, 0, run.length - 1));
                }
            }
        }
        centres.closeColumn();
    }
    return centres;
}

}  // namespace

void Cal2DPoint2(const AlgoContext& context, bool* mask, const unsigned char* image, Points2d& points) {
    const ImageView view(context.roi, image);
    points.assign(static_cast<std::size_t>(view.width), {0.0, 0.0});
    const auto pointOf = [&](int c) -> tagKorvaneLaserPoint2d& { return points[static_cast<std::size_t>(c)]; };

    // Candidates.
    const Brightness brightness(view);
    const auto runs = kernels::findColumnRuns(view.bytes, view.width, view.height, brightness.thresholds.data(),
                                              brightness.active.data());
    if (runs.none()) return moveToSensor(context.roi, points);
    const auto centres = gatherCentres(view, runs);

    // Writes the candidate near a tracked row, which becomes its row.
    const auto takeNearest = [&](int c, double& row, int startDistance) {
        const auto nearest = findNearest(centres.ofColumn(c), row, static_cast<float>(startDistance));
        if (!nearest.withinTolerance()) return;
        pointOf(c) = {static_cast<double>(c), *nearest.candidate};
        row = *nearest.candidate;
    };

    // Left to right: a single run is taken wherever it lies, several are tracked once there is a row.
    double previous = 0.0;
    for (int c = 0; c < view.width; ++c) {
        if (runs.ofColumn(c).size() == 1 && !centres.ofColumn(c).empty()) {
            previous = centres.ofColumn(c).front();
            pointOf(c) = {static_cast<double>(c), previous};
        } else if (previous > 0.0) {
            takeNearest(c, previous, view.height);
        }
    }

    // Right to left: any point off the line may be revised. The search starts from the width here: this is meant.
    double next = 0.0;
    for (int c = view.width - 2; c >= 0; --c) {
        if (pointOf(c + 1).y > 0.0) next = pointOf(c + 1).y;
        if (next > 0.0 && isFarFrom(pointOf(c).y, next)) takeNearest(c, next, view.width);
    }

    // Columns that are still open take an only candidate. The test is on x, so column 0 always does: this is meant.
    for (int c = 0; c < view.width; ++c) {
        const auto column = centres.ofColumn(c);
        if (pointOf(c).x == 0.0 && column.size() == 1) pointOf(c) = {static_cast<double>(c), column.front()};
    }

    markFoundColumns(points, mask);
    moveToSensor(context.roi, points);
}

}  // namespace KORVANELASERALGO::extract
