// Lines of sight cut with the light sheet, a lane of points at a time. Each number of a lane goes through the
// operations of the plain pass in their order; what a rejected point yields is replaced by 0.0. The last lane overlaps
// the one before.

#ifndef KORVANE_KERNELS_LANES_LIGHTSHEET_H
#define KORVANE_KERNELS_LANES_LIGHTSHEET_H

#include "kernels/kernels.h"
#include "kernels/lanes/ManyDoubles.h"

namespace KORVANELASERALGO::kernels::KORVANE_KERNEL_SET {

struct PlaneDepth {
    ManyDoubles c0, c1, c2;

    explicit PlaneDepth(const double* c) : c0(c[0]), c1(c[1]), c2(c[2]) {}

    ManyDoubles operator()(const ManyDoubles& x, const ManyDoubles& y) const {
        return c0 / (ManyDoubles(1.0) - c1 * x - c2 * y);
    }
};

struct SurfaceDepth {
    ManyDoubles c0, c1, c2, c3, c4, c5;

    explicit SurfaceDepth(const double* c) : c0(c[0]), c1(c[1]), c2(c[2]), c3(c[3]), c4(c[4]), c5(c[5]) {}

    ManyDoubles operator()(const ManyDoubles& x, const ManyDoubles& y) const {
        const ManyDoubles a = c3 * (x * x) + c4 * x * y + c5 * (y * y);
        const ManyDoubles b = c1 * x + c2 * y - ManyDoubles(1.0);
        const ManyDoubles root = squareRoot(b * b - ManyDoubles(4.0) * a * c0);
        const ManyDoubles twoA = a + a;
        const ManyDoubles firstTop = root - b;
        const ManyDoubles secondTop = negated(b) - root;

        // Where every first root is out of range, this mostly shows without its division. Above a positive divisor the
        // quotient is beyond 3501 but for one rounding; above a negative one it is below -2^-101, which stays negative
        // in single precision; above zero it is infinite. An infinite divisor and not-a-number fail a comparison.
        if (allOf((firstTop > ManyDoubles(3501.0) * twoA) & (firstTop > ManyDoubles(-0x1p-100) * twoA)))
            return throughSingle(secondTop / twoA);

        const ManyDoubles first = throughSingle(firstTop / twoA);
        const ManyFlags outOfRange =
            (first < ManyDoubles(0.0)) | (first > ManyDoubles(static_cast<double>(kLargestDepth)));
        return choose(outOfRange, throughSingle(secondTop / twoA), first);
    }
};

template <class Depth>
inline void meet(const LightSheet& sheet, const bool* found, const double* points, std::size_t count, double* points3d,
                 const Depth& depth) {
    const ManyDoubles fx(sheet.camera.fx);
    const ManyDoubles cx(sheet.camera.cx);
    const ManyDoubles fy(sheet.camera.fy);
    const ManyDoubles cy(sheet.camera.cy);
    const ManyDoubles lowerBound(sheet.lowerBound);
    const ManyDoubles upperBound(sheet.upperBound);
    const ManyDoubles zero(0.0);
    const double* rt = sheet.rt;

    const std::size_t lastLane = count - ManyDoubles::kCount;
    for (std::size_t next = 0; next < count; next += ManyDoubles::kCount) {
        const std::size_t i = next < lastLane ? next : lastLane;
        ManyDoubles u;
        ManyDoubles v;
        loadPairs(points + 2 * i, u, v);
        const ManyFlags accepted = ManyFlags::ofBytes(found + i) & (u > lowerBound) & (u < upperBound);

        const ManyDoubles x = (u - cx) / fx;
        const ManyDoubles y = (v - cy) / fy;
        const ManyDoubles s = depth(x, y);
        const ManyDoubles px = s * x;
        const ManyDoubles py = s * y;
        const auto row = [&](std::size_t r) {
            const double* a = rt + 3 * r;
            const ManyDoubles sum =
                ManyDoubles(a[0]) * px + ManyDoubles(a[1]) * py + ManyDoubles(a[2]) * s + ManyDoubles(rt[9 + r]);
            return choose(accepted, sum, zero);
        };
        storeTriples(points3d + 3 * i, row(0), row(1), row(2));
    }
}

template <class Depth>
inline void meetAny(const LightSheet& sheet, const bool* found, const double* points, std::size_t count,
                    double* points3d) {
    const Depth depth(sheet.surface);
    if (count >= ManyDoubles::kCount) return meet(sheet, found, points, count, points3d, depth);
    if (count == 0) return;

    bool laneFound[ManyDoubles::kCount];
    double lane[2 * ManyDoubles::kCount];
    double lane3d[3 * ManyDoubles::kCount];
    for (std::size_t i = 0; i < ManyDoubles::kCount; ++i) {
        const std::size_t from = i < count ? i : 0;
        laneFound[i] = found[from];
        lane[2 * i] = points[2 * from];
        lane[2 * i + 1] = points[2 * from + 1];
    }
    meet(sheet, laneFound, lane, ManyDoubles::kCount, lane3d, depth);
    for (std::size_t i = 0; i < 3 * count; ++i) points3d[i] = lane3d[i];
}

inline void meetPlane(const LightSheet& sheet, const bool* found, const double* points, std::size_t count,
                      double* points3d) {
    meetAny<PlaneDepth>(sheet, found, points, count, points3d);
}

inline void meetSurface(const LightSheet& sheet, const bool* found, const double* points, std::size_t count,
                        double* points3d) {
    meetAny<SurfaceDepth>(sheet, found, points, count, points3d);
}

}  // namespace KORVANELASERALGO::kernels::KORVANE_KERNEL_SET

#endif  // KORVANE_KERNELS_LANES_LIGHTSHEET_H
