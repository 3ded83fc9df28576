// Cal2DPoint2_1: candidates above 30 grey levels, the gate of the line selection, the filter of long straight segments,
// the pruning between unambiguous columns, and the choice to the right and back.
//
// A comment above a test says what its frame would give without the rule, where that is not plain.

#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <vector>

#include "KorvaneLaserAlgo.h"
#include "extract/Frames.h"
#include "support/Support.h"

namespace {

using extraction::Extraction;
using extraction::foundAt;
using frames::centroid;
using frames::drawRun;
using frames::drawSpot;
using frames::drawStripe;
using frames::flatRun;
using frames::kNone;
using frames::Select;
using support::Image;
using support::KorvaneLaserAlgo;
using support::Mask;
using support::Points2d;
using support::setRoi;

Extraction extract(Image& image, const Select& select = Select{}) {
    return frames::extract(&KorvaneLaserAlgo::Cal2DPoint2_1, image, select);
}

testing::AssertionResult rowsAre(Image& image, const Select& select, const std::vector<double>& rows) {
    return frames::givesRows(extract(image, select), rows);
}

testing::AssertionResult rowsAre(Image& image, const std::vector<double>& rows) {
    return rowsAre(image, Select{}, rows);
}

/// A column of 60 rows with one run, which begins at row 10.
Image columnWith(const std::vector<int>& run) {
    Image image(1, 60);
    drawRun(image, 0, 10, run);
    return image;
}

/// A column of 60 rows with two runs: one of two pixels, which is ignored there, and this one from row 10 on.
Image columnOfTwoRunsWith(const std::vector<int>& run) {
    Image image = columnWith(run);
    drawRun(image, 0, 2, {200, 200});
    return image;
}

/// A hump from row 10 to row 14 inside a single run of the given length: feet 10 and 14, peak 200, width 4.
std::vector<int> longRunWithHump(int rows) {
    std::vector<int> run = flatRun(rows, 100);
    run[10] = 90;
    run[11] = 150;
    run[12] = 200;
    run[13] = 150;
    run[14] = 90;
    return run;
}

// ---- Outputs

TEST(Cal2DPoint2_1, FrameIsReadOnly) {
    Image image(130, 60);
    drawStripe(image, 0, 129, 20);
    drawSpot(image, 60, 40);
    const std::vector<unsigned char> before = image.pixels();
    EXPECT_TRUE(rowsAre(image, std::vector<double>(130, 20.0)));
    EXPECT_EQ(image.pixels(), before);
}

// ---- Candidates of a single run

TEST(Cal2DPoint2_1, RunTakesPixelsAbove30Only) {
    Image image = columnWith({30, 31, 31});
    EXPECT_TRUE(rowsAre(image, {11.5}));
    Image dark = columnWith({30, 30, 30});
    EXPECT_TRUE(rowsAre(dark, {kNone}));
}

TEST(Cal2DPoint2_1, ThresholdDoesNotDependOnTheColumnsMaximum) {
    Image image = columnWith({31, 255, 100});
    EXPECT_TRUE(rowsAre(image, {centroid(10, {31, 255, 100})}));
}

TEST(Cal2DPoint2_1, RunMayBeginInTheFirstRowAndEndInTheLast) {
    Image image(1, 4);
    drawRun(image, 0, 0, {100, 150, 200, 50});
    EXPECT_TRUE(rowsAre(image, {centroid(0, {100, 150, 200, 50})}));
}

TEST(Cal2DPoint2_1, SingleRunOf1Or2RowsIsACandidate) {
    Image one = columnWith({31});
    EXPECT_TRUE(rowsAre(one, {10.0}));
    Image two = columnWith({31, 31});
    EXPECT_TRUE(rowsAre(two, {10.5}));
}

TEST(Cal2DPoint2_1, SingleRunOf19RowsIsGatedWithItsLength) {
    const std::vector<int> rows19 = longRunWithHump(19);
    Image image = columnWith(rows19);
    EXPECT_TRUE(rowsAre(image, {.widthMin = 19, .widthMax = 19}, {centroid(10, rows19)}));
    EXPECT_TRUE(rowsAre(image, {.widthMin = 20}, {kNone}));
    EXPECT_TRUE(rowsAre(image, {.widthMax = 18}, {kNone}));
}

TEST(Cal2DPoint2_1, SingleRunOf20RowsIsSplitIntoItsHumps) {
    Image image = columnWith(longRunWithHump(20));
    EXPECT_TRUE(rowsAre(image, {.widthMin = 4, .widthMax = 4}, {22.0}));
    EXPECT_TRUE(rowsAre(image, {.widthMin = 5}, {kNone}));
    EXPECT_TRUE(rowsAre(image, {.widthMax = 3}, {kNone}));
}

TEST(Cal2DPoint2_1, HumpOfALongRunIsGatedWithItsPeakGrey) {
    Image image = columnWith(longRunWithHump(20));
    EXPECT_TRUE(rowsAre(image, {.grayMin = 200, .grayMax = 200}, {22.0}));
    EXPECT_TRUE(rowsAre(image, {.grayMin = 201}, {kNone}));
    EXPECT_TRUE(rowsAre(image, {.grayMax = 199}, {kNone}));
}

TEST(Cal2DPoint2_1, HumpCentreIsTakenFromFootToFoot) {
    std::vector<int> run = longRunWithHump(20);
    run[13] = 180;
    run[14] = 70;
    Image image = columnWith(run);
    EXPECT_TRUE(rowsAre(image, {centroid(20, {90, 150, 200, 180, 70})}));
}

TEST(Cal2DPoint2_1, LongSingleRunWithoutAHumpHasNoCandidate) {
    Image rows19 = columnWith(flatRun(19, 200));
    EXPECT_TRUE(rowsAre(rows19, {19.0}));
    Image rows20 = columnWith(flatRun(20, 200));
    EXPECT_TRUE(rowsAre(rows20, {kNone}));
}

// Without the split into humps column 1 would have one candidate, the run's own centre, in both frames.
TEST(Cal2DPoint2_1, LongSingleRunGivesACandidateForEveryHump) {
    std::vector<int> run = flatRun(20, 100);
    run[4] = 200;
    run[12] = 220;
    Image image(2, 60);
    drawSpot(image, 0, 22);
    drawRun(image, 1, 10, run);
    // The right foot of a hump passes equal greys: the first goes on to index 11, the second to index 19.
    const double first = centroid(13, {100, 200, 100, 100, 100, 100, 100, 100, 100});
    const double second = centroid(21, {100, 220, 100, 100, 100, 100, 100, 100, 100});
    ASSERT_GT(std::abs(first - 22.0), 5.0);
    EXPECT_TRUE(rowsAre(image, {22.0, second}));
    drawRun(image, 0, 21, {0, 0, 0});
    drawSpot(image, 0, 15);
    EXPECT_TRUE(rowsAre(image, {15.0, first}));
}

// ---- The gate of the line selection

TEST(Cal2DPoint2_1, WholeRunGreyIsThePixelAtTheTruncatedCentre) {
    const double centre = (100.0 * 10 + 200.0 * 11) / 300.0;
    ASSERT_GT(centre, 10.5);
    ASSERT_LT(centre, 11.0);
    Image image = columnWith({100, 200});
    EXPECT_TRUE(rowsAre(image, {.grayMin = 100, .grayMax = 100}, {centre}));
    EXPECT_TRUE(rowsAre(image, {.grayMin = 101}, {kNone}));
    EXPECT_TRUE(rowsAre(image, {.grayMax = 99}, {kNone}));
}

TEST(Cal2DPoint2_1, WholeRunWidthIsItsNumberOfRows) {
    Image image = columnWith({100, 100, 100});
    EXPECT_TRUE(rowsAre(image, {.widthMin = 3, .widthMax = 3}, {11.0}));
    EXPECT_TRUE(rowsAre(image, {.widthMin = 4}, {kNone}));
    EXPECT_TRUE(rowsAre(image, {.widthMax = 2}, {kNone}));
}

TEST(Cal2DPoint2_1, NegativeBoundsAreComparedAsSigned) {
    for (int negative : {-1, INT_MIN}) {
        for (bool besideAnother : {false, true}) {
            Image flat = besideAnother ? columnOfTwoRunsWith(flatRun(3, 100)) : columnWith(flatRun(3, 100));
            EXPECT_TRUE(rowsAre(flat, {.grayMin = negative, .widthMin = negative}, {11.0}));
            EXPECT_TRUE(rowsAre(flat, {.widthMax = negative}, {kNone}));
            EXPECT_TRUE(rowsAre(flat, {.grayMax = negative}, {kNone}));
        }
        Image hump = columnOfTwoRunsWith({70, 200, 70});
        EXPECT_TRUE(rowsAre(hump, {.grayMin = negative, .widthMin = negative}, {11.0}));
        EXPECT_TRUE(rowsAre(hump, {.widthMax = negative}, {kNone}));
        EXPECT_TRUE(rowsAre(hump, {.grayMax = negative}, {kNone}));
    }
}

TEST(Cal2DPoint2_1, AllBoundsZeroFindNothing) {
    Image image(3, 40);
    drawSpot(image, 0, 10);
    drawRun(image, 1, 10, {31});
    drawSpot(image, 2, 10);
    drawSpot(image, 2, 20);
    KorvaneLaserAlgo algo;
    setRoi(algo, 3, 40, 5, 6);
    Mask mask(3);
    Points2d points;
    algo.Cal2DPoint2_1(mask.data(), image.data(), points);
    EXPECT_TRUE(support::sameBits(points, Points2d(3, {5.0, 6.0})));
    EXPECT_EQ(mask.marked(), std::vector<int>{});
}

// Without the gate the column would have two candidates and, as the first of the frame, no point.
TEST(Cal2DPoint2_1, GateLeavesTheOneCandidateThatIsTaken) {
    Image image(1, 60);
    drawSpot(image, 0, 20, 200);
    drawSpot(image, 0, 40, 100);
    EXPECT_TRUE(rowsAre(image, {.grayMin = 150}, {20.0}));
    EXPECT_TRUE(rowsAre(image, {.grayMin = 0}, {kNone}));
}

// ---- Candidates of several runs

TEST(Cal2DPoint2_1, RunsBelow3RowsAreIgnoredBesideOthers) {
    Image image(1, 60);
    drawRun(image, 0, 2, {200});
    drawRun(image, 0, 5, {200, 200});
    EXPECT_TRUE(rowsAre(image, {kNone}));
    drawRun(image, 0, 10, {100, 100, 100});
    EXPECT_TRUE(rowsAre(image, {11.0}));
}

TEST(Cal2DPoint2_1, AmongSeveralRunsOneWithoutAHumpIsTakenWhole) {
    const std::vector<int> rising{100, 150, 250};
    Image image = columnOfTwoRunsWith(rising);
    EXPECT_TRUE(rowsAre(image, {.grayMin = 150, .grayMax = 150, .widthMin = 3, .widthMax = 3}, {centroid(10, rising)}));
    EXPECT_TRUE(rowsAre(image, {.grayMin = 151}, {kNone}));
    EXPECT_TRUE(rowsAre(image, {.grayMax = 149}, {kNone}));
    EXPECT_TRUE(rowsAre(image, {.widthMin = 4}, {kNone}));
    EXPECT_TRUE(rowsAre(image, {.widthMax = 2}, {kNone}));
}

TEST(Cal2DPoint2_1, AmongSeveralRunsALongOneWithoutAHumpIsTakenWhole) {
    Image image = columnOfTwoRunsWith(flatRun(21, 100));
    EXPECT_TRUE(rowsAre(image, {.widthMin = 21, .widthMax = 21}, {20.0}));
}

TEST(Cal2DPoint2_1, AmongSeveralRunsEvenAShortOneIsSearchedForHumps) {
    Image image = columnOfTwoRunsWith({70, 80, 75, 200, 90});
    EXPECT_TRUE(
        rowsAre(image, {.grayMin = 200, .grayMax = 200, .widthMin = 2, .widthMax = 2}, {centroid(12, {75, 200, 90})}));
    EXPECT_TRUE(rowsAre(image, {.widthMin = 3}, {kNone}));
    EXPECT_TRUE(rowsAre(image, {.widthMax = 1}, {kNone}));
    EXPECT_TRUE(rowsAre(image, {.grayMin = 201}, {kNone}));
    EXPECT_TRUE(rowsAre(image, {.grayMax = 199}, {kNone}));
}

TEST(Cal2DPoint2_1, HumpMustFallBy50GreyLevelsOnOneSide) {
    // The hump would be 2 wide, the whole run is 3 wide.
    Image fallsBy50 = columnOfTwoRunsWith({151, 200, 150});
    EXPECT_TRUE(rowsAre(fallsBy50, {.widthMin = 3}, {kNone}));
    Image fallsBy49 = columnOfTwoRunsWith({151, 200, 151});
    EXPECT_TRUE(rowsAre(fallsBy49, {.widthMin = 3}, {11.0}));
}

TEST(Cal2DPoint2_1, RejectedHumpDoesNotFallBackToTheWholeRun) {
    Image image = columnOfTwoRunsWith({70, 200, 70});
    EXPECT_TRUE(rowsAre(image, {.widthMin = 2}, {11.0}));
    EXPECT_TRUE(rowsAre(image, {.widthMin = 3}, {kNone}));
}

// ---- Segments among the candidates

/// A stripe on row 50 over the columns from 0 on, where column 59 shows a reflection on row 60 only, and column 60 both
/// the stripe and the reflection. Column 59 leads the tracking to row 60; column 60 follows it where the segment filter
/// leaves it the reflection.
Image stripeWithReflection(int lastColumn) {
    Image image(lastColumn + 5, 100);
    drawStripe(image, 0, 58, 50);
    drawSpot(image, 59, 60);
    drawSpot(image, 60, 60);
    drawStripe(image, 60, lastColumn, 50);
    return image;
}

// Without the filter column 60 would be 60, nearest to the row of column 59.
TEST(Cal2DPoint2_1, SegmentFilterDropsCandidatesOffTheStripe) {
    Image image = stripeWithReflection(119);
    std::vector<double> rows(120, 50.0);
    rows[59] = 60.0;
    EXPECT_TRUE(rowsAre(image, rows));
}

TEST(Cal2DPoint2_1, StripeOf100VotesIsNoSegmentAndKeepsAllCandidates) {
    Image votes100 = stripeWithReflection(100);  // columns 0 .. 100 without column 59
    EXPECT_TRUE(foundAt(extract(votes100), 60, 60.0));
    Image votes101 = stripeWithReflection(101);
    EXPECT_TRUE(foundAt(extract(votes101), 60, 50.0));
}

// A line at 90.5 degrees would collect all votes but a few. At 90 degrees they split by rows, into 64 and 65; at 91
// degrees column x and row y vote for y - 0.01745 x, of which 48 round to 50 and 80 to 49; at 89 degrees still fewer
// agree.
TEST(Cal2DPoint2_1, LinesAreSoughtAtWholeDegreesOnly) {
    Image image(130, 100);
    drawStripe(image, 0, 58, 50);
    drawSpot(image, 59, 60);
    drawSpot(image, 60, 60);
    drawStripe(image, 60, 64, 50);
    drawStripe(image, 65, 129, 51);
    EXPECT_TRUE(foundAt(extract(image), 60, 60.0));
}

TEST(Cal2DPoint2_1, SegmentMustHaveMoreThan4VotesPer5Columns) {
    Image image(150, 100);
    for (int column = 0; column < 150; ++column) {
        if (column % 5 != 4) drawSpot(image, column, 50);
    }
    drawSpot(image, 59, 60);
    drawSpot(image, 60, 60);
    ASSERT_GT(119.0 / 148.0, 0.8);  // steps between the 120 votes over the columns 0 .. 148
    EXPECT_TRUE(foundAt(extract(image), 60, 50.0));

    drawRun(image, 100, 49, {0, 0, 0});
    ASSERT_LT(118.0 / 148.0, 0.8);
    EXPECT_TRUE(foundAt(extract(image), 60, 60.0));
}

TEST(Cal2DPoint2_1, StripeThatAlternatesBetweenTwoRowsIsNoSegment) {
    Image image(130, 100);
    for (int column = 0; column < 130; ++column) drawSpot(image, column, column % 2 == 0 ? 50 : 51);  // 65 votes each
    drawRun(image, 59, 50, {0, 0, 0});
    drawSpot(image, 59, 60);
    drawSpot(image, 60, 60);
    EXPECT_TRUE(foundAt(extract(image), 60, 60.0));
}

TEST(Cal2DPoint2_1, CandidateVotesWithItsTruncatedRow) {
    // The stripe's centre 50.9 votes for row 50, from which 52.5 is farther than 2 rows away; from row 51 it is not.
    const std::vector<int> upper{31, 40, 200};
    const std::vector<int> lower{31, 100, 200};
    ASSERT_LT(std::abs(50.0 - centroid(47, upper)), 2.0);
    ASSERT_GT(std::abs(50.0 - centroid(51, lower)), 2.0);
    ASSERT_LT(std::abs(51.0 - centroid(51, lower)), 2.0);

    Image image(120, 100);
    for (int column = 0; column < 120; ++column) {
        if (column != 59 && column != 60) drawRun(image, column, 50, {31, 250});
    }
    drawSpot(image, 59, 53);
    drawRun(image, 60, 47, upper);
    drawRun(image, 60, 51, lower);
    EXPECT_TRUE(foundAt(extract(image), 60, centroid(47, upper)));
}

// ---- The segment filter

/// A stripe on row 50; column 60 shows a candidate 1.4 rows above it and this one from row 51 on, and column 59 leads
/// the tracking to row 53, so that column 60 follows where the filter leaves it the lower candidate.
Image stripeWithLowerCandidate(const std::vector<int>& lower) {
    Image image(120, 100);
    drawStripe(image, 0, 58, 50);
    drawSpot(image, 59, 53);
    drawRun(image, 60, 47, {31, 40, 200});
    drawRun(image, 60, 51, lower);
    drawStripe(image, 61, 119, 50);
    return image;
}

TEST(Cal2DPoint2_1, CandidateExactly2RowsFromTheSegmentIsDropped) {
    Image exactly2 = stripeWithLowerCandidate({100, 100, 100});
    EXPECT_TRUE(foundAt(extract(exactly2), 60, centroid(47, {31, 40, 200})));
    Image below2 = stripeWithLowerCandidate({101, 100, 100});
    EXPECT_TRUE(foundAt(extract(below2), 60, centroid(51, {101, 100, 100})));
}

// Without the unfiltered candidates column 59 would be empty.
TEST(Cal2DPoint2_1, ColumnWithoutACandidateNearASegmentKeepsAllItsCandidates) {
    Image image = stripeWithReflection(119);
    EXPECT_TRUE(foundAt(extract(image), 59, 60.0));

    Image two(120, 100);
    drawStripe(two, 0, 58, 50);
    drawSpot(two, 59, 60);
    drawSpot(two, 59, 70);
    drawStripe(two, 60, 119, 50);
    EXPECT_TRUE(foundAt(extract(two, {.mode = 3}), 59, 60.0));
    EXPECT_TRUE(foundAt(extract(two, {.mode = 4}), 59, 70.0));
}

TEST(Cal2DPoint2_1, FirstColumnOfASegmentKeepsItsUnfilteredCandidates) {
    Image image(130, 100);
    drawSpot(image, 9, 60);
    drawStripe(image, 10, 119, 50);
    drawSpot(image, 10, 60);  // the segment begins here
    drawSpot(image, 11, 60);
    const Extraction result = extract(image);
    EXPECT_TRUE(foundAt(result, 10, 60.0));
    EXPECT_TRUE(foundAt(result, 11, 50.0));
}

TEST(Cal2DPoint2_1, LastColumnOfASegmentKeepsItsUnfilteredCandidates) {
    Image last(130, 100);
    drawStripe(last, 0, 118, 50);
    drawSpot(last, 119, 60);
    drawStripe(last, 120, 120, 50);  // the segment ends here
    drawSpot(last, 120, 60);
    EXPECT_TRUE(foundAt(extract(last), 120, 60.0));

    Image lastButOne(130, 100);
    drawStripe(lastButOne, 0, 117, 50);
    drawSpot(lastButOne, 118, 60);
    drawStripe(lastButOne, 119, 120, 50);
    drawSpot(lastButOne, 119, 60);
    EXPECT_TRUE(foundAt(extract(lastButOne), 119, 50.0));
}

TEST(Cal2DPoint2_1, EndColumnOfASegmentIsFilteredByAnotherThatCoversIt) {
    Image image(130, 160);
    drawSpot(image, 9, 60);
    drawSpot(image, 10, 60);
    drawStripe(image, 10, 129, 50);
    EXPECT_TRUE(foundAt(extract(image), 10, 60.0));

    for (int column = 0; column < 110; ++column) {
        if (column < 8 || column > 16)  // where the two stripes stand apart
            drawSpot(image, column, column + 40);
    }
    EXPECT_TRUE(foundAt(extract(image), 9, 60.0));
    EXPECT_TRUE(foundAt(extract(image), 10, 50.0));
}

// Without the filter column 60 would be 80, nearest to the row of column 59.
TEST(Cal2DPoint2_1, SegmentRowFollowsItsSlope) {
    Image image(120, 140);
    for (int column = 0; column < 120; ++column) drawSpot(image, column, column + 10);
    drawRun(image, 59, 68, {0, 0, 0});
    drawSpot(image, 59, 79);
    drawSpot(image, 60, 80);
    const Extraction result = extract(image);
    EXPECT_TRUE(foundAt(result, 59, 79.0));
    EXPECT_TRUE(foundAt(result, 60, 70.0));
}

TEST(Cal2DPoint2_1, SlopeOfASegmentIsOfItsOwnColumns) {
    Image image(130, 150);
    for (int column = 10; column < 130; ++column) drawSpot(image, column, column);
    drawRun(image, 69, 68, {0, 0, 0});
    drawSpot(image, 69, 79);
    drawSpot(image, 70, 80);
    const Extraction result = extract(image);
    EXPECT_TRUE(foundAt(result, 69, 79.0));
    EXPECT_TRUE(foundAt(result, 70, 70.0));
}

TEST(Cal2DPoint2_1, SegmentRowIsInSinglePrecision) {
    const std::vector<int> lower{100, 160, 191};
    const double centre = centroid(1001, lower);
    const float slope = 1.0F / 114.0F;
    const float segmentRow = 23.0F * slope + 1000.0F;
    ASSERT_LT(std::abs(static_cast<double>(segmentRow) - centre), 2.0);
    ASSERT_GT(std::abs((23.0 * static_cast<double>(slope) + 1000.0) - centre), 2.0);

    Image image(120, 1020);  // from column 0, row 1000 to column 114, row 1001
    drawStripe(image, 0, 113, 1000);
    drawSpot(image, 114, 1001);
    for (int column : {22, 23}) drawRun(image, column, 999, {0, 0, 0});
    drawSpot(image, 22, 1003);
    drawRun(image, 23, 997, {31, 40, 200});
    drawRun(image, 23, 1001, lower);
    EXPECT_TRUE(foundAt(extract(image), 23, centre));
}

TEST(Cal2DPoint2_1, SegmentRowIsRoundedAfterEveryStep) {
    const std::vector<int> lower{60, 81, 189};
    const double centre = centroid(58, lower);
    const float slope = -111.0F / 110.0F;
    const float fall = 67.0F * slope;
    const float roundedOnce = static_cast<float>(67.0 * static_cast<double>(slope) + 125.0);
    ASSERT_GT(std::abs(static_cast<double>(fall + 125.0F) - centre), 2.0);
    ASSERT_LT(std::abs(static_cast<double>(roundedOnce) - centre), 2.0);

    Image image(120, 140);  // from column 0, row 125 to column 110, row 14
    for (int column = 0; column < 110; ++column) {
        if (column != 66 && column != 67) drawSpot(image, column, 125 - column);
    }
    drawSpot(image, 110, 14);
    drawSpot(image, 66, 61);
    drawRun(image, 67, 54, {31, 40, 200});
    drawRun(image, 67, 58, lower);
    EXPECT_TRUE(foundAt(extract(image), 67, centroid(54, {31, 40, 200})));
}

TEST(Cal2DPoint2_1, DistanceToTheSegmentIsJudgedInDoublePrecision) {
    const std::vector<int> lower{70, 116, 234};
    const double centre = centroid(51, lower);
    const float segmentRow = 41.0F * (1.0F / 105.0F) + 50.0F;
    const double distance = std::abs(static_cast<double>(segmentRow) - centre);
    ASSERT_LT(distance, 2.0);
    ASSERT_EQ(static_cast<float>(distance), 2.0F);

    Image image(120, 100);  // from column 0, row 50 to column 105, row 51
    drawStripe(image, 0, 104, 50);
    drawSpot(image, 105, 51);
    for (int column : {40, 41}) drawRun(image, column, 49, {0, 0, 0});
    drawSpot(image, 40, 53);
    drawRun(image, 41, 47, {31, 40, 200});
    drawRun(image, 41, 51, lower);
    EXPECT_TRUE(foundAt(extract(image), 41, centre));
}

// Without the second entry the seven columns in which the stripes meet would have one candidate each and start the
// tracking; as it is no column has a single candidate, so that nothing is ever tracked.
TEST(Cal2DPoint2_1, CandidateNearTwoSegmentsCountsTwice) {
    Image image(115, 120);
    for (int column = 0; column < 115; ++column) {
        drawRun(image, column, 59, flatRun(3, 200));
        drawRun(image, column, column + 1, flatRun(3, 200));
    }
    for (int mode : {0, 1, 2, 3, 4}) EXPECT_TRUE(rowsAre(image, {.mode = mode}, {})) << "mode " << mode;
}

/// Two stripes, the lower with more votes, and between them a single reflection in column 59.
Image twoStripes() {
    Image image(145, 100);
    drawStripe(image, 0, 119, 50);
    drawStripe(image, 0, 139, 80);
    for (int row : {49, 79}) drawRun(image, 59, row, {0, 0, 0});
    drawSpot(image, 59, 65);
    return image;
}

TEST(Cal2DPoint2_1, FilteredCandidatesAreListedInTheOrderOfTheSegments) {
    Image image = twoStripes();
    EXPECT_TRUE(foundAt(extract(image, {.mode = 3}), 60, 80.0));
    EXPECT_TRUE(foundAt(extract(image, {.mode = 4}), 60, 50.0));
}

// ---- Ambiguous columns and their groups. In narrow frames no segment is found.

TEST(Cal2DPoint2_1, CandidatesExactly15RowsApartAreNotAmbiguous) {
    Image exactly15(3, 120);
    drawSpot(exactly15, 0, 50);
    drawSpot(exactly15, 1, 57);
    drawSpot(exactly15, 1, 72);
    drawSpot(exactly15, 2, 50);
    EXPECT_TRUE(rowsAre(exactly15, {.mode = 4}, {50.0, 72.0, 50.0}));

    Image oneMore(3, 120);
    drawSpot(oneMore, 0, 50);
    drawSpot(oneMore, 1, 57);
    drawSpot(oneMore, 1, 73);
    drawSpot(oneMore, 2, 50);
    EXPECT_TRUE(rowsAre(oneMore, {.mode = 4}, {50.0, 57.0, 50.0}));
}

TEST(Cal2DPoint2_1, SpreadOfTheCandidatesIsJudgedInDoublePrecision) {
    std::vector<int> upper = flatRun(13, 250);  // centre 57 - 1/3250
    ++upper[5];
    --upper[6];
    std::vector<int> lower = flatRun(13, 250);  // centre 72 - 1/3251
    ++lower[5];
    const double spread = centroid(66, lower) - centroid(51, upper);
    ASSERT_GT(spread, 15.0);
    ASSERT_EQ(static_cast<float>(spread), 15.0F);

    Image image(3, 120);
    drawSpot(image, 0, 50);
    drawRun(image, 1, 51, upper);
    drawRun(image, 1, 66, lower);
    drawSpot(image, 2, 50);
    EXPECT_TRUE(rowsAre(image, {.mode = 4}, {50.0, centroid(51, upper), 50.0}));
}

// Column 2 lists row 80 before row 50. With the greatest distance in place of the signed one it would be ambiguous and
// lose both candidates.
TEST(Cal2DPoint2_1, SpreadIsTheLastCandidateMinusTheFirstWithItsSign) {
    Image image(145, 100);
    drawSpot(image, 0, 65);
    drawStripe(image, 1, 119, 50);
    drawStripe(image, 1, 139, 80);
    EXPECT_TRUE(foundAt(extract(image, {.mode = 4}), 2, 50.0));
    EXPECT_TRUE(foundAt(extract(image, {.mode = 3}), 2, 80.0));
}

/// Two ambiguous columns, 1 and the given one, between columns on row 50, and at the end a column on row 150.
Image twoAmbiguousColumns(int second) {
    Image image(second + 2, 200);
    drawStripe(image, 0, second, 50);
    for (int column : {1, second}) {
        drawRun(image, column, 49, {0, 0, 0});
        drawSpot(image, column, 43);
        drawSpot(image, column, 60);
    }
    drawSpot(image, second + 1, 150);
    return image;
}

// In a group of its own column 1 would lie between two columns on row 50, keep both candidates and give 43.
TEST(Cal2DPoint2_1, AmbiguousColumns10ApartFormOneGroup) {
    ASSERT_GT(50.0 + 1.0 / 12.0 * 100.0 - 43.0, 10.0);
    Image image = twoAmbiguousColumns(11);
    EXPECT_TRUE(foundAt(extract(image), 1, 60.0));
}

// In one group with column 12 it would lie on a line that rises to row 150, lose row 43 and give 60.
TEST(Cal2DPoint2_1, AmbiguousColumns11ApartFormTwoGroups) {
    ASSERT_GT(50.0 + 1.0 / 13.0 * 100.0 - 43.0, 7.0);
    Image image = twoAmbiguousColumns(12);
    EXPECT_TRUE(foundAt(extract(image), 1, 43.0));
}

TEST(Cal2DPoint2_1, GapIsCountedFromTheGroupsLastColumn) {
    Image image(23, 200);
    drawStripe(image, 0, 21, 50);
    for (int column : {1, 11, 21}) {
        drawRun(image, column, 49, {0, 0, 0});
        drawSpot(image, column, 43);
        drawSpot(image, column, 60);
    }
    drawSpot(image, 22, 150);
    ASSERT_GT(50.0 + 1.0 / 22.0 * 100.0 - 43.0, 10.0);
    EXPECT_TRUE(foundAt(extract(image), 1, 60.0));
}

TEST(Cal2DPoint2_1, UnambiguousColumnsInsideAGroupAreNotPruned) {
    Image image = twoAmbiguousColumns(11);
    ASSERT_GT(50.0 + 10.0 / 12.0 * 100.0 - 50.0, 10.0);
    EXPECT_TRUE(foundAt(extract(image), 10, 50.0));
}

// ---- Pruning against the line between the unambiguous columns beside a group

/// An ambiguous column between two columns on row 50.
Image ambiguousColumn(int upper, int lower) {
    Image image(3, 120);
    drawSpot(image, 0, 50);
    drawSpot(image, 1, upper);
    drawSpot(image, 1, lower);
    drawSpot(image, 2, 50);
    return image;
}

// Without pruning SelectMode would take row 73, the last.
TEST(Cal2DPoint2_1, PruningRemovesCandidatesFarFromTheInterpolatedLine) {
    Image image = ambiguousColumn(57, 73);
    EXPECT_TRUE(rowsAre(image, {.mode = 4}, {50.0, 57.0, 50.0}));
}

TEST(Cal2DPoint2_1, CandidateExactly10RowsFromTheLineIsKept) {
    Image below = ambiguousColumn(43, 60);
    EXPECT_TRUE(rowsAre(below, {.mode = 4}, {50.0, 60.0, 50.0}));
    Image above = ambiguousColumn(40, 57);
    EXPECT_TRUE(rowsAre(above, {.mode = 3}, {50.0, 40.0, 50.0}));
}

// Without pruning SelectMode would take the removed candidates.
TEST(Cal2DPoint2_1, CandidateJustBeyond10RowsFromTheLineIsRemoved) {
    Image below(3, 120);
    drawSpot(below, 0, 50);
    drawSpot(below, 1, 43);
    drawRun(below, 1, 59, {200, 200, 201});
    drawSpot(below, 2, 50);
    ASSERT_GT(centroid(59, {200, 200, 201}), 60.0);
    EXPECT_TRUE(rowsAre(below, {.mode = 4}, {50.0, 43.0, 50.0}));

    Image above(3, 120);
    drawSpot(above, 0, 50);
    drawRun(above, 1, 39, {201, 200, 200});
    drawSpot(above, 1, 57);
    drawSpot(above, 2, 50);
    ASSERT_LT(centroid(39, {201, 200, 200}), 40.0);
    EXPECT_TRUE(rowsAre(above, {.mode = 3}, {50.0, 57.0, 50.0}));
}

TEST(Cal2DPoint2_1, ExpectedRowIsRoundedToSinglePrecisionAndComparedInDouble) {
    const double centre = centroid(59, {50, 60, 70});  // 60 + 1/9
    const double onTheLine = (1.0 - 0.0) / (9.0 - 0.0) * (51.0 - 50.0) + 50.0;
    const double expected = static_cast<double>(static_cast<float>(onTheLine));
    ASSERT_FALSE(std::abs(centre - onTheLine) > 10.0);
    ASSERT_GT(std::abs(centre - expected), 10.0);
    ASSERT_EQ(static_cast<float>(std::abs(centre - expected)), 10.0F);

    Image image(10, 120);
    drawSpot(image, 0, 50);
    drawSpot(image, 1, 43);
    drawRun(image, 1, 59, {50, 60, 70});
    drawSpot(image, 9, 51);
    const Extraction result = extract(image, {.mode = 4});
    EXPECT_TRUE(foundAt(result, 1, 43.0));
}

// Without pruning SelectMode would take row 44, then row 58.
TEST(Cal2DPoint2_1, ExpectedRowIsInterpolatedForEveryColumnOfTheGroup) {
    Image image(4, 120);
    drawSpot(image, 0, 50);
    drawSpot(image, 1, 44);  // 16 from the expected row 60
    drawSpot(image, 1, 66);
    drawSpot(image, 2, 58);  // 12 from the expected row 70
    drawSpot(image, 2, 76);
    drawSpot(image, 3, 80);
    EXPECT_TRUE(rowsAre(image, {.mode = 3}, {50.0, 66.0, 76.0, 80.0}));
}

TEST(Cal2DPoint2_1, AnchorRowIsTheMeanOfTheAnchorsCandidates) {
    // The candidates 44, 46 and 57 of column 1 have the mean 49, from which 39 and 59 are 10 rows away.
    ASSERT_EQ((44.0 + 46.0 + 57.0) / 3.0, 49.0);
    for (int mode : {3, 4}) {
        Image image(4, 120);
        drawSpot(image, 0, 47);
        drawRun(image, 1, 43, {70, 200, 70, 200, 70});  // two humps
        drawSpot(image, 1, 57);
        drawSpot(image, 2, 39);
        drawSpot(image, 2, 59);
        drawSpot(image, 3, 49);
        EXPECT_TRUE(rowsAre(image, {.mode = mode}, {47.0, 46.0, mode == 3 ? 39.0 : 59.0, 49.0})) << "mode " << mode;
    }
}

TEST(Cal2DPoint2_1, AnchorsAreSoughtAcrossEmptyColumns) {
    Image image(7, 120);
    drawSpot(image, 0, 50);
    drawSpot(image, 2, 57);  // the expected row is 60
    drawSpot(image, 2, 73);
    drawSpot(image, 6, 80);
    EXPECT_TRUE(rowsAre(image, {.mode = 4}, {50.0, kNone, 57.0, kNone, kNone, kNone, 80.0}));
}

TEST(Cal2DPoint2_1, AnchorsAreSoughtAcrossOtherGroups) {
    Image image(14, 120);
    drawSpot(image, 0, 50);
    for (int column : {1, 12}) {  // 11 apart
        drawSpot(image, column, 57);
        drawSpot(image, column, 73);
    }
    drawSpot(image, 13, 50);
    std::vector<double> rows(14, kNone);
    rows[0] = 50.0;
    rows[1] = 57.0;
    rows[12] = 57.0;
    rows[13] = 50.0;
    EXPECT_TRUE(rowsAre(image, {.mode = 4}, rows));
}

TEST(Cal2DPoint2_1, GroupAtTheBorderIsNotPruned) {
    Image left(2, 120);
    drawSpot(left, 0, 57);
    drawSpot(left, 0, 73);
    drawSpot(left, 1, 50);
    EXPECT_TRUE(rowsAre(left, {.mode = 4}, {73.0, 50.0}));

    Image right(2, 120);
    drawSpot(right, 0, 50);
    drawSpot(right, 1, 57);
    drawSpot(right, 1, 73);
    EXPECT_TRUE(rowsAre(right, {.mode = 4}, {50.0, 73.0}));
}

TEST(Cal2DPoint2_1, GroupThatBeginsInColumn0IsNotPrunedFurtherRight) {
    Image image(7, 120);
    for (int column : {0, 5}) {  // one group, for they lie at most 10 apart
        drawSpot(image, column, 57);
        drawSpot(image, column, 73);
    }
    drawSpot(image, 1, 50);
    drawSpot(image, 6, 50);
    EXPECT_TRUE(rowsAre(image, {.mode = 4}, {73.0, 50.0, kNone, kNone, kNone, 73.0, 50.0}));
}

// Without pruning SelectMode would take row 30. The expected row is 1.25.
TEST(Cal2DPoint2_1, AnchorBetweenRowsZeroAndOnePrunes) {
    for (int column : {0, 2}) {
        Image image(3, 120);
        drawRun(image, column, 0, {200, 200});
        drawSpot(image, 1, 8);
        drawSpot(image, 1, 30);
        drawSpot(image, 2 - column, 2);
        EXPECT_TRUE(foundAt(extract(image, {.mode = 4}), 1, 8.0)) << "column " << column;
    }
}

TEST(Cal2DPoint2_1, AnchorOnRowZeroDoesNotPruneAndIsNotPassedOver) {
    Image left(4, 120);
    drawSpot(left, 0, 50);
    drawRun(left, 1, 0, {200});
    drawSpot(left, 2, 57);
    drawSpot(left, 2, 73);
    drawSpot(left, 3, 50);
    EXPECT_TRUE(foundAt(extract(left, {.mode = 4}), 2, 73.0));

    Image right(4, 120);
    drawSpot(right, 0, 50);
    drawSpot(right, 1, 57);
    drawSpot(right, 1, 73);
    drawRun(right, 2, 0, {200});
    drawSpot(right, 3, 50);
    EXPECT_TRUE(foundAt(extract(right, {.mode = 4}), 1, 73.0));
}

// Without pruning SelectMode would take one of the two.
TEST(Cal2DPoint2_1, ColumnMayLoseAllItsCandidates) {
    Image image = ambiguousColumn(30, 80);
    EXPECT_TRUE(rowsAre(image, {50.0, kNone, 50.0}));
}

// Without removing greys and widths along with the centres, the first grey would be 250 and the first width 3.
TEST(Cal2DPoint2_1, GreysAndWidthsArePrunedAlongWithTheCentres) {
    Image image(8, 120);
    drawSpot(image, 0, 50);
    drawSpot(image, 1, 20, 250);                       // removed
    drawRun(image, 1, 41, {80, 80, 100, 80, 80});      // 43
    drawRun(image, 1, 55, {180, 180, 200, 180, 180});  // 57, the brighter of the two that stay
    drawSpot(image, 1, 80, 150);                       // removed
    drawSpot(image, 2, 50);
    EXPECT_TRUE(rowsAre(image, {.mode = 1}, {50.0, 57.0, 50.0}));

    Image widths(8, 120);
    drawSpot(widths, 0, 50);
    drawSpot(widths, 1, 20);                  // removed; width 3
    drawRun(widths, 1, 41, flatRun(5, 200));  // 43
    drawRun(widths, 1, 56, flatRun(4, 200));  // 57.5, the narrower of the two that stay
    drawRun(widths, 1, 77, flatRun(6, 200));  // removed
    drawSpot(widths, 2, 50);
    EXPECT_TRUE(rowsAre(widths, {.mode = 2}, {50.0, 57.5, 50.0}));
}

// ---- Choice from left to right

TEST(Cal2DPoint2_1, OnlyCandidateIsTakenHoweverFarAndTrackedFromThenOn) {
    Image image(3, 120);
    drawSpot(image, 0, 20);
    drawSpot(image, 1, 100);
    drawSpot(image, 2, 90);
    drawSpot(image, 2, 103);
    EXPECT_TRUE(rowsAre(image, {20.0, 100.0, 103.0}));
}

// Without the forward walk the backward walk would take row 52, near the right neighbour.
TEST(Cal2DPoint2_1, NearestCandidateToThePreviousColumnIsTaken) {
    Image image(3, 120);
    drawSpot(image, 0, 42);
    drawSpot(image, 1, 38);
    drawSpot(image, 1, 44);
    drawSpot(image, 1, 52);
    drawSpot(image, 2, 54);
    EXPECT_TRUE(rowsAre(image, {42.0, 44.0, 54.0}));
}

TEST(Cal2DPoint2_1, NearCandidateIsTakenWhateverSelectModeSays) {
    for (int mode : {-1, 0, 1, 2, 3, 4, 5}) {
        Image image(8, 120);
        drawSpot(image, 0, 50);
        drawRun(image, 1, 40, flatRun(3, 250));
        drawRun(image, 1, 51, flatRun(5, 150));
        drawRun(image, 1, 58, flatRun(3, 200));
        EXPECT_TRUE(rowsAre(image, {.mode = mode}, {50.0, 53.0})) << "mode " << mode;
    }
}

TEST(Cal2DPoint2_1, FirstOfEquallyNearCandidatesIsTaken) {
    Image image(2, 120);
    drawSpot(image, 0, 50);
    drawSpot(image, 1, 47);
    drawSpot(image, 1, 53);
    EXPECT_TRUE(rowsAre(image, {.mode = 4}, {50.0, 47.0}));
}

TEST(Cal2DPoint2_1, CandidateExactly5RowsAwayIsNear) {
    Image image(2, 120);
    drawSpot(image, 0, 50);
    drawSpot(image, 1, 55);
    drawSpot(image, 1, 65);
    EXPECT_TRUE(rowsAre(image, {.mode = 4}, {50.0, 55.0}));
}

TEST(Cal2DPoint2_1, CandidateJustBeyond5RowsIsNotNear) {
    Image image(2, 120);
    drawSpot(image, 0, 50);
    drawRun(image, 1, 54, {200, 200, 201});
    drawSpot(image, 1, 65);
    ASSERT_GT(static_cast<float>(centroid(54, {200, 200, 201}) - 50.0), 5.0F);
    EXPECT_TRUE(rowsAre(image, {.mode = 4}, {50.0, 65.0}));
}

TEST(Cal2DPoint2_1, DistanceIsRoundedToSinglePrecisionBeforeItIsJudgedNear) {
    std::vector<int> seed = flatRun(15, 200);  // centre 30 - 1/3000
    ++seed[6];
    --seed[7];
    std::vector<int> candidate = flatRun(15, 200);  // centre 35 - 1/3001
    ++candidate[6];
    const double distance = centroid(28, candidate) - centroid(23, seed);
    ASSERT_GT(distance, 5.0);
    ASSERT_EQ(static_cast<float>(distance), 5.0F);

    Image image(2, 120);
    drawRun(image, 0, 23, seed);
    drawRun(image, 1, 28, candidate);
    drawSpot(image, 1, 46);
    EXPECT_TRUE(rowsAre(image, {.mode = 4}, {centroid(23, seed), centroid(28, candidate)}));
}

TEST(Cal2DPoint2_1, DistancesThatAreEqualInSinglePrecisionGoToTheFirst) {
    std::vector<int> spot = flatRun(9, 250);  // centre 1/2250 above its middle row
    ++spot[3];
    --spot[4];
    std::vector<int> upper = flatRun(9, 250);  // centre 1/2249 above its middle row
    --upper[5];
    const double seedRow = centroid(26, spot);
    const double upperDistance = seedRow - centroid(21, upper);
    const double lowerDistance = centroid(31, spot) - seedRow;
    ASSERT_GT(upperDistance, lowerDistance);
    ASSERT_EQ(static_cast<float>(upperDistance), static_cast<float>(lowerDistance));

    Image image(2, 60);
    drawRun(image, 0, 26, spot);
    drawRun(image, 1, 21, upper);
    drawRun(image, 1, 31, spot);
    EXPECT_TRUE(rowsAre(image, {.mode = 4}, {seedRow, centroid(21, upper)}));
}

TEST(Cal2DPoint2_1, SearchIsNotLimitedByTheWidthOfTheFrame) {
    Image forward(2, 120);
    drawSpot(forward, 0, 50);
    drawSpot(forward, 1, 40);
    drawSpot(forward, 1, 53);  // 3 rows away in a frame 2 wide
    EXPECT_TRUE(rowsAre(forward, {50.0, 53.0}));

    Image backward(2, 120);
    drawSpot(backward, 0, 40);
    drawSpot(backward, 0, 53);
    drawSpot(backward, 1, 50);
    EXPECT_TRUE(rowsAre(backward, {53.0, 50.0}));
}

TEST(Cal2DPoint2_1, NearChoiceIsTrackedFromThenOn) {
    Image image(3, 120);
    drawSpot(image, 0, 50);
    drawSpot(image, 1, 54);
    drawSpot(image, 1, 64);
    drawSpot(image, 2, 58);
    drawSpot(image, 2, 70);
    EXPECT_TRUE(rowsAre(image, {.mode = 4}, {50.0, 54.0, 58.0}));
}

TEST(Cal2DPoint2_1, TrackedRowOutlastsColumnsWithoutCandidates) {
    Image image(4, 120);
    drawSpot(image, 0, 50);
    drawSpot(image, 3, 52);
    drawSpot(image, 3, 62);
    EXPECT_TRUE(rowsAre(image, {.mode = 4}, {50.0, kNone, kNone, 52.0}));
}

TEST(Cal2DPoint2_1, SeveralCandidatesStayUnresolvedBeforeAnyChoice) {
    for (int mode : {0, 1, 2, 3, 4}) {
        Image image(8, 120);
        drawSpot(image, 0, 3);
        drawSpot(image, 0, 12);
        drawSpot(image, 1, 3);
        drawSpot(image, 1, 12);
        EXPECT_TRUE(rowsAre(image, {.mode = mode}, {kNone, kNone})) << "mode " << mode;
    }
}

TEST(Cal2DPoint2_1, RowBetweenZeroAndOneIsTrackedInBothDirections) {
    Image toTheRight(2, 120);
    drawRun(toTheRight, 0, 0, {200, 200});
    drawSpot(toTheRight, 1, 3);
    drawSpot(toTheRight, 1, 90);
    EXPECT_TRUE(rowsAre(toTheRight, {.mode = 4}, {0.5, 3.0}));

    Image toTheLeft(2, 120);
    drawSpot(toTheLeft, 0, 3);
    drawSpot(toTheLeft, 0, 90);
    drawRun(toTheLeft, 1, 0, {200, 200});
    EXPECT_TRUE(rowsAre(toTheLeft, {.mode = 4}, {3.0, 0.5}));
}

TEST(Cal2DPoint2_1, OnlyCandidateOnRowZeroEndsTheTracking) {
    Image image(3, 120);
    drawSpot(image, 0, 50);
    drawRun(image, 1, 0, {200});
    drawSpot(image, 2, 52);
    drawSpot(image, 2, 62);
    const Extraction result = extract(image, {.mode = 4});
    EXPECT_EQ(result.marked, std::vector<int>{0});
    EXPECT_TRUE(support::sameBits(result.points, Points2d{{0.0, 50.0}, {1.0, 0.0}, {0.0, 0.0}}));
}

// ---- SelectMode, where no candidate is near; without it column 1 would be empty. A group at the end is not pruned.

TEST(Cal2DPoint2_1, SelectMode1TakesTheFirstOfTheGreatestGreys) {
    Image image(2, 150);
    drawSpot(image, 0, 20);
    drawSpot(image, 1, 60, 100);
    drawSpot(image, 1, 80, 250);
    drawSpot(image, 1, 100, 250);
    drawSpot(image, 1, 120, 200);
    EXPECT_TRUE(rowsAre(image, {.mode = 1}, {20.0, 80.0}));
}

TEST(Cal2DPoint2_1, SelectMode2TakesTheFirstOfTheSmallestWidths) {
    Image image(8, 150);
    drawSpot(image, 0, 20);
    drawRun(image, 1, 58, flatRun(5, 200));
    drawRun(image, 1, 79, flatRun(3, 250));
    drawRun(image, 1, 99, flatRun(3, 200));
    drawRun(image, 1, 118, flatRun(4, 200));
    EXPECT_TRUE(rowsAre(image, {.mode = 2}, {20.0, 80.0}));
}

TEST(Cal2DPoint2_1, SelectMode2OnlySeesWidthsBelowTheFramesWidth) {
    for (int width : {3, 4}) {
        Image image(width, 150);
        drawSpot(image, 0, 20);
        drawRun(image, 1, 58, flatRun(5, 200));
        drawRun(image, 1, 79, flatRun(3, 200));
        EXPECT_TRUE(rowsAre(image, {.mode = 2}, {20.0, width == 3 ? 60.0 : 80.0})) << "width " << width;
    }
}

TEST(Cal2DPoint2_1, SelectMode3TakesTheFirst) {
    Image image(8, 150);
    drawSpot(image, 0, 20);
    drawRun(image, 1, 58, flatRun(5, 150));
    drawRun(image, 1, 79, flatRun(3, 250));
    drawRun(image, 1, 98, flatRun(5, 200));
    EXPECT_TRUE(rowsAre(image, {.mode = 3}, {20.0, 60.0}));
}

TEST(Cal2DPoint2_1, SelectMode4TakesTheLast) {
    Image image(8, 150);
    drawSpot(image, 0, 20);
    drawRun(image, 1, 58, flatRun(5, 150));
    drawRun(image, 1, 79, flatRun(3, 250));
    drawRun(image, 1, 98, flatRun(5, 200));
    EXPECT_TRUE(rowsAre(image, {.mode = 4}, {20.0, 100.0}));
}

TEST(Cal2DPoint2_1, OtherSelectModesTakeTheCandidateThatIsBrighterAndNarrowerAtOnce) {
    for (int mode : {0, 5, -1, INT_MIN, INT_MAX}) {
        Image image(10, 200);
        drawSpot(image, 0, 20);
        drawRun(image, 1, 57, flatRun(7, 100));
        drawRun(image, 1, 77, flatRun(8, 200));   // brighter, wider
        drawRun(image, 1, 97, flatRun(7, 200));   // brighter, as wide
        drawRun(image, 1, 118, flatRun(5, 100));  // as bright, narrower
        drawRun(image, 1, 138, flatRun(4, 90));   // darker, narrower
        drawRun(image, 1, 157, flatRun(6, 101));  // brighter and narrower: 159.5
        drawRun(image, 1, 178, flatRun(5, 100));  // narrower, darker than the last choice
        EXPECT_TRUE(rowsAre(image, {.mode = mode}, {20.0, 159.5})) << "mode " << mode;
    }
}

TEST(Cal2DPoint2_1, OtherSelectModesOnlySeeWidthsBelowTheFramesWidth) {
    Image image(5, 150);
    drawSpot(image, 0, 20);
    drawRun(image, 1, 58, flatRun(5, 200));
    drawRun(image, 1, 79, flatRun(4, 100));  // darker, yet the first that is narrow enough
    EXPECT_TRUE(rowsAre(image, {.mode = 0}, {20.0, 80.5}));

    Image noneNarrowEnough(3, 150);
    drawSpot(noneNarrowEnough, 0, 20);
    drawRun(noneNarrowEnough, 1, 58, flatRun(5, 100));
    drawRun(noneNarrowEnough, 1, 79, flatRun(3, 200));
    EXPECT_TRUE(rowsAre(noneNarrowEnough, {.mode = 0}, {20.0, 60.0}));
}

TEST(Cal2DPoint2_1, ChoiceBySelectModeIsTrackedFromThenOn) {
    Image image(8, 150);
    drawSpot(image, 0, 50);
    drawSpot(image, 1, 60);
    drawSpot(image, 1, 70);
    drawSpot(image, 2, 53);
    drawSpot(image, 2, 63);
    for (int mode : {0, 1, 2, 3}) EXPECT_TRUE(rowsAre(image, {.mode = mode}, {50.0, 60.0, 63.0})) << "mode " << mode;
}

// ---- Choice from right to left

// Without the backward walk column 0 would be empty.
TEST(Cal2DPoint2_1, TwoCandidatesInColumn0AreResolvedFromColumn1) {
    Image image(2, 120);
    drawSpot(image, 0, 38);
    drawSpot(image, 0, 48);
    drawSpot(image, 1, 50);
    EXPECT_TRUE(rowsAre(image, {48.0, 50.0}));
}

TEST(Cal2DPoint2_1, BackwardWalkJudgesNearAsTheForwardWalk) {
    Image at5(2, 120);
    drawSpot(at5, 0, 55);
    drawSpot(at5, 0, 65);
    drawSpot(at5, 1, 50);
    EXPECT_TRUE(rowsAre(at5, {.mode = 4}, {55.0, 50.0}));

    Image at6(2, 120);
    drawSpot(at6, 0, 56);
    drawSpot(at6, 0, 65);
    drawSpot(at6, 1, 50);
    EXPECT_TRUE(rowsAre(at6, {.mode = 4}, {65.0, 50.0}));

    Image tie(2, 120);
    drawSpot(tie, 0, 47);
    drawSpot(tie, 0, 53);
    drawSpot(tie, 1, 50);
    EXPECT_TRUE(rowsAre(tie, {.mode = 4}, {47.0, 50.0}));
}

TEST(Cal2DPoint2_1, BackwardWalkUsesTheSameSelectModes) {
    Image image(10, 150);
    drawRun(image, 0, 17, flatRun(7, 100));   // 20
    drawRun(image, 0, 77, flatRun(7, 250));   // 80, the brightest
    drawRun(image, 0, 98, flatRun(5, 99));    // 100, the narrowest
    drawRun(image, 0, 107, flatRun(6, 110));  // 109.5, brighter and narrower than the first
    drawRun(image, 0, 117, flatRun(7, 180));  // 120
    drawSpot(image, 1, 50);
    EXPECT_TRUE(rowsAre(image, {.mode = 1}, {80.0, 50.0}));
    EXPECT_TRUE(rowsAre(image, {.mode = 2}, {100.0, 50.0}));
    EXPECT_TRUE(rowsAre(image, {.mode = 3}, {20.0, 50.0}));
    EXPECT_TRUE(rowsAre(image, {.mode = 4}, {120.0, 50.0}));
    EXPECT_TRUE(rowsAre(image, {.mode = 0}, {109.5, 50.0}));
}

TEST(Cal2DPoint2_1, RowOfTheRightIsTrackedAcrossEmptyColumns) {
    Image image(4, 120);
    drawSpot(image, 0, 38);
    drawSpot(image, 0, 48);
    drawSpot(image, 3, 50);
    EXPECT_TRUE(rowsAre(image, {48.0, kNone, kNone, 50.0}));
}

TEST(Cal2DPoint2_1, BackwardChoiceIsTrackedFurtherLeft) {
    Image image(3, 120);
    drawSpot(image, 0, 47);
    drawSpot(image, 0, 58);
    drawSpot(image, 1, 44);
    drawSpot(image, 1, 54);
    drawSpot(image, 2, 50);
    EXPECT_TRUE(rowsAre(image, {.mode = 3}, {58.0, 54.0, 50.0}));
}

TEST(Cal2DPoint2_1, EmptyColumnIsFilledAlsoFromARowBelow5) {
    Image image(2, 120);
    drawSpot(image, 0, 6);
    drawSpot(image, 0, 16);
    drawSpot(image, 1, 4);
    EXPECT_TRUE(rowsAre(image, {.mode = 4}, {6.0, 4.0}));
}

TEST(Cal2DPoint2_1, ColumnThatHoldsAPointIsNeverRevised) {
    Image image(3, 120);
    drawSpot(image, 0, 40);
    drawSpot(image, 1, 42);
    drawSpot(image, 1, 54);
    drawSpot(image, 2, 56);
    EXPECT_TRUE(rowsAre(image, {.mode = 4}, {40.0, 42.0, 56.0}));
}

TEST(Cal2DPoint2_1, BackwardWalkLeavesAnOnlyCandidateOnRowZero) {
    Image image(3, 120);
    drawSpot(image, 0, 38);
    drawSpot(image, 0, 48);
    drawRun(image, 1, 0, {200});
    drawSpot(image, 2, 50);
    const Extraction result = extract(image);
    EXPECT_EQ(result.marked, (std::vector<int>{0, 2}));
    EXPECT_TRUE(support::sameBits(result.points, Points2d{{0.0, 48.0}, {1.0, 0.0}, {2.0, 50.0}}));
}

TEST(Cal2DPoint2_1, BackwardWalkUsesThePrunedCandidates) {
    // Column 0 has the mean 50 and, as the first column, no point yet: nothing is tracked when column 1 is reached.
    Image image(3, 120);
    drawSpot(image, 0, 44);
    drawSpot(image, 0, 56);
    drawSpot(image, 1, 43);
    drawSpot(image, 1, 57);
    drawSpot(image, 1, 73);  // pruned
    drawSpot(image, 2, 50);
    EXPECT_TRUE(rowsAre(image, {.mode = 4}, {56.0, 57.0, 50.0}));
}

}  // namespace
