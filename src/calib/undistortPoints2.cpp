// undistortPoints2: inverts the Brown-Conrady distortion model (D. C. Brown, "Decentering distortion of lenses",
// Photogrammetric Engineering 32, 1966), which has no closed inverse, by a fixed-point iteration of fixed count.

#include "calib/calib.h"
#include "kernels/kernels.h"

namespace KORVANELASERALGO::calib {

void undistortPoints2(const AlgoContext& context, Points2d& points) {
    if (points.empty()) return;
    const double* matrix = context.calibration.CameraMatrix;
    const double* coefficients = context.calibration.DistCoeffs;
    const kernels::Pinhole camera = {matrix[0], matrix[2], matrix[4], matrix[5]};
    const kernels::LensDistortion lens = {coefficients[0], coefficients[1], coefficients[2], coefficients[3],
                                          coefficients[4]};
    kernels::active().undistort(camera, lens, &points.front().x, points.size());
}

}  // namespace KORVANELASERALGO::calib
