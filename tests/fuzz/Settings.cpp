#include "fuzz/Settings.h"

#include <array>
#include <cmath>
#include <limits>

namespace fuzz {
namespace {

using KORVANELASERALGO::tagKorvaneLaserAlgoCalibrationInfo;

constexpr int kLowest = std::numeric_limits<int>::min();
constexpr int kHighest = std::numeric_limits<int>::max();
constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();

constexpr std::array kSpecialNumbers = {0.0,       1.0,        -0.0,         -1.0,          0.5,   2.0,   kNan,
                                        kInfinity, -kInfinity, 1e-9,         -1e-9,         1e9,   1e150, -1e300,
                                        1.7e308,   5e-324,     2147483647.5, -2147483648.5, 2.5e9, -0.3};

// Sums and products of these are exact.
constexpr std::array kExactNumbers = {1.0, 0.0, -1.0, 2.0, 0.5, -0.5, 3.0, -2.0, 0.25, 100.0};

void setRotation(double turn, double tilt, double* rt) {
    const double ct = std::cos(turn), st = std::sin(turn);
    const double cl = std::cos(tilt), sl = std::sin(tilt);
    const double rotation[9] = {ct, -st * cl, st * sl, st, ct * cl, -ct * sl, 0.0, sl, cl};
    for (int i = 0; i < 9; ++i) rt[i] = rotation[i];
}

}  // namespace

KORVANELASERALGO::tagKorvaneLaserAlgoROIInfo drawRoi(FuzzInput& input, Size size) {
    const auto drawOffset = [&] {
        switch (input.range(0, 7)) {
            case 4:
            case 5:
                return input.range(-20, 2000);
            case 6:
                return kHighest - input.range(0, 300);
            case 7:
                return kLowest + input.range(0, 300);
            default:
                return 0;
        }
    };
    const int offsetX = drawOffset();
    const int offsetY = drawOffset();
    return {offsetX, offsetY, size.width, size.height};
}

KORVANELASERALGO::tagKorvaneLaserAlgoLineSelectInfo drawLineSelect(FuzzInput& input) {
    if (input.oneIn(16))
        return {input.range(-300, 300), input.range(-300, 300), input.range(-50, 50), input.range(-50, 50),
                input.range(-3, 7)};
    const int grayMin = input.pick({0, 0, 0, 31, 60, 61, 100, 128, 200, -1, 255, kLowest});
    const int grayMax = input.pick({255, 255, 255, 255, 254, 200, 180, 128, 100, -1, kHighest});
    const int widthMin = input.pick({0, 0, 0, 1, 2, 3, 4, 5, 8, -1, 20, kLowest});
    const int widthMax = input.pick({1000, 1000, 5, 6, 8, 10, 19, 20, 21, 30, 4, 3, 2, 0, -1, kHighest});
    const int selectMode = input.pick({1, 2, 3, 4, 0, 5, -1, 2});
    return {grayMin, grayMax, widthMin, widthMax, selectMode};
}

tagKorvaneLaserAlgoCalibrationInfo drawPlausibleCalibration(FuzzInput& input, Size size) {
    tagKorvaneLaserAlgoCalibrationInfo calibration = {};
    const double focalLength = input.real(500.0, 3000.0);  // pixels
    calibration.CameraMatrix[0] = focalLength;
    calibration.CameraMatrix[2] = size.width * input.real(0.3, 0.7);
    calibration.CameraMatrix[4] = focalLength * input.real(0.98, 1.02);
    calibration.CameraMatrix[5] = size.height * input.real(0.3, 0.7);
    calibration.CameraMatrix[8] = 1.0;
    const double distortion = input.pick({0.0, 0.01, 0.3});
    for (double& coefficient : calibration.DistCoeffs) coefficient = distortion * input.real(-1.0, 1.0);
    calibration.LaserPlane[0] = input.real(50.0, 500.0);  // length units
    calibration.LaserPlane[1] = input.real(-0.3, 0.3);
    calibration.LaserPlane[2] = input.real(-2.0, 2.0);
    for (int i = 3; i < 6; ++i) calibration.LaserPlane[i] = input.real(-1e-3, 1e-3);
    setRotation(input.real(-3.0, 3.0), input.real(-3.0, 3.0), calibration.RT);
    for (int i = 9; i < 12; ++i) calibration.RT[i] = input.real(-100.0, 100.0);
    return calibration;
}

tagKorvaneLaserAlgoCalibrationInfo drawCalibration(FuzzInput& input, Size size) {
    tagKorvaneLaserAlgoCalibrationInfo calibration = {};
    const auto drawAll = [&](double* values, int count, auto draw) {
        for (int i = 0; i < count; ++i) values[i] = draw();
    };
    switch (input.range(0, 3)) {
        case 1:
            drawAll(calibration.CameraMatrix, 9, [&] { return input.pick(kExactNumbers); });
            drawAll(calibration.DistCoeffs, 5, [&] { return input.pick({0.0, 0.0, 0.5, -0.25}); });
            drawAll(calibration.LaserPlane, 6, [&] { return input.pick(kExactNumbers); });
            drawAll(calibration.RT, 12, [&] { return input.pick(kExactNumbers); });
            return calibration;
        case 2:
            calibration = drawPlausibleCalibration(input, size);
            calibration.CameraMatrix[input.range(0, 8)] = drawSpecialNumber(input);
            calibration.DistCoeffs[input.range(0, 4)] = drawSpecialNumber(input);
            calibration.LaserPlane[input.range(0, 5)] = drawSpecialNumber(input);
            calibration.RT[input.range(0, 11)] = drawSpecialNumber(input);
            return calibration;
        case 3:
            if (input.oneIn(8)) return calibration;
            [[fallthrough]];
        default:
            return drawPlausibleCalibration(input, size);
    }
}

int drawGreyThreshold(FuzzInput& input) {
    switch (input.range(0, 7)) {
        case 6:
            return input.range(-300, 600);
        case 7:
            return input.pick({0, -1, 1, 254, 255, 256, kLowest, kHighest});
        default:
            return drawGrey(input);
    }
}

double drawSpecialNumber(FuzzInput& input) {
    return input.pick(kSpecialNumbers);
}

double drawSpecialNumber(Noise& noise) {
    return noise.pick(kSpecialNumbers);
}

}  // namespace fuzz
