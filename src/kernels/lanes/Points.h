// Points in lanes: one of an image is two doubles x, y and one of a profile three doubles x, y, z, so as many points as
// a register holds doubles lie in two or three registers.

#ifndef KORVANE_KERNELS_LANES_POINTS_H
#define KORVANE_KERNELS_LANES_POINTS_H

#include "kernels/lanes/Doubles.h"

namespace KORVANELASERALGO::kernels::KORVANE_KERNEL_SET {

/// From and to x0 y0 x1 y1 ...
inline void loadPairs(const double* p, Doubles& x, Doubles& y) {
#if KORVANE_KERNEL_LEVEL == 3
    const __m512d first = _mm512_loadu_pd(p);
    const __m512d second = _mm512_loadu_pd(p + 8);
    x.lanes = _mm512_permutex2var_pd(first, _mm512_setr_epi64(0, 2, 4, 6, 8, 10, 12, 14), second);
    y.lanes = _mm512_permutex2var_pd(first, _mm512_setr_epi64(1, 3, 5, 7, 9, 11, 13, 15), second);
#elif KORVANE_KERNEL_LEVEL == 2
    const __m256d even = _mm256_insertf128_pd(_mm256_castpd128_pd256(_mm_loadu_pd(p)), _mm_loadu_pd(p + 4), 1);
    const __m256d odd = _mm256_insertf128_pd(_mm256_castpd128_pd256(_mm_loadu_pd(p + 2)), _mm_loadu_pd(p + 6), 1);
    x.lanes = _mm256_unpacklo_pd(even, odd);
    y.lanes = _mm256_unpackhi_pd(even, odd);
#else
    const __m128d first = _mm_loadu_pd(p);
    const __m128d second = _mm_loadu_pd(p + 2);
    x.lanes = _mm_unpacklo_pd(first, second);
    y.lanes = _mm_unpackhi_pd(first, second);
#endif
}
inline void storePairs(double* p, Doubles x, Doubles y) {
#if KORVANE_KERNEL_LEVEL == 3
    const __m512i low = _mm512_setr_epi64(0, 8, 1, 9, 2, 10, 3, 11);
    const __m512i high = _mm512_setr_epi64(4, 12, 5, 13, 6, 14, 7, 15);
    _mm512_storeu_pd(p, _mm512_permutex2var_pd(x.lanes, low, y.lanes));
    _mm512_storeu_pd(p + 8, _mm512_permutex2var_pd(x.lanes, high, y.lanes));
#elif KORVANE_KERNEL_LEVEL == 2
    const __m256d even = _mm256_unpacklo_pd(x.lanes, y.lanes);
    const __m256d odd = _mm256_unpackhi_pd(x.lanes, y.lanes);
    _mm256_storeu_pd(p, _mm256_permute2f128_pd(even, odd, 0x20));
    _mm256_storeu_pd(p + 4, _mm256_permute2f128_pd(even, odd, 0x31));
#else
    _mm_storeu_pd(p, _mm_unpacklo_pd(x.lanes, y.lanes));
    _mm_storeu_pd(p + 2, _mm_unpackhi_pd(x.lanes, y.lanes));
#endif
}

/// To x0 y0 z0 x1 y1 z1 ...
inline void storeTriples(double* p, Doubles x, Doubles y, Doubles z) {
#if KORVANE_KERNEL_LEVEL == 3
    // First x and y to their places, then z between them.
    const __m512d xy0 = _mm512_permutex2var_pd(x.lanes, _mm512_setr_epi64(0, 8, 0, 1, 9, 0, 2, 10), y.lanes);
    const __m512d xy1 = _mm512_permutex2var_pd(x.lanes, _mm512_setr_epi64(0, 3, 11, 0, 4, 12, 0, 5), y.lanes);
    const __m512d xy2 = _mm512_permutex2var_pd(x.lanes, _mm512_setr_epi64(13, 0, 6, 14, 0, 7, 15, 0), y.lanes);
    _mm512_storeu_pd(p, _mm512_permutex2var_pd(xy0, _mm512_setr_epi64(0, 1, 8, 3, 4, 9, 6, 7), z.lanes));
    _mm512_storeu_pd(p + 8, _mm512_permutex2var_pd(xy1, _mm512_setr_epi64(10, 1, 2, 11, 4, 5, 12, 7), z.lanes));
    _mm512_storeu_pd(p + 16, _mm512_permutex2var_pd(xy2, _mm512_setr_epi64(0, 13, 2, 3, 14, 5, 6, 15), z.lanes));
#elif KORVANE_KERNEL_LEVEL == 2
    // Of the points 0 and 2, and of their right neighbours.
    const __m256d xy = _mm256_unpacklo_pd(x.lanes, y.lanes);
    const __m256d zx = _mm256_shuffle_pd(z.lanes, x.lanes, 0xa);
    const __m256d yz = _mm256_unpackhi_pd(y.lanes, z.lanes);
    _mm256_storeu_pd(p, _mm256_permute2f128_pd(xy, zx, 0x20));
    _mm256_storeu_pd(p + 4, _mm256_permute2f128_pd(yz, xy, 0x30));
    _mm256_storeu_pd(p + 8, _mm256_permute2f128_pd(zx, yz, 0x31));
#else
    _mm_storeu_pd(p, _mm_unpacklo_pd(x.lanes, y.lanes));
    _mm_storeu_pd(p + 2, _mm_shuffle_pd(z.lanes, x.lanes, 2));
    _mm_storeu_pd(p + 4, _mm_unpackhi_pd(y.lanes, z.lanes));
#endif
}

struct XAndZ {
    Doubles x;
    Doubles z;
};

inline XAndZ loadPoints(const double* points) {
#if KORVANE_KERNEL_LEVEL == 3
    const __m512d a = _mm512_loadu_pd(points);
    const __m512d b = _mm512_loadu_pd(points + 8);
    const __m512d c = _mm512_loadu_pd(points + 16);
    // Lanes 0 .. 7 of the first operand, 8 .. 15 of the second.
    const __m512i xOfAb = _mm512_setr_epi64(0, 3, 6, 9, 12, 15, 0, 0);
    const __m512i xOfC = _mm512_setr_epi64(0, 1, 2, 3, 4, 5, 10, 13);
    const __m512i zOfAb = _mm512_setr_epi64(2, 5, 8, 11, 14, 0, 0, 0);
    const __m512i zOfC = _mm512_setr_epi64(0, 1, 2, 3, 4, 9, 12, 15);
    return {{_mm512_permutex2var_pd(_mm512_permutex2var_pd(a, xOfAb, b), xOfC, c)},
            {_mm512_permutex2var_pd(_mm512_permutex2var_pd(a, zOfAb, b), zOfC, c)}};
#elif KORVANE_KERNEL_LEVEL == 2
    const __m256d a = _mm256_loadu_pd(points);      // x0 y0 z0 x1
    const __m256d b = _mm256_loadu_pd(points + 4);  // y1 z1 x2 y2
    const __m256d c = _mm256_loadu_pd(points + 8);  // z2 x3 y3 z3
    const __m256d x = _mm256_blend_pd(_mm256_blend_pd(a, b, 4), c, 2);
    const __m256d z = _mm256_blend_pd(_mm256_blend_pd(a, b, 2), c, 9);
    return {{_mm256_permute4x64_pd(x, _MM_SHUFFLE(1, 2, 3, 0))}, {_mm256_permute4x64_pd(z, _MM_SHUFFLE(3, 0, 1, 2))}};
#else
    const __m128d a = _mm_loadu_pd(points);      // x0 y0
    const __m128d b = _mm_loadu_pd(points + 2);  // z0 x1
    const __m128d c = _mm_loadu_pd(points + 4);  // y1 z1
    return {{_mm_shuffle_pd(a, b, 2)}, {_mm_shuffle_pd(b, c, 2)}};
#endif
}

/// Points that are looked at together, in one lane or several.
inline constexpr std::size_t kGroupPoints = 8;
inline constexpr std::size_t kGroupLanes = kGroupPoints / Doubles::kCount;

struct PointGroup {
    XAndZ lanes[kGroupLanes];

    static PointGroup load(const double* points) {
        PointGroup group;
        for (std::size_t i = 0; i < kGroupLanes; ++i) group.lanes[i] = loadPoints(points + 3 * i * Doubles::kCount);
        return group;
    }

    bool allX() const {
        DoubleMask mask = notZero(lanes[0].x);
        for (std::size_t i = 1; i < kGroupLanes; ++i) mask = mask & notZero(lanes[i].x);
        return bitsOf(mask) == kAllDoubles;
    }
    bool allZ() const {
        DoubleMask mask = notZero(lanes[0].z);
        for (std::size_t i = 1; i < kGroupLanes; ++i) mask = mask & notZero(lanes[i].z);
        return bitsOf(mask) == kAllDoubles;
    }

    void storeX(double* p) const {
        for (std::size_t i = 0; i < kGroupLanes; ++i) lanes[i].x.store(p + i * Doubles::kCount);
    }
    void storeZ(double* p) const {
        for (std::size_t i = 0; i < kGroupLanes; ++i) lanes[i].z.store(p + i * Doubles::kCount);
    }
};

}  // namespace KORVANELASERALGO::kernels::KORVANE_KERNEL_SET

#endif  // KORVANE_KERNELS_LANES_POINTS_H
