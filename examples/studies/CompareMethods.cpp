/// @file CompareMethods.cpp
/// @brief korvane-compare-methods: the six extraction methods on one scene, against its truth.

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdio>

#include "common/Png.h"
#include "common/Program.h"
#include "studies/StripePicture.h"
#include "studies/Study.h"

namespace {

using studies::formatted;
using studies::Instrument;
using studies::kMethods;
using studies::Method;
using studies::MethodSettings;
using studies::Stripe;
using studies::StripeScore;

struct Options {
    std::string scene = "hard";
    int frames = 100;
    std::uint32_t seed = 1;
    MethodSettings settings;
    std::filesystem::path pictures;
};

struct Result {
    StripeScore score;
    // The median column's standard deviation, rows: of all that was found where the stripe shows, and of what lies on
    // it.
    double repeatability = 0.0;
    double repeatabilityOnStripe = 0.0;
    double seconds = 0.0;  // time in the library, over all frames of the scan
};

double median(std::vector<double> values) {
    if (values.empty()) return std::nan("");
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

/// Rows of one column over repeated frames.
class Spread {
public:
    void add(double row) {
        ++count_;
        const double fromMean = row - mean_;
        mean_ += fromMean / count_;
        sumOfSquares_ += fromMean * (row - mean_);
    }
    int count() const { return count_; }
    double standardDeviation() const { return std::sqrt(sumOfSquares_ / (count_ - 1)); }

private:
    int count_ = 0;
    double mean_ = 0.0;
    double sumOfSquares_ = 0.0;
};

/// A scan of `frames` frames, one step of travel apart.
void measureScan(const Options& options, const scenes::Sensor& sensor, const scenes::Scene& scene,
                 std::vector<Result>& results) {
    const scenes::Renderer renderer(sensor, scene);
    Instrument instrument(sensor, options.settings);
    for (int index = 0; index < options.frames; ++index) {
        const scenes::Frame frame = renderer.render({.frame = index, .seed = options.seed});
        for (std::size_t m = 0; m < kMethods.size(); ++m) {
            const Stripe stripe = instrument.extract(kMethods[m], frame.pixels);
            results[m].score.add(stripe, instrument.profile(stripe), frame.truth);
            results[m].seconds += stripe.seconds;
        }
    }
}

/// Median over the columns with values from at least half of the frames.
double medianDeviation(const std::vector<Spread>& columns, int frames) {
    std::vector<double> deviations;
    for (const Spread& spread : columns)
        if (spread.count() >= 2 && 2 * spread.count() >= frames) deviations.push_back(spread.standardDeviation());
    return median(deviations);
}

/// `frames` frames of one place, in the middle of the scan. Noise, gaps, glints and specks fall anew in each.
void measureRepeatability(const Options& options, const scenes::Sensor& sensor, scenes::Scene scene,
                          std::vector<Result>& results) {
    const int middle = options.frames / 2;
    const double travel = scene.travelPerFrame * middle;
    scene.travelPerFrame = 0.0;
    const scenes::Renderer renderer(sensor, scene);
    Instrument instrument(sensor, options.settings);
    const auto columns = static_cast<std::size_t>(sensor.roi.Width);
    std::vector<std::vector<Spread>> all(kMethods.size(), std::vector<Spread>(columns));
    std::vector<std::vector<Spread>> onStripe = all;
    for (int index = 0; index < options.frames; ++index) {
        const scenes::Frame frame = renderer.render({.frame = index, .seed = options.seed, .travelOffset = travel});
        for (std::size_t m = 0; m < kMethods.size(); ++m) {
            const Stripe stripe = instrument.extract(kMethods[m], frame.pixels);
            for (std::size_t i = 0; i < columns; ++i) {
                if (!stripe.found[i] || !frame.truth[i].visible) continue;
                const double row = stripe.points[i].y;
                all[m][i].add(row);
                if (std::abs(row - frame.truth[i].row) <= studies::kOnStripe) onStripe[m][i].add(row);
            }
        }
    }
    for (std::size_t m = 0; m < kMethods.size(); ++m) {
        results[m].repeatability = medianDeviation(all[m], options.frames);
        results[m].repeatabilityOnStripe = medianDeviation(onStripe[m], options.frames);
    }
}

std::string code(const std::string& text) {
    return "`" + text + "`";
}

void printSettings(const Options& options) {
    const auto& select = options.settings.lineSelect;
    std::printf("Scene `%s`, %d frames, seed %u. Line selection: grey %d to %d, width %d to %d, mode %d. ",
                options.scene.c_str(), options.frames, static_cast<unsigned>(options.seed), select.GrayMin,
                select.GrayMax, select.WidthMin, select.WidthMax, select.SelectMode);
    std::printf("Cap of `Cal2DPoint3`: %d. Threshold of `Cal2DPoint4`: %d.\n\n", options.settings.cap,
                options.settings.threshold);
}

/// What the methods found, right or wrong.
void printFindings(const Options& options, const std::vector<Result>& results) {
    std::string table = studies::tableRow({"method", "found", "wrong", "false", "row bias", "row RMS", "row 95 %",
                                           "row max", "z RMS", "z 95 %", "repeatability"});
    table += studies::tableRow({"---", "--:", "--:", "--:", "--:", "--:", "--:", "--:", "--:", "--:", "--:"});
    for (std::size_t m = 0; m < results.size(); ++m) {
        const StripeScore& score = results[m].score;
        const auto rows = studies::summarize(score.rowErrors);
        const auto z = studies::summarize(score.zErrors);
        table += studies::tableRow(
            {code(kMethods[m].name), formatted("%.1f %%", 100.0 * score.foundShare()),
             formatted("%.1f %%", 100.0 * score.wrongShare()),
             formatted("%.1f", static_cast<double>(score.falseColumns) / options.frames), formatted("%+.3f", rows.bias),
             formatted("%.2f", rows.rms), formatted("%.2f", rows.percentile95), formatted("%.1f", rows.maximum),
             formatted("%.0f", z.rms), formatted("%.0f", z.percentile95), formatted("%.2f", results[m].repeatability)});
    }
    std::printf("%s", table.c_str());
}

/// What the points on the stripe are worth, and what they cost.
void printExactness(const std::vector<Result>& results) {
    double fastest = results[0].seconds;
    for (const Result& result : results) fastest = std::min(fastest, result.seconds);

    std::string table = studies::tableRow({"method, points on the stripe", "row bias", "row RMS", "row 95 %", "z RMS",
                                           "z 95 %", "repeatability", "time"});
    table += studies::tableRow({"---", "--:", "--:", "--:", "--:", "--:", "--:", "--:"});
    for (std::size_t m = 0; m < results.size(); ++m) {
        const auto rows = studies::summarize(results[m].score.rowsOnStripe);
        const auto z = studies::summarize(results[m].score.zOnStripe);
        const double ratio = results[m].seconds / fastest;
        table +=
            studies::tableRow({code(kMethods[m].name), formatted("%+.3f", rows.bias), formatted("%.3f", rows.rms),
                               formatted("%.3f", rows.percentile95), formatted("%.1f", z.rms),
                               formatted("%.1f", z.percentile95), formatted("%.3f", results[m].repeatabilityOnStripe),
                               formatted(ratio < 9.95 ? "%.1f x" : "%.0f x", ratio)});
    }
    std::printf("\n%s", table.c_str());
}

/// One overlay per method, of the frame in the middle of the scan.
void drawOverlays(const Options& options, const scenes::Sensor& sensor, const scenes::Scene& scene) {
    const scenes::Frame frame =
        scenes::Renderer(sensor, scene).render({.frame = options.frames / 2, .seed = options.seed});
    Instrument instrument(sensor, options.settings);
    const int below = scene.look.reflection > 0.0 ? static_cast<int>(scene.look.reflectionRows) : 0;
    const studies::RowRange rows = studies::rowsAround(frame.truth, below, sensor.roi);

    for (const Method& method : kMethods) {
        const Stripe stripe = instrument.extract(method, frame.pixels);
        examples::writePng(options.pictures / ("methods_" + options.scene + "_" + method.name + ".png"),
                           studies::drawStripe(method.name, frame.pixels, sensor.roi, rows, stripe, frame.truth));
    }
}

void compareMethods(const Options& options) {
    studies::preparePicturesFolder(options.pictures);
    const scenes::Sensor sensor = scenes::standardSensor();
    const scenes::Scene scene = scenes::makeScene(options.scene);
    std::vector<Result> results(kMethods.size());
    measureScan(options, sensor, scene, results);
    measureRepeatability(options, sensor, scene, results);
    printSettings(options);
    printFindings(options, results);
    printExactness(results);
    if (!options.pictures.empty()) drawOverlays(options, sensor, scene);
}

void describe(CLI::App& app, Options& options) {
    app.add_option("--scene", options.scene, "Scene of the simulated sensor")
        ->option_text("NAME [hard]")
        ->check(CLI::IsMember(scenes::sceneNames()));
    app.add_option("--frames", options.frames, "Frames of the scan, and of the repeated place")
        ->option_text("N [100]")
        ->check(CLI::Range(2, 10000));
    app.add_option("--seed", options.seed, "Seed of everything random")->option_text("N [1]");
    auto& select = options.settings.lineSelect;
    app.add_option("--gray-min", select.GrayMin, "Line selection: smallest grey value")->check(CLI::Range(0, 255));
    app.add_option("--gray-max", select.GrayMax, "Line selection: largest grey value")->check(CLI::Range(0, 255));
    app.add_option("--width-min", select.WidthMin, "Line selection: smallest width")->check(CLI::Range(0, 10000));
    app.add_option("--width-max", select.WidthMax, "Line selection: largest width")->check(CLI::Range(0, 10000));
    app.add_option("--select-mode", select.SelectMode, "Line selection: mode")->check(CLI::Range(1, 5));
    app.add_option("--cap", options.settings.cap, "Cap of Cal2DPoint3, grey levels")->check(CLI::Range(0, 255));
    app.add_option("--threshold", options.settings.threshold, "Threshold of Cal2DPoint4, grey levels")
        ->check(CLI::Range(0, 255));
    studies::addPicturesOption(app, options.pictures);
}

}  // namespace

int main(int argc, char** argv) {
    Options options;
    return examples::runProgram(
        "korvane-compare-methods",
        "Measures the six extraction methods on a simulated scene and prints a Markdown table.", argc, argv,
        [&](CLI::App& app) { describe(app, options); }, [&] { compareMethods(options); });
}
