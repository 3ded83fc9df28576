// ColumnCentroid: the grey-weighted mean row of a run, counted from its first row.

#include "extract/ColumnCentroid.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

#include "support/Support.h"

namespace {

using KORVANELASERALGO::extract::ColumnCentroid;
using support::Point2d;

constexpr Point2d kOldPoint{-7.0, -8.0};

Point2d centroid(int column, int firstRow, const std::vector<std::uint32_t>& values) {
    Point2d point = kOldPoint;
    ColumnCentroid(column, firstRow, static_cast<int>(values.size()), values.data(), point);
    return point;
}

TEST(ColumnCentroid, RowIsTheFirstRowPlusTheWeightedMeanIndex) {
    EXPECT_SAME_BITS(centroid(7, 10, {100, 200, 50}), (Point2d{7.0, 10 + (1 * 200 + 2 * 50) / 350.0}));
}

TEST(ColumnCentroid, OneValueLiesAtItsRow) {
    EXPECT_SAME_BITS(centroid(3, 12, {200}), (Point2d{3.0, 12.0}));
}

TEST(ColumnCentroid, ZerosAreAllowedAnywhere) {
    EXPECT_SAME_BITS(centroid(0, 5, {0, 0, 60, 0, 60, 0}), (Point2d{0.0, 8.0}));
}

TEST(ColumnCentroid, AllZeroLeavesThePoint) {
    EXPECT_SAME_BITS(centroid(7, 10, {0, 0, 0}), kOldPoint);
}

TEST(ColumnCentroid, NoValuesLeaveThePoint) {
    EXPECT_SAME_BITS(centroid(7, 10, {}), kOldPoint);
}

TEST(ColumnCentroid, OnlyTheCountedValuesAreRead) {
    const std::uint32_t values[] = {100, 100, 200};
    Point2d point = kOldPoint;
    ColumnCentroid(1, 20, 2, values, point);
    EXPECT_SAME_BITS(point, (Point2d{1.0, 20.5}));
}

TEST(ColumnCentroid, MomentIsSummedBeyond32Bits) {
    std::vector<std::uint32_t> values(201, 0);
    values[100] = values[200] = 10'000'000;  // products 1e9 and 2e9, which an int holds; their sum it does not
    EXPECT_SAME_BITS(centroid(0, 4, values), (Point2d{0.0, 4 + 3e9 / 2e7}));
}

TEST(ColumnCentroid, SumIsTakenModulo32Bits) {
    EXPECT_SAME_BITS(centroid(0, 4, {0xFFFFFFFFU, 1}), kOldPoint);
}

TEST(ColumnCentroid, SumIsReadAsSigned) {
    EXPECT_SAME_BITS(centroid(0, 4, {0x7FFFFFFFU, 1}), (Point2d{0.0, 4 + 1 / -2147483648.0}));
}

}  // namespace
