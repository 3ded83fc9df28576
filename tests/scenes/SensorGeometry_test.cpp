#include "scenes/SensorGeometry.h"

#include <gtest/gtest.h>

#include <cmath>

#include "HandSensor.h"

using scenes::curvedSheetSensor;
using scenes::kChipHeight;
using scenes::kChipWidth;
using scenes::lineOfSight;
using scenes::project;
using scenes::Sensor;
using scenes::sheetPoint;
using scenes::sheetY;
using scenes::standardSensor;
using Point2d = KORVANELASERALGO::tagKorvaneLaserPoint2d;
using Point3d = KORVANELASERALGO::tagKorvaneLaserPoint3d;

namespace {

Point3d toCameraFrame(const Sensor& sensor, const Point3d& p) {
    const double* m = sensor.calibration.RT;
    const double x = p.x - m[9];
    const double y = p.y - m[10];
    const double z = p.z - m[11];
    return {m[0] * x + m[3] * y + m[6] * z, m[1] * x + m[4] * y + m[7] * z, m[2] * x + m[5] * y + m[8] * z};
}

}  // namespace

TEST(Project, ScalesByTheFocalLengthAndShiftsByThePrincipalPoint) {
    const Point2d pixel = project(handSensor().calibration, 30.0, -12.0, 300.0);
    EXPECT_DOUBLE_EQ(pixel.x, 420.0);  // 1000 * 30 / 300 + 320
    EXPECT_DOUBLE_EQ(pixel.y, 60.0);   // 1000 * -12 / 300 + 100
}

TEST(Project, DistortsByEachCoefficientAsTheModelSays) {
    // (x, y) = (0.5, -0.25): r^2 = 0.3125, x y = -0.125, r^2 + 2 x^2 = 0.8125, r^2 + 2 y^2 = 0.4375.
    const auto distorted = [](int coefficient) {
        Sensor sensor = handSensor();
        sensor.calibration.DistCoeffs[coefficient] = 0.01;
        const Point2d pixel = project(sensor.calibration, 0.5, -0.25, 1.0);
        return Point2d{(pixel.x - 320.0) / 1000.0, (pixel.y - 100.0) / 1000.0};
    };
    const double radial[5] = {0.3125, 0.09765625, 0.0, 0.0, 0.030517578125};
    const double shiftX[5] = {0.0, 0.0, -0.25, 0.8125, 0.0};
    const double shiftY[5] = {0.0, 0.0, 0.4375, -0.25, 0.0};
    for (int i = 0; i < 5; ++i) {
        EXPECT_NEAR(distorted(i).x, 0.5 * (1.0 + 0.01 * radial[i]) + 0.01 * shiftX[i], 1e-14) << i;
        EXPECT_NEAR(distorted(i).y, -0.25 * (1.0 + 0.01 * radial[i]) + 0.01 * shiftY[i], 1e-14) << i;
    }
}

TEST(LineOfSight, IsInvertedByProjectionOverTheWholeChip) {
    const Sensor sensor = standardSensor();
    for (int row = 0; row < kChipHeight; row += 27) {
        for (int column = 0; column < kChipWidth; column += 27) {
            const Point2d sight = lineOfSight(sensor.calibration, column, row);
            const Point2d pixel = project(sensor.calibration, sight.x, sight.y, 1.0);
            EXPECT_NEAR(pixel.x, column, 1e-10);
            EXPECT_NEAR(pixel.y, row, 1e-10);
        }
    }
}

TEST(LineOfSight, IsReachedByFiveFixedPointStepsToAMillionthOfAPixel) {
    const auto& calibration = standardSensor().calibration;
    const double fx = calibration.CameraMatrix[0];
    const double fy = calibration.CameraMatrix[4];
    const double* d = calibration.DistCoeffs;
    double greatestCorrection = 0.0;
    for (int row = 0; row < kChipHeight; row += 27) {
        for (int column = 0; column < kChipWidth; column += 27) {
            const double x0 = (column - calibration.CameraMatrix[2]) / fx;
            const double y0 = (row - calibration.CameraMatrix[5]) / fy;
            double x = x0;
            double y = y0;
            for (int step = 0; step < 5; ++step) {
                const double r2 = x * x + y * y;
                const double g = 1.0 / (1.0 + d[0] * r2 + d[1] * r2 * r2 + d[4] * r2 * r2 * r2);
                const double dx = 2.0 * d[2] * x * y + d[3] * (r2 + 2.0 * x * x);
                const double dy = d[2] * (r2 + 2.0 * y * y) + 2.0 * d[3] * x * y;
                x = (x0 - dx) * g;
                y = (y0 - dy) * g;
            }
            const Point2d exact = lineOfSight(calibration, column, row);
            EXPECT_LT(std::hypot(fx * (x - exact.x), fy * (y - exact.y)), 1e-6) << column << ", " << row;
            greatestCorrection = std::max(greatestCorrection, std::hypot(fx * (x - x0), fy * (y - y0)));
        }
    }
    EXPECT_GT(greatestCorrection, 3.0) << "the lens hardly distorts, so nothing was tried";
}

TEST(SheetPoint, OfTheHandSensorIsTheHandComputedOne) {
    // Y = 40, Z = 330: z = 180 + 1.25 * 40 = 230; column 420 lies at X = 330 * 100 / 1000.
    const Point3d point = sheetPoint(handSensor(), 420.0, kHandTableRow);
    EXPECT_NEAR(point.x, 33.0, 1e-10);
    EXPECT_NEAR(point.y, 160.0, 1e-10);
    EXPECT_NEAR(point.z, 230.0, 1e-10);
    EXPECT_NEAR(sheetY(handSensor()), 160.0, 1e-10);
}

TEST(SheetPoint, LiesOnTheSecondOrderSurfaceAndOnTheLineOfSight) {
    const Sensor sensor = curvedSheetSensor();
    const double* c = sensor.calibration.LaserPlane;
    for (int row = 30; row < 1050; row += 60) {
        for (int column = 80; column < 1360; column += 79) {
            const Point3d p = toCameraFrame(sensor, sheetPoint(sensor, column, row));
            EXPECT_NEAR(p.z, c[0] + c[1] * p.x + c[2] * p.y + c[3] * p.x * p.x + c[4] * p.x * p.y + c[5] * p.y * p.y,
                        1e-10);
            const Point2d pixel = project(sensor.calibration, p.x, p.y, p.z);
            EXPECT_NEAR(pixel.x, column, 1e-9);
            EXPECT_NEAR(pixel.y, row, 1e-9);
        }
    }
}

TEST(StandardSensor, TurnsThePlaneNormalOntoTheYAxisByTheShortestRotation) {
    const auto& calibration = standardSensor().calibration;
    const double c1 = calibration.LaserPlane[1];
    const double c2 = calibration.LaserPlane[2];
    const double s = std::sqrt(c1 * c1 + c2 * c2 + 1.0);
    const double n[3] = {c1 / s, c2 / s, -1.0 / s};
    const double* m = calibration.RT;
    EXPECT_GT(std::fabs(c1), 0.0);

    for (int i = 0; i < 3; ++i) {
        EXPECT_NEAR(m[3 * i] * n[0] + m[3 * i + 1] * n[1] + m[3 * i + 2] * n[2], i == 1 ? 1.0 : 0.0, 1e-15);
        for (int j = 0; j < 3; ++j) {
            const double product = m[3 * i] * m[3 * j] + m[3 * i + 1] * m[3 * j + 1] + m[3 * i + 2] * m[3 * j + 2];
            EXPECT_NEAR(product, i == j ? 1.0 : 0.0, 1e-15);
        }
    }
    const double determinant =
        m[0] * (m[4] * m[8] - m[5] * m[7]) - m[1] * (m[3] * m[8] - m[5] * m[6]) + m[2] * (m[3] * m[7] - m[4] * m[6]);
    EXPECT_NEAR(determinant, 1.0, 1e-15);

    // The axis of the shortest rotation is at right angles to both directions, and the angle is the one between them.
    EXPECT_NEAR(m[2], m[6], 1e-15);
    EXPECT_NEAR(m[0] + m[4] + m[8], 1.0 + 2.0 * n[1], 1e-15);
}

TEST(StandardSensor, HoldsItsFlatSheetAtOneY) {
    const Sensor sensor = standardSensor();
    const double* c = sensor.calibration.LaserPlane;
    const double y = c[0] / c[2] - c[0] / std::sqrt(c[1] * c[1] + c[2] * c[2] + 1.0);
    EXPECT_NEAR(sheetY(sensor), y, 1e-12);
    for (int column = 80; column < 1360; column += 97) EXPECT_NEAR(sheetPoint(sensor, column, 300.5).y, y, 1e-12);
}

TEST(StandardSensor, SeesEightyMillimetresAtThirtyDegrees) {
    const Sensor sensor = standardSensor();
    const auto& roi = sensor.roi;
    EXPECT_EQ(roi.Width, 1280);
    EXPECT_EQ(roi.Height, 1024);
    EXPECT_GT(roi.OffsetX, 0);
    EXPECT_GT(roi.OffsetY, 0);
    const double middleRow = roi.OffsetY + 0.5 * roi.Height;
    const double width =
        sheetPoint(sensor, roi.OffsetX + roi.Width - 1, middleRow).x - sheetPoint(sensor, roi.OffsetX, middleRow).x;
    EXPECT_NEAR(width, 80.0, 1.0);
    // Row 2 of the rotation is the direction of the light in the camera frame; the optical axis is (0, 0, 1).
    EXPECT_NEAR(std::acos(sensor.calibration.RT[8]) * 180.0 / 3.14159265358979, 30.0, 0.1);
}

TEST(StandardSensor, LooksThroughALensOfFiveCoefficients) {
    for (double coefficient : standardSensor().calibration.DistCoeffs) EXPECT_NE(coefficient, 0.0);
}

TEST(CurvedSheetSensor, BendsByMillimetresAndSharesTheCameraAndTheTransform) {
    const Sensor flat = standardSensor();
    const Sensor curved = curvedSheetSensor();
    for (int i = 0; i < 9; ++i) EXPECT_EQ(curved.calibration.CameraMatrix[i], flat.calibration.CameraMatrix[i]);
    for (int i = 0; i < 12; ++i) EXPECT_EQ(curved.calibration.RT[i], flat.calibration.RT[i]);
    EXPECT_TRUE(curved.curvedSheet);

    const double edge = sheetPoint(curved, 80.0, 540.0).y;
    const double middle = sheetPoint(curved, 720.0, 540.0).y;
    EXPECT_GT(std::fabs(edge - middle), 2.0);
}

TEST(CurvedSheetSensor, NeedsTheSmallerRootOfItsSurfaceEverywhere) {
    // The larger root of a s^2 + b s + c0 = 0 must lie beyond 3500 mm, where hosts take the smaller one.
    const Sensor sensor = curvedSheetSensor();
    const double* c = sensor.calibration.LaserPlane;
    for (int row = 0; row < kChipHeight; row += 27) {
        for (int column = 0; column < kChipWidth; column += 27) {
            const Point2d sight = lineOfSight(sensor.calibration, column, row);
            const double a = c[3] * sight.x * sight.x + c[4] * sight.x * sight.y + c[5] * sight.y * sight.y;
            const double b = c[1] * sight.x + c[2] * sight.y - 1.0;
            EXPECT_GT((std::sqrt(b * b - 4.0 * a * c[0]) - b) / (2.0 * a), 3500.0) << column << ", " << row;
        }
    }
}

TEST(WithRoi, ReplacesTheRegionAndNothingElse) {
    const Sensor sensor = scenes::withRoi(standardSensor(), 200, 300, 64, 32);
    EXPECT_EQ(sensor.roi.OffsetX, 200);
    EXPECT_EQ(sensor.roi.OffsetY, 300);
    EXPECT_EQ(sensor.roi.Width, 64);
    EXPECT_EQ(sensor.roi.Height, 32);
    EXPECT_EQ(sensor.tableDistance, standardSensor().tableDistance);
    EXPECT_EQ(sensor.calibration.LaserPlane[0], standardSensor().calibration.LaserPlane[0]);
}
