// Five equal pixels under a blur: which grey levels they yield is known beforehand, so it is looked up. A set of
// kernels without an instruction for that takes notice of black pixels only, which stay black.

#ifndef KORVANE_KERNELS_LANES_EQUALTAPS_H
#define KORVANE_KERNELS_LANES_EQUALTAPS_H

#include "kernels/lanes/Words.h"

namespace KORVANELASERALGO::kernels::KORVANE_KERNEL_SET {

#if KORVANE_KERNEL_LEVEL == 3

struct EqualTaps {
    std::uint16_t rows[kWords] = {};  // one bit per grey level, set where one level is lost

    void setLess(int grey) { rows[grey / 16] |= static_cast<std::uint16_t>(1 << grey % 16); }
    static WordBits knownAmong(WordBits ties, const Words& a0, const Words& a1, const Words& a2) {
        return ties & allEqual(a2, a1, a0);
    }
    WordBits less(const Byte* greys) const {
        const __m512i levels = loadWords(greys);
        const __m512i bit = _mm512_sllv_epi16(_mm512_set1_epi16(1), _mm512_and_si512(levels, _mm512_set1_epi16(15)));
        const __m512i row =
            _mm512_maskz_permutexvar_epi16(0xffffffff, _mm512_srli_epi16(levels, 4), _mm512_loadu_si512(rows));
        return _mm512_test_epi16_mask(row, bit);
    }
};

#elif KORVANE_KERNEL_LEVEL == 2

struct EqualTaps {
    Byte rows[2][16] = {};  // greys below 128, the others; by their lower four bits, one bit for each of eight

    void setLess(int grey) { rows[grey / 128][grey % 16] |= static_cast<Byte>(1 << grey / 16 % 8); }
    static WordBits knownAmong(WordBits ties, const Words& a0, const Words& a1, const Words& a2) {
        return ties & allEqual(a2, a1, a0);
    }
    WordBits less(const Byte* greys) const {
        const __m128i levels = _mm_loadu_si128(reinterpret_cast<const __m128i*>(greys));
        const __m128i fourBits = _mm_set1_epi8(15);
        const __m128i column = _mm_and_si128(levels, fourBits);
        const __m128i darkRow = _mm_loadu_si128(reinterpret_cast<const __m128i*>(rows[0]));
        const __m128i brightRow = _mm_loadu_si128(reinterpret_cast<const __m128i*>(rows[1]));
        const __m128i row =
            _mm_blendv_epi8(_mm_shuffle_epi8(darkRow, column), _mm_shuffle_epi8(brightRow, column), levels);
        const __m128i powers = _mm_setr_epi8(1, 2, 4, 8, 16, 32, 64, INT8_MIN, 1, 2, 4, 8, 16, 32, 64, INT8_MIN);
        const __m128i bit = _mm_shuffle_epi8(powers, _mm_and_si128(_mm_srli_epi16(levels, 4), fourBits));
        return static_cast<WordBits>(_mm_movemask_epi8(_mm_cmpeq_epi8(_mm_and_si128(row, bit), bit)));
    }
};

#else

struct EqualTaps {
    void setLess(int) {}
    static WordBits knownAmong(WordBits ties, const Words&, const Words&, const Words& a2) {
        return ties & bothZero(a2, a2);
    }
    WordBits less(const Byte*) const { return 0; }
};

#endif

}  // namespace KORVANELASERALGO::kernels::KORVANE_KERNEL_SET

#endif  // KORVANE_KERNELS_LANES_EQUALTAPS_H
