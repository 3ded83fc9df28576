// undistortPoints2: inverts the Brown-Conrady distortion model (D. C. Brown, "Decentering distortion of lenses",
// Photogrammetric Engineering 32, 1966), which has no closed inverse, by a fixed-point iteration of fixed count.

#include "calib/calib.h"

namespace KORVANELASERALGO::calib {
namespace {

// Fixed, so that the cost of a point is constant; nothing tests for convergence. This is meant.
constexpr int kIterations = 5;

}  // namespace

void undistortPoints2(const AlgoContext& context, Points2d& points) {
    const double fx = context.calibration.CameraMatrix[0];
    const double cx = context.calibration.CameraMatrix[2];
    const double fy = context.calibration.CameraMatrix[4];
    const double cy = context.calibration.CameraMatrix[5];
    const double k1 = context.calibration.DistCoeffs[0];
    const double k2 = context.calibration.DistCoeffs[1];
    const double p1 = context.calibration.DistCoeffs[2];
    const double p2 = context.calibration.DistCoeffs[3];
    const double k3 = context.calibration.DistCoeffs[4];

    for (tagKorvaneLaserPoint2d& point : points) {
        const double x0 = (point.x - cx) / fx;
        const double y0 = (point.y - cy) / fy;

        double x = x0;
        double y = y0;
        for (int i = 0; i < kIterations; ++i) {
            const double r2 = x * x + y * y;
            const double r4 = r2 * r2;
            const double r6 = r4 * r2;
            const double g = 1.0 / (1.0 + k1 * r2 + k2 * r4 + k3 * r6);
            const double dx = 2.0 * p1 * x * y + p2 * (r2 + 2.0 * (x * x));
            const double dy = p1 * (r2 + 2.0 * (y * y)) + 2.0 * p2 * x * y;
            x = (x0 - dx) * g;
            y = (y0 - dy) * g;
        }

        point.x = fx * x + cx;
        point.y = fy * y + cy;
    }
}

}  // namespace KORVANELASERALGO::calib
