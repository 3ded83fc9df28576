#include "scenes/PortableMath.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>

using scenes::expOfMinus;
using scenes::parabolicWave;
using scenes::RandomStream;

TEST(ExpOfMinus, AgreesWithTheCLibraryToTwelveDigits) {
    for (double t = 0.0; t < 100.0; t += 0.037) EXPECT_NEAR(expOfMinus(t) / std::exp(-t), 1.0, 1e-12) << "t = " << t;
}

TEST(ExpOfMinus, IsExactlyOneAtZeroAndVanishesFarOut) {
    EXPECT_EQ(expOfMinus(0.0), 1.0);
    EXPECT_EQ(expOfMinus(1e6), 0.0);
}

TEST(ParabolicWave, HasTheZerosAndPeaksOfASine) {
    EXPECT_EQ(parabolicWave(0.0), 0.0);
    EXPECT_EQ(parabolicWave(0.25), 1.0);
    EXPECT_EQ(parabolicWave(0.5), 0.0);
    EXPECT_EQ(parabolicWave(0.75), -1.0);
    EXPECT_EQ(parabolicWave(-0.75), 1.0);
    EXPECT_EQ(parabolicWave(7.25), 1.0);
}

TEST(RandomStream, NormalNumbersHaveMeanZeroAndDeviationOne) {
    RandomStream random(1, 2, 3);
    constexpr int kDraws = 200000;
    double sum = 0.0;
    double squares = 0.0;
    double fourths = 0.0;
    for (int i = 0; i < kDraws; ++i) {
        const double value = random.normal();
        sum += value;
        squares += value * value;
        fourths += value * value * value * value;
    }
    // Four standard errors: 1 / sqrt(n), sqrt(2 / n), sqrt(96 / n). The kurtosis of eight uniform bytes is 3 - 1.2 / 8.
    EXPECT_NEAR(sum / kDraws, 0.0, 0.009);
    EXPECT_NEAR(squares / kDraws, 1.0, 0.013);
    EXPECT_NEAR(fourths / kDraws, 2.85, 0.09);
}

TEST(RandomStream, UniformNumbersFillTheUnitIntervalEvenly) {
    RandomStream random(5, 0, 0);
    constexpr int kDraws = 100000;
    int perTenth[10] = {};
    for (int i = 0; i < kDraws; ++i) {
        const double value = random.uniform();
        ASSERT_GE(value, 0.0);
        ASSERT_LT(value, 1.0);
        ++perTenth[static_cast<int>(value * 10.0)];
    }
    for (int count : perTenth) EXPECT_NEAR(count, kDraws / 10, 400);  // four standard errors: 4 * sqrt(n * 0.1 * 0.9)
}

TEST(RandomStream, IntegersReachBothBounds) {
    RandomStream random(5, 0, 0);
    int seen[3] = {};
    for (int i = 0; i < 100; ++i) {
        const int value = random.integer(3, 5);
        ASSERT_GE(value, 3);
        ASSERT_LE(value, 5);
        ++seen[value - 3];
    }
    for (int count : seen) EXPECT_GT(count, 10);
}

TEST(RandomStream, SeedFrameAndPurposeEachChangeTheNumbers) {
    const std::uint64_t bits = RandomStream(1, 2, 3).bitsAt(0);
    EXPECT_NE(bits, RandomStream(9, 2, 3).bitsAt(0));
    EXPECT_NE(bits, RandomStream(1, 9, 3).bitsAt(0));
    EXPECT_NE(bits, RandomStream(1, 2, 9).bitsAt(0));
    EXPECT_NE(RandomStream(1, 2, 3).bitsAt(0), RandomStream(2, 1, 3).bitsAt(0));
    EXPECT_EQ(bits, RandomStream(1, 2, 3).bitsAt(0));
}

TEST(RandomStream, FollowsTheGeneratorThatItNames) {
    // With key 0, draw i is output i of SplitMix64 from state 0; these are the first outputs of the published
    // generator.
    EXPECT_EQ(scenes::scramble(0x9E3779B97F4A7C15ULL), 0xE220A8397B1DCDAFULL);
    EXPECT_EQ(scenes::scramble(2 * 0x9E3779B97F4A7C15ULL), 0x6E789E6AA1B965F4ULL);
}
