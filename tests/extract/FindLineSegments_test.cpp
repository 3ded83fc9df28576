// FindLineSegments: votes of a standard Hough transform, its peaks, and the split of each line's points into segments.

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <vector>

#include "KorvaneLaserAlgo.h"
#include "algo/AlgoContext.h"
#include "extract/FindLineSegments.h"

namespace {

using KORVANELASERALGO::AlgoContext;
using KORVANELASERALGO::extract::FindLineSegments;
using KORVANELASERALGO::extract::LineSegment;
using KORVANELASERALGO::extract::VotePoint;

using Points = std::vector<VotePoint>;
using Segments = std::vector<std::array<int, 4>>;  // x1, y1, x2, y2

constexpr float kOneDegree = 0.017453292F;  // radians

/// Resolution and density as the extraction uses them, for a frame of 200 x 200.
struct Search {
    int width = 200;
    int height = 200;
    float rhoStep = 1.0F;
    float angleStep = kOneDegree;
    float densityRatio = 0.8F;
};

Segments asArrays(const std::vector<LineSegment>& segments) {
    Segments arrays;
    for (const LineSegment& segment : segments) arrays.push_back({segment.x1, segment.y1, segment.x2, segment.y2});
    return arrays;
}

Segments segmentsOf(const Points& points, const Search& search = Search{}) {
    AlgoContext context{};
    context.roi.Width = search.width;
    context.roi.Height = search.height;
    std::vector<LineSegment> segments;
    FindLineSegments(context, points, search.rhoStep, search.angleStep, search.densityRatio, segments);
    return asArrays(segments);
}

/// Appends the points (firstX, y) .. (lastX, y), each of them several times.
void addRow(Points& points, int firstX, int lastX, int y, int times = 1) {
    for (int x = firstX; x <= lastX; ++x) points.insert(points.end(), static_cast<std::size_t>(times), VotePoint{x, y});
}

void addColumn(Points& points, int x, int firstY, int lastY, int times = 1) {
    for (int y = firstY; y <= lastY; ++y) points.insert(points.end(), static_cast<std::size_t>(times), VotePoint{x, y});
}

/// Appends (x, x + offset) for x from the first to the last: normal at 135 degrees, distance offset / sqrt(2).
void addDiagonal(Points& points, int firstX, int lastX, int offset) {
    for (int x = firstX; x <= lastX; ++x) points.push_back({x, x + offset});
}

Points row(int firstX, int lastX, int y, int times = 1) {
    Points points;
    addRow(points, firstX, lastX, y, times);
    return points;
}

/// The row from firstX to firstX + 100 on row 50 with the given number of points, its ends among them.
Points sparseRow(int firstX, int count) {
    Points points;
    for (int i = 0; i < count; ++i) points.push_back({firstX + i * 100 / (count - 1), 50});
    return points;
}

Points operator+(Points left, const Points& right) {
    left.insert(left.end(), right.begin(), right.end());
    return left;
}

// ---- Votes and peaks

TEST(FindLineSegments, NoPointGivesNoSegment) {
    EXPECT_EQ(segmentsOf({}), Segments{});
}

TEST(FindLineSegments, CellOf100VotesGivesNoSegment) {
    EXPECT_EQ(segmentsOf(row(0, 99, 50)), Segments{});
    EXPECT_EQ(segmentsOf(row(0, 100, 50)), (Segments{{0, 50, 100, 50}}));
}

TEST(FindLineSegments, EveryPointVotesEvenWhereSeveralCoincide) {
    EXPECT_EQ(segmentsOf(row(0, 49, 50) + row(0, 50, 50)), (Segments{{0, 50, 50, 50}}));
}

TEST(FindLineSegments, SegmentsAreAppended) {
    AlgoContext context{};
    context.roi.Width = 200;
    context.roi.Height = 200;
    std::vector<LineSegment> segments{{1, 2, 3, 4}};
    FindLineSegments(context, row(0, 119, 50), 1.0F, kOneDegree, 0.8F, segments);
    EXPECT_EQ(asArrays(segments), (Segments{{1, 2, 3, 4}, {0, 50, 119, 50}}));
}

TEST(FindLineSegments, DiagonalsAreFound) {
    Points falling;  // rows grow with the columns
    addDiagonal(falling, 0, 119, 0);
    EXPECT_EQ(segmentsOf(falling), (Segments{{0, 0, 119, 119}}));

    Points rising;
    for (int x = 0; x < 120; ++x) rising.push_back({x, 119 - x});
    EXPECT_EQ(segmentsOf(rising), (Segments{{0, 119, 119, 0}}));
}

TEST(FindLineSegments, VotesRoundNegativeDistancesByTruncationTowardZero) {
    // Distances -0.7 and 0 share cell 0, while 0.7 falls into cell 1.
    Points sameCell;
    addDiagonal(sameCell, 0, 59, 0);
    addDiagonal(sameCell, 60, 119, -1);
    EXPECT_EQ(segmentsOf(sameCell), (Segments{{0, 0, 119, 118}}));

    Points twoCells;
    addDiagonal(twoCells, 0, 59, 0);
    addDiagonal(twoCells, 60, 119, 1);
    EXPECT_EQ(segmentsOf(twoCells), Segments{});
}

// One step is 12/17 pixels, so that 42 pixels are 59.5 steps; the step's inverse is a little less than 17/12.
TEST(FindLineSegments, DistanceIsRoundedToSinglePrecisionBeforeItIsTruncated) {
    const Search rowsAndColumnsOnly{.rhoStep = 12.0F / 17.0F, .angleStep = 90 * kOneDegree};
    const float perPixel = 1.0F / rowsAndColumnsOnly.rhoStep;
    ASSERT_LT(42.0 * static_cast<double>(perPixel), 59.5);
    ASSERT_EQ(42.0F * perPixel, 59.5F);

    // 101 votes for step 60, which is 42.35 pixels, near enough to column 41 and row 41.
    Points besideColumn(101, VotePoint{42, 20});
    addColumn(besideColumn, 41, 0, 99);
    EXPECT_EQ(segmentsOf(besideColumn, rowsAndColumnsOnly), (Segments{{41, 0, 41, 99}}));

    Points besideRow(101, VotePoint{20, 42});
    addRow(besideRow, 0, 99, 41);
    EXPECT_EQ(segmentsOf(besideRow, rowsAndColumnsOnly), (Segments{{0, 41, 99, 41}}));
}

// The points stand 6 columns apart, so that no angle is ruled out before its votes are counted.
TEST(FindLineSegments, VotesOfOneAngleDoNotCountAtTheNext) {
    Points rowOf100{{50, 50}};  // at 0 degrees, the first point votes for distance 50
    for (int i = 0; i < 99; ++i) rowOf100.push_back({100 + 6 * i, 50});
    const VotePoint elsewhere{900, 500};
    const Search rowsAndColumns{.width = 1000, .height = 1000, .angleStep = 90 * kOneDegree, .densityRatio = 0.1F};
    EXPECT_EQ(segmentsOf(rowOf100 + Points{elsewhere}, rowsAndColumns), Segments{});

    Points lineOf100;  // 100 votes at 120 degrees for distance 400
    for (int i = 0; i < 100; ++i) {
        const int x = 20 + 6 * i;
        lineOf100.push_back({x, static_cast<int>(std::lround((400.0 + 0.5 * x) / std::sqrt(0.75)))});
    }
    const VotePoint last{620, 104};  // at 60 degrees, for distance 400
    ASSERT_NEAR(0.5 * last.x + std::sqrt(0.75) * last.y, 400.0, 0.4);
    const Search threeAngles{.width = 1000, .height = 1000, .angleStep = 60 * kOneDegree, .densityRatio = 0.1F};
    EXPECT_EQ(segmentsOf(lineOf100 + Points{last}, threeAngles), Segments{});
}

TEST(FindLineSegments, LastAngleIsNotComparedWithAnEarlierOne) {
    Points points;
    addColumn(points, 100, 0, 149);  // 150 votes at 0 degrees for distance 100
    Points line;                     // 121 votes at 120 degrees for the same distance
    for (int x = 150; x <= 270; ++x)
        line.push_back({x, static_cast<int>(std::lround((100.0 + 0.5 * x) / std::sqrt(0.75)))});
    const Search threeAngles{.width = 300, .height = 300, .angleStep = 60 * kOneDegree};
    EXPECT_EQ(segmentsOf(points + line, threeAngles),
              (Segments{{100, 0, 100, 149}, {150, line.front().y, 270, line.back().y}}));
}

TEST(FindLineSegments, LineWhoseRoundedDistanceMissesItsOwnPointsGivesNoSegment) {
    // The distance -60 / sqrt(2) = -42.43 votes for trunc(-41.93) = -41, which is 1.43 away from every point.
    Points points;
    addDiagonal(points, 60, 179, -60);
    EXPECT_EQ(segmentsOf(points), Segments{});
}

TEST(FindLineSegments, LineWithoutInliersDoesNotSuppressItsNeighbours) {
    // The cell (135, -41) has 150 votes and no inlier. Its neighbour (136, -42) belongs to a second line, 1 row off
    // its decoded distance.
    Points points;
    addDiagonal(points, 60, 209, -60);
    const double angle = 136.0 * std::acos(-1.0) / 180.0;
    Points second;
    for (int x = 195; x <= 300; ++x)
        second.push_back({x, static_cast<int>(std::lround((-43.0 - x * std::cos(angle)) / std::sin(angle)))});
    for (const VotePoint& point : second)
        ASSERT_GE(point.y - point.x, -55);  // no inlier of the first line: (55 - 41 * sqrt(2)) / sqrt(2) is below -2
    const Search search{.width = 310, .height = 280};
    EXPECT_EQ(segmentsOf(points + second, search), (Segments{{195, second.front().y, 300, second.back().y}}));
}

TEST(FindLineSegments, OfTwoEqualCellsAtOneAngleTheSmallerDistanceIsThePeak) {
    // Rows 50 and 51 have 120 votes each. A line at row 50 takes the point on row 49, one at row 51 that on row 52.
    const Points points = row(0, 119, 50) + row(0, 119, 51) + row(121, 121, 49) + row(123, 123, 52);
    EXPECT_EQ(segmentsOf(points), (Segments{{0, 50, 121, 49}}));
}

TEST(FindLineSegments, OfTwoEqualCellsAtOneDistanceTheSmallerAngleIsThePeak) {
    // The cells (90, 50) and (91, 50) have 117 votes each: both take row 50 up to column 28; on from column 29 the
    // former takes row 50, the latter row 51. Only a line at 91 degrees takes the last point.
    const Points points = row(0, 28, 50, 3) + row(29, 58, 50) + row(29, 58, 51) + row(75, 75, 52);
    const double angle = 91.0 * std::acos(-1.0) / 180.0;
    ASSERT_LT(std::abs(75.0 * std::cos(angle) + 52.0 * std::sin(angle) - 50.0), std::sqrt(2.0));
    EXPECT_EQ(segmentsOf(points), (Segments{{0, 50, 58, 51}}));
}

TEST(FindLineSegments, CellMustBeatItsNeighboursInDistanceAlsoWhereTheseAreNoPeaks) {
    // Only the row of 140 votes is a peak: away from it the votes fall or stay equal.
    const Search rowsAndColumnsOnly{.angleStep = 90 * kOneDegree};
    EXPECT_EQ(segmentsOf(row(0, 139, 50) + row(0, 119, 51) + row(0, 119, 52), rowsAndColumnsOnly),
              (Segments{{0, 50, 139, 50}}));
    EXPECT_EQ(segmentsOf(row(0, 109, 50) + row(0, 119, 51) + row(0, 139, 52), rowsAndColumnsOnly),
              (Segments{{0, 51, 139, 52}}));
}

TEST(FindLineSegments, CellMustBeatItsNeighboursInAngleAlsoWhereTheseAreNoPeaks) {
    // At distance 50 the first part votes at all the angles here; the others at 90 and 91, at 92, at 91 and 92, at 90.
    // A line at 92 degrees would reach the last point.
    const Points rising = row(0, 13, 50, 7) + (row(14, 28, 50) + row(20, 20, 50)) + row(14, 28, 51) + row(29, 42, 51) +
                          row(29, 60, 50, 2) + row(55, 55, 52);
    EXPECT_EQ(segmentsOf(rising), (Segments{{0, 50, 60, 50}}));  // 178 votes at 90, 128 at 91 and at 92 degrees

    // The same with the angles 89 and 88.
    const Points falling =
        row(0, 13, 50, 7) + row(14, 28, 50) + row(16, 28, 49) + row(30, 43, 49) + row(29, 60, 50, 2) + row(55, 55, 48);
    EXPECT_EQ(segmentsOf(falling), (Segments{{0, 50, 60, 50}}));  // 177 votes at 90, 129 at 89, 128 at 88 degrees
}

TEST(FindLineSegments, LineWithMoreVotesComesFirst) {
    EXPECT_EQ(segmentsOf(row(0, 109, 50) + row(0, 119, 80)), (Segments{{0, 80, 119, 80}, {0, 50, 109, 50}}));
    EXPECT_EQ(segmentsOf(row(0, 119, 50) + row(0, 109, 80)), (Segments{{0, 50, 119, 50}, {0, 80, 109, 80}}));
}

TEST(FindLineSegments, OfLinesWithEqualVotesTheSmallerDistanceComesFirst) {
    EXPECT_EQ(segmentsOf(row(0, 119, 80) + row(0, 119, 50)), (Segments{{0, 50, 119, 50}, {0, 80, 119, 80}}));
}

TEST(FindLineSegments, OfLinesWithEqualVotesTheSmallerAngleComesFirst) {
    Points points = row(20, 139, 5);  // 90 degrees, distance 5
    addColumn(points, 10, 10, 129);   // 0 degrees, distance 10
    EXPECT_EQ(segmentsOf(points), (Segments{{10, 10, 10, 129}, {20, 5, 139, 5}}));
}

TEST(FindLineSegments, EveryLineIsTestedAgainstAllPoints) {
    Points points = row(0, 119, 50);
    addColumn(points, 60, 0, 49);
    addColumn(points, 60, 51, 119);
    EXPECT_EQ(segmentsOf(points), (Segments{{60, 0, 60, 119}, {0, 50, 119, 50}}));
}

TEST(FindLineSegments, PeakSuppressesTheEightCellsAroundIt) {
    // (90, 50) has 130 votes, and (91, 49) 120: the middle of row 50 and the outer parts of the rows 49 and 51.
    const Points points = row(0, 119, 50) + row(0, 0, 50, 10) + row(0, 28, 49) + row(86, 119, 51);
    EXPECT_EQ(segmentsOf(points), (Segments{{0, 49, 119, 51}}));
}

TEST(FindLineSegments, PeakSuppressesTheOtherCellsAcrossItsCornersToo) {
    const Points peak = row(0, 119, 50) + row(0, 0, 50, 10);  // (90, 50) has 130 votes
    // Each of these has 120 votes at its angle and distance.
    const Points before = row(0, 28, 51) + row(86, 119, 49);                     // (89, 51), with row 50 between
    const Points farther = row(0, 28, 51) + row(29, 85, 52) + row(86, 119, 53);  // (91, 51)
    const Points beforeAndNearer = row(0, 28, 49) + row(29, 85, 48) + row(86, 119, 47);  // (89, 49)
    EXPECT_EQ(segmentsOf(peak + before), (Segments{{0, 50, 119, 50}}));
    EXPECT_EQ(segmentsOf(peak + farther), (Segments{{0, 50, 119, 50}}));
    EXPECT_EQ(segmentsOf(peak + beforeAndNearer), (Segments{{0, 49, 119, 50}}));
    EXPECT_EQ(segmentsOf(farther), (Segments{{0, 51, 119, 53}}));
}

TEST(FindLineSegments, PeakLeavesAnAngleTwoStepsAway) {
    // (90, 50) has 130 votes, (88, 51) 148 less those of row 50 that vote for (88, 50) or beyond.
    const Points falling = row(0, 15, 51) + row(16, 43, 50) + row(44, 72, 49) + row(73, 101, 48) + row(102, 119, 47);
    const Points points = row(0, 119, 50) + row(0, 0, 50, 40) + falling;
    EXPECT_EQ(segmentsOf(points), (Segments{{0, 50, 119, 50}, {0, 50, 119, 47}}));
}

TEST(FindLineSegments, PeakLeavesAnAngleTwoStepsFartherToo) {
    // (90, 50) has 130 votes, (92, 51) 120.
    const Points rising = row(0, 13, 51) + row(14, 42, 52) + row(43, 70, 53) + row(71, 99, 54) + row(100, 119, 55);
    const Points points = row(0, 119, 50) + row(0, 0, 50, 10) + rising;
    EXPECT_EQ(segmentsOf(points), (Segments{{0, 50, 119, 50}, {0, 50, 119, 55}}));
}

TEST(FindLineSegments, PeakLeavesCellsTwoStepsAway) {
    EXPECT_EQ(segmentsOf(row(0, 129, 50) + row(0, 119, 52)), (Segments{{0, 50, 129, 50}, {0, 52, 119, 52}}));
}

TEST(FindLineSegments, FrameMayBeOneRowOrColumn) {
    EXPECT_EQ(segmentsOf(row(0, 119, 0), {.width = 120, .height = 1}), (Segments{{0, 0, 119, 0}}));
    Points column;
    addColumn(column, 0, 0, 119);
    EXPECT_EQ(segmentsOf(column, {.width = 1, .height = 120}), (Segments{{0, 0, 0, 119}}));
}

TEST(FindLineSegments, SuppressionAtTheSmallestAngleStaysInsideTheTable) {
    Points points;
    addColumn(points, 0, 0, 119);
    EXPECT_EQ(segmentsOf(points), (Segments{{0, 0, 0, 119}}));
}

// ---- Resolution

TEST(FindLineSegments, DistancesAreCountedInSteps) {
    // With cells of 2 pixels the column x = 100 is cell 50 from the middle and the row y = 100 as well.
    Points column;
    addColumn(column, 100, 0, 119);
    EXPECT_EQ(segmentsOf(column, {.rhoStep = 2.0F}), (Segments{{100, 0, 100, 119}}));
    EXPECT_EQ(segmentsOf(row(0, 119, 100), {.rhoStep = 2.0F}), (Segments{{0, 100, 119, 100}}));
}

TEST(FindLineSegments, NumberOfAnglesIsRounded) {
    // pi / 1.2 = 2.6 gives three angles: 0, 1.2 and 2.4.
    const double angle = 2.4;
    Points points;
    for (int x = 0; x <= 110; ++x)
        points.push_back({x, static_cast<int>(std::lround((40.0 - x * std::cos(angle)) / std::sin(angle)))});
    EXPECT_EQ(segmentsOf(points, {.angleStep = 1.2F}), (Segments{{0, points.front().y, 110, points.back().y}}));
}

TEST(FindLineSegments, DistanceIsDecodedAboutTheExactMiddleOfTheTable) {
    // With a step of 2 pixels row 30 votes 15 steps from the truncated middle. 171 distances (the sizes add up to 170)
    // have their exact middle there; 172 (171) have it half a step farther on, which puts the line on row 29.
    const Points points = row(0, 110, 30) + row(112, 112, 28) + row(114, 114, 31);
    EXPECT_EQ(segmentsOf(points, {.width = 120, .height = 50, .rhoStep = 2.0F}), (Segments{{0, 30, 114, 31}}));
    EXPECT_EQ(segmentsOf(points, {.width = 120, .height = 51, .rhoStep = 2.0F}), (Segments{{0, 30, 112, 28}}));
}

TEST(FindLineSegments, NumberOfDistancesIsRoundedInSinglePrecision) {
    // 341 / 171.5 pixels a step: 172 distances, with their exact middle half a step beyond the truncated one, which
    // puts the line of row 30, 15 steps from there, on row 28.8. In double precision there would be 171.
    const float rhoStep = 341.0F / 171.5F;
    ASSERT_LT(341.0 / static_cast<double>(rhoStep), 171.5);
    ASSERT_EQ(341.0F / rhoStep, 171.5F);
    const Points points = row(0, 110, 30) + row(112, 112, 28) + row(114, 114, 31);
    EXPECT_EQ(segmentsOf(points, {.width = 120, .height = 50, .rhoStep = rhoStep}), (Segments{{0, 30, 112, 28}}));
}

// ---- Inliers

TEST(FindLineSegments, PointsOneRowOffTheLineBelongToIt) {
    EXPECT_EQ(segmentsOf(row(0, 119, 50) + row(121, 121, 51)), (Segments{{0, 50, 121, 51}}));
    EXPECT_EQ(segmentsOf(row(0, 119, 50) + row(121, 121, 49)), (Segments{{0, 50, 121, 49}}));
}

TEST(FindLineSegments, PointsTwoRowsOffTheLineDoNotBelongToIt) {
    EXPECT_EQ(segmentsOf(row(0, 119, 50) + row(121, 121, 52)), (Segments{{0, 50, 119, 50}}));
    EXPECT_EQ(segmentsOf(row(0, 119, 50) + row(121, 121, 48)), (Segments{{0, 50, 119, 50}}));
}

TEST(FindLineSegments, InliersLieWithinTheSquareRootOf2) {
    // The distance -50 / sqrt(2) = -35.36 is decoded as -34.
    Points points;
    addDiagonal(points, 50, 169, -50);
    ASSERT_LT(50.0 / std::sqrt(2.0) - 34.0, std::sqrt(2.0));
    ASSERT_GT(50.0 / std::sqrt(2.0) - 34.0, 1.35);
    EXPECT_EQ(segmentsOf(points), (Segments{{50, 0, 169, 119}}));

    ASSERT_GT(34.0 - 46.0 / std::sqrt(2.0), std::sqrt(2.0));
    ASSERT_LT(34.0 - 46.0 / std::sqrt(2.0), 1.5);
    Points farther = points;
    addDiagonal(farther, 171, 171, -46);
    EXPECT_EQ(segmentsOf(farther), (Segments{{50, 0, 169, 119}}));

    Points nearer = points;
    addDiagonal(nearer, 171, 171, -47);
    EXPECT_EQ(segmentsOf(nearer), (Segments{{50, 0, 171, 124}}));
}

TEST(FindLineSegments, InliersLieWithinTheSquareRootOf2InALargeFrameToo) {
    Points points;
    addDiagonal(points, 0, 111, 140);  // distance 98.99, for the line at 99
    addDiagonal(points, 113, 113, 142);
    ASSERT_LT(142.0 / std::sqrt(2.0) - 99.0, std::sqrt(2.0));
    ASSERT_GT(142.0 / std::sqrt(2.0) - 99.0, 1.409);
    EXPECT_EQ(segmentsOf(points, {.width = 1280, .height = 1024}), (Segments{{0, 140, 113, 255}}));
}

TEST(FindLineSegments, EveryPointOfALineBelongsToItHoweverManyThereAre) {
    for (int count = 250; count <= 260; ++count)
        EXPECT_EQ(segmentsOf(row(0, count - 1, 50), {.width = 300}), (Segments{{0, 50, count - 1, 50}}));
}

// ---- Segments of one line

TEST(FindLineSegments, InliersAreSortedByColumnThenRow) {
    Points points = row(0, 119, 50) + row(0, 0, 49) + row(119, 119, 51);
    std::reverse(points.begin(), points.end());
    EXPECT_EQ(segmentsOf(points), (Segments{{0, 49, 119, 51}}));

    Points oddFirst;
    for (int x = 1; x < 120; x += 2) oddFirst.push_back({x, 50});
    for (int x = 0; x < 120; x += 2) oddFirst.push_back({x, 50});
    EXPECT_EQ(segmentsOf(oddFirst), (Segments{{0, 50, 119, 50}}));
}

TEST(FindLineSegments, GapOfExactly20PixelsIsBridged) {
    EXPECT_EQ(segmentsOf(row(0, 60, 50) + row(80, 140, 50)), (Segments{{0, 50, 140, 50}}));
}

TEST(FindLineSegments, GapJustOver20PixelsSplits) {
    // The first point of the second part is 20 columns and 1 row away: sqrt(401) pixels.
    EXPECT_EQ(segmentsOf(row(0, 60, 50) + row(80, 80, 51) + row(81, 140, 50)),
              (Segments{{0, 50, 60, 50}, {80, 51, 140, 50}}));
    EXPECT_EQ(segmentsOf(row(0, 60, 50) + row(81, 140, 50)), (Segments{{0, 50, 60, 50}, {81, 50, 140, 50}}));
}

TEST(FindLineSegments, SegmentShorterThan50PixelsIsDroppedHoweverDense) {
    EXPECT_EQ(segmentsOf(row(0, 49, 50, 3)), Segments{});
    EXPECT_EQ(segmentsOf(row(0, 50, 50, 3)), (Segments{{0, 50, 50, 50}}));
}

TEST(FindLineSegments, PartClosedByAGapMustBe50PixelsLongToo) {
    EXPECT_EQ(segmentsOf(row(0, 49, 50) + row(80, 150, 50)), (Segments{{80, 50, 150, 50}}));
    EXPECT_EQ(segmentsOf(row(0, 50, 50) + row(80, 150, 50)), (Segments{{0, 50, 50, 50}, {80, 50, 150, 50}}));
}

TEST(FindLineSegments, VerticalSegmentPassesTheDensityTest) {
    Points points;
    addColumn(points, 30, 0, 119);
    EXPECT_EQ(segmentsOf(points), (Segments{{30, 0, 30, 119}}));
    EXPECT_EQ(segmentsOf(points, {.densityRatio = 1.0e30F}), (Segments{{30, 0, 30, 119}}));
}

TEST(FindLineSegments, LengthCountsRowsToo) {
    Points length50;
    addColumn(length50, 30, 0, 50, 2);
    EXPECT_EQ(segmentsOf(length50), (Segments{{30, 0, 30, 50}}));
    Points length49;
    addColumn(length49, 30, 0, 49, 3);
    EXPECT_EQ(segmentsOf(length49), Segments{});
}

TEST(FindLineSegments, LengthIsMeasuredAlongTheSegment) {
    Points length50;  // 36 * sqrt(2) = 50.9
    Points length49;  // 35 * sqrt(2) = 49.5
    for (int times = 0; times < 3; ++times) {
        addDiagonal(length50, 0, 36, 0);
        addDiagonal(length49, 0, 35, 0);
    }
    EXPECT_EQ(segmentsOf(length50), (Segments{{0, 0, 36, 36}}));
    EXPECT_EQ(segmentsOf(length49), Segments{});
}

TEST(FindLineSegments, DensityCountsStepsPerColumnNotPerPixelOfLength) {
    // 90 steps over 100 columns of a diagonal, whose length is 141 pixels.
    Points points;
    for (int x = 0; x <= 100; ++x) {
        if (x % 10 != 5) points.insert(points.end(), x < 11 ? 2 : 1, VotePoint{x, x});
    }
    ASSERT_EQ(points.size(), 101U);
    EXPECT_EQ(segmentsOf(points), (Segments{{0, 0, 100, 100}}));
}

TEST(FindLineSegments, SegmentClosedByAGapCountsTheStepAcrossTheGap) {
    const Points dense = row(130, 190, 50);
    EXPECT_EQ(segmentsOf(sparseRow(0, 80) + dense), (Segments{{130, 50, 190, 50}}));
    EXPECT_EQ(segmentsOf(sparseRow(0, 81) + dense), (Segments{{0, 50, 100, 50}, {130, 50, 190, 50}}));
}

TEST(FindLineSegments, LastSegmentCountsTheStepsBetweenItsPoints) {
    const Points dense = row(0, 60, 50);
    EXPECT_EQ(segmentsOf(dense + sparseRow(90, 81)), (Segments{{0, 50, 60, 50}}));
    EXPECT_EQ(segmentsOf(dense + sparseRow(90, 82)), (Segments{{0, 50, 60, 50}, {90, 50, 190, 50}}));
}

TEST(FindLineSegments, DensityIsComparedInSinglePrecision) {
    ASSERT_GT(70.0 / 100.0, static_cast<double>(0.7F));
    ASSERT_EQ(70.0F / 100.0F, 0.7F);
    const Points dense = row(130, 190, 50);
    const Search search{.densityRatio = 0.7F};
    EXPECT_EQ(segmentsOf(sparseRow(0, 70) + dense, search), (Segments{{130, 50, 190, 50}}));
    EXPECT_EQ(segmentsOf(sparseRow(0, 71) + dense, search), (Segments{{0, 50, 100, 50}, {130, 50, 190, 50}}));
}

}  // namespace
