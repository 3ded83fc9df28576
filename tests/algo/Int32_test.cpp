// truncateToInt32: from double to a 32-bit integer, defined for every double.

#include "algo/Int32.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>

namespace {

using KORVANELASERALGO::truncateToInt32;

constexpr std::int32_t kLowest = std::numeric_limits<std::int32_t>::min();
constexpr std::int32_t kHighest = std::numeric_limits<std::int32_t>::max();

TEST(Int32, TruncatesTowardZero) {
    EXPECT_EQ(truncateToInt32(1.999), 1);
    EXPECT_EQ(truncateToInt32(-1.999), -1);
    EXPECT_EQ(truncateToInt32(0.999), 0);
    EXPECT_EQ(truncateToInt32(-0.999), 0);
    EXPECT_EQ(truncateToInt32(2.5), 2);
    EXPECT_EQ(truncateToInt32(-2.5), -2);
}

TEST(Int32, WholeNumbersStay) {
    for (int value : {0, 1, -1, 60, -60, 1 << 30, kHighest, kLowest})
        EXPECT_EQ(truncateToInt32(static_cast<double>(value)), value);
    EXPECT_EQ(truncateToInt32(-0.0), 0);
    EXPECT_EQ(truncateToInt32(std::numeric_limits<double>::denorm_min()), 0);
}

TEST(Int32, ValuesThatTruncateIntoTheRangeAreInside) {
    EXPECT_EQ(truncateToInt32(2147483647.5), kHighest);
    EXPECT_EQ(truncateToInt32(std::nextafter(2147483648.0, 0.0)), kHighest);
    EXPECT_EQ(truncateToInt32(-2147483648.5), kLowest);
    EXPECT_EQ(truncateToInt32(-2147483647.5), -kHighest);
}

TEST(Int32, ValuesAboveTheRangeGiveTheLowestInteger) {
    for (double value : {2147483648.0, 2147483649.0, 4294967296.0, 4294967301.0, 1e18, 1e300})
        EXPECT_EQ(truncateToInt32(value), kLowest) << value;
}

TEST(Int32, ValuesBelowTheRangeGiveTheLowestInteger) {
    for (double value : {-2147483649.0, -2147483650.0, -4294967291.0, -1e18, -1e300})
        EXPECT_EQ(truncateToInt32(value), kLowest) << value;
}

TEST(Int32, InfinitiesAndNotANumberGiveTheLowestInteger) {
    EXPECT_EQ(truncateToInt32(std::numeric_limits<double>::infinity()), kLowest);
    EXPECT_EQ(truncateToInt32(-std::numeric_limits<double>::infinity()), kLowest);
    EXPECT_EQ(truncateToInt32(std::numeric_limits<double>::quiet_NaN()), kLowest);
    EXPECT_EQ(truncateToInt32(-std::numeric_limits<double>::quiet_NaN()), kLowest);
}

}  // namespace
