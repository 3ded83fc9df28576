// Lens distortion removed from a lane of points at a time. Each number of a lane goes through the operations of the
// plain pass in their order; only twice a square is written as a sum, which is exact in both ways.

#ifndef KORVANE_KERNELS_LANES_UNDISTORT_H
#define KORVANE_KERNELS_LANES_UNDISTORT_H

#include "kernels/kernels.h"
#include "kernels/lanes/ManyDoubles.h"

namespace KORVANELASERALGO::kernels::KORVANE_KERNEL_SET {

inline void undistort(const Pinhole& camera, const LensDistortion& lens, double* points, std::size_t count) {
    const ManyDoubles fx(camera.fx);
    const ManyDoubles cx(camera.cx);
    const ManyDoubles fy(camera.fy);
    const ManyDoubles cy(camera.cy);
    const ManyDoubles k1(lens.k1);
    const ManyDoubles k2(lens.k2);
    const ManyDoubles k3(lens.k3);
    const ManyDoubles p1(lens.p1);
    const ManyDoubles p2(lens.p2);
    const ManyDoubles one(1.0);
    const ManyDoubles twoP1(2.0 * lens.p1);
    const ManyDoubles twoP2(2.0 * lens.p2);

    double last[2 * ManyDoubles::kCount];  // less than a lane, filled up with copies of its first point
    while (count > 0) {
        const std::size_t values = 2 * (count < ManyDoubles::kCount ? count : ManyDoubles::kCount);
        double* lane = points;
        if (count < ManyDoubles::kCount) {
            lane = last;
            for (std::size_t i = 0; i < 2 * ManyDoubles::kCount; ++i) last[i] = points[i < values ? i : i % 2];
        }

        ManyDoubles x;
        ManyDoubles y;
        loadPairs(lane, x, y);
        x = (x - cx) / fx;
        y = (y - cy) / fy;
        const ManyDoubles x0 = x;
        const ManyDoubles y0 = y;
        for (int round = 0; round < kUndistortRounds; ++round) {
            const ManyDoubles xx = x * x;
            const ManyDoubles yy = y * y;
            const ManyDoubles r2 = xx + yy;
            const ManyDoubles r4 = r2 * r2;
            const ManyDoubles r6 = r4 * r2;
            const ManyDoubles g = one / (one + k1 * r2 + k2 * r4 + k3 * r6);
            const ManyDoubles dx = twoP1 * x * y + p2 * (r2 + (xx + xx));
            const ManyDoubles dy = p1 * (r2 + (yy + yy)) + twoP2 * x * y;
            x = (x0 - dx) * g;
            y = (y0 - dy) * g;
        }
        storePairs(lane, fx * x + cx, fy * y + cy);

        if (lane == last) {
            for (std::size_t i = 0; i < values; ++i) points[i] = last[i];
        }
        points += values;
        count -= values / 2;
    }
}

}  // namespace KORVANELASERALGO::kernels::KORVANE_KERNEL_SET

#endif  // KORVANE_KERNELS_LANES_UNDISTORT_H
