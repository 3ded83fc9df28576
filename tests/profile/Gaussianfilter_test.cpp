#include <gtest/gtest.h>

#include <cmath>
#include <cstddef>
#include <limits>
#include <new>
#include <vector>

#include "KorvaneLaserAlgo.h"
#include "profile/ProfileSupport.h"

namespace {

using support::kInfinity;
using support::kIntMax;
using support::kIntMin;
using support::kNotANumber;
using support::KorvaneLaserAlgo;
using support::Point3d;
using support::Profile;
using support::profileOfHeights;
using support::sameBits;
using support::withHeights;

Profile filtered(Profile profile, int halfWindow) {
    KorvaneLaserAlgo algo;
    algo.Gaussianfilter(profile, halfWindow);
    return profile;
}

/// 2 r + 1 weights of sum 1.
std::vector<double> gaussianWeights(int r) {
    const double sigma = (2 * r + 1) / 3.0;
    std::vector<double> weights;
    double sum = 0.0;
    for (int i = -r; i <= r; ++i) {
        weights.push_back(std::exp(-static_cast<double>(i * i) / ((sigma + sigma) * sigma)));
        sum += weights.back();
    }
    for (double& weight : weights) weight /= sum;
    return weights;
}

// ---- When nothing is done

TEST(Gaussianfilter, EmptyProfileStaysEmpty) {
    for (int r : {0, 1, 5}) EXPECT_TRUE(filtered({}, r).empty());
}

TEST(Gaussianfilter, ProfileWithoutAValidPointIsUnchanged) {
    const Profile profile = {{0, 1, 5}, {-0.0, 2, 6}, {0, 3, 7}};
    for (int r : {0, 1}) EXPECT_TRUE(sameBits(filtered(profile, r), profile));
}

TEST(Gaussianfilter, FewerValidPointsThanTapsLeaveTheProfileUnchanged) {
    const Profile profile = {{1, 0, 5}, {0, 0, 1}, {2, 0, 1}, {3, 0, 4}, {4, 0, 2}};  // 4 valid points
    EXPECT_TRUE(sameBits(filtered(profile, 2), profile));
}

TEST(Gaussianfilter, HalfWindowWhoseSquareExceedsAnIntIsNoTrouble) {
    const Profile profile = profileOfHeights({5, 1, 4, 2, 3});
    EXPECT_TRUE(sameBits(filtered(profile, 50000), profile));  // 50000^2 = 2.5e9
}

TEST(Gaussianfilter, LargestHalfWindowWhoseTapsAreAnIntLeavesAShortProfile) {
    const Profile profile = profileOfHeights({5, 1, 4, 2, 3});
    EXPECT_TRUE(sameBits(filtered(profile, 1073741823), profile));  // 2147483647 taps
}

TEST(Gaussianfilter, ImpossibleHalfWindowIsAnAllocationFailureAndChangesNothing) {
    // Negative, or 2 r + 1 beyond an int.
    KorvaneLaserAlgo algo;
    const Profile before = profileOfHeights({5, 1, 4, 2, 3});
    for (int r : {-1, -2, -1000, kIntMin, kIntMin + 1, 1073741824, kIntMax - 1, kIntMax}) {
        Profile profile = before;
        EXPECT_THROW(algo.Gaussianfilter(profile, r), std::bad_alloc) << r;
        EXPECT_TRUE(sameBits(profile, before)) << r;
        Profile empty;
        EXPECT_THROW(algo.Gaussianfilter(empty, r), std::bad_alloc) << r;
        EXPECT_TRUE(empty.empty());
    }
}

// ---- The weights

TEST(Gaussianfilter, OneTapLeavesEveryHeight) {
    const Profile profile = {{1, 2, 0.1}, {0, 5, 7}, {3, 4, -1.0 / 3.0}, {-7, 1, 1e300}, {2, 1, 0}};
    EXPECT_TRUE(sameBits(filtered(profile, 0), profile));
    EXPECT_TRUE(sameBits(filtered({{1, 2, 0.1}}, 0), Profile{{1, 2, 0.1}}));
}

TEST(Gaussianfilter, ThreeTapsHaveSigmaOne) {
    const double e = std::exp(-1.0 / 2.0);  // sigma = 3 / 3
    const double sum = (e + 1.0) + e;
    const double a = e / sum;
    const double b = 1.0 / sum;
    const Profile profile = profileOfHeights({1, 2, 4});
    EXPECT_TRUE(sameBits(filtered(profile, 1), withHeights(profile, {(1 * b + 2 * a) / (b + a),                  //
                                                                     ((1 * a + 2 * b) + 4 * a) / ((a + b) + a),  //
                                                                     (2 * a + 4 * b) / (a + b)})));
}

TEST(Gaussianfilter, FiveTapsHaveSigmaFiveThirds) {
    // With exactly five points the first sees the taps 0, 1, 2 renormalised. exp(-i^2 / (2 * 25 / 9))
    const double e1 = std::exp(-1.0 / (50.0 / 9.0));
    const double e2 = std::exp(-4.0 / (50.0 / 9.0));
    const std::vector<double> z = {1, 3, 2, 4, 1.5};
    const Profile result = filtered(profileOfHeights(z), 2);
    EXPECT_NEAR(result[0].z, (z[0] + e1 * z[1] + e2 * z[2]) / (1 + e1 + e2), 1e-14);
    EXPECT_NEAR(result[1].z, (e1 * z[0] + z[1] + e1 * z[2] + e2 * z[3]) / (1 + 2 * e1 + e2), 1e-14);
    EXPECT_NEAR(result[2].z, (e2 * z[0] + e1 * z[1] + z[2] + e1 * z[3] + e2 * z[4]) / (1 + 2 * e1 + 2 * e2), 1e-14);
    EXPECT_NEAR(result[3].z, (e2 * z[1] + e1 * z[2] + z[3] + e1 * z[4]) / (1 + 2 * e1 + e2), 1e-14);
    EXPECT_NEAR(result[4].z, (e2 * z[2] + e1 * z[3] + z[4]) / (1 + e1 + e2), 1e-14);
}

TEST(Gaussianfilter, ConstantHeightStays) {
    const Profile profile = profileOfHeights(std::vector<double>(30, 12.3));
    const Profile result = filtered(profile, 4);
    for (const Point3d& point : result) EXPECT_NEAR(point.z, 12.3, 1e-13);
}

TEST(Gaussianfilter, NeighboursAreReadFromTheUnfilteredHeights) {
    const std::vector<double> w = gaussianWeights(1);
    const Profile profile = profileOfHeights({4, 0, 0, 0});
    const Profile result = filtered(profile, 1);
    ASSERT_NE(result[1].z, 0.0);
    EXPECT_SAME_BITS(result[1].z, (4 * w[0]) / ((w[0] + w[1]) + w[2]));
    EXPECT_SAME_BITS(result[2].z, 0.0);  // a recursive filter would carry the 4 on
}

// ---- The height limit

TEST(Gaussianfilter, StepOfExactlyFiveIsKept) {
    for (double step : {5.0, -5.0, 5.5, 1000.0}) {
        const Profile profile = profileOfHeights({0, 0, 0, step, step, step});
        const Profile result = filtered(profile, 2);
        for (std::size_t i = 0; i < 3; ++i) EXPECT_SAME_BITS(result[i].z, 0.0);
        for (std::size_t i = 3; i < 6; ++i) EXPECT_NEAR(result[i].z, step, 1e-12);
    }
}

TEST(Gaussianfilter, StepJustBelowFiveIsSmoothed) {
    const double step = std::nextafter(5.0, 0.0);
    const Profile profile = profileOfHeights({0, 0, 0, step, step, step});
    const Profile result = filtered(profile, 1);
    const std::vector<double> w = gaussianWeights(1);
    EXPECT_SAME_BITS(result[1].z, 0.0);
    EXPECT_SAME_BITS(result[2].z, (step * w[2]) / ((w[0] + w[1]) + w[2]));
    EXPECT_LT(result[3].z, 4.0);
}

TEST(Gaussianfilter, HeightsAreComparedWithTheCentreOnly) {
    // Every step is 3, so a point sees its neighbours, but not the ones behind them.
    const std::vector<double> w = gaussianWeights(2);
    const Profile profile = profileOfHeights({0, 3, 6, 9, 12});
    const Profile result = filtered(profile, 2);
    EXPECT_SAME_BITS(result[0].z, (0 * w[2] + 3 * w[3]) / (w[2] + w[3]));
    EXPECT_SAME_BITS(result[2].z, ((3 * w[1] + 6 * w[2]) + 9 * w[3]) / ((w[1] + w[2]) + w[3]));
    EXPECT_SAME_BITS(result[4].z, (9 * w[1] + 12 * w[2]) / (w[1] + w[2]));
}

TEST(Gaussianfilter, SpikeNeitherChangesNorIsSmoothed) {
    const Profile profile = profileOfHeights({1, 1, 90, 1, 1});
    const Profile result = filtered(profile, 2);
    EXPECT_NEAR(result[2].z, 90, 1e-12);
    for (std::size_t i : {0U, 1U, 3U, 4U}) EXPECT_NEAR(result[i].z, 1, 1e-14);
}

// ---- Which points take part

TEST(Gaussianfilter, InvalidPointsAreSkippedAndKeepAllTheirFields) {
    const std::vector<double> w = gaussianWeights(1);
    const Profile profile = {{1, 9, 1}, {0, 8, 1.5}, {2, 7, 2}, {-0.0, 6, 2.5}, {3, 5, 4}};
    EXPECT_TRUE(sameBits(filtered(profile, 1),
                         withHeights(profile, {(1 * w[1] + 2 * w[2]) / (w[1] + w[2]), 1.5,
                                               ((1 * w[0] + 2 * w[1]) + 4 * w[2]) / ((w[0] + w[1]) + w[2]), 2.5,
                                               (2 * w[0] + 4 * w[1]) / (w[0] + w[1])})));
}

TEST(Gaussianfilter, PositionThatIsNotANumberIsValid) {
    const Profile profile = {{1, 0, 1}, {kNotANumber, 0, 2}, {3, 0, 4}};
    const Profile other = {{1, 0, 1}, {2, 0, 2}, {3, 0, 4}};
    const Profile result = filtered(profile, 1);
    EXPECT_NE(result[1].z, 2.0);
    for (std::size_t i = 0; i < 3; ++i) EXPECT_SAME_BITS(result[i].z, filtered(other, 1)[i].z);
}

TEST(Gaussianfilter, HeightOfZeroTakesPart) {
    const Profile result = filtered(profileOfHeights({2, 0, 2}), 1);
    EXPECT_GT(result[1].z, 0.5);
    EXPECT_LT(result[0].z, 1.5);
}

TEST(Gaussianfilter, HeightThatIsNotFiniteBecomesNotANumberAndLeavesItsNeighboursAlone) {
    const std::vector<double> w = gaussianWeights(1);
    for (double bad : {kNotANumber, kInfinity, -kInfinity}) {
        const Profile result = filtered(profileOfHeights({1, 2, bad, 4, 3}), 1);
        EXPECT_SAME_BITS(result[1].z, (1 * w[0] + 2 * w[1]) / (w[0] + w[1]));
        EXPECT_TRUE(std::isnan(result[2].z));
        EXPECT_SAME_BITS(result[3].z, (4 * w[1] + 3 * w[2]) / (w[1] + w[2]));
        EXPECT_SAME_BITS(result[2].x, 3.0);
    }
    EXPECT_TRUE(std::isnan(filtered(profileOfHeights({kInfinity}), 0)[0].z));
}

TEST(Gaussianfilter, LongProfilesFollowTheRuleBitForBit) {
    Profile profile;
    for (int i = 0; i < 300; ++i) {
        const double step = (i / 45) % 2 ? 5.3 : 0.0;
        profile.push_back({i % 9 == 4 ? 0.0 : 1.0 + i, 0.5, 100.1 + step + 0.9 * std::sin(1.1 * i) + 0.003 * i});
    }
    Profile points;
    std::vector<std::size_t> positions;
    for (std::size_t i = 0; i < profile.size(); ++i) {
        if (profile[i].x != 0.0) {
            points.push_back(profile[i]);
            positions.push_back(i);
        }
    }
    const int n = static_cast<int>(points.size());

    for (int r : {0, 1, 2, 3, 7, 20, (n - 1) / 2}) {
        const std::vector<double> weights = gaussianWeights(r);
        Profile expected = profile;
        int leftOut = 0;
        for (int j = 0; j < n; ++j) {
            const double centre = points[static_cast<std::size_t>(j)].z;
            double sum = 0.0;
            double weightSum = 0.0;
            for (int k = -r; k <= r; ++k) {
                const int m = j + k;
                if (m < 0 || m >= n) continue;
                const double z = points[static_cast<std::size_t>(m)].z;
                const double weight = *(weights.begin() + k + r);
                if (std::abs(centre - z) < 5.0) {
                    sum += z * weight;
                    weightSum += weight;
                } else {
                    ++leftOut;
                }
            }
            expected[positions[static_cast<std::size_t>(j)]].z = sum / weightSum;
        }
        EXPECT_EQ(leftOut > 0, r > 0);
        EXPECT_TRUE(sameBits(filtered(profile, r), expected)) << r;
    }
}

}  // namespace
