// findNearLine for lines of every direction; the methods ask for those with a sine of 0 and more.

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <numeric>
#include <random>
#include <vector>

#include "kernels/kernels.h"

namespace {

using KORVANELASERALGO::kernels::active;
using KORVANELASERALGO::kernels::BoxedPoints;
using KORVANELASERALGO::kernels::kBoxPoints;

TEST(FindNearLine, ListsThePointsNearALineOfAnyDirection) {
    constexpr std::size_t kBoxes = 32;
    constexpr float kNotANumber = std::numeric_limits<float>::quiet_NaN();
    constexpr float kTolerance = 1.5f;
    std::mt19937 random(6);
    std::vector<float> x;
    std::vector<float> y;
    std::vector<float> centreX, centreY, halfWidth, halfHeight;
    for (std::size_t box = 0; box < kBoxes; ++box) {
        // The last box has five points, and then none.
        const float left = static_cast<float>(random() % 1000);
        const float top = static_cast<float>(random() % 1000);
        for (int i = 0; i < kBoxPoints; ++i) {
            const bool missing = box + 1 == kBoxes && i >= 5;
            x.push_back(missing ? kNotANumber : left + static_cast<float>(random() % 21));
            y.push_back(missing ? kNotANumber : top + static_cast<float>(random() % 9));
        }
        centreX.push_back(left + 10.0f);
        centreY.push_back(top + 4.0f);
        halfWidth.push_back(10.0f);
        halfHeight.push_back(4.0f);
    }
    const BoxedPoints points = {x.data(),       y.data(),         kBoxes,           centreX.data(),
                                centreY.data(), halfWidth.data(), halfHeight.data()};

    std::size_t listed = 0;
    for (int degrees = 0; degrees < 360; degrees += 3) {
        const float cosine = std::cos(static_cast<float>(degrees) * 0.017453292f);
        const float sine = std::sin(static_cast<float>(degrees) * 0.017453292f);
        const float distance = 500.0f * (cosine + sine);  // through the middle
        std::vector<std::size_t> expected;
        for (std::size_t i = 0; i < x.size(); ++i) {
            if (std::fabs(x[i] * cosine + y[i] * sine - distance) < kTolerance) expected.push_back(i);
        }
        std::vector<std::size_t> indices(x.size());
        const std::size_t count =
            active().findNearLine(points, cosine, sine, distance, kTolerance, 0.1f, indices.data());
        indices.resize(count);
        EXPECT_EQ(indices, expected) << degrees << " degrees";
        listed += count;
    }
    EXPECT_GT(listed, 100u);
}

// A line across a row of points, and one across a column of them.
TEST(FindNearLine, FindsPointsOfBoxesWithoutHeightOrWidth) {
    std::vector<float> along(kBoxPoints * kBoxPoints);
    std::iota(along.begin(), along.end(), 0.0f);
    const std::vector<float> across(along.size(), 7.0f);
    std::vector<float> centres(kBoxPoints);
    for (std::size_t box = 0; box < centres.size(); ++box)
        centres[box] = static_cast<float>(box) * kBoxPoints + 0.5f * (kBoxPoints - 1);
    const std::vector<float> halves(kBoxPoints, 0.5f * (kBoxPoints - 1));
    const std::vector<float> sevens(kBoxPoints, 7.0f);
    const std::vector<float> zeros(kBoxPoints, 0.0f);
    const BoxedPoints row = {along.data(),  across.data(), kBoxPoints,  centres.data(),
                             sevens.data(), halves.data(), zeros.data()};
    const BoxedPoints column = {across.data(),  along.data(), kBoxPoints,   sevens.data(),
                                centres.data(), zeros.data(), halves.data()};
    std::vector<std::size_t> indices(along.size());
    EXPECT_EQ(active().findNearLine(row, 1.0f, 0.0f, 100.0f, 1.5f, 0.1f, indices.data()), 3u);
    EXPECT_EQ(indices[0], 99u);
    EXPECT_EQ(active().findNearLine(column, 0.0f, 1.0f, 100.0f, 1.5f, 0.1f, indices.data()), 3u);
    EXPECT_EQ(indices[2], 101u);
}

// The tolerance is the distance of a point by the rule's operations in single precision, or the next number.
TEST(FindNearLine, TakesPointsNearerThanTheToleranceAlone) {
    std::mt19937 random(7);
    std::vector<float> x(kBoxPoints * kBoxPoints);
    std::vector<float> y(x.size());
    std::vector<float> centres(kBoxPoints, 0.0f);
    std::vector<float> halves(kBoxPoints, 4000.0f);
    const BoxedPoints points = {x.data(),       y.data(),      kBoxPoints,   centres.data(),
                                centres.data(), halves.data(), halves.data()};
    std::vector<std::size_t> indices(x.size());
    for (int n = 0; n < 1000; ++n) {
        std::fill(x.begin(), x.end(), std::numeric_limits<float>::quiet_NaN());
        std::fill(y.begin(), y.end(), std::numeric_limits<float>::quiet_NaN());
        const std::size_t place = random() % x.size();
        x[place] = static_cast<float>(random() % 1280);
        y[place] = static_cast<float>(random() % 1024);
        const float theta = static_cast<float>(n % 180) * 0.017453292f;
        const float cosine = std::cos(theta);
        const float sine = std::sin(theta);
        const float distance = static_cast<float>(random() % 2000) - 500.0f;
        const float offset = std::fabs(x[place] * cosine + y[place] * sine - distance);
        const float above = std::nextafter(offset, 1e9f);
        EXPECT_EQ(active().findNearLine(points, cosine, sine, distance, offset, 0.1f, indices.data()), 0u) << n;
        EXPECT_EQ(active().findNearLine(points, cosine, sine, distance, above, 0.1f, indices.data()), 1u) << n;
        EXPECT_EQ(indices[0], place) << n;
    }
}

}  // namespace
