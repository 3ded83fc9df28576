/// @file Run.h
/// @brief One calibration, from views of the target to a file, and what is known about it.

#ifndef KORVANE_CALIBRATION_RUN_H
#define KORVANE_CALIBRATION_RUN_H

#include <filesystem>

#include "KorvaneLaserAlgo.h"
#include "calibration/Assessment.h"
#include "calibration/LightSurface.h"
#include "calibration/TargetViews.h"
#include "host/Accuracy.h"

namespace calibration {

/// What the command line says.
struct Options {
    bool curvedSheet = false;  ///< the simulated light sheet is bent
    bool fitPlane = false;     ///< fit a plane to the bent sheet all the same
    TargetPlan plan;
    std::filesystem::path output = "korvane-calibration";

    SurfaceForm form() const { return curvedSheet && !fitPlane ? SurfaceForm::secondOrder : SurfaceForm::plane; }
};

struct Result {
    KORVANELASERALGO::tagKorvaneLaserAlgoCalibrationInfo truth;   ///< the simulated sensor's own
    KORVANELASERALGO::tagKorvaneLaserAlgoCalibrationInfo record;  ///< the calibration that was found
    LightSurface surface;
    FieldAssessment field;
    host::Accuracy gaugeBlock;           ///< with the calibration that was found
    host::Accuracy gaugeBlockWithTruth;  ///< the same frames with the true calibration
};

/// Calibrates and writes `calibration.json` and, in a build with pictures, `residuals.png`. Throws `Failure`; no file
/// is left behind then.
Result runCalibration(const Options& options);

}  // namespace calibration

#endif  // KORVANE_CALIBRATION_RUN_H
