// The image operations on two exposures of a scene, and the two methods with memory on sequences of frames.

#include <algorithm>
#include <limits>
#include <vector>

#include "fuzz/Checks.h"
#include "fuzz/Comparison.h"
#include "fuzz/Frames.h"
#include "fuzz/Settings.h"
#include "fuzz/Twins.h"

namespace fuzz {
namespace {

constexpr std::size_t kLargestPrintedFrame = 4096;  // pixels
constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();

int drawTaps(FuzzInput& input) {
    return input.oneIn(4) ? input.pick({-1, 0, 2, 4, std::numeric_limits<int>::min(), 61})
                          : input.pick({5, 3, 7, 1, 9, 15});
}

void checkOperations(FuzzInput& input, Twins& twins, Comparison& comparison) {
    const Size size = drawSize(input);
    twins.setRoi(drawRoi(input, size));
    const int taps = drawTaps(input);
    const int threshold = drawGreyThreshold(input);
    const unsigned char earlier = input.byte();  // what the output holds before
    Bytes frame = drawFrame(input, size);
    const Bytes second = input.oneIn(2) ? drawVariation(input, frame) : drawFrame(input, size);
    comparison.remember("const int taps", taps);
    comparison.remember("const int threshold", threshold);
    if (frame.size() <= kLargestPrintedFrame) {
        comparison.remember("const std::vector<unsigned char> frame", frame);
        comparison.remember("const std::vector<unsigned char> second", second);
    }

    Bytes out(twins.pixels(), earlier);
    twins.MergeImg(frame, second, out);
    out.assign(twins.pixels(), earlier);
    twins.GaussianBlur(frame, out, taps);
    out.assign(twins.pixels(), earlier);
    twins.Otsu2(threshold, out, frame);
    out.assign(twins.pixels(), earlier);
    std::vector<int> labels(twins.pixels(), earlier);
    twins.Otsu3(out, labels, frame);
}

// Wide enough for the masked band of columns around a blob to end inside the frame.
void checkWideBlob(FuzzInput& input, Twins& twins) {
    const Size size = {input.range(480, 1300), input.range(29, 60)};
    twins.setRoi({0, 0, size.width, size.height});
    Bytes frame = drawBlob(input, size);
    Bytes out(twins.pixels(), 0);
    std::vector<int> labels(twins.pixels(), 0);
    twins.Otsu3(out, labels, frame);
}

// A band of bright pixels in about half of the columns.
Bytes drawBrightBand(FuzzInput& input, Size size) {
    Bytes frame(static_cast<std::size_t>(size.width) * static_cast<std::size_t>(size.height));
    const int columns = std::clamp(size.width / 2 + input.pick({0, 1, -1, 100}), 0, size.width);
    const int rows = std::clamp(input.range(0, 4), 0, size.height);
    const int grey = input.pick({206, 255, 205, 206});
    for (int r = 0; r < rows; ++r) {
        for (int c = 0; c < columns; ++c)
            frame[static_cast<std::size_t>(r * size.width + c)] = static_cast<unsigned char>(grey);
    }
    return frame;
}

double drawExposure(FuzzInput& input, double exposure) {
    switch (input.range(0, 7)) {
        case 0:
        case 1:
            return exposure;
        case 2:
            return exposure + input.pick({0.01, -0.01, 0.009, 0.011, -0.009, 1e10, 1e10, -1e10});
        case 3:
            return input.pick({0.0, 0.01, 0.02, 1.0, 1.01, 0.99, 1e10 + 1.0, -1.0});
        case 4:
            return input.pick({kNan, kInfinity, -kInfinity, 1e300, 1e-300});
        default:
            return input.range(0, 255) * 0.25;
    }
}

Twins::ExposureLimits drawLimits(FuzzInput& input) {
    const double whole = input.range(0, 5);
    const double target = whole + input.pick({0.0, 0.1, 0.2, -0.2, 0.19, -0.21, 0.5, kNan, kInfinity, 20.0});
    const double minimum = input.pick({0.0, 1.0, 50.0, -kInfinity, kNan});
    const double maximum = input.pick({100.0, 10.0, 0.5, kInfinity, kNan});
    const double step = input.pick({1.0, 0.01, 0.0, -1.0, 0.3, kNan});
    return {target, minimum, maximum, step};
}

void checkSequence(FuzzInput& input, Twins& twins, Comparison& comparison) {
    Size size = {input.range(0, 24), input.range(0, 24)};
    Bytes frame;
    double exposure = 1.0;
    for (int calls = input.range(1, 10); calls > 0 && !comparison.differs(); --calls) {
        // A transposed region has the pixel count of the stored frame.
        switch (input.range(0, 7)) {
            case 6:
                std::swap(size.width, size.height);
                break;
            case 7:
                size = {input.range(-1, 24), input.range(0, 24)};
                break;
            default:
                break;
        }
        twins.setRoi(drawRoi(input, size));
        const Size area = {std::max(size.width, 0), std::max(size.height, 0)};
        switch (frame.size() == twins.pixels() ? input.range(0, 3) : input.range(2, 3)) {
            case 0:
            case 1:
                frame = drawVariation(input, frame);
                break;
            case 2:
                frame = drawBrightBand(input, area);
                break;
            default:
                frame = drawFrame(input, area);
                break;
        }

        const bool enable = !input.oneIn(8);
        Bytes out(twins.pixels(), input.byte());
        twins.CalcImageBuffer(frame, out, enable);
        exposure = drawExposure(input, exposure);
        const Twins::ExposureLimits limits = drawLimits(input);
        const bool inPlace = input.oneIn(2);
        twins.AutoExposure(frame, limits, exposure, inPlace, !input.oneIn(8));
    }
}

}  // namespace

std::string checkImage(const unsigned char* data, std::size_t size) {
    FuzzInput input(data, size);
    Comparison comparison("checkImage", data, size);
    Twins twins(comparison);
    switch (input.range(0, 7)) {
        case 4:
        case 5:
        case 6:
            checkSequence(input, twins, comparison);
            break;
        case 7:
            checkWideBlob(input, twins);
            break;
        default:
            checkOperations(input, twins, comparison);
            break;
    }
    return comparison.report();
}

}  // namespace fuzz
