#include <algorithm>
#include <bit>

#include "kernels/plain/plain.h"

namespace KORVANELASERALGO::kernels::plain {

void markAbove(const unsigned char* pixels, std::size_t count, unsigned char level, std::uint64_t* marks) {
    for (; count > 0; ++marks) {
        const std::size_t bits = std::min<std::size_t>(count, 64);
        std::uint64_t word = 0;
        for (std::size_t i = 0; i < bits; ++i) word |= std::uint64_t{pixels[i] > level} << i;
        *marks = word;
        pixels += bits;
        count -= bits;
    }
}

std::uint64_t countMarks(const std::uint64_t* marks, int width, int height, std::uint64_t* columns) {
    std::fill_n(columns, blocksOf(width) + 1, std::uint64_t{0});
    const std::size_t stride = static_cast<std::size_t>(width);
    const std::size_t words = wordsOf(stride * static_cast<std::size_t>(height));
    std::uint64_t count = 0;
    for (std::size_t w = 0; w < words; ++w) {
        for (std::uint64_t rest = marks[w]; rest != 0; rest &= rest - 1) {
            const std::size_t column = (w * 64 + static_cast<std::size_t>(std::countr_zero(rest))) % stride;
            columns[column / 64] |= std::uint64_t{1} << column % 64;
            ++count;
        }
    }
    return count;
}

}  // namespace KORVANELASERALGO::kernels::plain
