#include "host/Pictures.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdio>
#include <limits>
#include <string>
#include <utility>

#include "common/Measured.h"
#include "common/Plot.h"

namespace host {
namespace {

using examples::Axis;
using examples::ColourImage;
using examples::Curve;
using examples::isMeasured;
using examples::Panel;
namespace colours = examples::colours;

constexpr double kNothing = std::numeric_limits<double>::quiet_NaN();

// The picture, in pixels.
constexpr int kWidth = 1200;
constexpr int kHeightAlone = 560;
constexpr int kHeightWithError = 760;
constexpr int kLeft = 90;
constexpr int kRight = 1175;
constexpr int kTop = 45;
constexpr int kBottomMargin = 70;
constexpr int kErrorTop = 535;
constexpr int kErrorBottom = kHeightWithError - kBottomMargin;
constexpr int kProfileBottom = 455;  // above the error

constexpr double kLeastRange = 0.2;           // length units; a flat surface shall look flat
constexpr double kMicrometres = 1000.0;       // in a millimetre
constexpr double kLeastErrorRange = 10.0;     // micrometres
constexpr double kErrorRangeInMedians = 6.0;  // the error axis shows this many median errors to either side
const char* const kMicro = "\xC2\xB5m";       // micrometres

double heightOf(double z, std::optional<double> tableDistance) {
    return tableDistance ? *tableDistance - z : z;
}

Curve profileCurve(const Profile& profile, std::optional<double> tableDistance) {
    Curve curve;
    for (const auto& point : profile) {
        curve.x.push_back(isMeasured(point) ? point.x : kNothing);
        curve.y.push_back(isMeasured(point) ? heightOf(point.z, tableDistance) : kNothing);
    }
    return curve;
}

Curve truthCurve(const std::vector<scenes::TruePoint>& truth, double tableDistance) {
    Curve curve;
    for (const scenes::TruePoint& column : truth) {
        curve.x.push_back(column.visible ? column.point.x : kNothing);
        curve.y.push_back(column.visible ? tableDistance - column.point.z : kNothing);
    }
    curve.label = "true surface";
    curve.colour = colours::kGrey;
    curve.width = 5.0;  // a band behind the measured line
    return curve;
}

/// Height errors in micrometres: positive where the surface was measured too high.
Curve errorCurve(const Profile& profile, const std::vector<scenes::TruePoint>& truth) {
    Curve curve;
    for (std::size_t i = 0; i < profile.size(); ++i) {
        const bool comparable = isMeasured(profile[i]) && truth[i].visible;
        curve.x.push_back(comparable ? profile[i].x : kNothing);
        curve.y.push_back(comparable ? (truth[i].point.z - profile[i].z) * kMicrometres : kNothing);
    }
    curve.colour = colours::kOrange;
    curve.style = Curve::Style::dots;
    curve.width = 1.5;
    return curve;
}

/// The errors below the profile. A few large ones leave the axis, so that the others can be seen; the title tells them.
Panel errorPanel(Curve errors, const Axis& x) {
    std::vector<double> sizes;
    double sumOfSquares = 0.0;
    for (const double error : errors.y)
        if (std::isfinite(error)) {
            sizes.push_back(std::abs(error));
            sumOfSquares += error * error;
        }
    std::sort(sizes.begin(), sizes.end());

    Panel panel;
    panel.left = kLeft;
    panel.right = kRight;
    panel.top = kErrorTop;
    panel.bottom = kErrorBottom;
    panel.x = x;
    double half = kLeastErrorRange;
    if (!sizes.empty()) {
        half = std::max(half, kErrorRangeInMedians * sizes[sizes.size() / 2]);
        char title[100];
        std::snprintf(title, sizeof(title), "RMS %.1f %s, largest %.1f %s",
                      std::sqrt(sumOfSquares / static_cast<double>(sizes.size())), kMicro, sizes.back(), kMicro);
        panel.title = title;
    }
    panel.y = {std::string("error (") + kMicro + ")", -half, half};
    panel.curves.push_back(std::move(errors));
    return panel;
}

std::string heightLabel(std::optional<double> tableDistance) {
    return tableDistance ? "height (mm)" : "z (length units)";
}

std::string xLabel(std::optional<double> tableDistance) {
    return tableDistance ? "x (mm)" : "x (length units)";
}

}  // namespace

ColourImage drawProfile(const SourceFrame& frame, const ChainResult& result, std::optional<double> tableDistance) {
    const bool withError = tableDistance && !frame.truth.empty();
    const int height = withError ? kHeightWithError : kHeightAlone;

    Curve measured = profileCurve(result.filtered, tableDistance);
    measured.label = "measured";
    std::vector<double> allX = measured.x;
    std::vector<double> allHeights = measured.y;

    Panel profile;
    profile.left = kLeft;
    profile.right = kRight;
    profile.top = kTop;
    profile.bottom = withError ? kProfileBottom : height - kBottomMargin;
    profile.title = frame.name;
    if (withError) {
        profile.curves.push_back(truthCurve(frame.truth, *tableDistance));
        allX.insert(allX.end(), profile.curves[0].x.begin(), profile.curves[0].x.end());
        allHeights.insert(allHeights.end(), profile.curves[0].y.begin(), profile.curves[0].y.end());
    }
    profile.curves.push_back(std::move(measured));
    if (result.output.size() != result.filtered.size()) {
        Curve thinned = profileCurve(result.output, tableDistance);
        thinned.label = "down-sampled";
        thinned.colour = colours::kOrange;
        thinned.style = Curve::Style::dots;
        thinned.width = 2.5;
        profile.curves.push_back(std::move(thinned));
    }
    profile.x = examples::axisAround(xLabel(tableDistance), allX, kLeastRange);
    profile.y = examples::axisAround(heightLabel(tableDistance), allHeights, kLeastRange);
    if (!tableDistance) std::swap(profile.y.first, profile.y.last);  // z points away from the sensor
    if (!withError) return examples::drawPlot(kWidth, height, {profile});

    const Panel error = errorPanel(errorCurve(result.filtered, frame.truth), profile.x);
    return examples::drawPlot(kWidth, height, {profile, error});
}

examples::ScanLine scanLine(const ChainResult& result, std::optional<double> tableDistance) {
    const Curve curve = profileCurve(result.filtered, tableDistance);
    examples::ScanLine line;
    for (std::size_t i = 0; i < curve.x.size(); ++i) {
        line.x.push_back(static_cast<float>(curve.x[i]));
        line.height.push_back(static_cast<float>(curve.y[i]));
    }
    return line;
}

examples::Scan emptyScan(std::optional<double> tableDistance, double travelPerFrame) {
    examples::Scan scan;
    scan.travelPerLine = travelPerFrame;
    scan.xLabel = xLabel(tableDistance);
    scan.travelLabel = tableDistance ? "travel (mm)" : "travel (length units)";
    scan.heightLabel = heightLabel(tableDistance);
    scan.heightsGrowDownwards = !tableDistance;
    return scan;
}

}  // namespace host
