// A sensor whose numbers can be worked out by hand, and surfaces for it.

#ifndef KORVANE_TESTS_SCENES_HANDSENSOR_H
#define KORVANE_TESTS_SCENES_HANDSENSOR_H

#include <functional>
#include <utility>

#include "scenes/SimulatedSensor.h"

/// No distortion, focal length 1000 pixels, principal point (320, 100). The sheet Z = 300 + 0.75 Y has s = 1.25 and the
/// normal (0, 0.6, -0.8), so the output frame is x = X, y = 0.6 Y - 0.8 Z + 400, z = 0.8 Y + 0.6 Z. On the sheet this
/// is y = 160 and z = 180 + 1.25 Y; the camera stands at (0, 400, 0).
///
/// A surface of height 0 lies at z = 230, so at Y = 40, Z = 330 and row 100 + 1000 * 40 / 330.
inline scenes::Sensor handSensor() {
    scenes::Sensor sensor{};
    sensor.roi = {.OffsetX = 0, .OffsetY = 0, .Width = 640, .Height = 400};
    sensor.calibration = {.CameraMatrix = {1000.0, 0.0, 320.0, 0.0, 1000.0, 100.0, 0.0, 0.0, 1.0},
                          .DistCoeffs = {},
                          .LaserPlane = {300.0, 0.0, 0.75, 0.0, 0.0, 0.0},
                          .RT = {1.0, 0.0, 0.0, 0.0, 0.6, -0.8, 0.0, 0.8, 0.6, 0.0, 400.0, 0.0}};
    sensor.laserSourceX = 0.0;
    sensor.laserSourceZ = 0.0;
    sensor.tableDistance = 230.0;
    return sensor;
}
inline constexpr double kHandTableRow = 100.0 + 40000.0 / 330.0;

/// A scene without noise.
inline scenes::Scene cleanScene(std::function<double(double x, double travel)> height) {
    scenes::Scene scene;
    scene.name = "test";
    scene.height = std::move(height);
    scene.travelPerFrame = 1.0;
    scene.look.noise = 0.0;
    return scene;
}
inline scenes::Scene cleanTable() {
    return cleanScene([](double, double) { return 0.0; });
}

inline int pixelOf(const scenes::Frame& frame, const scenes::Sensor& sensor, int row, int column) {
    return frame.pixels.at(static_cast<std::size_t>(row) * static_cast<std::size_t>(sensor.roi.Width) +
                           static_cast<std::size_t>(column));
}

#endif  // KORVANE_TESTS_SCENES_HANDSENSOR_H
