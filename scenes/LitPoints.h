/// @file LitPoints.h
/// @brief Which points of the surface the camera sees lit, column by column.

#ifndef KORVANE_SCENES_LITPOINTS_H
#define KORVANE_SCENES_LITPOINTS_H

#include <vector>

#include "scenes/SimulatedSensor.h"

namespace scenes {

/// A surface point in the light, and the row in which the camera sees it.
struct LitPoint {
    double row;                                      ///< full-sensor pixels, as imaged
    KORVANELASERALGO::tagKorvaneLaserPoint3d point;  ///< output frame, mm
};

/// Finds where a surface cuts the light sheet. What does not depend on the surface is computed once.
class LitPointFinder {
public:
    explicit LitPointFinder(const Sensor& sensor);

    /// The points of a column (of the ROI) that are lit and in view, from the top row to the bottom row.
    /// @param scene surface
    /// @param travel mm
    /// @param found replaced
    void find(int column, const Scene& scene, double travel, std::vector<LitPoint>& found) const;

private:
    double surfaceHeight(double x, double y, const Scene& scene, double travel) const;
    double depthBelowSurface(const KORVANELASERALGO::tagKorvaneLaserPoint3d& point, const Scene& scene,
                             double travel) const;
    bool inView(const KORVANELASERALGO::tagKorvaneLaserPoint3d& point, const Scene& scene, double travel) const;

    Sensor sensor_;
    double sheetY_;
    int samplesPerColumn_;
    std::vector<KORVANELASERALGO::tagKorvaneLaserPoint3d> samples_;  ///< sheet points, column by column
};

}  // namespace scenes

#endif  // KORVANE_SCENES_LITPOINTS_H
