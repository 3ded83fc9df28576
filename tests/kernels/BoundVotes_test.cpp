// boundVotes for lines of every direction; the methods ask for those with a sine of 0 and more.

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <random>
#include <vector>

#include "kernels/kernels.h"

namespace {

using KORVANELASERALGO::kernels::active;
using KORVANELASERALGO::kernels::kBucketDistances;
using KORVANELASERALGO::kernels::VoteBoxes;

struct Boxes {
    std::vector<float> left, right, top, bottom;
    std::vector<std::int32_t> votes;

    void add(float x, float y, float width, float height, std::int32_t voters) {
        left.push_back(x);
        right.push_back(x + width);
        top.push_back(y);
        bottom.push_back(y + height);
        votes.push_back(voters);
    }
    VoteBoxes list() const {
        return {left.data(), right.data(), top.data(), bottom.data(), votes.data(), votes.size()};
    }
};

constexpr std::int32_t kMiddle = 3000;  // distances lie between -3000 and 3000
constexpr std::size_t kBuckets = 2 * kMiddle / kBucketDistances + 2;

// Bucket by bucket, with a box in all buckets between those of its corners.
std::int32_t boundOf(const Boxes& boxes, float cosine, float sine) {
    std::vector<std::int32_t> buckets(kBuckets, 0);
    for (std::size_t i = 0; i < boxes.votes.size(); ++i) {
        std::vector<int> corners;
        for (const float x : {boxes.left[i], boxes.right[i]}) {
            for (const float y : {boxes.top[i], boxes.bottom[i]})
                corners.push_back((kMiddle + static_cast<int>(x * cosine + y * sine + 0.5f)) / kBucketDistances);
        }
        const auto [first, last] = std::minmax_element(corners.begin(), corners.end());
        for (int bucket = *first; bucket <= *last; ++bucket)
            buckets[static_cast<std::size_t>(bucket)] += boxes.votes[i];
    }
    return *std::max_element(buckets.begin(), buckets.end());
}

TEST(BoundVotes, IsTheMostThatABucketOfDistancesCanHave) {
    std::mt19937 random(4);
    const auto below = [&](unsigned end) { return static_cast<float>(random() % end); };
    for (const std::size_t count : {16u, 32u, 48u, 64u, 80u, 176u}) {
        Boxes boxes;
        // The last lane is filled with boxes without votes.
        while (boxes.votes.size() + 5 < count)
            boxes.add(below(1200), below(900), below(16), below(16), 1 + static_cast<std::int32_t>(random() % 16));
        while (boxes.votes.size() < count) boxes.add(1100.0f, 20.0f, 3.0f, 0.0f, 0);

        std::vector<std::int32_t> changes(kBuckets, 0);
        for (int degrees = 0; degrees < 360; degrees += 3) {
            const float cosine = std::cos(static_cast<float>(degrees) * 0.017453292f);
            const float sine = std::sin(static_cast<float>(degrees) * 0.017453292f);
            EXPECT_EQ(active().boundVotes(boxes.list(), cosine, sine, kMiddle, changes.data()),
                      boundOf(boxes, cosine, sine))
                << count << " boxes, " << degrees << " degrees";
            EXPECT_EQ(std::count(changes.begin(), changes.end(), 0), static_cast<std::ptrdiff_t>(kBuckets));
        }
    }
}

TEST(BoundVotes, AddsBoxesThatMeetInOneBucketAlone) {
    // Along x in buckets of four: the first two boxes share bucket 1, the third touches it at its end.
    Boxes boxes;
    boxes.add(0.0f, 0.0f, 5.0f, 9.0f, 10);
    boxes.add(6.0f, 50.0f, 1.0f, 9.0f, 7);
    boxes.add(8.0f, 90.0f, 4.0f, 9.0f, 16);
    while (boxes.votes.size() < 16) boxes.add(8.0f, 90.0f, 4.0f, 9.0f, 0);
    std::vector<std::int32_t> changes(8, 0);
    EXPECT_EQ(active().boundVotes(boxes.list(), 1.0f, 0.0f, 0, changes.data()), 17);
}

TEST(BoundVotes, IsZeroForBoxesWithoutVotes) {
    Boxes boxes;
    while (boxes.votes.size() < 16) boxes.add(5.0f, 1.0f, 1.0f, 3.0f, 0);
    std::vector<std::int32_t> changes(3, 0);
    EXPECT_EQ(active().boundVotes(boxes.list(), 1.0f, 0.0f, 0, changes.data()), 0);
}

TEST(BoundVotes, AddsBoxesThatAllLieInOneBucket) {
    Boxes boxes;
    while (boxes.votes.size() < 32) boxes.add(5.0f, 1.0f, 1.0f, 3.0f, 2);
    std::vector<std::int32_t> changes(3, 0);
    EXPECT_EQ(active().boundVotes(boxes.list(), 1.0f, 0.0f, 0, changes.data()), 64);
    EXPECT_EQ(changes, std::vector<std::int32_t>(3, 0));
}

}  // namespace
