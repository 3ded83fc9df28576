// How a row is cut into lanes, and an image into bands.

#ifndef KORVANE_KERNELS_LANES_BLOCKS_H
#define KORVANE_KERNELS_LANES_BLOCKS_H

#include "kernels/kernels.h"
#include "kernels/lanes/Bytes.h"
#include "kernels/plain/plain.h"

namespace KORVANELASERALGO::kernels::KORVANE_KERNEL_SET {

/// Rows of the band that begins at a row.
inline int rowsOfBand(int row, int endRow) {
    return endRow - row < kBandRows ? endRow - row : kBandRows;
}

/// A lane's columns. The last lane of a row ends at its last column and may overlap the one before; it owns the columns
/// that the others do not. Rows are at least one lane wide.
struct Block {
    int first;  ///< column
    Mask owned;

    Block(int index, int width) : first(index * kLane), owned(~Mask{0}) {
        const int overlap = first + kLane - width;
        if (overlap <= 0) return;
        first -= overlap;
        owned <<= overlap;
    }
};

inline Bytes maxOfRows(const Byte* pixels, int width, int rows) {
    Bytes result = Bytes::load(pixels);
    for (int r = 1; r < rows; ++r) result = max(result, Bytes::load(pixels + static_cast<std::ptrdiff_t>(r) * width));
    return result;
}

inline Bytes minOfRows(const Byte* pixels, int width, int rows) {
    Bytes result = Bytes::load(pixels);
    for (int r = 1; r < rows; ++r) result = min(result, Bytes::load(pixels + static_cast<std::ptrdiff_t>(r) * width));
    return result;
}

}  // namespace KORVANELASERALGO::kernels::KORVANE_KERNEL_SET

#endif  // KORVANE_KERNELS_LANES_BLOCKS_H
