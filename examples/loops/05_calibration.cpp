// Calibrating with the library's two tools: CalRT makes the transform to the output frame from the light plane, and
// polynomialFit finds from plates of known height what height a measured z means.

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdio>
#include <exception>
#include <memory>
#include <stdexcept>
#include <vector>

#include "KorvaneLaserAlgo.h"
#include "scenes/SimulatedSensor.h"

using namespace KORVANELASERALGO;

namespace {

/// The mean point of a level plate of the given height.
tagKorvaneLaserPoint3d measurePlate(KorvaneLaserAlgo& algo, const scenes::Sensor& sensor, double height) {
    scenes::Scene plate = scenes::makeScene("gauge-block");
    plate.height = [height](double, double) { return height; };
    std::vector<unsigned char> frame = scenes::Renderer(sensor, plate).render({}).pixels;

    const std::unique_ptr<bool[]> mask(new bool[static_cast<std::size_t>(sensor.roi.Width)]());  // (): all false
    std::vector<tagKorvaneLaserPoint2d> points;
    std::vector<tagKorvaneLaserPoint3d> profile;
    algo.Cal2DPoint1(mask.get(), frame.data(), points, 0);
    algo.undistortPoints2(points);
    algo.Cal3DPoint1(mask.get(), points, profile);

    tagKorvaneLaserPoint3d sum{};
    double count = 0.0;
    for (const tagKorvaneLaserPoint3d& point : profile) {
        if (point.x == 0.0 && point.y == 0.0 && point.z == 0.0) continue;
        sum = {.x = sum.x + point.x, .y = sum.y + point.y, .z = sum.z + point.z};
        ++count;
    }
    return {.x = sum.x / count, .y = sum.y / count, .z = sum.z / count};
}

// [plane]
/// CalRT ends the process for a plane whose normal is the y axis already, and divides by c2: look before the call.
void checkPlane(const double* plane) {
    constexpr double kSteepest = 1e6;  // far beyond every real sensor, and far below where CalRT ends the process
    const bool finite = std::isfinite(plane[0]) && std::isfinite(plane[1]) && std::isfinite(plane[2]);
    if (!finite || plane[2] == 0.0 || std::fabs(plane[1]) > kSteepest || std::fabs(plane[2]) > kSteepest)
        throw std::invalid_argument("not a light plane that CalRT can align");
}
// [/plane]

void calibrate() {
    scenes::Sensor sensor = scenes::standardSensor();
    tagKorvaneLaserAlgoCalibrationInfo calibration = sensor.calibration;  // as a file may hold it, still without RT
    std::fill_n(calibration.RT, 12, 0.0);

    // [calibrate]
    KorvaneLaserAlgo algo;
    checkPlane(calibration.LaserPlane);
    algo.CalRT(calibration.LaserPlane, calibration.RT);  // the light plane becomes a plane of constant y
    algo.SetROIInfo(&sensor.roi);
    algo.SetCalibrationInfo(&calibration);

    const std::vector<double> heights{2.0, 8.0, 14.0, 20.0};  // mm above the table: four plates
    std::vector<double> z(heights.size());
    for (std::size_t i = 0; i < z.size(); ++i) z[i] = measurePlate(algo, sensor, heights[i]).z;
    const std::vector<double> line = algo.polynomialFit(z, heights, 1);  // height = line[0] + line[1] * z
    // [/calibrate]

    const tagKorvaneLaserPoint3d plate = measurePlate(algo, sensor, 11.0);
    std::printf("table at z = %.1f mm, slope %.3f\n", line[0], line[1]);
    std::printf("a plate of 11 mm: %.2f mm, at y = %.3f mm\n", algo.evaluatePolynomial(line, plate.z), plate.y);
}

}  // namespace

int main() {
    try {
        calibrate();
    } catch (const std::exception& error) {
        std::fprintf(stderr, "%s\n", error.what());
        return 1;
    }
}
