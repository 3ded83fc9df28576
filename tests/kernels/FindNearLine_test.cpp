// findNearLine for lines of every direction; the methods ask for those with a sine of 0 and more.

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
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

}  // namespace
