// The points of a profile in lanes: a point is three doubles x, y, z, so as many points as a register holds doubles lie
// in three registers.

#ifndef KORVANE_KERNELS_LANES_POINTS_H
#define KORVANE_KERNELS_LANES_POINTS_H

#include "kernels/lanes/Doubles.h"

namespace KORVANELASERALGO::kernels::KORVANE_KERNEL_SET {

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
