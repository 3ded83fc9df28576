// Number and sum of each column's pixels above a level. Only blocks with such a pixel are added up: what exceeds the
// level as a sum of a band, which fits 16 bits, and the level itself as often as it was exceeded.

#ifndef KORVANE_KERNELS_LANES_SUMABOVE_H
#define KORVANE_KERNELS_LANES_SUMABOVE_H

#include "kernels/lanes/Blocks.h"

namespace KORVANELASERALGO::kernels::KORVANE_KERNEL_SET {

// Adds a block of a band to the totals of columns `begin` .. 63 of the block.
inline void addBand(const Byte* pixels, int width, int rows, const Bytes& levels, Byte level, int begin,
                    ColumnSum* sums) {
    std::uint16_t exceeding[kLane] = {};
    std::uint8_t number[kLane] = {};
    for (int r = 0; r < rows; ++r, pixels += width) {
        Byte excess[kLane];
        subtract(Bytes::load(pixels), levels).store(excess);
        for (int i = 0; i < kLane; ++i) {
            exceeding[i] = static_cast<std::uint16_t>(exceeding[i] + excess[i]);
            number[i] = static_cast<std::uint8_t>(number[i] + (excess[i] != 0 ? 1 : 0));
        }
    }
    for (int i = begin; i < kLane; ++i) {
        sums[i].count += number[i];
        sums[i].sum += exceeding[i] + static_cast<std::uint32_t>(level) * number[i];
    }
}

inline void sumAbove(const Byte* image, int width, int height, Byte level, ColumnSum* sums) {
    if (width < kLane) return plain::sumAbove(image, width, height, level, sums);
    const int blocks = blocksOf(width);
    const Bytes levels = Bytes::fill(level);

    for (int r = 0; r < height; r += kBandRows) {
        const int rows = rowsOfBand(r, height);
        const int rowsBelow = rowsOfBand(r + rows, height);
        const Byte* band = image + static_cast<std::ptrdiff_t>(r) * width;
        for (int b = 0; b < blocks; ++b) {
            const Block block(b, width);
            const Byte* pixels = band + block.first;
            prefetchBelow(pixels, width, rows, rowsBelow);
            if (!anyAboveLevel(maxOfRows(pixels, width, rows), levels)) continue;
            addBand(pixels, width, rows, levels, level, lowestBit(block.owned), sums + block.first);
        }
    }
}

}  // namespace KORVANELASERALGO::kernels::KORVANE_KERNEL_SET

#endif  // KORVANE_KERNELS_LANES_SUMABOVE_H
