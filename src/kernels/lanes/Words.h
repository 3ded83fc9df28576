// Lanes of 16-bit integers, for calculations with pixels: 32 of them in one register where that is wide enough,
// else 16. Tests give one bit per lane, lane 0 in the lowest.

#ifndef KORVANE_KERNELS_LANES_WORDS_H
#define KORVANE_KERNELS_LANES_WORDS_H

#include "kernels/lanes/Bytes.h"

namespace KORVANELASERALGO::kernels::KORVANE_KERNEL_SET {

using WordBits = std::uint32_t;

#if KORVANE_KERNEL_LEVEL == 3
inline constexpr int kWords = 32;
inline Register loadWords(const Byte* p) {
    return _mm512_cvtepu8_epi16(_mm256_loadu_si256(reinterpret_cast<const __m256i*>(p)));
}
/// Of values that a byte holds.
inline void storeWords(Byte* p, Register a) {
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(p), _mm512_maskz_cvtepi16_epi8(0xffffffff, a));
}
inline Register addWords(Register a, Register b) {
    return _mm512_add_epi16(a, b);
}
inline Register subtractWords(Register a, Register b) {
    return _mm512_sub_epi16(a, b);
}
inline Register xorRegister(Register a, Register b) {
    return _mm512_xor_si512(a, b);
}
inline WordBits zeroWords(const Register* a) {
    return _mm512_testn_epi16_mask(*a, *a);
}
inline void lessenWords(Register* a, WordBits where) {
    *a = _mm512_mask_sub_epi16(*a, where, *a, _mm512_set1_epi16(1));
}
/// Pairs of neighbouring words in the lower, or upper, half of each 128 bits of `a` and `b`.
inline Register lowerPairs(Register a, Register b) {
    return _mm512_unpacklo_epi16(a, b);
}
inline Register upperPairs(Register a, Register b) {
    return _mm512_unpackhi_epi16(a, b);
}
/// The other way round: from two registers of 32-bit integers.
inline Register packWords(Register lower, Register upper) {
    return _mm512_packs_epi32(lower, upper);
}
inline Register fillPairs(std::int32_t pair) {
    return _mm512_set1_epi32(pair);
}
inline Register sumOfProducts(Register pairs, Register weights) {
    return _mm512_madd_epi16(pairs, weights);
}
inline Register addIntegers(Register a, Register b) {
    return _mm512_add_epi32(a, b);
}
template <int kBits>
inline Register shiftIntegersRight(Register a) {
    return _mm512_srai_epi32(a, kBits);
}
#elif KORVANE_KERNEL_LEVEL == 2
inline constexpr int kWords = 16;
inline Register loadWords(const Byte* p) {
    return _mm256_cvtepu8_epi16(_mm_loadu_si128(reinterpret_cast<const __m128i*>(p)));
}
/// Of values that a byte holds.
inline void storeWords(Byte* p, Register a) {
    _mm_storeu_si128(reinterpret_cast<__m128i*>(p),
                     _mm_packus_epi16(_mm256_castsi256_si128(a), _mm256_extracti128_si256(a, 1)));
}
inline Register addWords(Register a, Register b) {
    return _mm256_add_epi16(a, b);
}
inline Register subtractWords(Register a, Register b) {
    return _mm256_sub_epi16(a, b);
}
inline Register xorRegister(Register a, Register b) {
    return _mm256_xor_si256(a, b);
}
inline WordBits zeroWords(const Register* a) {
    const __m256i zero = _mm256_cmpeq_epi16(*a, _mm256_setzero_si256());
    const __m128i bytes = _mm_packs_epi16(_mm256_castsi256_si128(zero), _mm256_extracti128_si256(zero, 1));
    return static_cast<WordBits>(_mm_movemask_epi8(bytes));
}
inline void lessenWords(Register* a, WordBits where) {
    const __m256i bit = _mm256_setr_epi16(0x1, 0x2, 0x4, 0x8, 0x10, 0x20, 0x40, 0x80, 0x100, 0x200, 0x400, 0x800,
                                          0x1000, 0x2000, 0x4000, INT16_MIN);
    const __m256i set = _mm256_and_si256(_mm256_set1_epi16(static_cast<std::int16_t>(where)), bit);
    *a = _mm256_add_epi16(*a, _mm256_cmpeq_epi16(set, bit));
}
/// Pairs of neighbouring words in the lower, or upper, half of each 128 bits of `a` and `b`.
inline Register lowerPairs(Register a, Register b) {
    return _mm256_unpacklo_epi16(a, b);
}
inline Register upperPairs(Register a, Register b) {
    return _mm256_unpackhi_epi16(a, b);
}
/// The other way round: from two registers of 32-bit integers.
inline Register packWords(Register lower, Register upper) {
    return _mm256_packs_epi32(lower, upper);
}
inline Register fillPairs(std::int32_t pair) {
    return _mm256_set1_epi32(pair);
}
inline Register sumOfProducts(Register pairs, Register weights) {
    return _mm256_madd_epi16(pairs, weights);
}
inline Register addIntegers(Register a, Register b) {
    return _mm256_add_epi32(a, b);
}
template <int kBits>
inline Register shiftIntegersRight(Register a) {
    return _mm256_srai_epi32(a, kBits);
}
#else
inline constexpr int kWords = 16;
inline Register loadWords(const Byte* p) {
    return _mm_unpacklo_epi8(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(p)), _mm_setzero_si128());
}
/// Of values that a byte holds.
inline void storeWords(Byte* p, Register a) {
    _mm_storel_epi64(reinterpret_cast<__m128i*>(p), _mm_packus_epi16(a, a));
}
inline Register addWords(Register a, Register b) {
    return _mm_add_epi16(a, b);
}
inline Register subtractWords(Register a, Register b) {
    return _mm_sub_epi16(a, b);
}
inline Register xorRegister(Register a, Register b) {
    return _mm_xor_si128(a, b);
}
inline WordBits zeroWords(const Register* a) {
    const __m128i none = _mm_setzero_si128();
    const __m128i bytes = _mm_packs_epi16(_mm_cmpeq_epi16(a[0], none), _mm_cmpeq_epi16(a[1], none));
    return static_cast<WordBits>(_mm_movemask_epi8(bytes));
}
inline void lessenWords(Register* a, WordBits where) {
    const __m128i bit = _mm_setr_epi16(0x1, 0x2, 0x4, 0x8, 0x10, 0x20, 0x40, 0x80);
    for (int i = 0; i < 2; ++i, where >>= 8) {
        const __m128i set = _mm_and_si128(_mm_set1_epi16(static_cast<std::int16_t>(where & 0xff)), bit);
        a[i] = _mm_add_epi16(a[i], _mm_cmpeq_epi16(set, bit));
    }
}
/// Pairs of neighbouring words in the lower, or upper, half of each 128 bits of `a` and `b`.
inline Register lowerPairs(Register a, Register b) {
    return _mm_unpacklo_epi16(a, b);
}
inline Register upperPairs(Register a, Register b) {
    return _mm_unpackhi_epi16(a, b);
}
/// The other way round: from two registers of 32-bit integers.
inline Register packWords(Register lower, Register upper) {
    return _mm_packs_epi32(lower, upper);
}
inline Register fillPairs(std::int32_t pair) {
    return _mm_set1_epi32(pair);
}
inline Register sumOfProducts(Register pairs, Register weights) {
    return _mm_madd_epi16(pairs, weights);
}
inline Register addIntegers(Register a, Register b) {
    return _mm_add_epi32(a, b);
}
template <int kBits>
inline Register shiftIntegersRight(Register a) {
    return _mm_srai_epi32(a, kBits);
}
#endif

struct Words {
    static constexpr std::ptrdiff_t kRegisterWords = sizeof(Register) / 2;
    static constexpr int kParts = kWords / static_cast<int>(kRegisterWords);
    Register part[kParts];

    template <class Operation>
    static Words make(Operation operation) {
        Words result;
        for (int i = 0; i < kParts; ++i) result.part[i] = operation(i);
        return result;
    }
    static Words load(const Byte* p) {
        return make([p](int i) { return loadWords(p + i * kRegisterWords); });
    }
    /// Of values that a byte holds.
    void store(Byte* p) const {
        for (int i = 0; i < kParts; ++i) storeWords(p + i * kRegisterWords, part[i]);
    }
};

inline Words operator+(const Words& a, const Words& b) {
    return Words::make([&](int i) { return addWords(a.part[i], b.part[i]); });
}
inline Words operator-(const Words& a, const Words& b) {
    return Words::make([&](int i) { return subtractWords(a.part[i], b.part[i]); });
}
/// Where both are zero.
inline WordBits bothZero(const Words& a, const Words& b) {
    return zeroWords(Words::make([&](int i) { return orRegister(a.part[i], b.part[i]); }).part);
}
/// Where all three are equal.
inline WordBits allEqual(const Words& a, const Words& b, const Words& c) {
    return bothZero(Words::make([&](int i) { return xorRegister(a.part[i], b.part[i]); }),
                    Words::make([&](int i) { return xorRegister(a.part[i], c.part[i]); }));
}
/// Subtracts 1 in the lanes whose bits are set.
inline Words minusOne(Words a, WordBits where) {
    lessenWords(a.part, where);
    return a;
}

}  // namespace KORVANELASERALGO::kernels::KORVANE_KERNEL_SET

#endif  // KORVANE_KERNELS_LANES_WORDS_H
