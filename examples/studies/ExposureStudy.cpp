/// @file ExposureStudy.cpp
/// @brief korvane-exposure-study: AutoExposure in a closed loop, two exposures merged, and what changes from frame to
/// frame weakened.

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <utility>

#include "common/Plot.h"
#include "common/Png.h"
#include "common/Program.h"
#include "studies/StripePicture.h"
#include "studies/Study.h"

namespace {

using examples::Curve;
using examples::Panel;
using studies::formatted;
using studies::Instrument;
using studies::Pixels;
using studies::Stripe;
using studies::StripeScore;
namespace colours = examples::colours;

struct Options {
    std::string method = "all";
    int frames = 40;
    std::uint32_t seed = 1;
    std::filesystem::path pictures;
};

// ---- the closed loop ----

constexpr double kTargetWidth = 4.0;  // bright pixels
constexpr double kTolerance = 0.2;    // within which AutoExposure takes the width as right
constexpr double kTooDark = 0.1;      // exposures, as factors on the sensor's usual light
constexpr double kTooBright = 8.0;
constexpr double kMinExposure = 0.05;
constexpr double kMaxExposure = 10.0;
constexpr double kStep = 0.1;

/// Exposure and bright width of every frame of a run.
struct LoopRun {
    std::vector<double> exposures;
    std::vector<double> widths;
};

/// Mean number of bright pixels over the columns that have any.
double brightWidth(const Pixels& frame, int columns) {
    constexpr int kBright = 206;  // grey levels, as AutoExposure counts them
    std::vector<int> bright(static_cast<std::size_t>(columns), 0);
    for (std::size_t pixel = 0; pixel < frame.size(); ++pixel)
        if (frame[pixel] >= kBright) ++bright[pixel % bright.size()];
    int sum = 0;
    int shown = 0;
    for (const int count : bright) {
        sum += count;
        shown += count > 0 ? 1 : 0;
    }
    return shown > 0 ? static_cast<double>(sum) / shown : 0.0;
}

LoopRun driveExposure(const Options& options, double exposure) {
    const scenes::Sensor sensor = scenes::standardSensor();
    const scenes::Renderer renderer(sensor, scenes::makeScene("gauge-block"));
    Instrument instrument(sensor, {});
    double ignored = 0.0;
    Pixels frame;
    const auto propose = [&](bool enable, double& proposal) {
        return instrument.library().AutoExposure(frame.data(), kTargetWidth, exposure, kMinExposure, kMaxExposure,
                                                 kStep, enable, proposal);
    };
    frame = renderer.render({.seed = options.seed, .exposure = exposure}).pixels;
    propose(false, ignored);  // forget the frame of an earlier run: the record belongs to the process

    LoopRun run;
    for (int index = 0; index < options.frames; ++index) {
        frame = renderer.render({.frame = index, .seed = options.seed, .exposure = exposure}).pixels;
        run.exposures.push_back(exposure);
        run.widths.push_back(brightWidth(frame, sensor.roi.Width));
        propose(true, exposure);
    }
    return run;
}

/// The frame from which on the width stays within the tolerance; the number of frames where there is none.
std::size_t settledAt(const LoopRun& run) {
    std::size_t settled = run.widths.size();
    while (settled > 0 && std::abs(run.widths[settled - 1] - kTargetWidth) <= kTolerance) --settled;
    return settled;
}

Panel loopPanel(int top, int bottom, const Options& options, std::string yLabel, double most) {
    Panel panel;
    panel.left = 90;
    panel.right = 1175;
    panel.top = top;
    panel.bottom = bottom;
    panel.x = {"frame", -0.5, options.frames - 0.5};
    panel.y = {std::move(yLabel), 0.0, most};
    return panel;
}

/// A line with a dot for every frame.
void addFrames(Panel& panel, const std::vector<double>& values, std::string label, examples::Colour colour) {
    Curve line;
    for (std::size_t i = 0; i < values.size(); ++i) {
        line.x.push_back(static_cast<double>(i));
        line.y.push_back(values[i]);
    }
    line.colour = colour;
    Curve dots = line;
    line.label = std::move(label);
    dots.style = Curve::Style::dots;
    dots.width = 4.0;
    panel.curves.push_back(std::move(line));
    panel.curves.push_back(std::move(dots));
}

void addLevel(Panel& panel, double level, std::string label, examples::Colour colour) {
    Curve curve;
    curve.x = {panel.x.first, panel.x.last};
    curve.y = {level, level};
    curve.label = std::move(label);
    curve.colour = colour;
    panel.curves.push_back(std::move(curve));
}

void drawLoop(const Options& options, const LoopRun& dark, const LoopRun& bright) {
    Panel exposure = loopPanel(45, 325, options, "exposure (factor)", 1.1 * kTooBright);
    exposure.title = "AutoExposure";
    addFrames(exposure, dark.exposures, "from too dark", colours::kBlue);
    addFrames(exposure, bright.exposures, "from too bright", colours::kOrange);

    const double widest = *std::max_element(bright.widths.begin(), bright.widths.end());
    Panel width = loopPanel(430, 690, options, "bright width (pixels)", 1.1 * widest);
    addLevel(width, kTargetWidth - kTolerance, "", colours::kGrey);
    addLevel(width, kTargetWidth + kTolerance, "counts as right", colours::kGrey);
    addLevel(width, kTargetWidth, "target", colours::kBlack);
    addFrames(width, dark.widths, "", colours::kBlue);
    addFrames(width, bright.widths, "", colours::kOrange);
    examples::writePng(options.pictures / "exposure_AutoExposure.png",
                       examples::drawPlot(1200, 760, {exposure, width}));
}

void studyAutoExposure(const Options& options) {
    const LoopRun dark = driveExposure(options, kTooDark);
    const LoopRun bright = driveExposure(options, kTooBright);

    std::printf("Scene `gauge-block`, target width %.1f, exposure %.2f to %.1f, step %.1f, %d frames, seed %u.\n\n",
                kTargetWidth, kMinExposure, kMaxExposure, kStep, options.frames, static_cast<unsigned>(options.seed));
    std::string table = studies::tableRow(
        {"start", "first exposure", "first width", "right from frame", "last exposure", "last width"});
    table += studies::tableRow({"---", "--:", "--:", "--:", "--:", "--:"});
    for (const auto& [name, run] : {std::pair("too dark", &dark), std::pair("too bright", &bright)}) {
        const std::size_t settled = settledAt(*run);
        table +=
            studies::tableRow({name, formatted("%.2f", run->exposures.front()), formatted("%.2f", run->widths.front()),
                               settled < run->widths.size() ? std::to_string(settled) : "-",
                               formatted("%.2f", run->exposures.back()), formatted("%.2f", run->widths.back())});
    }
    std::printf("%s\n", table.c_str());
    if (!options.pictures.empty()) drawLoop(options, dark, bright);
}

// ---- pictures of frames, one above the other ----

struct Shown {
    std::string title;
    const Pixels& frame;
    const Stripe& stripe;
};

void drawFrames(const std::filesystem::path& path, const scenes::Sensor& sensor, studies::RowRange rows,
                const std::vector<scenes::TruePoint>& truth, const std::vector<Shown>& frames) {
    examples::ColourImage whole;
    for (const Shown& shown : frames) {
        const examples::ColourImage picture =
            studies::drawStripe(shown.title, shown.frame, sensor.roi, rows, shown.stripe, truth);
        whole.width = picture.width;
        whole.height += picture.height;
        whole.pixels.insert(whole.pixels.end(), picture.pixels.begin(), picture.pixels.end());
    }
    examples::writePng(path, whole);
}

std::string percent(double share) {
    return formatted("%.1f %%", 100.0 * share);
}

// ---- two exposures ----

constexpr double kShort = 1.0;
constexpr double kLong = 6.0;

/// A part whose surface is dark on the left, ordinary in the middle and shiny on the right: every column comes from the
/// rendering of its own material.
class PartOfThreeMaterials {
public:
    explicit PartOfThreeMaterials(const scenes::Sensor& sensor) : width_(static_cast<std::size_t>(sensor.roi.Width)) {
        scenes::Scene scene = scenes::makeScene("gauge-block");
        scene.look.background = 5.0;
        scene.look.peak = 32.0;
        renderers_.emplace_back(sensor, scene);
        scene.look.peak = 180.0;
        renderers_.emplace_back(sensor, scene);
        scene.look.peak = 1200.0;
        scene.look.reflection = 0.035;  // too faint for the short exposure
        renderers_.emplace_back(sensor, scene);
    }

    std::size_t count() const { return renderers_.size(); }
    std::size_t material(std::size_t column) const { return column * renderers_.size() / width_; }

    scenes::Frame render(const scenes::Shot& shot) const {
        scenes::Frame whole = renderers_.front().render(shot);
        for (std::size_t m = 1; m < renderers_.size(); ++m) {
            const scenes::Frame frame = renderers_[m].render(shot);
            for (std::size_t pixel = 0; pixel < frame.pixels.size(); ++pixel)
                if (material(pixel % width_) == m) whole.pixels[pixel] = frame.pixels[pixel];
        }
        return whole;
    }

private:
    std::size_t width_;
    std::vector<scenes::Renderer> renderers_;
};

void studyMergeImg(const Options& options) {
    const scenes::Sensor sensor = scenes::standardSensor();
    const PartOfThreeMaterials part(sensor);
    studies::MethodSettings settings;
    settings.threshold = 60;
    Instrument instrument(sensor, settings);
    const studies::Method& method = studies::methodNamed("Cal2DPoint4");

    // Per image a score of every material.
    const std::array<std::string, 3> names{"short exposure", "long exposure", "merged"};
    std::vector<std::vector<StripeScore>> scores(names.size(), std::vector<StripeScore>(part.count()));
    for (int index = 0; index < options.frames; ++index) {
        const auto shot = [&](double exposure, int half) {
            return scenes::Shot{.frame = index,
                                .seed = options.seed + static_cast<std::uint32_t>(half),  // noise of its own
                                .exposure = exposure};
        };
        scenes::Frame first = part.render(shot(kShort, 0));
        scenes::Frame second = part.render(shot(kLong, 1));
        Pixels merged(first.pixels.size());
        instrument.library().MergeImg(first.pixels.data(), second.pixels.data(), merged.data());

        std::vector<Shown> shown;
        const std::array<const Pixels*, 3> images{&first.pixels, &second.pixels, &merged};
        std::array<Stripe, 3> stripes;
        for (std::size_t i = 0; i < images.size(); ++i) {
            stripes[i] = instrument.extract(method, *images[i]);
            const studies::Profile profile = instrument.profile(stripes[i]);
            for (std::size_t m = 0; m < part.count(); ++m) {
                Stripe ofMaterial = stripes[i];
                std::vector<scenes::TruePoint> truth = first.truth;
                for (std::size_t c = 0; c < truth.size(); ++c) {
                    if (part.material(c) == m) continue;
                    ofMaterial.found[c] = false;
                    truth[c].visible = false;
                }
                scores[i][m].add(ofMaterial, profile, truth);
            }
            shown.push_back({"Cal2DPoint4, " + names[i], *images[i], stripes[i]});
        }
        if (!options.pictures.empty() && index == options.frames / 2)
            drawFrames(options.pictures / "exposure_MergeImg.png", sensor,
                       studies::rowsAround(first.truth, 60, sensor.roi), first.truth, shown);
    }

    std::printf("Exposures %.0f and %.0f, `Cal2DPoint4` at %d, %d frames, seed %u.\n\n", kShort, kLong,
                settings.threshold, options.frames, static_cast<unsigned>(options.seed));
    std::string table = studies::tableRow({"image", "dark: found", "ordinary: found", "shiny: found", "dark: wrong",
                                           "ordinary: wrong", "shiny: wrong", "row RMS", "row RMS on stripe"});
    table += studies::tableRow({"---", "--:", "--:", "--:", "--:", "--:", "--:", "--:", "--:"});
    for (std::size_t i = 0; i < names.size(); ++i) {
        std::vector<std::string> found;
        std::vector<std::string> wrong;
        std::vector<double> errors;
        std::vector<double> onStripe;
        for (const StripeScore& score : scores[i]) {
            found.push_back(percent(score.foundShare()));
            wrong.push_back(percent(score.wrongShare()));
            errors.insert(errors.end(), score.rowErrors.begin(), score.rowErrors.end());
            onStripe.insert(onStripe.end(), score.rowsOnStripe.begin(), score.rowsOnStripe.end());
        }
        table += studies::tableRow({names[i], found[0], found[1], found[2], wrong[0], wrong[1], wrong[2],
                                    formatted("%.2f", studies::summarize(errors).rms),
                                    formatted("%.3f", studies::summarize(onStripe).rms)});
    }
    std::printf("%s\n", table.c_str());
}

// ---- what moves ----

constexpr double kFlicker = 0.05;

void studyCalcImageBuffer(const Options& options) {
    const scenes::Sensor sensor = scenes::standardSensor();
    scenes::Scene scene = scenes::makeScene("gauge-block");
    scene.travelPerFrame = 0.0;  // the part stands still
    scene.look.background = 5.0;
    scene.look.reflection = 0.6;
    scene.look.specksPerColumn = 0.3;
    constexpr double kTravel = 20.0;
    constexpr int kNearestReflection = 25;  // rows below the stripe
    constexpr int kReflectionStep = 11;     // rows from frame to frame
    constexpr int kReflectionPlaces = 5;

    studies::MethodSettings settings;
    settings.threshold = 60;
    Instrument instrument(sensor, settings);
    const studies::Method& method = studies::methodNamed("Cal2DPoint4");
    Pixels kept(static_cast<std::size_t>(sensor.roi.Width) * static_cast<std::size_t>(sensor.roi.Height));
    instrument.library().CalcImageBuffer(kept.data(), kept.data(), false);  // forget the frame of an earlier run

    StripeScore before;
    StripeScore after;
    for (int index = 0; index <= options.frames; ++index) {
        scene.look.reflectionRows = kNearestReflection + kReflectionStep * (index % kReflectionPlaces);
        scenes::Frame frame =
            scenes::Renderer(sensor, scene)
                .render({.frame = index, .seed = options.seed, .flicker = kFlicker, .travelOffset = kTravel});
        instrument.library().CalcImageBuffer(frame.pixels.data(), kept.data(), true);
        if (index == 0) continue;  // the first frame has nothing before it

        const Stripe stripeBefore = instrument.extract(method, frame.pixels);
        const Stripe stripeAfter = instrument.extract(method, kept);
        before.add(stripeBefore, instrument.profile(stripeBefore), frame.truth);
        after.add(stripeAfter, instrument.profile(stripeAfter), frame.truth);
        if (!options.pictures.empty() && index == options.frames / 2 + 1)
            drawFrames(options.pictures / "exposure_CalcImageBuffer.png", sensor,
                       studies::rowsAround(frame.truth, 60, sensor.roi), frame.truth,
                       {{"Cal2DPoint4, as taken", frame.pixels, stripeBefore},
                        {"Cal2DPoint4, after CalcImageBuffer", kept, stripeAfter}});
    }

    std::printf("Flicker %.0f %%, `Cal2DPoint4` at %d, %d frames, seed %u.\n\n", 100.0 * kFlicker, settings.threshold,
                options.frames, static_cast<unsigned>(options.seed));
    std::string table =
        studies::tableRow({"image", "found", "wrong", "row bias", "row RMS", "row RMS on stripe", "z RMS on stripe"});
    table += studies::tableRow({"---", "--:", "--:", "--:", "--:", "--:", "--:"});
    for (const auto& [name, score] : {std::pair("as taken", &before), std::pair("after `CalcImageBuffer`", &after)}) {
        const auto rows = studies::summarize(score->rowErrors);
        table += studies::tableRow({name, percent(score->foundShare()), percent(score->wrongShare()),
                                    formatted("%+.2f", rows.bias), formatted("%.2f", rows.rms),
                                    formatted("%.3f", studies::summarize(score->rowsOnStripe).rms),
                                    formatted("%.1f", studies::summarize(score->zOnStripe).rms)});
    }
    std::printf("%s\n", table.c_str());
}

struct Part {
    const char* name;
    void (*study)(const Options& options);
};

constexpr std::array<Part, 3> kParts{
    {{"AutoExposure", studyAutoExposure}, {"MergeImg", studyMergeImg}, {"CalcImageBuffer", studyCalcImageBuffer}}};

void describe(CLI::App& app, Options& options) {
    app.add_option("--method", options.method, "AutoExposure, MergeImg or CalcImageBuffer alone")
        ->option_text("NAME [all]")
        ->check(CLI::IsMember({"all", "AutoExposure", "MergeImg", "CalcImageBuffer"}));
    app.add_option("--frames", options.frames, "Frames of every run")
        ->option_text("N [40]")
        ->check(CLI::Range(2, 10000));
    app.add_option("--seed", options.seed, "Seed of everything random")->option_text("N [1]");
    studies::addPicturesOption(app, options.pictures);
}

}  // namespace

int main(int argc, char** argv) {
    Options options;
    return examples::runProgram(
        "korvane-exposure-study",
        "Closes the loop of AutoExposure, merges two exposures, removes what moves; prints Markdown tables.", argc,
        argv, [&](CLI::App& app) { describe(app, options); },
        [&] {
            studies::preparePicturesFolder(options.pictures);
            for (const Part& part : kParts)
                if (options.method == "all" || options.method == part.name) part.study(options);
        });
}
