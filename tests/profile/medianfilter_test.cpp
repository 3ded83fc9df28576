#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <ostream>
#include <string>
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

using Method = void (KorvaneLaserAlgo::*)(Profile&, const int&);

struct Variant {
    const char* name;
    Method method;
};

void PrintTo(const Variant& variant, std::ostream* stream) {
    *stream << variant.name;
}

/// One filter under two names: every test runs under both.
class medianfilter : public testing::TestWithParam<Variant> {
protected:
    static Profile filtered(Profile profile, int halfWindow) {
        KorvaneLaserAlgo algo;
        (algo.*GetParam().method)(profile, halfWindow);
        return profile;
    }
};

INSTANTIATE_TEST_SUITE_P(Both, medianfilter,
                         testing::Values(Variant{"medianfilter1", &KorvaneLaserAlgo::medianfilter1},
                                         Variant{"medianfilter2", &KorvaneLaserAlgo::medianfilter2}),
                         [](const auto& variant) { return std::string(variant.param.name); });

double toSingle(double value) {
    return static_cast<double>(static_cast<float>(value));
}

// ---- When nothing is done

TEST_P(medianfilter, EmptyProfileStaysEmpty) {
    for (int r : {0, 1, 5}) EXPECT_TRUE(filtered({}, r).empty());
}

TEST_P(medianfilter, ProfileWithoutAValidPointIsUnchanged) {
    const Profile profile = {{0, 1, 0.1}, {-0.0, 2, 0.2}, {0, 3, 0.3}};
    for (int r : {0, 1}) EXPECT_TRUE(sameBits(filtered(profile, r), profile));
}

TEST_P(medianfilter, FewerValidPointsThanTheWindowLeaveTheProfileUnchanged) {
    const Profile profile = {{1, 0, 5}, {0, 0, 1}, {2, 0, 1}, {3, 0, 4}, {4, 0, 2}};  // 4 valid points
    EXPECT_TRUE(sameBits(filtered(profile, 2), profile));
    EXPECT_TRUE(sameBits(filtered({}, 0), Profile{}));
}

TEST_P(medianfilter, NegativeHalfWindowLeavesTheProfileUnchanged) {
    const Profile profile = profileOfHeights({5, 0.1, 4, 2, 3});
    for (int r : {-1, -2, -1000, kIntMin}) EXPECT_TRUE(sameBits(filtered(profile, r), profile)) << r;
}

TEST_P(medianfilter, WindowBeyondTheIntegerLimitLeavesTheProfileUnchanged) {
    const Profile profile = profileOfHeights({5, 0.1, 4, 2, 3});
    for (int r : {1073741823, 1073741824, kIntMax - 1, kIntMax})
        EXPECT_TRUE(sameBits(filtered(profile, r), profile)) << r;
}

// ---- The median

TEST_P(medianfilter, ExactlyAsManyValidPointsAsTheWindowAreAllFiltered) {
    // Windows: {5 1 4}, {5 1 4 2}, {5 1 4 2 3}, {1 4 2 3}, {4 2 3}; of four values the third smallest.
    const Profile profile = profileOfHeights({5, 1, 4, 2, 3});
    EXPECT_TRUE(sameBits(filtered(profile, 2), withHeights(profile, {4, 4, 3, 3, 3})));
}

TEST_P(medianfilter, WindowOfTwoTakesTheLargerValue) {
    const Profile profile = profileOfHeights({3, 1, 2});
    EXPECT_TRUE(sameBits(filtered(profile, 1), withHeights(profile, {3, 2, 2})));
    const Profile reversed = profileOfHeights({1, 3, 2});
    EXPECT_TRUE(sameBits(filtered(reversed, 1), withHeights(reversed, {3, 2, 3})));
}

TEST_P(medianfilter, WindowsReadTheUnfilteredHeights) {
    // Position 2 sees 1, 4, 2; the filtered 4 in place of the 1 would give 4.
    const Profile profile = profileOfHeights({5, 1, 4, 2, 3});
    EXPECT_TRUE(sameBits(filtered(profile, 1), withHeights(profile, {5, 4, 2, 3, 3})));
}

TEST_P(medianfilter, WindowOfOneRoundsToSinglePrecisionOnly) {
    const Profile profile = {{1, 2, 0.1}, {0, 5, 0.1}, {3, 4, -1.0 / 3.0}, {-7, 1, 16777217}};
    ASSERT_NE(toSingle(0.1), 0.1);
    EXPECT_TRUE(sameBits(filtered(profile, 0),
                         Profile{{1, 2, toSingle(0.1)}, {0, 5, 0.1}, {3, 4, toSingle(-1.0 / 3.0)}, {-7, 1, 16777216}}));
    EXPECT_TRUE(sameBits(filtered({{1, 2, 0.1}}, 0), Profile{{1, 2, toSingle(0.1)}}));
}

TEST_P(medianfilter, HeightsPassThroughSinglePrecision) {
    const Profile profile = profileOfHeights({0.3, 0.1, 0.2});
    EXPECT_TRUE(sameBits(filtered(profile, 1), withHeights(profile, {toSingle(0.3), toSingle(0.2), toSingle(0.2)})));
}

TEST_P(medianfilter, HeightBeyondSinglePrecisionBecomesInfinite) {
    const Profile profile = profileOfHeights({1e39, -1e39, 1});
    EXPECT_TRUE(sameBits(filtered(profile, 0), withHeights(profile, {kInfinity, -kInfinity, 1})));
}

TEST_P(medianfilter, InfiniteHeightsAreOrderedLikeOthers) {
    const Profile profile = profileOfHeights({kInfinity, 1, -kInfinity, 2, kInfinity});
    EXPECT_TRUE(sameBits(filtered(profile, 1), withHeights(profile, {kInfinity, 1, 1, 2, kInfinity})));
}

TEST_P(medianfilter, InvalidPointsAreSkippedAndKeepAllTheirFields) {
    const Profile profile = {{1, 9, 5}, {0, 8, 100.1}, {-0.0, 7, -100.1}, {2, 6, 1}, {0, 5, 0.1}, {3, 4, 4}};
    EXPECT_TRUE(sameBits(filtered(profile, 1), withHeights(profile, {5, 100.1, -100.1, 4, 0.1, 4})));
}

TEST_P(medianfilter, PositionThatIsNotANumberIsValid) {
    const Profile profile = {{1, 0, 5}, {kNotANumber, 0, 1}, {3, 0, 4}};
    EXPECT_TRUE(sameBits(filtered(profile, 1), withHeights(profile, {5, 4, 4})));
}

TEST_P(medianfilter, HeightOfZeroTakesPart) {
    const Profile profile = profileOfHeights({5, 0, 0, 4, 6});
    EXPECT_TRUE(sameBits(filtered(profile, 1), withHeights(profile, {5, 0, 0, 4, 6})));
}

TEST_P(medianfilter, LongProfilesFollowTheRule) {
    // Few distinct heights, so that every window holds equal ones.
    Profile profile;
    for (int i = 0; i < 400; ++i) {
        const double z = ((i * i * 7 + i * 3) % 11) * 0.1 - 0.45 + (i > 200 ? 3.3 : 0.0);
        profile.push_back({i % 9 == 4 ? 0.0 : 1.0 + i, 0.5, z});
    }
    std::vector<std::size_t> valid;
    for (std::size_t i = 0; i < profile.size(); ++i) {
        if (profile[i].x != 0.0) valid.push_back(i);
    }
    const int n = static_cast<int>(valid.size());

    for (int r : {0, 1, 2, 3, 4, 5, 8, 16, 40, 100, (n - 1) / 2}) {
        Profile expected = profile;
        for (int j = 0; j < n; ++j) {
            std::vector<float> window;
            for (int m = std::max(j - r, 0); m <= std::min(j + r, n - 1); ++m)
                window.push_back(static_cast<float>(profile[valid[static_cast<std::size_t>(m)]].z));
            std::sort(window.begin(), window.end());
            expected[valid[static_cast<std::size_t>(j)]].z = static_cast<double>(window[window.size() / 2]);
        }
        EXPECT_TRUE(sameBits(filtered(profile, r), expected)) << r;
    }
}

TEST_P(medianfilter, WindowOverBothZerosYieldsAZero) {
    const Profile result = filtered(profileOfHeights({0.0, -0.0, 0.0, -0.0, 0.0}), 1);
    for (const Point3d& point : result) EXPECT_EQ(point.z, 0.0);
}

TEST_P(medianfilter, NegativeZeroLiesBelowZero) {
    // Windows {0 -0 0} and {-0 0 -0} in turn; at the ends the larger of {0 -0}.
    std::vector<double> heights, medians;
    for (int i = 0; i < 40; ++i) {
        heights.push_back(i % 2 == 0 ? 0.0 : -0.0);
        medians.push_back(i % 2 == 0 && i > 0 ? -0.0 : 0.0);
    }
    const Profile profile = profileOfHeights(heights);
    EXPECT_TRUE(sameBits(filtered(profile, 1), withHeights(profile, medians)));
}

TEST_P(medianfilter, WindowWithANotANumberYieldsOneOfItsOwnValuesAndOthersAreExact) {
    constexpr int kCount = 120;
    for (int distance : {1, 2, 3, 5, 17, 60}) {
        std::vector<double> heights(kCount);
        for (int i = 0; i < kCount; ++i)
            heights[static_cast<std::size_t>(i)] = i % distance == distance / 2 ? kNotANumber : (i * 29) % 23;
        const Profile profile = profileOfHeights(heights);
        for (int r : {0, 1, 2, 3, 7, 20, 59}) {
            const Profile result = filtered(profile, r);
            ASSERT_EQ(result.size(), profile.size());
            for (int j = 0; j < kCount; ++j) {
                std::vector<double> window(heights.begin() + std::max(j - r, 0),
                                           heights.begin() + std::min(j + r + 1, kCount));
                const double z = result[static_cast<std::size_t>(j)].z;
                const bool exact = std::none_of(window.begin(), window.end(), [](double h) { return std::isnan(h); });
                if (exact) {
                    std::sort(window.begin(), window.end());
                    EXPECT_SAME_BITS(z, window[window.size() / 2]);
                } else {
                    EXPECT_TRUE(std::any_of(window.begin(), window.end(), [z](double h) { return sameBits(h, z); }))
                        << z << " is not a height of the window of " << j << ", " << r;
                }
            }
        }
    }
}

TEST(medianfilter1AndMedianfilter2, GiveTheSameBits) {
    Profile first = profileOfHeights({0.7, 0.1, 9.3, 2.2, 5.5, 4.4, 0.1, 8.8, 3.1});
    Profile second = first;
    const Profile before = first;
    KorvaneLaserAlgo algo;
    algo.medianfilter1(first, 2);
    algo.medianfilter2(second, 2);
    EXPECT_FALSE(sameBits(first, before));
    EXPECT_TRUE(sameBits(first, second));
}

}  // namespace
