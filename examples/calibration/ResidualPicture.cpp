#include "calibration/ResidualPicture.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <string>
#include <vector>

#include "common/Plot.h"

namespace calibration {
namespace {

namespace colours = examples::colours;
using examples::Curve;
using examples::Panel;

constexpr int kWidth = 1000;
constexpr int kHeight = 1150;
constexpr int kLeft = 90;
constexpr int kRight = 970;
constexpr double kMicrometres = 1000.0;  // in a millimetre

using View = std::vector<FieldPoint>;

std::vector<View> byView(const std::vector<FieldPoint>& points) {
    std::vector<View> views;
    for (const FieldPoint& point : points) {
        if (point.view >= views.size()) views.resize(point.view + 1);
        views[point.view].push_back(point);
    }
    return views;
}

Panel emptyPanel(int top, int bottom, const std::string& title) {
    Panel panel;
    panel.left = kLeft;
    panel.top = top;
    panel.right = kRight;
    panel.bottom = bottom;
    panel.title = title;
    return panel;
}

Curve emptyCurve(const std::string& label, examples::Colour colour, double width) {
    Curve curve;
    curve.label = label;
    curve.colour = colour;
    curve.width = width;
    return curve;
}

/// All residuals, too many for each to be drawn, and the trend.
Panel residualPanel(const FieldAssessment& field) {
    constexpr std::size_t kEvery = 3;
    constexpr int kTrendSteps = 200;
    Curve dots = emptyCurve("residuals", colours::kGrey, 1.0);
    dots.style = Curve::Style::dots;
    for (std::size_t i = 0; i < field.points.size(); i += kEvery) {
        dots.x.push_back(field.points[i].x);
        dots.y.push_back(field.points[i].residual * kMicrometres);
    }
    Curve trend = emptyCurve("trend", colours::kOrange, 2.5);
    for (int step = 0; step <= kTrendSteps; ++step) {
        const double x = field.trend.firstX + (field.trend.lastX - field.trend.firstX) * step / kTrendSteps;
        trend.x.push_back(x);
        trend.y.push_back(field.trend.at(x) * kMicrometres);
    }
    Panel panel = emptyPanel(45, 300, "Residuals of the fit");
    panel.y = examples::axisAround("error of z (um)", dots.y, 1.0);
    panel.curves = {dots, trend};
    return panel;
}

/// A power of ten, at least 1, with which the residuals show at the scale of the field.
double exaggerationFor(double residual, double fieldHeight) {
    constexpr double kShare = 0.03;  // of the field's height
    return std::pow(10.0, std::max(std::floor(std::log10(kShare * fieldHeight / std::max(residual, 1e-9))), 0.0));
}

/// Each view as a line across the field, its residuals drawn on it as heights.
Panel fieldPanel(const FieldAssessment& field) {
    constexpr std::size_t kMeanOf = 16;  // columns
    const auto [lowest, highest] =
        std::minmax_element(field.points.begin(), field.points.end(),
                            [](const FieldPoint& a, const FieldPoint& b) { return a.plateHeight < b.plateHeight; });
    const double exaggeration = exaggerationFor(field.residual.rms, highest->plateHeight - lowest->plateHeight);

    Panel panel = emptyPanel(415, 730, "Where the views lie");
    std::vector<double> heights;
    for (const View& view : byView(field.points)) {
        Curve plate = emptyCurve("", colours::kGrey, 1.0);
        Curve residuals = emptyCurve("", colours::kBlue, 1.5);
        for (std::size_t i = 0; i + kMeanOf <= view.size(); i += kMeanOf) {
            FieldPoint mean{};
            for (std::size_t k = i; k < i + kMeanOf; ++k) {
                mean.x += view[k].x / kMeanOf;
                mean.plateHeight += view[k].plateHeight / kMeanOf;
                mean.residual += view[k].residual / kMeanOf;
            }
            plate.x.push_back(mean.x);
            plate.y.push_back(mean.plateHeight);
            residuals.x.push_back(mean.x);
            residuals.y.push_back(mean.plateHeight - exaggeration * mean.residual);  // too low is a positive error
        }
        heights.insert(heights.end(), residuals.y.begin(), residuals.y.end());
        panel.curves.push_back(plate);
        panel.curves.push_back(residuals);
    }
    panel.curves[0].label = "plate";
    panel.curves[1].label = "measured, deviation x " + std::to_string(static_cast<long>(exaggeration));
    panel.y = examples::axisAround("height (mm)", heights, 1.0);
    return panel;
}

/// The calibration against the true one, free of the noise that the views have.
Panel calibrationErrorPanel(const FieldAssessment& field) {
    Panel panel = emptyPanel(845, 1080, "Found less true calibration");
    const std::vector<View> views = byView(field.points);
    const std::vector<std::size_t> numbers{0, views.size() / 2, views.size() - 1};
    const std::vector<examples::Colour> colourOf{colours::kBlue, colours::kOrange, colours::kGreen};
    std::vector<double> errors{0.0};  // the axis shows what is perfect
    for (std::size_t i = 0; i < numbers.size(); ++i) {
        Curve curve = emptyCurve("view " + std::to_string(numbers[i] + 1), colourOf[i], 1.5);
        for (const FieldPoint& point : views[numbers[i]]) {
            curve.x.push_back(point.x);
            curve.y.push_back(point.calibrationError * kMicrometres);
        }
        errors.insert(errors.end(), curve.y.begin(), curve.y.end());
        panel.curves.push_back(curve);
    }
    panel.y = examples::axisAround("error of z (um)", errors, 0.1);
    return panel;
}

}  // namespace

examples::ColourImage drawResiduals(const Result& result) {
    std::vector<Panel> panels{residualPanel(result.field), fieldPanel(result.field),
                              calibrationErrorPanel(result.field)};
    for (Panel& panel : panels) panel.x = {"x (mm)", result.field.trend.firstX, result.field.trend.lastX};
    return examples::drawPlot(kWidth, kHeight, panels);
}

}  // namespace calibration
