// The code of docs/before-you-call.md: what a host checks, because the library does not.

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <vector>

#include "KorvaneLaserAlgo.h"
#include "pages/Claim.h"
#include "pages/Inputs.h"
#include "scenes/SimulatedSensor.h"

using namespace KORVANELASERALGO;
using namespace pages;

namespace {

// [roi]
/// A ROI that the library can work on, within the sensor.
bool isUsable(const tagKorvaneLaserAlgoROIInfo& roi, int sensorWidth, int sensorHeight) {
    return roi.Width >= 1 && roi.Height >= 1 && roi.OffsetX >= 0 && roi.OffsetY >= 0 &&
           roi.Width <= sensorWidth - roi.OffsetX && roi.Height <= sensorHeight - roi.OffsetY;
}
// [/roi]

// [calibration]
/// A calibration of finite numbers, bent where it has to be, with which CalRT returns.
bool isUsable(const tagKorvaneLaserAlgoCalibrationInfo& calibration, bool secondOrder) {
    const auto areFinite = [](const double* values, int count) {
        return std::all_of(values, values + count, [](double value) { return std::isfinite(value); });
    };
    if (!areFinite(calibration.CameraMatrix, 9) || !areFinite(calibration.DistCoeffs, 5)) return false;
    if (!areFinite(calibration.RT, 12)) return false;
    if (calibration.CameraMatrix[0] == 0.0 || calibration.CameraMatrix[4] == 0.0) return false;  // fx, fy

    constexpr double kSteepest = 1e6;  // far from every real sensor, and far below where CalRT ends the process
    const double* c = calibration.LaserPlane;
    if (!areFinite(c, secondOrder ? 6 : 3) || c[0] == 0.0) return false;
    if (std::fabs(c[1]) > kSteepest || std::fabs(c[2]) > kSteepest || c[2] == 0.0) return false;
    const bool flat = c[3] == 0.0 && c[4] == 0.0 && c[5] == 0.0;
    return !secondOrder || !flat;  // a flat plane goes through Cal3DPoint1
}
// [/calibration]

// [line-select]
/// Bounds that some candidate can pass: grey values above 30 (in Cal2DPoint1_1 above 60) and up to 255.
bool isUsable(const tagKorvaneLaserAlgoLineSelectInfo& select) {
    return select.GrayMin <= select.GrayMax && select.GrayMin <= 255 && select.GrayMax > 30 &&
           select.WidthMin <= select.WidthMax && select.WidthMax >= 1 && select.SelectMode >= 1 &&
           select.SelectMode <= 4;
}
// [/line-select]

void checks() {
    const scenes::Sensor sensor = scenes::standardSensor();
    claim(isUsable(sensor.roi, scenes::kChipWidth, scenes::kChipHeight));
    claim(!isUsable({.OffsetX = 200, .OffsetY = 28, .Width = 1280, .Height = 1024}, scenes::kChipWidth,
                    scenes::kChipHeight));

    auto calibration = sensor.calibration;
    claim(isUsable(calibration, false));
    claim(!isUsable(calibration, true));
    claim(isUsable(scenes::curvedSheetSensor().calibration, true));
    calibration.RT[9] = std::numeric_limits<double>::infinity();
    claim(!isUsable(calibration, false));
    calibration.RT[9] = 0.0;
    claim(isUsable(calibration, false));
    calibration.LaserPlane[2] = 1e8;
    claim(!isUsable(calibration, false));
    claim(!isUsable(tagKorvaneLaserAlgoCalibrationInfo{}, false));

    claim(isUsable({.GrayMin = 140, .GrayMax = 255, .WidthMin = 3, .WidthMax = 40, .SelectMode = 1}));
    claim(isUsable({.GrayMin = 0, .GrayMax = 31, .WidthMin = 3, .WidthMax = 40, .SelectMode = 1}));
    claim(!isUsable({.GrayMin = 0, .GrayMax = 30, .WidthMin = 3, .WidthMax = 40, .SelectMode = 1}));
    claim(!isUsable(tagKorvaneLaserAlgoLineSelectInfo{}));
}

void steepPlane() {
    KorvaneLaserAlgo algo;
    double rt[12];
    // [plane]
    double steep[3] = {300.0, 0.0, 6e7};
    algo.CalRT(steep, rt);  // returns; 6.8e7 ends the process
    // [/plane]
    claim(std::isfinite(rt[0]));

    double endless[3] = {std::numeric_limits<double>::infinity(), 0.1, 0.5};
    algo.CalRT(endless, rt);
    claim(std::all_of(rt, rt + 9, [](double value) { return std::isfinite(value); }) && std::isinf(rt[10]));
    double undefined[3] = {300.0, std::numeric_limits<double>::infinity(), 0.5};
    algo.CalRT(undefined, rt);
    claim(std::isnan(rt[0]));
}

void zeroSettings() {
    // [zero]
    KorvaneLaserAlgo algo;  // no setter called yet
    bool mask[8] = {};
    Image image(64, 255);
    Points2d points(3);
    algo.Cal2DPoint1(mask, image.data(), points, 0);
    claim(points.empty());  // a ROI of 0 x 0: nothing is read, nothing found, nothing reported
    // [/zero]
}

}  // namespace

int main() {
    checks();
    steepPlane();
    zeroSettings();
}
