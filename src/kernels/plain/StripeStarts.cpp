#include <algorithm>

#include "kernels/plain/plain.h"

namespace KORVANELASERALGO::kernels::plain {

void findStripeStarts(const unsigned char* image, int width, int firstColumn, int endColumn, int firstRow, int endRow,
                      const int* thresholds, int* starts) {
    std::fill(starts + firstColumn, starts + endColumn, kNoStripe);

    int missing = endColumn - firstColumn;
    for (int r = firstRow; r < endRow && missing > 0; ++r) {
        const unsigned char* row = image + static_cast<std::ptrdiff_t>(r) * width;
        const unsigned char* above = row - width;
        const unsigned char* below = row + width;
        for (int c = firstColumn; c < endColumn; ++c) {
            const int threshold = thresholds[c];
            if (starts[c] != kNoStripe || row[c] <= threshold) continue;
            const bool supported = above[c + 1] > threshold || row[c + 1] > threshold || below[c + 1] > threshold ||
                                   above[c] > threshold || below[c] > threshold;
            const bool darkerThanBoth = row[c] < above[c] && row[c] < below[c];
            if (!supported || darkerThanBoth) continue;
            starts[c] = r;
            --missing;
        }
    }
}

}  // namespace KORVANELASERALGO::kernels::plain
