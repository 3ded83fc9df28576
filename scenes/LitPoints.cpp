// Along a column of the image, the lines of sight meet the light sheet in a curve. Where that curve passes from above
// the surface to below it, the surface is lit, unless something shades the point or hides it from the camera.

#include "scenes/LitPoints.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

#include "scenes/SensorGeometry.h"

namespace scenes {

namespace {

using Point3d = KORVANELASERALGO::tagKorvaneLaserPoint3d;

constexpr int kSampleRows = 8;   // rows between the samples of the sheet; about 1 mm of height
constexpr int kMarginRows = 40;  // rows beyond the ROI; the flank of a wide stripe may still reach into it from there

/// First and last sampled row of the full sensor.
double sampledRow(const Sensor& sensor, int sample) {
    return static_cast<double>(sensor.roi.OffsetY) - kMarginRows + kSampleRows * static_cast<double>(sample);
}

}  // namespace

LitPointFinder::LitPointFinder(const Sensor& sensor) : sensor_(sensor), sheetY_(sheetY(sensor)) {
    const int width = std::max(sensor.roi.Width, 0);
    const int rows = std::max(sensor.roi.Height, 0) + 2 * kMarginRows;
    samplesPerColumn_ = rows / kSampleRows + 2;
    samples_.reserve(static_cast<std::size_t>(width) * static_cast<std::size_t>(samplesPerColumn_));
    for (int column = 0; column < width; ++column)
        for (int sample = 0; sample < samplesPerColumn_; ++sample)
            samples_.push_back(sheetPoint(sensor, sensor.roi.OffsetX + column, sampledRow(sensor, sample)));
}

/// Height of the surface at a place of the output frame, mm above the table.
double LitPointFinder::surfaceHeight(double x, double y, const Scene& scene, double travel) const {
    // All points of a flat sheet have one y; its rounding must not decide on which side of an edge they lie.
    constexpr double kRounding = 1e-9;  // mm
    const double ahead = y - sheetY_;
    return scene.height(x, std::fabs(ahead) <= kRounding ? travel : travel + ahead);
}

/// How far a point lies below the surface, mm; negative above it.
double LitPointFinder::depthBelowSurface(const Point3d& point, const Scene& scene, double travel) const {
    return point.z - (sensor_.tableDistance - surfaceHeight(point.x, point.y, scene, travel));
}

/// Whether the surface point is lit and in view: nothing stands between it and the laser, or between it and the camera.
bool LitPointFinder::inView(const Point3d& point, const Scene& scene, double travel) const {
    constexpr double kStep = 0.1;  // mm of height between the looks along the way

    const double* translation = sensor_.calibration.RT + 9;
    // The light falls in the sheet; where the sheet is bent, it keeps the point's own y.
    const Point3d laser = {.x = sensor_.laserSourceX, .y = point.y, .z = sensor_.laserSourceZ};
    const Point3d camera = {.x = translation[0], .y = translation[1], .z = translation[2]};

    const double height = sensor_.tableDistance - point.z;
    for (const Point3d& goal : {laser, camera}) {
        const double goalHeight = sensor_.tableDistance - goal.z;
        const double top = std::min(scene.maximumHeight, goalHeight);
        for (int look = 1;; ++look) {
            const double lookHeight = height + kStep * look;
            if (lookHeight >= top) break;
            const double share = (lookHeight - height) / (goalHeight - height);
            const double x = point.x + share * (goal.x - point.x);
            const double y = point.y + share * (goal.y - point.y);
            if (surfaceHeight(x, y, scene, travel) > lookHeight) return false;
        }
    }
    return true;
}

void LitPointFinder::find(int column, const Scene& scene, double travel, std::vector<LitPoint>& found) const {
    constexpr int kMostSteps = 200;
    constexpr double kOnSurface = 1e-12;  // mm; where a root is as good as doubles allow
    constexpr double kSameRow = 1e-11;    // rows; where a bracket cannot shrink any further
    constexpr double kContinuous = 1e-6;  // mm; a larger step within one and the same row is a wall
    found.clear();

    const double sensorColumn = static_cast<double>(sensor_.roi.OffsetX) + column;
    const Point3d* samples =
        samples_.data() + static_cast<std::size_t>(column) * static_cast<std::size_t>(samplesPerColumn_);
    double nextDepth = depthBelowSurface(samples[0], scene, travel);
    for (int sample = 1; sample < samplesPerColumn_; ++sample) {
        double lowDepth = nextDepth;
        double highDepth = nextDepth = depthBelowSurface(samples[sample], scene, travel);
        if ((lowDepth < 0.0) == (highDepth < 0.0)) continue;

        // Close in on the root by the secant of the bracket; every third step halves it, which walls need.
        double lowRow = sampledRow(sensor_, sample - 1);
        double highRow = sampledRow(sensor_, sample);
        LitPoint candidate{};
        double depth = 0.0;
        for (int step = 1; step <= kMostSteps; ++step) {
            const double secant = lowRow + (highRow - lowRow) * (lowDepth / (lowDepth - highDepth));
            candidate.row = step % 3 == 0 ? lowRow + 0.5 * (highRow - lowRow) : secant;
            candidate.point = sheetPoint(sensor_, sensorColumn, candidate.row);
            depth = depthBelowSurface(candidate.point, scene, travel);
            if (std::fabs(depth) <= kOnSurface || highRow - lowRow <= kSameRow) break;
            if ((depth < 0.0) == (lowDepth < 0.0)) {
                lowRow = candidate.row;
                lowDepth = depth;
            } else {
                highRow = candidate.row;
                highDepth = depth;
            }
        }
        if (std::fabs(depth) <= kContinuous && inView(candidate.point, scene, travel)) found.push_back(candidate);
    }
}

}  // namespace scenes
