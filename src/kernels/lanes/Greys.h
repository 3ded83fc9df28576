// Pixels as lanes of doubles: loaded, calculated with and truncated back to grey values.

#ifndef KORVANE_KERNELS_LANES_GREYS_H
#define KORVANE_KERNELS_LANES_GREYS_H

#include "kernels/lanes/Bytes.h"
#include "kernels/lanes/Doubles.h"

namespace KORVANELASERALGO::kernels::KORVANE_KERNEL_SET {

inline constexpr int kPixelsPerLoad = 16;

#if KORVANE_KERNEL_LEVEL == 3
// Masks of all lanes in this set, because the forms without a mask make GCC 12 warn of uninitialised values.

/// Without their fractions; for values that an int holds.
inline Doubles truncate(Doubles a) {
    return {_mm512_maskz_roundscale_pd(0xff, a.lanes, _MM_FROUND_TO_ZERO | _MM_FROUND_NO_EXC)};
}
inline void loadPixels(const Byte* p, Doubles* values) {
    for (int i = 0; i < 2; ++i, p += 8) {
        const __m128i bytes = _mm_loadl_epi64(reinterpret_cast<const __m128i*>(p));
        values[i].lanes = _mm512_maskz_cvtepi32_pd(0xff, _mm256_cvtepu8_epi32(bytes));
    }
}
/// Truncates values of 0 to less than 256.
inline void storePixels(const Doubles* values, Byte* p) {
    for (int i = 0; i < 2; ++i, p += 8) {
        const __m256i greys = _mm512_maskz_cvttpd_epi32(0xff, values[i].lanes);
        _mm_storel_epi64(reinterpret_cast<__m128i*>(p), _mm256_maskz_cvtepi32_epi8(0xff, greys));
    }
}
#elif KORVANE_KERNEL_LEVEL == 2
/// Without their fractions; for values that an int holds.
inline Doubles truncate(Doubles a) {
    return {_mm256_round_pd(a.lanes, _MM_FROUND_TO_ZERO | _MM_FROUND_NO_EXC)};
}
inline void loadPixels(const Byte* p, Doubles* values) {
    for (int i = 0; i < 4; ++i, p += 4) values[i].lanes = _mm256_cvtepi32_pd(_mm_cvtepu8_epi32(_mm_loadu_si32(p)));
}
/// Truncates values of 0 to less than 256.
inline void storePixels(const Doubles* values, Byte* p) {
    __m128i words[2];
    for (__m128i& eight : words) {
        eight = _mm_packs_epi32(_mm256_cvttpd_epi32(values[0].lanes), _mm256_cvttpd_epi32(values[1].lanes));
        values += 2;
    }
    _mm_storeu_si128(reinterpret_cast<__m128i*>(p), _mm_packus_epi16(words[0], words[1]));
}
#else
/// Without their fractions; for values that an int holds.
inline Doubles truncate(Doubles a) {
    return {_mm_cvtepi32_pd(_mm_cvttpd_epi32(a.lanes))};
}
inline void loadPixels(const Byte* p, Doubles* values) {
    const __m128i zero = _mm_setzero_si128();
    const __m128i bytes = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p));
    const __m128i words[2] = {_mm_unpacklo_epi8(bytes, zero), _mm_unpackhi_epi8(bytes, zero)};
    for (int i = 0; i < 4; ++i, values += 2) {
        const __m128i four =
            i % 2 == 0 ? _mm_unpacklo_epi16(words[i / 2], zero) : _mm_unpackhi_epi16(words[i / 2], zero);
        values[0].lanes = _mm_cvtepi32_pd(four);
        values[1].lanes = _mm_cvtepi32_pd(_mm_unpackhi_epi64(four, four));
    }
}
/// Truncates values of 0 to less than 256.
inline void storePixels(const Doubles* values, Byte* p) {
    __m128i fours[4];
    for (__m128i& four : fours) {
        four = _mm_unpacklo_epi64(_mm_cvttpd_epi32(values[0].lanes), _mm_cvttpd_epi32(values[1].lanes));
        values += 2;
    }
    _mm_storeu_si128(reinterpret_cast<__m128i*>(p),
                     _mm_packus_epi16(_mm_packs_epi32(fours[0], fours[1]), _mm_packs_epi32(fours[2], fours[3])));
}
#endif

/// `kPixels` pixels as doubles.
template <int kPixels>
struct Greys {
    static constexpr int kRegisters = kPixels / Doubles::kCount;
    Doubles part[kRegisters];

    template <class Operation>
    static Greys make(Operation operation) {
        Greys result;
        for (int i = 0; i < kRegisters; ++i) result.part[i] = operation(i);
        return result;
    }
    static Greys load(const Byte* p) {
        Greys result;
        for (int i = 0; i < kPixels; i += kPixelsPerLoad) loadPixels(p + i, &result.part[i / Doubles::kCount]);
        return result;
    }
    /// Truncates values of 0 to less than 256.
    void store(Byte* p) const {
        for (int i = 0; i < kPixels; i += kPixelsPerLoad) storePixels(&part[i / Doubles::kCount], p + i);
    }

    friend Greys operator+(const Greys& a, const Greys& b) {
        return make([&](int i) { return a.part[i] + b.part[i]; });
    }
    friend Greys operator*(const Greys& a, Doubles b) {
        return make([&](int i) { return a.part[i] * b; });
    }
    friend Greys truncate(const Greys& a) {
        return make([&](int i) { return truncate(a.part[i]); });
    }
};

}  // namespace KORVANELASERALGO::kernels::KORVANE_KERNEL_SET

#endif  // KORVANE_KERNELS_LANES_GREYS_H
