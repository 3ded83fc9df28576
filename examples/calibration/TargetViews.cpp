#include "calibration/TargetViews.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdio>
#include <numbers>

#include "common/Failure.h"
#include "host/Chain.h"
#include "host/FrameSource.h"
#include "host/Settings.h"

namespace calibration {
namespace {

constexpr int kFirstFrame = 1000000;  // noise differs by frame; these are none that a part is measured in

using KORVANELASERALGO::KorvaneLaserAlgo;
using KORVANELASERALGO::tagKorvaneLaserAlgoCalibrationInfo;
using KORVANELASERALGO::tagKorvaneLaserPoint2d;

/// Equal steps of height; tilts in turn.
std::vector<PlatePose> plannedPoses(const TargetPlan& plan) {
    const double slope = std::tan(plan.tilt * std::numbers::pi / 180.0);
    const double turns[] = {0.0, slope, -slope};
    std::vector<PlatePose> poses;
    for (int view = 0; view < plan.views; ++view) {
        const double share = plan.views > 1 ? static_cast<double>(view) / (plan.views - 1) : 0.0;
        poses.push_back({plan.lowest + share * (plan.highest - plan.lowest), turns[view % 3]});
    }
    return poses;
}

/// The plate's plane, from the output frame (slope x + z = tableDistance - height) to the camera frame.
PlatePlane platePlane(const scenes::Sensor& sensor, const PlatePose& pose) {
    using RowMajor = Eigen::Matrix<double, 3, 3, Eigen::RowMajor>;
    const Eigen::Map<const RowMajor> rotation(sensor.calibration.RT);
    const Eigen::Map<const Eigen::Vector3d> translation(sensor.calibration.RT + 9);

    // z points away from the sensor, so the normal towards the sensor has a negative z.
    const Eigen::Vector3d upwards(-pose.slope, 0.0, -1.0);
    const double length = upwards.norm();
    const Eigen::Vector3d normal = upwards / length;
    const double distance = -(sensor.tableDistance - pose.height) / length;
    return {rotation.transpose() * normal, distance - normal.dot(translation)};
}

scenes::Scene plateScene(const PlatePose& pose, double noise) {
    constexpr double kReach = 100.0;  // mm of x; more than the sensor sees
    scenes::Scene scene{};
    scene.name = "plate";
    scene.height = [pose](double x, double) { return pose.height + pose.slope * x; };
    scene.look.noise = noise;
    scene.maximumHeight = pose.height + std::abs(pose.slope) * kReach;
    return scene;
}

/// A plate that leaves the field would go unnoticed in the fit, so every view must show the stripe in most columns.
void requireStripe(const TargetView& view, std::size_t number) {
    const auto columns = static_cast<std::ptrdiff_t>(view.found.size());
    const std::ptrdiff_t found = std::count(view.found.begin(), view.found.end(), true);
    if (2 * found >= columns) return;
    char text[160];
    std::snprintf(text, sizeof text, "view %zu, plate at %g mm: the stripe was found in %td of %td columns only",
                  number, view.pose.height, found, columns);
    throw examples::Failure(text);
}

}  // namespace

std::vector<TargetView> takeViews(const scenes::Sensor& sensor, const TargetPlan& plan) {
    // Without a calibration the host's chain ends after the extraction.
    host::Settings settings;
    settings.roi = sensor.roi;
    settings.lineSelect = kLineSelect;
    settings.chain.method = plan.method;
    host::Chain extraction(settings);

    KorvaneLaserAlgo lens;
    tagKorvaneLaserAlgoCalibrationInfo calibration = sensor.calibration;
    lens.SetCalibrationInfo(&calibration);

    std::vector<TargetView> views;
    for (const PlatePose& pose : plannedPoses(plan)) {
        scenes::Shot shot;
        shot.frame = kFirstFrame + static_cast<int>(views.size());
        shot.seed = plan.seed;
        scenes::Frame rendered = scenes::Renderer(sensor, plateScene(pose, plan.noise)).render(shot);
        host::SourceFrame frame;
        frame.image.width = sensor.roi.Width;
        frame.image.height = sensor.roi.Height;
        frame.image.pixels = std::move(rendered.pixels);

        host::ChainResult extracted = extraction.run(frame, shot.exposure);
        TargetView view{pose, platePlane(sensor, pose), std::move(extracted.found), std::move(extracted.points), {}};
        requireStripe(view, views.size() + 1);
        view.undistorted = view.imaged;
        lens.undistortPoints2(view.undistorted);
        views.push_back(std::move(view));
    }
    return views;
}

std::vector<Eigen::Vector3d> sheetPoints(const std::vector<TargetView>& views,
                                         const tagKorvaneLaserAlgoCalibrationInfo& lens) {
    const double fx = lens.CameraMatrix[0];
    const double cx = lens.CameraMatrix[2];
    const double fy = lens.CameraMatrix[4];
    const double cy = lens.CameraMatrix[5];

    std::vector<Eigen::Vector3d> points;
    for (const TargetView& view : views)
        for (std::size_t column = 0; column < view.found.size(); ++column) {
            if (!view.found[column]) continue;
            const tagKorvaneLaserPoint2d& pixel = view.undistorted[column];
            const Eigen::Vector3d sight((pixel.x - cx) / fx, (pixel.y - cy) / fy, 1.0);
            points.emplace_back(view.plate.distance / view.plate.normal.dot(sight) * sight);
        }
    return points;
}

}  // namespace calibration
