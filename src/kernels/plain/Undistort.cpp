#include "kernels/plain/plain.h"

namespace KORVANELASERALGO::kernels::plain {

void undistort(const Pinhole& camera, const LensDistortion& lens, double* points, std::size_t count) {
    const auto [fx, cx, fy, cy] = camera;
    const auto [k1, k2, p1, p2, k3] = lens;

    for (std::size_t i = 0; i < count; ++i, points += 2) {
        const double x0 = (points[0] - cx) / fx;
        const double y0 = (points[1] - cy) / fy;

        double x = x0;
        double y = y0;
        for (int round = 0; round < kUndistortRounds; ++round) {
            const double r2 = x * x + y * y;
            const double r4 = r2 * r2;
            const double r6 = r4 * r2;
            const double g = 1.0 / (1.0 + k1 * r2 + k2 * r4 + k3 * r6);
            const double dx = 2.0 * p1 * x * y + p2 * (r2 + 2.0 * (x * x));
            const double dy = p1 * (r2 + 2.0 * (y * y)) + 2.0 * p2 * x * y;
            x = (x0 - dx) * g;
            y = (y0 - dy) * g;
        }

        points[0] = fx * x + cx;
        points[1] = fy * y + cy;
    }
}

}  // namespace KORVANELASERALGO::kernels::plain
