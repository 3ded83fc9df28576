/// @file SensorGeometry.h
/// @brief From a pixel to the point of the light sheet that it sees, without approximation.

#ifndef KORVANE_SCENES_SENSORGEOMETRY_H
#define KORVANE_SCENES_SENSORGEOMETRY_H

#include "scenes/SimulatedSensor.h"

namespace scenes {

/// Normalised coordinates x' = X / Z, y' = Y / Z of the line of sight of a pixel (full sensor, as imaged): the lens
/// distortion is inverted to the last bits.
KORVANELASERALGO::tagKorvaneLaserPoint2d lineOfSight(
    const KORVANELASERALGO::tagKorvaneLaserAlgoCalibrationInfo& calibration, double column, double row);

/// The point, in the output frame, in which the line of sight of a pixel (full sensor, as imaged) meets the light
/// sheet.
KORVANELASERALGO::tagKorvaneLaserPoint3d sheetPoint(const Sensor& sensor, double column, double row);

/// Output y of the flat light sheet; of a bent one, that of its tangent plane.
double sheetY(const Sensor& sensor);

}  // namespace scenes

#endif  // KORVANE_SCENES_SENSORGEOMETRY_H
