#include "host/Outputs.h"

#include <utility>
#include <vector>

#include "common/AtomicFile.h"
#include "common/Measured.h"
#include "host/CloudPly.h"
#include "host/ProfilesCsv.h"
#if KORVANE_HOST_PICTURES
#include "common/Overlay.h"
#include "common/Png.h"
#include "host/Pictures.h"
#endif

namespace host {
namespace {

/// Output y of the point where the light surface crosses the optical axis; the light of a bent surface lies before and
/// behind it.
double yOfLight(const KORVANELASERALGO::tagKorvaneLaserAlgoCalibrationInfo& calibration) {
    return calibration.RT[5] * calibration.LaserPlane[0] + calibration.RT[10];
}

#if KORVANE_HOST_PICTURES
std::string numbered(const std::string& prefix, int index) {
    std::string number = std::to_string(index);
    if (number.size() < 4) number.insert(0, 4 - number.size(), '0');
    return prefix + number + ".png";
}
#endif

}  // namespace

struct Outputs::State {
    ResultFolder folder;
    Settings settings;
    std::set<int> pictures;
    std::optional<double> tableDistance;
    ProfilesCsv csv;
    std::vector<CloudPoint> cloud;  // kept until the end: a PLY file begins with the number of its points
#if KORVANE_HOST_PICTURES
    examples::Scan scan;
#endif

    State(const std::filesystem::path& path, const Settings& chainSettings, std::set<int> chosen,
          std::optional<double> table)
        : folder(path),
          settings(chainSettings),
          pictures(std::move(chosen)),
          tableDistance(table),
          csv(folder.file("profiles.csv"), settings.calibration.has_value()) {}
};

Outputs::Outputs(const std::filesystem::path& folder, const Settings& settings, std::set<int> pictures,
                 std::optional<double> tableDistance)
    : state_(std::make_unique<State>(folder, settings, std::move(pictures), tableDistance)) {
#if KORVANE_HOST_PICTURES
    state_->scan = emptyScan(tableDistance, settings.chain.travelPerFrame);
#endif
}

Outputs::~Outputs() = default;

void Outputs::addFrame(int index, const SourceFrame& frame, const ChainResult& result) {
    State& state = *state_;
    state.csv.addFrame(index, result);

    if (state.settings.calibration) {
        const double travel = index * state.settings.chain.travelPerFrame - yOfLight(*state.settings.calibration);
        for (const auto& point : result.output)
            if (examples::isMeasured(point))
                state.cloud.push_back(
                    {static_cast<float>(point.x), static_cast<float>(travel + point.y), static_cast<float>(point.z)});
    }

#if KORVANE_HOST_PICTURES
    if (state.settings.calibration) state.scan.lines.push_back(scanLine(result, state.tableDistance));
    if (!state.pictures.contains(index)) return;
    examples::writePng(state.folder.file(numbered("overlay_", index)),
                       examples::drawOverlay(frame.image, result.points, result.found, state.settings.roi->OffsetY));
    if (state.settings.calibration)
        examples::writePng(state.folder.file(numbered("profile_", index)),
                           drawProfile(frame, result, state.tableDistance));
#else
    static_cast<void>(frame);
#endif
}

void Outputs::finish(const Report& report) {
    State& state = *state_;
    state.csv.finish();
    if (state.settings.calibration) writePly(state.folder.file("cloud.ply"), state.cloud);
#if KORVANE_HOST_PICTURES
    if (state.settings.calibration) {
        state.scan.title = report.source + ", " + std::to_string(report.frames) + " frames, " + report.method;
        examples::writePng(state.folder.file("heightmap.png"), examples::drawHeightMap(state.scan));
    }
#endif
    examples::AtomicFile summary(state.folder.file("summary.json"));
    summary.write(reportJson(report));
    summary.commit();
    state.folder.commit();
}

}  // namespace host
