/// @file TargetViews.h
/// @brief The calibration target, a flat plate at known poses, as the simulated sensor sees it.
///
/// Lengths in millimetres. Camera and output frame as in the calibration record.

#ifndef KORVANE_CALIBRATION_TARGETVIEWS_H
#define KORVANE_CALIBRATION_TARGETVIEWS_H

#include <Eigen/Core>
#include <cstdint>
#include <string>
#include <vector>

#include "KorvaneLaserAlgo.h"
#include "scenes/SimulatedSensor.h"

namespace calibration {

/// Line selection for the simulated stripe: brighter than a reflection, wider than a speck; of several, the brightest.
inline constexpr KORVANELASERALGO::tagKorvaneLaserAlgoLineSelectInfo kLineSelect{140, 255, 4, 40, 1};

/// How the plate lies under the sensor.
struct PlatePose {
    double height;  ///< above the table at x = 0 of the output frame, mm
    double slope;   ///< height per x: the tangent of the tilt about the output y axis
};

/// The plate's surface in the camera frame: all P with normal . P = distance.
struct PlatePlane {
    Eigen::Vector3d normal;  ///< of length 1, towards the sensor
    double distance;         ///< mm

    /// How far a point lies above the plate, towards the sensor, mm.
    double heightAbove(const Eigen::Vector3d& point) const { return normal.dot(point) - distance; }
};

/// One frame of the plate, with the stripe extracted. One entry per column.
struct TargetView {
    PlatePose pose;
    PlatePlane plate;
    std::vector<bool> found;                                            ///< the column shows the stripe
    std::vector<KORVANELASERALGO::tagKorvaneLaserPoint2d> imaged;       ///< as imaged, full-sensor pixels
    std::vector<KORVANELASERALGO::tagKorvaneLaserPoint2d> undistorted;  ///< without lens distortion
};

/// Which views are taken.
struct TargetPlan {
    int views = 9;
    double lowest = 0.0;    ///< height of the plate in the first view, mm
    double highest = 24.0;  ///< height of the plate in the last view, mm; the others lie between at equal distances
    double tilt = 6.0;      ///< degrees; the views take turns with 0, +tilt and -tilt
    double noise = 1.5;     ///< standard deviation of the sensor noise, grey levels
    std::string method = "Cal2DPoint1";  ///< of extraction
    std::uint32_t seed = 1;
};

/// Takes the views. Of the sensor's calibration the lens is used as known; the light surface draws the stripe, and RT
/// tells where the plate lies in the camera frame. Throws `Failure` where a view does not show the stripe.
std::vector<TargetView> takeViews(const scenes::Sensor& sensor, const TargetPlan& plan);

/// The points of the light sheet, in the camera frame, that the views have seen: where the line of sight of each stripe
/// pixel meets the plate.
std::vector<Eigen::Vector3d> sheetPoints(const std::vector<TargetView>& views,
                                         const KORVANELASERALGO::tagKorvaneLaserAlgoCalibrationInfo& lens);

}  // namespace calibration

#endif  // KORVANE_CALIBRATION_TARGETVIEWS_H
