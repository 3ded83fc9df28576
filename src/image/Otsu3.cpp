// Otsu3: removes a saturated blob that hangs from the top edge, then copies the pixels above half of each column's own
// grey range, in four threads. (The name promises a histogram; there is none.)

#include <algorithm>
#include <array>
#include <cstdint>
#include <thread>
#include <vector>

#include "algo/ImageView.h"
#include "image/image.h"

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
    bool anyGrows = true;
    for (int r = 0; r < image.height && anyGrows; ++r) {
        const unsigned char* row = image.row(r);
        anyGrows = false;
        for (std::size_t c = 0; c < topRuns.size(); ++c) {
            const bool grows = topRuns[c] == r && row[c] > kBlobLevel;
            topRuns[c] += grows ? 1 : 0;
            anyGrows |= grows;
        }
    }
    for (int& run : topRuns) run = run < kShortestTopRun ? 0 : run;
}

// Sets the blob's pixels to 0 in the caller's image: this is meant.
void removeBlob(const MutableImageView& image, const std::vector<int>& topRuns) {
    const int deepest = topRuns.empty() ? 0 : *std::max_element(topRuns.begin(), topRuns.end());
    for (int r = 0; r < deepest; ++r) {
        unsigned char* row = image.row(r);
        for (std::size_t c = 0; c < topRuns.size(); ++c) {
            if (r < topRuns[c]) row[c] = 0;
        }
    }
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

struct GreyRange {
    unsigned char largest = 0;
    unsigned char smallest = 255;
};

// Thresholds the columns firstColumn .. endColumn - 1. `ranges` has one entry per column of the image.
void thresholdColumns(const ImageView& src, const BlobMask& mask, int firstColumn, int endColumn, GreyRange* ranges,
                      unsigned char* out, int* labels) {
    // The grey range of each column outside the mask.
    for (int r = 0; r < src.height; ++r) {
        const unsigned char* row = src.row(r);
        const bool inBand = r < mask.bandEndRow;
        for (int c = firstColumn; c < endColumn; ++c) {
            if (r < mask.topRuns[static_cast<std::size_t>(c)]) continue;
            if (inBand && c >= mask.bandFirstColumn && c < mask.bandEndColumn) continue;
            ranges[c].largest = std::max(ranges[c].largest, row[c]);
            ranges[c].smallest = std::min(ranges[c].smallest, row[c]);
        }
    }

    // Masked pixels are selected like any other.
    for (int r = 0; r < src.height; ++r) {
        const std::ptrdiff_t start = static_cast<std::ptrdiff_t>(r) * src.width;
        const unsigned char* row = src.row(r);
        for (int c = firstColumn; c < endColumn; ++c) {
            const int largest = ranges[c].largest;
            const int smallest = ranges[c].smallest;
            if (row[c] <= std::max(smallest + (largest - smallest) / 2, kThresholdFloor)) continue;
            out[start + c] = row[c];
            labels[start + c] = 1;
        }
    }
}

}  // namespace

void Otsu3(const AlgoContext& context, unsigned char* out, int* labels, unsigned char* src) {
    const MutableImageView image(context.roi, src);
    BlobMask mask;
    mask.topRuns.assign(static_cast<std::size_t>(image.width), 0);
    std::vector<GreyRange> ranges(static_cast<std::size_t>(image.width));

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
            [&, t] { thresholdColumns(cleaned, mask, t * quarter, (t + 1) * quarter, ranges.data(), out, labels); });
    }
    for (std::thread& thread : threads) thread.join();
}

}  // namespace KORVANELASERALGO::image
