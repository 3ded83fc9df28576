/// @file main.cpp
/// @brief korvane-calibrate: finds the light surface of a sensor from views of a flat target, from the command line.

#include <CLI/CLI.hpp>
#include <cstdio>
#include <string>

#include "calibration/Report.h"
#include "calibration/Run.h"
#include "common/Program.h"
#include "host/Settings.h"

namespace {

constexpr int kMostViews = 100;

const char* const kDescription =
    "Calibrates the light surface of the simulated sensor from views of a flat plate at known poses,\n"
    "writes the calibration as a settings file for korvane-host, and measures the gauge block with it.\n"
    "The camera matrix and the lens distortion are taken as known: find them beforehand, with a lens\n"
    "calibration. All lengths are in millimetres.";

void describe(CLI::App& app, calibration::Options& options) {
    calibration::TargetPlan& plan = options.plan;
    auto* curved = app.add_flag("--curved", options.curvedSheet,
                                "Simulate a bent light sheet and fit all six coefficients, for Cal3DPoint2");
    app.add_flag("--plane", options.fitPlane, "Fit a plane to the bent sheet all the same, to see what it costs")
        ->needs(curved);

    app.add_option("--views", plan.views, "Number of views of the plate")
        ->option_text("N [9]")
        ->check(examples::within(1, kMostViews));
    app.add_option("--lowest", plan.lowest, "Height of the plate above the table in the first view")
        ->option_text("MM [0]")
        ->check(examples::within(-1000.0, 1000.0));
    app.add_option("--highest", plan.highest, "Height of the plate in the last view; the others lie evenly between")
        ->option_text("MM [24]")
        ->check(examples::within(-1000.0, 1000.0));
    app.add_option("--tilt", plan.tilt, "The views take turns with a plate that is level, tilted, tilted back")
        ->option_text("DEGREES [6]")
        ->check(examples::within(0.0, 45.0));
    app.add_option("--noise", plan.noise, "Standard deviation of the noise in the views, in grey levels")
        ->option_text("X [1.5]")
        ->check(examples::within(0.0, 100.0));
    app.add_option("--method", plan.method, "Extraction method, for the views and the gauge block")
        ->option_text("NAME [" + plan.method + "]")
        ->check(CLI::IsMember(host::methodNames()));
    app.add_option("--seed", plan.seed, "Seed of the noise")
        ->option_text("N [1]")
        ->check(examples::within(0, 4294967295.0));

    app.add_option("--output", options.output, "Folder for calibration.json and its picture")
        ->option_text("FOLDER [korvane-calibration]");
    app.set_version_flag("--version", examples::libraryVersion(), "Show the version of the library and end");
    app.get_formatter()->column_width(34);
}

}  // namespace

int main(int argc, char** argv) {
    calibration::Options options;
    const auto work = [&] {
        const calibration::Result result = calibration::runCalibration(options);
        std::printf("%s\ncalibration in %s\n", calibration::reportText(options, result).c_str(),
                    (options.output / "calibration.json").string().c_str());
    };
    return examples::runProgram(
        "korvane-calibrate", kDescription, argc, argv, [&](CLI::App& app) { describe(app, options); }, work);
}
