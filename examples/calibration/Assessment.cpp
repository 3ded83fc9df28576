#include "calibration/Assessment.h"

#include <Eigen/Core>
#include <algorithm>
#include <cmath>
#include <limits>
#include <memory>

#include "common/Failure.h"
#include "host/Chain.h"
#include "host/FrameSource.h"
#include "host/Settings.h"
#include "scenes/SensorGeometry.h"

namespace calibration {
namespace {

using KORVANELASERALGO::KorvaneLaserAlgo;
using KORVANELASERALGO::tagKorvaneLaserAlgoCalibrationInfo;
using KORVANELASERALGO::tagKorvaneLaserAlgoROIInfo;
using KORVANELASERALGO::tagKorvaneLaserPoint3d;

/// The view's profile as the library measures it.
host::Profile measuredProfile(tagKorvaneLaserAlgoROIInfo roi, tagKorvaneLaserAlgoCalibrationInfo record,
                              const std::string& conversion, const TargetView& view) {
    const auto mask = std::make_unique<bool[]>(view.found.size());
    std::copy(view.found.begin(), view.found.end(), mask.get());
    KorvaneLaserAlgo algo;
    algo.SetROIInfo(&roi);
    algo.SetCalibrationInfo(&record);
    host::Profile profile;
    if (conversion == "Cal3DPoint1")
        algo.Cal3DPoint1(mask.get(), view.undistorted, profile);
    else
        algo.Cal3DPoint2(mask.get(), view.undistorted, profile);
    return profile;
}

/// Inverse of `RT`.
Eigen::Vector3d toCameraFrame(const tagKorvaneLaserAlgoCalibrationInfo& record, const tagKorvaneLaserPoint3d& point) {
    using RowMajor = Eigen::Matrix<double, 3, 3, Eigen::RowMajor>;
    const Eigen::Map<const RowMajor> rotation(record.RT);
    const Eigen::Map<const Eigen::Vector3d> translation(record.RT + 9);
    return rotation.transpose() * (Eigen::Vector3d(point.x, point.y, point.z) - translation);
}

void requireAgreement(const tagKorvaneLaserPoint3d& measured, const tagKorvaneLaserPoint3d& exact,
                      const std::string& conversion) {
    constexpr double kRounding = 1e-3;  // mm; far more than the single precision of depths, far less than a wrong depth
    if (std::abs(measured.z - exact.z) < kRounding) return;
    throw examples::Failure(conversion + " does not measure on the fitted light surface: a line of sight meets it " +
                            "elsewhere within the depths 0 .. 3500 too, or nowhere");
}

ErrorFigures figuresOf(const std::vector<FieldPoint>& points, double FieldPoint::*error) {
    ErrorFigures figures;
    double sumOfSquares = 0.0;
    for (const FieldPoint& point : points) {
        sumOfSquares += point.*error * point.*error;
        figures.largest = std::max(figures.largest, std::abs(point.*error));
    }
    figures.rms = std::sqrt(sumOfSquares / static_cast<double>(points.size()));
    return figures;
}

Trend residualTrend(const std::vector<FieldPoint>& points) {
    constexpr int kDegree = 4;  // a bend of the sheet and its neighbours
    constexpr int kSteps = 100;
    Trend trend;
    const auto [first, last] = std::minmax_element(points.begin(), points.end(),
                                                   [](const FieldPoint& a, const FieldPoint& b) { return a.x < b.x; });
    trend.firstX = first->x;
    trend.lastX = last->x;
    trend.unit = std::max(std::abs(first->x), std::abs(last->x));  // keeps the powers of x within -1 .. 1

    std::vector<double> x;
    std::vector<double> residuals;
    for (const FieldPoint& point : points) {
        x.push_back(point.x / trend.unit);
        residuals.push_back(point.residual);
    }
    trend.coefficients = KorvaneLaserAlgo().polynomialFit(x, residuals, kDegree);

    double smallest = std::numeric_limits<double>::infinity();
    double largest = -smallest;
    for (int step = 0; step <= kSteps; ++step) {
        const double value = trend.at(trend.firstX + (trend.lastX - trend.firstX) * step / kSteps);
        smallest = std::min(smallest, value);
        largest = std::max(largest, value);
    }
    trend.range = largest - smallest;
    return trend;
}

}  // namespace

double Trend::at(double x) const {
    return KorvaneLaserAlgo().evaluatePolynomial(coefficients, x / unit);
}

FieldAssessment assessField(const scenes::Sensor& sensor, const tagKorvaneLaserAlgoCalibrationInfo& record,
                            const std::string& conversion, const std::vector<TargetView>& views) {
    scenes::Sensor fittedSensor = sensor;
    fittedSensor.calibration = record;
    fittedSensor.curvedSheet = conversion == "Cal3DPoint2";

    FieldAssessment assessment;
    assessment.smallestY = std::numeric_limits<double>::infinity();
    assessment.largestY = -assessment.smallestY;
    for (std::size_t number = 0; number < views.size(); ++number) {
        const TargetView& view = views[number];
        const host::Profile profile = measuredProfile(sensor.roi, record, conversion, view);
        for (std::size_t column = 0; column < profile.size(); ++column) {
            const tagKorvaneLaserPoint3d& point = profile[column];
            const bool isEmpty = point.x == 0.0 && point.y == 0.0 && point.z == 0.0;
            if (isEmpty) continue;
            const auto& pixel = view.imaged[column];
            requireAgreement(point, scenes::sheetPoint(fittedSensor, pixel.x, pixel.y), conversion);

            assessment.points.push_back({.view = number,
                                         .x = point.x,
                                         .plateHeight = view.pose.height + view.pose.slope * point.x,
                                         .residual = -view.plate.heightAbove(toCameraFrame(record, point)),
                                         .calibrationError = point.z - scenes::sheetPoint(sensor, pixel.x, pixel.y).z});
            assessment.smallestY = std::min(assessment.smallestY, point.y);
            assessment.largestY = std::max(assessment.largestY, point.y);
        }
    }
    assessment.residual = figuresOf(assessment.points, &FieldPoint::residual);
    assessment.calibrationError = figuresOf(assessment.points, &FieldPoint::calibrationError);
    assessment.trend = residualTrend(assessment.points);
    return assessment;
}

host::Accuracy measureGaugeBlock(const scenes::Sensor& sensor, const tagKorvaneLaserAlgoCalibrationInfo& record,
                                 const std::string& conversion, const std::string& method, std::uint32_t seed) {
    host::Settings settings;
    settings.roi = sensor.roi;
    settings.lineSelect = kLineSelect;
    settings.calibration = record;
    settings.chain.method = method;
    settings.chain.cal3d = conversion;
    host::Chain chain(settings);

    const scenes::Renderer renderer(sensor, scenes::makeScene("gauge-block"));
    host::Accuracy accuracy;
    for (int index = 0; index < kGaugeBlockFrames; ++index) {
        scenes::Shot shot;
        shot.frame = index;
        shot.seed = seed;
        scenes::Frame rendered = renderer.render(shot);
        host::SourceFrame frame;
        frame.image.pixels = std::move(rendered.pixels);
        accuracy.add(chain.run(frame, shot.exposure).unfiltered, rendered.truth);
    }
    return accuracy;
}

}  // namespace calibration
