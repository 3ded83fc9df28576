// The counts that bands, blocks and words come in.

#include <gtest/gtest.h>

#include "kernels/kernels.h"

namespace {

using namespace KORVANELASERALGO::kernels;

TEST(BandsOf, AreAsManyAsHoldAllRows) {
    EXPECT_EQ(bandsOf(0), 0);
    EXPECT_EQ(bandsOf(1), 1);
    EXPECT_EQ(bandsOf(kBandRows), 1);
    EXPECT_EQ(bandsOf(kBandRows + 1), 2);
    EXPECT_EQ(bandsOf(5 * kBandRows - 1), 5);
    EXPECT_EQ(bandsOf(5 * kBandRows), 5);
}

TEST(RowsOfBand, AreFewerAtTheEndOfAnImage) {
    EXPECT_EQ(rowsOfBand(0, 3 * kBandRows), kBandRows);
    EXPECT_EQ(rowsOfBand(2 * kBandRows, 3 * kBandRows), kBandRows);
    EXPECT_EQ(rowsOfBand(2 * kBandRows, 3 * kBandRows - 1), kBandRows - 1);
    EXPECT_EQ(rowsOfBand(2 * kBandRows, 2 * kBandRows + 1), 1);
}

TEST(BlocksOf, AreAsManyAsHoldAllColumns) {
    EXPECT_EQ(blocksOf(0), 0);
    EXPECT_EQ(blocksOf(1), 1);
    EXPECT_EQ(blocksOf(kBlockColumns), 1);
    EXPECT_EQ(blocksOf(kBlockColumns + 1), 2);
    EXPECT_EQ(blocksOf(3 * kBlockColumns), 3);
}

TEST(WordsOf, AreAsManyAsHoldABitForEachPixel) {
    EXPECT_EQ(wordsOf(0), 0u);
    EXPECT_EQ(wordsOf(1), 1u);
    EXPECT_EQ(wordsOf(64), 1u);
    EXPECT_EQ(wordsOf(65), 2u);
    EXPECT_EQ(wordsOf(192), 3u);
}

}  // namespace
