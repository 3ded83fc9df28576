// The buckets that points fall into. The conversion to integers truncates, and gives the smallest integer for what has
// no 32-bit integer, as the rule wants it.

#ifndef KORVANE_KERNELS_LANES_BUCKETS_H
#define KORVANE_KERNELS_LANES_BUCKETS_H

#include "kernels/lanes/Points.h"
#include "kernels/plain/plain.h"

namespace KORVANELASERALGO::kernels::KORVANE_KERNEL_SET {

inline std::size_t numberBuckets(const double* points, std::size_t count, double width, std::int32_t* buckets) {
    const Doubles widths = Doubles::fill(width);
    std::size_t valid = 0;
    std::size_t i = 0;
    for (; i + kGroupPoints <= count; i += kGroupPoints) {
        const PointGroup group = PointGroup::load(points + 3 * i);
        for (std::size_t k = 0; k < kGroupLanes; ++k) {
            storeTruncated(buckets + i + k * Doubles::kCount, group.lanes[k].x / widths);
            valid += countBits(bitsOf(notZero(group.lanes[k].x)));
        }
    }
    return valid + plain::numberBuckets(points + 3 * i, count - i, width, buckets + i);
}

}  // namespace KORVANELASERALGO::kernels::KORVANE_KERNEL_SET

#endif  // KORVANE_KERNELS_LANES_BUCKETS_H
