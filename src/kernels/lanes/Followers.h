// How far a profile goes on without a gap and without a jump: each lane is a point and is compared with the one before.

#ifndef KORVANE_KERNELS_LANES_FOLLOWERS_H
#define KORVANE_KERNELS_LANES_FOLLOWERS_H

#include "kernels/lanes/Points.h"
#include "kernels/plain/plain.h"

namespace KORVANELASERALGO::kernels::KORVANE_KERNEL_SET {

inline std::size_t countFollowers(const double* points, std::size_t count, double limit) {
    const Doubles limits = Doubles::fill(limit);
    XAndZ before = {Doubles::fill(points[-3]), Doubles::fill(points[-1])};
    std::size_t i = 0;
    for (; i + kGroupPoints <= count; i += kGroupPoints) {
        const PointGroup group = PointGroup::load(points + 3 * i);
        DoubleMask follow = notZero(group.lanes[0].x);
        for (const XAndZ& own : group.lanes) {
            follow = follow & notZero(own.x) & less(absolute(own.x - movedUp(before.x, own.x)), limits) &
                     less(absolute(own.z - movedUp(before.z, own.z)), limits);
            before = own;
        }
        if (bitsOf(follow) != kAllDoubles) break;
    }
    return i + plain::countFollowers(points + 3 * i, count - i, limit);
}

}  // namespace KORVANELASERALGO::kernels::KORVANE_KERNEL_SET

#endif  // KORVANE_KERNELS_LANES_FOLLOWERS_H
