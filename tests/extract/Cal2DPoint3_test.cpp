// Cal2DPoint3: the search and the following of Cal2DPoint1, with a threshold per column.

#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <random>
#include <vector>

#include "KorvaneLaserAlgo.h"
#include "extract/Extraction.h"
#include "support/Support.h"

namespace {

using extraction::Columns;
using extraction::Extraction;
using extraction::foundAt;
using extraction::notFound;
using support::Image;
using support::KorvaneLaserAlgo;
using support::Mask;
using support::Point2d;
using support::Points2d;
using support::setRoi;

constexpr int kNoCap = 255;  // no mean of grey values is greater

Extraction extract(Image& image, int cap, int offsetX = 0, int offsetY = 0) {
    KorvaneLaserAlgo algo;
    setRoi(algo, image.width(), image.height(), offsetX, offsetY);
    Mask mask(image.width());
    Extraction result;
    algo.Cal2DPoint3(mask.data(), image.data(), result.points, cap);
    result.marked = mask.marked();
    return result;
}

/// 100 rows, dark but for six rows of 255 near the bottom. They lie below the searched rows (2 .. 78), so they only
/// lift the mean of every column: its threshold is the cap, wherever the tests below draw a stripe.
Image imageOnBrightGround(int width) {
    Image image(width, 100);
    image.drawLine(90, {255, 255, 255, 255, 255, 255});
    return image;
}

/// A reflection that a search of the column meets first, at row 10.5.
constexpr double kReflectionRow = 10.5;
void drawReflection(Image& image, int column) {
    image.drawColumn(column, 10, {200, 200});
}

// ---- The threshold of a column

TEST(Cal2DPoint3, CapOf255OrMoreLeavesTheMeanOfTheBrightPixels) {
    for (int cap : {255, 256, 1000, INT_MAX}) {
        Image image(3, 100);
        image.drawColumn(1, 30, {150, 100, 99});  // mean 116
        image.at(30, 2) = 255;
        EXPECT_TRUE(foundAt(extract(image, cap), 1, 30.0)) << "cap " << cap;

        image.drawColumn(1, 30, {116, 117, 115});  // mean 116, of which the first is not brighter
        EXPECT_TRUE(foundAt(extract(image, cap), 1, 31.0)) << "cap " << cap;
    }
}

TEST(Cal2DPoint3, MeanIsTruncated) {
    Image image(3, 100);
    image.drawColumn(1, 30, {101, 100});  // mean 100.5; the second pixel is not below 100
    image.at(30, 2) = 255;
    EXPECT_TRUE(foundAt(extract(image, kNoCap), 1, 30 + 100 / 201.0));

    image.drawColumn(1, 30, {102, 101, 101, 100});
    image.at(60, 1) = 101;  // mean 101
    EXPECT_TRUE(foundAt(extract(image, kNoCap), 1, 30 + (1 * 101 + 2 * 101) / 304.0));

    image.drawColumn(1, 30, {102, 101, 101, 101});
    image.at(60, 1) = 103;  // mean 101.6
    EXPECT_TRUE(foundAt(extract(image, kNoCap), 1, 30 + (1 * 101 + 2 * 101 + 3 * 101) / 405.0));
}

TEST(Cal2DPoint3, BrightPixelsThatAverage200WithACapOf120GiveAThresholdOf120) {
    // 121 + 120 + 119 + 4 * 255 + 220 = 8 * 200
    Image image(3, 100);
    image.at(30, 2) = 255;
    image.drawColumn(1, 30, {121, 120, 119});
    image.drawColumn(1, 60, {255, 255, 255, 255, 220});
    EXPECT_TRUE(foundAt(extract(image, 120), 1, 30 + 120 / 241.0));

    // The same mean; no pixel of the first three is brighter than the threshold.
    image.drawColumn(1, 30, {120, 120, 120});
    EXPECT_TRUE(foundAt(extract(image, 120), 1, 60 + (255 * (1 + 2 + 3) + 4 * 220) / 1240.0));
}

TEST(Cal2DPoint3, MeanBelowTheCapIsTheThreshold) {
    Image image(3, 100);
    image.at(30, 2) = 255;
    image.drawColumn(1, 30, {110, 100, 90});  // mean 100
    EXPECT_TRUE(foundAt(extract(image, 101), 1, 30 + 100 / 210.0));
}

TEST(Cal2DPoint3, ColumnWithoutAPixelAbove60HasAThresholdOf60EvenWithACapOf30) {
    Image image(4, 100);
    image.drawLine(30, {50, 55});
    EXPECT_EQ(extract(image, 30).marked, Columns{});

    image.at(90, 1) = 61;  // one bright pixel, below the searched rows, lets the cap through
    const Extraction result = extract(image, 30);
    EXPECT_TRUE(foundAt(result, 1, 30 + 55 / 105.0));
    EXPECT_TRUE(notFound(result, 2));
}

TEST(Cal2DPoint3, CapBelow60LowersTheThreshold) {
    Image image(3, 100);
    image.at(90, 1) = 61;
    image.at(30, 2) = 31;
    image.drawColumn(1, 30, {31, 30, 29});
    EXPECT_TRUE(foundAt(extract(image, 30), 1, 30 + 30 / 61.0));
    image.at(30, 1) = 30;
    EXPECT_TRUE(notFound(extract(image, 30), 1));
}

TEST(Cal2DPoint3, CapOfZeroFillsThroughDarkRows) {
    Image image(3, 100);
    image.drawColumn(1, 30, {100, 100, 0, 100});
    EXPECT_TRUE(foundAt(extract(image, 0), 1, 30 + (1 * 100 + 3 * 100) / 300.0));
    EXPECT_TRUE(foundAt(extract(image, 1), 1, 30.5));
}

TEST(Cal2DPoint3, PixelsOf61CountInTheMeanAndPixelsOf60DoNot) {
    Image image(3, 100);
    image.at(30, 1) = 101;
    image.at(50, 1) = 105;  // mean 103 of the two
    image.at(30, 2) = image.at(50, 2) = 255;

    image.drawColumn(1, 70, {60, 60, 60, 60});
    EXPECT_TRUE(foundAt(extract(image, kNoCap), 1, 50.0)) << "101 is not above 103";
    image.drawColumn(1, 70, {61, 61, 61, 61});
    EXPECT_TRUE(foundAt(extract(image, kNoCap), 1, 30.0)) << "101 is above (101 + 105 + 4 * 61) / 6 = 75";
}

TEST(Cal2DPoint3, FirstAndLastRowDoNotCountInTheMean) {
    const auto withBrightRow = [](int row) {
        Image image(3, 41);
        image.drawColumn(1, 10, {100, 90});
        image.at(10, 2) = 255;
        image.at(row, 1) = 255;
        return extract(image, kNoCap);
    };
    // The mean of 100 and 90 is 95; of 100, 90 and 255 it is 148.
    EXPECT_TRUE(foundAt(withBrightRow(0), 1, 10.0));
    EXPECT_TRUE(notFound(withBrightRow(1), 1));
    EXPECT_TRUE(notFound(withBrightRow(39), 1));
    EXPECT_TRUE(foundAt(withBrightRow(40), 1, 10.0));
}

TEST(Cal2DPoint3, EvenlyBrightColumnIsNotAboveItsMean) {
    Image image(3, 50, 255);
    EXPECT_TRUE(notFound(extract(image, 255), 1));
    EXPECT_TRUE(foundAt(extract(image, 254), 1, 2.0 + 20.0));  // rows 2 .. 42
}

TEST(Cal2DPoint3, EveryColumnHasItsOwnThreshold) {
    Image image(5, 100);
    image.drawLine(30, {100, 90});
    image.at(90, 1) = 255;  // mean 148; the other columns' is 95
    const Extraction result = extract(image, kNoCap);
    EXPECT_TRUE(notFound(result, 1));
    EXPECT_TRUE(foundAt(result, 2, 30.0));
    EXPECT_TRUE(foundAt(result, 3, 30.0));
}

TEST(Cal2DPoint3, EveryColumnOfAWideFrameHasItsThresholdAndIsSearched) {
    // From column to column the stripe jumps by 7 rows down or 43 up, so that it can never be followed.
    const auto stripeRow = [](int column) { return 5 + column * 7 % 50; };
    for (int width = 3; width <= 70; ++width) {
        Image image(width, 100);
        for (int column = 0; column < width; ++column) {
            const int grey = 80 + column;  // below the mean of the four
            image.drawColumn(column, stripeRow(column), {grey, 255, 255, grey});
        }
        const Extraction result = extract(image, kNoCap);
        for (int column = 1; column < width - 1; ++column)
            EXPECT_TRUE(foundAt(result, column, stripeRow(column) + 1.5)) << "width " << width;
    }
}

// ---- Search

TEST(Cal2DPoint3, StartMustBeBrighterThanTheThreshold) {
    Image image = imageOnBrightGround(3);
    image.at(30, 2) = 255;
    image.at(30, 1) = 95;
    EXPECT_TRUE(notFound(extract(image, 95), 1));
    image.at(30, 1) = 96;
    EXPECT_TRUE(foundAt(extract(image, 95), 1, 30.0));
}

struct Neighbour {
    int rowStep;
    int columnStep;
};

TEST(Cal2DPoint3, OneOfFiveNeighboursMustBeBrighterThanTheThreshold) {
    for (const Neighbour& n : {Neighbour{-1, 1}, {0, 1}, {1, 1}, {-1, 0}, {1, 0}}) {
        Image image = imageOnBrightGround(3);
        image.at(2, 1) = 200;  // row 2, so that the pixel above is not a start itself
        image.at(2 + n.rowStep, 1 + n.columnStep) = 95;
        EXPECT_TRUE(notFound(extract(image, 95), 1)) << n.rowStep << ", " << n.columnStep;

        image.at(2 + n.rowStep, 1 + n.columnStep) = 96;
        const bool isBelow = n.rowStep == 1 && n.columnStep == 0;  // then it belongs to the stripe
        EXPECT_TRUE(foundAt(extract(image, 95), 1, isBelow ? 2 + 96 / 296.0 : 2.0))
            << n.rowStep << ", " << n.columnStep;
    }
}

TEST(Cal2DPoint3, OtherNeighboursDoNotMakeAStart) {
    for (const Neighbour& n : {Neighbour{-1, -1}, {0, -1}, {1, -1}, {-2, 0}, {2, 0}, {-2, 1}, {2, 1}}) {
        Image image = imageOnBrightGround(3);
        image.at(30, 1) = 200;
        image.at(30 + n.rowStep, 1 + n.columnStep) = 200;
        EXPECT_TRUE(notFound(extract(image, 95), 1)) << n.rowStep << ", " << n.columnStep;
    }
}

TEST(Cal2DPoint3, NeighbourIsComparedWithTheThresholdOfThePixelsOwnColumn) {
    Image image = imageOnBrightGround(4);
    image.drawColumn(1, 90, {0, 0, 0, 0, 0, 0});
    image.at(30, 1) = 100;
    image.at(50, 1) = 90;  // mean 95; that of column 2 is above 200
    image.at(30, 2) = 95;
    EXPECT_TRUE(notFound(extract(image, kNoCap), 1));
    image.at(30, 2) = 96;
    EXPECT_TRUE(foundAt(extract(image, kNoCap), 1, 30.0));
}

TEST(Cal2DPoint3, PixelDarkerThanBothVerticalNeighboursIsSkipped) {
    Image darker = imageOnBrightGround(3);
    darker.drawColumn(1, 1, {200, 100, 101});
    EXPECT_TRUE(foundAt(extract(darker, 95), 1, 3.0));

    Image asBelow = imageOnBrightGround(3);
    asBelow.drawColumn(1, 1, {200, 100, 100});
    EXPECT_TRUE(foundAt(extract(asBelow, 95), 1, 2.5));

    Image asAbove = imageOnBrightGround(3);
    asAbove.drawColumn(1, 1, {100, 100, 200});
    EXPECT_TRUE(foundAt(extract(asAbove, 95), 1, 2 + 200 / 300.0));
}

TEST(Cal2DPoint3, SearchCoversTheRowsOfCal2DPoint1) {
    struct Case {
        int height;
        int lastSearchedRow;  // height - half window - 2
    };
    // From height 41 on the half window is 20; below, half of the height less one.
    const Case cases[] = {{100, 78}, {42, 20}, {41, 19}, {40, 19}, {39, 19}, {38, 18}, {10, 4}, {6, 2}, {5, 2}};
    for (const Case& c : cases) {
        const auto withLine = [&c](int row) {
            Image image(3, c.height);
            image.drawLine(row, {200});
            return extract(image, 95);
        };
        EXPECT_TRUE(notFound(withLine(1), 1)) << "height " << c.height;
        EXPECT_TRUE(foundAt(withLine(2), 1, 2.0)) << "height " << c.height;
        EXPECT_TRUE(foundAt(withLine(c.lastSearchedRow), 1, c.lastSearchedRow)) << "height " << c.height;
        EXPECT_TRUE(notFound(withLine(c.lastSearchedRow + 1), 1)) << "height " << c.height;
    }
}

TEST(Cal2DPoint3, FillAfterASearchKeepsTheThresholdAndStopsBelow) {
    Image image = imageOnBrightGround(3);
    image.at(30, 2) = 255;
    image.drawColumn(1, 30, {200, 95, 95, 94, 200});
    EXPECT_TRUE(foundAt(extract(image, 95), 1, 30 + (1 * 95 + 2 * 95) / 390.0));
}

TEST(Cal2DPoint3, FillAfterASearchIsNotRaisedToHalfThePeak) {
    Image image = imageOnBrightGround(3);
    image.drawColumn(1, 30, {255, 255, 100});  // 100 lies below half of 255
    EXPECT_TRUE(foundAt(extract(image, 95), 1, 30 + (1 * 255 + 2 * 100) / 610.0));
}

TEST(Cal2DPoint3, FillAfterASearchTakesAtMost41Rows) {
    Image image(3, 100);
    for (int row = 10; row <= 60; ++row) image.at(row, 1) = 100;
    EXPECT_TRUE(foundAt(extract(image, 95), 1, (10 + 50) / 2.0));
}

// ---- Following: when the stripe continues

/// With a cap of 80, column 1 leads to row 31 with a pixel of 80 there, so that column 2 may continue with 73 or more.
/// What column 2 holds is too dark for a search.
Image imageBeforeADimColumn() {
    Image image = imageOnBrightGround(4);
    image.drawColumn(1, 29, {100, 100, 80, 100, 100});
    return image;
}

TEST(Cal2DPoint3, StripeContinuesWhenTheMiddlePixelIsNotBelowTheThreshold) {
    Image image = imageBeforeADimColumn();
    image.at(31, 2) = 79;
    EXPECT_TRUE(notFound(extract(image, 80), 2));
    image.at(31, 2) = 80;
    EXPECT_TRUE(foundAt(extract(image, 80), 2, 31.0));
}

TEST(Cal2DPoint3, StripeContinuesWhenThePixelBelowIsNotBelowTheThreshold) {
    Image image = imageBeforeADimColumn();
    image.drawColumn(2, 31, {73, 79});
    EXPECT_TRUE(notFound(extract(image, 80), 2));
    image.drawColumn(2, 31, {73, 80});
    EXPECT_TRUE(foundAt(extract(image, 80), 2, 16 + (15 * 73 + 16 * 80) / 153.0));  // window from row 31 - 15
}

TEST(Cal2DPoint3, StripeContinuesWhenThePixelAboveIsNotBelowTheThreshold) {
    Image image = imageBeforeADimColumn();
    image.drawColumn(2, 30, {79, 73});
    EXPECT_TRUE(notFound(extract(image, 80), 2));
    image.drawColumn(2, 30, {80, 73});
    EXPECT_TRUE(foundAt(extract(image, 80), 2, 16 + (14 * 80 + 15 * 73) / 153.0));  // window from row 31 - 15
}

TEST(Cal2DPoint3, ColumnWithoutAPixelAbove60IsFollowedWithThreshold60EvenWithACapOf30) {
    Image image(4, 100);
    image.drawColumn(1, 29, {70, 70, 62, 70, 70});  // row 31 is expected next, with more than 0.9 * 62 = 55.8
    image.at(31, 2) = 60;
    EXPECT_TRUE(foundAt(extract(image, 30), 2, 31.0));
    image.at(31, 2) = 59;
    EXPECT_TRUE(notFound(extract(image, 30), 2));
}

TEST(Cal2DPoint3, StripeThatFadesToNineTenthsIsSearchedAgain) {
    const auto secondColumn = [](int left, int grey) {
        Image image = imageOnBrightGround(4);
        image.at(30, 1) = static_cast<unsigned char>(left);
        image.at(30, 2) = static_cast<unsigned char>(grey);
        drawReflection(image, 2);
        return extract(image, 80);
    };
    for (int left = 100; left <= 250; left += 10) {
        const int nineTenths = left / 10 * 9;
        EXPECT_TRUE(foundAt(secondColumn(left, nineTenths), 2, kReflectionRow)) << "left pixel " << left;
        EXPECT_TRUE(foundAt(secondColumn(left, nineTenths + 1), 2, 30.0)) << "left pixel " << left;
    }
}

TEST(Cal2DPoint3, ReflectionAboveIsIgnoredWhileFollowing) {
    Image image = imageOnBrightGround(6);
    image.drawLine(30, {100});
    for (int column : {2, 3, 4}) drawReflection(image, column);
    const Extraction result = extract(image, 80);
    for (int column : {1, 2, 3, 4}) EXPECT_TRUE(foundAt(result, column, 30.0));
}

TEST(Cal2DPoint3, LostColumnStaysEmptyAndTheNextOneIsSearchedFromTheTop) {
    Image image = imageOnBrightGround(5);
    image.drawColumn(1, 30, {200, 200});
    image.drawColumn(3, 30, {200, 200});
    drawReflection(image, 3);
    const Extraction result = extract(image, 80);
    EXPECT_TRUE(foundAt(result, 1, 30.5));
    EXPECT_TRUE(notFound(result, 2));
    EXPECT_TRUE(foundAt(result, 3, kReflectionRow));
}

TEST(Cal2DPoint3, PredictedRowIsTheCentroidRoundedHalfUp) {
    Image image = imageOnBrightGround(4);
    image.drawColumn(1, 30, {100, 100});  // 30.5
    image.at(31, 2) = 100;
    drawReflection(image, 2);
    EXPECT_TRUE(foundAt(extract(image, 80), 2, 31.0));
}

TEST(Cal2DPoint3, RowOneIsFollowed) {
    Image image(5, 41);
    image.at(2, 1) = 61;
    image.drawColumn(2, 1, {122, 61});
    image.at(1, 3) = 122;
    const Extraction result = extract(image, 60);
    EXPECT_TRUE(foundAt(result, 2, (1 * 122 + 2 * 61) / 183.0));  // 1.33; half of the peak is 61
    EXPECT_TRUE(foundAt(result, 3, 1.0));
}

TEST(Cal2DPoint3, CentroidThatRoundsToRowZeroEndsTheFrame) {
    Image image(8, 41);
    image.at(2, 1) = 61;
    image.drawColumn(2, 0, {255, 61, 61});
    for (int column = 3; column < 8; ++column) image.drawColumn(column, 10, {200, 200});
    const Extraction result = extract(image, 60);
    EXPECT_TRUE(foundAt(result, 2, (1 * 61 + 2 * 61) / 377.0));  // 0.485
    EXPECT_EQ(result.marked, (Columns{1, 2}));

    image.at(0, 2) = 0;  // without the bright row 0 the centroid is 1.5, and the other columns are found
    EXPECT_EQ(extract(image, 60).marked, (Columns{1, 2, 3, 4, 5, 6}));
}

TEST(Cal2DPoint3, CentroidThatRoundsToTheLastRowEndsTheFrame) {
    Image image(6, 5);
    image.drawLine(2, {61, 61, 255});
    const Extraction result = extract(image, 60);
    EXPECT_TRUE(foundAt(result, 1, 2 + (1 * 61 + 2 * 255) / 377.0));  // 3.51
    EXPECT_EQ(result.marked, Columns{1});

    image.drawLine(2, {61, 61, 61});
    EXPECT_EQ(extract(image, 60).marked, (Columns{1, 2, 3, 4}));
}

// ---- Following: the fill, raised to half of the local peak

/// Column 1 leads to row 30 with a pixel of `left`; the window of column 2 then starts at row 15.
Image imageLeadingToRow30(int left) {
    Image image = imageOnBrightGround(4);
    image.at(30, 1) = static_cast<unsigned char>(left);
    return image;
}

TEST(Cal2DPoint3, StripeOfPeak240FollowedWithThreshold80StopsBelow120) {
    Image image = imageLeadingToRow30(240);
    image.drawColumn(2, 29, {119, 240, 120, 119});
    EXPECT_TRUE(foundAt(extract(image, 80), 2, 15 + (15 * 240 + 16 * 120) / 360.0));
    image.drawColumn(2, 28, {119, 120, 240, 119});
    EXPECT_TRUE(foundAt(extract(image, 80), 2, 15 + (14 * 120 + 15 * 240) / 360.0));
}

TEST(Cal2DPoint3, HalfOfThePeakIsTruncated) {
    Image image = imageLeadingToRow30(241);
    image.drawColumn(2, 29, {119, 241, 120, 119});  // half is 120.5
    EXPECT_TRUE(foundAt(extract(image, 80), 2, 15 + (15 * 241 + 16 * 120) / 361.0));
}

TEST(Cal2DPoint3, PixelBelowMayBeThePeak) {
    Image image = imageLeadingToRow30(200);
    image.drawColumn(2, 29, {119, 200, 240, 120, 119});
    EXPECT_TRUE(foundAt(extract(image, 80), 2, 15 + (15 * 200 + 16 * 240 + 17 * 120) / 560.0));
}

TEST(Cal2DPoint3, PixelAboveMayBeThePeak) {
    Image image = imageLeadingToRow30(200);
    image.drawColumn(2, 27, {119, 120, 240, 200, 119});
    EXPECT_TRUE(foundAt(extract(image, 80), 2, 15 + (13 * 120 + 14 * 240 + 15 * 200) / 560.0));
}

TEST(Cal2DPoint3, PeakIsSoughtInThreePixelsOnly) {
    Image below = imageLeadingToRow30(150);
    below.drawColumn(2, 30, {150, 150, 255, 100});  // half of 255 would stop before 100
    EXPECT_TRUE(foundAt(extract(below, 80), 2, 15 + (15 * 150 + 16 * 150 + 17 * 255 + 18 * 100) / 655.0));

    Image above = imageLeadingToRow30(150);
    above.drawColumn(2, 27, {100, 255, 150, 150});
    EXPECT_TRUE(foundAt(extract(above, 80), 2, 15 + (12 * 100 + 13 * 255 + 14 * 150 + 15 * 150) / 655.0));
}

TEST(Cal2DPoint3, HalfOfThePeakBelowTheThresholdChangesNothing) {
    Image image = imageLeadingToRow30(200);
    image.drawColumn(2, 29, {149, 200, 150, 149});
    EXPECT_TRUE(foundAt(extract(image, 150), 2, 15 + (15 * 200 + 16 * 150) / 350.0));
}

TEST(Cal2DPoint3, MiddlePixelCountsEvenBelowTheRaisedThreshold) {
    Image image = imageOnBrightGround(4);
    image.drawColumn(1, 30, {240, 100, 240});  // row 31 is expected next, with more than 90
    image.drawColumn(2, 30, {240, 100, 100});
    EXPECT_TRUE(foundAt(extract(image, 80), 2, 16 + (14 * 240 + 15 * 100) / 340.0));
}

TEST(Cal2DPoint3, RaisedThresholdIsNotKeptForTheNextColumn) {
    Image image = imageOnBrightGround(5);
    image.drawColumn(1, 30, {200, 130, 200});
    image.drawColumn(2, 30, {240, 130, 240});  // raised to 120 here
    image.drawColumn(3, 31, {130, 100});       // half of 130 is below 80
    const Extraction result = extract(image, 80);
    EXPECT_TRUE(foundAt(result, 2, 31.0));
    EXPECT_TRUE(foundAt(result, 3, 16 + (15 * 130 + 16 * 100) / 230.0));
}

TEST(Cal2DPoint3, WindowReaches15RowsToEitherSide) {
    Image down = imageOnBrightGround(4);
    Image up = imageOnBrightGround(4);
    down.at(40, 1) = up.at(40, 1) = 100;
    for (int i = 0; i <= 20; ++i) down.at(40 + i, 2) = up.at(40 - i, 2) = 100;
    EXPECT_TRUE(foundAt(extract(down, 80), 2, (40 + 55) / 2.0));
    EXPECT_TRUE(foundAt(extract(up, 80), 2, (25 + 40) / 2.0));
}

TEST(Cal2DPoint3, WindowReaches14RowsForAHeightOf40) {
    for (int height : {40, 41}) {
        Image image(4, height);
        image.at(19, 1) = 100;
        for (int row = 19; row < height; ++row) image.at(row, 2) = 100;
        EXPECT_TRUE(foundAt(extract(image, 80), 2, (19 + (height == 40 ? 33 : 34)) / 2.0)) << "height " << height;
    }
}

TEST(Cal2DPoint3, WindowStaysSymmetricNearTheTop) {
    Image down = imageOnBrightGround(4);
    down.at(5, 1) = 100;
    for (int row = 5; row <= 20; ++row) down.at(row, 2) = 100;
    EXPECT_TRUE(foundAt(extract(down, 80), 2, (5 + 10) / 2.0));

    Image up = imageOnBrightGround(4);
    up.at(5, 1) = 100;
    for (int row = 0; row <= 5; ++row) up.at(row, 2) = 100;
    EXPECT_TRUE(foundAt(extract(up, 80), 2, (0 + 5) / 2.0));
}

TEST(Cal2DPoint3, WindowStaysSymmetricNearTheBottom) {
    Image image(4, 10);
    image.drawColumn(1, 4, {61, 61, 61, 255, 61, 61});  // 6.67, so row 7 is expected next
    image.drawColumn(2, 4, {255, 255, 255, 255, 255, 255});
    EXPECT_TRUE(foundAt(extract(image, 60), 2, (5 + 9) / 2.0));
}

TEST(Cal2DPoint3, DimFrameWithACapOf60GivesWhatCal2DPoint1Gives) {
    // Where no pixel exceeds 121, half of a peak is 60 at most, so every threshold is the fixed one of Cal2DPoint1.
    std::mt19937 random(20240501);
    const auto below = [&random](int limit) { return static_cast<int>(random() % static_cast<unsigned>(limit)); };
    int columnsFound = 0;
    for (int frame = 0; frame < 200; ++frame) {
        const int width = 3 + below(40);
        const int height = 5 + below(60);
        Image image(width, height);
        for (int column = 0; column < width; ++column) {
            for (int row = 0; row < height; ++row)
                image.at(row, column) = static_cast<unsigned char>(below(4) == 0 ? below(122) : 40);
            const int stripe = below(height);
            for (int row = stripe; row < std::min(stripe + 6, height); ++row)
                image.at(row, column) = static_cast<unsigned char>(100 + below(22));
        }
        const Extraction adaptive = extract(image, 60);

        KorvaneLaserAlgo algo;
        setRoi(algo, width, height);
        Mask mask(width);
        Points2d points;
        algo.Cal2DPoint1(mask.data(), image.data(), points, 0);
        ASSERT_TRUE(support::sameBits(adaptive.points, points)) << "frame " << frame;
        ASSERT_EQ(adaptive.marked, mask.marked()) << "frame " << frame;
        columnsFound += static_cast<int>(adaptive.marked.size());
    }
    EXPECT_GT(columnsFound, 200);
}

// ---- A negative cap

TEST(Cal2DPoint3, NegativeCapTakesRowTwoAndAnEmptyFillStoresTheLastPoint) {
    // With a threshold of -1 every pixel is bright: the search takes row 2 and fills rows 2 .. 42.
    Image image = imageOnBrightGround(4);
    image.drawColumn(1, 20, {100, 100});
    const Extraction result = extract(image, -1);
    EXPECT_TRUE(foundAt(result, 1, 2 + (18 * 100 + 19 * 100) / 200.0));

    // Column 2 is dark there: its centroid leaves the point of column 1, and that is what it stores, x included.
    EXPECT_EQ(result.marked, (Columns{1, 2}));
    EXPECT_SAME_BITS(result.points[2], (Point2d{1.0, 2 + (18 * 100 + 19 * 100) / 200.0}));
}

TEST(Cal2DPoint3, NegativeCapWithAnEmptyFirstFillEndsTheFrameAtRowZero) {
    Image image = imageOnBrightGround(6);
    for (int column : {2, 3, 4}) image.drawColumn(column, 20, {100, 100});
    const Extraction result = extract(image, -1, 10, 20);
    EXPECT_EQ(result.marked, Columns{1});
    EXPECT_TRUE(support::sameBits(result.points, Points2d(6, Point2d{10.0, 20.0})));
}

TEST(Cal2DPoint3, NegativeCapLeavesColumnsWithoutAPixelAbove60AtThreshold60) {
    Image image(3, 100);
    image.drawLine(30, {60, 60});
    EXPECT_EQ(extract(image, -1).marked, Columns{});
    EXPECT_EQ(extract(image, INT_MIN).marked, Columns{});
}

// ---- Sizes and output

TEST(Cal2DPoint3, WidthBelowThreeYieldsTheOffsetsAndLeavesTheMaskAlone) {
    for (int width : {1, 2}) {
        Image image(width, 50, 255);
        const Extraction result = extract(image, 60, 7, -9);
        const Points2d offsets(static_cast<std::size_t>(width), Point2d{7.0, -9.0});
        EXPECT_TRUE(support::sameBits(result.points, offsets)) << "width " << width;
        EXPECT_EQ(result.marked, Columns{}) << "width " << width;
    }
    Image image(3, 50, 255);
    EXPECT_EQ(extract(image, 60).marked, Columns{1});
}

TEST(Cal2DPoint3, WidthBelowOneYieldsAnEmptyVectorAndLeavesTheMaskAlone) {
    for (int width : {0, -1, -5, INT_MIN}) {
        KorvaneLaserAlgo algo;
        setRoi(algo, width, 50);
        Image image(1, 1, 255);
        Mask mask(1);
        Points2d points(3, Point2d{1.0, 2.0});
        algo.Cal2DPoint3(mask.data(), image.data(), points, 60);
        EXPECT_TRUE(points.empty()) << "width " << width;
        EXPECT_EQ(mask.marked(), Columns{}) << "width " << width;
    }
}

TEST(Cal2DPoint3, HeightBelowOneYieldsTheOffsetsAndLeavesTheMaskAlone) {
    for (int height : {0, -1, -41, INT_MIN}) {
        KorvaneLaserAlgo algo;
        setRoi(algo, 4, height, 7, -9);
        Image image(4, 1, 255);
        Mask mask(4);
        Points2d points;
        algo.Cal2DPoint3(mask.data(), image.data(), points, 60);
        EXPECT_TRUE(support::sameBits(points, Points2d(4, Point2d{7.0, -9.0}))) << "height " << height;
        EXPECT_EQ(mask.marked(), Columns{}) << "height " << height;
    }
}

TEST(Cal2DPoint3, HeightOfFourOrLessFindsNothing) {
    for (int height : {1, 2, 3, 4}) {
        Image image(5, height, 255);
        EXPECT_EQ(extract(image, 60).marked, Columns{}) << "height " << height;
        EXPECT_EQ(extract(image, -1).marked, Columns{}) << "height " << height;
    }
    Image image(5, 5, 255);
    EXPECT_TRUE(foundAt(extract(image, 60), 1, 3.0));
}

TEST(Cal2DPoint3, FirstAndLastColumnAreNeverSearched) {
    Image image = imageOnBrightGround(6);
    image.drawLine(20, {200, 200});
    const Extraction result = extract(image, 80);
    EXPECT_EQ(result.marked, (Columns{1, 2, 3, 4}));
    EXPECT_TRUE(notFound(result, 0));
    EXPECT_TRUE(notFound(result, 5));
}

TEST(Cal2DPoint3, OffsetsAreAddedToEveryPoint) {
    Image image(5, 100);
    for (int column : {1, 3}) image.drawColumn(column, 30, {100, 200});
    const Extraction result = extract(image, 60, 1000, -50);
    const double row = 30 + 200 / 300.0;
    const Points2d expected{
        {1000.0, -50.0}, {1001.0, row - 50.0}, {1000.0, -50.0}, {1003.0, row - 50.0}, {1000.0, -50.0}};
    EXPECT_TRUE(support::sameBits(result.points, expected));
    EXPECT_EQ(result.marked, (Columns{1, 3}));
}

TEST(Cal2DPoint3, OffsetsAtTheLimitsOfAnIntDoNotWrap) {
    Image image(3, 100);
    image.drawColumn(1, 30, {100, 200});
    const double row = 30 + 200 / 300.0;
    EXPECT_SAME_BITS(extract(image, 60, INT_MAX, INT_MAX).points[1], (Point2d{1.0 + 2147483647.0, row + 2147483647.0}));
    EXPECT_SAME_BITS(extract(image, 60, INT_MIN, INT_MIN).points[1], (Point2d{1.0 - 2147483648.0, row - 2147483648.0}));
}

TEST(Cal2DPoint3, OldContentsAreReplacedByOnePointPerColumn) {
    Image image(5, 100);
    image.at(30, 1) = image.at(30, 2) = 100;
    for (std::size_t oldSize : {0U, 2U, 5U, 100U}) {
        KorvaneLaserAlgo algo;
        setRoi(algo, 5, 100);
        Mask mask(5);
        Points2d points(oldSize, Point2d{-7.0, -8.0});
        algo.Cal2DPoint3(mask.data(), image.data(), points, 60);
        const Points2d expected{{0.0, 0.0}, {1.0, 30.0}, {2.0, 30.0}, {0.0, 0.0}, {0.0, 0.0}};
        EXPECT_TRUE(support::sameBits(points, expected)) << "old size " << oldSize;
    }
}

TEST(Cal2DPoint3, MaskEntriesOfColumnsWithoutAStripeKeepTheirValues) {
    KorvaneLaserAlgo algo;
    setRoi(algo, 7, 100);
    Image image(7, 100);
    image.drawColumn(3, 30, {200, 200});
    Mask mask(7);
    mask[0] = mask[2] = mask[4] = mask[6] = true;
    Points2d points;
    algo.Cal2DPoint3(mask.data(), image.data(), points, 60);
    EXPECT_EQ(mask.marked(), (Columns{0, 2, 3, 4, 6}));
}

TEST(Cal2DPoint3, SumOfAColumnGoesBeyond32Bits) {
    // A mean of 255 is a threshold that nothing exceeds; modulo 2^32 the sum would be 254, and the mean 0.
    constexpr int kBrightRows = 16843010;  // times 255 is 2^32 + 254
    Image image(3, kBrightRows + 2, 255);
    EXPECT_TRUE(notFound(extract(image, kNoCap), 1));
}

TEST(Cal2DPoint3, FrameIsOnlyRead) {
    Image image = imageOnBrightGround(8);
    image.drawLine(30, {59, 100, 200, 61});
    const std::vector<unsigned char> before = image.pixels();
    EXPECT_EQ(extract(image, 80).marked.size(), 6U);
    EXPECT_EQ(image.pixels(), before);
}

}  // namespace
