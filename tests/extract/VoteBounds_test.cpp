// The upper bound of an angle's votes against the votes themselves, counted by hand or one by one.

#include "extract/VoteBounds.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <random>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

namespace {

using KORVANELASERALGO::extract::VoteBounds;
using KORVANELASERALGO::extract::VotePoint;

constexpr int kDistances = 4609;  // of an image of 1280 x 1024
constexpr int kAngles = 360;      // the methods ask for the first 180
constexpr float kDegree = 0.017453292f;

std::int32_t mostVotes(const std::vector<VotePoint>& points, float cosine, float sine) {
    std::vector<std::int32_t> cells(kDistances, 0);
    std::int32_t most = 0;
    for (const VotePoint& point : points) {
        const float distance = static_cast<float>(point.x) * cosine + static_cast<float>(point.y) * sine + 0.5f;
        const std::int32_t cell = static_cast<std::int32_t>(distance) + (kDistances - 1) / 2;
        most = std::max(most, ++cells[static_cast<std::size_t>(cell)]);
    }
    return most;
}

std::vector<VotePoint> flatLine(int row) {
    std::vector<VotePoint> points;
    for (int x = 0; x < 1280; ++x) points.push_back({x, row});
    return points;
}

TEST(VoteBounds, AreTheVotesThemselvesWhereAllPointsMeetOneCell) {
    VoteBounds bounds(flatLine(500), kDistances);
    EXPECT_TRUE(bounds.mayReach(1280, 0.0f, 1.0f));
    EXPECT_FALSE(bounds.mayReach(1281, 0.0f, 1.0f));
}

TEST(VoteBounds, CountTheVotesOfEveryBoxHoweverManyThereAre) {
    for (int boxes = 1; boxes <= 40; ++boxes) {
        std::vector<VotePoint> points = flatLine(500);
        points.resize(static_cast<std::size_t>(16 * boxes));  // 16 columns each
        VoteBounds bounds(points, kDistances);
        EXPECT_TRUE(bounds.mayReach(16 * boxes, 0.0f, 1.0f)) << boxes;
        EXPECT_FALSE(bounds.mayReach(16 * boxes + 1, 0.0f, 1.0f)) << boxes;
    }
}

TEST(VoteBounds, CountAnglesWhosePointsLieAtTheLastDistance) {
    std::vector<VotePoint> points;
    for (int y = 0; y < 200; ++y) points.push_back({(kDistances - 1) / 2, y});
    VoteBounds bounds(points, kDistances);
    EXPECT_TRUE(bounds.mayReach(200, 1.0f, 0.0f));
    EXPECT_FALSE(bounds.mayReach(201, 1.0f, 0.0f));
}

// Ten degrees off, 1280 columns spread over 222 cells; a bucket of four of them meets at most four boxes of 16 points.
TEST(VoteBounds, RuleOutAnAngleAcrossTheLine) {
    VoteBounds bounds(flatLine(500), kDistances);
    for (const int degrees : {0, 10, 45, 80, 100, 135, 179}) {
        const float theta = static_cast<float>(degrees) * kDegree;
        EXPECT_FALSE(bounds.mayReach(101, std::cos(theta), std::sin(theta))) << degrees << " degrees";
    }
}

// Points that fill their boxes so sparsely that a bound would cost more than the votes: every angle has to be counted.
TEST(VoteBounds, DoNotTellForScatteredPoints) {
    std::vector<VotePoint> points;
    for (int x = 0; x < 1280; x += 8) points.push_back({x, x % 1000});
    EXPECT_TRUE(VoteBounds(points, kDistances).mayReach(1000, 1.0f, 0.0f));

    // Decided anew for other points, even in the same place.
    std::optional<VoteBounds> bounds(std::in_place, flatLine(500), kDistances);
    EXPECT_FALSE(bounds->mayReach(1281, 0.0f, 1.0f));
    bounds.emplace(points, kDistances);
    EXPECT_TRUE(bounds->mayReach(1281, 0.0f, 1.0f));
}

// Row 512, but for the first of every 16 columns, which is 0, 4, 8 or 12 rows above: all have their votes in its cell.
TEST(VoteBounds, CoverTheirPointsDownToTheLastRow) {
    std::vector<VotePoint> points;
    for (int x = 0; x < 1280; ++x) points.push_back({x, x % 16 == 0 ? 512 - x / 16 % 4 * 4 : 512});
    EXPECT_TRUE(VoteBounds(points, kDistances).mayReach(1280 - 60, 0.0f, 1.0f));
}

TEST(VoteBounds, AreNeverBelowTheVotes) {
    std::mt19937 random(20);
    for (int set = 0; set < 20; ++set) {
        // Steps, slopes and second lines, with specks beside them.
        std::vector<VotePoint> points;
        int row = 200 + static_cast<int>(random() % 400);
        const int slope = static_cast<int>(random() % 5) - 2;
        for (int x = 0; x < 1280; ++x) {
            if (random() % 200 == 0) row = 100 + static_cast<int>(random() % 600);
            row = std::clamp(row + (x % 3 == 0 ? slope : 0), 0, 1023);
            points.push_back({x, row});
            if (set % 2 == 1 && row < 900) points.push_back({x, row + 100 + static_cast<int>(random() % 3)});
            if (random() % 40 == 0) points.push_back({x, 1010 + static_cast<int>(random() % 14)});
        }
        VoteBounds bounds(points, kDistances);
        for (int n = 0; n < kAngles; ++n) {
            const float cosine = std::cos(static_cast<float>(n) * kDegree);
            const float sine = std::sin(static_cast<float>(n) * kDegree);
            const std::int32_t most = mostVotes(points, cosine, sine);
            ASSERT_TRUE(bounds.mayReach(most, cosine, sine)) << "set " << set << ", " << n << " degrees, " << most;
        }
    }
}

}  // namespace
