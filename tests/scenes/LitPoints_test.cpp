#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "HandSensor.h"
#include "scenes/SensorGeometry.h"

using scenes::Frame;
using scenes::Renderer;
using scenes::Scene;
using scenes::Sensor;
using scenes::TruePoint;

namespace {

Frame render(const Sensor& sensor, const Scene& scene, double travel = 0.0) {
    return Renderer(sensor, scene).render({.travelOffset = travel});
}

/// A block without end along the travel, from x = -10 to x = 10, 20 mm high, for the hand sensor.
Scene block() {
    return cleanScene([](double x, double) { return x >= -10.0 && x < 10.0 ? 20.0 : 0.0; });
}

/// The x that a column of the hand sensor sees on the table: 330 (column - 320) / 1000.
double tableX(int column) {
    return 0.33 * (column - 320);
}

}  // namespace

TEST(Truth, OfAFlatTableIsTheHandComputedRowAndPoint) {
    const Frame frame = render(handSensor(), cleanTable());
    ASSERT_EQ(frame.truth.size(), 640U);
    for (int column = 0; column < 640; ++column) {
        const TruePoint& truth = frame.truth[static_cast<std::size_t>(column)];
        ASSERT_TRUE(truth.visible);
        EXPECT_NEAR(truth.row, kHandTableRow, 1e-9);
        EXPECT_NEAR(truth.point.x, tableX(column), 1e-9);
        EXPECT_NEAR(truth.point.y, 160.0, 1e-9);
        EXPECT_NEAR(truth.point.z, 230.0, 1e-9);
    }
}

TEST(Truth, OfARaisedSurfaceLiesHigherInTheFrame) {
    // Height 25: z = 205, Y = 20, Z = 315, row 100 + 20000 / 315.
    const Frame frame = render(handSensor(), cleanScene([](double, double) { return 25.0; }));
    ASSERT_TRUE(frame.truth[420].visible);
    EXPECT_NEAR(frame.truth[420].row, 100.0 + 20000.0 / 315.0, 1e-9);
    EXPECT_NEAR(frame.truth[420].point.x, 31.5, 1e-9);
    EXPECT_NEAR(frame.truth[420].point.z, 205.0, 1e-9);
}

TEST(Truth, OfASlopeLiesWhereLineOfSightAndSlopeMeet) {
    // Height 10 + 0.2 x. Column 420 sees X = 0.1 Z on the sheet, Z = 300 + 0.75 Y, z = 180 + 1.25 Y:
    // 180 + 1.25 Y = 230 - 10 - 0.02 (300 + 0.75 Y), so 1.265 Y = 34.
    const Frame frame = render(handSensor(), cleanScene([](double x, double) { return 10.0 + 0.2 * x; }));
    const double Y = 34.0 / 1.265;
    const double Z = 300.0 + 0.75 * Y;
    ASSERT_TRUE(frame.truth[420].visible);
    EXPECT_NEAR(frame.truth[420].row, 100.0 + 1000.0 * Y / Z, 1e-9);
    EXPECT_NEAR(frame.truth[420].point.x, 0.1 * Z, 1e-9);
    EXPECT_NEAR(frame.truth[420].point.z, 180.0 + 1.25 * Y, 1e-9);
}

TEST(Truth, ProjectsBackToItsColumnAndRowAndLiesOnTheSurface) {
    for (const Sensor& sensor : {scenes::standardSensor(), scenes::curvedSheetSensor()}) {
        for (const char* name : {"gauge-block", "weld-bead", "hemisphere", "v-groove", "hard"}) {
            const Scene scene = scenes::makeScene(name);
            const double travel = 3.0;
            const Frame frame = render(sensor, scene, travel);
            const double* m = sensor.calibration.RT;
            int seen = 0;
            for (int column = 0; column < sensor.roi.Width; ++column) {
                const TruePoint& truth = frame.truth[static_cast<std::size_t>(column)];
                if (!truth.visible) continue;
                ++seen;
                const double x = truth.point.x - m[9];
                const double y = truth.point.y - m[10];
                const double z = truth.point.z - m[11];
                const auto pixel = scenes::project(sensor.calibration, m[0] * x + m[3] * y + m[6] * z,
                                                   m[1] * x + m[4] * y + m[7] * z, m[2] * x + m[5] * y + m[8] * z);
                EXPECT_NEAR(pixel.x, sensor.roi.OffsetX + column, 1e-9);
                EXPECT_NEAR(pixel.y, truth.row, 1e-9);
                const double ahead = truth.point.y - scenes::sheetY(sensor);
                EXPECT_NEAR(truth.point.z, sensor.tableDistance - scene.height(truth.point.x, travel + ahead), 1e-6);
            }
            EXPECT_GT(seen, 1100) << name;
        }
    }
}

TEST(Truth, OfABentSheetTakesTheSurfaceWhereTheSheetIs) {
    // The surface rises with the travel, so it is higher where the sheet bends away from its plane.
    const Sensor sensor = scenes::curvedSheetSensor();
    const Frame frame = render(sensor, cleanScene([](double, double travel) { return 5.0 + 0.5 * travel; }), 2.0);
    const TruePoint& edge = frame.truth.front();
    ASSERT_TRUE(edge.visible);
    const double ahead = edge.point.y - scenes::sheetY(sensor);
    EXPECT_GT(std::fabs(ahead), 1.0);
    EXPECT_NEAR(edge.point.z, sensor.tableDistance - 5.0 - 0.5 * (2.0 + ahead), 1e-9);
}

TEST(Truth, IsAllZeroWhereNothingIsVisible) {
    const Frame frame = render(handSensor(), cleanScene([](double, double) { return -1000.0; }));
    for (const TruePoint& truth : frame.truth) {
        EXPECT_FALSE(truth.visible);
        EXPECT_EQ(truth.row, 0.0);
        EXPECT_EQ(truth.point.x, 0.0);
        EXPECT_EQ(truth.point.y, 0.0);
        EXPECT_EQ(truth.point.z, 0.0);
    }
}

TEST(Truth, DoesNotDependOnTheRegionThatIsReadOut) {
    const Sensor whole = scenes::standardSensor();
    const Sensor part = scenes::withRoi(whole, 500, 400, 300, 200);
    const Scene scene = scenes::makeScene("v-groove");
    const Frame wholeFrame = render(whole, scene);
    const Frame partFrame = render(part, scene);
    ASSERT_EQ(partFrame.truth.size(), 300U);
    for (std::size_t column = 0; column < 300; ++column) {
        const TruePoint& expected = wholeFrame.truth[column + 500 - 80];
        ASSERT_TRUE(partFrame.truth[column].visible);
        EXPECT_NEAR(partFrame.truth[column].row, expected.row, 1e-9);
        EXPECT_NEAR(partFrame.truth[column].point.z, expected.point.z, 1e-9);
    }
}

TEST(Truth, IsNotVisibleWhereTheStripeLeavesTheRegion) {
    Sensor sensor = handSensor();
    sensor.roi.Height = static_cast<int>(kHandTableRow);  // the last row lies just above the stripe's centre
    const Frame frame = render(sensor, cleanTable());
    EXPECT_FALSE(frame.truth[320].visible);
    // Its flank still shows: 1.2 rows from the centre, background 8.
    EXPECT_GT(pixelOf(frame, sensor, sensor.roi.Height - 1, 320), 100);
}

TEST(Shadow, OfABlockHidesTheTableBehindIt) {
    // Light from (-60, 0) over the edge (10, 210) reaches the table, z = 230, at x = -60 + 70 * 230 / 210 = 16.667.
    // The camera, above x = 0, would see the table from x = 10 * 230 / 210 = 10.952 on.
    Sensor sensor = handSensor();
    sensor.laserSourceX = -60.0;
    const double shadowEnd = -60.0 + 70.0 * 230.0 / 210.0;
    const Frame frame = render(sensor, block());
    int inShadow = 0;
    for (int column = 0; column < 640; ++column) {
        const TruePoint& truth = frame.truth[static_cast<std::size_t>(column)];
        const double x = tableX(column);
        if (x > 11.0 && x < shadowEnd - 0.05) {
            EXPECT_FALSE(truth.visible) << "x = " << x;
            ++inShadow;
        }
        if (x > shadowEnd + 0.05 || x < -11.0) {
            EXPECT_TRUE(truth.visible) << "x = " << x;
        }
    }
    EXPECT_GT(inShadow, 10);
}

TEST(Shadow, GrowsOnTheSideThatTheLightDoesNotReach) {
    Sensor sensor = handSensor();
    sensor.laserSourceX = 60.0;
    const double shadowEnd = 60.0 - 70.0 * 230.0 / 210.0;
    const Frame frame = render(sensor, block());
    for (int column = 0; column < 640; ++column) {
        const double x = tableX(column);
        const bool hidden = x > shadowEnd + 0.05 && x < -11.0;
        if (hidden) {
            EXPECT_FALSE(frame.truth[static_cast<std::size_t>(column)].visible) << "x = " << x;
        }
    }
    EXPECT_TRUE(frame.truth[320 + 34].visible) << "x = 11.2, lit and in view";
}

TEST(Occlusion, HidesThePointsBehindAWallTowardTheCamera) {
    // The camera at y = 400 sees the table at y = 160, z = 230 past a wall of 20 mm that is 20 * 240 / 230 = 20.87 mm
    // ahead, and not when the wall is nearer. The light falls freely either way.
    const auto wall = [](double distance) {
        return cleanScene([distance](double, double travel) { return travel >= distance ? 20.0 : 0.0; });
    };
    EXPECT_FALSE(render(handSensor(), wall(20.7)).truth[320].visible);
    EXPECT_TRUE(render(handSensor(), wall(21.0)).truth[320].visible);
    EXPECT_TRUE(render(handSensor(), wall(5.0), 5.0).truth[320].visible) << "on the wall itself";
}

TEST(Truth, OfAWallThatFacesCameraAndLightIsNoPoint) {
    // The columns that look at the wall at x = 20 show no stripe: from X / Z = 20 / 330 on the table to 20 / 318 at the
    // top (z = 210, Y = 24, Z = 318), that is columns 320 + 60.6 to 320 + 62.9.
    const Frame frame = render(handSensor(), cleanScene([](double x, double) { return x >= 20.0 ? 20.0 : 0.0; }));
    for (int column = 300; column < 640; ++column) {
        const TruePoint& truth = frame.truth[static_cast<std::size_t>(column)];
        EXPECT_EQ(truth.visible, column <= 380 || column >= 383) << "column " << column;
        if (truth.visible) {
            EXPECT_NEAR(truth.point.z, column <= 380 ? 230.0 : 210.0, 1e-9) << "column " << column;
        }
    }
}

TEST(Truth, AtAnEdgeAcrossTheTravelDoesNotDependOnRounding) {
    // The whole of a flat sheet lies at one travel: an edge there is met by all columns or by none.
    const Scene scene = cleanScene([](double, double travel) { return travel >= 7.0 ? 6.0 : 0.0; });
    const Sensor sensor = scenes::standardSensor();
    const Frame frame = render(sensor, scene, 7.0);
    for (const TruePoint& truth : frame.truth) {
        ASSERT_TRUE(truth.visible);
        EXPECT_NEAR(truth.point.z, sensor.tableDistance - 6.0, 1e-9);
    }
}
