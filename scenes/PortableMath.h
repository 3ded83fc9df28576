/// @file PortableMath.h
/// @brief The few functions and random numbers that rendering needs, the same bits on every compiler and system.

#ifndef KORVANE_SCENES_PORTABLEMATH_H
#define KORVANE_SCENES_PORTABLEMATH_H

#include <cmath>
#include <cstdint>

namespace scenes {

/// exp(-t) for t >= 0, to a relative error of 1e-12; nothing but products and sums, so not a matter of the C library.
inline double expOfMinus(double t) {
    constexpr double kVanishes = 700.0;  // about where the result leaves the range of a double
    if (t > kVanishes) return 0.0;

    // exp(-t) = exp(-t / 2^k)^(2^k), with an argument so small that a short Taylor series is exact.
    constexpr double kSmall = 1.0 / 16.0;
    int squarings = 0;
    double u = t;
    while (u > kSmall) {
        u *= 0.5;
        ++squarings;
    }
    constexpr int kTerms = 9;
    double power = 1.0;
    for (int n = kTerms; n >= 1; --n) power = 1.0 - u * power / n;
    for (; squarings > 0; --squarings) power *= power;
    return power;
}

/// A wave of period 1 and values -1 .. 1, made of parabolas: looks like a sine without being one.
inline double parabolicWave(double periods) {
    const double phase = periods - std::floor(periods);
    const double half = phase < 0.5 ? phase : phase - 0.5;
    const double arch = 16.0 * half * (0.5 - half);
    return phase < 0.5 ? arch : -arch;
}

/// Scrambles 64 bits: the output function of SplitMix64 (Steele, Lea, Flood: Fast Splittable Pseudorandom Number
/// Generators, 2014).
inline std::uint64_t scramble(std::uint64_t bits) {
    bits = (bits ^ (bits >> 30)) * 0xBF58476D1CE4E5B9ULL;
    bits = (bits ^ (bits >> 27)) * 0x94D049BB133111EBULL;
    return bits ^ (bits >> 31);
}

/// Random numbers by their index: draw i of a stream does not depend on who drew before, so loops stay free of state.
class RandomStream {
public:
    /// Streams of different purposes are independent of each other.
    RandomStream(std::uint32_t seed, std::uint32_t frame, std::uint32_t purpose)
        : key_(scramble(scramble((std::uint64_t{seed} << 32 | frame) + kIncrement) + purpose)) {}

    std::uint64_t bitsAt(std::uint64_t index) const { return scramble(key_ + index * kIncrement); }

    /// Sum of eight random bytes: close to normal, mean `kNormalSumMean`, standard deviation `kNormalSumDeviation`,
    /// never farther from the mean than 4.9 standard deviations.
    int normalSumAt(std::uint64_t index) const {
        constexpr std::uint64_t kEvenBytes = 0x00FF00FF00FF00FFULL;
        constexpr std::uint64_t kOnes = 0x0001000100010001ULL;
        const std::uint64_t bits = bitsAt(index);
        const std::uint64_t pairs = (bits & kEvenBytes) + ((bits >> 8) & kEvenBytes);
        return static_cast<int>((pairs * kOnes) >> 48);
    }
    static constexpr int kNormalSumMean = 1020;                        // 8 * 127.5
    static constexpr double kNormalSumDeviation = 209.02152999152983;  // sqrt(8 * (256^2 - 1) / 12)

    /// Next number of the sequence, uniform in [0, 1).
    double uniform() {
        constexpr double kOneIn2To53 = 1.0 / 9007199254740992.0;
        return static_cast<double>(bitsAt(next_++) >> 11) * kOneIn2To53;
    }
    /// Next number of the sequence, uniform in low .. high.
    double uniform(double low, double high) { return low + (high - low) * uniform(); }
    /// Next number of the sequence, an integer from low to high, both included.
    int integer(int low, int high) { return low + static_cast<int>(uniform() * (high - low + 1)); }
    /// Next number of the sequence, normal with mean 0 and standard deviation 1.
    double normal() { return (normalSumAt(next_++) - kNormalSumMean) / kNormalSumDeviation; }

private:
    static constexpr std::uint64_t kIncrement = 0x9E3779B97F4A7C15ULL;  // 2^64 / golden ratio
    std::uint64_t key_;
    std::uint64_t next_ = 0;
};

}  // namespace scenes

#endif  // KORVANE_SCENES_PORTABLEMATH_H
