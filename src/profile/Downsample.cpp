// Downsample: one point per bucket of equal width along x, the mean of the bucket's points. A step in height starts a
// bucket anew, so points on both sides of an edge are never averaged.

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <stdexcept>
#include <vector>

#include "kernels/kernels.h"
#include "profile/ValidPoints.h"
#include "profile/profile.h"

namespace KORVANELASERALGO::profile {
namespace {

constexpr std::size_t kPassedThrough = 10;  // valid points or fewer are not thinned
constexpr double kStep = 5.0;               // length units; a height that differs by more starts the bucket anew

// The mean of one bucket's points, in their order.
class BucketMean {
public:
    void add(const tagKorvaneLaserPoint3d& point) {
        if (count_ > 0 && std::fabs(point.z - firstHeight_) > kStep) {
            // After a step the bucket restarts with the new point, which counts twice: this is meant.
            *this = BucketMean();
            accumulate(point);
        }
        accumulate(point);
    }

    bool isEmpty() const { return count_ == 0; }

    tagKorvaneLaserPoint3d mean() const {
        const double k = static_cast<double>(count_);
        return {sum_.x / k, sum_.y / k, sum_.z / k};
    }

private:
    void accumulate(const tagKorvaneLaserPoint3d& point) {
        if (count_ == 0) firstHeight_ = point.z;
        sum_.x += point.x;
        sum_.y += point.y;
        sum_.z += point.z;
        ++count_;
    }

    tagKorvaneLaserPoint3d sum_ = {0.0, 0.0, 0.0};
    double firstHeight_ = 0.0;
    std::size_t count_ = 0;
};

// Adds the valid points up in the buckets that they number, counted from `first`; others are dropped.
std::vector<BucketMean> fillBuckets(const Profile& points, const std::int32_t* numbers, std::int64_t first,
                                    std::int64_t bucketCount) {
    std::vector<BucketMean> buckets(static_cast<std::size_t>(bucketCount));
    // Neighbours mostly share a bucket: the one in hand is put back when another one's turn comes.
    BucketMean inHand;
    std::int64_t bucket = 0;
    for (std::size_t i = 0; i < points.size(); ++i) {
        const std::int64_t next = numbers[i] - first;
        if (!isValid(points[i]) || next < 0 || next >= bucketCount) continue;
        if (next != bucket) {
            buckets[static_cast<std::size_t>(bucket)] = inHand;
            inHand = buckets[static_cast<std::size_t>(next)];
            bucket = next;
        }
        inHand.add(points[i]);
    }
    if (bucketCount > 0) buckets[static_cast<std::size_t>(bucket)] = inHand;
    return buckets;
}

// Gives each of the buckets first .. last that hold a point a new number: how many points lie in those before it. A
// profile may span billions of empty ones. Points in none of them get a number below 0.
// @return how many points lie in all of them
std::int64_t renumber(const Profile& points, std::int32_t* numbers, std::int32_t first, std::int32_t last) {
    std::vector<std::int32_t> occupied;
    for (std::size_t i = 0; i < points.size(); ++i) {
        if (isValid(points[i]) && numbers[i] >= first && numbers[i] <= last) occupied.push_back(numbers[i]);
    }
    std::sort(occupied.begin(), occupied.end());
    for (std::size_t i = 0; i < points.size(); ++i) {
        const auto place = std::lower_bound(occupied.begin(), occupied.end(), numbers[i]);
        const bool found = place != occupied.end() && *place == numbers[i];
        numbers[i] = found ? static_cast<std::int32_t>(place - occupied.begin()) : -1;
    }
    return static_cast<std::int64_t>(occupied.size());
}

}  // namespace

void Downsample(const Profile& in, float step, Profile& out, int& count) {
    // Bucket numbers are truncated toward zero, so the bucket around x = 0 is twice as wide as the others: this is
    // meant.
    const double width = static_cast<double>(step);
    const auto numbers = std::make_unique_for_overwrite<std::int32_t[]>(in.size());
    const std::size_t valid =
        in.empty() ? 0 : kernels::active().numberBuckets(&in.data()->x, in.size(), width, numbers.get());

    // Too few points, or a step that is not above their mean spacing (or not a number): all of them, unpadded.
    const auto firstValid = std::find_if(in.begin(), in.end(), isValid);
    const auto lastValid = std::find_if(in.rbegin(), in.rend(), isValid);
    const bool thinned =
        valid > kPassedThrough && width > (lastValid->x - firstValid->x) / static_cast<double>(valid - 1);
    if (!thinned) {
        out.resize(valid);
        std::copy_if(in.begin(), in.end(), out.begin(), isValid);
        count = static_cast<int>(valid);
        return;
    }

    std::int64_t first = numbers[static_cast<std::size_t>(firstValid - in.begin())];
    const std::int64_t last = numbers[static_cast<std::size_t>(in.rend() - lastValid) - 1];
    std::int64_t bucketCount = last - first + 1;
    if (bucketCount < 0) throw std::length_error("vector too long");
    // Only a negative step makes more buckets than points.
    if (bucketCount > static_cast<std::int64_t>(in.size())) {
        bucketCount = renumber(in, numbers.get(), static_cast<std::int32_t>(first), static_cast<std::int32_t>(last));
        first = 0;
    }

    // One point per bucket that is not empty, then empty points up to the size of the input.
    const std::vector<BucketMean> buckets = fillBuckets(in, numbers.get(), first, bucketCount);
    out.resize(in.size());
    auto end = out.begin();
    for (const BucketMean& bucket : buckets) {
        if (!bucket.isEmpty()) *end++ = bucket.mean();
    }
    count = static_cast<int>(end - out.begin());
    std::fill(end, out.end(), tagKorvaneLaserPoint3d{0.0, 0.0, 0.0});
}

}  // namespace KORVANELASERALGO::profile
