#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <limits>
#include <vector>

#include "KorvaneLaserAlgo.h"
#include "support/ExitGuard.h"
#include "support/Support.h"

namespace {

using support::GuardedBuffer;
using support::KorvaneLaserAlgo;
using support::Mask;
using support::Points2d;
using support::Profile;
using support::sameBits;

constexpr double kNotANumber = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();

using Vector = std::array<double, 3>;

struct Plane {
    double c0, c1, c2;  ///< Z = c0 + c1 X + c2 Y
};

/// Rotation row by row, then the translation.
std::vector<double> transformOf(const Plane& plane) {
    GuardedBuffer<double> coefficients(3);
    coefficients[0] = plane.c0;
    coefficients[1] = plane.c1;
    coefficients[2] = plane.c2;
    GuardedBuffer<double> rt(12, -77.0);
    KorvaneLaserAlgo algo;
    algo.CalRT(coefficients.data(), rt.data());

    EXPECT_SAME_BITS(coefficients[0], plane.c0);
    EXPECT_SAME_BITS(coefficients[1], plane.c1);
    EXPECT_SAME_BITS(coefficients[2], plane.c2);
    EXPECT_TRUE(coefficients.guardsIntact());
    EXPECT_TRUE(rt.guardsIntact());
    return {rt.data(), rt.data() + 12};
}

double signedRoot(const Plane& plane) {
    const double s = std::sqrt(plane.c1 * plane.c1 + plane.c2 * plane.c2 + 1.0);
    return plane.c2 < 0 ? -s : s;
}

Vector transformed(const std::vector<double>& rt, const Vector& p) {
    Vector result{};
    for (std::size_t i = 0; i < 3; ++i)
        result[i] = rt[3 * i] * p[0] + rt[3 * i + 1] * p[1] + rt[3 * i + 2] * p[2] + rt[9 + i];
    return result;
}

void expectNear(const std::vector<double>& rt, const std::vector<double>& expected, double tolerance) {
    ASSERT_EQ(rt.size(), expected.size());
    for (std::size_t i = 0; i < rt.size(); ++i) EXPECT_NEAR(rt[i], expected[i], tolerance) << "at index " << i;
}

const std::vector<Plane>& ordinaryPlanes() {
    static const std::vector<Plane> planes = {{100, 0, 0.5},        {100, 0, -0.5},   {100, 0.1, 0.5},
                                              {-250, 0.1, -0.5},    {300, -0.7, 2.3}, {12.5, 3.1, 0.01},
                                              {312.7, -0.04, -1.9}, {1, 1e-9, 1e3},   {0, 5, -7}};
    return planes;
}

// ---- Known planes

TEST(CalRT, PlaneThatRisesAlongTheRows) {
    // s = sqrt(1.25)
    const double cosine = 0.4472136;
    const double sine = 0.8944272;
    const std::vector<double> rt = transformOf({100, 0, 0.5});
    expectNear({rt.begin(), rt.begin() + 9}, {1, 0, 0, 0, cosine, -sine, 0, sine, cosine}, 5e-8);
    EXPECT_SAME_BITS(rt[9], 0.0);
    EXPECT_SAME_BITS(rt[10], 200.0);
    EXPECT_SAME_BITS(rt[11], 0.0);
}

TEST(CalRT, PlaneThatFallsAlongTheRowsTurnsTheOtherWay) {
    const double cosine = 0.4472136;
    const double sine = 0.8944272;
    const std::vector<double> rt = transformOf({100, 0, -0.5});
    expectNear({rt.begin(), rt.begin() + 9}, {1, 0, 0, 0, cosine, sine, 0, -sine, cosine}, 5e-8);
    EXPECT_SAME_BITS(rt[9], 0.0);
    EXPECT_SAME_BITS(rt[10], -200.0);
    EXPECT_SAME_BITS(rt[11], 0.0);
}

TEST(CalRT, TiltedPlaneMapsItsNormalToTheOutputYAxisAndItsPointsToOneY) {
    const double s = std::sqrt(1.26);
    std::vector<double> rt = transformOf({100, 0.1, 0.5});
    for (double x : {-50.0, 0.0, 75.0}) {
        for (double y : {-20.0, 0.0, 90.0})
            EXPECT_NEAR(transformed(rt, {x, y, 100 + 0.1 * x + 0.5 * y})[1], 200 - 100 / s, 1e-10);
    }
    rt[9] = rt[10] = rt[11] = 0;
    const Vector normal = transformed(rt, {0.1 / s, 0.5 / s, -1 / s});
    EXPECT_NEAR(normal[0], 0, 1e-15);
    EXPECT_NEAR(normal[1], 1, 1e-15);
    EXPECT_NEAR(normal[2], 0, 1e-15);
}

TEST(CalRT, PlaneAcrossTheOpticalAxisYieldsAQuarterTurnAndAnInfiniteTranslation) {
    const std::vector<double> rt = transformOf({100, 0, 0});
    expectNear({rt.begin(), rt.begin() + 9}, {1, 0, 0, 0, 0, -1, 0, 1, 0}, 1e-15);
    EXPECT_SAME_BITS(rt[9], 0.0);
    EXPECT_SAME_BITS(rt[10], kInfinity);
    EXPECT_SAME_BITS(rt[11], 0.0);
    EXPECT_SAME_BITS(transformOf({-100, 0, 0})[10], -kInfinity);
    EXPECT_TRUE(std::isnan(transformOf({0, 0, 0})[10]));
}

// ---- What holds for every plane

TEST(CalRT, EveryPlanePointGetsTheOneYOfThePlane) {
    for (const Plane& plane : ordinaryPlanes()) {
        const std::vector<double> rt = transformOf(plane);
        const double expected = plane.c0 / plane.c2 - plane.c0 / signedRoot(plane);
        for (double x : {-3.0, 0.0, 11.0}) {
            for (double y : {-2.0, 0.0, 5.0}) {
                const double z = plane.c0 + plane.c1 * x + plane.c2 * y;
                EXPECT_NEAR(transformed(rt, {x, y, z})[1], expected, 1e-10 * (1 + std::abs(z)));
            }
        }
    }
}

TEST(CalRT, RotationKeepsLengthsAnglesAndHandedness) {
    for (const Plane& plane : ordinaryPlanes()) {
        const std::vector<double> r = transformOf(plane);
        for (std::size_t i = 0; i < 3; ++i) {
            for (std::size_t j = 0; j < 3; ++j) {
                const double product = r[3 * i] * r[3 * j] + r[3 * i + 1] * r[3 * j + 1] + r[3 * i + 2] * r[3 * j + 2];
                EXPECT_NEAR(product, i == j ? 1 : 0, 1e-14);
            }
        }
        const double determinant = r[0] * (r[4] * r[8] - r[5] * r[7]) - r[1] * (r[3] * r[8] - r[5] * r[6]) +
                                   r[2] * (r[3] * r[7] - r[4] * r[6]);
        EXPECT_NEAR(determinant, 1, 1e-14);
    }
}

TEST(CalRT, TranslationIsThePlainQuotientOnYAndExactlyZeroElsewhere) {
    for (const Plane& plane : ordinaryPlanes()) {
        const std::vector<double> rt = transformOf(plane);
        EXPECT_SAME_BITS(rt[9], 0.0);
        EXPECT_SAME_BITS(rt[10], plane.c0 / plane.c2);
        EXPECT_SAME_BITS(rt[11], 0.0);
    }
}

TEST(CalRT, NegativeZeroSlopeCountsAsNotNegative) {
    const std::vector<double> rt = transformOf({100, 0.3, -0.0});
    const std::vector<double> positive = transformOf({100, 0.3, 0.0});
    EXPECT_TRUE(sameBits(std::vector<double>(rt.begin(), rt.begin() + 9),
                         std::vector<double>(positive.begin(), positive.begin() + 9)));
    EXPECT_SAME_BITS(rt[10], -kInfinity);
    EXPECT_SAME_BITS(positive[10], kInfinity);
}

/// Rodrigues' formula, step by step: axis and angle to a rotation vector and back.
std::vector<double> stepByStep(const Plane& plane) {
    const auto norm = [](const Vector& v) { return std::sqrt(v[0] * v[0] + v[1] * v[1] + v[2] * v[2]); };
    const double s = signedRoot(plane);
    const Vector n{plane.c1 / s, plane.c2 / s, -1.0 / s};
    const Vector a{-n[2], 0.0, n[0]};
    const double theta = std::acos(n[1]);
    const double aNorm = norm(a);
    const Vector r{a[0] / aNorm * theta, a[1] / aNorm * theta, a[2] / aNorm * theta};
    const double phi = norm(r);
    const Vector u{r[0] / phi, r[1] / phi, r[2] / phi};

    const double cosine = std::cos(phi);
    const double sine = std::sin(phi);
    const double w = 1.0 - cosine;
    const double skew[3][3] = {{0, -u[2], u[1]}, {u[2], 0, -u[0]}, {-u[1], u[0], 0}};
    std::vector<double> rt;
    for (std::size_t i = 0; i < 3; ++i) {
        for (std::size_t j = 0; j < 3; ++j) {
            const double outer = 0.0 + u[i] * u[j];  // summed into zero
            const double element = sine * skew[i][j] + w * outer;
            rt.push_back(i == j ? element + cosine : element);
        }
    }
    rt.insert(rt.end(), {0.0, plane.c0 / plane.c2, 0.0});
    return rt;
}

TEST(CalRT, RotationFollowsTheStepsBitForBit) {
    for (const Plane& plane : ordinaryPlanes())
        EXPECT_TRUE(sameBits(transformOf(plane), stepByStep(plane))) << plane.c1 << ", " << plane.c2;
    for (int i = -40; i <= 40; ++i) {
        const Plane plane{300, 0.013 * i, 0.9 - 0.07 * i};
        EXPECT_TRUE(sameBits(transformOf(plane), stepByStep(plane))) << plane.c1 << ", " << plane.c2;
    }
}

TEST(CalRT, StoredAsTheTransformItGivesEveryProfilePointOneY) {
    const Plane plane{300, -0.04, 1.3};
    KorvaneLaserAlgo algo;
    support::tagKorvaneLaserAlgoCalibrationInfo info{};
    info.CameraMatrix[0] = info.CameraMatrix[4] = 1000;
    info.CameraMatrix[2] = 2;
    info.CameraMatrix[5] = 240;
    info.LaserPlane[0] = plane.c0;
    info.LaserPlane[1] = plane.c1;
    info.LaserPlane[2] = plane.c2;
    algo.CalRT(info.LaserPlane, info.RT);
    algo.SetCalibrationInfo(&info);
    support::setRoi(algo, 5, 480);

    Mask mask(5);
    const Points2d points = {{0, 100}, {1, 333.3}, {2, 240}, {3, 12.5}, {4, 470}};
    std::fill_n(mask.data(), 5, true);
    Profile profile;
    algo.Cal3DPoint1(mask.data(), points, profile);
    ASSERT_EQ(profile.size(), 5U);
    for (const support::Point3d& point : profile)
        EXPECT_NEAR(point.y, plane.c0 / plane.c2 - plane.c0 / signedRoot(plane), 1e-10);
    EXPECT_GT(std::abs(profile[0].z - profile[3].z), 1.0);  // a profile, not one point
}

// ---- Planes whose normal is the y axis already

void transformInAProcessOfItsOwn(double c1, double c2) {
    support::expectProcessEnd();
    double plane[] = {100, c1, c2};
    double rt[12];
    KorvaneLaserAlgo algo;
    algo.CalRT(plane, rt);
}

constexpr char kDivideMessage[] = "^ERROR: Trying to divide by zero!\n$";

TEST(CalRTDeathTest, PlaneWhoseAngleRoundsToZeroEndsTheProcess) {
    ASSERT_EQ(std::acos(1e8 / std::sqrt(1e8 * 1e8 + 1.0)), 0.0);
    EXPECT_EXIT(transformInAProcessOfItsOwn(0, 1e8), testing::ExitedWithCode(0), kDivideMessage);
    EXPECT_EXIT(transformInAProcessOfItsOwn(0, -1e8), testing::ExitedWithCode(0), kDivideMessage);
    EXPECT_EXIT(transformInAProcessOfItsOwn(0.5, 1e9), testing::ExitedWithCode(0), kDivideMessage);
}

TEST(CalRTDeathTest, PlaneWithoutAnAxisEndsTheProcess) {
    EXPECT_EXIT(transformInAProcessOfItsOwn(0, 1e21), testing::ExitedWithCode(0), kDivideMessage);
    EXPECT_EXIT(transformInAProcessOfItsOwn(0, -1e21), testing::ExitedWithCode(0), kDivideMessage);
    // s is infinite.
    EXPECT_EXIT(transformInAProcessOfItsOwn(0, 1e200), testing::ExitedWithCode(0), kDivideMessage);
    EXPECT_EXIT(transformInAProcessOfItsOwn(1e200, 1), testing::ExitedWithCode(0), kDivideMessage);
}

TEST(CalRT, SmallestAngleThatDoesNotRoundToZeroProceeds) {
    // The normal's y is the number just below 1.
    for (double c2 : {6e7, -6e7}) {
        const Plane plane{300, 0, c2};
        ASSERT_EQ(c2 / signedRoot(plane), std::nextafter(1.0, 0.0));
        const std::vector<double> rt = transformOf(plane);
        EXPECT_TRUE(sameBits(rt, stepByStep(plane)));
        expectNear({rt.begin(), rt.begin() + 9}, {1, 0, 0, 0, 1, 0, 0, 0, 1}, 2e-8);
    }
}

TEST(CalRT, PlaneThatIsNotANumberProceedsToNotANumber) {
    for (const Plane& plane :
         {Plane{100, kNotANumber, 1}, Plane{100, 1, kNotANumber}, Plane{100, kInfinity, 1}, Plane{100, 1, kInfinity}}) {
        const std::vector<double> rt = transformOf(plane);
        for (std::size_t i = 0; i < 9; ++i) EXPECT_TRUE(std::isnan(rt[i])) << i;
        EXPECT_SAME_BITS(rt[9], 0.0);
        EXPECT_SAME_BITS(rt[10], plane.c0 / plane.c2);
        EXPECT_SAME_BITS(rt[11], 0.0);
    }
}

TEST(CalRT, OnlyTheTranslationLooksAtTheConstantTerm) {
    const std::vector<double> rt = transformOf({kNotANumber, 0.2, 0.8});
    const std::vector<double> other = transformOf({5, 0.2, 0.8});
    EXPECT_TRUE(sameBits(std::vector<double>(rt.begin(), rt.begin() + 9),
                         std::vector<double>(other.begin(), other.begin() + 9)));
    EXPECT_TRUE(std::isnan(rt[10]));
}

}  // namespace
