// Blocks of 16 x 16 pixels with rows and columns exchanged, in instructions that every set has.

#ifndef KORVANE_KERNELS_LANES_TRANSPOSE_H
#define KORVANE_KERNELS_LANES_TRANSPOSE_H

#include <emmintrin.h>

#include "kernels/lanes/Bytes.h"

namespace KORVANELASERALGO::kernels::KORVANE_KERNEL_SET {

inline constexpr int kSquare = 16;  // pixels

/// Of fewer than 16 rows, the last one is read in the place of the missing ones; only `toRows` rows are written.
inline void transposeSquare(const Byte* from, std::ptrdiff_t fromStride, int fromRows, Byte* to,
                            std::ptrdiff_t toStride, int toRows) {
    __m128i rows[kSquare];
    for (int i = 0; i < kSquare; ++i) {
        const int row = i < fromRows ? i : fromRows - 1;
        rows[i] = _mm_loadu_si128(reinterpret_cast<const __m128i*>(from + row * fromStride));
    }
    // Dealing the lower half of the rows between the upper half, four times, exchanges rows and columns.
    for (int step = 0; step < 4; ++step) {
        __m128i dealt[kSquare];
        for (std::ptrdiff_t i = 0; i < kSquare / 2; ++i) {
            dealt[2 * i] = _mm_unpacklo_epi8(rows[i], rows[i + kSquare / 2]);
            dealt[2 * i + 1] = _mm_unpackhi_epi8(rows[i], rows[i + kSquare / 2]);
        }
        for (int i = 0; i < kSquare; ++i) rows[i] = dealt[i];
    }
    for (int i = 0; i < kSquare && i < toRows; ++i, to += toStride)
        _mm_storeu_si128(reinterpret_cast<__m128i*>(to), rows[i]);
}

}  // namespace KORVANELASERALGO::kernels::KORVANE_KERNEL_SET

#endif  // KORVANE_KERNELS_LANES_TRANSPOSE_H
