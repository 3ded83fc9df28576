/// @file ResidualPicture.h
/// @brief The picture of a calibration: what the fit leaves over, and where.

#ifndef KORVANE_CALIBRATION_RESIDUALPICTURE_H
#define KORVANE_CALIBRATION_RESIDUALPICTURE_H

#include "calibration/Run.h"
#include "common/Image.h"

namespace calibration {

/// Three panels over the output x: all residuals with their trend, the residuals of each view at the place of the view
/// in the field, and the error of the calibration itself for the lowest, a middle and the highest view.
examples::ColourImage drawResiduals(const Result& result);

}  // namespace calibration

#endif  // KORVANE_CALIBRATION_RESIDUALPICTURE_H
