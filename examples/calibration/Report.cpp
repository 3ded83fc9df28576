#include "calibration/Report.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdio>

#include "calibration/CalibrationRecord.h"

namespace calibration {
namespace {

constexpr double kMicrometres = 1000.0;  // in a millimetre

template <class... Values>
std::string line(const char* format, Values... values) {
    char text[200];
    std::snprintf(text, sizeof text, format, values...);
    return std::string(text) + "\n";
}

std::string surfaceText(const Result& result) {
    static const char* const kUnits[6] = {"mm", "", "", "1/mm", "1/mm", "1/mm"};
    std::string text = line("%-18s %16s %16s %12s %12s", "light surface", "found", "true", "difference", "noise gives");
    for (std::size_t i = 0; i < static_cast<std::size_t>(result.surface.form); ++i) {
        const double found = result.surface.coefficients[i];
        const double truth = result.truth.LaserPlane[i];
        text += line("  c%zu  %-12s %16.9f %16.9f %12.1e %12.1e", i, kUnits[i], found, truth, found - truth,
                     result.surface.deviations[i]);
    }
    return text;
}

/// Where the points lie across the sheet: a plane has one y after CalRT.
std::string outputYText(const Result& result) {
    const FieldAssessment& field = result.field;
    if (result.surface.form == SurfaceForm::secondOrder)
        return line("output y           %.3f .. %.3f mm: the sheet is bent", field.smallestY, field.largestY);
    const double y = outputYOfPlane(result.record);
    return line("output y           %.6f mm = c0/c2 - c0/s, in all points to %.0e mm", y,
                std::max(std::abs(field.smallestY - y), std::abs(field.largestY - y)));
}

std::string accuracyLine(const char* name, const host::Accuracy& accuracy) {
    return line("  %-16s %10.3f %10.3f %10.3f", name, accuracy.bias() * kMicrometres, accuracy.rms() * kMicrometres,
                accuracy.maximum() * kMicrometres);
}

}  // namespace

std::string reportText(const Options& options, const Result& result) {
    const FieldAssessment& field = result.field;
    std::string text = line("%d views of a flat plate, %zu points by %s, condition number %.0f", options.plan.views,
                            field.points.size(), options.plan.method.c_str(), result.surface.condition);
    text += "\n";
    text += surfaceText(result);
    text += "\n";
    text += line("residuals          RMS %.3f um, largest %.3f um of height", field.residual.rms * kMicrometres,
                 field.residual.largest * kMicrometres);
    text += line("trend over x       %.3f um%s", field.trend.range * kMicrometres,
                 field.hasTrend() ? ": more than noise, the light surface is not of the fitted form" : "");
    text += line("against the truth  RMS %.3f um, largest %.3f um of height over the field of the views",
                 field.calibrationError.rms * kMicrometres, field.calibrationError.largest * kMicrometres);
    text += outputYText(result);
    text += "\n";
    text += line("%-18s %10s %10s %10s  um of z, %d frames, no filters", "gauge block", "bias", "RMS", "largest",
                 kGaugeBlockFrames);
    text += accuracyLine("this calibration", result.gaugeBlock);
    text += accuracyLine("the true one", result.gaugeBlockWithTruth);
    return text;
}

}  // namespace calibration
