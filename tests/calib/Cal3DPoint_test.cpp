#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <ostream>
#include <string>
#include <vector>

#include "KorvaneLaserAlgo.h"
#include "support/Support.h"

namespace {

using support::KorvaneLaserAlgo;
using support::Mask;
using support::Point2d;
using support::Point3d;
using support::Points2d;
using support::Profile;
using support::sameBits;
using support::setRoi;
using support::tagKorvaneLaserAlgoCalibrationInfo;

constexpr double kNotANumber = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr int kIntMax = std::numeric_limits<int>::max();
constexpr int kIntMin = std::numeric_limits<int>::min();

constexpr Point3d kEmptyPoint{0, 0, 0};

using LightSurface = std::array<double, 6>;
using RigidTransform = std::array<double, 12>;
constexpr RigidTransform kIdentity{1, 0, 0, 0, 1, 0, 0, 0, 1, 0, 0, 0};

/// A camera whose normalised coordinates are the pixel coordinates themselves.
tagKorvaneLaserAlgoCalibrationInfo unitCamera(const LightSurface& surface, const RigidTransform& rt = kIdentity) {
    tagKorvaneLaserAlgoCalibrationInfo info{};
    info.CameraMatrix[0] = info.CameraMatrix[4] = info.CameraMatrix[8] = 1;
    std::copy(surface.begin(), surface.end(), info.LaserPlane);
    std::copy(rt.begin(), rt.end(), info.RT);
    return info;
}

using Method = void (KorvaneLaserAlgo::*)(bool*, const Points2d&, Profile&);

/// Converts points that are all marked.
Profile converted(Method method, tagKorvaneLaserAlgoCalibrationInfo calibration, const Points2d& points,
                  int offsetX = 0) {
    KorvaneLaserAlgo algo;
    const int width = static_cast<int>(points.size());
    setRoi(algo, width, 1, offsetX);
    algo.SetCalibrationInfo(&calibration);
    Mask mask(width);
    std::fill_n(mask.data(), width, true);
    Profile profile;
    (algo.*method)(mask.data(), points, profile);
    return profile;
}

/// Converts one point of a one-column region whose only column is the one of the point.
Point3d convertedPoint(Method method, const tagKorvaneLaserAlgoCalibrationInfo& calibration, const Point2d& point) {
    const Profile profile = converted(method, calibration, {point}, 1000);  // columns below 1000.5 are accepted
    EXPECT_EQ(profile.size(), 1U);
    return profile.at(0);
}

Point3d plane(const LightSurface& surface, const Point2d& point, const RigidTransform& rt = kIdentity) {
    return convertedPoint(&KorvaneLaserAlgo::Cal3DPoint1, unitCamera(surface, rt), point);
}

Point3d curved(const LightSurface& surface, const Point2d& point, const RigidTransform& rt = kIdentity) {
    return convertedPoint(&KorvaneLaserAlgo::Cal3DPoint2, unitCamera(surface, rt), point);
}

bool allNotANumber(const Point3d& point) {
    return std::isnan(point.x) && std::isnan(point.y) && std::isnan(point.z);
}

bool noneFinite(const Point3d& point) {
    return !std::isfinite(point.x) && !std::isfinite(point.y) && !std::isfinite(point.z);
}

// ---- What both methods share: which columns yield a point, and the rigid transform. In row 1 both light surfaces lie
// at depth 2, so that pixel (u, 1) becomes (2 u, 2, 2).

struct Variant {
    const char* name;
    Method method;
    LightSurface surface;
};

void PrintTo(const Variant& variant, std::ostream* stream) {
    *stream << variant.name;
}

class Cal3DPoint : public testing::TestWithParam<Variant> {
protected:
    void setCalibration(const RigidTransform& rt = kIdentity) {
        tagKorvaneLaserAlgoCalibrationInfo info = unitCamera(GetParam().surface, rt);
        algo_.SetCalibrationInfo(&info);
    }
    void convert(Mask& mask, const Points2d& points, Profile& profile) {
        (algo_.*GetParam().method)(mask.data(), points, profile);
    }
    /// Whether column 0 of a region yields a point for a stripe at u.
    bool accepts(double u, int offsetX, int width) {
        setRoi(algo_, width, 1, offsetX);
        setCalibration();
        Mask mask(width);
        mask[0] = true;
        Profile profile;
        convert(mask, Points2d(static_cast<std::size_t>(width), Point2d{u, 1}), profile);
        const bool accepted = !sameBits(profile.at(0), kEmptyPoint);
        if (accepted) {
            EXPECT_SAME_BITS(profile[0], (Point3d{2 * u, 2, 2}));
        }
        return accepted;
    }

    KorvaneLaserAlgo algo_;
};

INSTANTIATE_TEST_SUITE_P(Both, Cal3DPoint,
                         testing::Values(Variant{"Cal3DPoint1", &KorvaneLaserAlgo::Cal3DPoint1, {2, 0, 0, 0, 0, 0}},
                                         // s^2 - s - 2 = 0 has the roots 2 and -1
                                         Variant{"Cal3DPoint2", &KorvaneLaserAlgo::Cal3DPoint2, {-2, 0, 0, 0, 0, 1}}),
                         [](const auto& variant) { return std::string(variant.param.name); });

TEST_P(Cal3DPoint, EveryMarkedColumnYieldsItsPoint) {
    setRoi(algo_, 3, 1);
    setCalibration();
    Mask mask(3);
    mask[0] = mask[1] = mask[2] = true;
    Profile profile;
    convert(mask, {{0, 1}, {1, 1}, {1.5, 1}}, profile);
    EXPECT_TRUE(sameBits(profile, Profile{{0, 2, 2}, {2, 2, 2}, {3, 2, 2}}));
}

TEST_P(Cal3DPoint, UnmarkedColumnYieldsTheEmptyPoint) {
    setRoi(algo_, 4, 1);
    setCalibration();
    Mask mask(4);
    mask[0] = mask[2] = true;
    Profile profile;
    convert(mask, {{0.5, 1}, {1, 1}, {2, 1}, {3, 1}}, profile);
    EXPECT_TRUE(sameBits(profile, Profile{{1, 2, 2}, kEmptyPoint, {4, 2, 2}, kEmptyPoint}));
    EXPECT_EQ(mask.marked(), (std::vector<int>{0, 2}));
}

TEST_P(Cal3DPoint, AnyNumberOfColumnsYieldsItsPoints) {
    for (int width = 1; width <= 100; ++width) {
        setRoi(algo_, width, 1);
        setCalibration();
        Mask mask(width);
        Points2d points;
        Profile expected;
        for (int c = 0; c < width; ++c) {
            mask[c] = c % 3 != 1 && c % 11 != 0;
            points.push_back({static_cast<double>(c % 7 == 6 ? width : c), 1});  // some beyond the upper bound
            const double u = points.back().x;
            expected.push_back(mask[c] && u < width ? Point3d{2 * u, 2, 2} : kEmptyPoint);
        }
        Profile profile(static_cast<std::size_t>(width), Point3d{-7, -7, -7});
        convert(mask, points, profile);
        EXPECT_TRUE(sameBits(profile, expected)) << width << " columns";
    }
}

TEST_P(Cal3DPoint, WidthBelowOneEmptiesTheProfile) {
    for (int width : {0, -1, -640, kIntMin}) {
        setRoi(algo_, width, 480);
        setCalibration();
        Mask mask(2);
        mask[0] = mask[1] = true;
        Profile profile = {{1, 2, 3}, {4, 5, 6}};
        convert(mask, {{0, 1}, {1, 1}}, profile);
        EXPECT_TRUE(profile.empty()) << width;
    }
}

TEST_P(Cal3DPoint, NewObjectEmptiesTheProfile) {
    Mask mask(1);
    mask[0] = true;
    Profile profile = {{1, 2, 3}};
    convert(mask, {{0, 1}}, profile);
    EXPECT_TRUE(profile.empty());
}

TEST_P(Cal3DPoint, HeightIsNotLookedAt) {
    for (int height : {0, -5}) {
        setRoi(algo_, 2, height);
        setCalibration();
        Mask mask(2);
        mask[1] = true;
        Profile profile;
        convert(mask, {{0, 1}, {1, 1}}, profile);
        EXPECT_TRUE(sameBits(profile, Profile{kEmptyPoint, {2, 2, 2}}));
    }
}

TEST_P(Cal3DPoint, ProfileIsReplacedAndItsStorageReused) {
    setRoi(algo_, 2, 1);
    setCalibration();
    Mask mask(2);
    mask[0] = true;
    Profile profile(7, Point3d{9, 9, 9});
    const Point3d* const storage = profile.data();
    convert(mask, {{1, 1}, {1, 1}}, profile);
    EXPECT_TRUE(sameBits(profile, Profile{{2, 2, 2}, kEmptyPoint}));
    EXPECT_EQ(profile.data(), storage);
}

TEST_P(Cal3DPoint, ColumnOfExactlyMinusOneHalfIsRejected) {
    EXPECT_FALSE(accepts(-0.5, 0, 1));
    EXPECT_TRUE(accepts(std::nextafter(-0.5, 0.0), 0, 1));
    EXPECT_FALSE(accepts(std::nextafter(-0.5, -1.0), 0, 1));
}

TEST_P(Cal3DPoint, ColumnOfExactlyTheUpperBoundIsRejected) {
    EXPECT_FALSE(accepts(0.5, 0, 1));
    EXPECT_TRUE(accepts(std::nextafter(0.5, 0.0), 0, 1));
    EXPECT_FALSE(accepts(739.5, 100, 640));
    EXPECT_TRUE(accepts(std::nextafter(739.5, 0.0), 100, 640));
    EXPECT_FALSE(accepts(std::nextafter(739.5, 1000.0), 100, 640));
}

TEST_P(Cal3DPoint, LowerBoundIgnoresTheOffset) {
    EXPECT_TRUE(accepts(50, 100, 640));
    EXPECT_TRUE(accepts(-0.4, 100, 640));
    EXPECT_FALSE(accepts(-0.5, 100, 640));
    EXPECT_TRUE(accepts(739.4, 100, 640));
    EXPECT_FALSE(accepts(-0.6, -10, 640));
}

TEST_P(Cal3DPoint, NegativeOffsetLowersTheUpperBound) {
    EXPECT_TRUE(accepts(0.4, -2, 3));
    EXPECT_FALSE(accepts(0.5, -2, 3));
    EXPECT_FALSE(accepts(0, -3, 3));  // nothing lies above -0.5 and below -0.5
    EXPECT_FALSE(accepts(0, kIntMin, 3));
}

TEST_P(Cal3DPoint, UpperBoundHoldsAtTheIntegerLimit) {
    EXPECT_TRUE(accepts(2147483646.25, kIntMax - 1, 1));
    EXPECT_FALSE(accepts(2147483646.5, kIntMax - 1, 1));
}

TEST_P(Cal3DPoint, SumOfOffsetAndWidthWrapsAround) {
    EXPECT_FALSE(accepts(0, kIntMax, 1));  // the sum is -2147483648
    EXPECT_FALSE(accepts(0, kIntMax, 640));
}

TEST_P(Cal3DPoint, ColumnThatIsNotFiniteIsRejected) {
    for (double u : {kNotANumber, kInfinity, -kInfinity}) EXPECT_FALSE(accepts(u, 0, 640)) << u;
}

TEST_P(Cal3DPoint, RowIsTakenAsItIs) {
    for (double v : {-5000.0, 1e6}) {
        const Point3d point = convertedPoint(GetParam().method, unitCamera(GetParam().surface), {1, v});
        EXPECT_TRUE(std::isfinite(point.z));
        EXPECT_GT(point.z, 0.0);
        EXPECT_SAME_BITS(point.x, point.z);
        EXPECT_SAME_BITS(point.y, point.z * v);
    }
    EXPECT_TRUE(std::isnan(convertedPoint(GetParam().method, unitCamera(GetParam().surface), {1, kNotANumber}).y));
}

TEST_P(Cal3DPoint, ColumnBeyondTheEndOfTheVectorCountsAsRejected) {
    setRoi(algo_, 4, 1);
    setCalibration();
    Mask mask(4);
    mask[0] = mask[1] = mask[2] = mask[3] = true;
    Profile profile;
    convert(mask, {{0.5, 1}, {1, 1}}, profile);
    EXPECT_TRUE(sameBits(profile, Profile{{1, 2, 2}, {2, 2, 2}, kEmptyPoint, kEmptyPoint}));
    convert(mask, {}, profile);
    EXPECT_TRUE(sameBits(profile, Profile(4, kEmptyPoint)));
}

TEST_P(Cal3DPoint, PointsBeyondTheWidthAreIgnored) {
    setRoi(algo_, 1, 1);
    setCalibration();
    Mask mask(1);
    mask[0] = true;
    Profile profile;
    convert(mask, {{0.25, 1}, {0.25, 1}, {0.25, 1}}, profile);
    EXPECT_TRUE(sameBits(profile, Profile{{0.5, 2, 2}}));
}

TEST_P(Cal3DPoint, RotationLiesRowByRowBeforeTheTranslation) {
    const RigidTransform rt{1, 2, 3, 4, 5, 6, 7, 8, 9, 1000, 2000, 3000};
    const Point3d point = convertedPoint(GetParam().method, unitCamera(GetParam().surface, rt), {5, 1});
    // camera point (10, 2, 2)
    EXPECT_SAME_BITS(
        point, (Point3d{1 * 10 + 2 * 2 + 3 * 2 + 1000, 4 * 10 + 5 * 2 + 6 * 2 + 2000, 7 * 10 + 8 * 2 + 9 * 2 + 3000}));
}

TEST_P(Cal3DPoint, OutputSumsRunFromTheLeft) {
    // Camera point (2, 2, 2): 1e16 + 1 rounds to 1e16 again, twice; any other order leaves a rest.
    ASSERT_EQ((1e16 + 1.0) + 1.0, 1e16);
    ASSERT_EQ(1e16 + (1.0 + 1.0), 1e16 + 2.0);
    RigidTransform rt{};
    for (std::size_t row = 0; row < 3; ++row) {
        rt[3 * row] = 5e15;
        rt[3 * row + 1] = rt[3 * row + 2] = 0.5;
        rt[9 + row] = -1e16;
    }
    EXPECT_SAME_BITS(convertedPoint(GetParam().method, unitCamera(GetParam().surface, rt), {1, 1}), kEmptyPoint);
}

TEST_P(Cal3DPoint, ZeroTransformMapsEveryAcceptedPointToTheEmptyPoint) {
    const RigidTransform zero{};
    EXPECT_SAME_BITS(convertedPoint(GetParam().method, unitCamera(GetParam().surface, zero), {5, 1}), kEmptyPoint);
}

TEST_P(Cal3DPoint, PixelsAreNormalisedByTheCameraMatrix) {
    tagKorvaneLaserAlgoCalibrationInfo info = unitCamera(GetParam().surface);
    info.CameraMatrix[0] = 800;  // fx
    info.CameraMatrix[2] = 320;  // cx
    info.CameraMatrix[4] = 400;  // fy
    info.CameraMatrix[5] = 40;   // cy
    // x' = (720 - 320) / 800, y' = (440 - 40) / 400
    EXPECT_SAME_BITS(convertedPoint(GetParam().method, info, {720, 440}), (Point3d{0.5 * 2, 1 * 2, 2}));
}

TEST_P(Cal3DPoint, NormalisationDivides) {
    tagKorvaneLaserAlgoCalibrationInfo info = unitCamera(GetParam().surface);
    info.CameraMatrix[0] = 49;
    ASSERT_NE(49.0 * (1.0 / 49.0), 1.0);  // a division is not a product with the reciprocal
    EXPECT_SAME_BITS(convertedPoint(GetParam().method, info, {49, 1}), (Point3d{2, 2, 2}));
}

TEST_P(Cal3DPoint, SkewAndTheRestOfTheCameraMatrixAreNotRead) {
    tagKorvaneLaserAlgoCalibrationInfo info = unitCamera(GetParam().surface);
    for (int i : {1, 3, 6, 7, 8}) info.CameraMatrix[i] = kNotANumber;
    std::fill(std::begin(info.DistCoeffs), std::end(info.DistCoeffs), kNotANumber);
    EXPECT_SAME_BITS(convertedPoint(GetParam().method, info, {3, 1}), (Point3d{6, 2, 2}));
}

TEST_P(Cal3DPoint, LastSettingsCount) {
    setRoi(algo_, 5, 1);
    setCalibration();
    Mask mask(5);
    mask[0] = mask[1] = true;
    Profile profile;
    convert(mask, {{3, 1}, {3, 1}, {3, 1}, {3, 1}, {3, 1}}, profile);
    EXPECT_EQ(profile.size(), 5U);
    EXPECT_SAME_BITS(profile[0], (Point3d{6, 2, 2}));

    setRoi(algo_, 2, 1);
    convert(mask, {{3, 1}, {1, 1}}, profile);
    EXPECT_TRUE(sameBits(profile, Profile{kEmptyPoint, {2, 2, 2}}));  // 3 lies beyond 1.5 now

    RigidTransform raised = kIdentity;
    raised[11] = 0.5;
    setCalibration(raised);
    convert(mask, {{3, 1}, {1, 1}}, profile);
    EXPECT_TRUE(sameBits(profile, Profile{kEmptyPoint, {2, 2, 2.5}}));
}

// ---- The plane

TEST(Cal3DPoint1, DepthIsWhereTheLineOfSightMeetsThePlane) {
    // 1 - 0.25 * 1 - 0.5 * 0.5 = 0.5
    EXPECT_SAME_BITS(plane({100, 0.25, 0.5}, {1, 0.5}), (Point3d{200, 100, 200}));
    // 1 - 0.25 * 2 - -1 * 0.5 = 1
    EXPECT_SAME_BITS(plane({100, 0.25, -1}, {2, 0.5}), (Point3d{200, 50, 100}));
}

TEST(Cal3DPoint1, DenominatorIsFormedFromTheLeft) {
    // 1 - 5e-17 rounds to 1 again, twice; 1 - 1e-16 does not.
    ASSERT_NE(1.0 / (1.0 - (5e-17 + 5e-17)), 1.0);
    EXPECT_SAME_BITS(plane({1, 5e-17, 5e-17}, {1, 1}).z, 1.0);
}

TEST(Cal3DPoint1, DepthKeepsDoublePrecision) {
    EXPECT_SAME_BITS(plane({0.1, 0, 0}, {0.7, 0.3}), (Point3d{0.1 * 0.7, 0.1 * 0.3, 0.1}));
}

TEST(Cal3DPoint1, DepthIsNotLimited) {
    EXPECT_SAME_BITS(plane({5000, 0, 0}, {0, 0}).z, 5000.0);
    EXPECT_SAME_BITS(plane({-7, 0, 0}, {0, 0}).z, -7.0);
}

TEST(Cal3DPoint1, LineOfSightParallelToThePlaneYieldsNoFiniteNumber) {
    EXPECT_TRUE(noneFinite(plane({100, 1, 0}, {1, 1})));
    EXPECT_TRUE(noneFinite(plane({100, 0.5, 0.5}, {1, 1})));
    EXPECT_TRUE(allNotANumber(plane({0, 1, 0}, {1, 1})));  // 0 / 0
}

TEST(Cal3DPoint1, SecondOrderCoefficientsAreNotRead) {
    EXPECT_SAME_BITS(plane({2, 0, 0, kNotANumber, kNotANumber, kNotANumber}, {3, 1}), (Point3d{6, 2, 2}));
}

// ---- The second-order surface: a s^2 + b s + c = 0 with a = c3 x'^2 + c4 x' y' + c5 y'^2, b = c1 x' + c2 y' - 1, c =
// c0

TEST(Cal3DPoint2, EachSecondOrderCoefficientHasItsProduct) {
    // Each time a = 1, b = -1, c = -2: roots 2 and -1.
    EXPECT_SAME_BITS(curved({-2, 0, 0, 0.25, 0, 0}, {2, 0.5}), (Point3d{4, 1, 2}));
    EXPECT_SAME_BITS(curved({-2, 0, 0, 0, 1, 0}, {2, 0.5}), (Point3d{4, 1, 2}));
    EXPECT_SAME_BITS(curved({-2, 0, 0, 0, 0, 4}, {2, 0.5}), (Point3d{4, 1, 2}));
    EXPECT_SAME_BITS(curved({-2, 0, 0, 0.125, 0.25, 1}, {2, 0.5}), (Point3d{4, 1, 2}));
}

TEST(Cal3DPoint2, EachFirstOrderCoefficientHasItsCoordinate) {
    // a = 1, b = 1, c = -2: roots 1 and -2.
    EXPECT_SAME_BITS(curved({-2, 1, 0, 0, 1, 0}, {2, 0.5}), (Point3d{2, 0.5, 1}));
    EXPECT_SAME_BITS(curved({-2, 0, 4, 0, 1, 0}, {2, 0.5}), (Point3d{2, 0.5, 1}));
    EXPECT_SAME_BITS(curved({-2, 0.5, 2, 0, 1, 0}, {2, 0.5}), (Point3d{2, 0.5, 1}));
}

TEST(Cal3DPoint2, PointLiesOnTheSurface) {
    const LightSurface c{300, 0.12, 0.8, 1e-4, -2e-4, 3e-4};
    const Point3d p = curved(c, {0.2, -0.15});
    EXPECT_NEAR(p.z, c[0] + c[1] * p.x + c[2] * p.y + c[3] * p.x * p.x + c[4] * p.x * p.y + c[5] * p.y * p.y, 1e-3);
    EXPECT_NEAR(p.x, 0.2 * p.z, 1e-9);
    EXPECT_NEAR(p.y, -0.15 * p.z, 1e-9);
}

TEST(Cal3DPoint2, DepthIsRoundedToSinglePrecisionAndWidenedAgain) {
    // s^2 - s - 1 = 0: the golden ratio
    const double exact = (std::sqrt(5.0) + 1.0) / 2.0;
    const double depth = static_cast<double>(static_cast<float>(exact));
    ASSERT_NE(depth, exact);
    EXPECT_SAME_BITS(curved({-1, 0, 0, 0, 0, 1}, {0.1, 1}), (Point3d{depth * 0.1, depth * 1.0, depth}));
}

TEST(Cal3DPoint2, SecondRootIsRoundedToSinglePrecisionToo) {
    // -s^2 - s + 1 = 0: the first root is negative
    const double exact = (1.0 - std::sqrt(5.0)) / -2.0;
    const double depth = static_cast<double>(static_cast<float>(exact));
    ASSERT_NE(depth, exact);
    EXPECT_SAME_BITS(curved({1, 0, 0, 0, 0, -1}, {0.1, 1}), (Point3d{depth * 0.1, depth * 1.0, depth}));
}

TEST(Cal3DPoint2, PowerIsFormedBeforeItsFactor) {
    // x'^2 overflows although 1e-200 x'^2 would not.
    tagKorvaneLaserAlgoCalibrationInfo info = unitCamera({-2, 0, 0, 1e-200, 0, 0});
    info.CameraMatrix[0] = 1e-200;
    ASSERT_TRUE(std::isfinite((1e-200 * 1e200) * 1e200));
    EXPECT_TRUE(std::isnan(convertedPoint(&KorvaneLaserAlgo::Cal3DPoint2, info, {1, 0}).z));
}

TEST(Cal3DPoint2, MixedTermIsMultipliedFromTheLeft) {
    // x' y' underflows to 0, which would leave no second order at all; c4 x' does not. With a = 1e-140 the first root
    // is far too deep and the second is 0.
    tagKorvaneLaserAlgoCalibrationInfo info = unitCamera({1, 0, 0, 0, 1e200, 0});
    info.CameraMatrix[0] = info.CameraMatrix[4] = 1e170;
    ASSERT_EQ(1e-170 * 1e-170, 0.0);
    EXPECT_EQ(convertedPoint(&KorvaneLaserAlgo::Cal3DPoint2, info, {1, 1}).z, 0.0);
}

TEST(Cal3DPoint2, NegativeFirstRootGivesWayToTheSecond) {
    // -s^2 - s + 2 = 0: first root -2, second 1
    EXPECT_SAME_BITS(curved({2, 0, 0, 0, 0, -1}, {3, 1}), (Point3d{3, 1, 1}));
}

TEST(Cal3DPoint2, FirstRootJustBelowZeroGivesWayToTheSecond) {
    // -s^2 + (4 - e) s + 4 e = 0: first root -e, second 4
    const double e = 0x1p-10;
    EXPECT_SAME_BITS(curved({4 * e, 5 - e, 0, 0, 0, -1}, {1, 1}), (Point3d{4, 4, 4}));
}

TEST(Cal3DPoint2, FirstRootOfZeroIsKept) {
    // -s^2 + s = 0: first root 0, second 1
    EXPECT_EQ(curved({0, 2, 0, 0, 0, -1}, {1, 1}).z, 0.0);
}

/// A surface in row 1 whose first root in a = 2^-10, b = -1 is exactly `depth`: r = 2 a depth - 1 and D = r^2.
LightSurface surfaceWithFirstRoot(double depth) {
    const double a = 0x1p-10;
    const double r = 2 * a * depth - 1;
    const double c = (1 - r * r) / (4 * a);
    EXPECT_EQ(std::sqrt(1 - 4 * a * c), r);  // no digit was lost on the way
    EXPECT_EQ((r + 1) / (2 * a), depth);
    return {c, 0, 0, 0, 0, a};
}

double secondRootBeside(double firstRoot) {
    const double a = 0x1p-10;
    return static_cast<double>(static_cast<float>((1 - (2 * a * firstRoot - 1)) / (2 * a)));
}

TEST(Cal3DPoint2, FirstRootOfExactly3500IsKept) {
    EXPECT_SAME_BITS(curved(surfaceWithFirstRoot(3500), {0, 1}).z, 3500.0);
}

TEST(Cal3DPoint2, FirstRootJustAbove3500GivesWayToTheSecondEvenIfThatIsNegative) {
    const double next = 3500 + 0x1p-12;  // the next single-precision number
    ASSERT_EQ(static_cast<double>(std::nextafter(3500.0F, 4000.0F)), next);
    ASSERT_LT(secondRootBeside(next), 0.0);
    EXPECT_SAME_BITS(curved(surfaceWithFirstRoot(next), {0, 1}).z, secondRootBeside(next));

    const double thousandth = static_cast<double>(3500.001F);
    ASSERT_LT(secondRootBeside(thousandth), 0.0);
    EXPECT_SAME_BITS(curved(surfaceWithFirstRoot(thousandth), {0, 1}).z, secondRootBeside(thousandth));
}

TEST(Cal3DPoint2, FirstRootIsComparedAfterItsRounding) {
    const double roundsTo3500 = 3500 + 0x1p-14;
    ASSERT_EQ(static_cast<float>(roundsTo3500), 3500.0F);
    EXPECT_SAME_BITS(curved(surfaceWithFirstRoot(roundsTo3500), {0, 1}).z, 3500.0);
}

TEST(Cal3DPoint2, SecondRootIsNotLimited) {
    // a = -2^-12, b = -1: the second root is 4000 where r = 1 + 2^-11 * 4000; the first is negative.
    const double a = -0x1p-12;
    const double r = 1 - 2 * a * 4000;
    const double c = (1 - r * r) / (4 * a);
    ASSERT_EQ(std::sqrt(1 - 4 * a * c), r);
    ASSERT_LT((r + 1) / (2 * a), 0.0);
    EXPECT_SAME_BITS(curved({c, 0, 0, 0, 0, a}, {0, 1}).z, 4000.0);
}

TEST(Cal3DPoint2, NegativeDiscriminantYieldsNotANumber) {
    EXPECT_TRUE(allNotANumber(curved({1, 0, 0, 0, 0, 1}, {0, 1})));  // 1 - 4
}

TEST(Cal3DPoint2, FlatSurfaceYieldsNotANumber) {
    EXPECT_TRUE(allNotANumber(curved({100, 0.1, 0.2, 0, 0, 0}, {0.5, 0.5})));  // b < 0: +infinity, then 0 / 0
    EXPECT_TRUE(allNotANumber(curved({100, 4, 0, 0, 0, 0}, {0.5, 0.5})));      // b > 0: 0 / 0 at once
}

TEST(Cal3DPoint2, FirstRootThatIsNotANumberPassesTheRangeTest) {
    // a = 0, b = 1: the first root is 0 / 0; the second would be -infinity, which this transform would keep.
    const RigidTransform ones{1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1};
    EXPECT_TRUE(allNotANumber(curved({100, 4, 0, 0, 0, 0}, {0.5, 0.5}, ones)));
}

TEST(Cal3DPoint2, LineOfSightAlongTheAxisOfAPureSquareYieldsNotANumber) {
    EXPECT_TRUE(allNotANumber(curved({100, 0, 0, 0.01, 0, 0}, {0, 1})));  // x' = 0 leaves a = 0
}

}  // namespace
