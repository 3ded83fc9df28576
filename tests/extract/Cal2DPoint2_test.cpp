// Cal2DPoint2: bright runs above half of each column's maximum, their humps, and the stripe followed to the right and
// back.

#include <gtest/gtest.h>

#include <numeric>
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

testing::AssertionResult rowsAre(Image& image, const std::vector<double>& rows) {
    return frames::givesRows(frames::extract(&KorvaneLaserAlgo::Cal2DPoint2, image, Select{}), rows);
}

/// A column of 60 rows with one run, which begins at row 10.
Image columnWith(const std::vector<int>& run) {
    Image image(1, 60);
    drawRun(image, 0, 10, run);
    return image;
}

/// A column of 60 rows with two runs, one from row 10 on and a flat one from row 40 on. A column's only candidate is
/// taken at last, so the column shows the candidate of the first run: a flat run has no hump.
Image columnWithFlatRunAnd(const std::vector<int>& run, int flatRows) {
    Image image = columnWith(run);
    drawRun(image, 0, 40, flatRun(flatRows, 200));
    return image;
}

// ---- Outputs

TEST(Cal2DPoint2, FrameIsReadOnly) {
    Image image(4, 60);
    image.drawLine(10, {70, 200, 70});
    image.drawLine(30, {50, 200, 200});
    const std::vector<unsigned char> before = image.pixels();
    frames::extract(&KorvaneLaserAlgo::Cal2DPoint2, image, Select{});
    EXPECT_EQ(image.pixels(), before);
}

TEST(Cal2DPoint2, LineSelectionIsNotRead) {
    Image image(2, 120);
    drawSpot(image, 0, 50);
    drawSpot(image, 1, 52);
    drawSpot(image, 1, 90);
    const Select rejectsEverything{.grayMin = 255, .grayMax = 0, .widthMin = 99, .widthMax = -1, .mode = 4};
    EXPECT_TRUE(
        frames::givesRows(frames::extract(&KorvaneLaserAlgo::Cal2DPoint2, image, rejectsEverything), {50.0, 52.0}));
}

// ---- Threshold of a column

TEST(Cal2DPoint2, DarkImageGivesOffsetsOnly) {
    Image image(2, 20, 30);
    KorvaneLaserAlgo algo;
    setRoi(algo, 2, 20, 4, 3);
    Mask mask(2);
    Points2d points;
    algo.Cal2DPoint2(mask.data(), image.data(), points);
    EXPECT_TRUE(support::sameBits(points, Points2d{{4.0, 3.0}, {4.0, 3.0}}));
    EXPECT_EQ(mask.marked(), std::vector<int>{});
}

TEST(Cal2DPoint2, PixelsAboveHalfOfTheColumnsMaximumRoundedDownBelongToTheStripe) {
    Image image = columnWith({127, 255, 128});
    EXPECT_TRUE(rowsAre(image, {centroid(11, {255, 128})}));
}

TEST(Cal2DPoint2, ThresholdIsAtLeast30) {
    Image faint = columnWith({30, 40, 31});
    EXPECT_TRUE(rowsAre(faint, {centroid(11, {40, 31})}));
    Image faintest = columnWith({31});
    EXPECT_TRUE(rowsAre(faintest, {10.0}));
    Image lastWithTheFloor = columnWith({30, 61, 31});
    EXPECT_TRUE(rowsAre(lastWithTheFloor, {centroid(11, {61, 31})}));
    Image firstAboveTheFloor = columnWith({31, 62, 32});
    EXPECT_TRUE(rowsAre(firstAboveTheFloor, {centroid(11, {62, 32})}));
}

TEST(Cal2DPoint2, EveryColumnHasItsOwnThreshold) {
    Image image(2, 60);
    drawRun(image, 0, 10, {100, 255, 100});
    drawRun(image, 1, 10, {50, 60, 40});
    EXPECT_TRUE(rowsAre(image, {11.0, centroid(10, {50, 60, 40})}));
}

TEST(Cal2DPoint2, BrightReflectionHidesAStripeOfHalfItsGrey) {
    Image image(1, 60);
    drawRun(image, 0, 10, {100, 100, 100});
    drawRun(image, 0, 40, {200, 200, 200});
    EXPECT_TRUE(rowsAre(image, {41.0}));
}

TEST(Cal2DPoint2, RunMayBeginInTheFirstRowAndEndInTheLast) {
    Image image(1, 3);
    drawRun(image, 0, 0, {100, 150, 200});
    EXPECT_TRUE(rowsAre(image, {centroid(1, {150, 200})}));  // 100 is not above half of 200
    drawRun(image, 0, 0, {101, 150, 200});
    EXPECT_TRUE(rowsAre(image, {centroid(0, {101, 150, 200})}));
}

// ---- A single run

TEST(Cal2DPoint2, SingleRunOfExactly20RowsIsRejected) {
    Image rows20 = columnWith(flatRun(20, 200));
    EXPECT_TRUE(rowsAre(rows20, {kNone}));
    Image rows21 = columnWith(flatRun(21, 200));
    EXPECT_TRUE(rowsAre(rows21, {kNone}));
}

TEST(Cal2DPoint2, SingleRunOf19RowsTakesThe7RowsAroundItsFirstMaximum) {
    std::vector<int> run(19);
    std::iota(run.begin(), run.end(), 150);
    run[5] = 200;
    run[14] = 200;
    Image image = columnWith(run);
    EXPECT_TRUE(rowsAre(image, {centroid(12, {152, 153, 154, 200, 156, 157, 158})}));
}

TEST(Cal2DPoint2, SpanAroundTheMaximumIsClippedToTheRun) {
    Image atTheTop = columnWith({150, 200, 151, 152, 153, 154, 155});
    EXPECT_TRUE(rowsAre(atTheTop, {centroid(10, {150, 200, 151, 152, 153})}));
    Image atTheBottom = columnWith({155, 154, 153, 152, 151, 200, 150});
    EXPECT_TRUE(rowsAre(atTheBottom, {centroid(12, {153, 152, 151, 200, 150})}));
}

TEST(Cal2DPoint2, SingleRunOf1Or2Or3RowsIsTakenWhole) {
    Image one = columnWith({200});
    EXPECT_TRUE(rowsAre(one, {10.0}));
    Image two = columnWith({150, 200});
    EXPECT_TRUE(rowsAre(two, {centroid(10, {150, 200})}));
    Image three = columnWith({200, 150, 150});
    EXPECT_TRUE(rowsAre(three, {centroid(10, {200, 150, 150})}));
}

TEST(Cal2DPoint2, SingleRunIsTakenHoweverFarAndFollowedFromThenOn) {
    Image image(3, 120);
    drawSpot(image, 0, 20);
    drawSpot(image, 1, 100);
    drawSpot(image, 2, 22);
    drawSpot(image, 2, 102);
    EXPECT_TRUE(rowsAre(image, {20.0, 100.0, 102.0}));
}

TEST(Cal2DPoint2, RejectedRunLeavesTheFollowedRow) {
    Image image(3, 120);
    drawSpot(image, 0, 50);
    drawRun(image, 1, 80, flatRun(20, 200));
    drawSpot(image, 2, 52);
    drawSpot(image, 2, 90);
    EXPECT_TRUE(rowsAre(image, {50.0, kNone, 52.0}));
}

// ---- Candidates of several runs

TEST(Cal2DPoint2, RunOf5RowsMoreThanTheShortestIsTakenWhole) {
    const std::vector<int> rows8{150, 200, 151, 152, 153, 154, 155, 156};
    Image image = columnWithFlatRunAnd(rows8, 3);
    EXPECT_TRUE(rowsAre(image, {centroid(10, rows8)}));
}

TEST(Cal2DPoint2, RunOf4RowsMoreThanTheShortestIsSearchedForHumps) {
    const std::vector<int> rows7{150, 200, 151, 151, 151, 151, 151};
    Image image = columnWithFlatRunAnd(rows7, 3);
    EXPECT_TRUE(rowsAre(image, {centroid(10, {150, 200, 151, 151, 151})}));
}

TEST(Cal2DPoint2, RunSearchedForHumpsWithoutSuccessHasNoCandidate) {
    Image rows7 = columnWithFlatRunAnd(flatRun(7, 180), 3);
    EXPECT_TRUE(rowsAre(rows7, {kNone}));
    Image rows8 = columnWithFlatRunAnd(flatRun(8, 180), 3);
    EXPECT_TRUE(rowsAre(rows8, {13.5}));
}

TEST(Cal2DPoint2, RunsOf1And2RowsCountAsTheShortestAndHaveNoCandidate) {
    const std::vector<int> rows6{150, 200, 151, 151, 151, 151};
    Image besideOneRow = columnWithFlatRunAnd(rows6, 1);
    EXPECT_TRUE(rowsAre(besideOneRow, {centroid(10, rows6)}));
    Image besideTwoRows = columnWithFlatRunAnd(rows6, 2);
    EXPECT_TRUE(rowsAre(besideTwoRows, {centroid(10, {150, 200, 151, 151, 151})}));
}

TEST(Cal2DPoint2, HumpTakes3RowsOnBothSides) {
    const std::vector<int> rows9{150, 151, 152, 153, 200, 153, 152, 151, 149};
    Image image = columnWithFlatRunAnd(rows9, 5);
    EXPECT_TRUE(rowsAre(image, {centroid(11, {151, 152, 153, 200, 153, 152, 151})}));
}

TEST(Cal2DPoint2, PlateauExtendsAHumpToItsLastSample) {
    const std::vector<int> rows14{150, 151, 152, 153, 154, 200, 200, 200, 163, 162, 161, 160, 159, 158};
    Image image = columnWithFlatRunAnd(rows14, 10);
    EXPECT_TRUE(rowsAre(image, {centroid(12, {152, 153, 154, 200, 200, 200, 163, 162, 161})}));
}

TEST(Cal2DPoint2, PlateauEndsAtADifferentGrey) {
    const std::vector<int> rows14{150, 151, 152, 153, 154, 200, 200, 199, 163, 162, 161, 160, 159, 158};
    Image image = columnWithFlatRunAnd(rows14, 10);
    EXPECT_TRUE(rowsAre(image, {centroid(12, {152, 153, 154, 200, 200, 199, 163, 162})}));
}

TEST(Cal2DPoint2, PlateauMayReachTheEndOfTheRun) {
    const std::vector<int> rows7{150, 151, 152, 153, 154, 200, 200};
    Image image = columnWithFlatRunAnd(rows7, 3);
    EXPECT_TRUE(rowsAre(image, {centroid(12, {152, 153, 154, 200, 200})}));
}

TEST(Cal2DPoint2, PlateauMayReachTheLastRow) {
    Image image(1, 17);
    drawRun(image, 0, 0, flatRun(3, 200));
    drawRun(image, 0, 10, {150, 151, 152, 153, 154, 200, 200});
    EXPECT_TRUE(rowsAre(image, {centroid(12, {152, 153, 154, 200, 200})}));
}

TEST(Cal2DPoint2, RunOf1RowMayLieInTheLastRow) {
    Image image(1, 20);
    drawRun(image, 0, 5, {150, 200, 150});
    drawRun(image, 0, 19, {200});
    EXPECT_TRUE(rowsAre(image, {6.0}));
}

TEST(Cal2DPoint2, HumpMustFallBy5GreyLevels) {
    Image by5 = columnWithFlatRunAnd({195, 200, 195}, 3);
    EXPECT_TRUE(rowsAre(by5, {11.0}));
    Image by4 = columnWithFlatRunAnd({196, 200, 196}, 3);
    EXPECT_TRUE(rowsAre(by4, {kNone}));
}

TEST(Cal2DPoint2, EveryHumpOfARunIsACandidate) {
    const std::vector<int> humps{150, 200, 150, 150, 150, 150, 150, 200, 150};
    for (int seed : {11, 17}) {
        Image image(2, 60);
        drawSpot(image, 0, seed);
        drawRun(image, 1, 10, humps);
        drawRun(image, 1, 40, flatRun(5, 200));
        const double nearest =
            seed == 11 ? centroid(10, {150, 200, 150, 150, 150}) : centroid(14, {150, 150, 150, 200, 150});
        EXPECT_TRUE(rowsAre(image, {static_cast<double>(seed), nearest})) << "seed " << seed;
    }
}

// ---- The stripe followed to the right

TEST(Cal2DPoint2, NearestCandidateIsTaken) {
    Image image(2, 120);
    drawSpot(image, 0, 50);
    drawSpot(image, 1, 46);
    drawSpot(image, 1, 53);
    EXPECT_TRUE(rowsAre(image, {50.0, 53.0}));
}

TEST(Cal2DPoint2, FirstOfEquallyNearCandidatesIsTaken) {
    Image image(2, 120);
    drawSpot(image, 0, 50);
    drawSpot(image, 1, 47);
    drawSpot(image, 1, 53);
    EXPECT_TRUE(rowsAre(image, {50.0, 47.0}));
}

TEST(Cal2DPoint2, CandidateExactly5RowsFromTheFollowedRowIsAccepted) {
    Image image(2, 120);
    drawSpot(image, 0, 50);
    drawSpot(image, 1, 55);
    drawSpot(image, 1, 90);
    EXPECT_TRUE(rowsAre(image, {50.0, 55.0}));
}

TEST(Cal2DPoint2, CandidateJustBeyond5RowsIsNotAccepted) {
    Image image(2, 120);
    drawSpot(image, 0, 50);
    drawRun(image, 1, 54, {180, 200, 181});
    drawSpot(image, 1, 90);
    ASSERT_GT(static_cast<float>(centroid(54, {180, 200, 181}) - 50.0), 5.0F);
    EXPECT_TRUE(rowsAre(image, {50.0, kNone}));
}

// Two centres whose distance exceeds 5.0 by 1 / (1756 * 3513), which single precision does not see.
std::vector<int> aboveRow30() {  // centre 30 - 1/1756, of a single run
    return {250, 250, 251, 255, 250, 250, 250};
}
std::vector<int> aboveRow35() {  // centre 35 - 2/3513, of a run that is long enough to be taken whole
    std::vector<int> run = flatRun(15, 234);
    run[6] += 2;
    run[7] += 1;
    return run;
}

TEST(Cal2DPoint2, DistanceIsRoundedToSinglePrecisionBeforeItIsJudged) {
    const double seed = centroid(27, aboveRow30());
    const double candidate = centroid(28, aboveRow35());
    ASSERT_GT(candidate - seed, 5.0);
    ASSERT_EQ(static_cast<float>(candidate - seed), 5.0F);

    Image image(2, 120);
    drawRun(image, 0, 27, aboveRow30());
    drawRun(image, 1, 28, aboveRow35());
    drawRun(image, 1, 90, {200});
    EXPECT_TRUE(rowsAre(image, {seed, candidate}));
}

TEST(Cal2DPoint2, DistancesThatAreEqualInSinglePrecisionGoToTheFirst) {
    std::vector<int> followed = flatRun(9, 250);  // centre 1/2250 above its middle row
    ++followed[3];
    --followed[4];
    std::vector<int> upper = flatRun(9, 250);  // centre 1/2249 above its middle row
    --upper[5];
    const double row = centroid(26, followed);
    const double upperDistance = row - centroid(21, upper);
    const double lowerDistance = centroid(31, followed) - row;
    ASSERT_GT(upperDistance, lowerDistance);
    ASSERT_EQ(static_cast<float>(upperDistance), static_cast<float>(lowerDistance));

    Image image(8, 120);
    drawSpot(image, 0, 30);
    drawRun(image, 1, 26, followed);
    drawRun(image, 2, 21, upper);
    drawRun(image, 2, 31, followed);
    for (int column : {1, 2}) drawRun(image, column, 90, {200});  // the longer runs are taken whole beside it
    EXPECT_TRUE(rowsAre(image, {30.0, row, centroid(21, upper)}));
}

TEST(Cal2DPoint2, ChosenCandidateIsFollowedFromThenOn) {
    Image image(3, 120);
    drawSpot(image, 0, 50);
    drawSpot(image, 1, 54);
    drawSpot(image, 1, 90);
    drawSpot(image, 2, 58);
    drawSpot(image, 2, 90);
    EXPECT_TRUE(rowsAre(image, {50.0, 54.0, 58.0}));
}

TEST(Cal2DPoint2, FollowedRowOutlastsColumnsWithoutRuns) {
    Image image(4, 120);
    drawSpot(image, 0, 50);
    drawSpot(image, 3, 52);
    drawSpot(image, 3, 90);
    EXPECT_TRUE(rowsAre(image, {50.0, kNone, kNone, 52.0}));
}

TEST(Cal2DPoint2, FollowedRowOutlastsColumnsOfFarCandidates) {
    Image image(3, 120);
    drawSpot(image, 0, 50);
    drawSpot(image, 1, 70);
    drawSpot(image, 1, 90);
    drawSpot(image, 2, 52);
    drawSpot(image, 2, 90);
    EXPECT_TRUE(rowsAre(image, {50.0, kNone, 52.0}));
}

TEST(Cal2DPoint2, OnlyCandidateOfSeveralRunsIsNotFollowedWhereItIsFar) {
    Image image(3, 120);
    drawSpot(image, 0, 50);
    drawSpot(image, 1, 80);
    drawRun(image, 1, 100, flatRun(3, 200));
    drawSpot(image, 2, 52);
    drawSpot(image, 2, 83);
    EXPECT_TRUE(rowsAre(image, {50.0, 80.0, 52.0}));
}

TEST(Cal2DPoint2, ForwardSearchIsNotLimitedByTheWidthOfTheFrame) {
    Image image(2, 120);
    drawSpot(image, 0, 50);
    drawSpot(image, 1, 47);  // 3 rows away in a frame 2 wide
    drawSpot(image, 1, 90);
    EXPECT_TRUE(rowsAre(image, {50.0, 47.0}));
}

TEST(Cal2DPoint2, TwoRunsBeforeAnyStripeWasTrackedGetNoPoint) {
    Image image(2, 120);
    drawSpot(image, 0, 48);
    drawSpot(image, 0, 90);
    drawSpot(image, 1, 49);
    drawSpot(image, 1, 90);
    EXPECT_TRUE(rowsAre(image, {kNone, kNone}));

    Image nearTheTop(2, 120);
    drawSpot(nearTheTop, 1, 3);
    drawSpot(nearTheTop, 1, 90);
    EXPECT_TRUE(rowsAre(nearTheTop, {kNone, kNone}));
}

TEST(Cal2DPoint2, TwoRunsBeforeAnyStripeWasTrackedAreFilledFromTheRight) {
    Image image(8, 120);
    drawSpot(image, 0, 48);
    drawSpot(image, 0, 90);
    drawSpot(image, 1, 49);
    drawSpot(image, 1, 90);
    drawSpot(image, 2, 50);
    EXPECT_TRUE(rowsAre(image, {48.0, 49.0, 50.0}));
}

TEST(Cal2DPoint2, RowBetweenZeroAndOneIsFollowed) {
    Image image(2, 120);
    drawRun(image, 0, 0, {200, 200});
    drawSpot(image, 1, 3);
    drawSpot(image, 1, 90);
    EXPECT_TRUE(rowsAre(image, {0.5, 3.0}));
}

TEST(Cal2DPoint2, SingleRunOnRowZeroEndsTheFollowing) {
    Image image(3, 120);
    drawSpot(image, 0, 50);
    drawRun(image, 1, 0, {200});
    drawSpot(image, 2, 52);
    drawSpot(image, 2, 90);
    const extraction::Extraction result = frames::extract(&KorvaneLaserAlgo::Cal2DPoint2, image, Select{});
    EXPECT_EQ(result.marked, std::vector<int>{0});
    EXPECT_TRUE(support::sameBits(result.points, Points2d{{0.0, 50.0}, {1.0, 0.0}, {0.0, 0.0}}));
}

// ---- The stripe followed back to the left. The frames are wider than 5 columns, because the width limits the search.

TEST(Cal2DPoint2, ChoiceMoreThan5RowsFromTheRightNeighbourIsRevised) {
    Image image(8, 120);
    drawSpot(image, 0, 20);
    drawSpot(image, 1, 22);
    drawSpot(image, 1, 48);
    drawSpot(image, 2, 50);
    EXPECT_TRUE(rowsAre(image, {20.0, 48.0, 50.0}));
}

TEST(Cal2DPoint2, ChoiceExactly5RowsFromTheRightNeighbourStays) {
    Image image(8, 120);
    drawSpot(image, 0, 30);
    drawSpot(image, 1, 30);
    drawSpot(image, 1, 37);
    drawSpot(image, 2, 35);
    EXPECT_TRUE(rowsAre(image, {30.0, 30.0, 35.0}));

    Image oneMore(8, 120);
    drawSpot(oneMore, 0, 30);
    drawSpot(oneMore, 1, 30);
    drawSpot(oneMore, 1, 37);
    drawSpot(oneMore, 2, 36);
    EXPECT_TRUE(rowsAre(oneMore, {30.0, 37.0, 36.0}));
}

TEST(Cal2DPoint2, WhetherAChoiceIsRevisedIsDecidedInDoublePrecision) {
    const double chosen = centroid(28, aboveRow35());
    const double right = centroid(27, aboveRow30());
    ASSERT_GT(chosen - right, 5.0);
    ASSERT_EQ(static_cast<float>(chosen - right), 5.0F);
    const double nearer = centroid(24, {131, 200, 195});
    ASSERT_LT(right - nearer, 5.0);

    Image image(8, 120);
    drawSpot(image, 0, 35);
    drawRun(image, 1, 28, aboveRow35());
    drawRun(image, 1, 24, {131, 200, 195});
    drawRun(image, 2, 27, aboveRow30());
    EXPECT_TRUE(rowsAre(image, {35.0, nearer, right}));
}

TEST(Cal2DPoint2, ChoiceIsRevisedForARightRowBetweenZeroAndOne) {
    Image image(8, 120);
    drawSpot(image, 0, 8);
    drawSpot(image, 1, 3);
    drawSpot(image, 1, 8);
    drawRun(image, 2, 0, {200, 200});
    EXPECT_TRUE(rowsAre(image, {8.0, 3.0, 0.5}));
}

TEST(Cal2DPoint2, ChoiceStaysWhereNoOtherCandidateIsNear) {
    Image image(8, 120);
    drawSpot(image, 0, 20);
    drawSpot(image, 1, 22);
    drawSpot(image, 1, 90);
    drawSpot(image, 2, 50);
    EXPECT_TRUE(rowsAre(image, {20.0, 22.0, 50.0}));
}

TEST(Cal2DPoint2, SingleRunFarFromItsRightNeighbourStays) {
    Image image(8, 120);
    drawSpot(image, 0, 20);
    drawSpot(image, 1, 50);
    EXPECT_TRUE(rowsAre(image, {20.0, 50.0}));
}

TEST(Cal2DPoint2, BackwardSearchAcceptsACandidateExactly5RowsAway) {
    Image image(8, 120);
    drawSpot(image, 0, 55);
    drawSpot(image, 0, 90);
    drawSpot(image, 1, 50);
    EXPECT_TRUE(rowsAre(image, {55.0, 50.0}));

    Image oneMore(8, 120);
    drawSpot(oneMore, 0, 56);
    drawSpot(oneMore, 0, 90);
    drawSpot(oneMore, 1, 50);
    EXPECT_TRUE(rowsAre(oneMore, {kNone, 50.0}));
}

TEST(Cal2DPoint2, BackwardSearchOnlySeesCandidatesNearerThanTheWidthOfTheFrame) {
    Image width3(3, 120);
    drawSpot(width3, 1, 47);  // 3 rows away
    drawSpot(width3, 1, 90);
    drawSpot(width3, 2, 50);
    EXPECT_TRUE(rowsAre(width3, {kNone, kNone, 50.0}));

    Image width4(4, 120);
    drawSpot(width4, 1, 47);
    drawSpot(width4, 1, 90);
    drawSpot(width4, 2, 50);
    EXPECT_TRUE(rowsAre(width4, {kNone, 47.0, 50.0}));
}

TEST(Cal2DPoint2, UnseenCandidateIsNotWrittenAlsoWhereTheWidthIsWithin5) {
    Image image(2, 120);
    drawSpot(image, 0, 48);  // exactly the frame's width away
    drawSpot(image, 0, 90);
    drawSpot(image, 1, 50);
    EXPECT_TRUE(rowsAre(image, {kNone, 50.0}));
}

TEST(Cal2DPoint2, EmptyColumnIsSearchedOnlyForARightRowAbove5) {
    Image at5(8, 120);
    drawSpot(at5, 0, 6);
    drawSpot(at5, 0, 90);
    drawSpot(at5, 1, 5);
    EXPECT_TRUE(rowsAre(at5, {kNone, 5.0}));

    Image at6(8, 120);
    drawSpot(at6, 0, 6);
    drawSpot(at6, 0, 90);
    drawSpot(at6, 1, 6);
    EXPECT_TRUE(rowsAre(at6, {6.0, 6.0}));
}

TEST(Cal2DPoint2, RowOfTheRightIsFollowedAcrossEmptyColumns) {
    Image image(8, 120);
    drawSpot(image, 0, 48);
    drawSpot(image, 0, 90);
    drawSpot(image, 3, 50);
    EXPECT_TRUE(rowsAre(image, {48.0, kNone, kNone, 50.0}));
}

TEST(Cal2DPoint2, RevisedRowIsFollowedFurtherLeft) {
    Image image(8, 120);
    drawSpot(image, 0, 58);
    drawSpot(image, 0, 90);
    drawSpot(image, 1, 54);
    drawSpot(image, 1, 90);
    drawSpot(image, 2, 50);
    EXPECT_TRUE(rowsAre(image, {58.0, 54.0, 50.0}));
}

TEST(Cal2DPoint2, BackwardSearchTakesTheFirstOfEquallyNearCandidates) {
    Image image(8, 120);
    drawSpot(image, 0, 47);
    drawSpot(image, 0, 53);
    drawSpot(image, 1, 50);
    EXPECT_TRUE(rowsAre(image, {47.0, 50.0}));
}

TEST(Cal2DPoint2, LastColumnIsNeverRevised) {
    Image image(8, 120);
    drawSpot(image, 6, 50);
    drawSpot(image, 7, 70);
    drawSpot(image, 7, 90);
    EXPECT_TRUE(rowsAre(image, {kNone, kNone, kNone, kNone, kNone, kNone, 50.0, kNone}));
}

// ---- The last fill

TEST(Cal2DPoint2, OnlyCandidateOfAnEmptyColumnIsTakenAtLast) {
    Image image(8, 120);
    drawSpot(image, 0, 50);
    drawSpot(image, 1, 80);
    drawRun(image, 1, 100, flatRun(3, 200));
    EXPECT_TRUE(rowsAre(image, {50.0, 80.0}));
}

TEST(Cal2DPoint2, Column0TakesItsOnlyCandidateAtLast) {
    Image image(1, 120);
    drawSpot(image, 0, 80);
    drawRun(image, 0, 100, flatRun(3, 200));
    EXPECT_TRUE(rowsAre(image, {80.0}));
}

TEST(Cal2DPoint2, EmptyColumnOfTwoCandidatesStaysEmpty) {
    Image image(8, 120);
    drawSpot(image, 0, 80);
    drawSpot(image, 0, 100);
    drawSpot(image, 1, 50);
    EXPECT_TRUE(rowsAre(image, {kNone, 50.0}));
}

}  // namespace
