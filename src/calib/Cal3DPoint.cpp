// Cal3DPoint1 and Cal3DPoint2: each column's line of sight meets the light surface at a depth along the optical axis,
// and RT takes that point of the camera frame to the output frame. The two differ in the depth alone.

#include <cmath>
#include <cstddef>
#include <cstdint>

#include "algo/ImageView.h"
#include "calib/calib.h"

namespace KORVANELASERALGO::calib {
namespace {

using Calibration = tagKorvaneLaserAlgoCalibrationInfo;

constexpr float kLargestDepth = 3500.0f;  // length units; of the first root of the second-order surface

// The plane Z = c0 + c1 X + c2 Y. A line of sight in the plane divides by zero: it is not guarded, and that is meant.
double planeDepth(const double* c, double x, double y) {
    return c[0] / (1.0 - c[1] * x - c[2] * y);
}

// The surface Z = c0 + c1 X + c2 Y + c3 X^2 + c4 X Y + c5 Y^2. Its depths are rounded to single precision, and the
// second root is taken as it is when the first lies outside its range: both are meant.
double surfaceDepth(const double* c, double x, double y) {
    const double a = c[3] * (x * x) + c[4] * x * y + c[5] * (y * y);
    const double b = c[1] * x + c[2] * y - 1.0;
    const double root = std::sqrt(b * b - 4.0 * a * c[0]);
    const float first = static_cast<float>((root - b) / (2.0 * a));
    const float second = static_cast<float>((-b - root) / (2.0 * a));
    const bool outOfRange = first < 0.0f || first > kLargestDepth;
    return static_cast<double>(outOfRange ? second : first);
}

tagKorvaneLaserPoint3d toOutputFrame(const double* rt, double x, double y, double z) {
    return {rt[0] * x + rt[1] * y + rt[2] * z + rt[9], rt[3] * x + rt[4] * y + rt[5] * z + rt[10],
            rt[6] * x + rt[7] * y + rt[8] * z + rt[11]};
}

template <class Depth>
void convert(const AlgoContext& context, const bool* mask, const Points2d& points2d, Profile& points3d, Depth depth) {
    const Calibration& calibration = context.calibration;
    const double fx = calibration.CameraMatrix[0];
    const double cx = calibration.CameraMatrix[2];
    const double fy = calibration.CameraMatrix[4];
    const double cy = calibration.CameraMatrix[5];

    // The lower bound of x ignores the offset, the upper one includes it, as a 32-bit sum that wraps. Both are meant.
    const std::uint32_t right =
        static_cast<std::uint32_t>(context.roi.OffsetX) + static_cast<std::uint32_t>(context.roi.Width);
    const double lowerBound = -0.5;
    const double upperBound = static_cast<std::int32_t>(right) - 0.5;

    const std::size_t columns = static_cast<std::size_t>(columnsOf(context.roi));
    points3d.clear();
    points3d.reserve(columns);
    for (std::size_t i = 0; i < columns; ++i) {
        const bool accepted =
            mask[i] && i < points2d.size() && points2d[i].x > lowerBound && points2d[i].x < upperBound;
        if (!accepted) {
            points3d.push_back({0.0, 0.0, 0.0});
            continue;
        }
        const double x = (points2d[i].x - cx) / fx;
        const double y = (points2d[i].y - cy) / fy;
        const double s = depth(calibration.LaserPlane, x, y);
        points3d.push_back(toOutputFrame(calibration.RT, s * x, s * y, s));
    }
}

}  // namespace

void Cal3DPoint1(const AlgoContext& context, const bool* mask, const Points2d& points2d, Profile& points3d) {
    convert(context, mask, points2d, points3d, planeDepth);
}

void Cal3DPoint2(const AlgoContext& context, const bool* mask, const Points2d& points2d, Profile& points3d) {
    convert(context, mask, points2d, points3d, surfaceDepth);
}

}  // namespace KORVANELASERALGO::calib
