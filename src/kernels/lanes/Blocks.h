// How a row is cut into lanes, and an image into bands.

#ifndef KORVANE_KERNELS_LANES_BLOCKS_H
#define KORVANE_KERNELS_LANES_BLOCKS_H

#include "kernels/kernels.h"
#include "kernels/lanes/Bytes.h"
#include "kernels/plain/plain.h"

namespace KORVANELASERALGO::kernels::KORVANE_KERNEL_SET {

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

/// Combines the same lane of several rows. A whole band is spelled out, so that it stays in registers.
template <class Operation>
inline Bytes ofRows(const Byte* pixels, int width, int rows, Operation combine) {
    Bytes result = Bytes::load(pixels);
    if (rows == kBandRows) {
        for (int r = 1; r < kBandRows; ++r) result = combine(result, Bytes::load(pixels += width));
    } else {
        for (int r = 1; r < rows; ++r) result = combine(result, Bytes::load(pixels += width));
    }
    return result;
}

/// Asks for the same lane of the band below. The processor foresees a sweep along one row, not one along eight at once:
/// with narrow registers, a pass over a dark frame takes nearly twice its time without.
inline void prefetchBelow(const Byte* pixels, int width, int rows, int rowsBelow) {
    if (rowsBelow < kBandRows) return;
    pixels += static_cast<std::ptrdiff_t>(rows) * width;
    for (int r = 0; r < kBandRows; ++r, pixels += width) prefetch(pixels);
}

inline Bytes maxOfRows(const Byte* pixels, int width, int rows) {
    return ofRows(pixels, width, rows, [](const Bytes& a, const Bytes& b) { return max(a, b); });
}

inline Bytes minOfRows(const Byte* pixels, int width, int rows) {
    return ofRows(pixels, width, rows, [](const Bytes& a, const Bytes& b) { return min(a, b); });
}

}  // namespace KORVANELASERALGO::kernels::KORVANE_KERNEL_SET

#endif  // KORVANE_KERNELS_LANES_BLOCKS_H
