#include <gtest/gtest.h>

#include <cmath>
#include <cstddef>
#include <vector>

#include "KorvaneLaserAlgo.h"
#include "profile/ProfileSupport.h"

namespace {

using support::kEmptyPoint;
using support::kInfinity;
using support::kIntMax;
using support::kIntMin;
using support::kNotANumber;
using support::KorvaneLaserAlgo;
using support::Profile;
using support::profileOfHeights;
using support::sameBits;
using support::withCleared;
using support::withFront;

Profile filtered(Profile profile, int halfWidth, float threshold) {
    KorvaneLaserAlgo algo;
    algo.Outlierdetect1(profile, halfWidth, threshold);
    return profile;
}

std::vector<double> flat(std::size_t count) {
    std::vector<double> heights(count, 50.0);
    return heights;
}

/// z = 1, 2, 3, ..., so that the slope of a point is its x less the x of the point before.
Profile profileOfSlopes(const std::vector<double>& slopes) {
    Profile profile = {{8, 0.25, 1}};
    for (double slope : slopes) profile.push_back({profile.back().x + slope, 0.25, profile.back().z + 1});
    return profile;
}

constexpr float kNoDepthVote = 0.0F;  // with this threshold only directions count

// ---- When nothing is done

TEST(Outlierdetect1, EmptyProfileStaysEmpty) {
    EXPECT_TRUE(filtered({}, 0, 1.0F).empty());
    EXPECT_TRUE(filtered({}, 3, 1.0F).empty());
}

TEST(Outlierdetect1, FewerUsablePointsThanTheWholeNeighbourhoodLeaveTheProfileUnchanged) {
    for (int w : {1, 2, 5}) {
        const std::size_t whole = 2 * static_cast<std::size_t>(w) + 1;
        const Profile tooFew = profileOfHeights(flat(whole - 1));
        EXPECT_TRUE(sameBits(filtered(tooFew, w, 1.0F), tooFew));
        const Profile enough = profileOfHeights(flat(whole));
        EXPECT_TRUE(sameBits(filtered(enough, w, 1.0F), withCleared(enough, {0})));
    }
}

TEST(Outlierdetect1, UnusablePointsDoNotFillTheNeighbourhood) {
    const Profile profile = withFront({{0, 1, 50}, {7, 1, 0}, {0, 0, 0}}, profileOfHeights(flat(4)));
    EXPECT_TRUE(sameBits(filtered(profile, 2, 1.0F), profile));
}

TEST(Outlierdetect1, NegativeHalfWidthLeavesTheProfileUnchanged) {
    const Profile profile = profileOfHeights({10, 90, 10, 90, 10});
    for (int w : {-1, -2, -1000, kIntMin}) EXPECT_TRUE(sameBits(filtered(profile, w, 1.0F), profile)) << w;
}

TEST(Outlierdetect1, NeighbourhoodBeyondTheIntegerLimitLeavesTheProfileUnchanged) {
    const Profile profile = profileOfHeights({10, 90, 10, 90, 10});
    for (int w : {1073741823, 1073741824, kIntMax - 1, kIntMax})
        EXPECT_TRUE(sameBits(filtered(profile, w, 1.0F), profile)) << w;
}

TEST(Outlierdetect1, ZeroHalfWidthClearsEveryUsablePoint) {
    const Profile profile = {{0, 1, 5}, {1, 1, 50}, {2, 1, 50}, {3, 1, 0}, {4, 1, 50}};
    EXPECT_TRUE(sameBits(filtered(profile, 0, 1.0F), withCleared(profile, {1, 2, 4})));
    EXPECT_TRUE(sameBits(filtered({{1, 2, 3}}, 0, 1.0F), Profile{kEmptyPoint}));
}

// ---- Which points take part

TEST(Outlierdetect1, UnusablePointsAreNeitherChangedNorCounted) {
    // Across the gap the usable points are direct neighbours: w = 1 asks the point before only.
    const Profile profile = {{1, 1, 50}, {2, 1, 50}, {0, 9, 70}, {-0.0, 9, 70}, {5, 9, 0}, {6, 9, -0.0}, {7, 1, 50}};
    EXPECT_TRUE(sameBits(filtered(profile, 1, 1.0F), withCleared(profile, {0})));
}

TEST(Outlierdetect1, PositionThatIsNotANumberIsUsable) {
    const Profile profile = {{1, 1, 50}, {kNotANumber, 1, 50}, {3, 1, 50}, {4, 1, 90}};
    EXPECT_TRUE(sameBits(filtered(profile, 1, 1.0F), withCleared(profile, {0, 3})));
}

TEST(Outlierdetect1, DepthThatIsNotFiniteAgreesWithNothingAndIsCleared) {
    for (double z : {kNotANumber, kInfinity, -kInfinity}) {
        const Profile profile = profileOfHeights({50, 50, 50, z, 50, 50});
        // w = 1: position 4 has lost the neighbour before it.
        EXPECT_TRUE(sameBits(filtered(profile, 1, 1.0F), withCleared(profile, {0, 3, 4}))) << z;
    }
}

TEST(Outlierdetect1, OutlierLosesAllThreeCoordinates) {
    const Profile result = filtered({{1, 7, 50}, {2, 7, 50}, {3, 7, 90}, {4, 7, 90}}, 1, 1.0F);
    EXPECT_TRUE(sameBits(result, Profile{kEmptyPoint, {2, 7, 50}, kEmptyPoint, {4, 7, 90}}));
}

// ---- The depth vote

TEST(Outlierdetect1, NeighbourAtDistanceWBehindIsNotAsked) {
    // w = 1: of position 2 only position 1 and itself are asked, although position 3 would agree.
    const Profile profile = profileOfHeights({10, 10, 20, 20, 20});
    EXPECT_TRUE(sameBits(filtered(profile, 1, 1.0F), withCleared(profile, {0, 2})));
}

TEST(Outlierdetect1, NeighbourAtDistanceWBeforeIsAsked) {
    // w = 2, position 2: positions 0, 2 and 3 agree, 1 and the unasked 4 do not.
    const Profile profile = profileOfHeights({10, 90, 10, 10, 90});
    const Profile result = filtered(profile, 2, 1.0F);
    EXPECT_SAME_BITS(result[2], profile[2]);
}

TEST(Outlierdetect1, MoreThanWAgreeingDepthsAreNeeded) {
    // w = 2, position 3 asks 1, 2, 3, 4. With three of four it stays, with two it goes. Slopes are kept far apart.
    const Profile three = {{1, 1, 90}, {2, 1, 90}, {13, 1, 10}, {114, 1, 10.5}, {1115, 1, 10.25}};
    EXPECT_SAME_BITS(filtered(three, 2, 1.0F)[3], three[3]);
    const Profile two = {{1, 1, 90}, {2, 1, 90}, {13, 1, 90}, {114, 1, 10.5}, {1115, 1, 10.25}};
    EXPECT_SAME_BITS(filtered(two, 2, 1.0F)[3], kEmptyPoint);
}

TEST(Outlierdetect1, PointCountsItself) {
    // w = 1: itself and the point before are just enough.
    const Profile profile = profileOfHeights({50, 50, 50});
    EXPECT_TRUE(sameBits(filtered(profile, 1, 1.0F), withCleared(profile, {0})));
}

TEST(Outlierdetect1, DifferenceOfExactlyTheThresholdDoesNotAgree) {
    const Profile apart = profileOfHeights({50, 50.5, 51});
    EXPECT_TRUE(sameBits(filtered(apart, 1, 0.5F), Profile(3, kEmptyPoint)));
    const Profile rising = profileOfHeights({50, 50.5 - 0x1p-40, 51 - 0x1p-39});
    EXPECT_TRUE(sameBits(filtered(rising, 1, 0.5F), withCleared(rising, {0})));
    const Profile falling = profileOfHeights({51 - 0x1p-39, 50.5 - 0x1p-40, 50});
    EXPECT_TRUE(sameBits(filtered(falling, 1, 0.5F), withCleared(falling, {0})));
}

TEST(Outlierdetect1, ThresholdIsWidenedToDouble) {
    // The single-precision 0.1 is 0.10000000149.
    const Profile below = profileOfHeights({1, 1.100000001, 1.200000002});
    EXPECT_TRUE(sameBits(filtered(below, 1, 0.1F), withCleared(below, {0})));
    const Profile above = profileOfHeights({1, 1.100000002, 1.200000004});
    EXPECT_TRUE(sameBits(filtered(above, 1, 0.1F), Profile(3, kEmptyPoint)));
}

TEST(Outlierdetect1, ThresholdThatIsNotANumberAgreesWithNoDepth) {
    const Profile level = profileOfHeights(flat(40));
    EXPECT_TRUE(sameBits(filtered(level, 3, static_cast<float>(kNotANumber)), Profile(40, kEmptyPoint)));
}

TEST(Outlierdetect1, FirstUsablePointIsAlwaysCleared) {
    for (int w = 1; w <= 5; ++w) {
        const Profile profile = withFront({kEmptyPoint, {0, 2, 3}}, profileOfHeights(flat(20)));
        EXPECT_TRUE(sameBits(filtered(profile, w, 1e9F), withCleared(profile, {2}))) << w;
    }
}

TEST(Outlierdetect1, LastUsablePointStaysWhenAllItsOffsetsAgree) {
    const Profile profile = profileOfHeights({50, 50, 50, 50, 50});
    EXPECT_SAME_BITS(filtered(profile, 2, 1.0F)[4], profile[4]);  // offsets -2, -1 and 0: 3 > 2
    const Profile oneMissing = profileOfHeights({50, 50, 90, 50, 50});
    EXPECT_SAME_BITS(filtered(oneMissing, 2, 1.0F)[4], kEmptyPoint);
}

TEST(Outlierdetect1, SmoothProfileLosesItsFirstPointOnly) {
    Profile profile = profileOfHeights(std::vector<double>(30, 0.0));
    for (int i = 0; i < 30; ++i) profile[static_cast<std::size_t>(i)].z = 100 + 0.1 * i * (i % 7 < 3 ? 1 : 0.98);
    for (int w : {1, 2, 3, 6}) EXPECT_TRUE(sameBits(filtered(profile, w, 2.0F), withCleared(profile, {0}))) << w;
}

TEST(Outlierdetect1, EveryDecisionSeesTheUnclearedPoints) {
    // Each of the points 1 .. 4 lives on the vote of the point before, the first of which is cleared.
    const Profile profile = profileOfHeights({50, 50, 50, 50, 50});
    EXPECT_TRUE(sameBits(filtered(profile, 1, 1.0F), withCleared(profile, {0})));
}

// ---- The direction vote: w = 2 needs three similar neighbours, at the offsets -2, -1 and 1. Of five points only
// position 3 has them all.

TEST(Outlierdetect1, WithoutDepthVotesMoreThanWSimilarDirectionsKeepAPoint) {
    const Profile profile = profileOfSlopes({1, 1, 1, 1});
    for (float threshold : {0.0F, -0.0F, -1.0F, -1e30F, std::nanf("")})
        EXPECT_TRUE(sameBits(filtered(profile, 2, threshold), withCleared(profile, {0, 1, 2, 4}))) << threshold;
}

TEST(Outlierdetect1, OneDissimilarDirectionOfThreeIsOneTooMany) {
    for (std::size_t odd : {0U, 1U, 3U}) {
        std::vector<double> slopes = {1, 1, 1, 1};
        slopes[odd] = 2;
        EXPECT_TRUE(sameBits(filtered(profileOfSlopes(slopes), 2, kNoDepthVote), Profile(5, kEmptyPoint))) << odd;
    }
}

TEST(Outlierdetect1, PointsOwnDirectionIsNoVoteForItself) {
    // w = 1: the offsets are -1 and 0, so at most one similar neighbour counts.
    EXPECT_TRUE(sameBits(filtered(profileOfSlopes({1, 1, 1, 1}), 1, kNoDepthVote), Profile(5, kEmptyPoint)));
}

TEST(Outlierdetect1, DirectionAtDistanceWBehindIsNotAsked) {
    // Seven points, w = 2: position 4 asks 2, 3 and 5, not 6.
    const Profile unasked = profileOfSlopes({1, 1, 1, 1, 1, 9});
    EXPECT_SAME_BITS(filtered(unasked, 2, kNoDepthVote)[4], unasked[4]);
    const Profile asked = profileOfSlopes({1, 9, 1, 1, 1, 1});
    EXPECT_SAME_BITS(filtered(asked, 2, kNoDepthVote)[4], kEmptyPoint);
}

TEST(Outlierdetect1, FirstPointHasNoDirectionToVoteWith) {
    // Position 2 would ask 0, 1 and 3, but 0 has no point before it.
    const Profile profile = profileOfSlopes({1, 1, 1, 1, 1, 1});
    EXPECT_TRUE(sameBits(filtered(profile, 2, kNoDepthVote), withCleared(profile, {0, 1, 2, 6})));
}

TEST(Outlierdetect1, FirstPointDoesNotVoteForADirectionNearZeroEither) {
    // w = 3: position 3 asks 1, 2, 4 and 5, and not 0, whose missing direction is not one of 0.
    const Profile threeVotes = profileOfSlopes({0.1, 0.1, 0.1, 0.1, 1, 1});
    EXPECT_SAME_BITS(filtered(threeVotes, 3, kNoDepthVote)[3], kEmptyPoint);
    const Profile fourVotes = profileOfSlopes({0.1, 0.1, 0.1, 0.1, 0.1, 1});
    EXPECT_SAME_BITS(filtered(fourVotes, 3, kNoDepthVote)[3], fourVotes[3]);
}

TEST(Outlierdetect1, FirstTwoPointsLiveByDepthOnly) {
    // All directions agree, the depths lie 1 apart. w = 3: position 1 asks 0, 1, 2 and 3, position 0 itself, 1 and 2.
    const Profile profile = profileOfSlopes(std::vector<double>(9, 1.0));
    const Profile byDirection = filtered(profile, 3, kNoDepthVote);
    EXPECT_SAME_BITS(byDirection[0], kEmptyPoint);
    EXPECT_SAME_BITS(byDirection[1], kEmptyPoint);
    const Profile byDepth = filtered(profile, 3, 2.5F);
    EXPECT_SAME_BITS(byDepth[0], kEmptyPoint);
    EXPECT_SAME_BITS(byDepth[1], profile[1]);
}

TEST(Outlierdetect1, DirectionsAndDepthsAreNotAddedUp) {
    // w = 2, position 3: two similar directions (1 and 2) and two agreeing depths (itself and 4) are not three.
    const Profile profile = {{10, 1, 10}, {20, 1, 20}, {30, 1, 30}, {40, 1, 40}, {90, 1, 40.5}};
    EXPECT_SAME_BITS(filtered(profile, 2, 1.0F)[3], kEmptyPoint);
}

TEST(Outlierdetect1, DirectionOfZeroCastsNoVote) {
    EXPECT_TRUE(sameBits(filtered(profileOfSlopes({0, 0, 0, 0}), 2, kNoDepthVote), Profile(5, kEmptyPoint)));
    // A direction of 1e-60 is 0 in single precision, one of 1e-30 is not.
    const Profile vanishing = {{1, 1, 1e60}, {2, 1, 2e60}, {3, 1, 3e60}, {4, 1, 4e60}, {5, 1, 5e60}};
    EXPECT_TRUE(sameBits(filtered(vanishing, 2, kNoDepthVote), Profile(5, kEmptyPoint)));
    const Profile small = {{1, 1, 1e30}, {2, 1, 2e30}, {3, 1, 3e30}, {4, 1, 4e30}, {5, 1, 5e30}};
    EXPECT_SAME_BITS(filtered(small, 2, kNoDepthVote)[3], small[3]);
}

TEST(Outlierdetect1, DirectionIsChangeOfXPerChangeOfDepth) {
    // dx / dz is 1 and 1.25; dz / dx would be 1 and 0.8, both pairs similar. With 1 and 1.4 only dz / dx (0.714) is.
    const Profile similar = profileOfSlopes({1.25, 1, 1, 1});
    EXPECT_SAME_BITS(filtered(similar, 2, kNoDepthVote)[3], similar[3]);
    EXPECT_SAME_BITS(filtered(profileOfSlopes({1.4, 1, 1, 1}), 2, kNoDepthVote)[3], kEmptyPoint);
}

/// Whether a neighbour's direction is similar to a point's own one.
bool similar(double own, double neighbour) {
    const Profile profile = profileOfSlopes({neighbour, own, own, own});
    return !sameBits(filtered(profile, 2, kNoDepthVote)[3], kEmptyPoint);
}

TEST(Outlierdetect1, DirectionDifferenceMustStayBelowTheTolerance) {
    EXPECT_TRUE(similar(1, 0.71));
    EXPECT_TRUE(similar(1, 1.29));
    EXPECT_FALSE(similar(1, 0.7));
    EXPECT_FALSE(similar(1, 1.3));
    EXPECT_FALSE(similar(-1, 1));
    EXPECT_TRUE(similar(-1, -1.29));
}

TEST(Outlierdetect1, DirectionDifferenceIsRoundedToSinglePrecision) {
    // Around 0.3 single precision knows 0.29999998212 and 0.30000001192; half way lies 0.29999999702.
    EXPECT_TRUE(similar(1, 1 - 0.29999999));
    EXPECT_FALSE(similar(1, 1 - 0.299999998));  // below 0.3, but rounded up
    EXPECT_TRUE(similar(1, 1 + 0.29999999));
    EXPECT_FALSE(similar(1, 1 + 0.299999998));
}

TEST(Outlierdetect1, OwnDirectionIsRoundedToSinglePrecision) {
    const double own = 1 + 0x1p-25;  // 1 in single precision
    ASSERT_EQ(static_cast<float>(own), 1.0F);
    // Unrounded, the difference would be 0.3000000098 and round to 0.30000001192.
    EXPECT_TRUE(similar(own, 1 - 0.29999998));
}

TEST(Outlierdetect1, NeighboursDirectionIsNotRounded) {
    const double neighbour = 0.70000001;  // 0.69999998808 in single precision
    ASSERT_LT(static_cast<double>(static_cast<float>(neighbour)), 0.69999999);
    EXPECT_TRUE(similar(1, neighbour));
}

TEST(Outlierdetect1, EqualDepthsOfTwoPointsGiveADirectionThatAgreesWithNone) {
    // Position 1 at the depth of position 0: its direction is infinite, and position 3 loses that vote.
    const Profile infinite = {{7, 1, 2}, {9, 1, 2}, {10, 1, 3}, {11, 1, 4}, {12, 1, 5}};
    EXPECT_TRUE(sameBits(filtered(infinite, 2, kNoDepthVote), Profile(5, kEmptyPoint)));
    // At the same x, too, it is not a number.
    const Profile notANumber = {{9, 1, 2}, {9, 1, 2}, {10, 1, 3}, {11, 1, 4}, {12, 1, 5}};
    EXPECT_TRUE(sameBits(filtered(notANumber, 2, kNoDepthVote), Profile(5, kEmptyPoint)));
    const Profile finite = {{8, 1, 1}, {9, 1, 2}, {10, 1, 3}, {11, 1, 4}, {12, 1, 5}};
    EXPECT_SAME_BITS(filtered(finite, 2, kNoDepthVote)[3], finite[3]);
}

TEST(Outlierdetect1, InfiniteDirectionsDoNotAgreeWithOneAnother) {
    EXPECT_TRUE(sameBits(filtered(profileOfHeights(flat(9)), 2, kNoDepthVote), Profile(9, kEmptyPoint)));
    // 1e39 is infinite in single precision.
    const Profile steep = {{1, 1, 1e-39}, {2, 1, 2e-39}, {3, 1, 3e-39}, {4, 1, 4e-39}, {5, 1, 5e-39}};
    EXPECT_TRUE(sameBits(filtered(steep, 2, kNoDepthVote), Profile(5, kEmptyPoint)));
}

TEST(Outlierdetect1, DirectionsRunAlongTheUsablePoints) {
    Profile profile = profileOfSlopes({1, 1, 1, 1});
    profile.insert(profile.begin() + 3, {{0, 5, 5}, {6, 5, 0}});
    EXPECT_TRUE(sameBits(filtered(profile, 2, kNoDepthVote), withCleared(profile, {0, 1, 2, 6})));
}

/// The rule, step by step.
Profile stepByStep(Profile profile, int w, float threshold) {
    Profile points;
    std::vector<std::size_t> positions;
    for (std::size_t i = 0; i < profile.size(); ++i) {
        if (profile[i].x != 0.0 && profile[i].z != 0.0) {
            points.push_back(profile[i]);
            positions.push_back(i);
        }
    }
    const int m = static_cast<int>(points.size());
    if (m < 2 * w + 1) return profile;
    const auto at = [&](int i) { return points[static_cast<std::size_t>(i)]; };
    const auto slope = [&](int i) { return (at(i).x - at(i - 1).x) / (at(i).z - at(i - 1).z); };
    for (int j = 0; j < m; ++j) {
        const float own = j >= 2 ? static_cast<float>(slope(j)) : 0.0F;
        int near = 0;
        int similarOnes = 0;
        for (int k = -w; k <= w - 1; ++k) {
            const int n = j + k;
            if (n < 0 || n >= m) continue;
            if (own != 0.0F && n >= 1 && k != 0) {
                const float d = static_cast<float>(static_cast<double>(own) - slope(n));
                if (std::abs(static_cast<double>(d)) < 0.3) ++similarOnes;
            }
            if (std::abs(at(n).z - at(j).z) < static_cast<double>(threshold)) ++near;
        }
        if (near <= w && similarOnes <= w) profile[positions[static_cast<std::size_t>(j)]] = kEmptyPoint;
    }
    return profile;
}

TEST(Outlierdetect1, LongProfilesFollowTheRule) {
    // A ramp with steps, gaps and spikes.
    Profile profile;
    for (int i = 0; i < 400; ++i) {
        const double spike = (i * 37 % 23 == 0) ? 6.0 : 0.0;
        const double step = (i / 60) % 2 ? 12.0 : 0.0;
        const double z = i % 41 == 7 ? 0.0 : 40 + 0.02 * i + step + spike + 0.3 * std::sin(1.7 * i);
        profile.push_back({i % 17 == 5 ? 0.0 : -20 + 0.1 * i + 0.03 * std::cos(2.3 * i), 0.5, z});
    }
    for (int w = 0; w <= 9; ++w) {
        for (float threshold : {0.0F, 0.2F, 0.5F, 3.0F}) {
            const Profile expected = stepByStep(profile, w, threshold);
            ASSERT_FALSE(sameBits(expected, profile));
            EXPECT_TRUE(sameBits(filtered(profile, w, threshold), expected)) << w << ", " << threshold;
        }
    }
}

TEST(Outlierdetect1, InfiniteThresholdKeepsDepthsApartWhoseDifferenceOverflows) {
    Profile profile = profileOfHeights(flat(64));
    for (std::size_t i = 0; i < profile.size(); ++i) profile[i].z = i % 8 == 0 ? 1.0 : i % 2 == 0 ? 1e308 : -1e308;
    for (int w : {1, 2, 5, 9}) {
        const Profile expected = stepByStep(profile, w, static_cast<float>(kInfinity));
        ASSERT_FALSE(sameBits(expected, withCleared(profile, {0})));
        EXPECT_TRUE(sameBits(filtered(profile, w, static_cast<float>(kInfinity)), expected)) << w;
    }
}

}  // namespace
