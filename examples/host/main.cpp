/// @file main.cpp
/// @brief korvane-host: runs the library on a stream of frames, from the command line.

#include <CLI/CLI.hpp>
#include <cstdio>
#include <string>

#include "common/Program.h"
#include "host/Run.h"
#include "host/Settings.h"
#include "scenes/SimulatedSensor.h"

namespace {

constexpr int kMostFrames = 100000;

void describe(CLI::App& app, host::Options& options, bool& listScenes) {
    auto* simulate =
        app.add_option("--simulate", options.scene, "Scene that the simulated sensor looks at (see --list-scenes)");
    simulate->option_text("SCENE [gauge-block]")->check(CLI::IsMember(scenes::sceneNames()));
    auto* frames = app.add_option("--frames", options.frames, "Number of simulated frames");
    frames->option_text("N [100]")->check(examples::within(1, kMostFrames));
    auto* seed = app.add_option("--seed", options.seed, "Seed of everything random in simulated frames");
    seed->option_text("N [1]")->check(examples::within(0, 4294967295.0));
    auto* exposure = app.add_option("--exposure", options.exposure, "Light of the first simulated frame, as a factor");
    exposure->option_text("X [1]")->check(examples::within(1e-3, 1e3));
    auto* flicker = app.add_option("--flicker", options.flicker, "Change of simulated light from frame to frame");
    flicker->option_text("X [0]")->check(examples::within(0.0, 1.0));

    auto* images = app.add_option("--images", options.images,
                                  "Recorded frames instead: one 8-bit grey PNG or PGM file, or a folder of them");
    images->option_text("PATH");
    for (CLI::Option* simulated : {simulate, frames, seed, exposure, flicker}) images->excludes(simulated);

    app.add_option("--settings", options.settings, "Settings to use; keys that it leaves out keep their defaults")
        ->option_text("FILE.json");
    app.add_option("--method", options.method, "Extraction method, instead of the one in the settings")
        ->option_text("NAME")
        ->check(CLI::IsMember(host::methodNames()));
    app.add_option("--output", options.output, "Folder for the results; replaces those of an earlier run")
        ->option_text("FOLDER [korvane-output]");
    app.add_option("--pictures", options.pictures,
                   "Frames that get an overlay and a profile plot: 0,10,20, all or none")
        ->option_text("FRAMES [first, middle, last]");

    app.add_option("--write-settings", options.writeSettings,
                   "Write the complete settings of such a run, a template to edit, and end")
        ->option_text("FILE.json");
    app.add_flag("--list-scenes", listScenes, "Name the scenes of the simulated sensor and end");
    app.set_version_flag("--version", examples::libraryVersion(), "Show the version of the library and end");
    app.get_formatter()->column_width(38);
}

void printScenes() {
    for (const std::string& name : scenes::sceneNames())
        std::printf("%-14s %s\n", name.c_str(), scenes::makeScene(name).description.c_str());
}

}  // namespace

int main(int argc, char** argv) {
    host::Options options;
    bool listScenes = false;
    const auto work = [&] {
        if (listScenes) {
            printScenes();
        } else if (!options.writeSettings.empty()) {
            host::writeEffectiveSettings(options);
            std::printf("settings written to %s\n", options.writeSettings.string().c_str());
        } else {
            const host::Report report = host::runHost(options);
            std::printf("%s\nresults in %s\n", host::reportText(report).c_str(), options.output.string().c_str());
        }
    };
    return examples::runProgram(
        "korvane-host", "Measures profiles from frames of a laser stripe, simulated or recorded.", argc, argv,
        [&](CLI::App& app) { describe(app, options, listScenes); }, work);
}
