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
using support::Point3d;
using support::Profile;
using support::profileOfHeights;
using support::sameBits;
using support::withCleared;
using support::withFront;

Profile filtered(Profile profile, int halfWidth, float threshold) {
    KorvaneLaserAlgo algo;
    algo.Outlierdetect2(profile, halfWidth, threshold);
    return profile;
}

/// Ten points at z = 100, then ten at z = 200.
Profile twoRuns() {
    std::vector<double> heights(10, 100.0);
    heights.resize(20, 200.0);
    return profileOfHeights(heights);
}

// ---- When nothing is done

TEST(Outlierdetect2, EmptyProfileStaysEmpty) {
    EXPECT_TRUE(filtered({}, 3, 5.0F).empty());
}

TEST(Outlierdetect2, ProfileOfOnePointIsNeverMarked) {
    for (int w : {1, 2, 100, kIntMax}) {
        EXPECT_TRUE(sameBits(filtered({{1, 2, 3}}, w, 5.0F), Profile{{1, 2, 3}}));
        EXPECT_TRUE(sameBits(filtered({{0, 2, 3}}, w, 5.0F), Profile{{0, 2, 3}}));
    }
}

TEST(Outlierdetect2, RunLengthOfOneOrLessClearsNothing) {
    const Profile profile = profileOfHeights({100, 200, 100, 200, kNotANumber, 300});
    for (int w : {1, 0, -1, -1000, kIntMin}) {
        for (float threshold : {5.0F, 0.0F}) EXPECT_TRUE(sameBits(filtered(profile, w, threshold), profile)) << w;
    }
}

// ---- Runs and their first points

TEST(Outlierdetect2, FirstPointsOfEveryRunAreCleared) {
    const Profile profile = twoRuns();
    EXPECT_TRUE(sameBits(filtered(profile, 1, 5.0F), profile));
    EXPECT_TRUE(sameBits(filtered(profile, 2, 5.0F), withCleared(profile, {10})));
    EXPECT_TRUE(sameBits(filtered(profile, 3, 5.0F), withCleared(profile, {0, 1, 10, 11})));
    EXPECT_TRUE(sameBits(filtered(profile, 4, 5.0F), withCleared(profile, {0, 1, 2, 10, 11, 12})));
}

TEST(Outlierdetect2, FirstRunAfterEmptyPointsLosesOnePointFewer) {
    const Profile profile = withFront({kEmptyPoint, kEmptyPoint}, twoRuns());
    EXPECT_TRUE(sameBits(filtered(profile, 2, 5.0F), withCleared(profile, {12})));
    EXPECT_TRUE(sameBits(filtered(profile, 3, 5.0F), withCleared(profile, {2, 12, 13})));
    EXPECT_TRUE(sameBits(filtered(profile, 4, 5.0F), withCleared(profile, {2, 3, 12, 13, 14})));
}

TEST(Outlierdetect2, OneLeadingEmptyPointIsEnoughForTheFirstToCountTwice) {
    const Profile profile = withFront({{0, 8, 9}}, profileOfHeights({100, 100, 100, 100}));
    EXPECT_TRUE(sameBits(filtered(profile, 2, 5.0F), profile));
    EXPECT_TRUE(sameBits(filtered(profile, 3, 5.0F), withCleared(profile, {1})));
}

TEST(Outlierdetect2, SinglePointAfterEmptyPointsCountsAsARunOfTwo) {
    const Profile jump = withFront({kEmptyPoint}, profileOfHeights({100, 200, 200, 200}));
    EXPECT_TRUE(sameBits(filtered(jump, 2, 5.0F), withCleared(jump, {2})));
    EXPECT_TRUE(sameBits(filtered(jump, 3, 5.0F), withCleared(jump, {1, 2, 3})));
    const Profile alone = {kEmptyPoint, {3, 1, 100}, kEmptyPoint};
    EXPECT_TRUE(sameBits(filtered(alone, 2, 5.0F), alone));
    EXPECT_TRUE(sameBits(filtered(alone, 3, 5.0F), Profile(3, kEmptyPoint)));
}

TEST(Outlierdetect2, FirstRunAtTheVeryStartKeepsItsFirstPointForRunsOfTwo) {
    const Profile profile = profileOfHeights({100, 100});
    EXPECT_TRUE(sameBits(filtered(profile, 2, 5.0F), profile));
    EXPECT_TRUE(sameBits(filtered(profile, 3, 5.0F), Profile(2, kEmptyPoint)));
}

TEST(Outlierdetect2, FirstRunAtTheVeryStartIsCheckedAtOnePointWhenThePositionAfterItIsEmpty) {
    const Profile profile = {{1, 1, 100}, {0, 7, 8}, {3, 1, 100}, {4, 1, 100}};
    EXPECT_TRUE(sameBits(filtered(profile, 2, 5.0F), withCleared(profile, {0})));
}

TEST(Outlierdetect2, FirstPointThatJumpsAtOnceIsCleared) {
    const Profile profile = profileOfHeights({100, 200, 200, 200});
    EXPECT_TRUE(sameBits(filtered(profile, 2, 5.0F), withCleared(profile, {0, 1})));
}

TEST(Outlierdetect2, RunOfFewerPointsThanDemandedGoesEntirely) {
    const Profile profile = profileOfHeights({100, 100, 100, 100, 200, 200, 300, 300, 300, 300});
    // runs of 4, 2 and 4 points
    EXPECT_TRUE(sameBits(filtered(profile, 3, 5.0F), withCleared(profile, {0, 1, 4, 5, 6, 7})));
    EXPECT_TRUE(sameBits(filtered(profile, 5, 5.0F), Profile(10, kEmptyPoint)));
}

TEST(Outlierdetect2, RunOfExactlyTheDemandedLengthKeepsItsLastPoint) {
    const Profile profile = profileOfHeights({100, 100, 100, 200, 200, 200, 300, 300, 300});
    EXPECT_TRUE(sameBits(filtered(profile, 3, 5.0F), withCleared(profile, {0, 1, 3, 4, 6, 7})));
}

TEST(Outlierdetect2, ShortRunAtTheEndGoesEntirely) {
    const Profile profile = profileOfHeights({100, 100, 100, 100, 200, 200});
    EXPECT_TRUE(sameBits(filtered(profile, 3, 5.0F), withCleared(profile, {0, 1, 4, 5})));
}

TEST(Outlierdetect2, DemandBeyondAnyProfileClearsEveryUsablePoint) {
    Profile profile = profileOfHeights(std::vector<double>(50, 100.0));
    profile[20].x = 0;
    Profile expected(50, kEmptyPoint);
    expected[20] = profile[20];
    EXPECT_TRUE(sameBits(filtered(profile, kIntMax, 5.0F), expected));
}

TEST(Outlierdetect2, SpikeIsClearedWithTheStartOfTheRunBehindIt) {
    const Profile profile = profileOfHeights({100, 100, 100, 100, 200, 100, 100, 100, 100});
    EXPECT_TRUE(sameBits(filtered(profile, 2, 5.0F), withCleared(profile, {4, 5})));
    EXPECT_TRUE(sameBits(filtered(profile, 3, 5.0F), withCleared(profile, {0, 1, 4, 5, 6})));
}

TEST(Outlierdetect2, ClearedPointLosesAllThreeCoordinates) {
    const Profile result = filtered({{1, 7, 100}, {2, 7, 100}, {3, 7, 200}, {4, 7, 200}}, 2, 5.0F);
    EXPECT_TRUE(sameBits(result, Profile{{1, 7, 100}, {2, 7, 100}, kEmptyPoint, {4, 7, 200}}));
}

// ---- What ends a run

TEST(Outlierdetect2, JumpInXEndsARunAsAJumpInZDoes) {
    const Profile inX = {{1, 0, 50}, {2, 0, 50}, {3, 0, 50}, {13, 0, 50}, {14, 0, 50}};
    EXPECT_TRUE(sameBits(filtered(inX, 2, 5.0F), withCleared(inX, {3})));
    const Profile backInX = {{21, 0, 50}, {22, 0, 50}, {23, 0, 50}, {3, 0, 50}, {4, 0, 50}};
    EXPECT_TRUE(sameBits(filtered(backInX, 2, 5.0F), withCleared(backInX, {3})));
    const Profile downInZ = {{1, 0, 50}, {2, 0, 50}, {3, 0, 50}, {4, 0, 30}, {5, 0, 30}};
    EXPECT_TRUE(sameBits(filtered(downInZ, 2, 5.0F), withCleared(downInZ, {3})));
    const Profile inY = {{1, 0, 50}, {2, 0, 50}, {3, 0, 50}, {4, 900, 50}, {5, 900, 50}};
    EXPECT_TRUE(sameBits(filtered(inY, 2, 5.0F), inY));
}

TEST(Outlierdetect2, JumpOfExactlyTheThresholdEndsARun) {
    const double below = std::nextafter(55.0, 0.0);
    const Profile z = {{1, 0, 50}, {2, 0, 50}, {3, 0, 55}, {4, 0, 55}};
    EXPECT_TRUE(sameBits(filtered(z, 2, 5.0F), withCleared(z, {2})));
    const Profile zBelow = {{1, 0, 50}, {2, 0, 50}, {3, 0, below}, {4, 0, below}};
    EXPECT_TRUE(sameBits(filtered(zBelow, 2, 5.0F), zBelow));
    const Profile x = {{49, 0, 1}, {50, 0, 1}, {55, 0, 1}, {56, 0, 1}};
    EXPECT_TRUE(sameBits(filtered(x, 2, 5.0F), withCleared(x, {2})));
    const Profile xBelow = {{49, 0, 1}, {50, 0, 1}, {below, 0, 1}, {56, 0, 1}};
    EXPECT_TRUE(sameBits(filtered(xBelow, 2, 5.0F), xBelow));
}

TEST(Outlierdetect2, ThresholdIsWidenedToDouble) {
    // The single-precision 0.1 is 0.10000000149.
    const Profile below = {{0.01, 0, 1}, {0.02, 0, 1}, {0.03, 0, 1.100000001}, {0.04, 0, 1.100000001}};
    EXPECT_TRUE(sameBits(filtered(below, 2, 0.1F), below));
    const Profile above = {{0.01, 0, 1}, {0.02, 0, 1}, {0.03, 0, 1.100000002}, {0.04, 0, 1.100000002}};
    EXPECT_TRUE(sameBits(filtered(above, 2, 0.1F), withCleared(above, {2})));
}

TEST(Outlierdetect2, EveryPointIsComparedWithTheLastOfItsRun) {
    const Profile ramp = profileOfHeights({100, 104, 108, 112, 116, 120});
    EXPECT_TRUE(sameBits(filtered(ramp, 2, 5.0F), ramp));
}

TEST(Outlierdetect2, EmptyPointsBetweenTwoMembersDoNotEndARun) {
    const Profile profile = {{1, 0, 50}, {2, 0, 50}, {0, 8, 900}, {-0.0, 8, 50}, {3, 0, 51}, {4, 0, 51}};
    EXPECT_TRUE(sameBits(filtered(profile, 2, 5.0F), profile));
}

TEST(Outlierdetect2, PointBehindAGapIsComparedWithTheLastUsableOneBeforeIt) {
    const Profile profile = {{1, 0, 50}, {2, 0, 50}, {0, 8, 50}, {3, 0, 90}, {4, 0, 90}};
    EXPECT_TRUE(sameBits(filtered(profile, 2, 5.0F), withCleared(profile, {3})));
}

TEST(Outlierdetect2, DepthOfZeroIsUsable) {
    const Profile profile = profileOfHeights({0, 0, 0, 90, 90});
    EXPECT_TRUE(sameBits(filtered(profile, 3, 5.0F), withCleared(profile, {0, 1, 3, 4})));
}

TEST(Outlierdetect2, ThresholdOfZeroOrLessClearsEveryUsablePoint) {
    const Profile profile = {{1, 1, 50}, {1, 1, 50}, {0, 7, 8}, {1, 1, 50}, {0, 7, 8}};
    const Profile leading = withFront({{0, 7, 8}}, profile);
    for (float threshold : {0.0F, -0.0F, -5.0F, std::nanf("")}) {
        EXPECT_TRUE(sameBits(filtered(profile, 2, threshold), withCleared(profile, {0, 1, 3}))) << threshold;
        EXPECT_TRUE(sameBits(filtered(leading, 2, threshold), withCleared(leading, {1, 2, 4}))) << threshold;
    }
}

TEST(Outlierdetect2, InfiniteThresholdJoinsAllFinitePoints) {
    const Profile profile = profileOfHeights({-1e300, 5, 1e200, -3});
    EXPECT_TRUE(sameBits(filtered(profile, 2, HUGE_VALF), profile));
}

TEST(Outlierdetect2, CoordinateThatIsNotFiniteFormsARunOfItsOwn) {
    for (double bad : {kNotANumber, kInfinity, -kInfinity}) {
        const Profile z = profileOfHeights({50, 50, 50, bad, 50, 50, 50});
        EXPECT_TRUE(sameBits(filtered(z, 2, 5.0F), withCleared(z, {3, 4}))) << bad;
        Profile x = profileOfHeights({50, 50, 50, 50, 50, 50, 50});
        x[3].x = bad;
        EXPECT_TRUE(sameBits(filtered(x, 2, 5.0F), withCleared(x, {3, 4}))) << bad;
    }
}

TEST(Outlierdetect2, FirstPointThatIsNotANumberDoesNotCountTwice) {
    const Profile profile = withFront({kEmptyPoint}, profileOfHeights({kNotANumber, 50, 50, 50}));
    EXPECT_TRUE(sameBits(filtered(profile, 2, 5.0F), withCleared(profile, {1, 2})));
}

/// The rule, step by step.
Profile stepByStep(Profile profile, int w, float threshold) {
    std::vector<std::size_t> run;
    std::vector<std::size_t> marked;
    const auto markShortRun = [&] {
        if (static_cast<int>(run.size()) < w) marked.insert(marked.end(), run.begin(), run.end());
    };
    const double limit = static_cast<double>(threshold);
    if (!profile.empty() && profile[0].x != 0.0) run.push_back(0);
    for (std::size_t i = 1; i < profile.size(); ++i) {
        const bool usable = profile[i].x != 0.0;
        if (run.empty() && usable) run.push_back(i);
        if (!run.empty() && usable) {
            const Point3d& last = profile[run.back()];
            if (std::abs(profile[i].z - last.z) < limit && std::abs(profile[i].x - last.x) < limit) {
                run.push_back(i);
            } else {
                markShortRun();
                run = {i};
            }
        }
        markShortRun();
    }
    for (std::size_t position : marked) profile[position] = kEmptyPoint;
    return profile;
}

TEST(Outlierdetect2, LongProfilesFollowTheRule) {
    for (int leading = 0; leading <= 2; ++leading) {
        Profile profile(static_cast<std::size_t>(leading), Point3d{0, 4, 2});
        for (int i = 0; i < 300; ++i) {
            const double z = 10 + ((i * i) % 31 < 4 ? 5 : 0) + ((i / 9) % 3) * 2.5;
            profile.push_back({i % 13 == 4 ? 0.0 : 1 + 0.5 * i + (i % 37 == 0 ? 2.0 : 0.0), 0.5, z});
        }
        for (int w = 0; w <= 12; ++w) {
            for (float threshold : {0.5F, 1.0F, 2.5F, 3.0F, 7.0F})
                EXPECT_TRUE(sameBits(filtered(profile, w, threshold), stepByStep(profile, w, threshold)))
                    << leading << ", " << w << ", " << threshold;
        }
    }
}

}  // namespace
