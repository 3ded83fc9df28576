#include "host/Run.h"

#include <algorithm>
#include <charconv>
#include <memory>
#include <optional>
#include <set>
#include <string_view>
#include <system_error>

#include "common/Failure.h"
#include "common/Measured.h"
#include "host/Chain.h"
#include "host/FrameSource.h"
#include "host/Outputs.h"
#include "host/Settings.h"
#include "host/Terminal.h"
#include "scenes/SimulatedSensor.h"

namespace host {
namespace {

using examples::Failure;

// Line selection where the settings have none. Simulated: brighter than a reflection of half the stripe's light, wider
// than a speck. Recorded: nearly anything, for nobody knows how bright the stripe is. Of several, the brightest.
constexpr KORVANELASERALGO::tagKorvaneLaserAlgoLineSelectInfo kSimulatedLine{140, 255, 4, 40, 1};
constexpr KORVANELASERALGO::tagKorvaneLaserAlgoLineSelectInfo kAnyLine{30, 255, 2, 40, 1};

/// A source of frames and the settings that go with it.
struct Stream {
    std::unique_ptr<FrameSource> source;
    Settings settings;
    std::optional<double> tableDistance;  // simulated scenes only
};

std::string whereSettingsAre(const Options& options) {
    return options.settings.empty() ? "settings" : options.settings.string();
}

/// The defaults, the file over them, the command line over both.
Settings settingsFor(const Options& options, Settings settings) {
    if (!options.settings.empty()) readSettings(options.settings, settings);
    if (!options.method.empty()) settings.chain.method = options.method;
    return settings;
}

Stream simulatedStream(const Options& options) {
    scenes::Scene scene = scenes::makeScene(options.scene);
    Stream stream;
    Settings& settings = stream.settings;
    settings.lineSelect = kSimulatedLine;
    settings.chain.travelPerFrame = scene.travelPerFrame;
    settings = settingsFor(options, settings);
    scene.travelPerFrame = settings.chain.travelPerFrame;

    // The second-order conversion measures with a bent light sheet, so the sensor gets one.
    scenes::Sensor sensor =
        settings.chain.cal3d == "Cal3DPoint2" ? scenes::curvedSheetSensor() : scenes::standardSensor();
    if (settings.roi) {
        const auto& roi = *settings.roi;
        if (roi.OffsetX + roi.Width > scenes::kChipWidth || roi.OffsetY + roi.Height > scenes::kChipHeight)
            throw Failure(whereSettingsAre(options) + ": ROI leaves the simulated chip of " +
                          std::to_string(scenes::kChipWidth) + " x " + std::to_string(scenes::kChipHeight) + " pixels");
        sensor = scenes::withRoi(sensor, roi.OffsetX, roi.OffsetY, roi.Width, roi.Height);
    }
    settings.roi = sensor.roi;
    if (!settings.calibration) settings.calibration = sensor.calibration;
    stream.tableDistance = sensor.tableDistance;

    SimulatedSource::Options shots;
    shots.frames = options.frames;
    shots.seed = options.seed;
    shots.flicker = options.flicker;
    shots.secondExposure = settings.chain.mergeImg.enabled ? settings.chain.mergeImg.secondExposure : 0.0;
    stream.source = std::make_unique<SimulatedSource>(sensor, scene, shots);
    return stream;
}

Stream recordedStream(const Options& options) {
    Stream stream;
    stream.settings.lineSelect = kAnyLine;
    stream.settings = settingsFor(options, stream.settings);
    if (stream.settings.chain.autoExposure.enabled)
        throw Failure(whereSettingsAre(options) +
                      ": Chain.AutoExposure needs a simulated scene; recorded frames cannot be exposed anew");
    auto source = std::make_unique<RecordedSource>(options.images, stream.settings.chain.mergeImg.enabled);
    if (!stream.settings.roi) stream.settings.roi = source->wholeFrame();
    stream.source = std::move(source);
    return stream;
}

Stream openStream(const Options& options) {
    Stream stream = options.images.empty() ? simulatedStream(options) : recordedStream(options);
    completeSettings(stream.settings, whereSettingsAre(options));
    return stream;
}

/// The frames that get pictures.
std::set<int> chosenFrames(const std::string& list, int frames) {
    std::set<int> chosen;
    if (list == "none") return chosen;
    if (list.empty()) return {0, frames / 2, frames - 1};
    for (int i = 0; list == "all" && i < frames; ++i) chosen.insert(i);
    if (list == "all") return chosen;

    std::string_view rest = list;
    while (true) {
        const std::string_view entry = rest.substr(0, rest.find(','));
        int number = -1;
        const auto [end, error] = std::from_chars(entry.data(), entry.data() + entry.size(), number);
        if (error != std::errc() || end != entry.data() + entry.size())
            throw Failure("--pictures: '" + list + "' is not all, none or a list of frame numbers such as 0,10,20");
        if (number < 0 || number >= frames)
            throw Failure("--pictures: there is no frame " + std::string(entry) + "; the run has frames 0 to " +
                          std::to_string(frames - 1));
        chosen.insert(number);
        if (entry.size() == rest.size()) return chosen;
        rest.remove_prefix(entry.size() + 1);
    }
}

void requireSize(const SourceFrame& frame, const KORVANELASERALGO::tagKorvaneLaserAlgoROIInfo& roi) {
    if (frame.image.width != roi.Width || frame.image.height != roi.Height)
        throw Failure(frame.name + ": " + std::to_string(frame.image.width) + " x " +
                      std::to_string(frame.image.height) + " pixels, but the ROI has " + std::to_string(roi.Width) +
                      " x " + std::to_string(roi.Height));
}

void addToReport(Report& report, const SourceFrame& frame, const ChainResult& result) {
    ++report.frames;
    report.columns += static_cast<long long>(result.found.size());
    report.withStripe += std::count(result.found.begin(), result.found.end(), true);
    report.measured += std::count_if(result.filtered.begin(), result.filtered.end(), examples::isMeasured);
    if (!frame.truth.empty()) {
        report.unfiltered.add(result.unfiltered, frame.truth);
        report.filtered.add(result.filtered, frame.truth);
    }
}

}  // namespace

void writeEffectiveSettings(const Options& options) {
    writeSettings(options.writeSettings, openStream(options).settings);
}

Report runHost(const Options& options) {
    const Stream stream = openStream(options);
    const Settings& settings = stream.settings;
    const int frames = stream.source->frameCount();

    Report report;
    report.source = stream.source->description();
    report.method = settings.chain.method;
    report.roi = *settings.roi;
    report.hasCalibration = settings.calibration.has_value();
    report.hasTruth = stream.tableDistance.has_value();

    Chain chain(settings);
    Outputs outputs(options.output, settings, chosenFrames(options.pictures, frames), stream.tableDistance);
    ProgressBar progress(frames);
    catchInterruption();
    double exposure = options.exposure;
    if (settings.chain.autoExposure.enabled) report.exposures.push_back(exposure);
    for (int index = 0; index < frames; ++index) {
        const SourceFrame frame = stream.source->frame(index, exposure);
        requireSize(frame, *settings.roi);

        const ChainResult result = chain.run(frame, exposure);
        exposure = result.nextExposure;
        if (settings.chain.autoExposure.enabled) report.exposures.push_back(exposure);
        addToReport(report, frame, result);
        outputs.addFrame(index, frame, result);

        progress.show(index + 1);
        if (isInterrupted()) throw Failure("interrupted at frame " + std::to_string(index) + "; no results were kept");
    }
    report.stages = chain.stageTimes();
    outputs.finish(report);
    return report;
}

}  // namespace host
