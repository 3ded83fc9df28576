#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>

#include "KorvaneLaserAlgo.h"
#include "support/Support.h"

namespace {

using support::KorvaneLaserAlgo;
using support::Point2d;
using support::Points2d;
using support::sameBits;
using support::tagKorvaneLaserAlgoCalibrationInfo;

constexpr double kNotANumber = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();

struct Lens {
    double fx = 1, cx = 0, fy = 1, cy = 0;                // pixels
    double k1 = 0, k2 = 0, p1 = 0, p2 = 0, k3 = 0;        // distortion
    double skew = 0, m10 = 0, m20 = 0, m21 = 0, m22 = 1;  // the rest of the camera matrix, never read
};

/// An ordinary lens with every term of the distortion.
constexpr Lens kLens{.fx = 1203.7,
                     .cx = 641.3,
                     .fy = 1198.9,
                     .cy = 478.2,
                     .k1 = -0.31,
                     .k2 = 0.17,
                     .p1 = 0.0013,
                     .p2 = -0.0021,
                     .k3 = -0.043};

void setLens(KorvaneLaserAlgo& algo, const Lens& lens) {
    tagKorvaneLaserAlgoCalibrationInfo info{};
    const double camera[] = {lens.fx, lens.skew, lens.cx, lens.m10, lens.fy, lens.cy, lens.m20, lens.m21, lens.m22};
    const double distortion[] = {lens.k1, lens.k2, lens.p1, lens.p2, lens.k3};
    std::copy(std::begin(camera), std::end(camera), info.CameraMatrix);
    std::copy(std::begin(distortion), std::end(distortion), info.DistCoeffs);
    algo.SetCalibrationInfo(&info);
}

Points2d undistorted(const Lens& lens, Points2d points) {
    KorvaneLaserAlgo algo;
    setLens(algo, lens);
    algo.undistortPoints2(points);
    return points;
}

Point2d undistorted(const Lens& lens, const Point2d& point) {
    return undistorted(lens, Points2d{point}).front();
}

/// The fixed-point iteration, step by step.
Point2d iterated(const Lens& lens, const Point2d& point, int iterations) {
    const double x0 = (point.x - lens.cx) / lens.fx;
    const double y0 = (point.y - lens.cy) / lens.fy;
    double x = x0;
    double y = y0;
    for (int i = 0; i < iterations; ++i) {
        const double r2 = x * x + y * y;
        const double r4 = r2 * r2;
        const double r6 = r4 * r2;
        const double g = 1.0 / (((1.0 + lens.k1 * r2) + lens.k2 * r4) + lens.k3 * r6);
        const double dx = 2.0 * lens.p1 * x * y + lens.p2 * (r2 + 2.0 * (x * x));
        const double dy = lens.p1 * (r2 + 2.0 * (y * y)) + 2.0 * lens.p2 * x * y;
        x = (x0 - dx) * g;
        y = (y0 - dy) * g;
    }
    return {lens.fx * x + lens.cx, lens.fy * y + lens.cy};
}

/// Columns and rows all over the sensor and beyond its edges.
Points2d manyPoints() {
    Points2d points;
    for (int row = -100; row <= 1100; row += 75) {
        for (int column = -100; column <= 1400; column += 60) points.push_back({column + 0.123 * row, row + 0.4567});
    }
    return points;
}

TEST(undistortPoints2, EmptyVectorIsLeftAsItIs) {
    EXPECT_TRUE(undistorted(kLens, Points2d{}).empty());
}

TEST(undistortPoints2, WithoutDistortionEveryPointComesBackUpToRounding) {
    const Lens lens{.fx = 1203.7, .cx = 641.3, .fy = 1198.9, .cy = 478.2};
    Points2d expected;
    for (const Point2d& point : manyPoints()) {
        expected.push_back(
            {lens.fx * ((point.x - lens.cx) / lens.fx) + lens.cx, lens.fy * ((point.y - lens.cy) / lens.fy) + lens.cy});
        ASSERT_NEAR(expected.back().x, point.x, 1e-9);
        ASSERT_NEAR(expected.back().y, point.y, 1e-9);
    }
    EXPECT_TRUE(sameBits(undistorted(lens, manyPoints()), expected));
}

TEST(undistortPoints2, EveryPointFollowsTheIterationBitForBit) {
    Points2d expected;
    for (const Point2d& point : manyPoints()) expected.push_back(iterated(kLens, point, 5));
    EXPECT_TRUE(sameBits(undistorted(kLens, manyPoints()), expected));
}

TEST(undistortPoints2, AnyNumberOfPointsFollowsTheIterationBitForBit) {
    const Points2d all = manyPoints();
    for (int count = 0; count <= 100; ++count) {
        const Points2d points(all.begin(), all.begin() + count);
        Points2d expected;
        for (const Point2d& point : points) expected.push_back(iterated(kLens, point, 5));
        EXPECT_TRUE(sameBits(undistorted(kLens, points), expected)) << count << " points";
    }
}

TEST(undistortPoints2, StrongTangentialTermsFollowTheIterationBitForBit) {
    const Lens lens{.k1 = 0.2, .k2 = -0.1, .p1 = 0.17, .p2 = -0.23, .k3 = 0.05};
    Points2d points;
    Points2d expected;
    for (int row = -9; row <= 9; ++row) {
        for (int column = -9; column <= 9; ++column) {
            points.push_back({0.107 * column, 0.093 * row});
            expected.push_back(iterated(lens, points.back(), 5));
        }
    }
    EXPECT_TRUE(sameBits(undistorted(lens, points), expected));
}

TEST(undistortPoints2, ForwardDistortionOfTheResultIsThePoint) {
    const Point2d point{900, 300};
    const Point2d result = undistorted(kLens, point);
    ASSERT_GT(std::abs(result.x - point.x), 1.0);  // pixels

    const double x = (result.x - kLens.cx) / kLens.fx;
    const double y = (result.y - kLens.cy) / kLens.fy;
    const double r2 = x * x + y * y;
    const double radial = 1 + kLens.k1 * r2 + kLens.k2 * r2 * r2 + kLens.k3 * r2 * r2 * r2;
    const double distortedX = x * radial + 2 * kLens.p1 * x * y + kLens.p2 * (r2 + 2 * x * x);
    const double distortedY = y * radial + kLens.p1 * (r2 + 2 * y * y) + 2 * kLens.p2 * x * y;
    EXPECT_NEAR(kLens.fx * distortedX + kLens.cx, point.x, 1e-3);
    EXPECT_NEAR(kLens.fy * distortedY + kLens.cy, point.y, 1e-3);
}

// ---- Each coefficient has its place and its power. On an axis of a lens with fx = fy = 1 one term is left.

TEST(undistortPoints2, FirstCoefficientIsK1AndBelongsToTheSecondPower) {
    // 1 -> 1/2 -> 4/5 -> 25/41 -> 1681/2306 -> 5317636/8143397
    EXPECT_NEAR(undistorted({.k1 = 1}, Point2d{1, 0}).x, 5317636.0 / 8143397.0, 1e-14);
}

TEST(undistortPoints2, SecondCoefficientIsK2AndBelongsToTheFourthPower) {
    double x = 1;
    for (int i = 0; i < 5; ++i) x = 1 / (1 + std::pow(x, 4));
    EXPECT_NEAR(undistorted({.k2 = 1}, Point2d{1, 0}).x, x, 1e-14);
}

TEST(undistortPoints2, FifthCoefficientIsK3AndBelongsToTheSixthPower) {
    double x = 1;
    for (int i = 0; i < 5; ++i) x = 1 / (1 + std::pow(x, 6));
    EXPECT_NEAR(undistorted({.k3 = 1}, Point2d{1, 0}).x, x, 1e-14);
}

TEST(undistortPoints2, ThirdCoefficientIsP1AndShiftsRowsByThreeSquares) {
    double y = 1;
    for (int i = 0; i < 5; ++i) y = 1 - 0.25 * (3 * y * y);
    const Point2d result = undistorted({.p1 = 0.25}, Point2d{0, 1});
    EXPECT_NEAR(result.y, y, 1e-14);
    EXPECT_EQ(result.x, 0.0);
}

TEST(undistortPoints2, FourthCoefficientIsP2AndShiftsColumnsByThreeSquares) {
    double x = 1;
    for (int i = 0; i < 5; ++i) x = 1 - 0.25 * (3 * x * x);
    const Point2d result = undistorted({.p2 = 0.25}, Point2d{1, 0});
    EXPECT_NEAR(result.x, x, 1e-14);
    EXPECT_EQ(result.y, 0.0);
}

TEST(undistortPoints2, RadialFactorIsSummedFromTheLeft) {
    // 1 - 1 is 0, and the small last terms survive; summed from the right they would vanish in the 1.
    const Lens lens{.k1 = -1, .k2 = 1e-17, .k3 = 1e-17};
    ASSERT_EQ(1.0 + (-1.0 + (1e-17 + 1e-17)), 0.0);
    const Point2d result = undistorted(lens, Point2d{1, 0});
    EXPECT_TRUE(std::isfinite(result.x));
    EXPECT_SAME_BITS(result, iterated(lens, {1, 0}, 5));
}

// ---- The iteration count

TEST(undistortPoints2, ExactlyFiveIterationsAreTaken) {
    const Lens lens{.k1 = 1};
    const Point2d point{1, 0};
    ASSERT_GT(std::abs(iterated(lens, point, 5).x - iterated(lens, point, 4).x), 0.01);
    ASSERT_GT(std::abs(iterated(lens, point, 5).x - iterated(lens, point, 6).x), 0.01);
    EXPECT_SAME_BITS(undistorted(lens, point), iterated(lens, point, 5));
}

TEST(undistortPoints2, IterationThatDoesNotConvergeEndsAfterFiveToo) {
    // Far from the centre the iterates jump to and fro between two values.
    const Lens lens{.k1 = 1};
    const Point2d point{3, 0};
    ASSERT_LT(iterated(lens, point, 5).x, 1.0);
    ASSERT_GT(iterated(lens, point, 6).x, 2.0);
    EXPECT_SAME_BITS(undistorted(lens, point), iterated(lens, point, 5));
}

TEST(undistortPoints2, ConvergedIterationIsTakenToItsEnd) {
    // Close to the centre all five iterates agree to a few bits only: an early exit by a tolerance would show.
    const Lens lens{.k1 = 0.1};
    const Point2d point{0.1, 0.05};
    ASSERT_FALSE(sameBits(iterated(lens, point, 5), iterated(lens, point, 4)));
    ASSERT_NEAR(iterated(lens, point, 5).x, iterated(lens, point, 4).x, 1e-11);
    EXPECT_SAME_BITS(undistorted(lens, point), iterated(lens, point, 5));
}

TEST(undistortPoints2, BothCoordinatesAreComputedBeforeEitherIsReplaced) {
    // The model is symmetric for p1 = p2, so a point of the diagonal stays on it.
    const Lens lens{.k1 = 0.2, .k2 = -0.1, .p1 = 0.05, .p2 = 0.05, .k3 = 0.03};
    const Point2d result = undistorted(lens, Point2d{0.7, 0.7});
    EXPECT_SAME_BITS(result.x, result.y);
    EXPECT_SAME_BITS(result, iterated(lens, {0.7, 0.7}, 5));
}

// ---- Which points, which settings

TEST(undistortPoints2, PointAtThePrincipalPointStaysExactly) {
    EXPECT_SAME_BITS(undistorted(kLens, Point2d{kLens.cx, kLens.cy}), (Point2d{kLens.cx, kLens.cy}));
}

TEST(undistortPoints2, PlaceholdersOfColumnsWithoutAStripeAreTransformedToo) {
    const Points2d points = {{100, 50}, {640, 470}, {100, 50}};  // offset (100, 50): the first and last are empty
    const Points2d result = undistorted(kLens, points);
    ASSERT_EQ(result.size(), 3U);
    EXPECT_FALSE(sameBits(result[0], points[0]));
    EXPECT_SAME_BITS(result[0], iterated(kLens, points[0], 5));
    EXPECT_SAME_BITS(result[1], iterated(kLens, points[1], 5));
    EXPECT_SAME_BITS(result[2], result[0]);
}

TEST(undistortPoints2, NewObjectMakesEveryPointNotANumber) {
    KorvaneLaserAlgo algo;
    Points2d points = {{0, 0}, {3, 0}, {0, 4}, {320, 240}, {-1, -2}};
    algo.undistortPoints2(points);
    ASSERT_EQ(points.size(), 5U);
    for (const Point2d& point : points) {
        EXPECT_TRUE(std::isnan(point.x));
        EXPECT_TRUE(std::isnan(point.y));
    }
}

TEST(undistortPoints2, OneZeroFocalLengthMakesBothCoordinatesNotANumber) {
    for (const Lens& lens : {Lens{.fx = 0}, Lens{.fy = 0}}) {
        const Point2d result = undistorted(lens, Point2d{2, 3});
        EXPECT_TRUE(std::isnan(result.x));
        EXPECT_TRUE(std::isnan(result.y));
    }
}

TEST(undistortPoints2, RadialFactorOfZeroYieldsNoFiniteNumber) {
    // 1 - 0.25 * 2^2 = 0 at the very start.
    const Point2d result = undistorted({.k1 = -0.25}, Point2d{2, 0});
    EXPECT_FALSE(std::isfinite(result.x));
    EXPECT_FALSE(std::isfinite(result.y));
}

TEST(undistortPoints2, BadPointLeavesItsNeighboursAlone) {
    const Points2d result = undistorted(kLens, Points2d{{500, 400}, {kNotANumber, 1}, {kInfinity, 1}, {700, 400}});
    EXPECT_SAME_BITS(result[0], iterated(kLens, {500, 400}, 5));
    EXPECT_TRUE(std::isnan(result[1].x));
    EXPECT_TRUE(std::isnan(result[1].y));
    EXPECT_TRUE(std::isnan(result[2].x));
    EXPECT_TRUE(std::isnan(result[2].y));
    EXPECT_SAME_BITS(result[3], iterated(kLens, {700, 400}, 5));
}

TEST(undistortPoints2, SkewAndTheRestOfTheCameraMatrixAreNotRead) {
    Lens lens = kLens;
    lens.skew = lens.m10 = lens.m20 = lens.m21 = lens.m22 = kNotANumber;
    EXPECT_TRUE(sameBits(undistorted(lens, manyPoints()), undistorted(kLens, manyPoints())));
}

TEST(undistortPoints2, LastCalibrationCounts) {
    KorvaneLaserAlgo algo;
    setLens(algo, kLens);
    Points2d first = {{900, 300}};
    algo.undistortPoints2(first);

    const Lens other{.fx = 2, .cx = 1, .fy = 4, .cy = -1, .k1 = 0.001};
    setLens(algo, other);
    Points2d second = {{900, 300}};
    algo.undistortPoints2(second);

    EXPECT_SAME_BITS(first[0], iterated(kLens, {900, 300}, 5));
    EXPECT_SAME_BITS(second[0], iterated(other, {900, 300}, 5));
}

TEST(undistortPoints2, CallsDoNotInfluenceOneAnother) {
    KorvaneLaserAlgo algo;
    setLens(algo, kLens);
    Points2d first = manyPoints();
    Points2d second = manyPoints();
    algo.undistortPoints2(first);
    algo.undistortPoints2(second);
    EXPECT_TRUE(sameBits(first, second));
}

}  // namespace
