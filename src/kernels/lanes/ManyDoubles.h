// Lanes of doubles: four registers of the set that is compiled for, so that the latency of a division or a square root
// is hidden behind the other registers'. Every operation is that of plain doubles on each number by itself, rounded
// alike.

#ifndef KORVANE_KERNELS_LANES_MANYDOUBLES_H
#define KORVANE_KERNELS_LANES_MANYDOUBLES_H

#include <immintrin.h>

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace KORVANELASERALGO::kernels::KORVANE_KERNEL_SET {

#if KORVANE_KERNEL_LEVEL == 3
using DoubleRegister = __m512d;
using FlagRegister = __mmask8;
inline constexpr FlagRegister kAll = 0xff;  // for operations whose plain form GCC 12 takes for a use before setting
inline DoubleRegister fillDoubles(double value) {
    return _mm512_set1_pd(value);
}
inline DoubleRegister add(DoubleRegister a, DoubleRegister b) {
    return _mm512_add_pd(a, b);
}
inline DoubleRegister subtract(DoubleRegister a, DoubleRegister b) {
    return _mm512_sub_pd(a, b);
}
inline DoubleRegister multiply(DoubleRegister a, DoubleRegister b) {
    return _mm512_mul_pd(a, b);
}
inline DoubleRegister divide(DoubleRegister a, DoubleRegister b) {
    return _mm512_div_pd(a, b);
}
inline DoubleRegister squareRoot(DoubleRegister a) {
    return _mm512_maskz_sqrt_pd(kAll, a);
}
inline DoubleRegister negated(DoubleRegister a) {
    return _mm512_xor_pd(a, fillDoubles(-0.0));
}
inline DoubleRegister throughSingle(DoubleRegister a) {
    return _mm512_maskz_cvtps_pd(kAll, _mm512_maskz_cvtpd_ps(kAll, a));
}
inline FlagRegister below(DoubleRegister a, DoubleRegister b) {
    return _mm512_cmp_pd_mask(a, b, _CMP_LT_OQ);
}
inline FlagRegister loadFlags(const void* bytes) {
    const __m128i values = _mm_loadl_epi64(static_cast<const __m128i*>(bytes));
    return static_cast<FlagRegister>(_mm_test_epi8_mask(values, values));
}
inline FlagRegister both(FlagRegister a, FlagRegister b) {
    return static_cast<FlagRegister>(a & b);
}
inline FlagRegister either(FlagRegister a, FlagRegister b) {
    return static_cast<FlagRegister>(a | b);
}
inline bool allFlags(FlagRegister flags) {
    return flags == kAll;
}
inline DoubleRegister choose(FlagRegister flags, DoubleRegister yes, DoubleRegister no) {
    return _mm512_mask_blend_pd(flags, no, yes);
}
inline void loadPairs(const double* p, DoubleRegister& x, DoubleRegister& y) {
    const __m512d first = _mm512_loadu_pd(p);
    const __m512d second = _mm512_loadu_pd(p + 8);
    x = _mm512_permutex2var_pd(first, _mm512_setr_epi64(0, 2, 4, 6, 8, 10, 12, 14), second);
    y = _mm512_permutex2var_pd(first, _mm512_setr_epi64(1, 3, 5, 7, 9, 11, 13, 15), second);
}
inline void storePairs(double* p, DoubleRegister x, DoubleRegister y) {
    _mm512_storeu_pd(p, _mm512_permutex2var_pd(x, _mm512_setr_epi64(0, 8, 1, 9, 2, 10, 3, 11), y));
    _mm512_storeu_pd(p + 8, _mm512_permutex2var_pd(x, _mm512_setr_epi64(4, 12, 5, 13, 6, 14, 7, 15), y));
}
inline void storeTriples(double* p, DoubleRegister x, DoubleRegister y, DoubleRegister z) {
    // First x and y to their places, then z between them.
    const __m512d xy0 = _mm512_permutex2var_pd(x, _mm512_setr_epi64(0, 8, 0, 1, 9, 0, 2, 10), y);
    const __m512d xy1 = _mm512_permutex2var_pd(x, _mm512_setr_epi64(0, 3, 11, 0, 4, 12, 0, 5), y);
    const __m512d xy2 = _mm512_permutex2var_pd(x, _mm512_setr_epi64(13, 0, 6, 14, 0, 7, 15, 0), y);
    _mm512_storeu_pd(p, _mm512_permutex2var_pd(xy0, _mm512_setr_epi64(0, 1, 8, 3, 4, 9, 6, 7), z));
    _mm512_storeu_pd(p + 8, _mm512_permutex2var_pd(xy1, _mm512_setr_epi64(10, 1, 2, 11, 4, 5, 12, 7), z));
    _mm512_storeu_pd(p + 16, _mm512_permutex2var_pd(xy2, _mm512_setr_epi64(0, 13, 2, 3, 14, 5, 6, 15), z));
}
#elif KORVANE_KERNEL_LEVEL == 2
using DoubleRegister = __m256d;
using FlagRegister = __m256d;  // all bits of a number alike
inline DoubleRegister fillDoubles(double value) {
    return _mm256_set1_pd(value);
}
inline DoubleRegister add(DoubleRegister a, DoubleRegister b) {
    return _mm256_add_pd(a, b);
}
inline DoubleRegister subtract(DoubleRegister a, DoubleRegister b) {
    return _mm256_sub_pd(a, b);
}
inline DoubleRegister multiply(DoubleRegister a, DoubleRegister b) {
    return _mm256_mul_pd(a, b);
}
inline DoubleRegister divide(DoubleRegister a, DoubleRegister b) {
    return _mm256_div_pd(a, b);
}
inline DoubleRegister squareRoot(DoubleRegister a) {
    return _mm256_sqrt_pd(a);
}
inline DoubleRegister negated(DoubleRegister a) {
    return _mm256_xor_pd(a, fillDoubles(-0.0));
}
inline DoubleRegister throughSingle(DoubleRegister a) {
    return _mm256_cvtps_pd(_mm256_cvtpd_ps(a));
}
inline FlagRegister below(DoubleRegister a, DoubleRegister b) {
    return _mm256_cmp_pd(a, b, _CMP_LT_OQ);
}
inline FlagRegister loadFlags(const void* bytes) {
    std::int32_t four;
    std::memcpy(&four, bytes, sizeof four);
    const __m256i wide = _mm256_cvtepu8_epi64(_mm_cvtsi32_si128(four));
    return _mm256_castsi256_pd(_mm256_cmpgt_epi64(wide, _mm256_setzero_si256()));
}
inline FlagRegister both(FlagRegister a, FlagRegister b) {
    return _mm256_and_pd(a, b);
}
inline FlagRegister either(FlagRegister a, FlagRegister b) {
    return _mm256_or_pd(a, b);
}
inline bool allFlags(FlagRegister flags) {
    return _mm256_movemask_pd(flags) == 0xf;
}
inline DoubleRegister choose(FlagRegister flags, DoubleRegister yes, DoubleRegister no) {
    return _mm256_blendv_pd(no, yes, flags);
}
inline void loadPairs(const double* p, DoubleRegister& x, DoubleRegister& y) {
    const __m256d even = _mm256_insertf128_pd(_mm256_castpd128_pd256(_mm_loadu_pd(p)), _mm_loadu_pd(p + 4), 1);
    const __m256d odd = _mm256_insertf128_pd(_mm256_castpd128_pd256(_mm_loadu_pd(p + 2)), _mm_loadu_pd(p + 6), 1);
    x = _mm256_unpacklo_pd(even, odd);
    y = _mm256_unpackhi_pd(even, odd);
}
inline void storePairs(double* p, DoubleRegister x, DoubleRegister y) {
    const __m256d even = _mm256_unpacklo_pd(x, y);
    const __m256d odd = _mm256_unpackhi_pd(x, y);
    _mm256_storeu_pd(p, _mm256_permute2f128_pd(even, odd, 0x20));
    _mm256_storeu_pd(p + 4, _mm256_permute2f128_pd(even, odd, 0x31));
}
inline void storeTriples(double* p, DoubleRegister x, DoubleRegister y, DoubleRegister z) {
    // Of the points 0 and 2, and of their right neighbours.
    const __m256d xy = _mm256_unpacklo_pd(x, y);
    const __m256d zx = _mm256_shuffle_pd(z, x, 0xa);
    const __m256d yz = _mm256_unpackhi_pd(y, z);
    _mm256_storeu_pd(p, _mm256_permute2f128_pd(xy, zx, 0x20));
    _mm256_storeu_pd(p + 4, _mm256_permute2f128_pd(yz, xy, 0x30));
    _mm256_storeu_pd(p + 8, _mm256_permute2f128_pd(zx, yz, 0x31));
}
#else
using DoubleRegister = __m128d;
using FlagRegister = __m128d;  // all bits of a number alike
inline DoubleRegister fillDoubles(double value) {
    return _mm_set1_pd(value);
}
inline DoubleRegister add(DoubleRegister a, DoubleRegister b) {
    return _mm_add_pd(a, b);
}
inline DoubleRegister subtract(DoubleRegister a, DoubleRegister b) {
    return _mm_sub_pd(a, b);
}
inline DoubleRegister multiply(DoubleRegister a, DoubleRegister b) {
    return _mm_mul_pd(a, b);
}
inline DoubleRegister divide(DoubleRegister a, DoubleRegister b) {
    return _mm_div_pd(a, b);
}
inline DoubleRegister squareRoot(DoubleRegister a) {
    return _mm_sqrt_pd(a);
}
inline DoubleRegister negated(DoubleRegister a) {
    return _mm_xor_pd(a, fillDoubles(-0.0));
}
inline DoubleRegister throughSingle(DoubleRegister a) {
    return _mm_cvtps_pd(_mm_cvtpd_ps(a));
}
inline FlagRegister below(DoubleRegister a, DoubleRegister b) {
    return _mm_cmplt_pd(a, b);
}
inline FlagRegister loadFlags(const void* bytes) {
    const unsigned char* flags = static_cast<const unsigned char*>(bytes);
    return _mm_castsi128_pd(_mm_set_epi64x(flags[1] != 0 ? -1 : 0, flags[0] != 0 ? -1 : 0));
}
inline FlagRegister both(FlagRegister a, FlagRegister b) {
    return _mm_and_pd(a, b);
}
inline FlagRegister either(FlagRegister a, FlagRegister b) {
    return _mm_or_pd(a, b);
}
inline bool allFlags(FlagRegister flags) {
    return _mm_movemask_pd(flags) == 0x3;
}
inline DoubleRegister choose(FlagRegister flags, DoubleRegister yes, DoubleRegister no) {
    return _mm_or_pd(_mm_and_pd(flags, yes), _mm_andnot_pd(flags, no));
}
inline void loadPairs(const double* p, DoubleRegister& x, DoubleRegister& y) {
    const __m128d first = _mm_loadu_pd(p);
    const __m128d second = _mm_loadu_pd(p + 2);
    x = _mm_unpacklo_pd(first, second);
    y = _mm_unpackhi_pd(first, second);
}
inline void storePairs(double* p, DoubleRegister x, DoubleRegister y) {
    _mm_storeu_pd(p, _mm_unpacklo_pd(x, y));
    _mm_storeu_pd(p + 2, _mm_unpackhi_pd(x, y));
}
inline void storeTriples(double* p, DoubleRegister x, DoubleRegister y, DoubleRegister z) {
    _mm_storeu_pd(p, _mm_unpacklo_pd(x, y));
    _mm_storeu_pd(p + 2, _mm_shuffle_pd(z, x, 2));
    _mm_storeu_pd(p + 4, _mm_unpackhi_pd(y, z));
}
#endif

inline constexpr int kDoubleRegisters = 4;
inline constexpr std::ptrdiff_t kPerRegister = sizeof(DoubleRegister) / sizeof(double);
inline constexpr std::size_t kDoubles = kDoubleRegisters * kPerRegister;  // numbers of a lane

/// One answer per number.
struct ManyFlags {
    FlagRegister part[kDoubleRegisters];

    template <class Operation>
    static ManyFlags make(Operation operation) {
        ManyFlags result;
        for (int i = 0; i < kDoubleRegisters; ++i) result.part[i] = operation(i);
        return result;
    }
};

struct ManyDoubles {
    DoubleRegister part[kDoubleRegisters];

    template <class Operation>
    static ManyDoubles make(Operation operation) {
        ManyDoubles result;
        for (int i = 0; i < kDoubleRegisters; ++i) result.part[i] = operation(i);
        return result;
    }

    ManyDoubles() = default;
    explicit ManyDoubles(double value) : ManyDoubles(make([value](int) { return fillDoubles(value); })) {}
};

inline ManyDoubles operator+(const ManyDoubles& a, const ManyDoubles& b) {
    return ManyDoubles::make([&](int i) { return add(a.part[i], b.part[i]); });
}
inline ManyDoubles operator-(const ManyDoubles& a, const ManyDoubles& b) {
    return ManyDoubles::make([&](int i) { return subtract(a.part[i], b.part[i]); });
}
inline ManyDoubles operator*(const ManyDoubles& a, const ManyDoubles& b) {
    return ManyDoubles::make([&](int i) { return multiply(a.part[i], b.part[i]); });
}
inline ManyDoubles operator/(const ManyDoubles& a, const ManyDoubles& b) {
    return ManyDoubles::make([&](int i) { return divide(a.part[i], b.part[i]); });
}
inline ManyDoubles squareRoot(const ManyDoubles& a) {
    return ManyDoubles::make([&](int i) { return squareRoot(a.part[i]); });
}
inline ManyDoubles negated(const ManyDoubles& a) {
    return ManyDoubles::make([&](int i) { return negated(a.part[i]); });
}
/// Rounded to single precision and widened again.
inline ManyDoubles throughSingle(const ManyDoubles& a) {
    return ManyDoubles::make([&](int i) { return throughSingle(a.part[i]); });
}

inline ManyFlags operator<(const ManyDoubles& a, const ManyDoubles& b) {
    return ManyFlags::make([&](int i) { return below(a.part[i], b.part[i]); });
}
inline ManyFlags operator>(const ManyDoubles& a, const ManyDoubles& b) {
    return b < a;
}
inline ManyFlags operator&(const ManyFlags& a, const ManyFlags& b) {
    return ManyFlags::make([&](int i) { return both(a.part[i], b.part[i]); });
}
inline ManyFlags operator|(const ManyFlags& a, const ManyFlags& b) {
    return ManyFlags::make([&](int i) { return either(a.part[i], b.part[i]); });
}
inline bool allOf(const ManyFlags& flags) {
    FlagRegister all = flags.part[0];
    for (int i = 1; i < kDoubleRegisters; ++i) all = both(all, flags.part[i]);
    return allFlags(all);
}
inline ManyDoubles choose(const ManyFlags& flags, const ManyDoubles& yes, const ManyDoubles& no) {
    return ManyDoubles::make([&](int i) { return choose(flags.part[i], yes.part[i], no.part[i]); });
}

/// Is each byte not 0?
inline ManyFlags areSet(const void* bytes) {
    const unsigned char* first = static_cast<const unsigned char*>(bytes);
    return ManyFlags::make([first](int i) { return loadFlags(first + i * kPerRegister); });
}
/// From and to x0 y0 x1 y1 ...
inline void loadPairs(const double* p, ManyDoubles& x, ManyDoubles& y) {
    for (int i = 0; i < kDoubleRegisters; ++i) loadPairs(p + 2 * kPerRegister * i, x.part[i], y.part[i]);
}
inline void storePairs(double* p, const ManyDoubles& x, const ManyDoubles& y) {
    for (int i = 0; i < kDoubleRegisters; ++i) storePairs(p + 2 * kPerRegister * i, x.part[i], y.part[i]);
}
/// To x0 y0 z0 x1 y1 z1 ...
inline void storeTriples(double* p, const ManyDoubles& x, const ManyDoubles& y, const ManyDoubles& z) {
    for (int i = 0; i < kDoubleRegisters; ++i) storeTriples(p + 3 * kPerRegister * i, x.part[i], y.part[i], z.part[i]);
}

}  // namespace KORVANELASERALGO::kernels::KORVANE_KERNEL_SET

#endif  // KORVANE_KERNELS_LANES_MANYDOUBLES_H
