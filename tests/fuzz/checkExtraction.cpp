// The six extraction methods on one frame, and their building blocks on input of their own.

#include <array>
#include <cstdint>
#include <vector>

#include "algo/AlgoContext.h"
#include "extract/ColumnCentroid.h"
#include "extract/FindLineSegments.h"
#include "extract/FindPeaks.h"
#include "fuzz/Checks.h"
#include "fuzz/Comparison.h"
#include "fuzz/Frames.h"
#include "fuzz/Settings.h"
#include "fuzz/Twins.h"

namespace fuzz {
namespace {

namespace library = KORVANELASERALGO::extract;

constexpr std::size_t kLargestPrintedFrame = 4096;  // pixels

void checkMethods(FuzzInput& input, Comparison& comparison) {
    Twins twins(comparison);
    const Size size = drawSize(input);
    twins.setRoi(drawRoi(input, size));
    twins.setLineSelect(drawLineSelect(input));
    const int argument = drawGreyThreshold(input);
    const Bytes mask = drawMask(input, twins.columns());
    const Points2d earlierPoints(static_cast<std::size_t>(input.pick({0, 3, 500})), Point2d{-7.0, -7.0});
    const Bytes frame = drawFrame(input, size);
    comparison.remember("const int argument", argument);
    if (frame.size() <= kLargestPrintedFrame) {
        comparison.remember("const std::vector<unsigned char> mask", mask);
        comparison.remember("const std::vector<unsigned char> frame", frame);
    }

    using enum Extraction;
    for (const Extraction method :
         {kCal2DPoint1, kCal2DPoint1_1, kCal2DPoint2, kCal2DPoint2_1, kCal2DPoint3, kCal2DPoint4}) {
        Bytes methodMask = mask;
        Bytes methodFrame = frame;
        Points2d points = earlierPoints;
        twins.extract(method, methodMask, methodFrame, points, argument);
    }
}

// Lines that are long enough for segments, for the one method that looks for them.
void checkLongLines(FuzzInput& input, Comparison& comparison) {
    Twins twins(comparison);
    const Size size = {input.range(105, 300), input.range(10, 70)};
    twins.setRoi({0, 0, size.width, size.height});
    twins.setLineSelect({0, 255, 0, 1000, input.range(0, 4)});
    Bytes frame = drawLines(input, size);
    Bytes mask(twins.columns(), 0);
    Points2d points;
    twins.extract(Extraction::kCal2DPoint2_1, mask, frame, points, 0);
}

// ---- building blocks ----

void checkPeaks(FuzzInput& input, Comparison& comparison) {
    std::vector<int> profile(static_cast<std::size_t>(input.range(1, 60)));
    const int kind = input.range(0, 2);
    Noise noise = input.noise();
    int grey = drawGrey(input);
    for (int& value : profile) {
        const int step = noise.pick(std::array{0, 0, 1, 2, 3, 4, 5, 6, 20, 49, 50, 51});
        grey = kind == 0 ? noise.range(0, 255) : std::clamp(grey + (noise.oneIn(2) ? step : -step), 0, 255);
        value = kind == 2 ? grey / 10 * 10 : grey;
    }
    comparison.remember("const std::vector<int> profile", profile);

    std::vector<int> positions, values, twinPositions, twinValues;
    library::FindPeaks(profile, positions, values);
    reference::FindPeaks(profile, twinPositions, twinValues);
    comparison.equal("FindPeaks positions", twinPositions, positions);
    comparison.equal("FindPeaks values", twinValues, values);

    for (std::vector<int>* list : {&positions, &values, &twinPositions, &twinValues}) list->clear();
    std::vector<int> left, right, twinLeft, twinRight;
    library::FindPeaksWithFeet(profile, positions, values, left, right);
    reference::FindPeaksWithFeet(profile, twinPositions, twinValues, twinLeft, twinRight);
    comparison.equal("FindPeaksWithFeet positions", twinPositions, positions);
    comparison.equal("FindPeaksWithFeet values", twinValues, values);
    comparison.equal("FindPeaksWithFeet left feet", twinLeft, left);
    comparison.equal("FindPeaksWithFeet right feet", twinRight, right);
}

void checkCentroid(FuzzInput& input, Comparison& comparison) {
    std::vector<std::uint32_t> values(static_cast<std::size_t>(input.range(0, 41)));
    const int column = input.range(0, 65535);
    const int firstRow = input.range(0, 65535);
    Noise noise = input.noise();
    const int brightest = input.pick({255, 0, 1});
    for (std::uint32_t& value : values) value = static_cast<std::uint32_t>(noise.range(0, brightest));

    Point2d twin = {-7.0, -7.0};
    Point2d point = twin;
    const int count = static_cast<int>(values.size());
    reference::ColumnCentroid(column, firstRow, count, values.data(), twin);
    library::ColumnCentroid centroid(firstRow);
    for (int i = 0; i < count; ++i) centroid.add(firstRow + i, static_cast<int>(values[static_cast<std::size_t>(i)]));
    centroid.writeTo(point, column);
    comparison.equal("ColumnCentroid", twin, point);
}

// Points on a few lines with gaps, and some elsewhere; most of the lines are long enough to be found.
std::vector<library::VotePoint> drawVotes(FuzzInput& input, Size size) {
    std::vector<library::VotePoint> votes;
    for (int lines = input.range(1, 4); lines > 0; --lines) {
        const int firstRow = input.range(0, size.height - 1);
        const int slope = input.oneIn(2) ? 0 : input.range(-160, 160);  // rows per 64 columns
        const int step = input.pick({1, 1, 1, 2, 3});                   // columns
        const int gap = input.pick({0, 0, 18, 19, 20, 21, 22});         // columns
        const int litBetweenGaps = input.oneIn(2) ? input.range(1, 130) : input.range(49, 52);
        const int missing = input.pick({0, 0, 0, 4, 5, 6, 10});  // one point in so many
        const int jitter = input.pick({0, 0, 0, 1, 2, 4});       // rows
        const bool isDouble = input.oneIn(4);                    // two rows, with equal votes
        const bool steep = input.oneIn(6);
        Noise noise = input.noise();
        const int length = steep ? size.height : size.width;
        for (int i = 0; i < length; i += step) {
            if (gap > 0 && i % (litBetweenGaps + gap) >= litBetweenGaps) continue;
            if (missing > 0 && noise.oneIn(missing)) continue;
            const int across = firstRow + slope * i / 64 + noise.range(-jitter, jitter);
            for (const int row : {across, across + 1}) {
                const library::VotePoint point = steep ? library::VotePoint{row, i} : library::VotePoint{i, row};
                if (point.x >= 0 && point.x < size.width && point.y >= 0 && point.y < size.height)
                    votes.push_back(point);
                if (!isDouble) break;
            }
        }
    }
    Noise noise = input.noise();
    for (int strays = input.range(0, 120); strays > 0; --strays)
        votes.push_back({noise.range(0, size.width - 1), noise.range(0, size.height - 1)});
    return votes;
}

void checkLineSegments(FuzzInput& input, Comparison& comparison) {
    const Size size = {input.range(100, 355), input.range(1, 200)};
    const float rhoStep = input.pick({1.0f, 1.0f, 2.0f, 0.5f});
    const float angleStep = input.pick({0.017453292f, 0.017453292f, 0.05f});
    const float densityRatio = input.pick({0.8f, 0.8f, 0.5f, 1.0f, 0.95f});
    const std::vector<library::VotePoint> votes = drawVotes(input, size);

    KORVANELASERALGO::AlgoContext context = {};
    reference::Settings settings;
    context.roi = settings.roi = {0, 0, size.width, size.height};
    std::vector<reference::VotePoint> twinVotes;
    for (const library::VotePoint& point : votes) twinVotes.push_back({point.x, point.y});

    std::vector<library::LineSegment> segments;
    std::vector<reference::LineSegment> twinSegments;
    library::FindLineSegments(context, votes, rhoStep, angleStep, densityRatio, segments);
    reference::FindLineSegments(settings, twinVotes, rhoStep, angleStep, densityRatio, twinSegments);

    std::vector<int> ends, twinEnds;
    for (const auto& s : segments) ends.insert(ends.end(), {s.x1, s.y1, s.x2, s.y2});
    for (const auto& s : twinSegments) twinEnds.insert(twinEnds.end(), {s.x1, s.y1, s.x2, s.y2});
    comparison.equal("FindLineSegments x1 y1 x2 y2 ...", twinEnds, ends);
}

}  // namespace

std::string checkExtraction(const unsigned char* data, std::size_t size) {
    FuzzInput input(data, size);
    Comparison comparison("checkExtraction", data, size);
    switch (input.range(0, 7)) {
        case 4:
        case 5:
            checkLongLines(input, comparison);
            break;
        case 6:
            checkPeaks(input, comparison);
            checkCentroid(input, comparison);
            break;
        case 7:
            checkLineSegments(input, comparison);
            break;
        default:
            checkMethods(input, comparison);
            break;
    }
    return comparison.report();
}

}  // namespace fuzz
