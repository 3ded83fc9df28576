// Copies the pixels above their column's threshold. One maximum over a band decides whether a block holds any.

#ifndef KORVANE_KERNELS_LANES_COPYABOVE_H
#define KORVANE_KERNELS_LANES_COPYABOVE_H

#include "kernels/lanes/Blocks.h"

namespace KORVANELASERALGO::kernels::KORVANE_KERNEL_SET {

inline void copyAbove(const Byte* image, int stride, int columns, int rows, const Byte* thresholds, Byte* out,
                      int* labels) {
    if (columns < kLane) return plain::copyAbove(image, stride, columns, rows, thresholds, out, labels);
    const int blocks = blocksOf(columns);

    for (int r = 0; r < rows; r += kBandRows) {
        const int rowsHere = rowsOfBand(r, rows);
        const int rowsBelow = rowsOfBand(r + rowsHere, rows);
        for (int b = 0; b < blocks; ++b) {
            const int first = Block(b, columns).first;
            const std::ptrdiff_t start = static_cast<std::ptrdiff_t>(r) * stride + first;
            const Bytes threshold = Bytes::load(thresholds + first);
            prefetchBelow(image + start, stride, rowsHere, rowsBelow);
            if (!anyAbove(maxOfRows(image + start, stride, rowsHere), threshold)) continue;

            std::ptrdiff_t i = start;
            for (int row = 0; row < rowsHere; ++row, i += stride) {
                const Bytes pixels = Bytes::load(image + i);
                if (!anyAbove(pixels, threshold)) continue;
                pixels.storeAbove(out + i, threshold);
                if (labels == nullptr) continue;
                for (Mask rest = above(pixels, threshold); rest != 0; rest &= rest - 1) labels[i + lowestBit(rest)] = 1;
            }
        }
    }
}

}  // namespace KORVANELASERALGO::kernels::KORVANE_KERNEL_SET

#endif  // KORVANE_KERNELS_LANES_COPYABOVE_H
