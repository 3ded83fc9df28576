// The truncated sum of five weighted pixels a0 .. a4 in integers, with the bits of the sum in double precision.
//
// The weights are symmetric and their sum is 1, so the sum is a2 + T with T = w1 Q + w2 P, Q = a1 + a3 - 2 a2 and
// P = a0 + a4 - 2 a2. Q and P are integers of at most 510 that differ by at most 510, and the weights of a Gaussian of
// sigma 1 keep T at least 6.4e-7 away from every integer, unless Q = P = 0 (a test tries them all). Sums in double
// precision err by less than 1e-12, and weights rounded to multiples of 2^-33 change T by less than
// 2 * 510 * 2^-34 < 6e-8: each has the same integer part. Such a weight is 2^16 * coarse + fine, two 16-bit integers,
// so T = (C + F / 2^16) / 2^17 with the sums of products C and F in 32 bits, and rounding down twice is rounding down
// once.
//
// Where Q = P = 0, a tie, the sum is a2 but for its rounding errors, which decide between a2 and a2 - 1. There it is
// added up in double precision: beforehand for five equal pixels of each grey level, else pixel by pixel.

#ifndef KORVANE_KERNELS_LANES_FIVETAPS_H
#define KORVANE_KERNELS_LANES_FIVETAPS_H

#include "kernels/lanes/EqualTaps.h"

namespace KORVANELASERALGO::kernels::KORVANE_KERNEL_SET {

struct FiveTaps {
    double weights[3];  // from the centre outwards
    Register coarse;    // pairs w1, w2 in units of 2^-17
    Register fine;      // what is missing, in units of 2^-33
    EqualTaps equalTaps;

    explicit FiveTaps(const double* fromCentre) : weights{fromCentre[0], fromCentre[1], fromCentre[2]} {
        constexpr double kUnits = 8589934592.0;  // 2^33
        std::int32_t coarsePair = 0;
        std::int32_t finePair = 0;
        for (int k = 2; k >= 1; --k) {
            const std::int64_t fixed = static_cast<std::int64_t>(weights[k] * kUnits + 0.5);
            const std::int64_t rounded = (fixed + 0x8000) / 0x10000;
            coarsePair = coarsePair * 0x10000 + static_cast<std::int32_t>(rounded);
            // What is missing is the lower half, as a signed number.
            finePair = static_cast<std::int32_t>(static_cast<std::uint32_t>(finePair) << 16 |
                                                 static_cast<std::uint16_t>(fixed));
        }
        coarse = fillPairs(coarsePair);
        fine = fillPairs(finePair);
        for (int grey = 0; grey < 256; ++grey) {
            if (sum(grey, grey, grey, grey, grey) < grey) equalTaps.setLess(grey);
        }
    }

    double sum(int a0, int a1, int a2, int a3, int a4) const {
        return a0 * weights[2] + a1 * weights[1] + a2 * weights[0] + a3 * weights[1] + a4 * weights[2];
    }

    /// The sums of kWords pixels, rounded down: right but for `ties`, which rounding errors decide.
    Words roundedDown(const Words& a0, const Words& a1, const Words& a2, const Words& a3, const Words& a4,
                      WordBits& ties) const {
        const Words twice = a2 + a2;
        const Words q = a3 - twice + a1;
        const Words p = a4 - twice + a0;
        ties = bothZero(q, p);
        return a2 + Words::make([&](int i) {
                   return packWords(roundedDown(lowerPairs(q.part[i], p.part[i])),
                                    roundedDown(upperPairs(q.part[i], p.part[i])));
               });
    }

    /// Of `ties`, those whose sums in double precision are less than the pixel in the middle. `known` ones among
    /// them are looked up.
    WordBits lessAmong(WordBits ties, WordBits known, const Byte* a0, const Byte* a1, const Byte* a2, const Byte* a3,
                       const Byte* a4) const {
        WordBits less = known == 0 ? 0 : known & equalTaps.less(a2);
        for (WordBits rest = ties ^ known; rest != 0; rest &= rest - 1) {
            const int i = lowestBit(rest);
            less |= static_cast<WordBits>(sum(a0[i], a1[i], a2[i], a3[i], a4[i]) < a2[i]) << i;
        }
        return less;
    }

    Register roundedDown(Register pairs) const {
        const Register carried = shiftIntegersRight<16>(sumOfProducts(pairs, fine));
        return shiftIntegersRight<17>(addIntegers(sumOfProducts(pairs, coarse), carried));
    }
};

}  // namespace KORVANELASERALGO::kernels::KORVANE_KERNEL_SET

#endif  // KORVANE_KERNELS_LANES_FIVETAPS_H
