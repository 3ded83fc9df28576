/// @file plain.h
/// @brief The few words that several of the plain twins use: defined conversions, pixel access, bright runs.
#ifndef KORVANE_TESTS_REFERENCE_PLAIN_H
#define KORVANE_TESTS_REFERENCE_PLAIN_H

#include <cstddef>
#include <cstdint>
#include <limits>
#include <vector>

namespace reference {

static_assert(std::numeric_limits<float>::is_iec559 && std::numeric_limits<double>::is_iec559,
              "divisions by zero and narrowing to float follow the floating-point standard");
static_assert(sizeof(int) == 4, "the records hold 32-bit integers");

/// Truncates toward zero; a value that no int32 has, not-a-number included, becomes the lowest int32.
inline int toInt32(double value) {
    if (value > -2147483649.0 && value < 2147483648.0) {
        return static_cast<int>(value);
    }
    return std::numeric_limits<int>::min();
}

/// 32-bit sum that wraps around.
inline int wrappedSum(int a, int b) {
    return static_cast<int>(static_cast<std::uint32_t>(a) + static_cast<std::uint32_t>(b));
}

/// 32-bit product that wraps around.
inline int wrappedProduct(int a, int b) {
    return static_cast<int>(static_cast<std::uint32_t>(a) * static_cast<std::uint32_t>(b));
}

/// A number of columns or rows; below 1 counts as 0.
inline int countOf(int size) {
    return size < 1 ? 0 : size;
}

/// Place of pixel (row, column) in an image that is `width` columns wide.
inline std::size_t placeOf(int width, int row, int column) {
    return static_cast<std::size_t>(row) * static_cast<std::size_t>(width) + static_cast<std::size_t>(column);
}

/// Number of pixels of an image.
inline std::size_t pixelsOf(int width, int height) {
    return static_cast<std::size_t>(width) * static_cast<std::size_t>(height);
}

/// A maximal sequence of bright pixels of one column, top to bottom.
struct Run {
    std::vector<int> rows;
    std::vector<int> greys;
};

/// The runs of pixels brighter than `threshold` in one column, top to bottom.
inline std::vector<Run> runsOfColumn(const unsigned char* image, int width, int height, int column, int threshold) {
    std::vector<Run> runs;
    for (int row = 0; row < height; ++row) {
        const int grey = image[placeOf(width, row, column)];
        if (grey <= threshold) {
            continue;
        }
        if (row == 0 || image[placeOf(width, row - 1, column)] <= threshold) {
            runs.emplace_back();
        }
        runs.back().rows.push_back(row);
        runs.back().greys.push_back(grey);
    }
    return runs;
}

}  // namespace reference

#endif  // KORVANE_TESTS_REFERENCE_PLAIN_H
