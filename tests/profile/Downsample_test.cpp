#include <gtest/gtest.h>

#include <cmath>
#include <cstddef>
#include <initializer_list>
#include <numeric>
#include <stdexcept>
#include <typeinfo>
#include <vector>

#include "KorvaneLaserAlgo.h"
#include "profile/ProfileSupport.h"

namespace {

using support::kEmptyPoint;
using support::kInfinity;
using support::kNotANumber;
using support::KorvaneLaserAlgo;
using support::Point3d;
using support::Profile;
using support::sameBits;

struct Result {
    Profile out;
    int count;
};

Result thinned(const Profile& in, float step) {
    const Profile before(in.begin(), in.end());
    Result result = {Profile(3, Point3d{-1, -2, -3}), -77};
    KorvaneLaserAlgo algo;
    algo.Downsample(in, step, result.out, result.count);
    EXPECT_TRUE(sameBits(in, before));
    return result;
}

/// Points at these x, each at the height 50 and at a y of its own.
Profile profileAt(const std::vector<double>& xs) {
    Profile profile;
    for (double x : xs) profile.push_back({x, 0.5 + static_cast<double>(profile.size()), 50});
    return profile;
}

/// count points from a first x on at a distance of 1.
Profile evenly(int count, double first = 1) {
    std::vector<double> xs(static_cast<std::size_t>(count));
    std::iota(xs.begin(), xs.end(), first);
    return profileAt(xs);
}

/// The points, then empty ones up to a size.
Profile padded(Profile points, std::size_t size) {
    EXPECT_LE(points.size(), size);
    points.resize(size, kEmptyPoint);
    return points;
}

Point3d mean(const Profile& points) {
    Point3d sum{0, 0, 0};
    for (const Point3d& point : points) {
        sum.x += point.x;
        sum.y += point.y;
        sum.z += point.z;
    }
    const double count = static_cast<double>(points.size());
    return {sum.x / count, sum.y / count, sum.z / count};
}

Profile part(const Profile& profile, std::size_t first, std::size_t count) {
    const auto begin = profile.begin() + static_cast<std::ptrdiff_t>(first);
    return {begin, begin + static_cast<std::ptrdiff_t>(count)};
}

void expectPassedThrough(const Profile& in, float step) {
    const Result result = thinned(in, step);
    Profile valid;
    for (const Point3d& point : in) {
        if (point.x != 0.0) valid.push_back(point);
    }
    EXPECT_TRUE(sameBits(result.out, valid)) << "step " << step;
    EXPECT_EQ(result.count, static_cast<int>(valid.size())) << "step " << step;
}

/// An empty point in front and one behind make sure that the output is padded, which a profile that passes through is
/// not.
void expectThinned(Profile in, float step, const Profile& meaningful) {
    in.insert(in.begin(), Point3d{0, 7, 7});
    in.push_back({0, 7, 7});
    const Result result = thinned(in, step);
    EXPECT_EQ(result.count, static_cast<int>(meaningful.size()));
    EXPECT_TRUE(sameBits(result.out, padded(meaningful, in.size())));
}

// ---- Profiles that pass through

TEST(Downsample, EmptyProfileGivesAnEmptyProfile) {
    expectPassedThrough({}, 2.0F);
}

TEST(Downsample, ProfileWithoutAValidPointGivesAnEmptyProfile) {
    expectPassedThrough(Profile{{0, 1, 5}, {-0.0, 2, 6}, {0, 3, 7}}, 2.0F);
}

TEST(Downsample, TenValidPointsPassThroughWithoutPadding) {
    Profile in = evenly(10);
    in.insert(in.begin() + 4, {{0, 7, 7}, {-0.0, 7, 7}});
    in.push_back({0, 8, 9});
    for (float step : {5.0F, 0.1F, 0.0F, -3.0F, 1e30F, std::nanf("")}) expectPassedThrough(in, step);
    expectPassedThrough(evenly(1), 5.0F);
}

TEST(Downsample, ElevenValidPointsAreThinned) {
    const Profile in = evenly(11);  // x = 1 .. 11, buckets 0-4, 5-9, 10-14
    expectThinned(in, 5.0F, {mean(part(in, 0, 4)), mean(part(in, 4, 5)), mean(part(in, 9, 2))});
}

TEST(Downsample, InvalidPointsDoNotCountTowardsTheEleven) {
    Profile in = evenly(10);
    in.push_back({0, 1, 2});
    expectPassedThrough(in, 5.0F);
}

TEST(Downsample, StepNotAboveTheSpacingPassesThrough) {
    const Profile in = evenly(11);
    expectPassedThrough(in, 0.5F);
    expectPassedThrough(in, 1.0F);  // exactly the spacing
    expectPassedThrough(in, 0.0F);
    expectPassedThrough(in, -2.0F);
    expectThinned(in, std::nextafter(1.0F, 2.0F), in);  // just above: eleven buckets of one point
}

TEST(Downsample, SpacingIsTheMeanDistanceFromFirstToLast) {
    // From 1 to 31 in ten steps: 3 on average, although most points lie closer.
    const Profile in = profileAt({1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 31});
    expectPassedThrough(in, 3.0F);
    // just above: 1 .. 3 | 4 .. 6 | 7 .. 9 | 10 | 31
    expectThinned(in, std::nextafter(3.0F, 4.0F),
                  {mean(part(in, 0, 3)), mean(part(in, 3, 3)), mean(part(in, 6, 3)), in[9], in[10]});
}

TEST(Downsample, StepThatIsNotANumberPassesThrough) {
    expectPassedThrough(evenly(20), std::nanf(""));
}

TEST(Downsample, EndThatIsNotANumberPassesThrough) {
    Profile in = evenly(20);
    in.front().x = kNotANumber;
    expectPassedThrough(in, 5.0F);
    in = evenly(20);
    in.back().x = kNotANumber;
    expectPassedThrough(in, 5.0F);
}

TEST(Downsample, StepIsWidenedToDouble) {
    // The spacing is 0.1, the single-precision 0.1 lies just above it.
    const Profile in = profileAt({1, 1.1, 1.2, 1.3, 1.4, 1.5, 1.6, 1.7, 1.8, 1.9, 2});
    ASSERT_GT(static_cast<double>(0.1F), (2.0 - 1.0) / 10);
    expectThinned(in, 0.1F, in);  // 1.0 / 0.1F lies below 10, 1.1 / 0.1F below 11, ...: one point each
}

// ---- Buckets

TEST(Downsample, HundredPointsOfWhichTwentyAreInvalidArePaddedToAHundred) {
    Profile in = evenly(100);
    for (std::size_t i = 0; i < 20; ++i) in[5 * i + 2].x = 0;  // x = 3, 8, 13, ... are missing
    Profile buckets;
    for (int b = 0; b <= 10; ++b) {  // x = 1 .. 9, 10 .. 19, ..., 90 .. 99, 100
        Profile members;
        for (const Point3d& point : in) {
            if (point.x != 0.0 && static_cast<int>(point.x) / 10 == b) members.push_back(point);
        }
        buckets.push_back(mean(members));
    }
    const Result result = thinned(in, 10.0F);
    EXPECT_EQ(result.count, 11);
    EXPECT_EQ(result.out.size(), 100U);
    EXPECT_TRUE(sameBits(result.out, padded(buckets, 100)));
}

TEST(Downsample, PointOnABucketEdgeBelongsToTheBucketItOpens) {
    std::vector<double> xs = {10, 11, 12, 13, 14, 15, 16, 17, 18, std::nextafter(20.0, 0.0), 20, 25};
    const Profile in = profileAt(xs);
    expectThinned(in, 10.0F, {mean(part(in, 0, 10)), mean(part(in, 10, 2))});
}

TEST(Downsample, BucketNumberIsAQuotient) {
    ASSERT_LT(49.0 * (1.0 / 49.0), 1.0);  // a division is not a product with the reciprocal
    const Profile in = evenly(11, 40);    // x = 40 .. 50
    expectThinned(in, 49.0F, {mean(part(in, 0, 9)), mean(part(in, 9, 2))});
}

TEST(Downsample, EmptyBucketsAddNothing) {
    const Profile in = profileAt({1, 2, 3, 4, 5, 6, 7, 8, 9, 9.5, 99});
    expectThinned(in, 10.0F, {mean(part(in, 0, 10)), in[10]});
}

TEST(Downsample, ProfileAcrossZeroHasOneBucketOfDoubleWidth) {
    std::vector<double> xs;
    for (int i = -25; i <= 25; i += 2) xs.push_back(i);
    const Profile in = profileAt(xs);
    // trunc(x / 10): -25 .. -21 | -19 .. -11 | -9 .. 9 | 11 .. 19 | 21 .. 25
    expectThinned(in, 10.0F,
                  {mean(part(in, 0, 3)), mean(part(in, 3, 5)), mean(part(in, 8, 10)), mean(part(in, 18, 5)),
                   mean(part(in, 23, 3))});
}

TEST(Downsample, NegativeEdgeBelongsToTheBucketFartherOut) {
    const Profile in = profileAt({-25, -20, -15, -10, -9.5, -5, -1, 1, 5, 9.5, 10, 15});
    expectThinned(in, 10.0F, {mean(part(in, 0, 2)), mean(part(in, 2, 2)), mean(part(in, 4, 6)), mean(part(in, 10, 2))});
}

TEST(Downsample, BucketsComeOutInTheirOwnOrder) {
    const Profile in = profileAt({1, 25, 12, 3, 14, 22, 5, 17, 8, 26, 29});
    const auto pick = [&](std::initializer_list<std::size_t> indices) {
        Profile members;
        for (std::size_t i : indices) members.push_back(in[i]);
        return mean(members);
    };
    expectThinned(in, 10.0F, {pick({0, 3, 6, 8}), pick({2, 4, 7}), pick({1, 5, 9, 10})});
}

TEST(Downsample, PointsOutsideTheBucketsOfFirstAndLastAreDropped) {
    const Profile in = profileAt({11, 12, 5, -30, 13, 14, 31, 500, 15, 16, 21, 22, 29});
    expectThinned(in, 10.0F, {mean({in[0], in[1], in[4], in[5], in[8], in[9]}), mean({in[10], in[11], in[12]})});
}

TEST(Downsample, PointThatIsNotFiniteInTheMiddleIsDropped) {
    for (double bad : {kNotANumber, kInfinity, -kInfinity}) {
        Profile in = evenly(12, 11);
        in[4].x = bad;
        Profile first = part(in, 0, 9);
        first.erase(first.begin() + 4);
        expectThinned(in, 10.0F, {mean(first), mean(part(in, 9, 3))});
    }
}

TEST(Downsample, CoordinatesAreSummedInOrderAndDivided) {
    // 1e16 + 1 rounds to 1e16 again, twice, and 1e16 is taken away at last.
    Profile in = evenly(14, 11);
    in[0].y = 1e16;
    in[1].y = in[2].y = 1;
    in[3].y = -1e16;
    for (std::size_t i = 4; i < 9; ++i) in[i].y = 0;
    const Result result = thinned(in, 10.0F);
    EXPECT_EQ(result.count, 2);
    EXPECT_SAME_BITS(result.out[0].y, 0.0);
    EXPECT_SAME_BITS(result.out[0].x, (11.0 + 12 + 13 + 14 + 15 + 16 + 17 + 18 + 19) / 9);
    EXPECT_SAME_BITS(result.out[1].y, (9.5 + 10.5 + 11.5 + 12.5 + 13.5) / 5);
}

// ---- Height jumps inside a bucket

/// The only bucket's point for these heights at x = 11, 11.25, ..., followed by a bucket of its own at x = 21 .. 29.
Point3d bucketOf(const std::vector<double>& heights) {
    Profile in;
    for (double z : heights) {
        const double i = static_cast<double>(in.size());
        in.push_back({11 + 0.25 * i, 100 + i, z});
    }
    for (int x = 21; x <= 29; ++x) in.push_back({static_cast<double>(x), 0, 0});
    const Result result = thinned(in, 10.0F);
    EXPECT_EQ(result.count, 2);
    EXPECT_SAME_BITS(result.out[1], (Point3d{25, 0, 0}));
    return result.out[0];
}

TEST(Downsample, JumpRestartsTheBucketWithTheSecondPointAlone) {
    EXPECT_SAME_BITS(bucketOf({50, 60}), (Point3d{11.25, 101, 60}));
    EXPECT_SAME_BITS(bucketOf({60, 50}), (Point3d{11.25, 101, 50}));
}

TEST(Downsample, DifferenceOfExactlyFiveIsNoJump) {
    EXPECT_SAME_BITS(bucketOf({50, 55}), (Point3d{11.125, 100.5, 52.5}));
    EXPECT_SAME_BITS(bucketOf({55, 50}), (Point3d{11.125, 100.5, 52.5}));
    const double above = std::nextafter(55.0, 100.0);
    EXPECT_SAME_BITS(bucketOf({50, above}), (Point3d{11.25, 101, above}));
}

TEST(Downsample, PointThatRestartsABucketCountsTwice) {
    EXPECT_SAME_BITS(bucketOf({50, 60, 63}),
                     (Point3d{(11.25 + 11.25 + 11.5) / 3, (101.0 + 101 + 102) / 3, (60.0 + 60 + 63) / 3}));
}

TEST(Downsample, HeightsAreComparedWithTheFirstOfTheBucket) {
    EXPECT_SAME_BITS(bucketOf({50, 54, 58}), (Point3d{11.5, 102, 58}));  // 58 - 50 is a jump, 58 - 54 is none
}

TEST(Downsample, RestartedBucketComparesWithItsNewFirst) {
    EXPECT_SAME_BITS(bucketOf({50, 60, 50}), (Point3d{11.5, 102, 50}));
    EXPECT_SAME_BITS(bucketOf({50, 60, 65}),
                     (Point3d{(11.25 + 11.25 + 11.5) / 3, (101.0 + 101 + 102) / 3, (60.0 + 60 + 65) / 3}));
}

TEST(Downsample, JumpToAnotherBucketIsNone) {
    // The heights 0 of the second bucket lie 50 below those of the first.
    EXPECT_SAME_BITS(bucketOf({50, 50}), (Point3d{11.125, 100.5, 50}));
}

TEST(Downsample, HeightThatIsNotANumberNeverJumpsAndSpoilsTheMean) {
    EXPECT_TRUE(std::isnan(bucketOf({50, kNotANumber, 52}).z));
    EXPECT_SAME_BITS(bucketOf({50, kNotANumber, 52}).y, 101.0);
    EXPECT_TRUE(std::isnan(bucketOf({kNotANumber, 50, 90}).z));
}

TEST(Downsample, InfiniteHeightIsAJump) {
    EXPECT_SAME_BITS(bucketOf({50, kInfinity}), (Point3d{11.25, 101, kInfinity}));
    EXPECT_SAME_BITS(bucketOf({kInfinity, 50}), (Point3d{11.25, 101, 50}));
}

// ---- Steps and profiles at the limits

TEST(Downsample, ProfileTowardsSmallerXOfOneBucketIsThinned) {
    const Profile in = profileAt({19, 18, 17, 16, 15, 14, 13, 12, 11, 10.5, 10});
    expectThinned(in, 10.0F, {mean(in)});
}

TEST(Downsample, LastBucketJustBelowTheFirstLeavesNoBucket) {
    const Profile in = profileAt({15, 14, 13, 12, 11, 10, 9.5, 9, 8.5, 8, 7});
    expectThinned(in, 10.0F, {});
}

TEST(Downsample, LastBucketFartherBelowTheFirstIsALengthErrorAndChangesNothing) {
    const Profile in = profileAt({25, 24, 23, 22, 21, 15, 14, 13, 12, 9, 8});  // buckets 2 and 0
    const Profile far = profileAt({2e9, 1, 1, 1, 1, 1, 1, 1, 1, 1, -2e9});     // nb = -4e9 + 1 for a step of 1
    KorvaneLaserAlgo algo;
    for (const Profile& profile : {in, far}) {
        const Profile before = evenly(5);
        Profile out = before;
        int count = -77;
        try {
            algo.Downsample(profile, profile[0].x > 100 ? 1.0F : 10.0F, out, count);
            ADD_FAILURE() << "nothing was thrown";
        } catch (const std::exception& error) {
            EXPECT_TRUE(typeid(error) == typeid(std::length_error));
            EXPECT_STREQ(error.what(), "vector too long");
        }
        EXPECT_TRUE(sameBits(out, before));
        EXPECT_EQ(count, -77);
    }
}

TEST(Downsample, NegativeStepAboveANegativeSpacingIsTaken) {
    Profile in;
    for (int x = 30; x >= 10; x -= 2) in.push_back({static_cast<double>(x), 0.5 * x, 50});
    // Buckets -20, -18, -17, -16, -14, -13, -12, -10, -9, -8, -6: one point each.
    expectThinned(in, -1.5F, in);
    expectPassedThrough(in, -2.0F);
    expectPassedThrough(in, -3.0F);
}

TEST(Downsample, TinyNegativeStepOnAProfileTowardsSmallerXKeepsEveryPoint) {
    // Buckets about 1e8 apart, from -2e9 to -1e9: no table of a thousand million buckets is needed.
    Profile in;
    for (int x = 20; x >= 10; --x) in.push_back({static_cast<double>(x), 0.5 * x, 3.0 * x});
    expectThinned(in, -1e-8F, in);
}

TEST(Downsample, TinyNegativeStepKeepsAFirstPointThatNoEmptyOnePrecedes) {
    const Profile in = profileAt({20, 19, 18, 17, 16, 15, 14, 13, 12, 11, 10});
    const Result result = thinned(in, -1e-8F);
    EXPECT_TRUE(sameBits(result.out, in));
    EXPECT_EQ(result.count, 11);
}

TEST(Downsample, TinyNegativeStepAveragesPointsThatShareABucket) {
    const Profile in = profileAt({20, 20, 19, 18, 18, 18, 17, 16, 15, 14, 10, 10});
    expectThinned(
        in, -1e-8F,
        {mean(part(in, 0, 2)), in[2], mean(part(in, 3, 3)), in[6], in[7], in[8], in[9], mean(part(in, 10, 2))});
}

TEST(Downsample, TinyNegativeStepDropsPointsOutsideTheBucketsOfFirstAndLast) {
    // Buckets -2e9 to -1e9; 5 has -5e8 and 21.4 has -2.14e9.
    Profile in = profileAt({20, 19, 18, 5, 17, 16, 21.4, 15, 14, 13, 12, 11, 10});
    Profile kept = in;
    std::erase_if(kept, [](const auto& point) { return point.x == 5.0 || point.x == 21.4; });
    expectThinned(in, -1e-8F, kept);
}

TEST(Downsample, BucketNumbersMayDifferByMoreThanAnInt) {
    // From -2.1e9 to 2.1e9.
    const Profile in = profileAt({21, 17, 13, 9, 5, 1, -3, -7, -11, -15, -21});
    expectThinned(in, -1e-8F, in);
}

TEST(Downsample, BucketNumberBeyondTheIntegersIsTheSmallestOne) {
    // x / step is 5e10 and more, so that all points share one bucket.
    const Profile in = evenly(11, 1e11);
    expectThinned(in, 2.0F, {mean(in)});
}

TEST(Downsample, FirstAndLastBucketNumberBeyondTheIntegersDropTheRest) {
    // 1e11 / 1 and -1e11 / 1 have no 32-bit number and fall into the smallest one; the others lie 2^31 above.
    const Profile in = profileAt({1e11, 1, 2, 3, 4, 5, 6, 7, 8, 9, -1e11});
    expectThinned(in, 1.0F, {mean({in[0], in[10]})});
}

TEST(Downsample, BucketNumbersReachFromTheSmallestIntToTheLargest) {
    // Divided by -1 and truncated: -2147483648, -2147483647, ..., 2147483647. The one at -2147483648 would be
    // 2147483648, which no int holds, and falls into the smallest number.
    const Profile in = profileAt({2147483648.5, 2147483647.5, 4e8, 3e8, 2e8, 1e8, -2147483648.0, -1e8, -2e8, -3e8,
                                  -2147483646.5, -2147483647.5});
    Profile expected = in;
    expected[0] = mean({in[0], in[6]});
    expected.erase(expected.begin() + 6);
    expectThinned(in, -1.0F, expected);
}

TEST(Downsample, ZeroStepOnAProfileTowardsSmallerXPutsAllPointsIntoOneBucket) {
    const Profile in = profileAt({19, 18, 17, 16, 15, 14, -13, -14, -15, -16, -17});
    expectThinned(in, 0.0F, {mean(in)});
    expectThinned(in, -0.0F, {mean(in)});
}

TEST(Downsample, InfiniteStepPutsAllPointsIntoOneBucket) {
    const Profile in = evenly(12, -3.5);
    expectThinned(in, HUGE_VALF, {mean(in)});
}

// ---- Outputs

TEST(Downsample, OldContentsOfTheOutputAreReplaced) {
    const Profile in = evenly(11);
    Profile out(500, Point3d{9, 9, 9});
    int count = 500;
    KorvaneLaserAlgo algo;
    algo.Downsample(in, 5.0F, out, count);
    EXPECT_EQ(count, 3);
    EXPECT_EQ(out.size(), 11U);
    algo.Downsample(evenly(4), 5.0F, out, count);
    EXPECT_EQ(count, 4);
    EXPECT_TRUE(sameBits(out, evenly(4)));
    algo.Downsample({}, 5.0F, out, count);
    EXPECT_EQ(count, 0);
    EXPECT_TRUE(out.empty());
}

/// The rule, step by step, with a table of all buckets.
Result stepByStep(const Profile& in, double step) {
    Profile points;
    for (const Point3d& point : in) {
        if (point.x != 0.0) points.push_back(point);
    }
    const int first = static_cast<int>(points.front().x / step);
    const int last = static_cast<int>(points.back().x / step);
    std::vector<std::vector<std::size_t>> buckets(static_cast<std::size_t>(last - first + 1));
    for (std::size_t i = 0; i < points.size(); ++i) {
        const int b = static_cast<int>(points[i].x / step) - first;
        if (b < 0 || b > last - first) continue;
        std::vector<std::size_t>& bucket = buckets[static_cast<std::size_t>(b)];
        if (!bucket.empty() && std::abs(points[i].z - points[bucket.front()].z) > 5.0) bucket = {i};
        bucket.push_back(i);
    }
    Result result = {{}, 0};
    for (const std::vector<std::size_t>& bucket : buckets) {
        if (bucket.empty()) continue;
        Profile members;
        for (std::size_t i : bucket) members.push_back(points[i]);
        result.out.push_back(mean(members));
    }
    result.count = static_cast<int>(result.out.size());
    result.out.resize(in.size(), kEmptyPoint);
    return result;
}

TEST(Downsample, LongProfilesFollowTheRule) {
    // Jumps, gaps, points out of order and beyond the ends, across x = 0.
    Profile in;
    for (int i = 0; i < 500; ++i) {
        const double wobble = i % 29 == 11 ? -4.0 : 0.13 * std::sin(3.1 * i);
        const double z = 40 + ((i / 7) % 3) * 4.0 + 0.7 * std::cos(1.9 * i);
        in.push_back({i % 13 == 6 ? 0.0 : -20.2 + 0.09 * i + wobble, 0.1 * i, z});
    }
    for (float step : {0.11F, 0.25F, 0.7F, 1.0F, 3.3F, 50.0F}) {
        const Result expected = stepByStep(in, static_cast<double>(step));
        const Result result = thinned(in, step);
        EXPECT_EQ(result.count, expected.count) << step;
        EXPECT_TRUE(sameBits(result.out, expected.out)) << step;
    }
}

}  // namespace
