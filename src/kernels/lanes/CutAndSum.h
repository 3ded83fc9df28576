// Cuts an image at a threshold and adds up what remains, column by column. A block without a remaining pixel is only
// cleared. Elsewhere the lanes are columns and the rows come in order, so each column's sum of rounded moments is the
// plain one; a row and a grey value are exact in single precision, so their product is rounded once, as the integer
// product is when it is converted.

#ifndef KORVANE_KERNELS_LANES_CUTANDSUM_H
#define KORVANE_KERNELS_LANES_CUTANDSUM_H

#include "kernels/lanes/Blocks.h"

namespace KORVANELASERALGO::kernels::KORVANE_KERNEL_SET {

inline void cutAndSumRow(Byte* pixels, int row, Byte threshold, int begin, std::uint32_t* sums, float* moments) {
    const float rowNumber = static_cast<float>(row);
    for (int i = begin; i < kLane; ++i) {
        const Byte grey = pixels[i] < threshold ? Byte{0} : pixels[i];
        pixels[i] = grey;
        sums[i] += grey;
        moments[i] += rowNumber * static_cast<float>(grey);
    }
}

inline void cutAndSum(Byte* image, int width, int height, int threshold, std::uint32_t* sums, float* moments) {
    if (width < kLane || threshold > 255) return plain::cutAndSum(image, width, height, threshold, sums, moments);
    const int blocks = blocksOf(width);
    // A pixel of 0 counts for nothing, whatever the threshold.
    const Byte least = static_cast<Byte>(threshold < 1 ? 1 : threshold);
    const Bytes leasts = Bytes::fill(least);
    const Bytes black = Bytes::fill(0);

    for (int r = 0; r < height; r += kBandRows) {
        const int rows = rowsOfBand(r, height);
        Byte* band = image + static_cast<std::ptrdiff_t>(r) * width;
        for (int b = 0; b < blocks; ++b) {
            const Block block(b, width);
            Byte* pixels = band + block.first;
            if (atLeast(maxOfRows(pixels, width, rows), leasts) == 0) {
                for (int i = 0; i < rows; ++i) black.store(pixels + static_cast<std::ptrdiff_t>(i) * width);
                continue;
            }
            for (int i = 0; i < rows; ++i)
                cutAndSumRow(pixels + static_cast<std::ptrdiff_t>(i) * width, r + i, least, lowestBit(block.owned),
                             sums + block.first, moments + block.first);
        }
    }
}

}  // namespace KORVANELASERALGO::kernels::KORVANE_KERNEL_SET

#endif  // KORVANE_KERNELS_LANES_CUTANDSUM_H
