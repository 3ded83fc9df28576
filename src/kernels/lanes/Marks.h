// One bit for each bright pixel, and what these bits tell about the columns. Words without a mark, which are nearly all
// of them in a frame of one stripe, cost one maximum or one test of eight together.

#ifndef KORVANE_KERNELS_LANES_MARKS_H
#define KORVANE_KERNELS_LANES_MARKS_H

#include "kernels/lanes/Blocks.h"

namespace KORVANELASERALGO::kernels::KORVANE_KERNEL_SET {

inline void markAbove(const Byte* pixels, std::size_t count, Byte level, std::uint64_t* marks) {
    const std::size_t words = count / kLane;
    const Bytes levels = Bytes::fill(level);

    std::size_t first = 0;
    for (; first + kBandRows <= words; first += kBandRows) {
        const bool any = anyAbove(maxOfRows(pixels, kLane, kBandRows), levels);
        for (std::size_t i = 0; i < kBandRows; ++i, pixels += kLane)
            marks[first + i] = any ? above(Bytes::load(pixels), levels) : 0;
    }
    plain::markAbove(pixels, count - first * kLane, level, marks + first);
}

// A word of marks goes to the bits from its first column on, as if the row had no end: to the one bit for each column
// and 64 more, which are the first columns of the next row.
inline std::uint64_t countMarks(const std::uint64_t* marks, int width, int height, std::uint64_t* columns) {
    if (width < kLane) return plain::countMarks(marks, width, height, columns);
    const std::size_t words = wordsOf(static_cast<std::size_t>(width) * static_cast<std::size_t>(height));
    for (int b = 0; b <= blocksOf(width); ++b) columns[b] = 0;

    constexpr int kTogether = 8;
    const int advance = kTogether * kLane % width;
    const Bytes none = Bytes::fill(0);
    std::uint64_t count = 0;
    int column = 0;
    for (std::size_t first = 0; first < words; first += kTogether) {
        const std::size_t left = words - first;
        if (left < kTogether || anyAbove(Bytes::load(reinterpret_cast<const Byte*>(marks + first)), none)) {
            int c = column;
            for (std::size_t i = 0; i < kTogether && i < left; ++i) {
                const std::uint64_t word = marks[first + i];
                const int shift = c % kLane;
                count += static_cast<std::uint64_t>(bitsOf(word));
                columns[c / kLane] |= word << shift;
                columns[c / kLane + 1] |= word >> 1 >> (kLane - 1 - shift);
                c = c + kLane < width ? c + kLane : c + kLane - width;
            }
        }
        column = column + advance < width ? column + advance : column + advance - width;
    }

    const int end = width / kLane;
    const int shift = width % kLane;
    std::uint64_t beyond = columns[end] >> shift;
    columns[end] ^= beyond << shift;
    if (shift != 0) {
        beyond |= columns[end + 1] << (kLane - shift);
        columns[end + 1] = 0;
    }
    columns[0] |= beyond;
    return count;
}

}  // namespace KORVANELASERALGO::kernels::KORVANE_KERNEL_SET

#endif  // KORVANE_KERNELS_LANES_MARKS_H
