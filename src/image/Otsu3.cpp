// Otsu3: removes a saturated blob that hangs from the top edge, then copies the pixels above half of each column's own
// grey range, in four threads. (The name promises a histogram; there is none.)

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <thread>
#include <vector>

#include "algo/ImageView.h"
#include "image/image.h"
#include "kernels/kernels.h"

namespace KORVANELASERALGO::image {
namespace {

constexpr unsigned char kBlobLevel = 180;     // grey levels; a pixel of the blob is brighter
constexpr int kShortestTopRun = 30;           // rows
constexpr std::int64_t kSmallestBlob = 101;   // pixels
constexpr std::int64_t kBandHalfWidth = 500;  // columns
constexpr int kThresholdFloor = 60;           // grey levels
constexpr int kThreads = 4;

// The part of the image that does not count for the columns' grey range.
struct BlobMask {
    std::vector<int> topRuns;  // per column: rows of the blob, from row 0 on
    int bandFirstColumn = 0;
    int bandEndColumn = 0;
    int bandEndRow = 0;  // the band begins at row 0
};

// Per column, the number of rows above the blob's level from row 0 on; runs that are too short do not count.
void measureTopRuns(const MutableImageView& image, std::vector<int>& topRuns) {
    const auto isBright = [](unsigned char grey) { return grey > kBlobLevel; };
    if (image.height == 0) return;
    std::ptrdiff_t growing = std::count_if(image.row(0), image.row(0) + image.width, isBright);
    if (growing == 0) return;

    // A column's first transition is the begin of its run, in row 0, and the second the end.
    const std::vector<unsigned char> thresholds(topRuns.size(), kBlobLevel);
    std::vector<std::uint64_t> state(static_cast<std::size_t>(kernels::blocksOf(image.width)), 0);
    const auto transitions = std::make_unique_for_overwrite<kernels::Transition[]>(topRuns.size() * kernels::kBandRows);
    for (int r = 0; r < image.height && growing > 0; r += kernels::kBandRows) {
        const std::size_t count = kernels::active().findTransitions(
            image.bytes, image.width, image.height, r, thresholds.data(), nullptr, state.data(), transitions.get());
        for (const kernels::Transition& transition : std::span(transitions.get(), count)) {
            int& run = topRuns[static_cast<std::size_t>(transition.column)];
            if (transition.row == 0) {
                run = image.height;
            } else if (run == image.height) {
                run = transition.row;
                --growing;
            }
        }
    }
    for (int& run : topRuns) run = run < kShortestTopRun ? 0 : run;
}

// Neighbouring columns in a band of rows, in all of which the blob ends at the same row.
struct Stretch {
    int firstColumn;
    int endColumn;
    int firstRow;
    int blobEndRow;  // firstRow where it has ended above the band, endRow where it goes on
    int endRow;
};

// Rows down to the blob's lowest pixel in the columns firstColumn .. endColumn - 1.
int deepestRun(const std::vector<int>& topRuns, int firstColumn, int endColumn) {
    int deepest = 0;
    for (int c = firstColumn; c < endColumn; ++c) deepest = std::max(deepest, topRuns[static_cast<std::size_t>(c)]);
    return deepest;
}

// Cuts the rows [0, endRow) into bands and calls `visit` with each longest stretch of each band. They are few, because
// most runs go on through a band or have ended above it.
template <class Visit>
void visitStretches(const std::vector<int>& topRuns, int firstColumn, int endColumn, int endRow, Visit visit) {
    int bandRow = 0;
    while (bandRow < endRow) {
        const int bandEndRow = bandRow + kernels::rowsOfBand(bandRow, endRow);
        const auto blobEndRow = [&](int c) {
            return std::clamp(topRuns[static_cast<std::size_t>(c)], bandRow, bandEndRow);
        };
        int first = firstColumn;
        while (first < endColumn) {
            int end = first;
            while (end < endColumn && blobEndRow(end) == blobEndRow(first)) ++end;
            visit(Stretch{first, end, bandRow, blobEndRow(first), bandEndRow});
            first = end;
        }
        bandRow = bandEndRow;
    }
}

// Sets the blob's pixels to 0 in the caller's image: this is meant.
void removeBlob(const MutableImageView& image, const std::vector<int>& topRuns) {
    visitStretches(topRuns, 0, image.width, deepestRun(topRuns, 0, image.width), [&](const Stretch& stretch) {
        for (int r = stretch.firstRow; r < stretch.blobEndRow; ++r)
            std::fill(image.row(r) + stretch.firstColumn, image.row(r) + stretch.endColumn, 0);
    });
}

// A band of columns around the blob's centre, from the top edge to below it, in the upper half of the image. The centre
// never lies in the lower one, for the blob hangs from the top edge.
void maskBand(int width, int height, BlobMask& mask) {
    std::int64_t count = 0;
    std::int64_t columnSum = 0;
    std::int64_t rowSum = 0;
    for (std::size_t c = 0; c < mask.topRuns.size(); ++c) {
        const std::int64_t run = mask.topRuns[c];
        count += run;
        columnSum += run * static_cast<std::int64_t>(c);
        rowSum += run * (run - 1) / 2;
    }
    if (count < kSmallestBlob) return;

    const std::int64_t centreColumn = columnSum / count;
    const int centreRow = static_cast<int>(rowSum / count);
    mask.bandFirstColumn = static_cast<int>(std::max<std::int64_t>(centreColumn - kBandHalfWidth, 0));
    mask.bandEndColumn = static_cast<int>(std::min<std::int64_t>(width - 1, centreColumn + kBandHalfWidth));
    mask.bandEndRow = std::min(centreRow + height / 6, height / 2);
}

// The grey range of each column, and then its threshold in the place of `largest`. Shared by the threads, each of which
// has its own columns.
struct GreyRanges {
    std::vector<unsigned char> smallest;
    std::vector<unsigned char> largest;

    explicit GreyRanges(std::size_t columns) : smallest(columns, 255), largest(columns, 0) {}

    // By the columns [firstColumn, endColumn) of the rows [firstRow, endRow); there may be none.
    void widen(const ImageView& src, int firstColumn, int endColumn, int firstRow, int endRow) {
        if (firstColumn == endColumn || firstRow == endRow) return;
        kernels::active().widenRanges(src.row(firstRow) + firstColumn, src.width, endColumn - firstColumn,
                                      endRow - firstRow, &smallest[static_cast<std::size_t>(firstColumn)],
                                      &largest[static_cast<std::size_t>(firstColumn)]);
    }
};

// By those of the pixels that lie outside the band: left of it, right of it and below it.
void widenOutsideBand(const ImageView& src, const BlobMask& mask, int firstColumn, int endColumn, int firstRow,
                      int endRow, GreyRanges& ranges) {
    const int bandFirstColumn = std::clamp(mask.bandFirstColumn, firstColumn, endColumn);
    const int bandEndColumn = std::clamp(mask.bandEndColumn, bandFirstColumn, endColumn);
    const int bandEndRow = std::clamp(mask.bandEndRow, firstRow, endRow);
    ranges.widen(src, firstColumn, bandFirstColumn, firstRow, bandEndRow);
    ranges.widen(src, bandEndColumn, endColumn, firstRow, bandEndRow);
    ranges.widen(src, firstColumn, endColumn, bandEndRow, endRow);
}

// The grey range of each column outside the mask: beside the blob band by band of rows, and below it all together.
void findRanges(const ImageView& src, const BlobMask& mask, int firstColumn, int endColumn, GreyRanges& ranges) {
    const int blobEndRow = deepestRun(mask.topRuns, firstColumn, endColumn);
    visitStretches(mask.topRuns, firstColumn, endColumn, blobEndRow, [&](const Stretch& stretch) {
        widenOutsideBand(src, mask, stretch.firstColumn, stretch.endColumn, stretch.blobEndRow, stretch.endRow, ranges);
    });
    widenOutsideBand(src, mask, firstColumn, endColumn, blobEndRow, src.height, ranges);
}

// Thresholds the columns firstColumn .. endColumn - 1.
void thresholdColumns(const ImageView& src, const BlobMask& mask, int firstColumn, int endColumn, GreyRanges& ranges,
                      unsigned char* out, int* labels) {
    findRanges(src, mask, firstColumn, endColumn, ranges);
    for (std::size_t c = static_cast<std::size_t>(firstColumn); c < static_cast<std::size_t>(endColumn); ++c) {
        const int smallest = ranges.smallest[c];
        const int largest = ranges.largest[c];
        ranges.largest[c] = static_cast<unsigned char>(std::max(smallest + (largest - smallest) / 2, kThresholdFloor));
    }

    // Masked pixels are selected like any other.
    const unsigned char* thresholds = ranges.largest.data() + firstColumn;
    kernels::active().copyAbove(src.bytes + firstColumn, src.width, endColumn - firstColumn, src.height, thresholds,
                                out + firstColumn, labels + firstColumn);
}

}  // namespace

void Otsu3(const AlgoContext& context, unsigned char* out, int* labels, unsigned char* src) {
    const MutableImageView image(context.roi, src);
    BlobMask mask;
    mask.topRuns.resize(static_cast<std::size_t>(image.width));
    GreyRanges ranges(static_cast<std::size_t>(image.width));

    // The blob, on the calling thread.
    measureTopRuns(image, mask.topRuns);
    removeBlob(image, mask.topRuns);
    maskBand(image.width, image.height, mask);

    // Four exact quarters: the last columns, up to three, are never thresholded. This is meant. Should a thread not
    // start, the first one's failure leaves as std::system_error; a later one's ends the process, for the threads
    // before it are destroyed unjoined.
    const ImageView cleaned(context.roi, src);
    const int quarter = image.width / kThreads;
    std::array<std::thread, kThreads> threads;
    for (int t = 0; t < kThreads; ++t) {
        threads[static_cast<std::size_t>(t)] = std::thread(
            [&, t] { thresholdColumns(cleaned, mask, t * quarter, (t + 1) * quarter, ranges, out, labels); });
    }
    for (std::thread& thread : threads) thread.join();
}

}  // namespace KORVANELASERALGO::image
