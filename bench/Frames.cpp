#include "bench/Frames.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <tuple>

namespace bench {

namespace {

constexpr int kStandardWidth = 1280;
constexpr double kStripeRow = 603.0;  // of the standard sensor: the middle of the stripes and their reflections

constexpr std::size_t kLeastBytesOfFrames = std::size_t{6} << 20;     // six times a usual second-level cache
constexpr std::size_t kMostBytesOfProfiles = std::size_t{256} << 10;  // a quarter of one
constexpr std::size_t kLeastCopies = 4;
constexpr std::size_t kMostProfiles = 8;

scenes::Sensor resized(scenes::Sensor sensor, Size size) {
    const double scale = static_cast<double>(size.width) / kStandardWidth;
    for (const int i : {0, 2, 4, 5}) sensor.calibration.CameraMatrix[i] *= scale;
    const int left = static_cast<int>(std::lround(sensor.roi.OffsetX * scale));
    const int top = static_cast<int>(std::lround(kStripeRow * scale)) - size.height / 2;
    return scenes::withRoi(sensor, left, top, size.width, size.height);
}

void keepFourGreys(Bytes& frame) {
    constexpr int kLevels = 4;
    for (unsigned char& pixel : frame)
        pixel = static_cast<unsigned char>(pixel * kLevels / 256 * (255 / (kLevels - 1)));
}

/// Half a disc at the top edge, a quarter of the frame high and off the middle.
void drawBlob(Bytes& frame, Size size) {
    const int radius = size.height / 4;
    const int centre = size.width / 3;
    for (int row = 0; row < radius; ++row) {
        for (int column = std::max(centre - radius, 0); column < std::min(centre + radius, size.width); ++column) {
            const int across = column - centre;
            if (row * row + across * across < radius * radius)
                frame[static_cast<std::size_t>(row) * static_cast<std::size_t>(size.width) +
                      static_cast<std::size_t>(column)] = 255;
        }
    }
}

Frames makeFrames(const std::string& kind, Size size, double exposure) {
    const std::size_t pixels = std::max(size.pixels(), std::size_t{1});
    constexpr std::size_t kMostCopies = 64;
    const std::size_t copies = std::clamp(kLeastBytesOfFrames / pixels + 1, kLeastCopies, kMostCopies);
    auto frames =
        std::make_shared<std::vector<Bytes>>(render(sceneOfKind(kind), size, static_cast<int>(copies), exposure));
    for (Bytes& frame : *frames) {
        if (kind == "few greys") keepFourGreys(frame);
        if (kind == "blob") drawBlob(frame, size);
    }
    return frames;
}

using KeptFrames = std::map<std::tuple<std::string, int, int, double>, Frames>;

KeptFrames& keptFrames() {
    static KeptFrames kept;
    return kept;
}

Frames keptFrames(const std::string& kind, Size size, double exposure) {
    Frames& frames = keptFrames()[{kind, size.width, size.height, exposure}];
    if (!frames) frames = makeFrames(kind, size, exposure);
    return frames;
}

}  // namespace

scenes::Sensor sensorOfSize(Size size) {
    return resized(scenes::standardSensor(), size);
}

scenes::Sensor curvedSheetSensorOfSize(Size size) {
    return resized(scenes::curvedSheetSensor(), size);
}

scenes::Scene sceneOfKind(const std::string& kind) {
    // Noise reaches 4.9 standard deviations. The built-in scene's own noise crosses 30 grey levels here and there.
    constexpr double kBackground = 10.0;
    constexpr double kNoise = 3.0;
    const bool hard = kind == "hard" || kind == "few greys";
    const bool specks = kind.find(" specks") != std::string::npos;
    const bool clean = kind == "clean" || kind == "blob" || specks;
    scenes::Scene scene = scenes::makeScene(hard ? "hard" : clean ? "gauge-block" : kind);
    if (specks) scene.look.specksPerColumn = std::stod(kind);
    if (hard || kind == "dark") {
        scene.look.background = kBackground;
        scene.look.backgroundRipple = 0.0;
        scene.look.noise = kNoise;
    }
    return scene;
}

std::vector<Bytes> render(const scenes::Scene& scene, Size size, int count, double exposure) {
    const scenes::Renderer renderer(sensorOfSize(size), scene);
    std::vector<Bytes> frames;
    for (int i = 0; i < count; ++i) frames.push_back(renderer.render({.frame = i, .exposure = exposure}).pixels);
    return frames;
}

Frames framesOfKind(const std::string& kind, Size size) {
    return keptFrames(kind, size, 1.0);
}

Frames brightFramesOfKind(const std::string& kind, Size size) {
    constexpr double kExposure = 3.0;
    return keptFrames(kind, size, kExposure);
}

void forgetFrames() {
    std::erase_if(keptFrames(), [](const auto& entry) { return entry.second.use_count() == 1; });
}

std::shared_ptr<const Measured> measuredProfiles(int columns) {
    static std::map<int, std::shared_ptr<const Measured>> kept;
    if (kept[columns]) return kept[columns];

    // A ROI that just holds the stripes.
    constexpr double kRowsPerColumn = 200.0 / kStandardWidth;
    const Size size{columns, std::max(static_cast<int>(kRowsPerColumn * columns), 1)};
    const std::size_t bytes = sizeof(KORVANELASERALGO::tagKorvaneLaserPoint3d) * static_cast<std::size_t>(columns);
    const std::size_t copies = std::clamp(kMostBytesOfProfiles / bytes, kLeastCopies, kMostProfiles);

    Stream stream(sensorOfSize(size));
    auto measured = std::make_shared<Measured>();
    for (Bytes& frame : render(sceneOfKind("hard"), size, static_cast<int>(copies))) {
        auto mask = std::make_unique<bool[]>(static_cast<std::size_t>(columns));
        Points2d points;
        Profile profile;
        stream.library.Cal2DPoint2(mask.get(), frame.data(), points);
        stream.library.Cal3DPoint1(mask.get(), points, profile);
        measured->masks.push_back(std::move(mask));
        measured->points.push_back(points);
        measured->profiles.push_back(profile);
    }
    return kept[columns] = measured;
}

Stream::Stream(const scenes::Sensor& sensor)
    : twin{.roi = sensor.roi, .calibration = sensor.calibration, .lineSelect = kLineSelect} {
    library.SetROIInfo(&twin.roi);
    library.SetCalibrationInfo(&twin.calibration);
    library.SetLineSelectInfo(&twin.lineSelect);
}

}  // namespace bench
