// sumAbove for every column; the methods never look at the sums of the first and the last.

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <random>
#include <vector>

#include "kernels/kernels.h"

namespace {

using KORVANELASERALGO::kernels::active;
using KORVANELASERALGO::kernels::ColumnSum;

TEST(SumAbove, AddsThePixelsAboveTheLevelOfEachColumn) {
    std::mt19937 random(9);
    for (int width = 1; width <= 200; ++width) {
        const int height = 1 + static_cast<int>(random() % 40);
        const auto level = static_cast<unsigned char>(random() % 4 == 0 ? 255 : random() % 256);
        std::vector<unsigned char> image(static_cast<std::size_t>(width * height));
        for (unsigned char& pixel : image) pixel = static_cast<unsigned char>(random() % 256);

        // They are added to what is there.
        std::vector<ColumnSum> sums(static_cast<std::size_t>(width), {3, 1000});
        active().sumAbove(image.data(), width, height, level, sums.data());

        for (int c = 0; c < width; ++c) {
            std::uint64_t count = 3;
            std::uint64_t sum = 1000;
            for (int r = 0; r < height; ++r) {
                const unsigned char pixel = image[static_cast<std::size_t>(r * width + c)];
                if (pixel <= level) continue;
                ++count;
                sum += pixel;
            }
            EXPECT_EQ(sums[static_cast<std::size_t>(c)].count, count) << "column " << c << " of " << width;
            EXPECT_EQ(sums[static_cast<std::size_t>(c)].sum, sum) << "column " << c << " of " << width;
        }
    }
}

}  // namespace
