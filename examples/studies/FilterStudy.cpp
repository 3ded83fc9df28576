/// @file FilterStudy.cpp
/// @brief korvane-filter-study: each profile filter before and after, on a weld bead that gives all of them work.

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <utility>

#include "common/Measured.h"
#include "common/Plot.h"
#include "common/Png.h"
#include "common/Program.h"
#include "studies/Study.h"

namespace {

using examples::Curve;
using examples::isMeasured;
using examples::Panel;
using KORVANELASERALGO::KorvaneLaserAlgo;
using studies::formatted;
using studies::Instrument;
using studies::Profile;
namespace colours = examples::colours;

constexpr double kMicrometres = 1000.0;  // in a millimetre
constexpr double kOutlier = 0.3;         // mm; a point that is farther from the surface did not come from it

struct Options {
    int frames = 100;
    std::uint32_t seed = 1;
    std::filesystem::path pictures;
};

/// The weld bead as a worn sensor sees it.
scenes::Scene splashedWeldBead() {
    scenes::Scene scene = scenes::makeScene("weld-bead");
    scene.look.peak = 200.0;
    scene.look.noise = 6.0;
    scene.look.reflection = 0.28;  // just bright enough to be taken for the stripe here and there
    scene.look.dropoutShare = 0.06;
    scene.look.specksPerColumn = 0.3;
    scene.look.shine = 0.03;
    return scene;
}

/// One filter, with the settings that the pages show.
struct Filter {
    const char* name;
    const char* settings;
    bool afterOutliers;  // its input is what both outlier filters leave, else the profile as measured
    Profile (*apply)(KorvaneLaserAlgo& library, const Profile& profile);
};

Profile outlierdetect1(KorvaneLaserAlgo& library, const Profile& profile) {
    Profile filtered = profile;
    library.Outlierdetect1(filtered, 8, 0.3F);
    return filtered;
}

Profile outlierdetect2(KorvaneLaserAlgo& library, const Profile& profile) {
    Profile filtered = profile;
    library.Outlierdetect2(filtered, 8, 1.0F);
    return filtered;
}

Profile median(KorvaneLaserAlgo& library, const Profile& profile) {
    Profile filtered = profile;
    library.medianfilter1(filtered, 3);
    return filtered;
}

Profile gaussian(KorvaneLaserAlgo& library, const Profile& profile) {
    Profile filtered = profile;
    library.Gaussianfilter(filtered, 4);
    return filtered;
}

Profile downsample(KorvaneLaserAlgo& library, const Profile& profile) {
    Profile thinned;
    int count = 0;
    library.Downsample(profile, 0.5F, thinned, count);
    thinned.resize(static_cast<std::size_t>(count));
    return thinned;
}

constexpr Filter kFilters[] = {{"Outlierdetect1", "half-width 8, threshold 0.3 mm", false, outlierdetect1},
                               {"Outlierdetect2", "half-width 8, threshold 1.0 mm", false, outlierdetect2},
                               {"medianfilter1", "half-window 3", true, median},
                               {"Gaussianfilter", "half-window 4", true, gaussian},
                               {"Downsample", "step 0.5 mm", true, downsample}};

/// The surface under one position of the scan.
struct Truth {
    const scenes::Scene& scene;
    double tableDistance;
    double travel;

    double height(double x) const { return scene.height(x, travel); }
    /// Height measured less height true, mm; positive where the surface was measured too high.
    double error(const KORVANELASERALGO::tagKorvaneLaserPoint3d& point) const {
        return tableDistance - point.z - height(point.x);
    }
};

/// Errors of a profile, over any number of frames.
struct Tally {
    long long points = 0;
    long long outliers = 0;
    std::vector<double> errors;         // of all points, micrometres
    std::vector<double> surfaceErrors;  // of those that are no outliers, micrometres

    void add(const Profile& profile, const Truth& truth) {
        for (const auto& point : profile) {
            if (!isMeasured(point)) continue;
            const double error = truth.error(point);
            ++points;
            errors.push_back(error * kMicrometres);
            if (std::abs(error) > kOutlier)
                ++outliers;
            else
                surfaceErrors.push_back(error * kMicrometres);
        }
    }
};

struct BeforeAndAfter {
    Tally before;
    Tally after;
};

void printTables(const Options& options, const std::vector<BeforeAndAfter>& results) {
    std::printf("Scene `weld-bead` with outliers, `Cal2DPoint1`, %d frames, seed %u.\n\n", options.frames,
                static_cast<unsigned>(options.seed));
    std::string table = studies::tableRow({"filter", "settings", "points", "of them outliers", "others cleared", "RMS",
                                           "RMS without outliers", "maximum"});
    table += studies::tableRow({"---", "---", "--:", "--:", "--:", "--:", "--:", "--:"});
    const auto change = [](const std::string& before, const std::string& after) { return before + " → " + after; };
    const auto perFrame = [&](long long count) {
        return formatted("%.1f", static_cast<double>(count) / options.frames);
    };
    for (std::size_t i = 0; i < std::size(kFilters); ++i) {
        const Filter& filter = kFilters[i];
        const Tally& before = results[i].before;
        const Tally& after = results[i].after;
        const auto all = std::pair(studies::summarize(before.errors), studies::summarize(after.errors));
        const auto surface =
            std::pair(studies::summarize(before.surfaceErrors), studies::summarize(after.surfaceErrors));
        const long long othersCleared = (before.points - before.outliers) - (after.points - after.outliers);
        table +=
            studies::tableRow({"`" + std::string(filter.name) + "`", filter.settings,
                               change(perFrame(before.points), perFrame(after.points)),
                               change(perFrame(before.outliers), perFrame(after.outliers)),
                               filter.afterOutliers ? "-" : perFrame(othersCleared),
                               change(formatted("%.0f", all.first.rms), formatted("%.0f", all.second.rms)),
                               change(formatted("%.1f", surface.first.rms), formatted("%.1f", surface.second.rms)),
                               change(formatted("%.0f", all.first.maximum), formatted("%.0f", all.second.maximum))});
    }
    std::printf("%s", table.c_str());
}

// ---- pictures ----

struct Range {
    double first;
    double last;

    bool contains(double value) const { return value >= first && value <= last; }
};

Curve points(std::string label, examples::Colour colour, double size) {
    Curve curve;
    curve.label = std::move(label);
    curve.colour = colour;
    curve.style = Curve::Style::dots;
    curve.width = size;
    return curve;
}

void addPoint(Curve& curve, double x, double y) {
    curve.x.push_back(x);
    curve.y.push_back(y);
}

Curve surface(const Truth& truth, Range x) {
    constexpr int kSteps = 2000;
    Curve curve;
    for (int i = 0; i <= kSteps; ++i) {
        const double position = x.first + (x.last - x.first) * i / kSteps;
        addPoint(curve, position, truth.height(position));
    }
    curve.label = "true surface";
    curve.colour = colours::kGrey;
    curve.width = 5.0;
    return curve;
}

Curve heights(Curve curve, const Profile& profile, const Truth& truth, Range x, Range y) {
    for (const auto& point : profile) {
        const double height = truth.tableDistance - point.z;
        if (isMeasured(point) && x.contains(point.x) && y.contains(height)) addPoint(curve, point.x, height);
    }
    return curve;
}

Curve errors(Curve curve, const Profile& profile, const Truth& truth, Range x, Range y) {
    for (const auto& point : profile) {
        const double error = truth.error(point) * kMicrometres;
        if (isMeasured(point) && x.contains(point.x) && y.contains(error)) addPoint(curve, point.x, error);
    }
    return curve;
}

std::string title(const Filter& filter) {
    return std::string(filter.name) + ", " + filter.settings;
}

constexpr int kWidth = 1200;
constexpr int kLeft = 90;
constexpr int kRight = 1175;

Panel emptyPanel(std::string title, int top, int bottom, Range x, std::string yLabel, Range y) {
    Panel panel;
    panel.left = kLeft;
    panel.right = kRight;
    panel.top = top;
    panel.bottom = bottom;
    panel.title = std::move(title);
    panel.x = {"x (mm)", x.first, x.last};
    panel.y = {std::move(yLabel), y.first, y.last};
    return panel;
}

/// What an outlier filter took away.
Profile clearedPoints(const Profile& before, const Profile& after) {
    Profile cleared = before;
    for (std::size_t i = 0; i < cleared.size(); ++i)
        if (isMeasured(after[i])) cleared[i] = {};
    return cleared;
}

/// The profile as a whole and a part of it: kept points and cleared ones.
examples::ColourImage drawCleared(const Filter& filter, const Profile& before, const Profile& after, const Truth& truth,
                                  Range zoom) {
    constexpr Range kWhole{-41.0, 41.0};
    constexpr Range kHeights{-1.0, 14.0};
    const Profile cleared = clearedPoints(before, after);
    const auto curves = [&](Range x, double size) {
        return std::vector<Curve>{surface(truth, x),
                                  heights(points("kept", colours::kBlue, size), after, truth, x, kHeights),
                                  heights(points("cleared", colours::kOrange, size), cleared, truth, x, kHeights)};
    };
    Panel whole = emptyPanel(title(filter), 45, 310, kWhole, "height (mm)", kHeights);
    whole.curves = curves(kWhole, 2.0);
    Panel part = emptyPanel("", 410, 690, zoom, "height (mm)", kHeights);
    part.curves = curves(zoom, 3.0);
    for (Curve& curve : part.curves) curve.label.clear();
    return examples::drawPlot(kWidth, 760, {whole, part});
}

/// A part of the profile, and its errors in micrometres.
examples::ColourImage drawErrors(const Filter& filter, const Profile& before, const Profile& after, const Truth& truth,
                                 Range zoom, Range heightRange) {
    constexpr Range kErrors{-60.0, 60.0};
    constexpr double kAfter = 4.0;  // pixels
    Panel profile = emptyPanel(title(filter), 45, 375, zoom, "height (mm)", heightRange);
    profile.curves = {surface(truth, zoom),
                      heights(points("before", colours::kOrange, 3.0), before, truth, zoom, heightRange),
                      heights(points("after", colours::kBlue, kAfter), after, truth, zoom, heightRange)};
    Panel error = emptyPanel("", 475, 690, zoom, "error (\xC2\xB5m)", kErrors);
    error.curves = {errors(points("", colours::kOrange, 3.0), before, truth, zoom, kErrors),
                    errors(points("", colours::kBlue, kAfter), after, truth, zoom, kErrors)};
    return examples::drawPlot(kWidth, 760, {profile, error});
}

void drawPicture(const std::filesystem::path& folder, const Filter& filter, const Profile& before, const Profile& after,
                 const Truth& truth) {
    constexpr Range kPlate{-35.0, -15.0};
    constexpr Range kBead{-14.0, 8.0};
    constexpr Range kBeadHeights{7.6, 11.2};
    const auto picture = filter.afterOutliers ? drawErrors(filter, before, after, truth, kBead, kBeadHeights)
                                              : drawCleared(filter, before, after, truth, kPlate);
    examples::writePng(folder / ("filters_" + std::string(filter.name) + ".png"), picture);
}

void studyFilters(const Options& options) {
    studies::preparePicturesFolder(options.pictures);
    const scenes::Sensor sensor = scenes::standardSensor();
    const scenes::Scene scene = splashedWeldBead();
    const scenes::Renderer renderer(sensor, scene);
    Instrument instrument(sensor, {});
    std::vector<BeforeAndAfter> results(std::size(kFilters));
    for (int index = 0; index < options.frames; ++index) {
        const scenes::Frame frame = renderer.render({.frame = index, .seed = options.seed});
        const Truth truth{scene, sensor.tableDistance, index * scene.travelPerFrame};
        const Profile measured =
            instrument.profile(instrument.extract(studies::methodNamed("Cal2DPoint1"), frame.pixels));
        const Profile withoutOutliers =
            outlierdetect2(instrument.library(), outlierdetect1(instrument.library(), measured));
        for (std::size_t i = 0; i < std::size(kFilters); ++i) {
            const Profile& before = kFilters[i].afterOutliers ? withoutOutliers : measured;
            const Profile after = kFilters[i].apply(instrument.library(), before);
            results[i].before.add(before, truth);
            results[i].after.add(after, truth);
            if (!options.pictures.empty() && index == options.frames / 2)
                drawPicture(options.pictures, kFilters[i], before, after, truth);
        }
    }
    printTables(options, results);
}

void describe(CLI::App& app, Options& options) {
    app.add_option("--frames", options.frames, "Frames of the scan")
        ->option_text("N [100]")
        ->check(CLI::Range(1, 10000));
    app.add_option("--seed", options.seed, "Seed of everything random")->option_text("N [1]");
    studies::addPicturesOption(app, options.pictures);
}

}  // namespace

int main(int argc, char** argv) {
    Options options;
    return examples::runProgram(
        "korvane-filter-study",
        "Shows what each profile filter does to a weld bead with outliers and prints a Markdown table.", argc, argv,
        [&](CLI::App& app) { describe(app, options); }, [&] { studyFilters(options); });
}
