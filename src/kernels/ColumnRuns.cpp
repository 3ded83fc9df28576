#include "kernels/ColumnRuns.h"

#include <algorithm>
#include <memory>
#include <utility>

namespace KORVANELASERALGO::kernels {
namespace {

// The transitions of an image, each column's in the order of their rows. A column that is bright in its last row ends
// below it.
std::vector<Transition> listTransitions(const unsigned char* image, int width, int height,
                                        const unsigned char* thresholds, const unsigned char* active) {
    const std::size_t columns = static_cast<std::size_t>(width);
    std::vector<Transition> transitions;
    const auto ofBand = std::make_unique_for_overwrite<Transition[]>(columns * kBandRows);
    std::vector<std::uint64_t> state(static_cast<std::size_t>(blocksOf(width)), 0);

    for (int r = 0; r < height; r += kBandRows) {
        const std::size_t count =
            kernels::active().findTransitions(image, width, height, r, thresholds, active, state.data(), ofBand.get());
        transitions.insert(transitions.end(), ofBand.get(), ofBand.get() + count);
        if (active != nullptr) active += blocksOf(width);
    }
    for (int c = 0; c < width && height > 0; ++c) {
        const unsigned char* lastRow = image + static_cast<std::ptrdiff_t>(height - 1) * width;
        if (lastRow[c] > thresholds[c]) transitions.push_back({c, height});
    }
    return transitions;
}

}  // namespace

ColumnRuns findColumnRuns(const unsigned char* image, int width, int height, const unsigned char* thresholds,
                          const unsigned char* active) {
    const std::vector<Transition> transitions = listTransitions(image, width, height, thresholds, active);

    // Each column's transitions come in pairs: where a run begins and where it has ended.
    ColumnRuns found;
    found.firstRun.assign(static_cast<std::size_t>(width) + 1, 0);
    for (const Transition& transition : transitions) ++found.firstRun[static_cast<std::size_t>(transition.column)];
    std::size_t first = 0;
    for (std::size_t& count : found.firstRun) first += std::exchange(count, first) / 2;

    found.runs.resize(first);
    std::vector<std::size_t> next(found.firstRun.size());
    std::ranges::transform(found.firstRun, next.begin(), [](std::size_t run) { return 2 * run; });
    for (const Transition& transition : transitions) {
        const std::size_t end = next[static_cast<std::size_t>(transition.column)]++;
        Run& run = found.runs[end / 2];
        if (end % 2 == 0) {
            run.firstRow = transition.row;
        } else {
            run.length = transition.row - run.firstRow;
        }
    }
    return found;
}

}  // namespace KORVANELASERALGO::kernels
