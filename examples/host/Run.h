/// @file Run.h
/// @brief One run of the host: frames in, results out.

#ifndef KORVANE_HOST_RUN_H
#define KORVANE_HOST_RUN_H

#include <cstdint>
#include <filesystem>
#include <string>

#include "host/Report.h"

namespace host {

/// What the command line says.
struct Options {
    std::string scene = "gauge-block";  ///< simulated, unless `images` is given
    int frames = 100;
    std::uint32_t seed = 1;
    double exposure = 1.0;  ///< of the first simulated frame
    double flicker = 0.0;
    std::filesystem::path images;    ///< file or folder of recorded frames; empty for a simulated scene
    std::filesystem::path settings;  ///< empty for the built-in ones
    std::string method;              ///< goes before the one in the settings; empty for that one
    std::string pictures;            ///< "all", "none" or numbers with commas; empty for first, middle and last
    std::filesystem::path output = "korvane-output";
    std::filesystem::path writeSettings;  ///< write the effective settings there instead of running; empty for a run
};

/// Writes the settings with which `runHost` would run; throws `Failure`.
void writeEffectiveSettings(const Options& options);

/// Throws `Failure`; no result is left behind then.
Report runHost(const Options& options);

}  // namespace host

#endif  // KORVANE_HOST_RUN_H
