// From 2D points to a profile, and tools for calibration work, as the public header describes them.

#ifndef KORVANE_CALIB_CALIB_H
#define KORVANE_CALIB_CALIB_H

#include <vector>

#include "algo/AlgoContext.h"

namespace KORVANELASERALGO::calib {

using Points2d = std::vector<tagKorvaneLaserPoint2d>;
using Profile = std::vector<tagKorvaneLaserPoint3d>;

void undistortPoints2(const AlgoContext& context, Points2d& points);
void Cal3DPoint1(const AlgoContext& context, const bool* mask, const Points2d& points2d, Profile& points3d);
void Cal3DPoint2(const AlgoContext& context, const bool* mask, const Points2d& points2d, Profile& points3d);
void CalRT(const double* plane, double* rt);
std::vector<double> polynomialFit(const std::vector<double>& x, const std::vector<double>& y, int degree);
double evaluatePolynomial(const std::vector<double>& coefficients, double x);

}  // namespace KORVANELASERALGO::calib

#endif  // KORVANE_CALIB_CALIB_H
