// Cuts an image at a threshold and adds up what remains, column by column. A block without a remaining pixel is only
// cleared. Elsewhere the lanes are columns and the rows come in order, so each column's sum of rounded moments is the
// plain one; a row and a grey value are exact in single precision, so their product is rounded once, as the integer
// product is when it is converted.

#ifndef KORVANE_KERNELS_LANES_CUTANDSUM_H
#define KORVANE_KERNELS_LANES_CUTANDSUM_H

#include "kernels/lanes/Blocks.h"

namespace KORVANELASERALGO::kernels::KORVANE_KERNEL_SET {

// Cuts a block of a band and adds its columns begin .. 63 to the totals.
inline void cutAndSumBlock(Byte* pixels, int width, int firstRow, int rows, const Bytes& least, int begin,
                           std::uint32_t* sums, float* moments) {
    // Arrays of its own, which no pixel can alias.
    std::uint16_t sum[kLane] = {};
    float moment[kLane] = {};
    for (int i = begin; i < kLane; ++i) moment[i] = moments[i];
    for (int r = firstRow; r < firstRow + rows; ++r, pixels += width) {
        const Bytes cut = keepAtLeast(Bytes::load(pixels), least);
        cut.store(pixels);
        Byte grey[kLane];
        cut.store(grey);
        const float row = static_cast<float>(r);
        for (int i = 0; i < kLane; ++i) {
            sum[i] = static_cast<std::uint16_t>(sum[i] + grey[i]);
            moment[i] += row * static_cast<float>(grey[i]);
        }
    }
    for (int i = begin; i < kLane; ++i) {
        sums[i] += sum[i];
        moments[i] = moment[i];
    }
}

inline void cutAndSum(Byte* image, int width, int height, int threshold, std::uint32_t* sums, float* moments) {
    constexpr int kExactRows = 1 << 24;
    if (width < kLane || height > kExactRows || threshold > 255)
        return plain::cutAndSum(image, width, height, threshold, sums, moments);
    const int blocks = blocksOf(width);
    // A pixel of 0 counts for nothing, whatever the threshold.
    const Byte leastGrey = static_cast<Byte>(threshold < 1 ? 1 : threshold);
    const Bytes least = Bytes::fill(leastGrey);
    const Bytes largestCut = Bytes::fill(static_cast<Byte>(leastGrey - 1));
    const Bytes black = Bytes::fill(0);

    for (int r = 0; r < height; r += kBandRows) {
        const int rows = rowsOfBand(r, height);
        Byte* band = image + static_cast<std::ptrdiff_t>(r) * width;
        for (int b = 0; b < blocks; ++b) {
            const Block block(b, width);
            Byte* pixels = band + block.first;
            if (!anyAbove(maxOfRows(pixels, width, rows), largestCut)) {
                for (int i = 0; i < rows; ++i) black.store(pixels + static_cast<std::ptrdiff_t>(i) * width);
                continue;
            }
            cutAndSumBlock(pixels, width, r, rows, least, lowestBit(block.owned), sums + block.first,
                           moments + block.first);
        }
    }
}

}  // namespace KORVANELASERALGO::kernels::KORVANE_KERNEL_SET

#endif  // KORVANE_KERNELS_LANES_CUTANDSUM_H
