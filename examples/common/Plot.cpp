// PLplot draws on one stream at a time and keeps it in global state, so `drawPlot` opens and closes it within one call.
// Its cairo driver draws into memory that the caller owns and keeps what is there already: rasters go in first.

#include "common/Plot.h"

#include <plplot.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstring>
#include <limits>
#include <utility>

#include "common/Failure.h"

namespace examples {
namespace {

const char* const kDriver = "memcairo";
constexpr double kTextScale = 0.75;    // of PLplot's own size of letters
constexpr double kLabelLines = 4.2;    // distance of a y label from its axis, in letter heights
constexpr double kLetterWidth = 0.95;  // mean, in letter heights
constexpr double kLegendGap = 2.0;     // between two names above a panel, in letters
constexpr Colour kGridColour{225, 225, 225};
constexpr int kDotSymbol = 17;  // PLplot's filled circle

/// PLplot asks the user when a driver is missing, so look first.
void requireDriver() {
    std::array<const char*, 64> menu{};
    std::array<const char*, 64> names{};
    const char** menuStart = menu.data();
    const char** nameStart = names.data();
    int count = static_cast<int>(names.size());
    plgDevs(&menuStart, &nameStart, &count);
    for (int i = 0; i < count; ++i)
        if (std::strcmp(names[static_cast<std::size_t>(i)], kDriver) == 0) return;
    throw Failure("plots need PLplot's cairo driver, which is not installed");
}

void useColour(Colour colour) {
    plscol0(1, colour.red, colour.green, colour.blue);
    plcol0(1);
}

/// PLplot reads # as the start of a command.
std::string plainText(const std::string& text) {
    std::string plain;
    for (const char c : text) plain += c == '#' ? std::string("##") : std::string(1, c);
    return plain;
}

void drawRaster(ColourImage& picture, const Panel& panel) {
    const int width = panel.right - panel.left;
    const int height = panel.bottom - panel.top;
    for (int row = 0; row < height; ++row)
        for (int column = 0; column < width; ++column)
            picture.at(panel.top + row, panel.left + column) =
                panel.raster->at(row * panel.raster->height / height, column * panel.raster->width / width);
}

void drawLine(const Curve& curve) {
    plwidth(curve.width);
    std::size_t start = 0;
    for (std::size_t i = 0; i <= curve.x.size(); ++i) {
        if (i < curve.x.size() && std::isfinite(curve.x[i]) && std::isfinite(curve.y[i])) continue;
        if (i > start) plline(static_cast<int>(i - start), curve.x.data() + start, curve.y.data() + start);
        start = i + 1;
    }
}

void drawDots(const Curve& curve) {
    plssym(0.0, 0.25 * curve.width);
    for (std::size_t i = 0; i < curve.x.size(); ++i)
        if (std::isfinite(curve.x[i]) && std::isfinite(curve.y[i])) plpoin(1, &curve.x[i], &curve.y[i], kDotSymbol);
}

/// The names of the curves, above the panel, from its right-hand corner to the left. PLplot does not tell how long a
/// text becomes, so letters count with a mean width.
void drawLegend(const Panel& panel) {
    double defaultLetterHeight = 0.0;
    double letterHeight = 0.0;  // millimetres, as the sides of the panel
    plgchr(&defaultLetterHeight, &letterHeight);
    double left = 0.0;
    double right = 0.0;
    double bottom = 0.0;
    double top = 0.0;
    plgspa(&left, &right, &bottom, &top);

    double position = 1.0;
    // From the right to the left.
    for (auto curve = panel.curves.rbegin(); curve != panel.curves.rend(); ++curve) {  // NOLINT(modernize-loop-convert)
        if (curve->label.empty()) continue;
        useColour(curve->colour);
        plmtex("t", 1.0, position, 1.0, plainText(curve->label).c_str());
        const double letters = static_cast<double>(curve->label.size()) + kLegendGap;
        position -= letters * kLetterWidth * letterHeight / (right - left);
    }
}

/// Frame, ticks and numbers. Ticks point inwards on all sides; around a raster, where they would be lost, outwards on
/// the sides that carry numbers.
void drawBox(const Panel& panel) {
    const bool outwards = panel.raster.has_value();
    const bool xIsNumbered = !panel.x.label.empty();
    const std::string xSides = !outwards ? "bcst" : xIsNumbered ? "bist" : "b";
    const std::string ySides = !outwards ? "bcstv" : panel.yOnTheRight ? "cistv" : "bistv";
    const double tickScale = outwards ? 0.5 : 0.7;
    plsmaj(0.0, tickScale);
    plsmin(0.0, tickScale);
    plbox((xSides + (xIsNumbered ? "n" : "")).c_str(), 0.0, 0, (ySides + (panel.yOnTheRight ? "m" : "n")).c_str(), 0.0,
          0);
    plbox("bc", 0.0, 0, "bc", 0.0, 0);
}

void drawPanel(const Panel& panel, int width, int height) {
    plvpor(static_cast<double>(panel.left) / width, static_cast<double>(panel.right) / width,
           1.0 - static_cast<double>(panel.bottom) / height, 1.0 - static_cast<double>(panel.top) / height);
    const auto end = [](const Axis& axis) { return axis.last != axis.first ? axis.last : axis.first + 1.0; };
    plwind(panel.x.first, end(panel.x), panel.y.first, end(panel.y));

    if (panel.grid) {
        useColour(kGridColour);
        plwidth(1.0);
        plbox("g", 0.0, 0, "g", 0.0, 0);
    }

    for (const Curve& curve : panel.curves) {
        useColour(curve.colour);
        if (curve.style == Curve::Style::line)
            drawLine(curve);
        else
            drawDots(curve);
    }

    useColour(colours::kBlack);
    plwidth(1.0);
    drawBox(panel);
    plmtex("b", 3.2, 0.5, 0.5, plainText(panel.x.label).c_str());
    plmtex(panel.yOnTheRight ? "r" : "l", kLabelLines, 0.5, 0.5, plainText(panel.y.label).c_str());
    plmtex("t", 1.0, 0.0, 0.0, plainText(panel.title).c_str());
    drawLegend(panel);
}

}  // namespace

Axis axisAround(std::string label, const std::vector<double>& values, double least) {
    double lowest = std::numeric_limits<double>::infinity();
    double highest = -lowest;
    for (const double value : values) {
        if (!std::isfinite(value)) continue;
        lowest = std::min(lowest, value);
        highest = std::max(highest, value);
    }
    if (lowest > highest) lowest = highest = 0.0;
    const double middle = (lowest + highest) / 2.0;
    const double half = 0.55 * std::max(highest - lowest, least);
    return {std::move(label), middle - half, middle + half};
}

ColourImage drawPlot(int width, int height, const std::vector<Panel>& panels) {
    requireDriver();
    ColourImage picture(width, height, colours::kWhite);
    for (const Panel& panel : panels)
        if (panel.raster) drawRaster(picture, panel);

    plsmem(width, height, picture.pixels.data());
    plsdev(kDriver);
    plinit();
    plfontld(0);
    plsfont(PL_FCI_SANS, PL_FCI_UPRIGHT, PL_FCI_MEDIUM);
    pladv(0);
    plschr(0.0, kTextScale);
    for (const Panel& panel : panels) drawPanel(panel, width, height);
    plend();
    return picture;
}

}  // namespace examples
