#include <cmath>
#include <cstddef>
#include <cstdint>
#include <map>
#include <stdexcept>
#include <vector>

#include "plain.h"
#include "reference.h"

namespace reference {

void Downsample(const std::vector<Point3d>& in, const float& step, std::vector<Point3d>& out, int& count) {
    const double width = static_cast<double>(step);

    std::vector<Point3d> valid;
    for (const Point3d& point : in) {
        if (point.x != 0.0) {
            valid.push_back(point);
        }
    }
    const int n = static_cast<int>(valid.size());

    // Few points, or points no denser than the step: passed through, without padding.
    bool passThrough = n <= 10;
    if (!passThrough) {
        const double spacing = (valid.back().x - valid.front().x) / static_cast<double>(n - 1);
        passThrough = !(width > spacing);
    }
    if (passThrough) {
        out = valid;
        count = n;
        return;
    }

    // Bucket numbers truncate toward zero, so the bucket around x = 0 is twice as wide: meant.
    const auto bucketNumber = [&](double x) { return static_cast<std::int64_t>(toInt32(x / width)); };
    const std::int64_t first = bucketNumber(valid.front().x);
    const std::int64_t bucketCount = bucketNumber(valid.back().x) - first + 1;
    if (bucketCount < 0) {
        throw std::length_error("vector too long");
    }

    // Only the buckets that receive a point exist here.
    std::map<std::int64_t, std::vector<std::size_t>> buckets;
    for (std::size_t i = 0; i < valid.size(); ++i) {
        const std::int64_t b = bucketNumber(valid[i].x) - first;
        if (b < 0 || b >= bucketCount) {
            continue;
        }
        std::vector<std::size_t>& bucket = buckets[b];
        if (!bucket.empty() && std::fabs(valid[i].z - valid[bucket.front()].z) > 5.0) {
            // After a jump the bucket restarts with the new point, which is entered twice: meant.
            bucket.clear();
            bucket.push_back(i);
        }
        bucket.push_back(i);
    }

    // The mean of each bucket, in the order of the buckets.
    out.clear();
    for (const auto& [number, bucket] : buckets) {
        Point3d sum{0.0, 0.0, 0.0};
        for (const std::size_t i : bucket) {
            sum.x += valid[i].x;
            sum.y += valid[i].y;
            sum.z += valid[i].z;
        }
        const double entries = static_cast<double>(bucket.size());
        out.push_back(Point3d{sum.x / entries, sum.y / entries, sum.z / entries});
    }
    count = static_cast<int>(out.size());

    // Padded with empty points to the length of the input, invalid points included.
    while (out.size() < in.size()) {
        out.push_back(Point3d{0.0, 0.0, 0.0});
    }
}

}  // namespace reference
