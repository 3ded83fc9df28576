// The parts that come with the simulated sensor. Heights are made of + - * / and square roots only, so that they are
// the same bits everywhere. Positions and heights are in mm; travel runs along the part.

#include <array>
#include <cmath>
#include <stdexcept>

#include "scenes/PortableMath.h"
#include "scenes/SimulatedSensor.h"

namespace scenes {

namespace {

/// Steps of 5, 10 and 15 mm on a table; the block ends at 40 mm of travel.
double gaugeBlockHeight(double x, double travel) {
    constexpr double kLength = 40.0;
    if (travel > kLength || x < -30.0 || x >= 30.0) return 0.0;
    if (x < -10.0) return 5.0;
    return x < 10.0 ? 10.0 : 15.0;
}

/// A bead over the seam of two plates, the right one 0.4 mm higher; its ripples are curved like those of a weld pool.
double weldBeadHeight(double x, double travel) {
    constexpr double kPlate = 8.0;
    constexpr double kMismatch = 0.4;
    constexpr double kBeadHalfWidth = 6.0;
    constexpr double kBeadHeight = 2.6;
    constexpr double kRippleLength = 1.6;
    constexpr double kRippleHeight = 0.12;
    constexpr double kRippleCurvature = 0.05;  // 1/mm; how far the ripples lag at the sides

    const double plate = kPlate + (x > 0.0 ? kMismatch : 0.0);
    const double side = x / kBeadHalfWidth;
    if (side <= -1.0 || side >= 1.0) return plate;
    const double arch = 1.0 - side * side;
    const double ripple = parabolicWave((travel + kRippleCurvature * x * x) / kRippleLength);
    const double seam = kPlate + 0.5 * kMismatch * (1.0 + side);  // the melt joins both plates
    return seam + kBeadHeight * arch * arch + kRippleHeight * arch * ripple;
}

/// A dome of 20 mm on a table; its top passes at 12 mm of travel.
double hemisphereHeight(double x, double travel) {
    constexpr double kRadius = 20.0;
    constexpr double kTravelOfTop = 12.0;
    const double along = travel - kTravelOfTop;
    const double squared = kRadius * kRadius - x * x - along * along;
    return squared > 0.0 ? std::sqrt(squared) : 0.0;
}

/// A groove of 90 degrees, 9 mm deep with a root of 2 mm, in a plate; it wanders a little along the travel.
double vGrooveHeight(double x, double travel) {
    constexpr double kPlate = 18.0;
    constexpr double kDepth = 9.0;
    constexpr double kRootHalfWidth = 1.0;
    constexpr double kWander = 0.05;  // mm per mm of travel
    const double depth = kDepth - std::fmax(std::fabs(x - kWander * travel) - kRootHalfWidth, 0.0);
    return kPlate - std::fmax(depth, 0.0);
}

/// A milled part: ledges at three heights, a slope, and a slot across.
double milledPartHeight(double x, double travel) {
    constexpr double kSlotEvery = 30.0;  // mm of travel
    constexpr double kSlotStart = 12.0;
    constexpr double kSlotEnd = 16.0;
    constexpr double kSlotDepth = 1.5;
    if (x < -32.0 || x >= 33.0) return 0.0;
    const double along = travel - kSlotEvery * std::floor(travel / kSlotEvery);
    const double slot = along >= kSlotStart && along < kSlotEnd ? kSlotDepth : 0.0;
    if (x < -14.0) return 6.0 - slot;
    if (x < 2.0) return 12.0 - slot;
    if (x < 14.0) return 12.0 - 0.5 * (x - 2.0) - slot;
    return 9.0 - slot;
}

Scene gaugeBlock() {
    return {.name = "gauge-block",
            .description = "stepped gauge block: 5, 10 and 15 mm above a table",
            .height = gaugeBlockHeight,
            .travelPerFrame = 0.5,
            .look = {},
            .maximumHeight = 15.0};
}

Scene weldBead() {
    return {.name = "weld-bead",
            .description = "weld bead with ripples on two plates that differ by 0.4 mm",
            .height = weldBeadHeight,
            .travelPerFrame = 0.2,
            .look = {},
            .maximumHeight = 12.0};
}

Scene hemisphere() {
    return {.name = "hemisphere",
            .description = "dome of 20 mm radius on a table",
            .height = hemisphereHeight,
            .travelPerFrame = 0.4,
            .look = {},
            .maximumHeight = 20.0};
}

Scene vGroove() {
    return {.name = "v-groove",
            .description = "V-groove of 90 degrees, 9 mm deep, in a plate",
            .height = vGrooveHeight,
            .travelPerFrame = 0.5,
            .look = {},
            .maximumHeight = 18.0};
}

Scene hard() {
    return {.name = "hard",
            .description = "shiny milled part: reflections, glints, gaps, specks and noise of up to 25 grey levels",
            .height = milledPartHeight,
            .travelPerFrame = 0.5,
            .look = {.peak = 210.0,
                     .background = 14.0,
                     .backgroundRipple = 8.0,
                     .noise = 5.0,
                     .reflection = 0.5,
                     .dropoutShare = 0.08,
                     .specksPerColumn = 0.3,
                     .shine = 0.06},
            .maximumHeight = 12.0};
}

Scene dark() {
    return {.name = "dark",
            .description = "no light at all: the sensor's noise only",
            .height = gaugeBlockHeight,
            .travelPerFrame = 0.5,
            .look = {.peak = 0.0, .noise = 3.0},
            .maximumHeight = 15.0};
}

Scene ambient() {
    return {.name = "ambient",
            .description = "gauge block in ambient light: a background of 34 to 56 grey levels",
            .height = gaugeBlockHeight,
            .travelPerFrame = 0.5,
            .look = {.peak = 170.0, .background = 45.0, .backgroundRipple = 20.0, .noise = 0.2},
            .maximumHeight = 15.0};
}

Scene noisy() {
    return {.name = "noisy",
            .description = "gauge block in noise that crosses every threshold",
            .height = gaugeBlockHeight,
            .travelPerFrame = 0.5,
            .look = {.background = 60.0, .noise = 40.0},
            .maximumHeight = 15.0};
}

constexpr std::array kMakers = {gaugeBlock, weldBead, hemisphere, vGroove, hard, dark, ambient, noisy};

}  // namespace

std::vector<std::string> sceneNames() {
    std::vector<std::string> names;
    names.reserve(kMakers.size());
    for (const auto& make : kMakers) names.push_back(make().name);
    return names;
}

Scene makeScene(const std::string& name) {
    for (const auto& make : kMakers) {
        Scene scene = make();
        if (scene.name == name) return scene;
    }
    throw std::invalid_argument("there is no scene called \"" + name + "\"");
}

}  // namespace scenes
