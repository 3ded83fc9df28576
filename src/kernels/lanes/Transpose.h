// Strips of 32 rows turned by 90 degrees, 16 columns at a time, and back.

#ifndef KORVANE_KERNELS_LANES_TRANSPOSE_H
#define KORVANE_KERNELS_LANES_TRANSPOSE_H

#include "kernels/lanes/Bytes.h"

namespace KORVANELASERALGO::kernels::KORVANE_KERNEL_SET {

inline constexpr int kStripRows = 32;
inline constexpr int kSquare = 16;  // pixels

/// The strip's pixels in one column.
struct TurnedColumn {
    Byte rows[kStripRows];
};

// A register holds 16 pixels of a row of the upper square, and of the lower one where there is room: 32 pixels of a
// turned column. Dealing the second half of the registers between the first half, four times, exchanges rows and
// columns.
#if KORVANE_KERNEL_LEVEL >= 2
using SquareRows = __m256i;
inline constexpr int kRegisterRows = 32;
inline __m256i loadRows(const Byte* upper, const Byte* lower) {
    return _mm256_inserti128_si256(_mm256_castsi128_si256(_mm_loadu_si128(reinterpret_cast<const __m128i*>(upper))),
                                   _mm_loadu_si128(reinterpret_cast<const __m128i*>(lower)), 1);
}
inline void storeRows(Byte* upper, Byte* lower, __m256i rows) {
    _mm_storeu_si128(reinterpret_cast<__m128i*>(upper), _mm256_castsi256_si128(rows));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(lower), _mm256_extracti128_si256(rows, 1));
}
inline __m256i loadColumn(const Byte* p) {
    return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(p));
}
inline void storeColumn(Byte* p, __m256i column) {
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(p), column);
}
inline __m256i dealLower(__m256i a, __m256i b) {
    return _mm256_unpacklo_epi8(a, b);
}
inline __m256i dealUpper(__m256i a, __m256i b) {
    return _mm256_unpackhi_epi8(a, b);
}
#else
using SquareRows = __m128i;
inline constexpr int kRegisterRows = 16;
inline __m128i loadRows(const Byte* row, const Byte*) {
    return _mm_loadu_si128(reinterpret_cast<const __m128i*>(row));
}
inline void storeRows(Byte* row, Byte*, __m128i pixels) {
    _mm_storeu_si128(reinterpret_cast<__m128i*>(row), pixels);
}
inline __m128i loadColumn(const Byte* p) {
    return _mm_loadu_si128(reinterpret_cast<const __m128i*>(p));
}
inline void storeColumn(Byte* p, __m128i column) {
    _mm_storeu_si128(reinterpret_cast<__m128i*>(p), column);
}
inline __m128i dealLower(__m128i a, __m128i b) {
    return _mm_unpacklo_epi8(a, b);
}
inline __m128i dealUpper(__m128i a, __m128i b) {
    return _mm_unpackhi_epi8(a, b);
}
#endif

inline void transposeSquares(SquareRows* rows) {
    for (int step = 0; step < 4; ++step) {
        SquareRows dealt[kSquare];
        for (std::ptrdiff_t i = 0; i < kSquare / 2; ++i) {
            dealt[2 * i] = dealLower(rows[i], rows[i + kSquare / 2]);
            dealt[2 * i + 1] = dealUpper(rows[i], rows[i + kSquare / 2]);
        }
        for (int i = 0; i < kSquare; ++i) rows[i] = dealt[i];
    }
}

/// Turns `count` columns from `first` on, of the strip's rows.
inline void turnColumns(const Byte* const* rows, int first, int count, TurnedColumn* turned) {
    int c = 0;
    for (; c + kSquare <= count; c += kSquare) {
        for (int r = 0; r < kStripRows; r += kRegisterRows) {
            SquareRows squares[kSquare];
            for (int i = 0; i < kSquare; ++i)
                squares[i] = loadRows(rows[r + i] + first + c, rows[i + kSquare] + first + c);
            transposeSquares(squares);
            for (int i = 0; i < kSquare; ++i) storeColumn(turned[c + i].rows + r, squares[i]);
        }
    }
    for (; c < count; ++c) {
        for (int r = 0; r < kStripRows; ++r) turned[c].rows[r] = rows[r][first + c];
    }
}

/// Turns them back.
inline void turnBack(const TurnedColumn* turned, int first, int count, Byte* const* rows) {
    int c = 0;
    for (; c + kSquare <= count; c += kSquare) {
        for (int r = 0; r < kStripRows; r += kRegisterRows) {
            SquareRows squares[kSquare];
            for (int i = 0; i < kSquare; ++i) squares[i] = loadColumn(turned[c + i].rows + r);
            transposeSquares(squares);
            for (int i = 0; i < kSquare; ++i)
                storeRows(rows[r + i] + first + c, rows[i + kSquare] + first + c, squares[i]);
        }
    }
    for (; c < count; ++c) {
        for (int r = 0; r < kStripRows; ++r) rows[r][first + c] = turned[c].rows[r];
    }
}

}  // namespace KORVANELASERALGO::kernels::KORVANE_KERNEL_SET

#endif  // KORVANE_KERNELS_LANES_TRANSPOSE_H
