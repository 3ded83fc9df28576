// Lanes of 64 pixels: one cache line, in four, two or one registers of the set that is compiled for. Comparisons give
// one bit per pixel in a 64-bit mask, pixel 0 in the lowest.
//
// No include guard against other sets is needed: each set has a namespace and a source file of its own.

#ifndef KORVANE_KERNELS_LANES_BYTES_H
#define KORVANE_KERNELS_LANES_BYTES_H

#include <immintrin.h>

#include <cstddef>
#include <cstdint>

#include "kernels/kernels.h"

#if defined(_MSC_VER) && !defined(__clang__)
#include <intrin.h>
#endif

namespace KORVANELASERALGO::kernels::KORVANE_KERNEL_SET {

using Byte = unsigned char;
using Mask = std::uint64_t;

inline constexpr int kLane = kBlockColumns;  // pixels

#if KORVANE_KERNEL_LEVEL == 3
using Register = __m512i;
inline Register loadRegister(const Byte* p) {
    return _mm512_loadu_si512(p);
}
inline void storeRegister(Byte* p, Register v) {
    _mm512_storeu_si512(p, v);
}
inline Register fillRegister(Byte value) {
    return _mm512_set1_epi8(static_cast<char>(value));
}
inline Register maxRegister(Register a, Register b) {
    return _mm512_max_epu8(a, b);
}
inline Register minRegister(Register a, Register b) {
    return _mm512_min_epu8(a, b);
}
inline Register subtractRegister(Register a, Register b) {
    return _mm512_subs_epu8(a, b);
}
inline Mask atLeastRegister(Register a, Register b) {
    return _mm512_cmpge_epu8_mask(a, b);
}
inline Register keepAtLeastRegister(Register a, Register b) {
    return _mm512_maskz_mov_epi8(atLeastRegister(a, b), a);
}
inline Register orRegister(Register a, Register b) {
    return _mm512_or_si512(a, b);
}
inline bool isZero(Register a) {
    return _mm512_test_epi8_mask(a, a) == 0;
}
inline void storeRegisterAbove(Byte* p, Register v, Register level) {
    _mm512_mask_storeu_epi8(p, _mm512_cmpgt_epu8_mask(v, level), v);
}
#elif KORVANE_KERNEL_LEVEL == 2
using Register = __m256i;
inline Register loadRegister(const Byte* p) {
    return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(p));
}
inline void storeRegister(Byte* p, Register v) {
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(p), v);
}
inline Register fillRegister(Byte value) {
    return _mm256_set1_epi8(static_cast<char>(value));
}
inline Register maxRegister(Register a, Register b) {
    return _mm256_max_epu8(a, b);
}
inline Register minRegister(Register a, Register b) {
    return _mm256_min_epu8(a, b);
}
inline Register subtractRegister(Register a, Register b) {
    return _mm256_subs_epu8(a, b);
}
inline Mask atLeastRegister(Register a, Register b) {
    return static_cast<std::uint32_t>(_mm256_movemask_epi8(_mm256_cmpeq_epi8(_mm256_max_epu8(a, b), a)));
}
inline Register keepAtLeastRegister(Register a, Register b) {
    return _mm256_and_si256(a, _mm256_cmpeq_epi8(_mm256_max_epu8(a, b), a));
}
inline Register orRegister(Register a, Register b) {
    return _mm256_or_si256(a, b);
}
inline bool isZero(Register a) {
    return _mm256_testz_si256(a, a) != 0;
}
inline void storeRegisterAbove(Byte* p, Register v, Register level) {
    const Register stays = _mm256_cmpeq_epi8(_mm256_max_epu8(v, level), level);
    storeRegister(p, _mm256_blendv_epi8(v, loadRegister(p), stays));
}
#else
using Register = __m128i;
inline Register loadRegister(const Byte* p) {
    return _mm_loadu_si128(reinterpret_cast<const __m128i*>(p));
}
inline void storeRegister(Byte* p, Register v) {
    _mm_storeu_si128(reinterpret_cast<__m128i*>(p), v);
}
inline Register fillRegister(Byte value) {
    return _mm_set1_epi8(static_cast<char>(value));
}
inline Register maxRegister(Register a, Register b) {
    return _mm_max_epu8(a, b);
}
inline Register minRegister(Register a, Register b) {
    return _mm_min_epu8(a, b);
}
inline Register subtractRegister(Register a, Register b) {
    return _mm_subs_epu8(a, b);
}
inline Mask atLeastRegister(Register a, Register b) {
    return static_cast<std::uint32_t>(_mm_movemask_epi8(_mm_cmpeq_epi8(_mm_max_epu8(a, b), a)));
}
inline Register keepAtLeastRegister(Register a, Register b) {
    return _mm_and_si128(a, _mm_cmpeq_epi8(_mm_max_epu8(a, b), a));
}
inline Register orRegister(Register a, Register b) {
    return _mm_or_si128(a, b);
}
inline bool isZero(Register a) {
    return _mm_movemask_epi8(_mm_cmpeq_epi8(a, _mm_setzero_si128())) == 0xffff;
}
inline void storeRegisterAbove(Byte* p, Register v, Register level) {
    const Register stays = _mm_cmpeq_epi8(_mm_max_epu8(v, level), level);
    storeRegister(p, _mm_or_si128(_mm_and_si128(stays, loadRegister(p)), _mm_andnot_si128(stays, v)));
}
#endif

inline constexpr int kRegisters = kLane / static_cast<int>(sizeof(Register));
inline constexpr std::ptrdiff_t kRegisterPixels = sizeof(Register);

struct Bytes {
    Register part[kRegisters];

    template <class Operation>
    static Bytes make(Operation operation) {
        Bytes result;
        for (int i = 0; i < kRegisters; ++i) result.part[i] = operation(i);
        return result;
    }

    static Bytes load(const Byte* p) {
        return make([p](int i) { return loadRegister(p + i * kRegisterPixels); });
    }
    static Bytes fill(Byte value) {
        return make([value](int) { return fillRegister(value); });
    }
    void store(Byte* p) const {
        for (int i = 0; i < kRegisters; ++i) storeRegister(p + i * kRegisterPixels, part[i]);
    }
    /// Stores the pixels above `level`. The others may be read and written back.
    void storeAbove(Byte* p, const Bytes& level) const {
        for (int i = 0; i < kRegisters; ++i) storeRegisterAbove(p + i * kRegisterPixels, part[i], level.part[i]);
    }
};

inline Bytes max(const Bytes& a, const Bytes& b) {
    return Bytes::make([&](int i) { return maxRegister(a.part[i], b.part[i]); });
}
inline Bytes min(const Bytes& a, const Bytes& b) {
    return Bytes::make([&](int i) { return minRegister(a.part[i], b.part[i]); });
}
/// a - b, at least 0.
inline Bytes subtract(const Bytes& a, const Bytes& b) {
    return Bytes::make([&](int i) { return subtractRegister(a.part[i], b.part[i]); });
}
/// a where it is at least b, else 0.
inline Bytes keepAtLeast(const Bytes& a, const Bytes& b) {
    return Bytes::make([&](int i) { return keepAtLeastRegister(a.part[i], b.part[i]); });
}

inline Mask atLeast(const Bytes& a, const Bytes& b) {
    Mask mask = 0;
    for (int i = 0; i < kRegisters; ++i) mask |= atLeastRegister(a.part[i], b.part[i]) << (i * kRegisterPixels);
    return mask;
}
inline Mask above(const Bytes& a, const Bytes& b) {
    return ~atLeast(b, a);
}

/// Is any pixel of a greater than b's? Cheaper than the mask.
inline bool anyAbove(const Bytes& a, const Bytes& b) {
    Register excess = subtractRegister(a.part[0], b.part[0]);
    for (int i = 1; i < kRegisters; ++i) excess = orRegister(excess, subtractRegister(a.part[i], b.part[i]));
    return !isZero(excess);
}

/// The same where all pixels have one level: then the registers of a lane are compared with it together.
inline bool anyAboveLevel(const Bytes& a, const Bytes& level) {
    Register largest = a.part[0];
    for (int i = 1; i < kRegisters; ++i) largest = maxRegister(largest, a.part[i]);
    return !isZero(subtractRegister(largest, level.part[0]));
}

/// Asks for the cache line in which a lane begins, which is needed soon.
inline void prefetch(const Byte* p) {
    _mm_prefetch(reinterpret_cast<const char*>(p), _MM_HINT_T0);
}

/// Number of set bits.
inline int bitsOf(Mask mask) {
#if KORVANE_KERNEL_LEVEL > 1
    return static_cast<int>(_mm_popcnt_u64(mask));
#else
    mask -= mask >> 1 & 0x5555555555555555u;
    mask = (mask & 0x3333333333333333u) + (mask >> 2 & 0x3333333333333333u);
    mask = (mask + (mask >> 4)) & 0x0f0f0f0f0f0f0f0fu;
    return static_cast<int>(mask * 0x0101010101010101u >> 56);
#endif
}

/// Index of the lowest set bit; the mask is not empty.
inline int lowestBit(Mask mask) {
#if defined(_MSC_VER) && !defined(__clang__)
    unsigned long index;
    _BitScanForward64(&index, mask);
    return static_cast<int>(index);
#else
    return __builtin_ctzll(mask);
#endif
}

}  // namespace KORVANELASERALGO::kernels::KORVANE_KERNEL_SET

#endif  // KORVANE_KERNELS_LANES_BYTES_H
