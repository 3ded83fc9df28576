// The largest pixel of each column above a floor. One maximum over a band decides whether a block holds anything above
// the floor; where it does not, which is nearly everywhere in a frame of one stripe, the column maxima are not touched.

#ifndef KORVANE_KERNELS_LANES_COLUMNMAXIMA_H
#define KORVANE_KERNELS_LANES_COLUMNMAXIMA_H

#include "kernels/lanes/Blocks.h"

namespace KORVANELASERALGO::kernels::KORVANE_KERNEL_SET {

inline void findColumnMaxima(const Byte* image, int width, int height, Byte floor, Byte* maxima, Byte* active) {
    if (width < kLane) return plain::findColumnMaxima(image, width, height, floor, maxima, active);
    const int blocks = blocksOf(width);
    const Bytes floors = Bytes::fill(floor);
    for (int b = 0; b < blocks; ++b) floors.store(maxima + Block(b, width).first);

    for (int r = 0; r < height; r += kBandRows) {
        const int rows = rowsOfBand(r, height);
        const int rowsBelow = rowsOfBand(r + rows, height);
        const Byte* band = image + static_cast<std::ptrdiff_t>(r) * width;
        for (int b = 0; b < blocks; ++b) {
            const Block block(b, width);
            prefetchBelow(band + block.first, width, rows, rowsBelow);
            const Bytes largest = maxOfRows(band + block.first, width, rows);
            const bool any = anyAboveLevel(largest, floors);
            *active++ = any ? 1 : 0;
            if (any) max(largest, Bytes::load(maxima + block.first)).store(maxima + block.first);
        }
    }
}

}  // namespace KORVANELASERALGO::kernels::KORVANE_KERNEL_SET

#endif  // KORVANE_KERNELS_LANES_COLUMNMAXIMA_H
