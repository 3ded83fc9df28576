// Lanes of floats, as many as one register of the set holds.

#ifndef KORVANE_KERNELS_LANES_FLOATS_H
#define KORVANE_KERNELS_LANES_FLOATS_H

#include "kernels/lanes/Doubles.h"

namespace KORVANELASERALGO::kernels::KORVANE_KERNEL_SET {

#if KORVANE_KERNEL_LEVEL == 3

struct Floats {
    static constexpr int kCount = 16;
    __m512 lanes;

    static Floats load(const float* p) { return {_mm512_loadu_ps(p)}; }
    void store(float* p) const { _mm512_storeu_ps(p, lanes); }
};

/// Pairs of neighbouring values, parted.
struct FloatPairs {
    Floats first;
    Floats second;
};

// Masks of all lanes, because the forms without a mask make GCC 12 warn of uninitialised values.
inline Floats min(Floats a, Floats b) {
    return {_mm512_maskz_min_ps(0xffff, a.lanes, b.lanes)};
}
inline Floats max(Floats a, Floats b) {
    return {_mm512_maskz_max_ps(0xffff, a.lanes, b.lanes)};
}

/// Not a number and -0.0 are the values that equal comparisons do not tell from all others.
inline bool anyWithoutOrder(Floats a) {
    constexpr int kQuietNan = 0x01;
    constexpr int kNegativeZero = 0x04;
    constexpr int kSignallingNan = 0x80;
    return _mm512_fpclass_ps_mask(a.lanes, kQuietNan | kNegativeZero | kSignallingNan) != 0;
}

/// Rounds two lanes' worth of doubles to single precision and parts them into pairs.
inline FloatPairs splitRounded(const double* values) {
    const auto rounded = [values](int i) {
        const __m256 low = _mm512_cvtpd_ps(_mm512_loadu_pd(values + i));
        return _mm512_insertf32x8(_mm512_castps256_ps512(low), _mm512_cvtpd_ps(_mm512_loadu_pd(values + i + 8)), 1);
    };
    const __m512 a = rounded(0);
    const __m512 b = rounded(16);
    const __m512i evens = _mm512_setr_epi32(0, 2, 4, 6, 8, 10, 12, 14, 16, 18, 20, 22, 24, 26, 28, 30);
    const __m512i odds = _mm512_setr_epi32(1, 3, 5, 7, 9, 11, 13, 15, 17, 19, 21, 23, 25, 27, 29, 31);
    return {{_mm512_permutex2var_ps(a, evens, b)}, {_mm512_permutex2var_ps(a, odds, b)}};
}

/// Widens two lanes and stores them in turn: a0 b0 a1 b1 ...
inline void storeInTurn(double* p, Floats a, Floats b) {
    const __m512i firstHalf = _mm512_setr_epi32(0, 16, 1, 17, 2, 18, 3, 19, 4, 20, 5, 21, 6, 22, 7, 23);
    const __m512i secondHalf = _mm512_setr_epi32(8, 24, 9, 25, 10, 26, 11, 27, 12, 28, 13, 29, 14, 30, 15, 31);
    const __m512 first = _mm512_permutex2var_ps(a.lanes, firstHalf, b.lanes);
    const __m512 second = _mm512_permutex2var_ps(a.lanes, secondHalf, b.lanes);
    _mm512_storeu_pd(p, _mm512_cvtps_pd(_mm512_castps512_ps256(first)));
    _mm512_storeu_pd(p + 8, _mm512_cvtps_pd(_mm512_extractf32x8_ps(first, 1)));
    _mm512_storeu_pd(p + 16, _mm512_cvtps_pd(_mm512_castps512_ps256(second)));
    _mm512_storeu_pd(p + 24, _mm512_cvtps_pd(_mm512_extractf32x8_ps(second, 1)));
}

#elif KORVANE_KERNEL_LEVEL == 2

struct Floats {
    static constexpr int kCount = 8;
    __m256 lanes;

    static Floats load(const float* p) { return {_mm256_loadu_ps(p)}; }
    void store(float* p) const { _mm256_storeu_ps(p, lanes); }
};

/// Pairs of neighbouring values, parted.
struct FloatPairs {
    Floats first;
    Floats second;
};

inline Floats min(Floats a, Floats b) {
    return {_mm256_min_ps(a.lanes, b.lanes)};
}
inline Floats max(Floats a, Floats b) {
    return {_mm256_max_ps(a.lanes, b.lanes)};
}

inline bool anyWithoutOrder(Floats a) {
    const __m256i negativeZero = _mm256_set1_epi32(INT32_MIN);
    const __m256 isNegativeZero = _mm256_castsi256_ps(_mm256_cmpeq_epi32(_mm256_castps_si256(a.lanes), negativeZero));
    return _mm256_movemask_ps(_mm256_or_ps(_mm256_cmp_ps(a.lanes, a.lanes, _CMP_UNORD_Q), isNegativeZero)) != 0;
}

inline FloatPairs splitRounded(const double* values) {
    const auto rounded = [values](int i) { return _mm256_cvtpd_ps(_mm256_loadu_pd(values + i)); };
    // Values 0 .. 3 and 8 .. 11, 4 .. 7 and 12 .. 15: choosing every other one then keeps their order.
    const __m256 a = _mm256_insertf128_ps(_mm256_castps128_ps256(rounded(0)), rounded(8), 1);
    const __m256 b = _mm256_insertf128_ps(_mm256_castps128_ps256(rounded(4)), rounded(12), 1);
    return {{_mm256_shuffle_ps(a, b, _MM_SHUFFLE(2, 0, 2, 0))}, {_mm256_shuffle_ps(a, b, _MM_SHUFFLE(3, 1, 3, 1))}};
}

inline void storeInTurn(double* p, Floats a, Floats b) {
    const __m256 low = _mm256_unpacklo_ps(a.lanes, b.lanes);   // a0 b0 a1 b1 | a4 b4 a5 b5
    const __m256 high = _mm256_unpackhi_ps(a.lanes, b.lanes);  // a2 b2 a3 b3 | a6 b6 a7 b7
    _mm256_storeu_pd(p, _mm256_cvtps_pd(_mm256_castps256_ps128(low)));
    _mm256_storeu_pd(p + 4, _mm256_cvtps_pd(_mm256_castps256_ps128(high)));
    _mm256_storeu_pd(p + 8, _mm256_cvtps_pd(_mm256_extractf128_ps(low, 1)));
    _mm256_storeu_pd(p + 12, _mm256_cvtps_pd(_mm256_extractf128_ps(high, 1)));
}

#else

struct Floats {
    static constexpr int kCount = 4;
    __m128 lanes;

    static Floats load(const float* p) { return {_mm_loadu_ps(p)}; }
    void store(float* p) const { _mm_storeu_ps(p, lanes); }
};

/// Pairs of neighbouring values, parted.
struct FloatPairs {
    Floats first;
    Floats second;
};

inline Floats min(Floats a, Floats b) {
    return {_mm_min_ps(a.lanes, b.lanes)};
}
inline Floats max(Floats a, Floats b) {
    return {_mm_max_ps(a.lanes, b.lanes)};
}

inline bool anyWithoutOrder(Floats a) {
    const __m128i negativeZero = _mm_set1_epi32(INT32_MIN);
    const __m128 isNegativeZero = _mm_castsi128_ps(_mm_cmpeq_epi32(_mm_castps_si128(a.lanes), negativeZero));
    return _mm_movemask_ps(_mm_or_ps(_mm_cmpunord_ps(a.lanes, a.lanes), isNegativeZero)) != 0;
}

inline FloatPairs splitRounded(const double* values) {
    const auto rounded = [values](int i) { return _mm_cvtpd_ps(_mm_loadu_pd(values + i)); };
    const __m128 a = _mm_movelh_ps(rounded(0), rounded(2));
    const __m128 b = _mm_movelh_ps(rounded(4), rounded(6));
    return {{_mm_shuffle_ps(a, b, _MM_SHUFFLE(2, 0, 2, 0))}, {_mm_shuffle_ps(a, b, _MM_SHUFFLE(3, 1, 3, 1))}};
}

inline void storeInTurn(double* p, Floats a, Floats b) {
    const __m128 low = _mm_unpacklo_ps(a.lanes, b.lanes);
    const __m128 high = _mm_unpackhi_ps(a.lanes, b.lanes);
    _mm_storeu_pd(p, _mm_cvtps_pd(low));
    _mm_storeu_pd(p + 2, _mm_cvtps_pd(_mm_movehl_ps(low, low)));
    _mm_storeu_pd(p + 4, _mm_cvtps_pd(high));
    _mm_storeu_pd(p + 6, _mm_cvtps_pd(_mm_movehl_ps(high, high)));
}

#endif

}  // namespace KORVANELASERALGO::kernels::KORVANE_KERNEL_SET

#endif  // KORVANE_KERNELS_LANES_FLOATS_H
