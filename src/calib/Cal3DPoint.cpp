// Cal3DPoint1 and Cal3DPoint2: each column's line of sight meets the light surface at a depth along the optical axis,
// and RT takes that point of the camera frame to the output frame. The two differ in the depth alone.

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "algo/ImageView.h"
#include "calib/calib.h"
#include "kernels/kernels.h"

namespace KORVANELASERALGO::calib {
namespace {

kernels::LightSheet lightSheetOf(const AlgoContext& context) {
    const tagKorvaneLaserAlgoCalibrationInfo& calibration = context.calibration;
    const double* matrix = calibration.CameraMatrix;
    kernels::LightSheet sheet;
    sheet.camera = {matrix[0], matrix[2], matrix[4], matrix[5]};
    std::copy_n(calibration.LaserPlane, 6, sheet.surface);
    std::copy_n(calibration.RT, 12, sheet.rt);

    // The lower bound of x ignores the offset, the upper one includes it, as a 32-bit sum that wraps. Both are meant.
    const std::uint32_t right =
        static_cast<std::uint32_t>(context.roi.OffsetX) + static_cast<std::uint32_t>(context.roi.Width);
    sheet.lowerBound = -0.5;
    sheet.upperBound = static_cast<std::int32_t>(right) - 0.5;
    return sheet;
}

using Meet = decltype(kernels::KernelSet::meetPlane);

void convert(const AlgoContext& context, const bool* mask, const Points2d& points2d, Profile& points3d, Meet meet) {
    const std::size_t columns = static_cast<std::size_t>(columnsOf(context.roi));
    points3d.resize(columns);  // every point is written below

    const std::size_t given = std::min(columns, points2d.size());
    if (given > 0) meet(lightSheetOf(context), mask, &points2d.front().x, given, &points3d.front().x);
    std::fill(points3d.begin() + static_cast<std::ptrdiff_t>(given), points3d.end(),
              tagKorvaneLaserPoint3d{0.0, 0.0, 0.0});
}

}  // namespace

void Cal3DPoint1(const AlgoContext& context, const bool* mask, const Points2d& points2d, Profile& points3d) {
    convert(context, mask, points2d, points3d, kernels::active().meetPlane);
}

void Cal3DPoint2(const AlgoContext& context, const bool* mask, const Points2d& points2d, Profile& points3d) {
    convert(context, mask, points2d, points3d, kernels::active().meetSurface);
}

}  // namespace KORVANELASERALGO::calib
