#include <vector>

#include "reference.h"

namespace reference {

void undistortPoints2(const Settings& settings, std::vector<Point2d>& points) {
    const double fx = settings.calibration.CameraMatrix[0];
    const double cx = settings.calibration.CameraMatrix[2];
    const double fy = settings.calibration.CameraMatrix[4];
    const double cy = settings.calibration.CameraMatrix[5];
    const double k1 = settings.calibration.DistCoeffs[0];
    const double k2 = settings.calibration.DistCoeffs[1];
    const double p1 = settings.calibration.DistCoeffs[2];
    const double p2 = settings.calibration.DistCoeffs[3];
    const double k3 = settings.calibration.DistCoeffs[4];

    for (Point2d& point : points) {
        const double x0 = (point.x - cx) / fx;
        const double y0 = (point.y - cy) / fy;

        // Always five rounds, converged or not: meant.
        double x = x0;
        double y = y0;
        for (int round = 0; round < 5; ++round) {
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

}  // namespace reference
