/// @file LightSurface.h
/// @brief Least squares: from points of the light sheet to the coefficients of the calibration record.

#ifndef KORVANE_CALIBRATION_LIGHTSURFACE_H
#define KORVANE_CALIBRATION_LIGHTSURFACE_H

#include <Eigen/Core>
#include <array>
#include <vector>

namespace calibration {

/// How many coefficients the light surface has; the others are 0.
enum class SurfaceForm {
    plane = 3,       ///< Z = c0 + c1 X + c2 Y
    secondOrder = 6  ///< Z = c0 + c1 X + c2 Y + c3 X^2 + c4 X Y + c5 Y^2
};

/// A fitted light surface, camera frame, lengths in mm.
struct LightSurface {
    SurfaceForm form;
    std::array<double, 6> coefficients;  ///< as `LaserPlane` has them
    std::array<double, 6> deviations;    ///< standard deviation that the residuals' noise gives each coefficient
    double condition;                    ///< largest over smallest singular value of the equations, lengths in units
                                         ///< of half the field's width
};

/// Fits the surface whose squared distances along Z are least. Throws `Failure` where the points do not determine it,
/// such as the points of a single line for a plane.
LightSurface fitLightSurface(const std::vector<Eigen::Vector3d>& points, SurfaceForm form);

}  // namespace calibration

#endif  // KORVANE_CALIBRATION_LIGHTSURFACE_H
