// From points to lists of their coordinates without the empty points, and back. Empty points mostly come in long gaps,
// so a group of points is mostly full and is copied as it is; the others are left to the plain pass.

#ifndef KORVANE_KERNELS_LANES_POINTLISTS_H
#define KORVANE_KERNELS_LANES_POINTLISTS_H

#include "kernels/lanes/Points.h"
#include "kernels/plain/plain.h"

namespace KORVANELASERALGO::kernels::KORVANE_KERNEL_SET {

inline std::size_t listHeights(const double* points, std::size_t count, double* heights) {
    std::size_t listed = 0;
    std::size_t i = 0;
    for (; i + kGroupPoints <= count; i += kGroupPoints, points += 3 * kGroupPoints) {
        const PointGroup group = PointGroup::load(points);
        if (group.allX()) {
            group.storeZ(heights + listed);
            listed += kGroupPoints;
        } else {
            listed += plain::listHeights(points, kGroupPoints, heights + listed);
        }
    }
    return listed + plain::listHeights(points, count - i, heights + listed);
}

inline std::size_t storeHeights(double* points, std::size_t count, const double* heights) {
    std::size_t stored = 0;
    std::size_t i = 0;
    for (; i + kGroupPoints <= count; i += kGroupPoints, points += 3 * kGroupPoints) {
        if (PointGroup::load(points).allX()) {
            for (std::size_t k = 0; k < kGroupPoints; ++k) points[3 * k + 2] = heights[stored + k];
            stored += kGroupPoints;
        } else {
            stored += plain::storeHeights(points, kGroupPoints, heights + stored);
        }
    }
    return stored + plain::storeHeights(points, count - i, heights + stored);
}

}  // namespace KORVANELASERALGO::kernels::KORVANE_KERNEL_SET

#endif  // KORVANE_KERNELS_LANES_POINTLISTS_H
