#include <climits>
#include <utility>
#include <vector>

#include "KorvaneLaserAlgo.h"
#include "support/Support.h"

using namespace support;

namespace {

constexpr unsigned char kOld = 7;  // grey value that the caller left in the output

using Bytes = std::vector<unsigned char>;

Image merged(Image& first, Image& second) {
    KorvaneLaserAlgo algo;
    setRoi(algo, first.width(), first.height());
    Image out(first.width(), first.height(), kOld);
    algo.MergeImg(first.data(), second.data(), out.data());
    return out;
}

}  // namespace

TEST(MergeImg, ColumnWithASinglePixelOf255TakesNothingFromTheSecondImage) {
    Image first(1, 4);
    first.drawColumn(0, 0, {10, 255, 30, 40});
    Image second(1, 4, 200);
    EXPECT_EQ(merged(first, second).pixels(), (Bytes{10, 255, 30, 40}));
}

TEST(MergeImg, ColumnWithoutSaturationTakesEveryPixelOf128OrMoreEvenWhereItIsDarker) {
    Image first(1, 6);
    first.drawColumn(0, 0, {10, 254, 254, 60, 70, 128});
    Image second(1, 6);
    second.drawColumn(0, 0, {128, 128, 253, 255, 0, 129});
    EXPECT_EQ(merged(first, second).pixels(), (Bytes{128, 128, 253, 255, 70, 129}));
}

TEST(MergeImg, SecondPixelOfExactly127IsNotCopied) {
    Image first(1, 3);
    first.drawColumn(0, 0, {10, 20, 200});
    Image second(1, 3);
    second.drawColumn(0, 0, {127, 128, 127});
    EXPECT_EQ(merged(first, second).pixels(), (Bytes{10, 128, 200}));
}

TEST(MergeImg, EveryPairOfGreyValuesFollowsTheRule) {
    // Column x of the first image holds x throughout, row y of the second image holds y throughout.
    Image first(256, 256);
    Image second(256, 256);
    for (int y = 0; y < 256; ++y) {
        for (int x = 0; x < 256; ++x) {
            first.at(y, x) = static_cast<unsigned char>(x);
            second.at(y, x) = static_cast<unsigned char>(y);
        }
    }
    Image out = merged(first, second);
    for (int y = 0; y < 256; ++y) {
        for (int x = 0; x < 256; ++x)
            ASSERT_EQ(out.at(y, x), x < 255 && y >= 128 ? y : x) << "first " << x << ", second " << y;
    }
}

TEST(MergeImg, FirstImageAt254IsNotSaturated) {
    Image first(1, 2, 254);
    Image second(1, 2, 130);
    EXPECT_EQ(merged(first, second).pixels(), (Bytes{130, 130}));
}

TEST(MergeImg, SaturationInTheTopOrTheBottomRowCountsToo) {
    Image first(2, 3, 50);
    first.at(0, 0) = 255;
    first.at(2, 1) = 255;
    Image second(2, 3, 200);
    EXPECT_EQ(merged(first, second).pixels(), first.pixels());
}

TEST(MergeImg, SaturationCountsForItsOwnColumnOnly) {
    Image first(3, 2, 50);
    first.at(1, 1) = 255;
    Image second(3, 2, 200);
    EXPECT_EQ(merged(first, second).pixels(), (Bytes{200, 50, 200,  //
                                                     200, 255, 200}));
}

TEST(MergeImg, SaturationOfTheSecondImageIsTakenOverAndBlocksNothing) {
    Image first(1, 3, 50);
    Image second(1, 3);
    second.drawColumn(0, 0, {255, 255, 140});
    EXPECT_EQ(merged(first, second).pixels(), (Bytes{255, 255, 140}));
}

TEST(MergeImg, SaturatedColumnIsFoundAtEveryPlaceOfWidthsAroundVectorLengths) {
    for (int width = 1; width <= 100; ++width) {
        for (int saturated : {0, width / 2, width - 1}) {
            Image first(width, 2, 50);
            first.at(1, saturated) = 255;
            Image second(width, 2, 200);
            Image out = merged(first, second);
            for (int x = 0; x < width; ++x) {
                ASSERT_EQ(out.at(0, x), x == saturated ? 50 : 200) << "width " << width << ", column " << x;
                ASSERT_EQ(out.at(1, x), x == saturated ? 255 : 200) << "width " << width << ", column " << x;
            }
        }
    }
}

TEST(MergeImg, OldContentsOfTheOutputDoNotMatter) {
    Image first(3, 2, 50);
    Image second(3, 2, 60);
    Image out(3, 2, 255);  // would look saturated
    KorvaneLaserAlgo algo;
    setRoi(algo, 3, 2);
    algo.MergeImg(first.data(), second.data(), out.data());
    EXPECT_EQ(out.pixels(), Bytes(6, 50));
}

TEST(MergeImg, InputsAreOnlyRead) {
    Image first(2, 2);
    first.drawLine(0, {255, 20});
    Image second(2, 2, 200);
    const Bytes firstBefore = first.pixels();
    const Bytes secondBefore = second.pixels();
    merged(first, second);
    EXPECT_EQ(first.pixels(), firstBefore);
    EXPECT_EQ(second.pixels(), secondBefore);
}

TEST(MergeImg, SizesBelow1LeaveTheOutputAlone) {
    for (const auto& [width, height] :
         std::vector<std::pair<int, int>>{{0, 0}, {0, 4}, {4, 0}, {-4, -4}, {-4, 4}, {4, -4}}) {
        KorvaneLaserAlgo algo;
        setRoi(algo, width, height);
        Image first(4, 4, 50);
        Image second(4, 4, 200);
        Image out(4, 4, kOld);
        algo.MergeImg(first.data(), second.data(), out.data());
        EXPECT_EQ(out.pixels(), Bytes(16, kOld)) << width << " x " << height;
    }
}

TEST(MergeImg, OffsetsOfTheRegionDoNotMatter) {
    KorvaneLaserAlgo algo;
    setRoi(algo, 2, 1, INT_MAX, INT_MIN);
    Image first(2, 1);
    first.at(0, 0) = 255;
    Image second(2, 1, 200);
    Image out(2, 1, kOld);
    algo.MergeImg(first.data(), second.data(), out.data());
    EXPECT_EQ(out.pixels(), (Bytes{255, 200}));
}
