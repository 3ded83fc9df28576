// What Cal2DPoint1_1, Cal2DPoint2 and Cal2DPoint2_1 do alike with their outputs: points, mask and offsets.

#include <gtest/gtest.h>

#include <climits>
#include <string>
#include <vector>

#include "KorvaneLaserAlgo.h"
#include "extract/Frames.h"
#include "support/Support.h"

namespace {

using frames::drawRun;
using frames::drawSpot;
using support::Image;
using support::KorvaneLaserAlgo;
using support::Mask;
using support::Points2d;

struct Method {
    std::string name;
    frames::ExtractionMethod method;
};

class SharedOutputs : public testing::TestWithParam<Method> {
protected:
    static void extract(KorvaneLaserAlgo& algo, Mask& mask, Image& image, Points2d& points) {
        (algo.*GetParam().method)(mask.data(), image.data(), points);
    }
};

/// An object that accepts every candidate.
void prepare(KorvaneLaserAlgo& algo, int width, int height, int offsetX = 0, int offsetY = 0) {
    support::setRoi(algo, width, height, offsetX, offsetY);
    support::setLineSelect(algo, 0, 255, 0, 100, 3);
}

TEST_P(SharedOutputs, OldPointsAreReplacedByOnePointPerColumn) {
    Image image(3, 20);
    drawSpot(image, 1, 10);
    KorvaneLaserAlgo algo;
    prepare(algo, 3, 20);
    Mask mask(3);
    Points2d points(7, {9.0, 9.0});
    extract(algo, mask, image, points);
    EXPECT_TRUE(support::sameBits(points, Points2d{{0.0, 0.0}, {1.0, 10.0}, {0.0, 0.0}}));
}

TEST_P(SharedOutputs, MaskEntryThatWasTrueStaysTrueInAColumnWithoutStripe) {
    Image image(3, 20);
    drawSpot(image, 1, 10);
    KorvaneLaserAlgo algo;
    prepare(algo, 3, 20);
    Mask mask(3);
    mask[2] = true;
    Points2d points;
    extract(algo, mask, image, points);
    EXPECT_EQ(mask.marked(), (std::vector<int>{1, 2}));
}

TEST_P(SharedOutputs, OffsetsAreAddedFoundOrNot) {
    Image image(2, 20);
    drawSpot(image, 1, 10);
    KorvaneLaserAlgo algo;
    prepare(algo, 2, 20, 1000, -7);
    Mask mask(2);
    Points2d points;
    extract(algo, mask, image, points);
    EXPECT_TRUE(support::sameBits(points, Points2d{{1000.0, -7.0}, {1001.0, 3.0}}));
}

TEST_P(SharedOutputs, MaskFollowsTheRowBeforeTheOffset) {
    Image image(2, 20);
    drawSpot(image, 1, 10);
    KorvaneLaserAlgo algo;
    Mask mask(2);
    Points2d points;
    prepare(algo, 2, 20, 0, -10);
    extract(algo, mask, image, points);
    EXPECT_SAME_BITS(points[1], (support::Point2d{1.0, 0.0}));
    EXPECT_EQ(mask.marked(), std::vector<int>{1});

    prepare(algo, 2, 20, 0, 5);
    extract(algo, mask, image, points);
    EXPECT_SAME_BITS(points[0], (support::Point2d{0.0, 5.0}));
    EXPECT_EQ(mask.marked(), std::vector<int>{1});
}

TEST_P(SharedOutputs, OffsetsAtTheIntLimitsAreAddedAsDoubles) {
    Image image(2, 20);
    drawSpot(image, 1, 10);
    KorvaneLaserAlgo algo;
    prepare(algo, 2, 20, INT_MAX, INT_MIN);
    Mask mask(2);
    Points2d points;
    extract(algo, mask, image, points);
    EXPECT_TRUE(support::sameBits(points, Points2d{{2147483647.0, -2147483648.0}, {2147483648.0, -2147483638.0}}));
}

TEST_P(SharedOutputs, WidthBelowOneGivesNoPointAndLeavesTheMask) {
    for (int width : {0, -1, INT_MIN}) {
        Image image(1, 20, 255);
        KorvaneLaserAlgo algo;
        prepare(algo, width, 20);
        Mask mask(1);
        Points2d points(3, {9.0, 9.0});
        extract(algo, mask, image, points);
        EXPECT_TRUE(points.empty());
        EXPECT_FALSE(mask[0]);
    }
}

TEST_P(SharedOutputs, HeightBelowOneGivesOffsetsOnly) {
    for (int height : {0, -1, INT_MIN}) {
        Image image(2, 1, 255);
        KorvaneLaserAlgo algo;
        prepare(algo, 2, height, 4, 3);
        Mask mask(2);
        Points2d points;
        extract(algo, mask, image, points);
        EXPECT_TRUE(support::sameBits(points, Points2d{{4.0, 3.0}, {4.0, 3.0}}));
        EXPECT_EQ(mask.marked(), std::vector<int>{});
    }
}

TEST_P(SharedOutputs, SmallestFramesAreSearchedToTheirBorders) {
    for (int width : {1, 2, 3}) {
        for (int height : {2, 3}) {
            Image image(width, height, 100);
            const double middle = (height - 1) / 2.0;
            const std::vector<double> rows(static_cast<std::size_t>(width), middle);
            EXPECT_TRUE(frames::givesRows(frames::extract(GetParam().method, image, frames::Select{}), rows));
        }
    }
}

TEST_P(SharedOutputs, CentreOnRowZeroIsNotMarked) {
    Image image(3, 1);
    drawRun(image, 2, 0, {255});
    KorvaneLaserAlgo algo;
    prepare(algo, 3, 1, 10, 20);
    Mask mask(3);
    Points2d points;
    extract(algo, mask, image, points);
    EXPECT_TRUE(support::sameBits(points, Points2d{{10.0, 20.0}, {10.0, 20.0}, {12.0, 20.0}}));
    EXPECT_EQ(mask.marked(), std::vector<int>{});
}

INSTANTIATE_TEST_SUITE_P(LineSelectingMethods, SharedOutputs,
                         testing::Values(Method{"Cal2DPoint1_1", &KorvaneLaserAlgo::Cal2DPoint1_1},
                                         Method{"Cal2DPoint2", &KorvaneLaserAlgo::Cal2DPoint2},
                                         Method{"Cal2DPoint2_1", &KorvaneLaserAlgo::Cal2DPoint2_1}),
                         [](const auto& tested) { return tested.param.name; });

}  // namespace
