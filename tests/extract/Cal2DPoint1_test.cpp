// Cal2DPoint1: a search from above at 60 grey levels, then the stripe followed from column to column.

#include <gtest/gtest.h>

#include <climits>
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

Extraction extract(Image& image, int offsetX = 0, int offsetY = 0) {
    KorvaneLaserAlgo algo;
    setRoi(algo, image.width(), image.height(), offsetX, offsetY);
    Mask mask(image.width());
    Extraction result;
    algo.Cal2DPoint1(mask.data(), image.data(), result.points, 0);
    result.marked = mask.marked();
    return result;
}

/// An image of three columns, of which only column 1 is searched, with one bright row.
Image imageWithLine(int height, int row, int grey = 200) {
    Image image(3, height);
    image.drawLine(row, {grey});
    return image;
}

/// A reflection that a search of the column meets first, at row 10.5.
constexpr double kReflectionRow = 10.5;
void drawReflection(Image& image, int column) {
    image.drawColumn(column, 10, {200, 200});
}

// ---- Sizes

TEST(Cal2DPoint1, WidthBelowThreeYieldsTheOffsetsAndLeavesTheMaskAlone) {
    for (int width : {1, 2}) {
        Image image(width, 50, 255);
        const Extraction result = extract(image, 7, -9);
        const Points2d offsets(static_cast<std::size_t>(width), Point2d{7.0, -9.0});
        EXPECT_TRUE(support::sameBits(result.points, offsets)) << "width " << width;
        EXPECT_EQ(result.marked, Columns{}) << "width " << width;
    }
}

TEST(Cal2DPoint1, WidthOfThreeSearchesTheMiddleColumn) {
    Image image(3, 50, 255);
    const Extraction result = extract(image);
    EXPECT_TRUE(notFound(result, 0));
    EXPECT_TRUE(foundAt(result, 1, 2.0 + 20.0));  // rows 2 .. 42
    EXPECT_TRUE(notFound(result, 2));
}

TEST(Cal2DPoint1, WidthBelowOneYieldsAnEmptyVectorAndLeavesTheMaskAlone) {
    for (int width : {0, -1, -5, INT_MIN}) {
        KorvaneLaserAlgo algo;
        setRoi(algo, width, 50);
        Image image(1, 1, 255);
        Mask mask(1);
        Points2d points(3, Point2d{1.0, 2.0});
        algo.Cal2DPoint1(mask.data(), image.data(), points, 0);
        EXPECT_TRUE(points.empty()) << "width " << width;
        EXPECT_EQ(mask.marked(), Columns{}) << "width " << width;
    }
}

TEST(Cal2DPoint1, HeightBelowOneYieldsTheOffsetsAndLeavesTheMaskAlone) {
    for (int height : {0, -1, -41, INT_MIN}) {
        KorvaneLaserAlgo algo;
        setRoi(algo, 4, height, 7, -9);
        Image image(4, 1, 255);
        Mask mask(4);
        Points2d points;
        algo.Cal2DPoint1(mask.data(), image.data(), points, 0);
        EXPECT_TRUE(support::sameBits(points, Points2d(4, Point2d{7.0, -9.0}))) << "height " << height;
        EXPECT_EQ(mask.marked(), Columns{}) << "height " << height;
    }
}

TEST(Cal2DPoint1, HeightOfFourOrLessFindsNothing) {
    for (int height : {1, 2, 3, 4}) {
        Image image(5, height, 255);
        const Extraction result = extract(image, 7, -9);
        EXPECT_TRUE(support::sameBits(result.points, Points2d(5, Point2d{7.0, -9.0}))) << "height " << height;
        EXPECT_EQ(result.marked, Columns{}) << "height " << height;
    }
}

TEST(Cal2DPoint1, HeightOfFiveSearchesRowTwoAlone) {
    for (int row : {0, 1, 3, 4}) {
        Image image = imageWithLine(5, row);
        EXPECT_TRUE(notFound(extract(image), 1)) << "row " << row;
    }
    Image image = imageWithLine(5, 2);
    EXPECT_TRUE(foundAt(extract(image), 1, 2.0));
}

// ---- Search: where

TEST(Cal2DPoint1, FirstAndLastColumnAreNeverSearched) {
    Image everywhere(6, 50);
    everywhere.drawLine(20, {200, 200});
    const Extraction result = extract(everywhere);
    EXPECT_EQ(result.marked, (Columns{1, 2, 3, 4}));
    EXPECT_TRUE(notFound(result, 0));
    EXPECT_TRUE(notFound(result, 5));

    Image atTheEdges(6, 50);
    atTheEdges.drawColumn(0, 20, {200, 200});
    atTheEdges.drawColumn(5, 20, {200, 200});
    EXPECT_EQ(extract(atTheEdges).marked, Columns{});
}

TEST(Cal2DPoint1, SearchStartsAtRowTwo) {
    for (int row : {0, 1}) {
        Image image = imageWithLine(100, row);
        EXPECT_TRUE(notFound(extract(image), 1)) << "row " << row;
    }
    Image image = imageWithLine(100, 2);
    EXPECT_TRUE(foundAt(extract(image), 1, 2.0));
}

TEST(Cal2DPoint1, SearchEndsHalfWindowAndOneRowAboveTheLastRow) {
    struct Case {
        int height;
        int lastSearchedRow;  // height - half window - 2
    };
    // From height 41 on the half window is 20; below, half of the height less one.
    const Case cases[] = {{100, 78}, {43, 21}, {42, 20}, {41, 19}, {40, 19}, {39, 19}, {38, 18},
                          {20, 9},   {10, 4},  {9, 4},   {8, 3},   {7, 3},   {6, 2},   {5, 2}};
    for (const Case& c : cases) {
        Image inside = imageWithLine(c.height, c.lastSearchedRow);
        EXPECT_TRUE(foundAt(extract(inside), 1, c.lastSearchedRow)) << "height " << c.height;
        Image outside = imageWithLine(c.height, c.lastSearchedRow + 1);
        EXPECT_TRUE(notFound(extract(outside), 1)) << "height " << c.height;
    }
}

TEST(Cal2DPoint1, TopmostStripeIsFound) {
    Image image(3, 100);
    image.drawColumn(1, 30, {100, 100});
    image.drawColumn(1, 50, {255, 255, 255});
    EXPECT_TRUE(foundAt(extract(image), 1, 30.5));
}

TEST(Cal2DPoint1, EveryColumnOfAWideFrameIsSearched) {
    // From column to column the stripe jumps by 7 rows down or 43 up, so that it can never be followed.
    const auto stripeRow = [](int column) { return 5 + column * 7 % 50; };
    for (int width = 3; width <= 70; ++width) {
        Image image(width, 100);
        for (int column = 0; column < width; ++column) image.drawColumn(column, stripeRow(column), {200, 200});
        const Extraction result = extract(image);
        for (int column = 1; column < width - 1; ++column)
            EXPECT_TRUE(foundAt(result, column, stripeRow(column) + 0.5)) << "width " << width;
    }
}

// ---- Search: which pixel starts the stripe

TEST(Cal2DPoint1, StartMustBeBrighterThan60) {
    for (int grey : {60, 61}) {
        Image image(3, 100);
        image.at(30, 1) = static_cast<unsigned char>(grey);
        image.at(30, 2) = 200;
        const Extraction result = extract(image);
        EXPECT_TRUE(grey > 60 ? foundAt(result, 1, 30.0) : notFound(result, 1)) << "grey " << grey;
    }
}

struct Neighbour {
    int rowStep;
    int columnStep;
};

TEST(Cal2DPoint1, OneOfFiveNeighboursMustBeBrighterThan60) {
    for (const Neighbour& n : {Neighbour{-1, 1}, {0, 1}, {1, 1}, {-1, 0}, {1, 0}}) {
        Image image(3, 100);
        image.at(2, 1) = 200;  // row 2, so that the pixel above is not a start itself
        image.at(2 + n.rowStep, 1 + n.columnStep) = 60;
        EXPECT_TRUE(notFound(extract(image), 1)) << n.rowStep << ", " << n.columnStep;

        image.at(2 + n.rowStep, 1 + n.columnStep) = 61;
        const bool isBelow = n.rowStep == 1 && n.columnStep == 0;  // then it belongs to the stripe
        EXPECT_TRUE(foundAt(extract(image), 1, isBelow ? 2 + 61 / 261.0 : 2.0)) << n.rowStep << ", " << n.columnStep;
    }
}

TEST(Cal2DPoint1, OtherNeighboursDoNotMakeAStart) {
    for (const Neighbour& n : {Neighbour{-1, -1}, {0, -1}, {1, -1}, {-2, 0}, {2, 0}, {-2, 1}, {2, 1}}) {
        Image image(3, 100);
        image.at(30, 1) = 200;
        image.at(30 + n.rowStep, 1 + n.columnStep) = 200;
        EXPECT_TRUE(notFound(extract(image), 1)) << n.rowStep << ", " << n.columnStep;
    }
}

TEST(Cal2DPoint1, PixelDarkerThanBothVerticalNeighboursIsSkippedAndTheScanGoesOnBelow) {
    Image brighterBelow(3, 100);
    brighterBelow.drawColumn(1, 1, {200, 100, 101});
    EXPECT_TRUE(foundAt(extract(brighterBelow), 1, 3.0));

    Image brighterAbove(3, 100);
    brighterAbove.drawColumn(1, 1, {101, 100, 200});
    EXPECT_TRUE(foundAt(extract(brighterAbove), 1, 3.0));
}

TEST(Cal2DPoint1, PixelAsBrightAsOneVerticalNeighbourIsAStart) {
    Image asBelow(3, 100);
    asBelow.drawColumn(1, 1, {200, 100, 100});
    EXPECT_TRUE(foundAt(extract(asBelow), 1, 2 + 100 / 200.0));

    Image asAbove(3, 100);
    asAbove.drawColumn(1, 1, {100, 100, 200});
    EXPECT_TRUE(foundAt(extract(asAbove), 1, 2 + 200 / 300.0));
}

// ---- Search: which rows make the centroid

TEST(Cal2DPoint1, CentroidIsWeightedByGrey) {
    Image image(3, 100);
    image.drawColumn(1, 30, {100, 200, 70});
    EXPECT_TRUE(foundAt(extract(image), 1, 30 + (1 * 200 + 2 * 70) / 370.0));
}

TEST(Cal2DPoint1, FillAfterASearchKeeps60AndStopsAt59) {
    Image image(3, 100);
    image.at(30, 2) = 200;
    image.drawColumn(1, 30, {100, 60, 60, 59, 200, 200});
    EXPECT_TRUE(foundAt(extract(image), 1, 30 + (1 * 60 + 2 * 60) / 220.0));
}

TEST(Cal2DPoint1, FillAfterASearchNeverGoesUp) {
    Image image(3, 100);
    image.drawColumn(1, 1, {200, 100});  // row 1 is not searched
    EXPECT_TRUE(foundAt(extract(image), 1, 2.0));
}

TEST(Cal2DPoint1, FillAfterASearchTakesAtMost41Rows) {
    Image exact(3, 100);
    Image longer(3, 100);
    for (int row = 10; row <= 50; ++row) exact.at(row, 1) = longer.at(row, 1) = 100;
    longer.at(51, 1) = 255;
    EXPECT_TRUE(foundAt(extract(exact), 1, 30.0));
    EXPECT_TRUE(foundAt(extract(longer), 1, 30.0));

    exact.at(50, 1) = 0;  // one row fewer shows that row 50 counted
    EXPECT_TRUE(foundAt(extract(exact), 1, 29.5));
}

TEST(Cal2DPoint1, FillAfterASearchReachesTheLastRow) {
    Image image(3, 41);
    for (int row = 19; row <= 40; ++row) image.at(row, 1) = 100;
    EXPECT_TRUE(foundAt(extract(image), 1, (19 + 40) / 2.0));
}

// ---- Following: when the stripe continues

TEST(Cal2DPoint1, SingleBrightRowIsFoundByItsRightNeighbourAndFollowed) {
    Image image(8, 60);
    image.drawLine(30, {100});
    const Extraction result = extract(image);
    EXPECT_EQ(result.marked, (Columns{1, 2, 3, 4, 5, 6}));
    for (int column = 1; column <= 6; ++column) EXPECT_TRUE(foundAt(result, column, 30.0));
}

TEST(Cal2DPoint1, SingleBrightRowWithoutARightNeighbourIsNotFound) {
    Image image(5, 60);
    image.at(30, 1) = 100;
    image.at(30, 3) = 100;
    EXPECT_EQ(extract(image).marked, Columns{});
}

TEST(Cal2DPoint1, ReflectionAboveIsIgnoredWhileFollowing) {
    Image image(6, 100);
    image.drawLine(30, {100});
    for (int column : {2, 3, 4}) drawReflection(image, column);
    const Extraction result = extract(image);
    for (int column : {1, 2, 3, 4}) EXPECT_TRUE(foundAt(result, column, 30.0));
}

TEST(Cal2DPoint1, StripeThatFadesToNineTenthsIsSearchedAgain) {
    const auto secondColumn = [](int left, int grey) {
        Image image(4, 100);
        image.at(30, 1) = static_cast<unsigned char>(left);
        image.at(30, 2) = static_cast<unsigned char>(grey);
        drawReflection(image, 2);
        return extract(image);
    };
    for (int left = 70; left <= 250; left += 10) {
        const int nineTenths = left / 10 * 9;
        EXPECT_TRUE(foundAt(secondColumn(left, nineTenths - 1), 2, kReflectionRow)) << "left pixel " << left;
        EXPECT_TRUE(foundAt(secondColumn(left, nineTenths), 2, kReflectionRow)) << "left pixel " << left;
        EXPECT_TRUE(foundAt(secondColumn(left, nineTenths + 1), 2, 30.0)) << "left pixel " << left;
    }
    // 0.9 * 255 = 229.5
    EXPECT_TRUE(foundAt(secondColumn(255, 229), 2, kReflectionRow));
    EXPECT_TRUE(foundAt(secondColumn(255, 230), 2, 30.0));
}

TEST(Cal2DPoint1, FadingIsMeasuredAtThePredictedRowNotAtThePeak) {
    Image image(4, 100);
    image.drawColumn(1, 30, {200, 100, 200});  // centroid 31
    image.at(31, 2) = 91;
    drawReflection(image, 2);
    const Extraction result = extract(image);
    EXPECT_TRUE(foundAt(result, 1, 31.0));
    EXPECT_TRUE(foundAt(result, 2, 31.0));
}

/// Column 1 leads to row 31 with a pixel of 60 there, so that column 2 may continue with 55 or more. What column 2
/// holds is too dark for a search.
Image imageBeforeADimColumn() {
    Image image(4, 100);
    image.drawColumn(1, 29, {100, 100, 60, 100, 100});
    return image;
}

TEST(Cal2DPoint1, StripeContinuesWhenTheMiddlePixelIsAtLeast60) {
    Image image = imageBeforeADimColumn();
    image.at(31, 2) = 59;
    EXPECT_TRUE(notFound(extract(image), 2));
    image.at(31, 2) = 60;
    EXPECT_TRUE(foundAt(extract(image), 2, 31.0));
}

TEST(Cal2DPoint1, StripeContinuesWhenThePixelBelowIsAtLeast60) {
    Image image = imageBeforeADimColumn();
    image.drawColumn(2, 31, {55, 59});
    EXPECT_TRUE(notFound(extract(image), 2));
    image.drawColumn(2, 31, {55, 60});
    EXPECT_TRUE(foundAt(extract(image), 2, 16 + (15 * 55 + 16 * 60) / 115.0));  // window from row 31 - 15
}

TEST(Cal2DPoint1, StripeContinuesWhenThePixelAboveIsAtLeast60) {
    Image image = imageBeforeADimColumn();
    image.drawColumn(2, 30, {59, 55});
    EXPECT_TRUE(notFound(extract(image), 2));
    image.drawColumn(2, 30, {60, 55});
    EXPECT_TRUE(foundAt(extract(image), 2, 16 + (14 * 60 + 15 * 55) / 115.0));  // window from row 31 - 15
}

TEST(Cal2DPoint1, BrightNeighboursDoNotExcuseAFadedMiddlePixel) {
    Image image = imageBeforeADimColumn();
    image.drawColumn(2, 30, {200, 54, 200});
    EXPECT_TRUE(notFound(extract(image), 2)) << "0.9 * 60 = 54; a search finds no start with a bright neighbour";
    image.drawColumn(2, 30, {200, 55, 200});
    EXPECT_TRUE(foundAt(extract(image), 2, 31.0));
}

TEST(Cal2DPoint1, LostColumnStaysEmptyAndTheNextOneIsSearchedFromTheTop) {
    Image image(5, 100);
    image.drawColumn(1, 30, {200, 200});
    image.drawColumn(3, 30, {200, 200});
    drawReflection(image, 3);
    const Extraction result = extract(image);
    EXPECT_TRUE(foundAt(result, 1, 30.5));
    EXPECT_TRUE(notFound(result, 2));
    EXPECT_TRUE(foundAt(result, 3, kReflectionRow));
}

TEST(Cal2DPoint1, StripeFoundAgainIsFollowedFromItsNewRow) {
    Image image(5, 100);
    image.drawColumn(1, 30, {200, 200});
    image.drawColumn(2, 60, {200, 200});  // centroid 60.5, so row 61 is expected next
    image.drawColumn(3, 61, {200});
    drawReflection(image, 3);
    const Extraction result = extract(image);
    EXPECT_TRUE(foundAt(result, 2, 60.5));
    EXPECT_TRUE(foundAt(result, 3, 61.0));
}

TEST(Cal2DPoint1, StripeBelowTheSearchRowsIsFollowedButNotFoundAgain) {
    // Five rows thick, one row further down per column; the search of a frame of 100 rows ends at row 78.
    const auto draw = [](Image& image, int column, int grey) {
        image.drawColumn(column, 75 + column, {grey, grey, grey, grey, grey});
    };
    Image steady(13, 100);
    Image fading(13, 100);
    for (int column = 1; column < 12; ++column) {
        draw(steady, column, 100);
        draw(fading, column, column < 9 ? 100 : 80);
    }
    const Extraction followed = extract(steady);
    for (int column = 1; column < 12; ++column) EXPECT_TRUE(foundAt(followed, column, 77 + column));
    EXPECT_EQ(extract(fading).marked, (Columns{1, 2, 3, 4, 5, 6, 7, 8}));
}

// ---- Following: the predicted row

TEST(Cal2DPoint1, PredictedRowIsTheCentroidRoundedHalfUp) {
    Image half(4, 100);
    half.drawColumn(1, 30, {100, 100});  // 30.5
    half.at(31, 2) = 100;
    drawReflection(half, 2);
    EXPECT_TRUE(foundAt(extract(half), 2, 31.0));

    Image belowHalf(4, 100);
    belowHalf.drawColumn(1, 30, {101, 100});  // 30.4975
    belowHalf.at(30, 2) = 100;
    drawReflection(belowHalf, 2);
    EXPECT_TRUE(foundAt(extract(belowHalf), 2, 30.0));
}

TEST(Cal2DPoint1, RowOneIsFollowed) {
    Image image(5, 41);
    image.at(2, 1) = 61;
    image.drawColumn(2, 1, {255, 61});
    image.at(1, 3) = 255;
    const Extraction result = extract(image);
    EXPECT_TRUE(foundAt(result, 2, (1 * 255 + 2 * 61) / 316.0));  // 1.19
    EXPECT_TRUE(foundAt(result, 3, 1.0));
}

TEST(Cal2DPoint1, CentroidThatRoundsToRowZeroEndsTheFrame) {
    Image image(8, 41);
    image.at(2, 1) = 61;
    image.drawColumn(2, 0, {255, 61, 61});
    for (int column = 3; column < 8; ++column) image.drawColumn(column, 10, {200, 200});
    const Extraction result = extract(image);
    EXPECT_TRUE(foundAt(result, 2, (1 * 61 + 2 * 61) / 377.0));  // 0.485
    EXPECT_EQ(result.marked, (Columns{1, 2}));

    image.at(0, 2) = 0;  // without the bright row 0 the centroid is 1.5, and the other columns are found
    EXPECT_EQ(extract(image).marked, (Columns{1, 2, 3, 4, 5, 6}));
}

TEST(Cal2DPoint1, CentroidThatRoundsToTheLastRowEndsTheFrame) {
    Image image(6, 5);
    image.drawLine(2, {61, 61, 255});
    const Extraction result = extract(image);
    EXPECT_TRUE(foundAt(result, 1, 2 + (1 * 61 + 2 * 255) / 377.0));  // 3.51
    EXPECT_EQ(result.marked, Columns{1});
}

TEST(Cal2DPoint1, CentroidThatRoundsToTheRowBeforeTheLastIsFollowed) {
    Image image(6, 5);
    image.drawLine(2, {61, 61, 61});
    const Extraction result = extract(image);
    EXPECT_EQ(result.marked, (Columns{1, 2, 3, 4}));
    EXPECT_TRUE(foundAt(result, 4, 3.0));
}

// ---- Following: which rows make the centroid

TEST(Cal2DPoint1, MiddlePixelCountsWhateverItsValue) {
    Image image = imageBeforeADimColumn();
    image.drawColumn(2, 30, {100, 55, 200});
    EXPECT_TRUE(foundAt(extract(image), 2, 16 + (14 * 100 + 15 * 55 + 16 * 200) / 355.0));
}

TEST(Cal2DPoint1, FillWhileFollowingKeeps60AndStopsAt59OnEitherSide) {
    Image image(4, 100);
    image.at(30, 1) = 100;
    image.drawColumn(2, 27, {200, 59, 60, 100, 60, 60, 59, 200});
    EXPECT_TRUE(foundAt(extract(image), 2, 15 + (14 * 60 + 15 * 100 + 16 * 60 + 17 * 60) / 280.0));
}

TEST(Cal2DPoint1, WindowReaches15RowsToEitherSide) {
    Image down(4, 100);
    Image up(4, 100);
    down.at(40, 1) = up.at(40, 1) = 100;
    for (int i = 0; i <= 20; ++i) down.at(40 + i, 2) = up.at(40 - i, 2) = 100;
    EXPECT_TRUE(foundAt(extract(down), 2, (40 + 55) / 2.0));
    EXPECT_TRUE(foundAt(extract(up), 2, (25 + 40) / 2.0));
}

TEST(Cal2DPoint1, WindowReaches14RowsForAHeightOf40) {
    for (int height : {40, 41}) {
        Image image(4, height);
        image.at(19, 1) = 100;
        for (int row = 19; row < height; ++row) image.at(row, 2) = 100;
        EXPECT_TRUE(foundAt(extract(image), 2, (19 + (height == 40 ? 33 : 34)) / 2.0)) << "height " << height;
    }
}

TEST(Cal2DPoint1, WindowIsTheMiddlePixelAloneForAHeightOfFive) {
    Image image(4, 5);
    image.drawColumn(1, 2, {100, 100});  // row 3 is expected next
    image.drawColumn(2, 2, {100, 100});
    EXPECT_TRUE(foundAt(extract(image), 2, 3.0));
}

TEST(Cal2DPoint1, WindowReachesOneRowForAHeightOfSix) {
    Image image(4, 6);
    image.drawColumn(1, 2, {100, 100});  // row 3 is expected next
    image.drawColumn(2, 1, {100, 100, 100});
    EXPECT_TRUE(foundAt(extract(image), 2, 2.5));
}

TEST(Cal2DPoint1, WindowStaysSymmetricNearTheTop) {
    Image down(4, 100);
    down.at(5, 1) = 100;
    for (int row = 5; row <= 20; ++row) down.at(row, 2) = 100;
    EXPECT_TRUE(foundAt(extract(down), 2, (5 + 10) / 2.0));

    Image up(4, 100);
    up.at(5, 1) = 100;
    for (int row = 0; row <= 5; ++row) up.at(row, 2) = 100;
    EXPECT_TRUE(foundAt(extract(up), 2, (0 + 5) / 2.0));
}

TEST(Cal2DPoint1, WindowStaysSymmetricNearTheBottom) {
    Image image(4, 10);
    image.drawColumn(1, 4, {61, 61, 61, 255, 61, 61});
    image.drawColumn(2, 4, {255, 255, 255, 255, 255, 255});
    const Extraction result = extract(image);
    EXPECT_TRUE(foundAt(result, 1, 4 + (61 * (1 + 2 + 4 + 5) + 255 * 3) / 560.0));  // 6.67
    EXPECT_TRUE(foundAt(result, 2, (5 + 9) / 2.0));
}

TEST(Cal2DPoint1, WindowReachesTheLastRow) {
    // Column 1 fills the rows 70 .. 99, so that row 85 is predicted, 14 rows above the last one.
    Image image(4, 100);
    for (int row = 70; row < 100; ++row) image.at(row, 1) = image.at(row, 2) = 100;
    image.at(99, 2) = 255;
    double sum = 0.0;
    double moment = 0.0;  // about row 71, the window's first
    for (int row = 71; row <= 99; ++row) {
        sum += image.at(row, 2);
        moment += (row - 71) * image.at(row, 2);
    }
    EXPECT_TRUE(foundAt(extract(image), 2, 71 + moment / sum));
}

// ---- Output

TEST(Cal2DPoint1, OffsetsAreAddedToEveryPoint) {
    Image image(5, 100);
    for (int column : {1, 3}) image.drawColumn(column, 30, {100, 200});
    const Extraction result = extract(image, 1000, -50);
    const double row = 30 + 200 / 300.0;
    const Points2d expected{
        {1000.0, -50.0}, {1001.0, row - 50.0}, {1000.0, -50.0}, {1003.0, row - 50.0}, {1000.0, -50.0}};
    EXPECT_TRUE(support::sameBits(result.points, expected));
    EXPECT_EQ(result.marked, (Columns{1, 3}));
}

TEST(Cal2DPoint1, OffsetsAtTheLimitsOfAnIntDoNotWrap) {
    Image image(3, 100);
    image.drawColumn(1, 30, {100, 200});
    const double row = 30 + 200 / 300.0;
    EXPECT_SAME_BITS(extract(image, INT_MAX, INT_MAX).points[1], (Point2d{1.0 + 2147483647.0, row + 2147483647.0}));
    EXPECT_SAME_BITS(extract(image, INT_MIN, INT_MIN).points[1], (Point2d{1.0 - 2147483648.0, row - 2147483648.0}));
}

TEST(Cal2DPoint1, OldContentsAreReplacedByOnePointPerColumn) {
    Image image(5, 100);
    image.at(30, 1) = image.at(30, 2) = 100;
    for (std::size_t oldSize : {0U, 2U, 5U, 100U}) {
        KorvaneLaserAlgo algo;
        setRoi(algo, 5, 100);
        Mask mask(5);
        Points2d points(oldSize, Point2d{-7.0, -8.0});
        algo.Cal2DPoint1(mask.data(), image.data(), points, 0);
        const Points2d expected{{0.0, 0.0}, {1.0, 30.0}, {2.0, 30.0}, {0.0, 0.0}, {0.0, 0.0}};
        EXPECT_TRUE(support::sameBits(points, expected)) << "old size " << oldSize;
    }
}

TEST(Cal2DPoint1, MaskEntriesOfColumnsWithoutAStripeKeepTheirValues) {
    KorvaneLaserAlgo algo;
    setRoi(algo, 7, 100);
    Image image(7, 100);
    image.drawColumn(3, 30, {200, 200});
    Mask mask(7);
    mask[0] = mask[2] = mask[4] = mask[6] = true;
    Points2d points;
    algo.Cal2DPoint1(mask.data(), image.data(), points, 0);
    EXPECT_EQ(mask.marked(), (Columns{0, 2, 3, 4, 6}));
}

TEST(Cal2DPoint1, FrameIsOnlyRead) {
    Image image(8, 60);
    image.drawLine(30, {59, 100, 200, 61});
    const std::vector<unsigned char> before = image.pixels();
    EXPECT_EQ(extract(image).marked.size(), 6U);
    EXPECT_EQ(image.pixels(), before);
}

TEST(Cal2DPoint1, FourthArgumentHasNoEffect) {
    Image image(6, 100);
    image.drawLine(30, {59, 100, 200, 61});
    const Extraction expected = extract(image);
    ASSERT_EQ(expected.marked, (Columns{1, 2, 3, 4}));
    for (int unused : {1, -1, 60, 255, INT_MAX, INT_MIN}) {
        KorvaneLaserAlgo algo;
        setRoi(algo, 6, 100);
        Mask mask(6);
        Points2d points;
        algo.Cal2DPoint1(mask.data(), image.data(), points, unused);
        EXPECT_TRUE(support::sameBits(points, expected.points)) << unused;
        EXPECT_EQ(mask.marked(), expected.marked) << unused;
    }
}

TEST(Cal2DPoint1, EveryCallStartsWithASearchAtColumnOne) {
    Image stripe(4, 100);
    stripe.drawLine(30, {200});
    Image stripeAndReflection(4, 100);
    stripeAndReflection.drawLine(30, {200});
    for (int column = 0; column < 4; ++column) drawReflection(stripeAndReflection, column);

    KorvaneLaserAlgo algo;
    setRoi(algo, 4, 100);
    Mask mask(4);
    Points2d points;
    algo.Cal2DPoint1(mask.data(), stripe.data(), points, 0);
    EXPECT_SAME_BITS(points[2], (Point2d{2.0, 30.0}));
    algo.Cal2DPoint1(mask.data(), stripeAndReflection.data(), points, 0);
    EXPECT_SAME_BITS(points[1], (Point2d{1.0, kReflectionRow}));
}

TEST(Cal2DPoint1, NextCallSeesTheReplacedRegionOfInterest) {
    KorvaneLaserAlgo algo;
    Mask mask(10);
    Points2d points;

    Image wide(10, 50);
    wide.drawLine(20, {200});
    setRoi(algo, 10, 50);
    algo.Cal2DPoint1(mask.data(), wide.data(), points, 0);
    EXPECT_EQ(points.size(), 10U);

    Image narrow(5, 60);
    narrow.drawLine(25, {200});
    setRoi(algo, 5, 60, 100, 1000);
    algo.Cal2DPoint1(mask.data(), narrow.data(), points, 0);
    ASSERT_EQ(points.size(), 5U);
    EXPECT_SAME_BITS(points[3], (Point2d{103.0, 1025.0}));
}

}  // namespace
