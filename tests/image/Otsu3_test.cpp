#include <algorithm>
#include <climits>
#include <thread>
#include <utility>
#include <vector>

#include "KorvaneLaserAlgo.h"
#include "support/CheckedBuffer.h"
#include "support/Support.h"

using namespace support;

namespace {

// What the caller left in the outputs.
constexpr unsigned char kOldGrey = 7;
constexpr int kOldLabel = -3;

using Bytes = std::vector<unsigned char>;

/// The output after one call. Also checks that a label is 1 where a pixel was written, and the old one elsewhere: a
/// selected pixel is above 60, so it never reads as the old grey value.
Image selectStripe(Image& src) {
    KorvaneLaserAlgo algo;
    setRoi(algo, src.width(), src.height());
    Image out(src.width(), src.height(), kOldGrey);
    GuardedBuffer<int> labels(out.pixels().size(), kOldLabel);
    algo.Otsu3(out.data(), labels.data(), src.data());

    EXPECT_TRUE(labels.guardsIntact());
    std::size_t i = 0;
    for (unsigned char grey : out.pixels()) {
        EXPECT_EQ(labels[i], grey == kOldGrey ? kOldLabel : 1) << "pixel " << i;
        ++i;
    }
    return out;
}

/// Sets a stretch of a column to one grey value.
void fillColumn(Image& image, int column, int firstRow, int rows, int grey) {
    for (int row = firstRow; row < firstRow + rows; ++row) image.at(row, column) = static_cast<unsigned char>(grey);
}

Bytes columnOf(Image image, int column) {
    Bytes greys;
    for (int row = 0; row < image.height(); ++row) greys.push_back(image.at(row, column));
    return greys;
}

/// A column to tell whether a pixel belongs to the masked band: 250 in the row in question, 100 near the bottom. Where
/// the 250 counts, the threshold is 125 and the 100 is left out; where it is masked, the threshold is 60.
void drawBandProbe(Image& image, int column, int row) {
    image.at(row, column) = 250;
    image.at(image.height() - 1, column) = 100;
}
bool probeIsMasked(Image out, int column) {
    return out.at(out.height() - 1, column) == 100;
}

/// The band of a frame of 8 columns, whose blob is in the first four, covers the rows from 0 to `endRow` - 1.
void expectBandRows(Image src, int endRow) {
    drawBandProbe(src, 4, endRow - 1);
    drawBandProbe(src, 5, endRow);
    drawBandProbe(src, 6, 0);
    const Image out = selectStripe(src);
    EXPECT_TRUE(probeIsMasked(out, 4)) << "row " << endRow - 1;
    EXPECT_FALSE(probeIsMasked(out, 5)) << "row " << endRow;
    EXPECT_TRUE(probeIsMasked(out, 6)) << "row 0";
}

/// The band covers the columns from `firstColumn` to `endColumn` - 1.
void expectBandColumns(Image src, int firstColumn, int endColumn, int row) {
    for (const int column : {firstColumn - 1, firstColumn, endColumn - 1, endColumn}) drawBandProbe(src, column, row);
    const Image out = selectStripe(src);
    EXPECT_FALSE(probeIsMasked(out, firstColumn - 1));
    EXPECT_TRUE(probeIsMasked(out, firstColumn));
    EXPECT_TRUE(probeIsMasked(out, endColumn - 1));
    EXPECT_FALSE(probeIsMasked(out, endColumn));
}

}  // namespace

// The column's own threshold

TEST(Otsu3, ThresholdIsHalfOfTheColumnsOwnGreyRangeRoundedDown) {
    Image src(4, 4);
    src.drawLine(0, {100, 171, 135, 136});  // 100 + 71 / 2 = 135
    EXPECT_EQ(columnOf(selectStripe(src), 0), (Bytes{kOldGrey, 171, kOldGrey, 136}));
}

TEST(Otsu3, ThresholdIsAtLeast60) {
    Image src(4, 4);
    src.drawLine(0, {0, 100, 60, 61});  // half of the range is 50
    EXPECT_EQ(columnOf(selectStripe(src), 0), (Bytes{kOldGrey, 100, kOldGrey, 61}));
}

TEST(Otsu3, ThresholdsAround60FollowTheRangeFrom61On) {
    Image atFloor(4, 4);
    atFloor.drawLine(0, {1, 120, 60, 61});  // 1 + 119 / 2 = 60
    EXPECT_EQ(columnOf(selectStripe(atFloor), 0), (Bytes{kOldGrey, 120, kOldGrey, 61}));

    Image aboveFloor(4, 4);
    aboveFloor.drawLine(0, {0, 122, 61, 62});  // 0 + 122 / 2 = 61
    EXPECT_EQ(columnOf(selectStripe(aboveFloor), 0), (Bytes{kOldGrey, 122, kOldGrey, 62}));
}

TEST(Otsu3, UniformColumnSelectsNothing) {
    Image src(4, 6, 150);  // the threshold is 150 itself
    EXPECT_EQ(selectStripe(src).pixels(), Bytes(4 * 6, kOldGrey));
}

TEST(Otsu3, ColumnAtOrBelow60SelectsNothing) {
    Image src(4, 3);
    src.drawLine(0, {0, 60, 30});
    EXPECT_EQ(selectStripe(src).pixels(), Bytes(4 * 3, kOldGrey));
}

TEST(Otsu3, EveryColumnHasItsOwnThreshold) {
    Image src(4, 4);
    src.drawColumn(0, 0, {0, 200, 100, 101});    // threshold 100
    src.drawColumn(1, 0, {100, 200, 150, 151});  // threshold 150
    src.drawColumn(2, 0, {0, 80, 60, 61});       // threshold 60
    src.drawColumn(3, 0, {250, 254, 252, 253});  // threshold 252
    Image out = selectStripe(src);
    EXPECT_EQ(columnOf(out, 0), (Bytes{kOldGrey, 200, kOldGrey, 101}));
    EXPECT_EQ(columnOf(out, 1), (Bytes{kOldGrey, 200, kOldGrey, 151}));
    EXPECT_EQ(columnOf(out, 2), (Bytes{kOldGrey, 80, kOldGrey, 61}));
    EXPECT_EQ(columnOf(out, 3), (Bytes{kOldGrey, 254, kOldGrey, 253}));
}

TEST(Otsu3, EveryLargestAndSmallestValueGivesItsThreshold) {
    constexpr int kPairs = 256 * 257 / 2;  // one column each, a multiple of 4
    Image src(kPairs, 4);
    Image expected(kPairs, 4, kOldGrey);
    int column = 0;
    for (int smallest = 0; smallest < 256; ++smallest) {
        for (int largest = smallest; largest < 256; ++largest, ++column) {
            const int threshold = std::max(smallest + (largest - smallest) / 2, 60);
            const int atThreshold = std::min(threshold, largest);
            const int justAbove = std::min(threshold + 1, largest);
            src.drawColumn(column, 0, {smallest, largest, atThreshold, justAbove});
            if (largest > threshold) {
                expected.at(1, column) = static_cast<unsigned char>(largest);
                expected.at(3, column) = static_cast<unsigned char>(justAbove);
            }
        }
    }
    ASSERT_EQ(column, kPairs);
    EXPECT_EQ(selectStripe(src).pixels(), expected.pixels());
}

TEST(Otsu3, FirstAndLastRowCountAndAreSelected) {
    Image src(4, 5);
    src.drawLine(0, {140, 0, 0, 0, 150});  // threshold 75
    EXPECT_EQ(columnOf(selectStripe(src), 1), (Bytes{140, kOldGrey, kOldGrey, kOldGrey, 150}));
}

// The four quarters

TEST(Otsu3, OfWidth10Columns8And9AreNeverThresholded) {
    Image src(10, 3);
    src.drawLine(0, {0, 200, 0});
    Image out = selectStripe(src);
    for (int x = 0; x < 8; ++x) EXPECT_EQ(out.at(1, x), 200) << "column " << x;
    EXPECT_EQ(columnOf(out, 8), Bytes(3, kOldGrey));
    EXPECT_EQ(columnOf(out, 9), Bytes(3, kOldGrey));
}

TEST(Otsu3, LastWidthMod4ColumnsAreNeverThresholded) {
    for (int width = 1; width <= 150; ++width) {
        Image src(width, 3);
        src.drawLine(0, {0, 200, 0});
        Image out = selectStripe(src);
        for (int x = 0; x < width; ++x)
            ASSERT_EQ(out.at(1, x), x < width - width % 4 ? 200 : kOldGrey) << "width " << width << ", column " << x;
    }
}

TEST(Otsu3, FewerThan4ColumnsLoseTheirBlobButAreNeverThresholded) {
    for (int width : {1, 2, 3}) {
        Image src(width, 40);
        for (int x = 0; x < width; ++x) fillColumn(src, x, 0, 30, 200);
        src.at(35, 0) = 150;
        EXPECT_EQ(selectStripe(src).pixels(), Bytes(src.pixels().size(), kOldGrey)) << "width " << width;
        for (int x = 0; x < width; ++x) EXPECT_EQ(src.at(29, x), 0) << "width " << width;
        EXPECT_EQ(src.at(35, 0), 150) << "width " << width;
    }
}

TEST(Otsu3, BlobIsAlsoRemovedFromTheColumnsThatAreNotThresholded) {
    Image src(6, 40);
    fillColumn(src, 5, 0, 30, 200);
    selectStripe(src);
    EXPECT_EQ(columnOf(src, 5), Bytes(40, 0));
}

// The blob at the top edge

TEST(Otsu3, TopRunOf29BrightRowsIsNotRemoved) {
    Image src(4, 40);
    fillColumn(src, 1, 0, 29, 200);
    const Bytes before = src.pixels();
    Image out = selectStripe(src);
    EXPECT_EQ(src.pixels(), before);
    EXPECT_EQ(out.at(0, 1), 200);
    EXPECT_EQ(out.at(28, 1), 200);
}

TEST(Otsu3, TopRunOf30BrightRowsIsRemovedAndItsPixelsSetTo0InTheSource) {
    Image src(4, 40, 20);
    fillColumn(src, 1, 0, 30, 200);
    Image out = selectStripe(src);

    Bytes expected(40, 20);
    std::fill(expected.begin(), expected.begin() + 30, static_cast<unsigned char>(0));
    EXPECT_EQ(columnOf(src, 1), expected);
    EXPECT_EQ(columnOf(out, 1), Bytes(40, kOldGrey));
    EXPECT_EQ(columnOf(src, 0), Bytes(40, 20));
}

TEST(Otsu3, BrightMeansGreaterThan180) {
    Image bright(4, 40);
    fillColumn(bright, 0, 0, 30, 181);
    selectStripe(bright);
    EXPECT_EQ(columnOf(bright, 0), Bytes(40, 0));

    Image dim(4, 40);
    fillColumn(dim, 0, 0, 30, 180);
    const Bytes before = dim.pixels();
    Image out = selectStripe(dim);
    EXPECT_EQ(dim.pixels(), before);
    EXPECT_EQ(out.at(29, 0), 180);
}

TEST(Otsu3, RunEndsAtTheFirstPixelOf180) {
    Image src(4, 80);
    fillColumn(src, 0, 0, 35, 200);
    src.at(35, 0) = 180;
    fillColumn(src, 0, 36, 40, 200);
    Image out = selectStripe(src);

    EXPECT_EQ(src.at(34, 0), 0);
    EXPECT_EQ(src.at(35, 0), 180);
    EXPECT_EQ(src.at(36, 0), 200);
    EXPECT_EQ(out.at(34, 0), kOldGrey);
    EXPECT_EQ(out.at(36, 0), 200);
}

TEST(Otsu3, RunInterruptedInItsRow29IsNotRemoved) {
    Image src(4, 80);
    fillColumn(src, 0, 0, 70, 200);
    src.at(29, 0) = 0;  // 29 bright rows above it
    const Bytes before = src.pixels();
    selectStripe(src);
    EXPECT_EQ(src.pixels(), before);
}

TEST(Otsu3, BrightColumnsThatDoNotStartAtRow0AreNotPartOfTheBlob) {
    Image src(4, 60);
    fillColumn(src, 0, 1, 59, 200);
    fillColumn(src, 1, 10, 40, 255);
    const Bytes before = src.pixels();
    Image out = selectStripe(src);
    EXPECT_EQ(src.pixels(), before);
    EXPECT_EQ(out.at(1, 0), 200);
    EXPECT_EQ(out.at(10, 1), 255);
}

TEST(Otsu3, RunThatReachesTheLastRowIsRemovedWithThatRow) {
    for (int height : {30, 31, 64}) {
        Image src(4, height, 200);
        EXPECT_EQ(selectStripe(src).pixels(), Bytes(src.pixels().size(), kOldGrey)) << "height " << height;
        EXPECT_EQ(src.pixels(), Bytes(src.pixels().size(), 0)) << "height " << height;
    }
}

TEST(Otsu3, ImageOf29RowsHasNoBlob) {
    Image src(4, 29, 200);
    src.at(28, 2) = 0;
    const Bytes before = src.pixels();
    Image out = selectStripe(src);
    EXPECT_EQ(src.pixels(), before);
    EXPECT_EQ(out.at(0, 2), 200);
    EXPECT_EQ(out.at(0, 1), kOldGrey);  // a uniform column
}

TEST(Otsu3, RemovedRunDoesNotCountForItsColumnsGreyRange) {
    Image src(4, 40);
    fillColumn(src, 0, 0, 30, 200);
    fillColumn(src, 0, 30, 5, 100);
    fillColumn(src, 0, 35, 5, 170);
    Image out = selectStripe(src);
    // 100 .. 170: threshold 135. With the removed rows' 0 it would be 85, with their 200 it would be 150.
    EXPECT_EQ(out.at(34, 0), kOldGrey);
    EXPECT_EQ(out.at(35, 0), 170);
    EXPECT_EQ(out.at(0, 0), kOldGrey);

    Image brighter(4, 40);
    fillColumn(brighter, 0, 0, 30, 255);
    fillColumn(brighter, 0, 30, 5, 100);
    fillColumn(brighter, 0, 35, 5, 170);
    EXPECT_EQ(selectStripe(brighter).at(35, 0), 170);  // with the removed 255 the threshold would be 177
}

TEST(Otsu3, DiscardedRunStillCountsForItsColumnsGreyRange) {
    Image src(4, 40);
    fillColumn(src, 0, 0, 29, 250);
    src.at(35, 0) = 120;  // 0 .. 250: threshold 125
    EXPECT_EQ(selectStripe(src).at(35, 0), kOldGrey);
}

TEST(Otsu3, ColumnWhosePixelsAreAllMaskedSelectsNothing) {
    // A column is masked whole only where its top run reaches the last row, so all its pixels read 0 by then and none
    // is above 128, the threshold of an empty range.
    Image src(8, 60, 30);
    for (int x = 0; x < 4; ++x) fillColumn(src, x, 0, 60, 255);
    Image out = selectStripe(src);
    for (int x = 0; x < 4; ++x) {
        EXPECT_EQ(columnOf(out, x), Bytes(60, kOldGrey)) << "column " << x;
        EXPECT_EQ(columnOf(src, x), Bytes(60, 0)) << "column " << x;
    }
}

// The masked band around the blob

TEST(Otsu3, BlobOf100PixelsOrFewerSetsNoBand) {
    Image src(8, 60);
    fillColumn(src, 0, 0, 50, 200);
    fillColumn(src, 1, 0, 50, 200);
    drawBandProbe(src, 4, 10);
    Image out = selectStripe(src);
    ASSERT_EQ(src.at(49, 1), 0);
    EXPECT_FALSE(probeIsMasked(out, 4));
    EXPECT_EQ(out.at(10, 4), 250);
}

TEST(Otsu3, BlobOf101PixelsSetsABand) {
    Image src(8, 60);
    fillColumn(src, 0, 0, 50, 200);
    fillColumn(src, 1, 0, 51, 200);
    drawBandProbe(src, 4, 10);
    Image out = selectStripe(src);
    EXPECT_TRUE(probeIsMasked(out, 4));
}

TEST(Otsu3, RunsOf29RowsDoNotCountForTheBlob) {
    Image src(8, 60);
    for (int x = 0; x < 4; ++x) fillColumn(src, x, 0, 29, 200);  // 116 pixels
    drawBandProbe(src, 4, 10);
    EXPECT_FALSE(probeIsMasked(selectStripe(src), 4));
}

TEST(Otsu3, MaskedPixelsAreSelectedAllTheSame) {
    Image src(8, 60);
    for (int x = 0; x < 4; ++x) fillColumn(src, x, 0, 30, 200);
    drawBandProbe(src, 4, 10);
    Image out = selectStripe(src);
    ASSERT_TRUE(probeIsMasked(out, 4));
    EXPECT_EQ(out.at(10, 4), 250);
    EXPECT_EQ(src.at(10, 4), 250);  // only the blob itself is set to 0
}

TEST(Otsu3, BandEndsASixthOfTheHeightBelowTheBlobsCentre) {
    // Runs of 30 rows: centre row 435 / 30 = 14, so the band ends before row 14 + 60 / 6 = 24.
    Image src(8, 60);
    for (int x = 0; x < 4; ++x) fillColumn(src, x, 0, 30, 200);
    expectBandRows(src, 24);
}

TEST(Otsu3, SixthOfTheHeightIsRoundedDown) {
    // 65 / 6 = 10 and not 10.8: the band ends before row 24 still.
    Image src(8, 65);
    for (int x = 0; x < 4; ++x) fillColumn(src, x, 0, 30, 200);
    expectBandRows(src, 24);
}

TEST(Otsu3, BandReachesAtMostTheMiddleRow) {
    // Runs of 60 rows: centre row 29, and 29 + 10 lies beyond 65 / 2 = 32.
    Image src(8, 65);
    fillColumn(src, 0, 0, 60, 200);
    fillColumn(src, 1, 0, 60, 200);
    expectBandRows(src, 32);
}

TEST(Otsu3, BlobOverTheWholeHeightHasItsBandAboveTheMiddleRow) {
    // The deepest possible centre: rows 0 .. 60 on average row 30 = 61 / 2, so the band is rows 0 .. 29.
    Image src(8, 61);
    fillColumn(src, 0, 0, 61, 200);
    fillColumn(src, 1, 0, 61, 200);
    expectBandRows(src, 30);
}

TEST(Otsu3, CentreRowIsTheMeanOfAllBlobPixels) {
    // 2 columns of 90 rows (sum 4005 each) and 2 of 30 (sum 435 each): 8880 / 240 = 37; the band ends at 37 + 30 = 67.
    // The mean over the columns' own centres would be 29 and end at 59.
    Image src(8, 180);
    for (int x = 0; x < 4; ++x) fillColumn(src, x, 0, x < 2 ? 90 : 30, 200);
    expectBandRows(src, 67);
}

TEST(Otsu3, CentreRowOfTheBlobIsRoundedDown) {
    // Runs of 50 and 72 rows: (1225 + 2556) / 122 = 30.99, so the band ends before row 30 + 180 / 6 = 60.
    Image src(8, 180);
    fillColumn(src, 0, 0, 50, 200);
    fillColumn(src, 1, 0, 72, 200);
    expectBandRows(src, 60);
}

TEST(Otsu3, CentreOfASymmetricalBlobIsItsMiddleColumn) {
    // Columns 599 .. 601, so the band is columns 100 .. 1099.
    Image src(1204, 60);
    for (int column : {599, 600, 601}) fillColumn(src, column, 0, 40, 200);
    expectBandColumns(src, 100, 1100, 0);
}

TEST(Otsu3, CentreColumnOfTheBlobIsRoundedDown) {
    // 31, 40 and 30 pixels in the columns 600 .. 602: 600 + 100 / 101. The band reaches 500 columns to either side.
    Image src(1104, 60);
    fillColumn(src, 600, 0, 31, 200);
    fillColumn(src, 601, 0, 40, 200);
    fillColumn(src, 602, 0, 30, 200);
    expectBandColumns(src, 100, 1100, 0);
}

TEST(Otsu3, LastColumnIsNeverInTheBand) {
    Image src(8, 60);
    for (int x = 0; x < 4; ++x) fillColumn(src, x, 0, 30, 200);
    drawBandProbe(src, 6, 10);
    drawBandProbe(src, 7, 10);
    Image out = selectStripe(src);
    EXPECT_TRUE(probeIsMasked(out, 6));
    EXPECT_FALSE(probeIsMasked(out, 7));
}

TEST(Otsu3, BandRunsFrom500ColumnsBeforeTheBlobsCentreUpTo500AfterIt) {
    // Columns 598 .. 601 on average 599.5, rounded down to 599: the band is columns 99 .. 1098.
    Image src(1204, 60);
    for (int x = 598; x <= 601; ++x) fillColumn(src, x, 0, 30, 200);
    expectBandColumns(src, 99, 1099, 10);
}

TEST(Otsu3, BandIsCutAtTheLeftAndRightEdges) {
    // Blob at the left edge (centre column 1): columns 0 .. 500.
    Image left(1204, 60);
    for (int x = 0; x < 4; ++x) fillColumn(left, x, 0, 30, 200);
    for (int x : {4, 500, 501, 1203}) drawBandProbe(left, x, 10);
    Image outLeft = selectStripe(left);
    EXPECT_TRUE(probeIsMasked(outLeft, 4));
    EXPECT_TRUE(probeIsMasked(outLeft, 500));
    EXPECT_FALSE(probeIsMasked(outLeft, 501));
    EXPECT_FALSE(probeIsMasked(outLeft, 1203));

    // Blob at the right edge (centre column 1200): columns 700 .. 1202.
    Image right(1204, 60);
    for (int x = 1199; x < 1203; ++x) fillColumn(right, x, 0, 30, 200);
    for (int x : {699, 700, 1198, 1203}) drawBandProbe(right, x, 10);
    Image outRight = selectStripe(right);
    EXPECT_FALSE(probeIsMasked(outRight, 699));
    EXPECT_TRUE(probeIsMasked(outRight, 700));
    EXPECT_TRUE(probeIsMasked(outRight, 1198));
    EXPECT_FALSE(probeIsMasked(outRight, 1203));
}

TEST(Otsu3, SumOfTheBlobsRowsDoesNotOverflowInALargeImage) {
    // 260 columns of 4096 rows: the row sum 260 * 4095 * 4096 / 2 = 2 180 505 600 exceeds an int. Centre row 2047,
    // band up to row 2048.
    Image src(264, 4096);
    for (int x = 0; x < 264; ++x) fillColumn(src, x, 0, x >= 130 && x < 134 ? 0 : 4096, 200);
    drawBandProbe(src, 130, 2047);
    drawBandProbe(src, 131, 2048);
    Image out = selectStripe(src);
    EXPECT_TRUE(probeIsMasked(out, 130));
    EXPECT_FALSE(probeIsMasked(out, 131));
}

TEST(Otsu3, SumOfTheBlobsColumnsDoesNotOverflowInALargeImage) {
    // 300 rows of columns 0 .. 4095 but for five whose numbers add up to 10218: the column sum
    // 300 * (8386560 - 10218) = 2 512 902 600 exceeds an int. Centre column 2047: the band is columns 1547 .. 2546.
    Image src(4096, 300);
    const std::vector<int> gaps = {1546, 1547, 2032, 2546, 2547};
    for (int x = 0; x < 4096; ++x) {
        if (std::find(gaps.begin(), gaps.end(), x) == gaps.end()) fillColumn(src, x, 0, 300, 200);
    }
    for (int x : gaps) drawBandProbe(src, x, 10);
    Image out = selectStripe(src);
    EXPECT_FALSE(probeIsMasked(out, 1546));
    EXPECT_TRUE(probeIsMasked(out, 1547));
    EXPECT_TRUE(probeIsMasked(out, 2032));
    EXPECT_TRUE(probeIsMasked(out, 2546));
    EXPECT_FALSE(probeIsMasked(out, 2547));
}

// Buffers, sizes, objects

TEST(Otsu3, UnselectedPixelsAndLabelsKeepWhatTheCallerPutThere) {
    Image src(4, 3);
    src.drawColumn(0, 0, {0, 200, 0});
    KorvaneLaserAlgo algo;
    setRoi(algo, 4, 3);
    Image out(4, 3, 99);
    GuardedBuffer<int> labels(12, 42);
    algo.Otsu3(out.data(), labels.data(), src.data());

    for (int i = 0; i < 12; ++i) {
        const bool selected = i == 4;  // row 1, column 0
        EXPECT_EQ(out.pixels()[static_cast<std::size_t>(i)], selected ? 200 : 99) << "pixel " << i;
        EXPECT_EQ(labels[static_cast<std::size_t>(i)], selected ? 1 : 42) << "pixel " << i;
    }
    EXPECT_TRUE(labels.guardsIntact());
}

TEST(Otsu3, SourceWithoutABlobStaysAsItIs) {
    Image src(8, 40, 30);
    for (int x = 0; x < 8; ++x) fillColumn(src, x, 15, 10, 255);
    const Bytes before = src.pixels();
    selectStripe(src);
    EXPECT_EQ(src.pixels(), before);
}

TEST(Otsu3, SizesBelow1LeaveAllBuffersAlone) {
    for (const auto& [width, height] :
         std::vector<std::pair<int, int>>{{0, 0}, {0, 40}, {4, 0}, {-4, -40}, {-4, 40}, {4, -40}}) {
        KorvaneLaserAlgo algo;
        setRoi(algo, width, height);
        Image src(4, 40, 200);
        src.at(35, 1) = 0;
        const Bytes before = src.pixels();
        Image out(4, 40, kOldGrey);
        GuardedBuffer<int> labels(4 * 40, kOldLabel);
        algo.Otsu3(out.data(), labels.data(), src.data());

        EXPECT_EQ(src.pixels(), before) << width << " x " << height;
        EXPECT_EQ(out.pixels(), Bytes(4 * 40, kOldGrey)) << width << " x " << height;
        for (std::size_t i = 0; i < labels.size(); ++i) ASSERT_EQ(labels[i], kOldLabel) << width << " x " << height;
        EXPECT_TRUE(labels.guardsIntact());
    }
}

TEST(Otsu3, SaturatedFramesBesideInaccessiblePagesAreReadAndWrittenWithinTheirPixels) {
    for (const Placement placement : {Placement::kAtPageStart, Placement::kAtPageEnd}) {
        for (const auto& [width, height] : std::vector<std::pair<int, int>>{{64, 0}, {64, 1}, {64, 32}, {256, 64}}) {
            const std::size_t pixels = static_cast<std::size_t>(width) * static_cast<std::size_t>(height);
            BufferRoom::place(placement);
            CheckedBuffer<unsigned char> src(Bytes(pixels, 255));
            CheckedBuffer<unsigned char> out(Bytes(pixels, kOldGrey));
            CheckedBuffer<int> labels(std::vector<int>(pixels, kOldLabel));
            BufferRoom::place(Placement::kBetweenGuardBytes);

            KorvaneLaserAlgo algo;
            setRoi(algo, width, height);
            algo.Otsu3(out.data(), labels.data(), src.data());
            EXPECT_TRUE(src.guardsIntact()) << width << " x " << height;
            EXPECT_TRUE(out.guardsIntact()) << width << " x " << height;
            EXPECT_TRUE(labels.guardsIntact()) << width << " x " << height;
            const unsigned char left = height < 30 ? 255 : 0;
            EXPECT_EQ(src.values<unsigned char>(), Bytes(pixels, left)) << width << " x " << height;
        }
    }
}

TEST(Otsu3, SingleRowSelectsNothing) {
    Image src(4, 1, 200);  // largest and smallest are one pixel
    EXPECT_EQ(selectStripe(src).pixels(), Bytes(4, kOldGrey));
}

TEST(Otsu3, OffsetsOfTheRegionDoNotMatter) {
    KorvaneLaserAlgo algo;
    setRoi(algo, 4, 2, INT_MAX, INT_MIN);
    Image src(4, 2);
    src.drawLine(0, {0, 200});
    Image out(4, 2, kOldGrey);
    GuardedBuffer<int> labels(8, kOldLabel);
    algo.Otsu3(out.data(), labels.data(), src.data());
    EXPECT_EQ(out.pixels(), (Bytes{kOldGrey, kOldGrey, kOldGrey, kOldGrey, 200, 200, 200, 200}));
}

TEST(Otsu3, TwoObjectsMayWorkOnDifferentFramesAtOnce) {
    Image first(40, 60);
    Image second(40, 60);
    first.drawLine(30, {0, 200, 100});
    second.drawLine(20, {0, 150, 75});
    for (int x = 0; x < 8; ++x) fillColumn(second, x, 0, 40, 250);
    Image firstAgain = first;
    Image secondAgain = second;

    Bytes fromThread;
    std::thread other([&] { fromThread = selectStripe(first).pixels(); });
    const Bytes fromHere = selectStripe(second).pixels();
    other.join();

    EXPECT_EQ(fromThread, selectStripe(firstAgain).pixels());
    EXPECT_EQ(fromHere, selectStripe(secondAgain).pixels());
}
