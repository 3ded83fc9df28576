// Every method that takes a frame, held against its plain twin on frames of all awkward sizes: around the widths of
// vector registers, empty, of one row or column, as wide or tall as a sensor gets and taller. Buffers end at the last
// byte before an inaccessible page, or begin at the first byte behind one, so an access beyond them ends the program.

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <climits>
#include <cstdint>
#include <string>
#include <vector>

#include "fuzz/Comparison.h"
#include "fuzz/Frames.h"
#include "fuzz/FuzzInput.h"
#include "fuzz/Twins.h"
#include "support/CheckedBuffer.h"

namespace {

using namespace fuzz;
using support::BufferRoom;
using support::Placement;

constexpr std::uint64_t kSeed = 20240229;
constexpr std::array kPlacements = {Placement::kBetweenGuardBytes, Placement::kAtPageStart, Placement::kAtPageEnd};

enum class Content { kDrawn, kDrawnOtherwise, kSaturated, kDark, kNoise };
constexpr std::array kContents = {Content::kDrawn, Content::kDrawnOtherwise, Content::kSaturated, Content::kDark,
                                  Content::kNoise};

struct Offset {
    int x;
    int y;
};
constexpr std::array kOffsets = {Offset{0, 0}, Offset{INT_MAX, INT_MIN}, Offset{INT_MIN, INT_MAX}, Offset{7, -3},
                                 Offset{INT_MAX - 3, INT_MAX}};

Bytes frameOf(Content content, Size size) {
    const Size area = {std::max(size.width, 0), std::max(size.height, 0)};
    const std::size_t pixels = static_cast<std::size_t>(area.width) * static_cast<std::size_t>(area.height);
    const std::uint64_t variant = static_cast<std::uint64_t>(area.width) * 64 + static_cast<std::uint64_t>(area.height);
    Noise noise(kSeed + variant);
    Bytes bytes(1000);  // more than the features of a frame take
    for (unsigned char& byte : bytes) byte = static_cast<unsigned char>(noise.range(0, 255));
    FuzzInput input(bytes.data(), bytes.size());

    switch (content) {
        case Content::kDrawn:
            return drawFrame(input, area);
        case Content::kDrawnOtherwise:
            return pixels == 0 ? Bytes() : drawLines(input, area);
        case Content::kSaturated:
            return Bytes(pixels, 255);
        case Content::kDark:
            return Bytes(pixels, 0);
        case Content::kNoise:
            break;
    }
    Bytes frame(pixels);
    for (unsigned char& pixel : frame) pixel = static_cast<unsigned char>(noise.next());
    return frame;
}

void runExtraction(Twins& twins, const Bytes& frame) {
    using enum Extraction;
    for (const Extraction method :
         {kCal2DPoint1, kCal2DPoint1_1, kCal2DPoint2, kCal2DPoint2_1, kCal2DPoint3, kCal2DPoint4}) {
        Bytes mask(twins.columns(), 0);
        Bytes image = frame;
        Points2d points;
        Profile points3d;
        twins.extract(method, mask, image, points, 100);
        twins.undistortPoints2(points);
        twins.Cal3DPoint(Surface::kPlane, mask, points, points3d);
        twins.Cal3DPoint(Surface::kSecondOrder, mask, points, points3d);
    }
}

void runImageOperations(Twins& twins, const Bytes& frame) {
    const Bytes second(frame.rbegin(), frame.rend());
    const Bytes earlier(frame.size(), 7);
    Bytes out = earlier;
    twins.MergeImg(frame, second, out);
    for (const int taps : {5, 1, 13}) {
        out = earlier;
        twins.GaussianBlur(frame, out, taps);
    }
    out = earlier;
    twins.Otsu2(100, out, frame);
    for (Bytes src : {frame, second}) {
        out = earlier;
        std::vector<int> labels(frame.size(), 7);
        twins.Otsu3(out, labels, src);
    }
    for (const Bytes* current : {&frame, &second, &frame}) {
        out = earlier;
        twins.CalcImageBuffer(*current, out, true);
    }
    double exposure = 10.0;
    for (const Bytes* current : {&frame, &second, &frame}) {
        exposure += 5.0;
        twins.AutoExposure(*current, {6.0, 0.0, 1000.0, 2.0}, exposure, false, true);
    }
}

/// Empty, or the first difference between library and twin.
std::string checkSize(Size size, Content content, Placement placement) {
    const Bytes frame = frameOf(content, size);
    const Offset offset = kOffsets[static_cast<std::size_t>(content)];
    Comparison comparison("checkSize", nullptr, 0);
    Twins twins(comparison);
    twins.setRoi({offset.x, offset.y, size.width, size.height});
    twins.setLineSelect({0, 255, 0, 12, 1});
    twins.setCalibration({{900, 0, 60, 0, 900, 30, 0, 0, 1},
                          {-0.1, 0.02, 0.001, -0.001, 0.0},
                          {300, 0.02, -1.5, 0.001, 0.0, 0.002},
                          {1, 0, 0, 0, 1, 0, 0, 0, 1, 5, 6, 7}});

    BufferRoom::place(placement);
    runExtraction(twins, frame);
    runImageOperations(twins, frame);
    twins.CalRT({300.0, 0.02, -1.5});
    BufferRoom::place(Placement::kBetweenGuardBytes);
    return comparison.report();
}

template <class Contents, class Placements>
void expectNoDifference(Size size, const Contents& contents, const Placements& placements) {
    for (const Content content : contents) {
        for (const Placement placement : placements) {
            EXPECT_EQ(checkSize(size, content, placement), "")
                << size.width << " x " << size.height << ", content " << static_cast<int>(content) << ", placement "
                << static_cast<int>(placement);
        }
    }
}

class FrameWidths : public testing::TestWithParam<int> {};

}  // namespace

TEST_P(FrameWidths, AgreeWithTheTwinAtAllHeights) {
    for (const int height : {0, 1, 2, 3, 5, 7, 8, 31, 32, 33, 64}) {
        expectNoDifference({GetParam(), height}, kContents, kPlacements);
    }
}

INSTANTIATE_TEST_SUITE_P(AroundVectorRegisters, FrameWidths,
                         testing::Values(0, 1, 2, 3, 7, 8, 9, 15, 16, 17, 31, 32, 33, 63, 64, 65, 127, 128, 129),
                         testing::PrintToStringParamName());

// 64 neighbouring widths at an odd height: the frames before a page's end start at every address modulo 64.
TEST(FrameSizes, AgreeWithTheTwinFromEveryMisalignedStart) {
    for (int width = 65; width <= 128; ++width) {
        expectNoDifference({width, 5}, std::array{Content::kDrawn, Content::kNoise}, kPlacements);
    }
}

TEST(FrameSizes, AgreeWithTheTwinOnTheWidestFrames) {
    for (const int height : {1, 2, 5, 43}) {
        expectNoDifference({16384, height}, std::array{Content::kDrawn, Content::kSaturated},
                           std::array{Placement::kAtPageEnd});
    }
}

TEST(FrameSizes, AgreeWithTheTwinOnTheTallestFramesAndOnesBeyond16Bits) {
    for (const int height : {16384, 65537}) {
        for (const int width : {1, 2, 3}) {
            expectNoDifference({width, height}, std::array{Content::kDrawn, Content::kSaturated},
                               std::array{Placement::kAtPageEnd});
        }
    }
}

TEST(FrameSizes, BelowOneCountAsZero) {
    for (const Size size : {Size{-1, 5}, Size{5, -1}, Size{INT_MIN, 5}, Size{5, INT_MIN}, Size{INT_MIN, INT_MIN}}) {
        expectNoDifference(size, kContents, kPlacements);
    }
}
