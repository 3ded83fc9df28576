// ColumnCentroid: the grey-weighted mean row of pixels of a column, counted from a row of reference.

#include "extract/ColumnCentroid.h"

#include <gtest/gtest.h>

#include <utility>
#include <vector>

#include "support/Support.h"

namespace {

using KORVANELASERALGO::extract::ColumnCentroid;
using support::Point2d;

constexpr Point2d kOldPoint{-7.0, -8.0};

struct Pixel {
    int row;
    int grey;
};

Point2d centroid(int column, int firstRow, const std::vector<Pixel>& pixels) {
    ColumnCentroid centroid(firstRow);
    for (const Pixel& pixel : pixels) centroid.add(pixel.row, pixel.grey);
    Point2d point = kOldPoint;
    centroid.writeTo(point, column);
    return point;
}

TEST(ColumnCentroid, RowIsTheFirstRowPlusTheWeightedMeanIndex) {
    EXPECT_SAME_BITS(centroid(7, 10, {{10, 100}, {11, 200}, {12, 50}}),
                     (Point2d{7.0, 10 + (1 * 200 + 2 * 50) / 350.0}));
}

TEST(ColumnCentroid, OneValueLiesAtItsRow) {
    EXPECT_SAME_BITS(centroid(3, 12, {{12, 200}}), (Point2d{3.0, 12.0}));
}

TEST(ColumnCentroid, MomentIsCountedFromTheRowOfReferenceNotFromTheFirstPixel) {
    // The same row, rounded differently.
    const double fromFive = 5 + (2 * 42 + 3 * 30) / 72.0;
    const double fromSeven = 7 + (1 * 30) / 72.0;
    ASSERT_NE(fromFive, fromSeven);
    EXPECT_SAME_BITS(centroid(0, 5, {{7, 42}, {8, 30}}), (Point2d{0.0, fromFive}));
}

TEST(ColumnCentroid, PixelsMayComeInAnyOrder) {
    EXPECT_SAME_BITS(centroid(1, 4, {{6, 70}, {7, 65}, {5, 61}}),
                     (Point2d{1.0, 4 + (1 * 61 + 2 * 70 + 3 * 65) / 196.0}));
}

TEST(ColumnCentroid, ZerosAreAllowedAnywhere) {
    EXPECT_SAME_BITS(centroid(0, 5, {{5, 0}, {7, 60}, {8, 0}, {9, 60}}), (Point2d{0.0, 8.0}));
}

TEST(ColumnCentroid, AllZeroLeavesThePoint) {
    EXPECT_SAME_BITS(centroid(7, 10, {{10, 0}, {11, 0}}), kOldPoint);
}

TEST(ColumnCentroid, NoPixelsLeaveThePoint) {
    EXPECT_SAME_BITS(centroid(7, 10, {}), kOldPoint);
}

}  // namespace
