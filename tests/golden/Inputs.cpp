#include "golden/Inputs.h"

#include <algorithm>
#include <cstddef>
#include <utility>

#include "scenes/PortableMath.h"

namespace golden {
namespace {

using scenes::RandomStream;
using scenes::Sensor;

enum Purpose : std::uint32_t { kRows, kHeights, kOutliers, kGaps, kTilts };

// A disc around the middle of the top edge.
Bytes withBlob(Bytes pixels, const Sensor& sensor) {
    constexpr unsigned char kSaturated = 255;
    const int radius = std::min(sensor.roi.Height / 3, 60);
    for (int row = 0; row < radius; ++row) {
        for (int column = 0; column < sensor.roi.Width; ++column) {
            const int across = column - sensor.roi.Width / 2;
            if (across * across + row * row < radius * radius)
                pixels[static_cast<std::size_t>(row * sensor.roi.Width + column)] = kSaturated;
        }
    }
    return pixels;
}

View makeView(const Sensor& sensor, const char* sceneName, int number) {
    constexpr double kLongerExposure = 5.0;
    constexpr double kRowNoise = 0.3;      // rows
    constexpr double kHeightNoise = 0.05;  // mm
    constexpr double kOutlier = 9.0;       // mm
    constexpr double kOutlierShare = 0.04;
    constexpr double kGapShare = 0.05;

    const std::uint32_t seed = static_cast<std::uint32_t>(number);
    const scenes::Renderer renderer(sensor, scenes::makeScene(sceneName));
    const scenes::Frame frame = renderer.render({.frame = number, .seed = seed});
    View view;
    view.sensor = sensor;
    view.pixels = frame.pixels;
    view.longer = renderer.render({.frame = number, .seed = seed + 1, .exposure = kLongerExposure}).pixels;
    view.blob = withBlob(frame.pixels, sensor);

    const std::size_t columns = frame.truth.size();
    view.mask = std::make_unique<bool[]>(columns);
    RandomStream rows(seed, 0, kRows);
    RandomStream heights(seed, 0, kHeights);
    RandomStream outliers(seed, 0, kOutliers);
    RandomStream gaps(seed, 0, kGaps);
    const double offsetX = sensor.roi.OffsetX;
    const double offsetY = sensor.roi.OffsetY;
    for (std::size_t column = 0; column < columns; ++column) {
        const scenes::TruePoint& truth = frame.truth[column];
        view.mask[column] = truth.visible;
        view.points.push_back(truth.visible ? Points2d::value_type{offsetX + static_cast<double>(column),
                                                                   truth.row + kRowNoise * rows.normal()}
                                            : Points2d::value_type{offsetX, offsetY});
        const double outlier = outliers.uniform() < kOutlierShare ? kOutlier : 0.0;
        const double height = truth.point.z + kHeightNoise * heights.normal() + outlier;
        const bool empty = !truth.visible || gaps.uniform() < kGapShare;
        view.profile.push_back(empty ? Profile::value_type{0.0, 0.0, 0.0}
                                     : Profile::value_type{truth.point.x, truth.point.y, height});
    }
    return view;
}

// Exposures that stand still, step by little and by much, and come back.
Sequence makeSequence(const Sensor& sensor, const char* sceneName) {
    constexpr double kExposures[] = {0.3, 0.3, 0.5, 0.505, 1.0, 1.0, 2.0, 4.0, 4.0, 4.005, 1.5, 1.0};
    constexpr double kFlicker = 0.1;
    const scenes::Renderer renderer(sensor, scenes::makeScene(sceneName));
    Sequence sequence;
    sequence.sensor = sensor;
    int number = 0;
    for (const double exposure : kExposures) {
        sequence.frames.push_back(
            {renderer.render({.frame = number, .exposure = exposure, .flicker = kFlicker}).pixels, exposure});
        ++number;
    }
    return sequence;
}

// Tilts as light sheets have them, and a few special ones.
std::vector<Numbers> makePlanes() {
    constexpr int kPlanes = 1000;
    std::vector<Numbers> planes = {{300.0, 0.0, 1.0}, {0.0, 0.5, 30.0}, {1000.0, 1e-3, 1e-3}, {300.0, 0.1, 0.0}};
    RandomStream random(1, 0, kTilts);
    for (int i = 0; i < kPlanes; ++i) {
        const double c0 = random.uniform(100.0, 500.0);
        const double c1 = random.uniform(-0.5, 0.5);
        const double c2 = random.uniform(-4.0, 4.0);
        planes.push_back({c0, c1, c2});
    }
    return planes;
}

}  // namespace

Inputs makeInputs() {
    const Sensor sensor = scenes::standardSensor();
    const Sensor curved = scenes::curvedSheetSensor();
    Inputs inputs;

    // The whole region, odd regions of every scene, a bent light sheet, and regions of a few pixels.
    inputs.views.push_back(makeView(sensor, "hard", 3));
    int number = 10;
    for (const std::string& name : scenes::sceneNames()) {
        inputs.views.push_back(makeView(withRoi(sensor, 401, 301, 641, 517), name.c_str(), number));
        ++number;
    }
    inputs.views.push_back(makeView(withRoi(curved, 83, 333, 1279, 401), "weld-bead", 20));
    inputs.views.push_back(makeView(withRoi(curved, 0, 400, 322, 300), "hard", 21));
    const std::pair<int, int> smallSizes[] = {{37, 61}, {61, 41}, {40, 7}, {3, 5}, {2, 2}, {1, 1}, {0, 0}};
    for (const auto& [width, height] : smallSizes) {
        inputs.views.push_back(makeView(withRoi(sensor, 700, 560, width, height), "noisy", number));
        ++number;
    }

    inputs.sequences.push_back(makeSequence(withRoi(sensor, 501, 401, 319, 251), "gauge-block"));
    inputs.sequences.push_back(makeSequence(withRoi(curved, 640, 450, 160, 128), "weld-bead"));
    inputs.planes = makePlanes();
    return inputs;
}

}  // namespace golden
