/// @file CalibrationRecord.h
/// @brief From the fitted light surface to the library's calibration record, and the file that holds it.

#ifndef KORVANE_CALIBRATION_CALIBRATIONRECORD_H
#define KORVANE_CALIBRATION_CALIBRATIONRECORD_H

#include <filesystem>
#include <string>

#include "KorvaneLaserAlgo.h"
#include "calibration/LightSurface.h"

namespace calibration {

/// Fills `RT` by CalRT from `LaserPlane`. CalRT ends the process for a plane whose normal is the y axis already, so the
/// plane is checked first; throws `Failure`, which says in words what is wrong with it.
void fillTransform(KORVANELASERALGO::tagKorvaneLaserAlgoCalibrationInfo& record);

/// The complete record: camera matrix and distortion of `lens`, the fitted surface, and `RT` by CalRT.
KORVANELASERALGO::tagKorvaneLaserAlgoCalibrationInfo makeRecord(
    const KORVANELASERALGO::tagKorvaneLaserAlgoCalibrationInfo& lens, const LightSurface& surface);

/// The output y that `RT` by CalRT gives to every point of the plane: c0 / c2 - c0 / s.
double outputYOfPlane(const KORVANELASERALGO::tagKorvaneLaserAlgoCalibrationInfo& record);

/// The 2D-to-3D method that goes with a form of light surface.
std::string conversionFor(SurfaceForm form);

/// Writes a settings file for the host: region, calibration, line selection, and of the chain what the calibration
/// decides. Throws `Failure`.
void writeSettingsFile(const std::filesystem::path& path, const KORVANELASERALGO::tagKorvaneLaserAlgoROIInfo& roi,
                       const KORVANELASERALGO::tagKorvaneLaserAlgoCalibrationInfo& record, SurfaceForm form,
                       const std::string& method);

}  // namespace calibration

#endif  // KORVANE_CALIBRATION_CALIBRATIONRECORD_H
