// Cal2DPoint1_1: bright runs above 60 grey levels and their humps, the bounds of the line selection, and the choice
// from left to right and back.

#include <gtest/gtest.h>

#include <climits>
#include <vector>

#include "KorvaneLaserAlgo.h"
#include "extract/Frames.h"
#include "support/Support.h"

namespace {

using frames::centroid;
using frames::drawRun;
using frames::drawSpot;
using frames::flatRun;
using frames::kNone;
using frames::Select;
using support::Image;
using support::KorvaneLaserAlgo;
using support::Mask;
using support::Points2d;
using support::setRoi;

testing::AssertionResult rowsAre(Image& image, const Select& select, const std::vector<double>& rows) {
    return frames::givesRows(frames::extract(&KorvaneLaserAlgo::Cal2DPoint1_1, image, select), rows);
}

testing::AssertionResult rowsAre(Image& image, const std::vector<double>& rows) {
    return rowsAre(image, Select{}, rows);
}

/// A column of 40 rows with one run, which begins at row 10.
Image columnWith(const std::vector<int>& run) {
    Image image(1, 40);
    drawRun(image, 0, 10, run);
    return image;
}

/// A column of 40 rows with two runs: one of two pixels, which is ignored there, and this one from row 10 on.
Image columnOfTwoRunsWith(const std::vector<int>& run) {
    Image image = columnWith(run);
    drawRun(image, 0, 2, {200, 200});
    return image;
}

// ---- Outputs

TEST(Cal2DPoint1_1, FrameIsReadOnly) {
    Image image(4, 60);
    image.drawLine(10, {70, 200, 70});
    image.drawLine(30, {50, 200, 200});
    const std::vector<unsigned char> before = image.pixels();
    EXPECT_TRUE(rowsAre(image, {11.0, 11.0, 11.0, 11.0}));
    EXPECT_EQ(image.pixels(), before);
}

// ---- Runs

TEST(Cal2DPoint1_1, RunTakesPixelsAbove60Only) {
    Image image = columnWith({60, 61, 61});
    EXPECT_TRUE(rowsAre(image, {11.5}));
    Image dark = columnWith({60, 60, 60});
    EXPECT_TRUE(rowsAre(dark, {kNone}));
}

TEST(Cal2DPoint1_1, PixelOf60SplitsARun) {
    Image image(2, 40);
    drawSpot(image, 0, 11);
    drawRun(image, 1, 10, {100, 100, 100, 60, 100, 100, 100});
    EXPECT_TRUE(rowsAre(image, {11.0, 11.0}));
}

TEST(Cal2DPoint1_1, RunMayBeginInTheFirstRowAndEndInTheLast) {
    Image image(1, 4, 100);
    EXPECT_TRUE(rowsAre(image, {1.5}));
}

// ---- Whole-run candidates of a column with a single run

TEST(Cal2DPoint1_1, WholeRunCentreIsTheGreyWeightedMeanRow) {
    Image image = columnWith({100, 200, 150});
    EXPECT_TRUE(rowsAre(image, {(100.0 * 10 + 200.0 * 11 + 150.0 * 12) / 450.0}));
}

TEST(Cal2DPoint1_1, WholeRunGreyIsThePixelAtTheTruncatedCentre) {
    const double centre = (100.0 * 10 + 200.0 * 11) / 300.0;
    ASSERT_GT(centre, 10.5);
    ASSERT_LT(centre, 11.0);
    Image image = columnWith({100, 200});
    EXPECT_TRUE(rowsAre(image, {.grayMin = 100, .grayMax = 100}, {centre}));
    EXPECT_TRUE(rowsAre(image, {.grayMin = 101}, {kNone}));
    EXPECT_TRUE(rowsAre(image, {.grayMax = 99}, {kNone}));
}

TEST(Cal2DPoint1_1, WholeRunWidthIsItsNumberOfPixels) {
    Image image = columnWith({100, 100, 100});
    EXPECT_TRUE(rowsAre(image, {.widthMin = 3}, {11.0}));
    EXPECT_TRUE(rowsAre(image, {.widthMin = 4}, {kNone}));
}

TEST(Cal2DPoint1_1, SingleRunOfOneOrTwoPixelsIsACandidate) {
    Image one = columnWith({61});
    EXPECT_TRUE(rowsAre(one, {10.0}));
    Image two = columnWith({61, 61});
    EXPECT_TRUE(rowsAre(two, {10.5}));
}

TEST(Cal2DPoint1_1, GrayMinAboveGrayMaxRejectsEveryCandidate) {
    Image whole = columnWith({100, 100, 100});
    EXPECT_TRUE(rowsAre(whole, {.grayMin = 101, .grayMax = 99}, {kNone}));
    Image humps = columnWith({70, 200, 70});
    EXPECT_TRUE(rowsAre(humps, {.grayMin = 201, .grayMax = 199, .widthMax = 3}, {kNone}));
}

TEST(Cal2DPoint1_1, NegativeWidthMinAcceptsEverySingleRun) {
    Image image = columnWith({100, 100, 100});
    EXPECT_TRUE(rowsAre(image, {.widthMin = -1}, {11.0}));
    EXPECT_TRUE(rowsAre(image, {.widthMin = INT_MIN}, {11.0}));
}

TEST(Cal2DPoint1_1, NegativeWidthMaxRejectsEverySingleRun) {
    for (int widthMax : {-1, INT_MIN}) {
        Image flat = columnWith({100, 100, 100});
        EXPECT_TRUE(rowsAre(flat, {.widthMax = widthMax}, {kNone}));
        Image hump = columnWith({70, 200, 70});
        EXPECT_TRUE(rowsAre(hump, {.widthMax = widthMax}, {kNone}));
    }
}

// ---- Humps of a single long run

TEST(Cal2DPoint1_1, SingleRunShorterThanWidthMaxIsOneCandidateEvenWithTwoHumps) {
    const std::vector<int> twoHumps{70, 200, 70, 250, 70};
    Image image = columnWith(twoHumps);
    EXPECT_TRUE(rowsAre(image, {.widthMax = 6}, {centroid(10, twoHumps)}));
}

TEST(Cal2DPoint1_1, SingleRunOfExactlyWidthMaxGoesToPeakAnalysis) {
    const std::vector<int> run{70, 80, 75, 200, 90};  // the feet of the hump at 200 are 75 and 90
    Image image = columnWith(run);
    EXPECT_TRUE(rowsAre(image, {.widthMax = 6}, {centroid(10, run)}));
    EXPECT_TRUE(rowsAre(image, {.widthMax = 5}, {centroid(12, {75, 200, 90})}));
    EXPECT_TRUE(rowsAre(image, {.widthMax = 4}, {centroid(12, {75, 200, 90})}));
}

TEST(Cal2DPoint1_1, LongSingleRunGivesACandidateForEveryHump) {
    Image image(2, 40);
    drawSpot(image, 0, 14);
    drawRun(image, 1, 10, {70, 200, 80, 250, 70});
    EXPECT_TRUE(rowsAre(image, {.widthMax = 5}, {14.0, centroid(12, {80, 250, 70})}));
}

TEST(Cal2DPoint1_1, FaintestHumpOfAVeryLongRunIsFound) {
    // A run is of 61 and more, so a hump that falls by 50 is of 111 and more. Its right foot is the end of the run.
    std::vector<int> run = flatRun(100, 61);
    run[50] = 111;
    Image image(1, 110);
    drawRun(image, 0, 5, run);
    EXPECT_TRUE(rowsAre(image, {.widthMax = 100}, {centroid(5 + 49, {run.begin() + 49, run.end()})}));
}

TEST(Cal2DPoint1_1, LongSingleRunWithoutAHumpGivesNoCandidate) {
    Image flat = columnWith({100, 100, 100});
    EXPECT_TRUE(rowsAre(flat, {.widthMax = 4}, {11.0}));
    EXPECT_TRUE(rowsAre(flat, {.widthMax = 3}, {kNone}));
}

TEST(Cal2DPoint1_1, HumpGreyIsItsPeakValue) {
    Image image = columnWith({70, 200, 70});
    EXPECT_TRUE(rowsAre(image, {.grayMin = 200, .grayMax = 200, .widthMax = 3}, {11.0}));
    EXPECT_TRUE(rowsAre(image, {.grayMin = 201, .widthMax = 3}, {kNone}));
    EXPECT_TRUE(rowsAre(image, {.grayMax = 199, .widthMax = 3}, {kNone}));
}

TEST(Cal2DPoint1_1, HumpWidthIsTheDifferenceOfItsFeet) {
    Image image = columnWith({90, 150, 220, 150, 90});
    EXPECT_TRUE(rowsAre(image, {.widthMin = 4, .widthMax = 4}, {12.0}));
    EXPECT_TRUE(rowsAre(image, {.widthMin = 5, .widthMax = 5}, {kNone}));
    EXPECT_TRUE(rowsAre(image, {.widthMax = 3}, {kNone}));
}

// ---- Columns of several runs

TEST(Cal2DPoint1_1, RunsOfOneOrTwoPixelsAreIgnoredBesideOthers) {
    Image image(1, 40);
    drawRun(image, 0, 2, {200});
    drawRun(image, 0, 5, {200, 200});
    EXPECT_TRUE(rowsAre(image, {kNone}));
    drawRun(image, 0, 10, {100, 100, 100});
    EXPECT_TRUE(rowsAre(image, {11.0}));
}

TEST(Cal2DPoint1_1, AmongSeveralRunsOneWithoutAHumpIsAWholeRunCandidate) {
    const std::vector<int> rising{100, 150, 250};
    Image image = columnOfTwoRunsWith(rising);
    EXPECT_TRUE(rowsAre(image, {.grayMin = 150, .grayMax = 150, .widthMin = 3, .widthMax = 3}, {centroid(10, rising)}));
    EXPECT_TRUE(rowsAre(image, {.grayMin = 151}, {kNone}));
    EXPECT_TRUE(rowsAre(image, {.grayMax = 149}, {kNone}));
    EXPECT_TRUE(rowsAre(image, {.widthMin = 4}, {kNone}));
    EXPECT_TRUE(rowsAre(image, {.widthMax = 2}, {kNone}));
}

TEST(Cal2DPoint1_1, AmongSeveralRunsEveryRunIsSearchedForHumpsWhateverWidthMax) {
    Image image = columnOfTwoRunsWith({70, 80, 75, 200, 90});
    EXPECT_TRUE(rowsAre(image, {.widthMax = 100}, {centroid(12, {75, 200, 90})}));
}

TEST(Cal2DPoint1_1, HumpsOfEveryRunHaveTheirOwnFeet) {
    Image image(2, 40);
    drawRun(image, 0, 2, {100, 70, 200, 70});                // feet 1 and 3
    drawRun(image, 0, 10, {70, 90, 120, 200, 120, 90, 70});  // feet 0 and 6: row 13
    drawSpot(image, 1, 13);                                  // leads to the second
    EXPECT_TRUE(rowsAre(image, {13.0, 13.0}));
}

TEST(Cal2DPoint1_1, HumpMustFallBy50GreyLevelsOnOneSide) {
    // The hump would be 2 wide, the whole run is 3 wide.
    Image fallsBy50 = columnOfTwoRunsWith({151, 200, 150});
    EXPECT_TRUE(rowsAre(fallsBy50, {.widthMin = 3}, {kNone}));
    Image fallsBy49 = columnOfTwoRunsWith({151, 200, 151});
    EXPECT_TRUE(rowsAre(fallsBy49, {.widthMin = 3}, {11.0}));
}

TEST(Cal2DPoint1_1, RejectedHumpDoesNotFallBackToTheWholeRun) {
    Image image = columnOfTwoRunsWith({70, 200, 70});
    EXPECT_TRUE(rowsAre(image, {.widthMin = 2}, {11.0}));
    EXPECT_TRUE(rowsAre(image, {.widthMin = 3}, {kNone}));
}

TEST(Cal2DPoint1_1, CandidatesAreListedFromTopToBottom) {
    Image image(2, 200);
    drawSpot(image, 0, 100);
    drawRun(image, 1, 10, {70, 200, 80, 250, 70});  // two humps
    drawSpot(image, 1, 150);
    EXPECT_TRUE(rowsAre(image, {.mode = 3}, {100.0, centroid(10, {70, 200, 80})}));
    EXPECT_TRUE(rowsAre(image, {.mode = 4}, {100.0, 150.0}));

    Image humpsLast(2, 200);
    drawSpot(humpsLast, 0, 100);
    drawSpot(humpsLast, 1, 20);
    drawRun(humpsLast, 1, 150, {70, 200, 80, 250, 70});
    EXPECT_TRUE(rowsAre(humpsLast, {.mode = 4}, {100.0, centroid(152, {80, 250, 70})}));
}

TEST(Cal2DPoint1_1, NegativeWidthMinRejectsWholeRunsAmongSeveral) {
    for (int widthMin : {-1, INT_MIN}) {
        Image image = columnOfTwoRunsWith({100, 100, 100});
        EXPECT_TRUE(rowsAre(image, {.widthMin = widthMin}, {kNone}));
    }
}

TEST(Cal2DPoint1_1, NegativeWidthMaxAcceptsWholeRunsAmongSeveral) {
    for (int widthMax : {-1, INT_MIN}) {
        Image image = columnOfTwoRunsWith({100, 100, 100});
        EXPECT_TRUE(rowsAre(image, {.widthMax = widthMax}, {11.0}));
        EXPECT_TRUE(rowsAre(image, {.widthMin = 4, .widthMax = widthMax}, {kNone}));
    }
}

TEST(Cal2DPoint1_1, HumpWidthIsComparedWithNegativeBoundsAsSigned) {
    for (int negative : {-1, INT_MIN}) {
        Image image = columnOfTwoRunsWith({70, 200, 70});
        EXPECT_TRUE(rowsAre(image, {.widthMin = negative}, {11.0}));
        EXPECT_TRUE(rowsAre(image, {.widthMax = negative}, {kNone}));
    }
}

// ---- Bounds that nothing passes

TEST(Cal2DPoint1_1, WidthMinAboveEveryWidthFindsNothingAnywhere) {
    Image image(4, 40);
    drawRun(image, 0, 10, flatRun(7, 100));
    drawRun(image, 1, 10, {70, 200, 70});
    drawSpot(image, 2, 10);
    drawSpot(image, 2, 20);
    KorvaneLaserAlgo algo;
    setRoi(algo, 4, 40, 5, 6);
    support::setLineSelect(algo, 0, 255, 8, 100, 3);
    Mask mask(4);
    Points2d points;
    algo.Cal2DPoint1_1(mask.data(), image.data(), points);
    EXPECT_TRUE(support::sameBits(points, Points2d(4, {5.0, 6.0})));
    EXPECT_EQ(mask.marked(), std::vector<int>{});
}

TEST(Cal2DPoint1_1, ZeroedLineSelectionOfANewObjectFindsNothing) {
    Image image(3, 40);
    drawSpot(image, 0, 10);
    drawRun(image, 1, 10, {70, 200, 70});
    drawSpot(image, 2, 10);
    drawSpot(image, 2, 20);
    KorvaneLaserAlgo algo;
    setRoi(algo, 3, 40, 5, 6);
    Mask mask(3);
    Points2d points;
    algo.Cal2DPoint1_1(mask.data(), image.data(), points);
    EXPECT_TRUE(support::sameBits(points, Points2d(3, {5.0, 6.0})));
    EXPECT_EQ(mask.marked(), std::vector<int>{});
}

// ---- Choice from left to right

TEST(Cal2DPoint1_1, OnlyCandidateIsTakenHoweverFar) {
    Image image(2, 120);
    drawSpot(image, 0, 20);
    drawSpot(image, 1, 100);
    EXPECT_TRUE(rowsAre(image, {20.0, 100.0}));
}

TEST(Cal2DPoint1_1, OnlyCandidateIsFollowedFromThenOn) {
    Image image(3, 120);
    drawSpot(image, 0, 20);
    drawSpot(image, 1, 100);
    drawSpot(image, 2, 22);
    drawSpot(image, 2, 102);
    EXPECT_TRUE(rowsAre(image, {20.0, 100.0, 102.0}));
}

TEST(Cal2DPoint1_1, CandidateNearThePreviousColumnIsTakenWhateverSelectModeSays) {
    for (int mode : {-1, 0, 1, 2, 3, 4, 5}) {
        Image image(2, 220);
        drawSpot(image, 0, 103);
        drawSpot(image, 1, 100, 150);
        drawSpot(image, 1, 200, 250);
        EXPECT_TRUE(rowsAre(image, {.mode = mode}, {103.0, 100.0})) << "mode " << mode;
    }
}

TEST(Cal2DPoint1_1, NearestOfSeveralNearCandidatesIsTaken) {
    Image image(2, 120);
    drawSpot(image, 0, 50);
    drawSpot(image, 1, 46);
    drawSpot(image, 1, 53);
    EXPECT_TRUE(rowsAre(image, {50.0, 53.0}));
}

TEST(Cal2DPoint1_1, FirstOfEquallyNearCandidatesIsTaken) {
    Image image(2, 120);
    drawSpot(image, 0, 50);
    drawSpot(image, 1, 47);
    drawSpot(image, 1, 53);
    EXPECT_TRUE(rowsAre(image, {.mode = 4}, {50.0, 47.0}));
}

TEST(Cal2DPoint1_1, CandidateExactly5RowsAwayIsNear) {
    Image image(2, 120);
    drawSpot(image, 0, 50);
    drawSpot(image, 1, 55);
    drawSpot(image, 1, 90);
    EXPECT_TRUE(rowsAre(image, {.mode = 4}, {50.0, 55.0}));
}

TEST(Cal2DPoint1_1, CandidateJustBeyond5RowsIsNotNear) {
    Image image(2, 120);
    drawSpot(image, 0, 50);
    drawRun(image, 1, 54, {200, 200, 201});
    drawSpot(image, 1, 90);
    ASSERT_GT(static_cast<float>(centroid(54, {200, 200, 201}) - 50.0), 5.0F);
    EXPECT_TRUE(rowsAre(image, {.mode = 4}, {50.0, 90.0}));
}

TEST(Cal2DPoint1_1, DistanceIsRoundedToSinglePrecisionBeforeItIsJudgedNear) {
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
    drawSpot(image, 1, 90);
    EXPECT_TRUE(rowsAre(image, {.mode = 4}, {centroid(23, seed), centroid(28, candidate)}));
}

TEST(Cal2DPoint1_1, DistancesThatAreEqualInSinglePrecisionGoToTheFirst) {
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

TEST(Cal2DPoint1_1, NearChoiceIsFollowedFromThenOn) {
    Image image(3, 120);
    drawSpot(image, 0, 50);
    drawSpot(image, 1, 54);
    drawSpot(image, 1, 90);
    drawSpot(image, 2, 58);
    drawSpot(image, 2, 90);
    EXPECT_TRUE(rowsAre(image, {.mode = 4}, {50.0, 54.0, 58.0}));
}

TEST(Cal2DPoint1_1, FollowedRowOutlastsColumnsWithoutCandidates) {
    Image image(4, 120);
    drawSpot(image, 0, 50);
    drawSpot(image, 3, 52);
    drawSpot(image, 3, 90);
    EXPECT_TRUE(rowsAre(image, {.mode = 4}, {50.0, kNone, kNone, 52.0}));
}

TEST(Cal2DPoint1_1, SeveralCandidatesStayUnresolvedBeforeAnyChoice) {
    for (int mode : {0, 1, 2, 3, 4}) {
        Image image(2, 120);
        drawSpot(image, 0, 50);
        drawSpot(image, 0, 90);
        drawSpot(image, 1, 50);
        drawSpot(image, 1, 90);
        EXPECT_TRUE(rowsAre(image, {.mode = mode}, {kNone, kNone})) << "mode " << mode;
    }
}

TEST(Cal2DPoint1_1, RowBetweenZeroAndOneIsFollowedInBothDirections) {
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

TEST(Cal2DPoint1_1, OnlyCandidateOnRowZeroEndsTheFollowing) {
    Image image(3, 120);
    drawSpot(image, 0, 50);
    drawRun(image, 1, 0, {200});
    drawSpot(image, 2, 52);
    drawSpot(image, 2, 90);
    const extraction::Extraction result = frames::extract(&KorvaneLaserAlgo::Cal2DPoint1_1, image, Select{.mode = 4});
    EXPECT_EQ(result.marked, std::vector<int>{0});
    EXPECT_TRUE(support::sameBits(result.points, Points2d{{0.0, 50.0}, {1.0, 0.0}, {0.0, 0.0}}));
}

// ---- SelectMode, where no candidate is near

TEST(Cal2DPoint1_1, SelectMode1TakesTheFirstOfTheGreatestGreys) {
    Image image(2, 150);
    drawSpot(image, 0, 20);
    drawSpot(image, 1, 60, 100);
    drawSpot(image, 1, 80, 250);
    drawSpot(image, 1, 100, 250);
    drawSpot(image, 1, 120, 200);
    EXPECT_TRUE(rowsAre(image, {.mode = 1}, {20.0, 80.0}));
}

TEST(Cal2DPoint1_1, SelectMode1TakesEvenTheFaintestCandidates) {
    Image image(2, 150);
    drawSpot(image, 0, 20);
    drawRun(image, 1, 60, {61, 61, 61});
    drawRun(image, 1, 80, {62, 62, 62});
    EXPECT_TRUE(rowsAre(image, {.mode = 1}, {20.0, 81.0}));
}

TEST(Cal2DPoint1_1, SelectMode2StartsWithALimitOfTheFramesWidth) {
    Image image(100, 130);
    drawSpot(image, 0, 20);
    drawSpot(image, 1, 60, 100);  // not below 100
    drawSpot(image, 1, 80, 99);
    EXPECT_TRUE(rowsAre(image, {.mode = 2}, {20.0, 80.0}));
}

TEST(Cal2DPoint1_1, SelectMode2TakesTheWidthOfEachChoiceAsTheNextLimit) {
    Image narrow(100, 130);
    drawSpot(narrow, 0, 20);
    drawSpot(narrow, 1, 60, 95);
    drawSpot(narrow, 1, 80, 90);  // below 95, yet not below the width 3
    EXPECT_TRUE(rowsAre(narrow, {.mode = 2}, {20.0, 60.0}));

    Image wide(100, 180);
    drawSpot(wide, 0, 20);
    drawRun(wide, 1, 50, flatRun(70, 65));
    drawRun(wide, 1, 140, {69, 69, 69});  // not below the grey 65, yet below the width 70
    EXPECT_TRUE(rowsAre(wide, {.mode = 2}, {20.0, 141.0}));

    Image atTheLimit(100, 180);
    drawSpot(atTheLimit, 0, 20);
    drawRun(atTheLimit, 1, 50, flatRun(70, 65));
    drawRun(atTheLimit, 1, 140, {70, 70, 70});
    EXPECT_TRUE(rowsAre(atTheLimit, {.mode = 2}, {20.0, 84.5}));
}

TEST(Cal2DPoint1_1, SelectMode2WithoutAGreyBelowTheLimitLeavesPointAndFollowedRow) {
    Image image(3, 150);
    drawSpot(image, 0, 50);
    drawSpot(image, 1, 80);
    drawSpot(image, 1, 110);
    drawSpot(image, 2, 53);
    drawSpot(image, 2, 110);
    EXPECT_TRUE(rowsAre(image, {.mode = 2}, {50.0, kNone, 53.0}));
}

TEST(Cal2DPoint1_1, SelectMode3TakesTheFirst) {
    Image image(2, 150);
    drawSpot(image, 0, 20);
    drawSpot(image, 1, 60, 150);
    drawSpot(image, 1, 80, 250);
    drawSpot(image, 1, 100, 200);
    EXPECT_TRUE(rowsAre(image, {.mode = 3}, {20.0, 60.0}));
}

TEST(Cal2DPoint1_1, SelectMode4TakesTheLast) {
    Image image(2, 150);
    drawSpot(image, 0, 20);
    drawSpot(image, 1, 60, 150);
    drawSpot(image, 1, 80, 250);
    drawSpot(image, 1, 100, 200);
    EXPECT_TRUE(rowsAre(image, {.mode = 4}, {20.0, 100.0}));
}

TEST(Cal2DPoint1_1, ChoiceBySelectModeIsFollowedFromThenOn) {
    Image image(3, 150);
    drawSpot(image, 0, 50);
    drawSpot(image, 1, 80);
    drawSpot(image, 1, 110);
    drawSpot(image, 2, 53);
    drawSpot(image, 2, 83);
    EXPECT_TRUE(rowsAre(image, {.mode = 3}, {50.0, 80.0, 83.0}));
}

TEST(Cal2DPoint1_1, SelectMode0LeavesAColumnOfFarCandidatesEmptyAndForgetsTheRow) {
    for (int mode : {0, 5, -1, INT_MIN, INT_MAX}) {
        Image image(3, 150);
        drawSpot(image, 0, 50);
        drawSpot(image, 1, 80);
        drawSpot(image, 1, 110);
        drawSpot(image, 2, 52);  // near row 50, which is forgotten
        drawSpot(image, 2, 110);
        EXPECT_TRUE(rowsAre(image, {.mode = mode}, {50.0, kNone, kNone})) << "mode " << mode;
    }
}

TEST(Cal2DPoint1_1, SelectMode0ResumesAtTheNextOnlyCandidate) {
    Image image(4, 150);
    drawSpot(image, 0, 50);
    drawSpot(image, 1, 80);
    drawSpot(image, 1, 110);
    drawSpot(image, 2, 100);
    drawSpot(image, 3, 52);
    drawSpot(image, 3, 103);
    EXPECT_TRUE(rowsAre(image, {.mode = 0}, {50.0, kNone, 100.0, 103.0}));
}

// ---- Correction from right to left

TEST(Cal2DPoint1_1, TwoCandidatesInColumn0AreResolvedFromColumn1) {
    Image image(2, 120);
    drawSpot(image, 0, 48);
    drawSpot(image, 0, 90);
    drawSpot(image, 1, 50);
    EXPECT_TRUE(rowsAre(image, {.mode = 4}, {48.0, 50.0}));
}

TEST(Cal2DPoint1_1, RowOfTheRightIsFollowedAcrossEmptyColumns) {
    Image image(4, 120);
    drawSpot(image, 0, 48);
    drawSpot(image, 0, 90);
    drawSpot(image, 3, 50);
    EXPECT_TRUE(rowsAre(image, {.mode = 4}, {48.0, kNone, kNone, 50.0}));
}

TEST(Cal2DPoint1_1, CorrectedRowIsFollowedFurtherLeft) {
    Image image(3, 120);
    drawSpot(image, 0, 58);
    drawSpot(image, 0, 90);
    drawSpot(image, 1, 54);
    drawSpot(image, 1, 90);
    drawSpot(image, 2, 50);
    EXPECT_TRUE(rowsAre(image, {.mode = 4}, {58.0, 54.0, 50.0}));
}

TEST(Cal2DPoint1_1, ChoiceMoreThan5RowsFromTheRightNeighbourIsRevised) {
    Image image(3, 120);
    drawSpot(image, 0, 20);
    drawSpot(image, 1, 22);
    drawSpot(image, 1, 48);
    drawSpot(image, 2, 50);
    EXPECT_TRUE(rowsAre(image, {20.0, 48.0, 50.0}));
}

TEST(Cal2DPoint1_1, ChoiceExactly5RowsFromTheRightNeighbourStays) {
    Image image(3, 120);
    drawSpot(image, 0, 30);
    drawSpot(image, 1, 30);
    drawSpot(image, 1, 37);
    drawSpot(image, 2, 35);
    EXPECT_TRUE(rowsAre(image, {30.0, 30.0, 35.0}));

    Image oneMore(3, 120);
    drawSpot(oneMore, 0, 30);
    drawSpot(oneMore, 1, 30);
    drawSpot(oneMore, 1, 37);
    drawSpot(oneMore, 2, 36);
    EXPECT_TRUE(rowsAre(oneMore, {30.0, 37.0, 36.0}));
}

TEST(Cal2DPoint1_1, WhetherAChoiceIsRevisedIsDecidedInDoublePrecision) {
    std::vector<int> chosen = flatRun(15, 200);  // centre 30 - 1/3000
    ++chosen[6];
    --chosen[7];
    std::vector<int> right = flatRun(15, 200);  // centre 35 - 1/3001
    ++right[6];
    const double difference = centroid(28, right) - centroid(23, chosen);
    ASSERT_GT(difference, 5.0);
    ASSERT_EQ(static_cast<float>(difference), 5.0F);

    Image image(3, 120);
    drawSpot(image, 0, 30);
    drawRun(image, 1, 23, chosen);
    drawRun(image, 1, 39, {200, 100, 61});  // nearer to the right neighbour
    drawRun(image, 2, 28, right);
    EXPECT_TRUE(rowsAre(image, {30.0, centroid(39, {200, 100, 61}), centroid(28, right)}));
}

TEST(Cal2DPoint1_1, ColumnWithOneCandidateIsNeverCorrected) {
    Image image(3, 120);
    drawSpot(image, 0, 20);
    drawSpot(image, 1, 100);
    drawSpot(image, 2, 50);
    EXPECT_TRUE(rowsAre(image, {.mode = 0}, {20.0, 100.0, 50.0}));
}

TEST(Cal2DPoint1_1, EmptyColumnIsFilledAlsoFromARowBelow5) {
    Image image(2, 120);
    drawSpot(image, 0, 6);
    drawSpot(image, 0, 90);
    drawSpot(image, 1, 4);
    EXPECT_TRUE(rowsAre(image, {.mode = 4}, {6.0, 4.0}));
}

TEST(Cal2DPoint1_1, OnlyCandidateOnRowZeroDoesNotEndTheCorrection) {
    Image image(3, 120);
    drawSpot(image, 0, 48);
    drawSpot(image, 0, 90);
    drawRun(image, 1, 0, {200});
    drawSpot(image, 2, 50);
    const extraction::Extraction result = frames::extract(&KorvaneLaserAlgo::Cal2DPoint1_1, image, Select{.mode = 0});
    EXPECT_EQ(result.marked, (std::vector<int>{0, 2}));
    EXPECT_TRUE(support::sameBits(result.points, Points2d{{0.0, 48.0}, {1.0, 0.0}, {2.0, 50.0}}));
}

TEST(Cal2DPoint1_1, LastColumnIsNeverCorrected) {
    Image image(2, 150);
    drawSpot(image, 0, 50);
    drawSpot(image, 1, 80);
    drawSpot(image, 1, 110);
    EXPECT_TRUE(rowsAre(image, {.mode = 3}, {50.0, 80.0}));
}

TEST(Cal2DPoint1_1, CorrectionUsesTheSameSelectModes) {
    Image image(100, 150);
    drawSpot(image, 0, 20, 101);
    drawSpot(image, 0, 80, 220);
    drawSpot(image, 0, 100, 99);
    drawSpot(image, 0, 120, 180);
    drawSpot(image, 1, 50);
    EXPECT_TRUE(rowsAre(image, {.mode = 1}, {80.0, 50.0}));
    EXPECT_TRUE(rowsAre(image, {.mode = 2}, {100.0, 50.0}));  // the only grey below 100, the width of the frame
    EXPECT_TRUE(rowsAre(image, {.mode = 3}, {20.0, 50.0}));
    EXPECT_TRUE(rowsAre(image, {.mode = 4}, {120.0, 50.0}));
    EXPECT_TRUE(rowsAre(image, {.mode = 0}, {kNone, 50.0}));
}

TEST(Cal2DPoint1_1, CorrectionWithSelectMode2WithoutAChoiceKeepsTheFollowedRow) {
    Image image(3, 150);
    drawSpot(image, 0, 53);
    drawSpot(image, 0, 110);
    drawSpot(image, 1, 80);
    drawSpot(image, 1, 110);
    drawSpot(image, 2, 50);
    EXPECT_TRUE(rowsAre(image, {.mode = 2}, {53.0, kNone, 50.0}));
}

TEST(Cal2DPoint1_1, CorrectionWithSelectMode0ForgetsTheRow) {
    Image image(3, 150);
    drawSpot(image, 0, 53);  // near row 50, which is forgotten
    drawSpot(image, 0, 110);
    drawSpot(image, 1, 80);
    drawSpot(image, 1, 110);
    drawSpot(image, 2, 50);
    EXPECT_TRUE(rowsAre(image, {.mode = 0}, {kNone, kNone, 50.0}));
}

TEST(Cal2DPoint1_1, CorrectionWithSelectMode0LeavesTheEarlierChoice) {
    Image image(3, 150);
    drawSpot(image, 0, 70);
    drawSpot(image, 1, 20);
    drawSpot(image, 1, 72);
    drawSpot(image, 2, 120);
    EXPECT_TRUE(rowsAre(image, {.mode = 0}, {70.0, 72.0, 120.0}));
}

}  // namespace
