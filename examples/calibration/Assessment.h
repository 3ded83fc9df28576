/// @file Assessment.h
/// @brief How good a calibration is: on the views that it comes from, and on the gauge block.
///
/// Errors are of the output z, in mm. z points away from the sensor, so a positive error means measured too low.

#ifndef KORVANE_CALIBRATION_ASSESSMENT_H
#define KORVANE_CALIBRATION_ASSESSMENT_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "KorvaneLaserAlgo.h"
#include "calibration/TargetViews.h"
#include "host/Accuracy.h"
#include "scenes/SimulatedSensor.h"

namespace calibration {

/// What a calibration makes of one stripe pixel of one view.
struct FieldPoint {
    std::size_t view;
    double x;                 ///< output x, mm
    double plateHeight;       ///< of the plate at this x, mm above the table
    double residual;          ///< distance from the plate: noise of the view and error of the calibration
    double calibrationError;  ///< the calibration against the true one, for this very pixel
};

struct ErrorFigures {
    double rms = 0.0;
    double largest = 0.0;  ///< without its sign
};

/// A polynomial through the residuals over x. Where the light surface has the fitted form, it is next to nothing.
struct Trend {
    double unit = 1.0;                 ///< mm of x that count as 1 in the polynomial
    std::vector<double> coefficients;  ///< by increasing power
    double firstX = 0.0;
    double lastX = 0.0;
    double range = 0.0;  ///< largest less smallest value between firstX and lastX

    double at(double x) const;
};

struct FieldAssessment {
    std::vector<FieldPoint> points;
    ErrorFigures residual;
    ErrorFigures calibrationError;
    Trend trend;
    double smallestY = 0.0;  ///< output y of the measured points
    double largestY = 0.0;

    /// Whether the residuals are more than noise: the surface is not of the fitted form.
    bool hasTrend() const { return trend.range > residual.rms; }
};

/// Measures the views' stripes with the library and a new calibration. Throws `Failure` where the library and the
/// light surface do not agree, as when Cal3DPoint2 takes the wrong one of the two depths.
/// @param sensor the true sensor
/// @param record the new calibration
/// @param conversion Cal3DPoint1 or Cal3DPoint2
FieldAssessment assessField(const scenes::Sensor& sensor,
                            const KORVANELASERALGO::tagKorvaneLaserAlgoCalibrationInfo& record,
                            const std::string& conversion, const std::vector<TargetView>& views);

inline constexpr int kGaugeBlockFrames = 10;

/// Measures the gauge block with a calibration, without profile filters, as the host does.
host::Accuracy measureGaugeBlock(const scenes::Sensor& sensor,
                                 const KORVANELASERALGO::tagKorvaneLaserAlgoCalibrationInfo& record,
                                 const std::string& conversion, const std::string& method, std::uint32_t seed);

}  // namespace calibration

#endif  // KORVANE_CALIBRATION_ASSESSMENT_H
