#include <cstddef>
#include <vector>

#include "plain.h"
#include "reference.h"

namespace reference {

void Cal3DPoint1(const Settings& settings, bool* mask, const std::vector<Point2d>& points2d,
                 std::vector<Point3d>& points3d) {
    const double fx = settings.calibration.CameraMatrix[0];
    const double cx = settings.calibration.CameraMatrix[2];
    const double fy = settings.calibration.CameraMatrix[4];
    const double cy = settings.calibration.CameraMatrix[5];
    const double* c = settings.calibration.LaserPlane;
    const double* rt = settings.calibration.RT;

    points3d.clear();

    // The upper bound follows the ROI's offset, the lower one does not: meant. The sum is a 32-bit integer.
    const double upper = static_cast<double>(wrappedSum(settings.roi.OffsetX, settings.roi.Width)) - 0.5;

    for (int column = 0; column < settings.roi.Width; ++column) {
        // A column without a usable point gets the empty point; one beyond the end of the points has none.
        const std::size_t i = static_cast<std::size_t>(column);
        if (i >= points2d.size() || !mask[i] || !(points2d[i].x > -0.5) || !(points2d[i].x < upper)) {
            points3d.push_back(Point3d{0.0, 0.0, 0.0});
            continue;
        }

        // The line of sight, cut with the plane.
        const double x = (points2d[i].x - cx) / fx;
        const double y = (points2d[i].y - cy) / fy;
        const double s = c[0] / (1.0 - c[1] * x - c[2] * y);

        // Camera point, then output point.
        const double px = s * x;
        const double py = s * y;
        const double pz = s;
        points3d.push_back(Point3d{rt[0] * px + rt[1] * py + rt[2] * pz + rt[9],
                                   rt[3] * px + rt[4] * py + rt[5] * pz + rt[10],
                                   rt[6] * px + rt[7] * py + rt[8] * pz + rt[11]});
    }
}

}  // namespace reference
