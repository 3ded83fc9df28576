// Cal2DPoint4: the frame cut at a threshold, then the grey-weighted mean row of every column, in ROI pixels.

#include <gtest/gtest.h>

#include <climits>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "KorvaneLaserAlgo.h"
#include "extract/Extraction.h"
#include "support/Support.h"

namespace {

using extraction::Columns;
using extraction::Extraction;
using support::Image;
using support::KorvaneLaserAlgo;
using support::Mask;
using support::Point2d;
using support::Points2d;
using support::setRoi;

Extraction extract(Image& image, int threshold, int offsetX = 0, int offsetY = 0) {
    KorvaneLaserAlgo algo;
    setRoi(algo, image.width(), image.height(), offsetX, offsetY);
    Mask mask(image.width());
    Extraction result;
    algo.Cal2DPoint4(mask.data(), image.data(), result.points, threshold);
    result.marked = mask.marked();
    return result;
}

/// The points of columns without a stripe: (column, 0).
Points2d emptyColumns(int width) {
    Points2d points;
    for (int column = 0; column < width; ++column) points.push_back({static_cast<double>(column), 0.0});
    return points;
}

/// Divided in single precision, then widened.
double meanInSinglePrecision(float moment, float sum) {
    return static_cast<double>(moment / sum);
}

// ---- Threshold

TEST(Cal2DPoint4, ThresholdOfZeroOrLessChangesNoPixel) {
    for (int threshold : {0, -1, -256, INT_MIN}) {
        Image image(3, 5);
        image.drawLine(0, {0, 1, 60, 254, 255});
        const std::vector<unsigned char> before = image.pixels();
        const Extraction result = extract(image, threshold);
        EXPECT_EQ(image.pixels(), before) << "threshold " << threshold;
        EXPECT_EQ(result.marked, (Columns{0, 1, 2})) << "threshold " << threshold;
    }
}

TEST(Cal2DPoint4, ThresholdOf256OrMoreZeroesTheWholeImage) {
    for (int threshold : {256, 257, 1000, INT_MAX}) {
        Image image(5, 7, 255);
        const Extraction result = extract(image, threshold);
        EXPECT_EQ(image.pixels(), std::vector<unsigned char>(35, 0)) << "threshold " << threshold;
        EXPECT_TRUE(support::sameBits(result.points, emptyColumns(5))) << "threshold " << threshold;
        EXPECT_EQ(result.marked, Columns{}) << "threshold " << threshold;
    }
}

TEST(Cal2DPoint4, ImageHoldsZeroWhereItHeldAValueBelowTheThreshold) {
    Image image(16, 16);
    for (int row = 0; row < 16; ++row) {
        for (int column = 0; column < 16; ++column)
            image.at(row, column) = static_cast<unsigned char>(16 * row + column);  // every grey value once
    }
    for (int threshold : {1, 2, 60, 128, 129, 200, 254, 255}) {
        Image cut = image;
        extract(cut, threshold);
        for (int grey = 0; grey < 256; ++grey)
            ASSERT_EQ(cut.at(grey / 16, grey % 16), grey < threshold ? 0 : grey) << "threshold " << threshold;
    }
}

TEST(Cal2DPoint4, PixelsBelowTheThresholdDoNotWeigh) {
    Image image(1, 50);
    image.drawColumn(0, 30, {99, 100, 200, 99, 98});
    const Extraction result = extract(image, 100);
    EXPECT_SAME_BITS(result.points[0], (Point2d{0.0, meanInSinglePrecision(31 * 100.0F + 32 * 200.0F, 300.0F)}));
}

// ---- Mean row

TEST(Cal2DPoint4, OnePixelOf200AtRow37GivesRow37) {
    Image image(6, 60, 99);
    image.at(37, 4) = 200;
    const Extraction result = extract(image, 100);
    EXPECT_SAME_BITS(result.points[4], (Point2d{4.0, 37.0}));
    EXPECT_EQ(result.marked, Columns{4});
}

TEST(Cal2DPoint4, EqualValuesAtRows10And11GiveRow10AndAHalf) {
    Image image(6, 60);
    image.drawColumn(4, 10, {150, 150});
    EXPECT_SAME_BITS(extract(image, 100).points[4], (Point2d{4.0, 10.5}));
}

TEST(Cal2DPoint4, MeanRowIsWeightedByGrey) {
    Image image(1, 60);
    image.at(10, 0) = 100;
    image.at(14, 0) = 200;
    // In single precision 3800 / 300 is 12.66666698...
    const double expected = meanInSinglePrecision(3800.0F, 300.0F);
    ASSERT_NE(expected, 3800.0 / 300.0);
    EXPECT_SAME_BITS(extract(image, 100).points[0], (Point2d{0.0, expected}));
}

TEST(Cal2DPoint4, AllBrightRowsOfAColumnCountAcrossGaps) {
    Image image(1, 60);
    image.drawColumn(0, 10, {200});
    image.drawColumn(0, 50, {200});
    EXPECT_SAME_BITS(extract(image, 100).points[0], (Point2d{0.0, 30.0}));
}

TEST(Cal2DPoint4, FirstAndLastRowAndColumnCount) {
    Image image(3, 5);
    for (int column : {0, 2}) {
        image.at(0, column) = 200;
        image.at(4, column) = 200;
    }
    const Extraction result = extract(image, 100);
    const Points2d expected{{0.0, 2.0}, {1.0, 0.0}, {2.0, 2.0}};
    EXPECT_TRUE(support::sameBits(result.points, expected));
    EXPECT_EQ(result.marked, (Columns{0, 2}));
}

TEST(Cal2DPoint4, EveryColumnOfAWideFrameHasItsOwnMean) {
    const auto stripeRow = [](int column) { return 1 + column * 7 % 50; };
    for (int width = 1; width <= 70; ++width) {
        Image image(width, 60, 20);
        for (int column = 0; column < width; ++column)
            image.drawColumn(column, stripeRow(column), {100, 101 + column, 100});
        const Extraction result = extract(image, 100);
        ASSERT_EQ(result.points.size(), static_cast<std::size_t>(width));
        ASSERT_EQ(result.marked.size(), static_cast<std::size_t>(width));
        for (int column = 0; column < width; ++column) {
            const Point2d expected{static_cast<double>(column), stripeRow(column) + 1.0};
            EXPECT_SAME_BITS(result.points[static_cast<std::size_t>(column)], expected) << "width " << width;
        }
    }
}

// ---- Single precision and wide sums

/// The rule for one column, term by term: the sum of row * grey in single precision, divided by the sum of the greys.
double meanRow(Image& image, int column) {
    std::uint32_t sum = 0;
    float moment = 0.0F;
    for (int row = 0; row < image.height(); ++row) {
        const std::uint32_t grey = image.at(row, column);
        sum += grey;
        moment += static_cast<float>(std::int64_t{row} * grey);
    }
    return sum == 0 ? 0.0 : meanInSinglePrecision(moment, static_cast<float>(sum));
}

TEST(Cal2DPoint4, MomentIsSummedInSinglePrecisionFromTheTop) {
    Image image(2, 700);
    double exactMoment = 0.0;
    double sum = 0.0;
    for (int row = 0; row < 700; ++row) {
        const int grey = 101 + row * 37 % 154;
        image.at(row, 0) = image.at(699 - row, 1) = static_cast<unsigned char>(grey);
        exactMoment += 1.0 * row * grey;
        sum += grey;
    }
    // The sum exceeds 2^24, so terms are rounded as they are added.
    const double expected = meanRow(image, 0);
    ASSERT_NE(expected, meanInSinglePrecision(static_cast<float>(exactMoment), static_cast<float>(sum)));

    const Extraction result = extract(image, 100);
    EXPECT_SAME_BITS(result.points[0], (Point2d{0.0, expected}));
    EXPECT_SAME_BITS(result.points[1], (Point2d{1.0, meanRow(image, 1)}));
}

TEST(Cal2DPoint4, ProductsAndSumsOfGreysBeyond31BitsDoNotWrap) {
    // The last product is 9e6 * 255 = 2.3e9, and so is the sum of the greys: both exceed a signed 32-bit integer.
    Image image(1, 9'000'000, 255);
    const double expected = meanRow(image, 0);
    ASSERT_GT(expected, 4'000'000.0);
    const Extraction result = extract(image, 0);
    EXPECT_SAME_BITS(result.points[0], (Point2d{0.0, expected}));
    EXPECT_EQ(result.marked, Columns{0});
}

TEST(Cal2DPoint4, SumOfGreysIsTakenModulo32Bits) {
    // 16843009 * 255 + 1 = 2^32, so the sum is 0, which counts as a column without a stripe.
    Image image(1, 16'843'010, 255);
    image.at(16'843'009, 0) = 1;
    const Extraction result = extract(image, 0);
    EXPECT_SAME_BITS(result.points[0], (Point2d{0.0, 0.0}));
    EXPECT_EQ(result.marked, Columns{});
}

// ---- Mask

TEST(Cal2DPoint4, ColumnWhoseOnlyBrightPixelLiesInRowZeroIsNotMarked) {
    Image image(2, 5);
    image.at(0, 0) = 255;
    image.drawColumn(1, 0, {255, 100});
    const Extraction result = extract(image, 100);
    EXPECT_SAME_BITS(result.points[0], (Point2d{0.0, 0.0}));
    EXPECT_SAME_BITS(result.points[1], (Point2d{1.0, meanInSinglePrecision(100.0F, 355.0F)}));
    EXPECT_EQ(result.marked, Columns{1});
}

TEST(Cal2DPoint4, MaskEntriesOfColumnsWithoutAStripeKeepTheirValues) {
    KorvaneLaserAlgo algo;
    setRoi(algo, 5, 20);
    Image image(5, 20);
    image.at(0, 0) = image.at(0, 1) = 200;  // row 0: (column, 0)
    image.at(10, 2) = 200;
    Mask mask(5);
    mask[0] = mask[4] = true;
    Points2d points;
    algo.Cal2DPoint4(mask.data(), image.data(), points, 100);
    EXPECT_EQ(mask.marked(), (Columns{0, 2, 4}));
}

// ---- Points and sizes

TEST(Cal2DPoint4, PointsAreInRoiPixelsWhateverTheOffsets) {
    for (int offset : {1, -1, 1000, INT_MAX, INT_MIN}) {
        Image image(4, 20);
        image.at(10, 2) = 200;
        const Extraction result = extract(image, 100, offset, offset);
        const Points2d expected{{0.0, 0.0}, {1.0, 0.0}, {2.0, 10.0}, {3.0, 0.0}};
        EXPECT_TRUE(support::sameBits(result.points, expected)) << "offset " << offset;
    }
}

TEST(Cal2DPoint4, OldContentsAreReplacedByOnePointPerColumn) {
    for (std::size_t oldSize : {0U, 2U, 4U, 100U}) {
        KorvaneLaserAlgo algo;
        setRoi(algo, 4, 20);
        Image image(4, 20);
        image.at(10, 2) = 200;
        Mask mask(4);
        Points2d points(oldSize, Point2d{-7.0, -8.0});
        algo.Cal2DPoint4(mask.data(), image.data(), points, 100);
        const Points2d expected{{0.0, 0.0}, {1.0, 0.0}, {2.0, 10.0}, {3.0, 0.0}};
        EXPECT_TRUE(support::sameBits(points, expected)) << "old size " << oldSize;
    }
}

TEST(Cal2DPoint4, WidthBelowOneYieldsAnEmptyVectorAndLeavesTheBuffers) {
    for (int width : {0, -1, -5, INT_MIN}) {
        KorvaneLaserAlgo algo;
        setRoi(algo, width, 50);
        Image image(1, 1, 50);
        Mask mask(1);
        Points2d points(3, Point2d{1.0, 2.0});
        algo.Cal2DPoint4(mask.data(), image.data(), points, 100);
        EXPECT_TRUE(points.empty()) << "width " << width;
        EXPECT_EQ(mask.marked(), Columns{}) << "width " << width;
        EXPECT_EQ(image.at(0, 0), 50) << "width " << width;
    }
}

TEST(Cal2DPoint4, HeightBelowOneYieldsEmptyColumnsAndLeavesTheImage) {
    for (int height : {0, -1, -5, INT_MIN}) {
        KorvaneLaserAlgo algo;
        setRoi(algo, 3, height, 7, 9);
        Image image(3, 1, 50);
        Mask mask(3);
        Points2d points;
        algo.Cal2DPoint4(mask.data(), image.data(), points, 100);
        EXPECT_TRUE(support::sameBits(points, emptyColumns(3))) << "height " << height;
        EXPECT_EQ(mask.marked(), Columns{}) << "height " << height;
        EXPECT_EQ(image.pixels(), std::vector<unsigned char>(3, 50)) << "height " << height;
    }
}

TEST(Cal2DPoint4, SmallImagesHaveNoBorder) {
    Image onePixel(1, 1, 200);
    const Extraction single = extract(onePixel, 100);
    EXPECT_TRUE(support::sameBits(single.points, emptyColumns(1)));
    EXPECT_EQ(single.marked, Columns{});

    Image twoByTwo(2, 2);
    twoByTwo.at(1, 0) = twoByTwo.at(1, 1) = 200;
    const Extraction result = extract(twoByTwo, 100);
    EXPECT_TRUE(support::sameBits(result.points, Points2d{{0.0, 1.0}, {1.0, 1.0}}));
    EXPECT_EQ(result.marked, (Columns{0, 1}));
}

TEST(Cal2DPoint4, EveryCallStartsAnew) {
    KorvaneLaserAlgo algo;
    setRoi(algo, 2, 20);
    Mask mask(2);
    Points2d points;
    Image first(2, 20);
    first.drawLine(5, {200});
    algo.Cal2DPoint4(mask.data(), first.data(), points, 100);
    Image second(2, 20);
    second.drawLine(15, {200});
    algo.Cal2DPoint4(mask.data(), second.data(), points, 100);
    EXPECT_TRUE(support::sameBits(points, Points2d{{0.0, 15.0}, {1.0, 15.0}}));
}

}  // namespace
