// Downsample: one point per bucket of equal width along x, the mean of the bucket's points. A step in height starts a
// bucket anew, so points on both sides of an edge are never averaged.

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <stdexcept>
#include <utility>

#include "algo/Int32.h"
#include "profile/ValidPoints.h"
#include "profile/profile.h"

namespace KORVANELASERALGO::profile {
namespace {

constexpr std::size_t kPassedThrough = 10;  // valid points or fewer are not thinned
constexpr double kStep = 5.0;               // length units; a height that differs by more starts the bucket anew

// Points of the list that fall into one bucket.
struct BucketEntry {
    std::int64_t bucket;
    std::size_t point;
};

// Truncates toward zero, so the bucket around x = 0 is twice as wide as the others: this is meant.
std::int64_t bucketOf(double x, double width) {
    return truncateToInt32(x / width);
}

// Each point's bucket, counted from the first point's, in the order of buckets and of points within a bucket. Points
// outside 0 .. bucketCount - 1 are dropped. No table of buckets is kept: a profile may span billions of empty ones.
std::vector<BucketEntry> sortIntoBuckets(const Profile& points, double width, std::int64_t bucketCount) {
    const std::int64_t first = bucketOf(points.front().x, width);
    std::vector<BucketEntry> entries;
    entries.reserve(points.size());
    for (std::size_t i = 0; i < points.size(); ++i) {
        const std::int64_t bucket = bucketOf(points[i].x, width) - first;
        if (bucket >= 0 && bucket < bucketCount) entries.push_back({bucket, i});
    }
    const auto before = [](const BucketEntry& a, const BucketEntry& b) { return a.bucket < b.bucket; };
    if (!std::is_sorted(entries.begin(), entries.end(), before)) {
        std::stable_sort(entries.begin(), entries.end(), before);
    }
    return entries;
}

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

}  // namespace

void Downsample(const Profile& in, float step, Profile& out, int& count) {
    Profile valid;
    valid.reserve(in.size());
    std::copy_if(in.begin(), in.end(), std::back_inserter(valid), isValid);

    // Too few points, or a step that is not above their mean spacing (or not a number): all of them, unpadded.
    const double width = static_cast<double>(step);
    const auto isThinned = [&] {
        if (valid.size() <= kPassedThrough) return false;
        return width > (valid.back().x - valid.front().x) / static_cast<double>(valid.size() - 1);
    };
    if (!isThinned()) {
        count = static_cast<int>(valid.size());
        out = std::move(valid);
        return;
    }

    const std::int64_t bucketCount = bucketOf(valid.back().x, width) - bucketOf(valid.front().x, width) + 1;
    if (bucketCount < 0) throw std::length_error("vector too long");
    const std::vector<BucketEntry> entries = sortIntoBuckets(valid, width, bucketCount);

    // One point per bucket that is not empty, then empty points up to the size of the input.
    Profile means;
    means.reserve(in.size());
    for (auto entry = entries.begin(); entry != entries.end();) {
        BucketMean bucket;
        const std::int64_t number = entry->bucket;
        for (; entry != entries.end() && entry->bucket == number; ++entry) bucket.add(valid[entry->point]);
        means.push_back(bucket.mean());
    }
    count = static_cast<int>(means.size());
    means.resize(in.size(), {0.0, 0.0, 0.0});
    out = std::move(means);
}

}  // namespace KORVANELASERALGO::profile
