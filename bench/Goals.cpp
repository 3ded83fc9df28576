#include "bench/Goals.h"

#include <algorithm>
#include <string_view>

namespace bench {

namespace {

struct Row {
    std::string_view method;
    std::string_view input;
    double widest;  // 0 for none, as everywhere in this table
    double sse2;
    double twin;
};

// Frames of 1280 x 1024.
constexpr Row kFrameGoals[] = {
    {"Cal2DPoint1", "clean", 3.5, 4.6, 0.11},
    {"Cal2DPoint1", "hard", 4.0, 5.2, 0.125},
    {"Cal2DPoint1", "dark", 1.8, 2.6, 0.025},
    {"Cal2DPoint1", "noisy", 0, 0, 1.0},
    {"Cal2DPoint1_1", "clean", 3.2, 4.0, 0.048},
    {"Cal2DPoint1_1", "hard", 6.5, 7.2, 0.073},
    {"Cal2DPoint1_1", "dark", 1.8, 2.4, 0.035},
    {"Cal2DPoint1_1", "noisy", 0, 0, 1.0},
    {"Cal2DPoint2", "clean", 3.0, 4.0, 0.022},
    {"Cal2DPoint2", "hard", 5.5, 6.8, 0.037},
    {"Cal2DPoint2", "dark", 1.6, 2.4, 0.013},
    {"Cal2DPoint2", "ambient", 5.2, 7.3, 0.036},
    {"Cal2DPoint2", "noisy", 0, 0, 1.0},
    {"Cal2DPoint2_1", "clean", 10.5, 12.0, 0.07},
    {"Cal2DPoint2_1", "hard", 22.0, 28.0, 0.11},
    {"Cal2DPoint2_1", "dark", 2.1, 2.8, 0.024},
    {"Cal2DPoint2_1", "ambient", 15.0, 18.0, 0.012},
    {"Cal2DPoint2_1", "noisy", 0, 0, 1.0},
    {"Cal2DPoint3", "clean", 4.7, 6.5, 0.053},
    {"Cal2DPoint3", "hard", 6.3, 8.3, 0.072},
    {"Cal2DPoint3", "dark", 1.8, 2.6, 0.015},
    {"Cal2DPoint3", "noisy", 0, 0, 1.0},
    {"Cal2DPoint4", "clean", 0.72, 0.95, 0.014},
    {"Cal2DPoint4", "hard", 0.92, 1.3, 0.017},
    {"Cal2DPoint4", "dark", 0.6, 0.75, 0.013},
    {"Cal2DPoint4", "noisy", 0, 0, 1.0},
    {"GaussianBlur(5)", "hard", 24.0, 64.0, 0.041},
    {"GaussianBlur(5)", "dark", 24.0, 64.0, 0.041},
    {"GaussianBlur(5)", "ambient", 24.0, 64.0, 0.041},
    {"GaussianBlur(5)", "few greys", 52.0, 105.0, 0.09},
    {"Otsu2", "clean", 1.05, 1.2, 0.025},
    {"Otsu2", "dark", 1.05, 1.2, 0.025},
    {"Otsu2", "hard", 1.2, 1.65, 0.028},
    {"Otsu3", "clean", 3.0, 4.0, 0.045},
    {"Otsu3", "hard", 3.0, 4.0, 0.045},
    {"Otsu3", "dark", 3.0, 4.0, 0.045},
    {"Otsu3", "blob", 3.0, 4.0, 0.045},
    {"MergeImg", "clean", 1.3, 1.5, 0.022},
    {"MergeImg", "dark", 1.3, 1.5, 0.022},
    {"MergeImg", "hard", 1.45, 1.9, 0.024},
    {"CalcImageBuffer", "clean", 1.2, 1.35, 0.07},
    {"CalcImageBuffer", "hard", 1.2, 1.35, 0.07},
    {"CalcImageBuffer", "dark", 1.2, 1.35, 0.07},
    {"AutoExposure, step", "clean", 1.4, 1.9, 0.027},
    {"AutoExposure, line fit", "clean", 1.45, 2.0, 0.014},
    {"chain", "clean", 4.8, 7.0, 0.029},
    {"chain", "hard", 7.5, 10.5, 0.039},
    {"chain", "dark", 2.4, 4.2, 0.018},
    {"chain", "noisy", 0, 0, 1.0},
};

// Profiles of 1280 points.
constexpr Row kProfileGoals[] = {
    {"Outlierdetect1(10)", "points", 14.0, 21.0, 0.085},
    {"Outlierdetect2(5)", "points", 3.3, 3.9, 0.17},
    {"medianfilter1(2)", "points", 3.9, 4.5, 0.015},
    {"medianfilter1(5)", "points", 5.2, 9.0, 0.0105},
    {"medianfilter1(20)", "points", 75.0, 84.0, 0.03},
    {"Gaussianfilter(3)", "points", 5.9, 10.3, 0.19},
    {"Gaussianfilter(10)", "points", 9.5, 24.5, 0.14},
    {"Downsample", "points", 12.0, 12.0, 0.14},
    {"undistortPoints2", "points", 12.3, 48.0, 0.097},
    {"Cal3DPoint1", "points", 4.8, 14.5, 0.155},
    {"Cal3DPoint2", "points", 14.0, 30.0, 0.31},
    {"polynomialFit(3)", "points", 0, 0, 0.275},
    {"CalRT", "plane", 0, 0, 0.22},
};

// Frames of 1280 x 200: what the methods cost that look at each candidate once.
constexpr std::string_view kMethodsWithColumnGoals[] = {"Cal2DPoint1", "Cal2DPoint1_1", "Cal2DPoint2", "Cal2DPoint3",
                                                        "Cal2DPoint4"};
constexpr double kNsPerCleanColumn = 25.0;
constexpr double kNsPerHardColumn = 60.0;

std::optional<double> given(double figure) {
    return figure > 0.0 ? std::optional<double>(figure) : std::nullopt;
}

}  // namespace

Goal goalOf(const std::string& method, const std::string& input, Size size) {
    Goal goal;
    const auto take = [&](const auto& rows) {
        for (const Row& row : rows) {
            if (row.method == method && row.input == input)
                goal = {given(row.widest), given(row.sse2), given(row.twin), std::nullopt};
        }
    };
    if (size.width != 1280) return goal;
    take(kProfileGoals);
    if (size.height == 1024) take(kFrameGoals);
    if (size.height == 200 &&
        std::count(std::begin(kMethodsWithColumnGoals), std::end(kMethodsWithColumnGoals), method)) {
        if (input == "clean") goal.nsPerColumn = kNsPerCleanColumn;
        if (input == "hard") goal.nsPerColumn = kNsPerHardColumn;
    }
    return goal;
}

std::vector<std::string> namesWithGoals() {
    std::vector<std::string> names;
    const auto take = [&](const auto& rows) {
        for (const Row& row : rows) names.push_back(std::string(row.method) + " " + std::string(row.input));
    };
    take(kFrameGoals);
    take(kProfileGoals);
    return names;
}

}  // namespace bench
