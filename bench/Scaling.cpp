// How the time of the extraction methods grows with the frame's width and height and with the number of candidates, as
// a CSV table: method, quantity, value, time of a call in microseconds.

#include <CLI/CLI.hpp>
#include <cstdio>
#include <exception>
#include <string>
#include <vector>

#include "bench/Items.h"
#include "bench/Rounds.h"

namespace {

using bench::Item;
using bench::Size;

constexpr const char* kMethods[] = {"Cal2DPoint1",   "Cal2DPoint1_1", "Cal2DPoint2",
                                    "Cal2DPoint2_1", "Cal2DPoint3",   "Cal2DPoint4"};
constexpr int kWidths[] = {320, 640, 960, 1280, 1600, 2048, 3072, 4096};
constexpr int kHeights[] = {256, 384, 512, 768, 1024, 1280, 1536, 2048};
constexpr int kSpecks[] = {0, 1, 2, 3, 4, 6, 8};
constexpr Size kStandard{1280, 1024};

/// The mean number of runs of pixels above the lowest threshold of all methods, per column.
double candidatesPerColumn(const bench::Bytes& frame, Size size) {
    constexpr unsigned char kThreshold = 30;
    const auto width = static_cast<std::size_t>(size.width);
    int runs = 0;
    for (std::size_t i = 0; i < frame.size(); ++i) {
        const bool darkAbove = i < width || frame[i - width] <= kThreshold;
        runs += frame[i] > kThreshold && darkAbove ? 1 : 0;
    }
    return static_cast<double>(runs) / size.width;
}

/// All methods on one kind of frame.
void printTimes(const char* quantity, double value, const std::string& kind, Size size, const bench::Plan& plan) {
    std::vector<Item> items;
    for (const char* method : kMethods) items.push_back(bench::makeExtraction(method, kind, size));
    const std::vector<double> times = bench::medianTimes(items, plan);
    for (std::size_t i = 0; i < items.size(); ++i)
        std::printf("%s,%s,%.4g,%.4g\n", items[i].method.c_str(), quantity, value, times[i] * 1e6);
    std::fflush(stdout);
}

}  // namespace

int main(int argc, char** argv) {
    bench::Plan plan;
    plan.chosen = &bench::widestKernelSet();
    CLI::App app("Times the extraction methods over width, height and number of candidates, with the widest kernels.");
    app.add_option("--seconds", plan.seconds, "Time for all methods on one kind of frame (1)")->option_text("S");
    CLI11_PARSE(app, argc, argv);
    try {
        std::puts("method,quantity,value,microseconds");
        for (const int width : kWidths) {
            printTimes("width", width, "hard", {width, kStandard.height}, plan);
            bench::forgetFrames();
        }
        for (const int height : kHeights) {
            printTimes("height", height, "hard", {kStandard.width, height}, plan);
            bench::forgetFrames();
        }
        for (const int specks : kSpecks) {
            const std::string kind = std::to_string(specks) + " specks";
            const double candidates = candidatesPerColumn(bench::framesOfKind(kind, kStandard)->front(), kStandard);
            printTimes("candidates", candidates, kind, kStandard, plan);
            bench::forgetFrames();
        }
        return 0;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "scaling: %s\n", error.what());
        return 2;
    }
}
