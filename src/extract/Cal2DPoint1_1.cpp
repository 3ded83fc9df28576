// Cal2DPoint1_1: lists every bright spot of a column that passes the line selection, then chooses one per column so
// that the points form a line, once from left to right and once from right to left.

#include <cstdint>

#include "algo/ImageView.h"
#include "extract/PointOutput.h"
#include "extract/RunCandidates.h"
#include "extract/StripeCandidates.h"
#include "extract/extract.h"
#include "kernels/ColumnRuns.h"

namespace KORVANELASERALGO::extract {
namespace {

using LineSelect = tagKorvaneLaserAlgoLineSelectInfo;

constexpr unsigned char kBright = 60;  // grey levels; a run is brighter
constexpr int kShortestRun = 3;        // rows, of a run in a column of several

// Run lengths meet the width bounds as unsigned 64-bit values in two places, so a negative bound is larger than any
// run there. This is meant.
std::uint64_t asUnsigned(int value) {
    return static_cast<std::uint64_t>(std::int64_t{value});
}

bool passesUnsignedWidthBounds(const LineSelect& bounds, int width) {
    return asUnsigned(bounds.WidthMin) <= asUnsigned(width) && asUnsigned(width) <= asUnsigned(bounds.WidthMax);
}

ColumnLists<Candidate> gatherCandidates(const ImageView& image, const kernels::ColumnRuns& runs,
                                        const LineSelect& bounds) {
    ColumnLists<Candidate> candidates(image.width);
    RunHumps humps(image, runs, kBright);
    for (int c = 0; c < image.width; ++c) {
        const auto column = runs.ofColumn(c);
        if (column.size() == 1) {
            const BrightRun run(image, c, column.front());
            if (asUnsigned(run.length) < asUnsigned(bounds.WidthMax)) {
                if (passesWidthBounds(bounds, run.length)) addWholeRun(run, bounds, candidates);
            } else {
                // A long single run without a hump gives no candidate: this is meant.
                humps.find(run, c);
                humps.addCandidates(run, bounds, candidates);
            }
        } else {
            for (const kernels::Run& extent : column) {
                if (extent.length < kShortestRun) continue;
                const BrightRun run(image, c, extent);
                humps.find(run, c);
                humps.addCandidates(run, bounds, candidates);
                if (humps.none() && passesUnsignedWidthBounds(bounds, run.length)) addWholeRun(run, bounds, candidates);
            }
        }
        candidates.closeColumn();
    }
    return candidates;
}

const Candidate* brightest(std::span<const Candidate> candidates) {
    const Candidate* choice = nullptr;
    int greatest = 0;
    for (const Candidate& candidate : candidates) {
        if (candidate.grey <= greatest) continue;
        choice = &candidate;
        greatest = candidate.grey;
    }
    return choice;
}

// Compares a grey value with the width of the choice before, or of the image at first. This is meant.
const Candidate* greyBelowWidth(std::span<const Candidate> candidates, int width) {
    const Candidate* choice = nullptr;
    int limit = width;
    for (const Candidate& candidate : candidates) {
        if (candidate.grey >= limit) continue;
        choice = &candidate;
        limit = candidate.width;
    }
    return choice;
}

// Chooses among several candidates: the nearest to the neighbour's row, else by SelectMode. The row becomes that of
// the point written. Without a choice the point stays, and so does the row in SelectMode 2; in a mode without a rule
// the row is given up, so that columns with several candidates stay open until one with a single candidate follows.
void choose(std::span<const Candidate> candidates, const ImageView& image, int selectMode, int column, double& row,
            tagKorvaneLaserPoint2d& point) {
    const Candidate* choice = nullptr;
    const auto nearest = findNearest(candidates, row, static_cast<float>(image.height));
    if (nearest.withinTolerance()) {
        choice = nearest.candidate;
    } else {
        switch (selectMode) {
            case 1:
                choice = brightest(candidates);
                break;
            case 2:
                choice = greyBelowWidth(candidates, image.width);
                break;
            case 3:
                choice = &candidates.front();
                break;
            case 4:
                choice = &candidates.back();
                break;
            default:
                row = 0.0;
                break;
        }
    }
    if (choice == nullptr) return;
    point = {static_cast<double>(column), choice->centre};
    row = choice->centre;
}

}  // namespace

void Cal2DPoint1_1(const AlgoContext& context, bool* mask, const unsigned char* image, Points2d& points) {
    const ImageView view(context.roi, image);
    const LineSelect& lineSelect = context.lineSelect;
    points.assign(static_cast<std::size_t>(view.width), {0.0, 0.0});
    const auto pointOf = [&](int c) -> tagKorvaneLaserPoint2d& { return points[static_cast<std::size_t>(c)]; };

    // Candidates.
    const std::vector<unsigned char> thresholds(points.size(), kBright);
    const auto runs = kernels::findColumnRuns(view.bytes, view.width, view.height, thresholds.data());
    if (runs.none()) return moveToSensor(context.roi, points);
    const auto candidates = gatherCandidates(view, runs, lineSelect);

    // Left to right.
    double previous = 0.0;
    for (int c = 0; c < view.width; ++c) {
        const auto column = candidates.ofColumn(c);
        if (column.size() == 1) {
            previous = column.front().centre;
            pointOf(c) = {static_cast<double>(c), previous};
        } else if (!column.empty() && previous > 0.0) {
            choose(column, view, lineSelect.SelectMode, c, previous, pointOf(c));
        }
    }

    // Right to left: columns with several candidates whose point is missing or off the line.
    double next = 0.0;
    for (int c = view.width - 2; c >= 0; --c) {
        if (pointOf(c + 1).y > 0.0) next = pointOf(c + 1).y;
        const auto column = candidates.ofColumn(c);
        const bool open = pointOf(c).y == 0.0 || isFarFrom(pointOf(c).y, next);
        if (open && next > 0.0 && column.size() > 1) {
            choose(column, view, lineSelect.SelectMode, c, next, pointOf(c));
        }
    }

    markFoundColumns(points, mask);
    moveToSensor(context.roi, points);
}

}  // namespace KORVANELASERALGO::extract
