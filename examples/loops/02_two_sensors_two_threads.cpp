// Two sensors, a thread each: one object per stream, and nothing shared. Each sensor reads out another half of the chip
// and measures the step of the gauge block that it sees.

#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <exception>
#include <functional>
#include <memory>
#include <thread>
#include <vector>

#include "KorvaneLaserAlgo.h"
#include "scenes/SimulatedSensor.h"

using namespace KORVANELASERALGO;

namespace {

constexpr int kFrames = 5;

/// Everything that one stream needs. No object of the library, no buffer is shared between two of them.
struct Stream {
    scenes::Sensor sensor;
    double left;   // mm; the step that is measured lies between left and right
    double right;  // mm
    double height = 0.0;
    std::exception_ptr failure = nullptr;
};

void measure(Stream& stream) {
    KorvaneLaserAlgo algo;
    algo.SetROIInfo(&stream.sensor.roi);
    algo.SetCalibrationInfo(&stream.sensor.calibration);

    const auto width = static_cast<std::size_t>(stream.sensor.roi.Width);
    const std::unique_ptr<bool[]> mask(new bool[width]);
    std::vector<tagKorvaneLaserPoint2d> points;
    std::vector<tagKorvaneLaserPoint3d> profile;

    const scenes::Renderer camera(stream.sensor, scenes::makeScene("gauge-block"));
    double sum = 0.0;
    int count = 0;
    for (int i = 0; i < kFrames; ++i) {
        std::vector<unsigned char> frame = camera.render({.frame = i}).pixels;
        std::fill_n(mask.get(), width, false);
        algo.Cal2DPoint1(mask.get(), frame.data(), points, 0);  // points in pixels of the full sensor, both streams
        algo.undistortPoints2(points);
        algo.Cal3DPoint1(mask.get(), points, profile);
        for (const tagKorvaneLaserPoint3d& point : profile) {
            if (point.x == 0.0 || point.x <= stream.left || point.x >= stream.right) continue;
            sum += stream.sensor.tableDistance - point.z;
            ++count;
        }
    }
    stream.height = sum / count;
}

// [thread]
/// What a thread runs: an exception that leaves a thread ends the process, so it is kept for later.
void run(Stream& stream) {
    try {
        measure(stream);
    } catch (...) {
        stream.failure = std::current_exception();
    }
}
// [/thread]

}  // namespace

int main() {
    const scenes::Sensor whole = scenes::standardSensor();
    constexpr int kHalf = scenes::kChipWidth / 2;
    Stream streams[2] = {
        {.sensor = scenes::withRoi(whole, 0, 0, kHalf, scenes::kChipHeight), .left = -28.0, .right = -12.0},
        {.sensor = scenes::withRoi(whole, kHalf, 0, kHalf, scenes::kChipHeight), .left = 12.0, .right = 28.0}};

    std::thread first(run, std::ref(streams[0]));
    std::thread second(run, std::ref(streams[1]));
    first.join();
    second.join();
    for (const Stream& stream : streams) {
        if (stream.failure) return 1;
        std::printf("columns from %d on: %.2f mm\n", stream.sensor.roi.OffsetX, stream.height);
    }
}
