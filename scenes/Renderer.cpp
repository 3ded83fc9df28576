// Draws the frame: lit points become stripes with a Gaussian cross-section; reflections, glints, gaps, specks,
// background and noise join them; at last everything is rounded to bytes.

#include <algorithm>
#include <cmath>
#include <cstddef>

#include "scenes/LitPoints.h"
#include "scenes/PortableMath.h"
#include "scenes/SimulatedSensor.h"

namespace scenes {

namespace {

/// Every random feature draws from a stream of its own: switching one off leaves the others as they are.
enum Purpose : std::uint32_t { kFlicker, kGaps, kGlints, kSpecks, kNoise };

/// Grey levels that the light adds to the background, before noise and saturation; row-major.
struct LightImage {
    int width;
    int height;
    std::vector<float> grey;

    /// Adds one column of a stripe: a Gaussian along the rows, cut where it no longer matters.
    void addCrossSection(int column, double centreRow, double sigmaRows, double peak) {
        constexpr double kReachInSigmas = 6.0;  // the Gaussian is 1.5e-8 of its peak there
        if (peak <= 0.0 || sigmaRows <= 0.0) return;
        const double reach = kReachInSigmas * sigmaRows;
        const double top = std::max(std::ceil(centreRow - reach), 0.0);
        const double bottom = std::min(std::floor(centreRow + reach), height - 1.0);
        for (double row = top; row <= bottom; row += 1.0) {
            const double distance = (row - centreRow) / sigmaRows;
            const std::size_t pixel =
                static_cast<std::size_t>(row) * static_cast<std::size_t>(width) + static_cast<std::size_t>(column);
            grey[pixel] += static_cast<float>(peak * expOfMinus(0.5 * distance * distance));
        }
    }
};

/// Marks about `share` of the columns, in groups of `shortest` to `longest` columns.
std::vector<bool> randomGroups(int width, double share, int shortest, int longest, RandomStream random) {
    std::vector<bool> marked(static_cast<std::size_t>(width), false);
    if (share <= 0.0) return marked;

    // A group of L columns starts with probability p at each free column. The free way between two groups is then
    // (1 - p) / p columns long on average, and p follows from share = L / (L + (1 - p) / p).
    const double meanLength = 0.5 * (shortest + longest);
    const double startProbability = share / (share + meanLength * (1.0 - share));
    int left = 0;
    for (auto&& column : marked) {
        if (left == 0 && random.uniform() < startProbability) left = random.integer(shortest, longest);
        if (left > 0) {
            column = true;
            --left;
        }
    }
    return marked;
}

/// Small bright spots, each about three columns wide.
void addSpecks(LightImage& light, const StripeLook& look, double brightness, RandomStream random) {
    for (int column = 0; column < light.width; ++column) {
        int specks = static_cast<int>(look.specksPerColumn);
        if (random.uniform() < look.specksPerColumn - specks) ++specks;
        for (; specks > 0; --specks) {
            const double row = random.uniform(0.0, light.height - 1.0);
            const double sigmaRows = random.uniform(0.6, 1.2);
            const double peak = brightness * look.peak * random.uniform(0.3, 0.9);
            light.addCrossSection(column, row, sigmaRows, peak);
            if (column > 0) light.addCrossSection(column - 1, row, sigmaRows, 0.5 * peak);
            if (column + 1 < light.width) light.addCrossSection(column + 1, row, sigmaRows, 0.5 * peak);
        }
    }
}

/// Background plus light plus noise, rounded half up and saturated.
std::vector<unsigned char> exposeAndRound(const LightImage& light, const StripeLook& look, double brightness,
                                          const RandomStream& random) {
    // The ripple is a wave across plus a wave down the frame, each of half the range.
    constexpr double kWavesAcross = 1.5;
    constexpr double kWavesDown = 1.0;
    const double amplitude = 0.25 * look.backgroundRipple;
    std::vector<float> acrossLevel(static_cast<std::size_t>(light.width));
    for (int column = 0; column < light.width; ++column)
        acrossLevel[static_cast<std::size_t>(column)] =
            static_cast<float>(brightness * amplitude * parabolicWave(kWavesAcross * column / light.width));

    constexpr float kWhite = 255.0F;
    constexpr float kHalf = 0.5F;
    const float noisePerCount = static_cast<float>(look.noise / RandomStream::kNormalSumDeviation);
    std::vector<unsigned char> pixels(light.grey.size());
    std::size_t pixel = 0;
    for (int row = 0; row < light.height; ++row) {
        const double downLevel = look.background + amplitude * parabolicWave(kWavesDown * row / light.height);
        const float rowLevel = static_cast<float>(brightness * downLevel) + kHalf;
        for (const float columnLevel : acrossLevel) {
            const int noise = random.normalSumAt(pixel) - RandomStream::kNormalSumMean;
            const float level = rowLevel + columnLevel + light.grey[pixel] + noisePerCount * static_cast<float>(noise);
            pixels[pixel] = static_cast<unsigned char>(std::clamp(level, 0.0F, kWhite));
            ++pixel;
        }
    }
    return pixels;
}

}  // namespace

struct Renderer::State {
    Sensor sensor;
    Scene scene;
    LitPointFinder finder;
};

Renderer::Renderer(const Sensor& sensor, const Scene& scene)
    : state_(std::make_unique<State>(State{sensor, scene, LitPointFinder(sensor)})) {}
Renderer::~Renderer() = default;
Renderer::Renderer(Renderer&&) noexcept = default;
Renderer& Renderer::operator=(Renderer&&) noexcept = default;

Frame Renderer::render(const Shot& shot) const {
    const Scene& scene = state_->scene;
    const StripeLook& look = scene.look;
    const int width = std::max(state_->sensor.roi.Width, 0);
    const int height = std::max(state_->sensor.roi.Height, 0);
    const auto stream = [&shot](Purpose purpose) {
        return RandomStream(shot.seed, static_cast<std::uint32_t>(shot.frame), purpose);
    };

    // Brightness of this frame, and the columns in which the stripe is missing or glints.
    const double brightness = std::max(shot.exposure * (1.0 + shot.flicker * stream(kFlicker).normal()), 0.0);
    constexpr int kShortestGap = 3;
    constexpr int kLongestGap = 14;
    const std::vector<bool> gap = randomGroups(width, look.dropoutShare, kShortestGap, kLongestGap, stream(kGaps));
    constexpr int kShortestGlint = 4;
    constexpr int kLongestGlint = 20;
    const std::vector<bool> glint = randomGroups(width, look.shine, kShortestGlint, kLongestGlint, stream(kGlints));
    constexpr double kGlintBrightness = 4.0;
    constexpr double kGlintWidth = 3.0;

    // Stripes and their truth.
    Frame frame;
    frame.truth.assign(static_cast<std::size_t>(width), TruePoint{});
    LightImage light{width, height,
                     std::vector<float>(static_cast<std::size_t>(width) * static_cast<std::size_t>(height))};
    const double travel = shot.travelOffset + shot.frame * scene.travelPerFrame;
    const double topRow = state_->sensor.roi.OffsetY;
    std::vector<LitPoint> litPoints;
    for (int column = 0; column < width && look.peak > 0.0; ++column) {
        const auto index = static_cast<std::size_t>(column);
        const double peak = brightness * look.peak * (glint[index] ? kGlintBrightness : 1.0);
        const double sigmaRows = look.sigmaRows * (glint[index] ? kGlintWidth : 1.0);
        state_->finder.find(column, scene, travel, litPoints);
        for (const LitPoint& lit : litPoints) {
            const double row = lit.row - topRow;
            light.addCrossSection(column, row + look.reflectionRows, look.sigmaRows,
                                  brightness * look.peak * look.reflection);
            if (gap[index]) continue;
            light.addCrossSection(column, row, sigmaRows, peak);
            if (!frame.truth[index].visible && row >= 0.0 && row <= height - 1.0)
                frame.truth[index] = {.visible = true, .row = lit.row, .point = lit.point};
        }
    }

    addSpecks(light, look, brightness, stream(kSpecks));
    frame.pixels = exposeAndRound(light, look, brightness, stream(kNoise));
    return frame;
}

}  // namespace scenes
