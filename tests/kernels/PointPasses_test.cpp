// The passes over lists of points, numbers and votes beside their plain twins, on lists of every small size that lie
// beside inaccessible pages.

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <memory>
#include <vector>

#include "kernels/PassRun.h"

namespace {

using namespace passes;

constexpr double kNotANumber = std::numeric_limits<double>::quiet_NaN();

std::vector<double> numbers(Random& random, std::size_t count, int low, int high) {
    std::vector<double> list(count);
    for (double& value : list) value = random.number(low, high);
    return list;
}

std::vector<float> singles(Random& random, std::size_t count, int low, int high) {
    const std::vector<double> list = numbers(random, count, low, high);
    return std::vector<float>(list.begin(), list.end());
}

// ---- votes ----

TEST(CastVotes, CountsEveryPointAtItsDistance) {
    expectTwinsAgreeOnLists([](const KernelSet& set, Random& random, std::size_t count) {
        constexpr std::ptrdiff_t kFarthest = 100;
        constexpr std::ptrdiff_t kStride = 2 * kFarthest + 1;
        Buffer<float> x(singles(random, count, 0, 70));
        Buffer<float> y(singles(random, count, 0, 70));
        const double angle = random.number(0, 3);
        Buffer<std::int32_t> votes(std::vector<std::int32_t>(kVoteRows * kStride, 0));
        set.castVotes(x.data(), y.data(), count, static_cast<float>(std::cos(angle)),
                      static_cast<float>(std::sin(angle)), votes.data() + kFarthest, kStride);
        EXPECT_TRUE(votes.guardsIntact());
        Results results;
        for (std::ptrdiff_t i = 0; i < kStride; ++i) {
            std::int32_t sum = 0;
            for (int row = 0; row < kVoteRows; ++row) sum += votes.data()[row * kStride + i];
            results.add(sum);
        }
        return results;
    });
}

TEST(CastVotes, LeavesOtherDistancesAlone) {
    constexpr std::ptrdiff_t kStride = 2;
    const std::vector<float> zeros(35, 0.0f);
    std::vector<std::int32_t> votes(kVoteRows * kStride, 0);
    active().castVotes(zeros.data(), zeros.data(), zeros.size(), 1.0f, 0.0f, votes.data(), kStride);
    EXPECT_EQ(votes[0] + votes[2] + votes[4] + votes[6], 35);
    EXPECT_EQ(votes[1] + votes[3] + votes[5] + votes[7], 0);
}

TEST(SumVotes, AddsUpTheRowsAndClearsWhatItAdded) {
    expectTwinsAgreeOnLists([](const KernelSet& set, Random& random, std::size_t count) {
        const std::size_t stride = count + sizeOf(random.below(9));
        std::vector<std::int32_t> counters((kVoteRows - 1) * stride + count);
        for (std::int32_t& counter : counters) counter = random.below(50);
        Buffer<std::int32_t> votes(counters);
        Buffer<std::int32_t> sums(std::vector<std::int32_t>(count, -3));
        Results results;
        results.add(set.sumVotes(votes.data(), static_cast<std::ptrdiff_t>(stride), static_cast<std::ptrdiff_t>(count),
                                 sums.data()));
        results.add(votes);
        results.add(sums);
        return results;
    });
}

TEST(BoundVotes, GivesWhatItsTwinGives) {
    expectTwinsAgreeOnLists([](const KernelSet& set, Random& random, std::size_t count) {
        const std::size_t boxes = (count / kBoxPoints + 1) * kBoxPoints;
        const std::vector<float> left = singles(random, boxes, 0, 100);
        const std::vector<float> top = singles(random, boxes, 0, 100);
        std::vector<float> right = left;
        std::vector<float> bottom = top;
        std::vector<std::int32_t> voters(boxes, 0);
        for (std::size_t i = 0; i < boxes; ++i) {
            right[i] += static_cast<float>(random.number(0, 16));
            bottom[i] += static_cast<float>(random.number(0, 16));
            if (i <= count) voters[i] = 1 + random.below(16);
        }
        Buffer<float> lefts(left), tops(top), rights(right), bottoms(bottom);
        Buffer<std::int32_t> votes(voters);
        const double angle = random.number(0, 6);
        const VoteBoxes list = {lefts.data(), rights.data(), tops.data(), bottoms.data(), votes.data(), boxes};
        const float cosine = static_cast<float>(std::cos(angle));
        const float sine = static_cast<float>(std::sin(angle));
        // The first bucket begins at the smallest distance; behind the last one that a box lies in there is one more.
        std::vector<std::int32_t> distances;
        for (std::size_t i = 0; i < boxes; ++i) {
            for (const float x : {left[i], right[i]}) {
                for (const float y : {top[i], bottom[i]})
                    distances.push_back(static_cast<std::int32_t>(x * cosine + y * sine + 0.5f));
            }
        }
        const auto [least, most] = std::minmax_element(distances.begin(), distances.end());
        const std::int32_t middle = std::max(-*least, 0);
        const std::int32_t lastBucket = (middle + *most) / kBucketDistances;
        Buffer<std::int32_t> changes(std::vector<std::int32_t>(sizeOf(lastBucket + 2), 0));
        Results results;
        results.add(set.boundVotes(list, cosine, sine, middle, changes.data()));
        results.add(changes);
        return results;
    });
}

TEST(FindNearLine, GivesWhatItsTwinGives) {
    expectTwinsAgreeOnLists([](const KernelSet& set, Random& random, std::size_t count) {
        constexpr float kBeyond = std::numeric_limits<float>::quiet_NaN();
        const std::size_t boxes = (count / kBoxPoints / kBoxPoints + 1) * kBoxPoints;
        std::vector<float> xs(boxes * kBoxPoints, kBeyond);
        std::vector<float> ys = xs;
        std::vector<float> centreXs(boxes, kBeyond), centreYs(boxes, kBeyond), widths(boxes, kBeyond);
        for (std::size_t i = 0; i < count; ++i) {
            const std::size_t box = i / kBoxPoints;
            centreXs[box] = static_cast<float>(box) * 10.0f;
            centreYs[box] = 30.0f;
            widths[box] = 5.0f;
            xs[i] = centreXs[box] + static_cast<float>(random.number(-5, 5));
            ys[i] = 30.0f + static_cast<float>(random.number(-5, 5));
        }
        Buffer<float> x(xs), y(ys), centreX(centreXs), centreY(centreYs), halfWidth(widths), halfHeight(widths);
        const BoxedPoints points = {x.data(),         y.data(),         boxes, centreX.data(), centreY.data(),
                                    halfWidth.data(), halfHeight.data()};
        const double angle = random.number(0, 6);
        const float cosine = static_cast<float>(std::cos(angle));
        const float sine = static_cast<float>(std::sin(angle));
        Buffer<std::size_t> indices(std::vector<std::size_t>(boxes * kBoxPoints, 0));
        const std::size_t found =
            set.findNearLine(points, cosine, sine, 25.0f * cosine + 30.0f * sine, 2.0f, 0.01f, indices.data());
        Results results;
        results.add(static_cast<double>(found));
        results.addFirst(found, indices);
        return results;
    });
}

// ---- points in pixels ----

TEST(Undistort, GivesWhatItsTwinGives) {
    expectTwinsAgreeOnLists([](const KernelSet& set, Random& random, std::size_t count) {
        const Pinhole camera = {.fx = 900.0, .cx = 400.0, .fy = 910.0, .cy = 300.0};
        const LensDistortion lens = {.k1 = -0.1, .k2 = 0.02, .p1 = 0.001, .p2 = -0.002, .k3 = 0.004};
        Buffer<double> points(numbers(random, 2 * count, 0, 800));
        set.undistort(camera, lens, points.data(), count);
        Results results;
        results.add(points);
        return results;
    });
}

LightSheet sheetOf(Random& random) {
    LightSheet sheet{};
    sheet.camera = {.fx = 900.0, .cx = 400.0, .fy = 910.0, .cy = 300.0};
    sheet.lowerBound = 40.0;
    sheet.upperBound = 760.0;
    sheet.surface[0] = 300.0;
    sheet.surface[1] = random.number(-1, 1);
    sheet.surface[2] = random.number(-2, -1);
    for (int i = 3; i < 6; ++i) sheet.surface[i] = random.number(-1, 1) / 500.0;
    for (double& element : sheet.rt) element = random.number(-3, 3);
    return sheet;
}

template <class Meet>
Results meet(Meet meetSheet, Random& random, std::size_t count) {
    const LightSheet sheet = sheetOf(random);
    std::vector<double> pixels = numbers(random, 2 * count, 0, 800);
    if (count > 0) pixels[0] = random.below(2) == 0 ? sheet.lowerBound : sheet.upperBound;
    Buffer<double> points(pixels);
    std::vector<unsigned char> flags(count);
    for (unsigned char& flag : flags) flag = random.below(4) == 0 ? 0 : 1;
    Buffer<bool> found(flags);
    Buffer<double> met(std::vector<double>(3 * count, -9.0));
    meetSheet(sheet, found.data(), points.data(), count, met.data());
    Results results;
    results.add(met);
    return results;
}

TEST(MeetPlane, GivesWhatItsTwinGives) {
    expectTwinsAgreeOnLists(
        [](const KernelSet& set, Random& random, std::size_t count) { return meet(set.meetPlane, random, count); });
}

TEST(MeetSurface, GivesWhatItsTwinGives) {
    expectTwinsAgreeOnLists(
        [](const KernelSet& set, Random& random, std::size_t count) { return meet(set.meetSurface, random, count); });
}

// ---- points of a profile ----

// Points along x, some of them empty, some with a z of 0.
std::vector<double> profileOf(Random& random, std::size_t count) {
    const int emptyOnes = random.below(3);
    std::vector<double> points;
    for (std::size_t i = 0; i < count; ++i) {
        const bool empty = emptyOnes > 0 && random.below(emptyOnes == 1 ? 40 : 3) == 0;
        const double x = empty ? 0.0 : static_cast<double>(i + 1) + random.number(0, 1) / 4.0;
        points.insert(points.end(), {x, random.number(0, 2), random.below(30) == 0 ? 0.0 : random.number(5, 9)});
    }
    return points;
}

std::vector<double> room(std::size_t count) {
    return std::vector<double>(count + kLaneRoom, -11.0);
}

// A list of heights between so many values that are not a number.
std::vector<double> between(std::size_t before, const std::vector<double>& heights, std::size_t behind) {
    std::vector<double> list(before, kNotANumber);
    list.insert(list.end(), heights.begin(), heights.end());
    list.insert(list.end(), behind, kNotANumber);
    return list;
}

TEST(ListHeights, GivesWhatItsTwinGives) {
    expectTwinsAgreeOnLists([](const KernelSet& set, Random& random, std::size_t count) {
        Buffer<double> points(profileOf(random, count));
        Buffer<double> heights(room(count));
        const std::size_t listed = set.listHeights(points.data(), count, heights.data());
        Results results;
        results.add(static_cast<double>(listed));
        results.addFirst(listed, heights);
        return results;
    });
}

TEST(StoreHeights, GivesWhatItsTwinGives) {
    expectTwinsAgreeOnLists([](const KernelSet& set, Random& random, std::size_t count) {
        const std::vector<double> profile = profileOf(random, count);
        std::size_t filled = 0;
        for (std::size_t i = 0; i < count; ++i) filled += profile[3 * i] != 0.0 ? 1 : 0;
        Buffer<double> points(profile);
        Buffer<double> heights(numbers(random, filled + kLaneRoom, 100, 200));
        Results results;
        results.add(static_cast<double>(set.storeHeights(points.data(), count, heights.data())));
        results.add(points);
        return results;
    });
}

// The plain pass finds none, so every window is sorted here.
TEST(FindMedians, FindsTheMedianAroundEachHeightOrNone) {
    expectTwinsAgreeOnLists([](const KernelSet&, Random& random, std::size_t count) {
        const int r = random.below(27);
        const std::size_t reach = sizeOf(r);
        const std::vector<double> list = numbers(random, count + 2 * reach + 2 + kLaneRoom, -20, 20);
        Buffer<double> heights(list);
        Buffer<double> medians(room(count));
        const bool found = active().findMedians(heights.data(), count, r, medians.data());
        EXPECT_TRUE(medians.guardsIntact());
        for (std::size_t i = 0; i < count && found; ++i) {
            const auto first = list.begin() + static_cast<std::ptrdiff_t>(i) + 1;
            std::vector<double> window(first, first + 2 * r + 1);
            std::sort(window.begin(), window.end());
            EXPECT_EQ(medians.data()[i], window[reach]) << "height " << i << " of " << count << ", r = " << r;
        }
        return Results();
    });
}

TEST(FindMedians, FindsThemInLanesAlone) {
    const std::vector<double> heights(40 + kLaneRoom, 5.0);
    std::vector<double> medians(20 + kLaneRoom);
    for (const SetOfBuild& candidate : setsOfBuild()) {
        if (!candidate.supported) continue;
        const bool hasLanes = candidate.set != setsOfBuild().first->set;
        for (int r = 1; r < 9; ++r)
            EXPECT_EQ(candidate.set->findMedians(heights.data(), 20, r, medians.data()), hasLanes)
                << candidate.set->name << ", r = " << r;
    }
}

TEST(FindMedians, FindsNoneWhereAHeightHasNoOrder) {
    constexpr std::size_t kCount = 40;
    constexpr std::size_t kReach = 2;
    const double kSignalling = std::numeric_limits<double>::signaling_NaN();
    for (std::size_t place = 1; place <= kCount + 2 * kReach; ++place) {
        for (const double height : {kNotANumber, -kNotANumber, kSignalling, -0.0}) {
            std::vector<double> heights(kCount + 2 * (kReach + 1) + kLaneRoom, 5.0);
            heights[place] = height;
            std::vector<double> medians(kCount + kLaneRoom);
            EXPECT_FALSE(active().findMedians(heights.data(), kCount, kReach, medians.data())) << "height " << place;
        }
    }

    std::vector<double> firstTwo(8 + kLaneRoom, 5.0);
    firstTwo[0] = firstTwo[1] = kNotANumber;
    std::vector<double> medians(2 + kLaneRoom);
    EXPECT_FALSE(active().findMedians(firstTwo.data(), 2, 1, medians.data()));
}

TEST(SmoothHeights, GivesWhatItsTwinGives) {
    expectTwinsAgreeOnLists([](const KernelSet& set, Random& random, std::size_t count) {
        const std::size_t reach = random.below(5) == 0 ? 40 : sizeOf(random.below(9));
        const double step = std::vector{0.6, 1.5, 4.0}[sizeOf(random.below(3))];
        Buffer<double> heights(
            between(reach, numbers(random, count, 5, random.below(2) == 0 ? 6 : 20), reach + kLaneRoom));
        Buffer<double> weights(numbers(random, 2 * reach + 1, 1, 3));
        Buffer<double> smoothed(room(count));
        set.smoothHeights(heights.data(), count, weights.data(), reach, step, smoothed.data());
        Results results;
        results.addFirst(count, smoothed);
        return results;
    });
}

// Heights of either sign whose amounts are nearer to each other than a step.
TEST(SmoothHeights, TellsBothSidesOfZeroApart) {
    constexpr std::size_t kCount = 48;
    const std::vector<double> weights = {1.0, 2.0, 1.0};
    for (std::size_t place = 1; place < kCount; ++place) {
        std::vector<double> step(kCount + 2 + kLaneRoom, -0.4);
        std::fill_n(step.begin(), place, 0.4);
        std::vector<double> peak(step.size(), 0.13);
        peak[place - 1] = 0.41;
        peak[place] = -0.41;
        for (const std::vector<double>& heights : {step, peak}) {
            std::vector<double> smoothed(kCount + kLaneRoom);
            std::vector<double> expected(kCount + kLaneRoom);
            active().smoothHeights(heights.data(), kCount, weights.data(), 1, 0.6, smoothed.data());
            setsOfBuild().first->set->smoothHeights(heights.data(), kCount, weights.data(), 1, 0.6, expected.data());
            smoothed.resize(kCount);
            expected.resize(kCount);
            EXPECT_EQ(smoothed, expected) << "place " << place;
        }
    }
}

TEST(ListUsable, GivesWhatItsTwinGives) {
    expectTwinsAgreeOnLists([](const KernelSet& set, Random& random, std::size_t end) {
        const std::size_t first = sizeOf(random.below(static_cast<int>(end) + 1));
        Buffer<double> points(profileOf(random, end));
        Buffer<double> x(room(end - first));
        Buffer<double> z(room(end - first));
        Buffer<std::int32_t> positions(std::vector<std::int32_t>(end - first + kLaneRoom, -1));
        const std::size_t listed = set.listUsable(points.data(), first, end, x.data(), z.data(), positions.data());
        Results results;
        results.add(static_cast<double>(listed));
        results.addFirst(listed, x);
        results.addFirst(listed, z);
        results.addFirst(listed, positions);
        return results;
    });
}

struct Cloud {
    std::vector<double> x;
    std::vector<double> z;
};

// Depths near one another, some of them far away.
Cloud scattered(Random& random, std::size_t count) {
    Cloud cloud;
    cloud.z = numbers(random, count, 5, 6 + random.below(3));
    const int rarity = random.below(2) == 0 ? 12 : 80;
    for (std::size_t i = 0; i < count; ++i) {
        cloud.x.push_back(static_cast<double>(i) + random.number(0, 1) / 4.0);
        if (random.below(rarity) == 0) cloud.z[i] += random.number(0, 30);
    }
    return cloud;
}

// A slope, with some points beside the line.
Cloud straight(Random& random, std::size_t count, double slope) {
    Cloud cloud;
    for (std::size_t i = 0; i < count; ++i) {
        const double beside = random.below(9) == 0 ? random.number(0, 4) : 0.0;
        cloud.x.push_back(slope * static_cast<double>(i) + beside);
        cloud.z.push_back(static_cast<double>(i));
    }
    return cloud;
}

TEST(KeepOutliers, GivesWhatItsTwinGives) {
    expectTwinsAgreeOnLists([](const KernelSet& set, Random& random, std::size_t count) {
        const std::size_t w = sizeOf(std::vector{0, 1, 2, 3, 5, 8, 11, 40}[sizeOf(random.below(8))]);
        const double slope = std::vector{0.0, 1.0, -1.0, 2.0}[sizeOf(random.below(4))];
        Cloud cloud = random.below(2) == 0 ? scattered(random, count) : straight(random, count, slope);
        cloud.x.insert(cloud.x.end(), kLaneRoom, 3.0);
        Buffer<double> x(cloud.x);
        Buffer<double> z(between(w, cloud.z, w + kLaneRoom));
        Buffer<double> slopes(std::vector<double>(count + kLaneRoom, slope));
        std::vector<std::int32_t> places(count);
        for (std::size_t i = 0; i < count; ++i) places[i] = static_cast<std::int32_t>(2 * i + 5);
        Buffer<std::int32_t> positions(places);
        const std::size_t kept = set.keepOutliers(x.data(), z.data() + w, count, w, random.number(0, 3),
                                                  random.number(0, 2), slopes.data(), positions.data());
        EXPECT_TRUE(slopes.guardsIntact());
        Results results;
        results.add(static_cast<double>(kept));
        results.addFirst(kept, positions);
        return results;
    });
}

// A row of slope 1 with one step of slope 1.5. No depth is near; a point of the row is none of the outliers where the
// three other directions among the points -2 .. 1 places from it are near, that is less than 0.5 away.
TEST(KeepOutliers, TakesNoDirectionAsNearThatIsAsFarAsTheBound) {
    constexpr std::int32_t kCount = 40;
    for (std::int32_t steep = 5; steep < 35; ++steep) {
        std::vector<double> x;
        std::vector<double> z(2, kNotANumber);
        std::vector<std::int32_t> positions;
        std::vector<std::int32_t> expected;
        for (std::int32_t i = 0; i < kCount; ++i) {
            x.push_back(i < steep ? i : i + 0.5);
            z.push_back(i);
            positions.push_back(i);
            if (i < 3 || i + 1 == kCount || (i >= steep - 1 && i <= steep + 2)) expected.push_back(i);
        }
        x.resize(x.size() + kLaneRoom);
        z.insert(z.end(), 2 + kLaneRoom, kNotANumber);
        std::vector<double> slopes(x.size());
        const std::size_t kept =
            active().keepOutliers(x.data(), z.data() + 2, kCount, 2, 0.0, 0.5, slopes.data(), positions.data());
        positions.resize(kept);
        EXPECT_EQ(positions, expected) << "steep at " << steep;
    }
}

// A row of points that climbs by 1, or stays where it is, and breaks off at one point in x or in z: to where the row
// came from, to the other side of 0, or far away. From there it goes on.
std::vector<double> brokenRow(Random& random, std::size_t count) {
    const double stepX = random.below(2);
    const double stepZ = random.below(2);
    const double first = random.below(2) == 0 ? 7.0 : 0.7;
    const std::size_t anywhere = sizeOf(random.below(static_cast<int>(count) + 1));
    const std::size_t end = random.below(2) == 0 ? anywhere : anywhere / 8 * 8 + 1;
    const bool alongX = random.below(2) == 0;
    const int kind = random.below(3);
    double x = first;
    double z = first;
    std::vector<double> points;
    for (std::size_t i = 0; i <= count; ++i) {
        double& broken = alongX ? x : z;
        if (i == end) broken = std::vector{first, -broken - 0.2, broken + 9.0}[sizeOf(kind)];
        points.insert(points.end(), {x, first, z});
        x += stepX;
        z += stepZ;
    }
    return points;
}

TEST(CountFollowers, GivesWhatItsTwinGives) {
    expectTwinsAgreeOnLists([](const KernelSet& set, Random& random, std::size_t count) {
        Results results;
        for (int i = 0; i < 10; ++i) {
            Buffer<double> points(i == 0 ? profileOf(random, count + 1) : brokenRow(random, count));
            results.add(static_cast<double>(set.countFollowers(points.data() + 3, count, 1.5)));
        }
        return results;
    });
}

// A point lies 2 from the one before, which is too far, and 1 from the one before that.
TEST(CountFollowers, ComparesEachPointWithTheOneBefore) {
    constexpr std::size_t kPoints = 50;
    for (const std::size_t coordinate : {0u, 2u}) {
        for (std::size_t far = 0; far < kPoints; ++far) {
            std::vector<double> points(3 * (kPoints + 1), 5.0);
            points[3 * far + coordinate] = 6.0;
            points[3 * (far + 1) + coordinate] = 4.0;
            EXPECT_EQ(active().countFollowers(points.data() + 3, kPoints, 1.5), far) << "coordinate " << coordinate;
        }
    }
}

TEST(CountFollowers, TellsBothSidesOfZeroApart) {
    for (const std::size_t coordinate : {0u, 2u}) {
        std::vector<double> points(3 * 51, 0.5);
        for (std::size_t i = 0; i <= 50; ++i) points[3 * i + coordinate] = i % 2 == 0 ? 3.0 : -3.0;
        EXPECT_EQ(active().countFollowers(points.data() + 3, 50, 1.5), 0u) << "coordinate " << coordinate;
    }
}

TEST(NumberBuckets, GivesWhatItsTwinGives) {
    expectTwinsAgreeOnLists([](const KernelSet& set, Random& random, std::size_t count) {
        std::vector<double> profile = profileOf(random, count);
        const std::vector<double> large = {-2147483649.0, -2147483648.0, -2147483648.5, 2147483647.0,
                                           2147483648.0,  1e300,         kNotANumber,   -1e10};
        for (std::size_t i = 0; i < count; ++i) {
            if (random.below(9) == 0) profile[3 * i] = large[sizeOf(random.below(8))];
        }
        Buffer<double> points(profile);
        Buffer<std::int32_t> buckets(std::vector<std::int32_t>(count, -6));
        const double width = random.below(2) == 0 ? 1.0 : random.number(-3, 3);
        Results results;
        results.add(static_cast<double>(set.numberBuckets(points.data(), count, width, buckets.data())));
        results.add(buckets);
        return results;
    });
}

}  // namespace
