// findTransitions where whole blocks go dark from one band to the next.

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "kernels/kernels.h"

namespace {

using namespace KORVANELASERALGO::kernels;

constexpr unsigned char kThreshold = 100;

TEST(FindTransitions, EndWhereABandBeginsThatHasNoBrightPixelInTheirBlock) {
    // In the last row of the first band one column of block 0 is bright, all of block 1, the first of block 2.
    constexpr int kWidth = 3 * kBlockColumns;
    constexpr int kHeight = 2 * kBandRows;
    std::vector<int> brightColumns = {5};
    for (int c = kBlockColumns; c <= 2 * kBlockColumns; ++c) brightColumns.push_back(c);
    std::vector<unsigned char> image(static_cast<std::size_t>(kWidth * kHeight), 0);
    for (const int c : brightColumns) image[static_cast<std::size_t>((kBandRows - 1) * kWidth + c)] = 200;
    const std::vector<unsigned char> thresholds(kWidth, kThreshold);

    const std::vector<unsigned char> activeBlocks = {1, 1, 1, 0, 0, 0};
    for (const unsigned char* known : {static_cast<const unsigned char*>(nullptr), activeBlocks.data()}) {
        std::vector<std::uint64_t> state(3, 0);
        for (int band = 0; band < 2; ++band) {
            std::vector<Transition> list(static_cast<std::size_t>(kWidth * kBandRows));
            const std::size_t count =
                active().findTransitions(image.data(), kWidth, kHeight, band * kBandRows, thresholds.data(),
                                         known == nullptr ? nullptr : known + 3 * band, state.data(), list.data());
            std::vector<int> columns;
            for (std::size_t i = 0; i < count; ++i) {
                EXPECT_EQ(list[i].row, band == 0 ? kBandRows - 1 : kBandRows);
                columns.push_back(list[i].column);
            }
            std::sort(columns.begin(), columns.end());
            EXPECT_EQ(columns, brightColumns) << "band " << band;
        }
    }
}

}  // namespace
