// The smallest and the largest pixel of each column, band by band.

#ifndef KORVANE_KERNELS_LANES_GREYRANGES_H
#define KORVANE_KERNELS_LANES_GREYRANGES_H

#include "kernels/lanes/Blocks.h"

namespace KORVANELASERALGO::kernels::KORVANE_KERNEL_SET {

inline void widenRanges(const Byte* image, int stride, int columns, int rows, Byte* smallest, Byte* largest) {
    if (columns < kLane) return plain::widenRanges(image, stride, columns, rows, smallest, largest);
    const int blocks = blocksOf(columns);

    for (int r = 0; r < rows; r += kBandRows) {
        const int rowsHere = rowsOfBand(r, rows);
        const int rowsBelow = rowsOfBand(r + rowsHere, rows);
        const Byte* band = image + static_cast<std::ptrdiff_t>(r) * stride;
        for (int b = 0; b < blocks; ++b) {
            const int first = Block(b, columns).first;
            const Byte* pixels = band + first;
            prefetchBelow(pixels, stride, rowsHere, rowsBelow);
            Bytes low = Bytes::load(smallest + first);
            Bytes high = Bytes::load(largest + first);
            for (int row = 0; row < rowsHere; ++row, pixels += stride) {
                low = min(low, Bytes::load(pixels));
                high = max(high, Bytes::load(pixels));
            }
            low.store(smallest + first);
            high.store(largest + first);
        }
    }
}

}  // namespace KORVANELASERALGO::kernels::KORVANE_KERNEL_SET

#endif  // KORVANE_KERNELS_LANES_GREYRANGES_H
