// The camera is a pinhole with Brown-Conrady distortion (D. C. Brown: Decentering Distortion of Lenses, 1966), the
// light a plane or a second-order surface in the camera frame.

#include "scenes/SensorGeometry.h"

#include <cmath>

namespace scenes {

namespace {

using CalibrationInfo = KORVANELASERALGO::tagKorvaneLaserAlgoCalibrationInfo;
using Point2d = KORVANELASERALGO::tagKorvaneLaserPoint2d;
using Point3d = KORVANELASERALGO::tagKorvaneLaserPoint3d;

/// What the lens does to the normalised point (x, y): distorted = radial * (x, y) + (shiftX, shiftY).
struct LensTerms {
    double radial;
    double shiftX;
    double shiftY;
};

LensTerms lensTerms(const CalibrationInfo& calibration, double x, double y) {
    const double k1 = calibration.DistCoeffs[0];
    const double k2 = calibration.DistCoeffs[1];
    const double p1 = calibration.DistCoeffs[2];
    const double p2 = calibration.DistCoeffs[3];
    const double k3 = calibration.DistCoeffs[4];
    const double r2 = x * x + y * y;
    return {.radial = 1.0 + r2 * (k1 + r2 * (k2 + r2 * k3)),
            .shiftX = 2.0 * p1 * x * y + p2 * (r2 + 2.0 * x * x),
            .shiftY = p1 * (r2 + 2.0 * y * y) + 2.0 * p2 * x * y};
}

/// Fills `RT` with the rigid transform that turns the normal of the plane Z = c0 + c1 X + c2 Y onto the y axis by the
/// shortest rotation (Rodrigues' formula), and moves by c0 / c2 along y.
void alignPlaneWithOutput(CalibrationInfo& calibration) {
    const double c0 = calibration.LaserPlane[0];
    const double c1 = calibration.LaserPlane[1];
    const double c2 = calibration.LaserPlane[2];

    // Unit normal, turned so that its y is positive.
    const double length = std::sqrt(c1 * c1 + c2 * c2 + 1.0);
    const double s = c2 < 0.0 ? -length : length;
    const double nx = c1 / s;
    const double ny = c2 / s;
    const double nz = -1.0 / s;

    // The axis n x (0, 1, 0) has the sine of the angle as its length, and no y.
    const double cosine = ny;
    const double sine = std::sqrt(nx * nx + nz * nz);
    const double kx = -nz / sine;
    const double kz = nx / sine;
    const double rest = 1.0 - cosine;

    const double transform[12] = {cosine + rest * kx * kx,
                                  -sine * kz,
                                  rest * kx * kz,  //
                                  sine * kz,
                                  cosine,
                                  -sine * kx,  //
                                  rest * kx * kz,
                                  sine * kx,
                                  cosine + rest * kz * kz,  //
                                  0.0,
                                  c0 / c2,
                                  0.0};
    for (int i = 0; i < 12; ++i) calibration.RT[i] = transform[i];
}

/// Depth Z at which the line of sight (x', y') meets the light sheet.
double sheetDepth(const Sensor& sensor, const Point2d& sight) {
    const double* c = sensor.calibration.LaserPlane;
    const double slope = 1.0 - c[1] * sight.x - c[2] * sight.y;
    if (!sensor.curvedSheet) return c[0] / slope;

    // bend Z^2 - slope Z + c0 = 0, in the form that stays accurate, and becomes the plane's, where the bend vanishes.
    const double bend = c[3] * sight.x * sight.x + c[4] * sight.x * sight.y + c[5] * sight.y * sight.y;
    return 2.0 * c[0] / (slope + std::sqrt(slope * slope - 4.0 * bend * c[0]));
}

Point3d toOutputFrame(const CalibrationInfo& calibration, double X, double Y, double Z) {
    const double* m = calibration.RT;
    return {.x = m[0] * X + m[1] * Y + m[2] * Z + m[9],
            .y = m[3] * X + m[4] * Y + m[5] * Z + m[10],
            .z = m[6] * X + m[7] * Y + m[8] * Z + m[11]};
}

}  // namespace

KORVANELASERALGO::tagKorvaneLaserPoint2d project(const CalibrationInfo& calibration, double X, double Y, double Z) {
    const double x = X / Z;
    const double y = Y / Z;
    const LensTerms lens = lensTerms(calibration, x, y);
    return {.x = calibration.CameraMatrix[0] * (lens.radial * x + lens.shiftX) + calibration.CameraMatrix[2],
            .y = calibration.CameraMatrix[4] * (lens.radial * y + lens.shiftY) + calibration.CameraMatrix[5]};
}

Point2d lineOfSight(const CalibrationInfo& calibration, double column, double row) {
    const double distortedX = (column - calibration.CameraMatrix[2]) / calibration.CameraMatrix[0];
    const double distortedY = (row - calibration.CameraMatrix[5]) / calibration.CameraMatrix[4];

    // Fixed-point iteration until it stands still: a moderate lens gains about two digits a step.
    constexpr int kMostSteps = 100;
    constexpr double kStandsStill = 1e-16;
    double x = distortedX;
    double y = distortedY;
    for (int step = 0; step < kMostSteps; ++step) {
        const LensTerms lens = lensTerms(calibration, x, y);
        const double nextX = (distortedX - lens.shiftX) / lens.radial;
        const double nextY = (distortedY - lens.shiftY) / lens.radial;
        const double change = std::fabs(nextX - x) + std::fabs(nextY - y);
        x = nextX;
        y = nextY;
        if (change <= kStandsStill) break;
    }
    return {.x = x, .y = y};
}

Point3d sheetPoint(const Sensor& sensor, double column, double row) {
    const Point2d sight = lineOfSight(sensor.calibration, column, row);
    const double depth = sheetDepth(sensor, sight);
    return toOutputFrame(sensor.calibration, depth * sight.x, depth * sight.y, depth);
}

double sheetY(const Sensor& sensor) {
    return toOutputFrame(sensor.calibration, 0.0, 0.0, sensor.calibration.LaserPlane[0]).y;
}

Sensor standardSensor() {
    Sensor sensor{};
    // The middle of the chip is read out.
    sensor.roi = {.OffsetX = 80, .OffsetY = 28, .Width = 1280, .Height = 1024};

    // 4800 pixels of focal length see 80 mm at 300 mm; the sheet crosses the optical axis there, at 30 degrees.
    constexpr double kCotangentOf30Degrees = 1.7320508075688772;
    sensor.calibration = {.CameraMatrix = {4800.0, 0.0, 723.4, 0.0, 4802.5, 537.8, 0.0, 0.0, 1.0},
                          .DistCoeffs = {-0.21, 0.16, 0.0007, -0.0005, 0.05},
                          .LaserPlane = {300.0, 0.02, kCotangentOf30Degrees, 0.0, 0.0, 0.0},
                          .RT = {}};
    alignPlaneWithOutput(sensor.calibration);

    sensor.laserSourceX = 0.0;
    sensor.laserSourceZ = 0.0;
    sensor.tableDistance = 272.0;
    return sensor;
}

Sensor curvedSheetSensor() {
    Sensor sensor = standardSensor();
    // 6 mm of Z, 3 mm across the sheet, at the left and right edge of the field.
    sensor.calibration.LaserPlane[3] = 0.004;
    sensor.calibration.LaserPlane[4] = -0.0006;
    sensor.calibration.LaserPlane[5] = 0.0011;
    sensor.curvedSheet = true;
    return sensor;
}

Sensor withRoi(const Sensor& sensor, int offsetX, int offsetY, int width, int height) {
    Sensor other = sensor;
    other.roi = {.OffsetX = offsetX, .OffsetY = offsetY, .Width = width, .Height = height};
    return other;
}

}  // namespace scenes
