#include <climits>
#include <initializer_list>
#include <utility>
#include <vector>

#include "KorvaneLaserAlgo.h"
#include "support/Support.h"

using namespace support;

namespace {

constexpr unsigned char kOld = 7;  // grey value that the caller left in the output

/// The output after one call, from a buffer full of the old grey value.
Image pixelsAbove(int threshold, Image& src) {
    KorvaneLaserAlgo algo;
    setRoi(algo, src.width(), src.height());
    Image out(src.width(), src.height(), kOld);
    algo.Otsu2(threshold, out.data(), src.data());
    return out;
}

/// One row with the given grey values.
Image rowOf(std::initializer_list<int> greys) {
    Image image(static_cast<int>(greys.size()), 1);
    int column = 0;
    for (int grey : greys) image.at(0, column++) = static_cast<unsigned char>(grey);
    return image;
}

using Bytes = std::vector<unsigned char>;

}  // namespace

TEST(Otsu2, Threshold255CopiesNothing) {
    Image src = rowOf({0, 128, 254, 255});
    EXPECT_EQ(pixelsAbove(255, src).pixels(), (Bytes{kOld, kOld, kOld, kOld}));
}

TEST(Otsu2, NegativeThresholdCopiesEveryPixel) {
    Image src = rowOf({0, 1, 128, 255});
    EXPECT_EQ(pixelsAbove(-1, src).pixels(), (Bytes{0, 1, 128, 255}));
}

TEST(Otsu2, PixelEqualToTheThresholdIsNotCopied) {
    Image src = rowOf({99, 100, 101});
    EXPECT_EQ(pixelsAbove(100, src).pixels(), (Bytes{kOld, kOld, 101}));
}

TEST(Otsu2, Threshold0LeavesOutBlackPixelsOnly) {
    Image src = rowOf({0, 1, 255});
    EXPECT_EQ(pixelsAbove(0, src).pixels(), (Bytes{kOld, 1, 255}));
}

TEST(Otsu2, Threshold254CopiesSaturatedPixelsOnly) {
    Image src = rowOf({253, 254, 255});
    EXPECT_EQ(pixelsAbove(254, src).pixels(), (Bytes{kOld, kOld, 255}));
}

TEST(Otsu2, EveryGreyValueMeetsEveryThresholdAsAnInt) {
    Image src(256, 1);
    for (int grey = 0; grey < 256; ++grey) src.at(0, grey) = static_cast<unsigned char>(grey);

    for (int threshold = -300; threshold <= 300; ++threshold) {
        Image out = pixelsAbove(threshold, src);
        for (int grey = 0; grey < 256; ++grey)
            ASSERT_EQ(out.at(0, grey), grey > threshold ? grey : kOld) << "threshold " << threshold;
    }
}

TEST(Otsu2, ThresholdBeyondAByteIsNotWrapped) {
    Image src = rowOf({0, 100, 101, 255});
    EXPECT_EQ(pixelsAbove(256 + 100, src).pixels(), (Bytes{kOld, kOld, kOld, kOld}));
    EXPECT_EQ(pixelsAbove(100 - 256, src).pixels(), (Bytes{0, 100, 101, 255}));
    EXPECT_EQ(pixelsAbove(INT_MAX, src).pixels(), (Bytes{kOld, kOld, kOld, kOld}));
    EXPECT_EQ(pixelsAbove(INT_MIN, src).pixels(), (Bytes{0, 100, 101, 255}));
}

TEST(Otsu2, EveryPixelOfEveryRowAndColumnIsLookedAt) {
    Image src(7, 5, 200);
    EXPECT_EQ(pixelsAbove(100, src).pixels(), Bytes(7 * 5, 200));
}

TEST(Otsu2, WidthsAroundVectorLengthsAreWholeToTheLastPixel) {
    for (int width = 1; width <= 100; ++width) {
        Image src(width, 1, 200);
        src.at(0, width - 1) = 201;
        EXPECT_EQ(pixelsAbove(200, src).at(0, width - 1), 201) << "width " << width;
        EXPECT_EQ(pixelsAbove(199, src).pixels(), src.pixels()) << "width " << width;
    }
}

TEST(Otsu2, SourceIsOnlyRead) {
    Image src = rowOf({0, 50, 100, 200, 255});
    const Bytes before = src.pixels();
    pixelsAbove(100, src);
    EXPECT_EQ(src.pixels(), before);
}

TEST(Otsu2, SizesBelow1LeaveTheOutputAlone) {
    for (const auto& [width, height] :
         std::vector<std::pair<int, int>>{{0, 0}, {0, 4}, {4, 0}, {-4, -4}, {-4, 4}, {4, -4}}) {
        KorvaneLaserAlgo algo;
        setRoi(algo, width, height);
        Image src(4, 4, 200);
        Image out(4, 4, kOld);
        algo.Otsu2(-1, out.data(), src.data());
        EXPECT_EQ(out.pixels(), Bytes(16, kOld)) << width << " x " << height;
    }
}

TEST(Otsu2, OffsetsOfTheRegionDoNotMatter) {
    KorvaneLaserAlgo algo;
    setRoi(algo, 2, 2, INT_MAX, INT_MIN);
    Image src(2, 2, 200);
    Image out(2, 2, kOld);
    algo.Otsu2(100, out.data(), src.data());
    EXPECT_EQ(out.pixels(), Bytes(4, 200));
}
