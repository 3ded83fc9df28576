#include "host/Report.h"

#include <cmath>
#include <cstdio>
#include <nlohmann/json.hpp>
#include <numeric>

namespace host {
namespace {

using Json = nlohmann::ordered_json;

template <class... Values>
std::string formatted(const char* format, Values... values) {
    char text[200];
    std::snprintf(text, sizeof(text), format, values...);
    return text;
}

double percent(long long part, long long whole) {
    return whole > 0 ? 100.0 * static_cast<double>(part) / static_cast<double>(whole) : 0.0;
}

double librarySeconds(const Report& report) {
    return std::accumulate(report.stages.begin(), report.stages.end(), 0.0,
                           [](double sum, const StageTime& stage) { return sum + stage.seconds; });
}

std::string accuracyLine(const char* name, const Accuracy& accuracy) {
    constexpr double kMicrometres = 1000.0;  // the simulated sensor measures in millimetres
    if (accuracy.compared() == 0)
        return formatted("  %-12s %9s %9s %9s %12d %9lld %9lld\n", name, "-", "-", "-", 0, accuracy.missed(),
                         accuracy.withoutTruth());
    return formatted("  %-12s %9.2f %9.2f %9.1f %12lld %9lld %9lld\n", name, accuracy.bias() * kMicrometres,
                     accuracy.rms() * kMicrometres, accuracy.maximum() * kMicrometres, accuracy.compared(),
                     accuracy.missed(), accuracy.withoutTruth());
}

Json finiteOrNull(double value) {
    return std::isfinite(value) ? Json(value) : Json(nullptr);
}

Json accuracyJson(const Accuracy& accuracy) {
    return {{"bias", finiteOrNull(accuracy.bias())},
            {"rms", finiteOrNull(accuracy.rms())},
            {"maximum", finiteOrNull(accuracy.maximum())},
            {"compared", accuracy.compared()},
            {"missed", accuracy.missed()},
            {"withoutTruth", accuracy.withoutTruth()}};
}

}  // namespace

double Report::framesPerSecond() const {
    const double seconds = librarySeconds(*this);
    return seconds > 0.0 ? frames / seconds : 0.0;
}

std::string reportText(const Report& report) {
    std::string text;
    text += "source        " + report.source + "\n";
    text += formatted("region        %d x %d pixels at column %d, row %d\n", report.roi.Width, report.roi.Height,
                      report.roi.OffsetX, report.roi.OffsetY);
    text += formatted("frames        %d\n", report.frames);
    text += formatted("stripe        %lld of %lld columns (%.1f %%), by %s\n", report.withStripe, report.columns,
                      percent(report.withStripe, report.columns), report.method.c_str());
    if (report.hasCalibration)
        text += formatted("measured      %lld columns (%.1f %%)\n", report.measured,
                          percent(report.measured, report.columns));
    else
        text += "measured      no calibration in the settings: 2D points only, no profiles\n";
    if (!report.exposures.empty())
        text +=
            formatted("exposure      driven from %.3f to %.3f\n", report.exposures.front(), report.exposures.back());

    text += formatted("\nlibrary       %.0f frames per second\n", report.framesPerSecond());
    for (const StageTime& stage : report.stages)
        text += formatted("  %-18s %8.3f ms per frame\n", stage.name.c_str(), 1000.0 * stage.seconds / report.frames);

    if (report.hasTruth && report.hasCalibration) {
        text += "\nerror (um)         bias       rms   maximum     compared    missed  no truth   (columns)\n";
        text += accuracyLine("unfiltered", report.unfiltered);
        text += accuracyLine("filtered", report.filtered);
    }
    return text;
}

std::string reportJson(const Report& report) {
    Json json;
    json["source"] = report.source;
    json["method"] = report.method;
    json["frames"] = report.frames;
    json["columns"] = report.columns;
    json["withStripe"] = report.withStripe;
    if (report.hasCalibration) json["measured"] = report.measured;
    if (!report.exposures.empty()) json["exposures"] = report.exposures;
    json["framesPerSecond"] = report.framesPerSecond();
    for (const StageTime& stage : report.stages) json["secondsPerFrame"][stage.name] = stage.seconds / report.frames;
    if (report.hasTruth && report.hasCalibration)
        json["error"] = {{"unfiltered", accuracyJson(report.unfiltered)}, {"filtered", accuracyJson(report.filtered)}};
    return json.dump(4, ' ', false, Json::error_handler_t::replace) + "\n";
}

}  // namespace host
