// Lanes of doubles, as many as one register of the set holds. Every operation is that of plain doubles on each number
// by itself, rounded alike; a comparison with not a number is false.

#ifndef KORVANE_KERNELS_LANES_DOUBLES_H
#define KORVANE_KERNELS_LANES_DOUBLES_H

#include <immintrin.h>

#include <cstddef>
#include <cstdint>

#include "kernels/kernels.h"

namespace KORVANELASERALGO::kernels::KORVANE_KERNEL_SET {

#if KORVANE_KERNEL_LEVEL == 3

struct DoubleMask {
    __mmask8 bits;

    /// Is each of as many bytes not 0?
    static DoubleMask ofBytes(const void* bytes) {
        const __m128i values = _mm_loadl_epi64(static_cast<const __m128i*>(bytes));
        return {static_cast<__mmask8>(_mm_test_epi8_mask(values, values))};
    }
};

struct Doubles {
    static constexpr int kCount = 8;
    __m512d lanes;

    static Doubles load(const double* p) { return {_mm512_loadu_pd(p)}; }
    static Doubles fill(double value) { return {_mm512_set1_pd(value)}; }
    void store(double* p) const { _mm512_storeu_pd(p, lanes); }
};

inline Doubles operator+(Doubles a, Doubles b) {
    return {_mm512_add_pd(a.lanes, b.lanes)};
}
inline Doubles operator-(Doubles a, Doubles b) {
    return {_mm512_sub_pd(a.lanes, b.lanes)};
}
inline Doubles operator*(Doubles a, Doubles b) {
    return {_mm512_mul_pd(a.lanes, b.lanes)};
}
inline Doubles operator/(Doubles a, Doubles b) {
    return {_mm512_div_pd(a.lanes, b.lanes)};
}
inline Doubles absolute(Doubles a) {
    return {_mm512_abs_pd(a.lanes)};
}
inline Doubles negated(Doubles a) {
    return {_mm512_xor_pd(a.lanes, _mm512_set1_pd(-0.0))};
}
// Two with masks of all lanes, because the forms without a mask make GCC 12 warn of uninitialised values.
inline Doubles squareRoot(Doubles a) {
    return {_mm512_maskz_sqrt_pd(0xff, a.lanes)};
}
/// Rounded to single precision and widened again.
inline Doubles throughSingle(Doubles a) {
    return {_mm512_maskz_cvtps_pd(0xff, _mm512_maskz_cvtpd_ps(0xff, a.lanes))};
}
inline DoubleMask less(Doubles a, Doubles b) {
    return {_mm512_cmp_pd_mask(a.lanes, b.lanes, _CMP_LT_OQ)};
}
inline DoubleMask notZero(Doubles a) {
    return {_mm512_cmp_pd_mask(a.lanes, _mm512_setzero_pd(), _CMP_NEQ_UQ)};
}
inline DoubleMask operator&(DoubleMask a, DoubleMask b) {
    return {static_cast<__mmask8>(a.bits & b.bits)};
}
inline DoubleMask operator|(DoubleMask a, DoubleMask b) {
    return {static_cast<__mmask8>(a.bits | b.bits)};
}
inline Doubles choose(DoubleMask mask, Doubles yes, Doubles no) {
    return {_mm512_mask_blend_pd(mask.bits, no.lanes, yes.lanes)};
}
/// Truncates toward zero; gives the smallest integer where there is no 32-bit integer.
inline void storeTruncated(std::int32_t* p, Doubles a) {
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(p), _mm512_cvttpd_epi32(a.lanes));
}
/// Each lane from the one below it, the lowest from the highest of `before`.
inline Doubles movedUp(Doubles before, Doubles a) {
    const __m512i moved = _mm512_alignr_epi64(_mm512_castpd_si512(a.lanes), _mm512_castpd_si512(before.lanes), 7);
    return {_mm512_castsi512_pd(moved)};
}
/// One bit per lane.
inline unsigned bitsOf(DoubleMask mask) {
    return mask.bits;
}
/// a + b where the mask is set, elsewhere a.
inline Doubles addWhere(DoubleMask mask, Doubles a, Doubles b) {
    return {_mm512_mask_add_pd(a.lanes, mask.bits, a.lanes, b.lanes)};
}

#elif KORVANE_KERNEL_LEVEL == 2

struct DoubleMask {
    __m256d lanes;

    static DoubleMask ofBytes(const void* bytes) {
        const __m256i values = _mm256_cvtepu8_epi64(_mm_loadu_si32(bytes));
        return {_mm256_castsi256_pd(_mm256_cmpgt_epi64(values, _mm256_setzero_si256()))};
    }
};

struct Doubles {
    static constexpr int kCount = 4;
    __m256d lanes;

    static Doubles load(const double* p) { return {_mm256_loadu_pd(p)}; }
    static Doubles fill(double value) { return {_mm256_set1_pd(value)}; }
    void store(double* p) const { _mm256_storeu_pd(p, lanes); }
};

inline Doubles operator+(Doubles a, Doubles b) {
    return {_mm256_add_pd(a.lanes, b.lanes)};
}
inline Doubles operator-(Doubles a, Doubles b) {
    return {_mm256_sub_pd(a.lanes, b.lanes)};
}
inline Doubles operator*(Doubles a, Doubles b) {
    return {_mm256_mul_pd(a.lanes, b.lanes)};
}
inline Doubles operator/(Doubles a, Doubles b) {
    return {_mm256_div_pd(a.lanes, b.lanes)};
}
inline Doubles absolute(Doubles a) {
    return {_mm256_andnot_pd(_mm256_set1_pd(-0.0), a.lanes)};
}
inline Doubles negated(Doubles a) {
    return {_mm256_xor_pd(a.lanes, _mm256_set1_pd(-0.0))};
}
inline Doubles squareRoot(Doubles a) {
    return {_mm256_sqrt_pd(a.lanes)};
}
inline Doubles throughSingle(Doubles a) {
    return {_mm256_cvtps_pd(_mm256_cvtpd_ps(a.lanes))};
}
inline DoubleMask less(Doubles a, Doubles b) {
    return {_mm256_cmp_pd(a.lanes, b.lanes, _CMP_LT_OQ)};
}
inline DoubleMask notZero(Doubles a) {
    return {_mm256_cmp_pd(a.lanes, _mm256_setzero_pd(), _CMP_NEQ_UQ)};
}
inline DoubleMask operator&(DoubleMask a, DoubleMask b) {
    return {_mm256_and_pd(a.lanes, b.lanes)};
}
inline DoubleMask operator|(DoubleMask a, DoubleMask b) {
    return {_mm256_or_pd(a.lanes, b.lanes)};
}
inline Doubles choose(DoubleMask mask, Doubles yes, Doubles no) {
    return {_mm256_blendv_pd(no.lanes, yes.lanes, mask.lanes)};
}
inline void storeTruncated(std::int32_t* p, Doubles a) {
    _mm_storeu_si128(reinterpret_cast<__m128i*>(p), _mm256_cvttpd_epi32(a.lanes));
}
inline Doubles movedUp(Doubles before, Doubles a) {
    const __m256d middle = _mm256_permute2f128_pd(before.lanes, a.lanes, 0x21);
    return {_mm256_shuffle_pd(middle, a.lanes, 5)};
}
inline unsigned bitsOf(DoubleMask mask) {
    return static_cast<unsigned>(_mm256_movemask_pd(mask.lanes));
}
// A sum from +0.0 on is never -0.0, so the added +0.0 changes nothing.
inline Doubles addWhere(DoubleMask mask, Doubles a, Doubles b) {
    return {_mm256_add_pd(a.lanes, _mm256_and_pd(mask.lanes, b.lanes))};
}

#else

struct DoubleMask {
    __m128d lanes;

    static DoubleMask ofBytes(const void* bytes) {
        const std::uint8_t* values = static_cast<const std::uint8_t*>(bytes);
        return {_mm_castsi128_pd(_mm_set_epi64x(values[1] != 0 ? -1 : 0, values[0] != 0 ? -1 : 0))};
    }
};

struct Doubles {
    static constexpr int kCount = 2;
    __m128d lanes;

    static Doubles load(const double* p) { return {_mm_loadu_pd(p)}; }
    static Doubles fill(double value) { return {_mm_set1_pd(value)}; }
    void store(double* p) const { _mm_storeu_pd(p, lanes); }
};

inline Doubles operator+(Doubles a, Doubles b) {
    return {_mm_add_pd(a.lanes, b.lanes)};
}
inline Doubles operator-(Doubles a, Doubles b) {
    return {_mm_sub_pd(a.lanes, b.lanes)};
}
inline Doubles operator*(Doubles a, Doubles b) {
    return {_mm_mul_pd(a.lanes, b.lanes)};
}
inline Doubles operator/(Doubles a, Doubles b) {
    return {_mm_div_pd(a.lanes, b.lanes)};
}
inline Doubles absolute(Doubles a) {
    return {_mm_andnot_pd(_mm_set1_pd(-0.0), a.lanes)};
}
inline Doubles negated(Doubles a) {
    return {_mm_xor_pd(a.lanes, _mm_set1_pd(-0.0))};
}
inline Doubles squareRoot(Doubles a) {
    return {_mm_sqrt_pd(a.lanes)};
}
inline Doubles throughSingle(Doubles a) {
    return {_mm_cvtps_pd(_mm_cvtpd_ps(a.lanes))};
}
inline DoubleMask less(Doubles a, Doubles b) {
    return {_mm_cmplt_pd(a.lanes, b.lanes)};
}
inline DoubleMask notZero(Doubles a) {
    return {_mm_cmpneq_pd(a.lanes, _mm_setzero_pd())};
}
inline DoubleMask operator&(DoubleMask a, DoubleMask b) {
    return {_mm_and_pd(a.lanes, b.lanes)};
}
inline DoubleMask operator|(DoubleMask a, DoubleMask b) {
    return {_mm_or_pd(a.lanes, b.lanes)};
}
inline Doubles choose(DoubleMask mask, Doubles yes, Doubles no) {
    return {_mm_or_pd(_mm_and_pd(mask.lanes, yes.lanes), _mm_andnot_pd(mask.lanes, no.lanes))};
}
inline void storeTruncated(std::int32_t* p, Doubles a) {
    _mm_storel_epi64(reinterpret_cast<__m128i*>(p), _mm_cvttpd_epi32(a.lanes));
}
inline Doubles movedUp(Doubles before, Doubles a) {
    return {_mm_shuffle_pd(before.lanes, a.lanes, 1)};
}
inline unsigned bitsOf(DoubleMask mask) {
    return static_cast<unsigned>(_mm_movemask_pd(mask.lanes));
}
inline Doubles addWhere(DoubleMask mask, Doubles a, Doubles b) {
    return {_mm_add_pd(a.lanes, _mm_and_pd(mask.lanes, b.lanes))};
}

#endif

inline constexpr unsigned kAllDoubles = (1u << Doubles::kCount) - 1;

/// Of one bit per lane.
inline std::size_t countBits(unsigned bits) {
#if KORVANE_KERNEL_LEVEL > 1
    return static_cast<std::size_t>(_mm_popcnt_u32(bits));
#else
    return (bits & 1) + (bits >> 1);
#endif
}

/// Are `count` values, and those behind them up to a full lane, within `distance` of `centre`? Not a number is not.
inline bool allWithin(const double* values, std::size_t count, double centre, double distance) {
    const Doubles middle = Doubles::fill(centre);
    const Doubles limit = Doubles::fill(distance);
    DoubleMask within = less(absolute(Doubles::load(values) - middle), limit);
    for (std::size_t i = Doubles::kCount; i < count; i += Doubles::kCount)
        within = within & less(absolute(Doubles::load(values + i) - middle), limit);
    return bitsOf(within) == kAllDoubles;
}

}  // namespace KORVANELASERALGO::kernels::KORVANE_KERNEL_SET

#endif  // KORVANE_KERNELS_LANES_DOUBLES_H
