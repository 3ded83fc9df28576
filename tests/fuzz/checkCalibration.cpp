// Lens undistortion, 2D points to 3D points, the plane-aligning transform, polynomials.

#include <algorithm>
#include <cmath>
#include <limits>

#include "fuzz/Checks.h"
#include "fuzz/Comparison.h"
#include "fuzz/Frames.h"
#include "fuzz/Settings.h"
#include "fuzz/Twins.h"

namespace fuzz {
namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();

// About one per column: in the image, on whole numbers, at the bounds of x, or special.
Points2d drawPoints(FuzzInput& input, const KORVANELASERALGO::tagKorvaneLaserAlgoROIInfo& roi) {
    const int surplus = input.pick({0, 0, 0, -1, 1, -5, 3});
    Points2d points(static_cast<std::size_t>(std::max(std::max(roi.Width, 0) + surplus, 0)));
    const int kind = input.range(0, 3);
    Noise noise = input.noise();
    double column = 0.0;
    for (Point2d& point : points) {
        const double row = noise.range(0, 65535) / 256.0;
        switch (kind) {
            case 1:  // whole numbers
                point = {column, static_cast<double>(noise.range(-3, 40))};
                break;
            case 2: {  // around the bounds
                const double right = static_cast<double>(roi.OffsetX) + roi.Width - 0.5;
                const double bound = noise.oneIn(2) ? -0.5 : right;
                const double toward = noise.oneIn(2) ? -kInfinity : kInfinity;
                point = {noise.oneIn(2) ? bound : std::nextafter(bound, toward), row};
                break;
            }
            case 3:
                point = {noise.oneIn(4) ? drawSpecialNumber(noise) : column,
                         noise.oneIn(4) ? drawSpecialNumber(noise) : row};
                break;
            default:
                point = {column + noise.range(-128, 128) / 256.0, row};
                break;
        }
        column += 1.0;
    }
    return points;
}

void checkPoints(FuzzInput& input, Twins& twins, Comparison& comparison) {
    const Size size = {input.range(-2, 40), input.range(0, 400)};
    const auto roi = drawRoi(input, size);
    twins.setRoi(roi);
    twins.setCalibration(drawCalibration(input, size));
    const Bytes mask = drawMask(input, twins.columns());
    const bool undistorted = input.oneIn(2);
    Points2d points = drawPoints(input, roi);
    comparison.remember("const std::vector<unsigned char> mask", mask);
    comparison.remember("std::vector<tagKorvaneLaserPoint2d> points", points);

    Points2d corrected = points;
    twins.undistortPoints2(corrected);
    if (undistorted) points = corrected;
    for (const Surface surface : {Surface::kPlane, Surface::kSecondOrder}) {
        Profile profile(static_cast<std::size_t>(input.pick({0, 2, 90})), Point3d{-7.0, -7.0, -7.0});
        twins.Cal3DPoint(surface, mask, points, profile);
    }
}

// Lines of sight that meet the second-order surface at a limit of its depths exactly, or graze it, so that the last bit
// decides whether there is a depth.
void checkDepthLimits(FuzzInput& input, Twins& twins) {
    const Size size = {input.range(1, 4), 1};
    twins.setRoi({0, 0, size.width, size.height});
    const bool grazes = input.oneIn(2);
    auto calibration = drawPlausibleCalibration(input, size);
    Point2d point = {static_cast<double>(input.range(0, size.width - 1)), input.real(-40.0, 40.0)};
    double* c = calibration.LaserPlane;
    if (!grazes) {
        // x' and y' are small whole numbers, and so are the coefficients.
        calibration.CameraMatrix[0] = calibration.CameraMatrix[4] = 1.0;
        calibration.CameraMatrix[2] = input.range(-2, 2);
        calibration.CameraMatrix[5] = input.range(-2, 2);
        point.y = input.range(-2, 2);
        for (int i = 1; i < 6; ++i) c[i] = input.pick({1.0, 0.0, -1.0, 0.5, -0.5, 2.0, -2.0, 3.0});
    }
    const double x = (point.x - calibration.CameraMatrix[2]) / calibration.CameraMatrix[0];
    const double y = (point.y - calibration.CameraMatrix[5]) / calibration.CameraMatrix[4];
    const double a = c[3] * (x * x) + c[4] * x * y + c[5] * (y * y);
    const double b = c[1] * x + c[2] * y - 1.0;
    const double depth = input.pick({3500.0, 0.0, 1.0, -1.0});
    c[0] = grazes ? b * b / (4.0 * a) : -(a * depth * depth + b * depth);
    twins.setCalibration(calibration);

    Profile profile;
    twins.Cal3DPoint(Surface::kSecondOrder, Bytes(twins.columns(), 1), Points2d(twins.columns(), point), profile);
}

void checkPlane(FuzzInput& input, Twins& twins) {
    const auto drawNumber = [&] {
        switch (input.range(0, 3)) {
            case 1:
                return drawSpecialNumber(input);
            case 2:
                return std::ldexp(input.real(-1.0, 1.0), input.range(-100, 100));
            default:
                return input.real(-3.0, 3.0);
        }
    };
    Numbers plane;
    for (int i = 0; i < 3; ++i) plane.push_back(drawNumber());
    twins.CalRT(plane);
}

void checkPolynomial(FuzzInput& input, Twins& twins) {
    const int degree = input.oneIn(16)
                           ? input.pick({-1, -2, -3, std::numeric_limits<int>::min(), std::numeric_limits<int>::max()})
                           : input.range(0, 7);
    const int samples = input.range(0, 30);
    const int kind = input.range(0, 3);
    Noise noise = input.noise();
    Numbers x, y;
    for (int i = 0; i < samples; ++i) {
        switch (kind) {
            case 1:  // few distinct positions
                x.push_back(noise.range(-2, 2));
                break;
            case 2:
                x.push_back(noise.oneIn(8) ? drawSpecialNumber(noise) : i);
                break;
            case 3:
                x.push_back(noise.range(-100000, 100000) / 1000.0);
                break;
            default:
                x.push_back(i);
                break;
        }
        y.push_back(kind == 2 && noise.oneIn(8) ? drawSpecialNumber(noise) : noise.range(-5000, 5000) / 100.0);
    }
    for (int surplus = input.range(0, 2); surplus > 0; --surplus) y.push_back(1.0);

    Numbers coefficients = twins.polynomialFit(x, y, degree);
    if (input.oneIn(2)) coefficients.push_back(drawSpecialNumber(input));
    twins.evaluatePolynomial(coefficients, input.oneIn(4) ? drawSpecialNumber(input) : input.real(-50.0, 50.0));
}

}  // namespace

std::string checkCalibration(const unsigned char* data, std::size_t size) {
    FuzzInput input(data, size);
    Comparison comparison("checkCalibration", data, size);
    Twins twins(comparison);
    switch (input.range(0, 7)) {
        case 4:
            checkDepthLimits(input, twins);
            break;
        case 5:
            checkPlane(input, twins);
            break;
        case 6:
        case 7:
            checkPolynomial(input, twins);
            break;
        default:
            checkPoints(input, twins, comparison);
            break;
    }
    return comparison.report();
}

}  // namespace fuzz
