// One sensor stream: the loop that every host has. It scans a stepped gauge block and prints the heights of its steps.

#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <exception>
#include <memory>
#include <vector>

#include "KorvaneLaserAlgo.h"
#include "scenes/SimulatedSensor.h"

using namespace KORVANELASERALGO;

namespace {

constexpr int kFrames = 10;

/// The mean height of what was measured between two positions along the profile.
struct Step {
    double left;   // mm
    double right;  // mm
    double sum = 0.0;
    int count = 0;

    void add(const tagKorvaneLaserPoint3d& point, double tableDistance) {
        if (point.x <= left || point.x >= right) return;
        sum += tableDistance - point.z;  // z points away from the sensor
        ++count;
    }
    double height() const { return sum / count; }
};

void measure() {
    // The simulated sensor stands for the camera and its calibration file.
    scenes::Sensor sensor = scenes::standardSensor();
    const scenes::Renderer camera(sensor, scenes::makeScene("gauge-block"));
    Step steps[3] = {{.left = -28.0, .right = -12.0}, {.left = -8.0, .right = 8.0}, {.left = 12.0, .right = 28.0}};

    // [stream]
    KorvaneLaserAlgo algo;  // one object per sensor stream
    algo.SetROIInfo(&sensor.roi);
    algo.SetCalibrationInfo(&sensor.calibration);

    const auto width = static_cast<std::size_t>(sensor.roi.Width);
    const auto height = static_cast<std::size_t>(sensor.roi.Height);
    const std::unique_ptr<bool[]> mask(new bool[width]);  // std::vector<bool> has no bool*
    std::vector<tagKorvaneLaserPoint2d> points;           // these two are reused from frame to frame
    std::vector<tagKorvaneLaserPoint3d> profile;

    for (int i = 0; i < kFrames; ++i) {
        std::vector<unsigned char> frame = camera.render({.frame = i}).pixels;
        if (frame.size() != width * height) continue;  // the library cannot see it

        std::fill_n(mask.get(), width, false);                  // the methods only ever write true
        algo.Cal2DPoint1(mask.get(), frame.data(), points, 0);  // one 2D point per column
        algo.undistortPoints2(points);                          // lens distortion removed
        algo.Cal3DPoint1(mask.get(), points, profile);          // one 3D point per column
        algo.medianfilter1(profile, 2);

        for (const tagKorvaneLaserPoint3d& point : profile) {
            if (point.x == 0.0 && point.y == 0.0 && point.z == 0.0) continue;  // nothing measured in this column
            for (Step& step : steps) step.add(point, sensor.tableDistance);
        }
    }
    // [/stream]

    std::printf("steps: %.3f, %.3f and %.3f mm\n", steps[0].height(), steps[1].height(), steps[2].height());
}

}  // namespace

int main() {
    try {
        measure();
    } catch (const std::exception& error) {  // std::bad_alloc, where memory ends
        std::fprintf(stderr, "%s\n", error.what());
        return 1;
    }
}
