// A copy, and the largest pixel of each column while the pixels are at hand.

#ifndef KORVANE_KERNELS_LANES_COPYWITHMAXIMA_H
#define KORVANE_KERNELS_LANES_COPYWITHMAXIMA_H

#include "kernels/lanes/Blocks.h"

namespace KORVANELASERALGO::kernels::KORVANE_KERNEL_SET {

inline void copyWithMaxima(const Byte* image, int width, int height, Byte* out, Byte* maxima) {
    if (width < kLane) return plain::copyWithMaxima(image, width, height, out, maxima);
    const int blocks = blocksOf(width);
    for (int b = 0; b < blocks; ++b) Bytes::fill(0).store(maxima + Block(b, width).first);

    for (int r = 0; r < height; r += kBandRows) {
        const int rows = rowsOfBand(r, height);
        for (int b = 0; b < blocks; ++b) {
            const int first = Block(b, width).first;
            Bytes largest = Bytes::load(maxima + first);
            std::ptrdiff_t i = static_cast<std::ptrdiff_t>(r) * width + first;
            for (int row = 0; row < rows; ++row, i += width) {
                const Bytes pixels = Bytes::load(image + i);
                pixels.store(out + i);
                largest = max(largest, pixels);
            }
            largest.store(maxima + first);
        }
    }
}

}  // namespace KORVANELASERALGO::kernels::KORVANE_KERNEL_SET

#endif  // KORVANE_KERNELS_LANES_COPYWITHMAXIMA_H
