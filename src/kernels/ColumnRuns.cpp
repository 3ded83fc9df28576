// Runs of pixels above a per-column threshold, found by sweeping rows twice: the first sweep counts each column's runs
// and bright pixels, the second writes them to their places in flat arrays.

#include <algorithm>

#include "kernels/kernels.h"

namespace KORVANELASERALGO::kernels {
namespace {

constexpr int kBlock = 64;  // columns that one test skips where nothing is bright

const unsigned char* rowOf(const unsigned char* image, int width, int r) {
    return image + static_cast<std::ptrdiff_t>(r) * width;
}

bool anyBright(const unsigned char* row, const unsigned char* thresholds, int begin, int end) {
    unsigned char any = 0;
    for (int c = begin; c < end; ++c) any |= static_cast<unsigned char>(row[c] > thresholds[c]);
    return any != 0;
}

// Turns counts into the index of each column's first element, with the total at the end.
void turnIntoFirstIndices(std::vector<std::size_t>& counts) {
    std::size_t next = 0;
    for (std::size_t& count : counts) {
        const std::size_t first = next;
        next += count;
        count = first;
    }
}

}  // namespace

ColumnRuns findColumnRuns(const unsigned char* image, int width, int height, const unsigned char* thresholds) {
    ColumnRuns found;
    const std::size_t columns = static_cast<std::size_t>(width);
    found.firstRun.assign(columns + 1, 0);
    std::vector<std::size_t> firstGrey(columns + 1, 0);

    // Visits the bright pixels of the image in row order; `opens` says that the pixel above is not bright.
    const auto sweep = [&](auto visit) {
        for (int r = 0; r < height; ++r) {
            const unsigned char* row = rowOf(image, width, r);
            const unsigned char* above = r > 0 ? rowOf(image, width, r - 1) : nullptr;
            for (int block = 0; block < width; block += kBlock) {
                const int blockEnd = std::min(width, block + kBlock);
                if (!anyBright(row, thresholds, block, blockEnd)) continue;
                for (int c = block; c < blockEnd; ++c) {
                    if (row[c] <= thresholds[c]) continue;
                    const bool opens = above == nullptr || above[c] <= thresholds[c];
                    visit(r, static_cast<std::size_t>(c), row[c], opens);
                }
            }
        }
    };

    // Count.
    sweep([&](int, std::size_t c, unsigned char, bool opens) {
        ++firstGrey[c];
        if (opens) ++found.firstRun[c];
    });
    turnIntoFirstIndices(found.firstRun);
    turnIntoFirstIndices(firstGrey);
    found.runs.resize(found.firstRun.back());
    found.greys.resize(firstGrey.back());

    // Write; the cursors walk through each column's share.
    std::vector<std::size_t> nextRun = found.firstRun;
    std::vector<std::size_t>& nextGrey = firstGrey;
    sweep([&](int r, std::size_t c, unsigned char grey, bool opens) {
        if (opens) found.runs[nextRun[c]++] = {r, 0, nextGrey[c]};
        ++found.runs[nextRun[c] - 1].length;
        found.greys[nextGrey[c]++] = grey;
    });
    return found;
}

}  // namespace KORVANELASERALGO::kernels
