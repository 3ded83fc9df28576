// findColumnRuns: what it lists for every column.

#include <gtest/gtest.h>

#include <cstddef>
#include <vector>

#include "kernels/ColumnRuns.h"

namespace {

using namespace KORVANELASERALGO::kernels;

TEST(FindColumnRuns, ListsTheRunsColumnByColumnAndWhereEachColumnsBegin) {
    constexpr int kWidth = 4;
    const std::vector<unsigned char> image = {
        9, 0, 9, 0,  //
        0, 0, 9, 0,  //
        9, 0, 0, 0,  //
        9, 0, 9, 0,  //
    };
    const std::vector<unsigned char> thresholds(kWidth, 5);
    const ColumnRuns found = findColumnRuns(image.data(), kWidth, 4, thresholds.data());
    EXPECT_EQ(found.firstRun, (std::vector<std::size_t>{0, 2, 2, 4, 4}));
    ASSERT_EQ(found.runs.size(), 4u);
    const std::vector<int> firstRows = {0, 2, 0, 3};
    const std::vector<int> lengths = {1, 2, 2, 1};
    for (std::size_t i = 0; i < 4; ++i) {
        EXPECT_EQ(found.runs[i].firstRow, firstRows[i]) << "run " << i;
        EXPECT_EQ(found.runs[i].length, lengths[i]) << "run " << i;
    }
    EXPECT_FALSE(found.none());
}

TEST(FindColumnRuns, ListsNoneOfADarkImage) {
    const std::vector<unsigned char> image(6, 5);
    const std::vector<unsigned char> thresholds(3, 5);
    const ColumnRuns found = findColumnRuns(image.data(), 3, 2, thresholds.data());
    EXPECT_TRUE(found.none());
    EXPECT_EQ(found.firstRun, (std::vector<std::size_t>{0, 0, 0, 0}));
}

}  // namespace
