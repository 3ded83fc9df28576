// ImageView: the caller's bytes as rows of the region of interest.

#include "algo/ImageView.h"

#include <gtest/gtest.h>

#include <climits>
#include <cstddef>
#include <cstdint>

#include "KorvaneLaserAlgo.h"

namespace {

using KORVANELASERALGO::ImageView;
using KORVANELASERALGO::MutableImageView;
using KORVANELASERALGO::tagKorvaneLaserAlgoROIInfo;

tagKorvaneLaserAlgoROIInfo roiOf(int width, int height) {
    return {100, 200, width, height};
}

TEST(ImageView, PixelOfARowAndAColumnIsByteRowTimesWidthPlusColumn) {
    unsigned char bytes[12];
    for (unsigned char i = 0; i < 12; ++i) bytes[i] = i;
    const ImageView view(roiOf(4, 3), bytes);
    for (int row = 0; row < 3; ++row) {
        for (int column = 0; column < 4; ++column) EXPECT_EQ(view.row(row)[column], row * 4 + column);
    }
}

TEST(ImageView, MutableViewWritesTheCallersBytes) {
    unsigned char bytes[6] = {};
    const MutableImageView view(roiOf(3, 2), bytes);
    view.row(1)[2] = 7;
    EXPECT_EQ(bytes[5], 7);
}

TEST(ImageView, SizesBelowOneCountAsZero) {
    unsigned char byte = 0;
    for (int size : {0, -1, INT_MIN}) {
        EXPECT_EQ(KORVANELASERALGO::columnsOf(roiOf(size, 5)), 0);
        EXPECT_EQ(KORVANELASERALGO::rowsOf(roiOf(5, size)), 0);
        EXPECT_EQ(KORVANELASERALGO::pixelsOf(roiOf(size, 5)), 0U);
        EXPECT_EQ(KORVANELASERALGO::pixelsOf(roiOf(5, size)), 0U);
        EXPECT_EQ(KORVANELASERALGO::pixelsOf(roiOf(size, size)), 0U);
        EXPECT_EQ(ImageView(roiOf(size, 5), &byte).width, 0);
        EXPECT_EQ(ImageView(roiOf(5, size), &byte).height, 0);
    }
    EXPECT_EQ(KORVANELASERALGO::columnsOf(roiOf(1, 5)), 1);
    EXPECT_EQ(KORVANELASERALGO::rowsOf(roiOf(5, 1)), 1);
}

TEST(ImageView, PixelCountsDoNotOverflowAnInt) {
    if (sizeof(std::size_t) < sizeof(std::int64_t)) GTEST_SKIP() << "no such image fits into this processor's memory";
    EXPECT_EQ(KORVANELASERALGO::pixelsOf(roiOf(65536, 65536)), std::uint64_t{1} << 32);
    EXPECT_EQ(KORVANELASERALGO::pixelsOf(roiOf(INT_MAX, INT_MAX)), std::uint64_t{INT_MAX} * INT_MAX);
}

}  // namespace
