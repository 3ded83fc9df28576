// Marks of lists of any length, and of images with a single mark.

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <vector>

#include "kernels/kernels.h"

namespace {

using namespace KORVANELASERALGO::kernels;

TEST(MarkAbove, MarksEveryPixelOfAListOfAnyLength) {
    for (std::size_t count = 0; count < 200; ++count) {
        const std::vector<unsigned char> pixels(count, 61);
        std::vector<std::uint64_t> expected(wordsOf(count), 0);
        for (std::size_t i = 0; i < count; ++i) expected[i / 64] |= std::uint64_t{1} << i % 64;
        std::vector<std::uint64_t> marks(expected.size(), 0x5555);
        active().markAbove(pixels.data(), count, 60, marks.data());
        EXPECT_EQ(marks, expected) << count << " pixels";
    }
}

TEST(CountMarks, FindsASingleMarkWhereverItIs) {
    constexpr int kWidth = 70;
    constexpr int kHeight = 19;
    constexpr std::size_t kPixels = std::size_t{kWidth} * kHeight;
    for (std::size_t pixel = 0; pixel < kPixels; ++pixel) {
        std::vector<std::uint64_t> marks(wordsOf(kPixels), 0);
        marks[pixel / 64] = std::uint64_t{1} << pixel % 64;
        std::vector<std::uint64_t> columns(3, 0x5555);
        EXPECT_EQ(active().countMarks(marks.data(), kWidth, kHeight, columns.data()), 1u);
        // The last word belongs to no column.
        std::vector<std::uint64_t> expected(3, 0);
        expected[pixel % kWidth / 64] = std::uint64_t{1} << pixel % kWidth % 64;
        EXPECT_EQ(columns, expected) << "pixel " << pixel;
    }
}

}  // namespace
