#include "common/HeightMap.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <limits>

#include "common/Plot.h"

namespace examples {
namespace {

// The picture, in pixels.
constexpr int kWidth = 1200;
constexpr int kHeight = 700;
constexpr int kLeft = 90;
constexpr int kTop = 50;
constexpr int kRight = 1030;
constexpr int kBottom = 625;
constexpr int kBarLeft = 1060;
constexpr int kBarRight = 1085;

constexpr Colour kNoMeasurement{205, 205, 205};
constexpr double kShareCutOff = 0.001;  // of the heights at either end, so that a few outliers do not take all colours

struct Range {
    double lowest;
    double highest;
};

/// From low to high: dark blue, green, yellow; the lightness grows evenly, so the map survives a grey printer.
Colour heightColour(double share) {
    constexpr std::array<Colour, 6> kStops{
        {{68, 1, 84}, {65, 68, 135}, {42, 120, 142}, {34, 168, 132}, {122, 209, 81}, {253, 231, 37}}};
    const double position = std::clamp(share, 0.0, 1.0) * (kStops.size() - 1);
    const std::size_t below = std::min(static_cast<std::size_t>(position), kStops.size() - 2);
    return blended(kStops[below], kStops[below + 1], position - static_cast<double>(below));
}

bool isMeasured(const ScanLine& line, std::size_t i) {
    return std::isfinite(line.x[i]) && std::isfinite(line.height[i]);
}

Range xRange(const Scan& scan) {
    Range range{std::numeric_limits<double>::infinity(), -std::numeric_limits<double>::infinity()};
    for (const ScanLine& line : scan.lines)
        for (std::size_t i = 0; i < line.x.size(); ++i)
            if (isMeasured(line, i)) {
                range.lowest = std::min(range.lowest, static_cast<double>(line.x[i]));
                range.highest = std::max(range.highest, static_cast<double>(line.x[i]));
            }
    return range.lowest < range.highest ? range : Range{0.0, 1.0};
}

Range heightRange(const Scan& scan) {
    std::vector<float> heights;
    for (const ScanLine& line : scan.lines)
        for (std::size_t i = 0; i < line.x.size(); ++i)
            if (isMeasured(line, i)) heights.push_back(line.height[i]);
    if (heights.empty()) return {0.0, 1.0};
    const auto cut = static_cast<std::ptrdiff_t>(kShareCutOff * static_cast<double>(heights.size()));
    const auto low = heights.begin() + cut;
    const auto high = heights.end() - 1 - cut;
    std::nth_element(heights.begin(), low, heights.end());
    const double lowest = static_cast<double>(*low);
    std::nth_element(heights.begin(), high, heights.end());
    const double highest = static_cast<double>(*high);
    return highest > lowest ? Range{lowest, highest} : Range{lowest - 0.5, lowest + 0.5};
}

/// Fills the picture's columns between two neighbouring points of a profile.
void drawSpan(ColourImage& map, int row, Range x, Range height, const ScanLine& line, std::size_t i, std::size_t next) {
    const double pixelsPerUnit = map.width / (x.highest - x.lowest);
    const double from = (static_cast<double>(line.x[i]) - x.lowest) * pixelsPerUnit;
    const double to = (static_cast<double>(line.x[next]) - x.lowest) * pixelsPerUnit;
    const int first = std::max(0, static_cast<int>(std::floor(std::min(from, to))));
    const int last = std::min(map.width - 1, static_cast<int>(std::floor(std::max(from, to))));
    for (int column = first; column <= last; ++column) {
        const double share = to == from ? 0.0 : std::clamp((column + 0.5 - from) / (to - from), 0.0, 1.0);
        const double value =
            (1.0 - share) * static_cast<double>(line.height[i]) + share * static_cast<double>(line.height[next]);
        map.at(row, column) = heightColour((value - height.lowest) / (height.highest - height.lowest));
    }
}

/// The scan from above, the first line at the bottom.
ColourImage drawMap(const Scan& scan, Range x, Range height) {
    ColourImage map(kRight - kLeft, kBottom - kTop, kNoMeasurement);
    const int lines = static_cast<int>(scan.lines.size());
    for (int row = 0; row < map.height; ++row) {
        const int fromBottom = map.height - 1 - row;
        const ScanLine& line =
            scan.lines[static_cast<std::size_t>(static_cast<long long>(fromBottom) * lines / map.height)];
        for (std::size_t i = 0; i < line.x.size(); ++i) {
            if (!isMeasured(line, i)) continue;
            const bool hasNeighbour = i + 1 < line.x.size() && isMeasured(line, i + 1);
            drawSpan(map, row, x, height, line, i, hasNeighbour ? i + 1 : i);
        }
    }
    return map;
}

ColourImage drawScale(bool upsideDown) {
    ColourImage scale(kBarRight - kBarLeft, kBottom - kTop, Colour{});
    for (int row = 0; row < scale.height; ++row) {
        const double fromTop = (row + 0.5) / scale.height;
        for (int column = 0; column < scale.width; ++column)
            scale.at(row, column) = heightColour(upsideDown ? fromTop : 1.0 - fromTop);
    }
    return scale;
}

}  // namespace

ColourImage drawHeightMap(const Scan& scan) {
    const Range x = xRange(scan);
    const Range height = heightRange(scan);

    Panel map;
    map.left = kLeft;
    map.top = kTop;
    map.right = kRight;
    map.bottom = kBottom;
    map.title = scan.title;
    map.x = {scan.xLabel, x.lowest, x.highest};
    map.y = {scan.travelLabel, 0.0, scan.travelPerLine * static_cast<double>(scan.lines.size())};
    map.grid = false;
    map.raster = drawMap(scan, x, height);

    Panel bar;
    bar.left = kBarLeft;
    bar.top = kTop;
    bar.right = kBarRight;
    bar.bottom = kBottom;
    bar.y = {scan.heightLabel, height.lowest, height.highest};
    if (scan.heightsGrowDownwards) std::swap(bar.y.first, bar.y.last);
    bar.yOnTheRight = true;
    bar.grid = false;
    bar.raster = drawScale(scan.heightsGrowDownwards);

    return drawPlot(kWidth, kHeight, {map, bar});
}

}  // namespace examples
