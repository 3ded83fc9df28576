/// @file Outputs.h
/// @brief The result files of a run.
///
/// - `profiles.csv`: one line per frame and column; the numbers read back to the same bits.
///   With a calibration: frame,column,valid,x,y,z, the profile with one point per column (before Downsample); x, y and
///   z are empty where valid is 0. Without one: frame,column,valid,row, the stripe's centre in full-sensor pixels.
/// - `cloud.ply`: the points that leave the chain (after Downsample where it is on), travel as second coordinate.
/// - `overlay_NNNN.png`, `profile_NNNN.png`: pictures of chosen frames.
/// - `heightmap.png`: the whole scan from above.
/// - `summary.json`: the report in figures.
///
/// A build without pictures writes profiles.csv, cloud.ply and summary.json.

#ifndef KORVANE_HOST_OUTPUTS_H
#define KORVANE_HOST_OUTPUTS_H

#include <filesystem>
#include <memory>
#include <optional>
#include <set>
#include <string>

#include "host/Chain.h"
#include "host/FrameSource.h"
#include "host/Report.h"
#include "host/ResultFolder.h"
#include "host/Settings.h"

namespace host {

class Outputs {
public:
    /// @param settings complete
    /// @param pictures the frames that get an overlay and a profile plot
    /// @param tableDistance output z of height 0 in simulated scenes; without it plots show z itself
    Outputs(const std::filesystem::path& folder, const Settings& settings, std::set<int> pictures,
            std::optional<double> tableDistance);
    ~Outputs();

    void addFrame(int index, const SourceFrame& frame, const ChainResult& result);

    /// Writes what needs the whole run and puts everything in its place.
    void finish(const Report& report);

private:
    struct State;
    std::unique_ptr<State> state_;
};

}  // namespace host

#endif  // KORVANE_HOST_OUTPUTS_H
