// The two passes of a truncating, separable blur. In both, lanes lie across the direction of the pass, so that every
// lane does the rule's own products and sums in the rule's own order. The pass along the rows works in place, each
// pixel waiting for the one before it, so its lanes are rows: pixels are turned by 90 degrees on the way in and out.
//
// Weights are not negative and their sum is 1 but for rounding, so a sum lies in [0, 256) and needs no clamping.

#ifndef KORVANE_KERNELS_LANES_BLUR_H
#define KORVANE_KERNELS_LANES_BLUR_H

#include "kernels/lanes/Greys.h"
#include "kernels/lanes/Transpose.h"
#include "kernels/plain/plain.h"

namespace KORVANELASERALGO::kernels::KORVANE_KERNEL_SET {

inline constexpr int kStripRows = 32;     // filtered together, as lanes
inline constexpr int kStripColumns = 64;  // turned together
inline constexpr int kColumns = 16;       // summed together, as lanes

using TurnedColumn = Byte[kStripRows];

/// Turns `count` columns of up to kStripRows rows; of fewer rows, the last one is repeated.
inline void turnColumns(const Byte* pixels, int width, int rows, int count, TurnedColumn* turned) {
    int c = 0;
    for (; c + kSquare <= count; c += kSquare) {
        for (int r = 0; r < kStripRows; r += kSquare) {
            const int first = r < rows ? r : rows - 1;
            transposeSquare(pixels + static_cast<std::ptrdiff_t>(first) * width + c, width, rows - first, &turned[c][r],
                            kStripRows, kSquare);
        }
    }
    for (; c < count; ++c) {
        for (int r = 0; r < kStripRows; ++r)
            turned[c][r] = pixels[static_cast<std::ptrdiff_t>(r < rows ? r : rows - 1) * width + c];
    }
}

/// Turns columns back.
inline void turnBack(const TurnedColumn* turned, int width, int rows, int count, Byte* pixels) {
    int c = 0;
    for (; c + kSquare <= count; c += kSquare) {
        for (int r = 0; r < rows; r += kSquare)
            transposeSquare(&turned[c][r], kStripRows, kSquare, pixels + static_cast<std::ptrdiff_t>(r) * width + c,
                            width, rows - r);
    }
    for (; c < count; ++c) {
        for (int r = 0; r < rows; ++r) pixels[static_cast<std::ptrdiff_t>(r) * width + c] = turned[c][r];
    }
}

/// `kRadius` is the radius, or 0 where it is not known before.
template <int kRadius>
inline void blurStrip(const Byte* image, int width, int rows, const double* weights, int anyRadius, Byte* out) {
    using Column = Greys<kStripRows>;
    const int radius = kRadius > 0 ? kRadius : anyRadius;
    constexpr int kMost = kRadius > 0 ? kRadius : kLargestBlurRadius;
    Doubles weight[kMost + 1];
    for (int k = 0; k <= radius; ++k) weight[k] = Doubles::fill(weights[k]);

    // The columns around those that are being blurred: to the left, blurred ones; to the right, those as they were.
    Column columns[kMost + kStripColumns + kMost];
    TurnedColumn turned[kStripColumns];
    turnColumns(image, width, rows, radius, turned);
    for (int k = 0; k < radius; ++k) {
        columns[k] = Column::load(turned[0]);
        columns[radius + k] = Column::load(turned[k]);
    }

    for (int x = 0; x < width; x += kStripColumns) {
        const int count = kStripColumns < width - x ? kStripColumns : width - x;
        // Beyond the last column, that one is repeated.
        const int missing = radius - (width - x - count);
        const int present = missing <= 0 ? count : missing < count ? count - missing : 0;
        turnColumns(image + x + radius, width, rows, present, turned);
        for (int c = 0; c < count; ++c) {
            Column* taps = columns + c;
            const int last = 2 * radius;
            taps[last] = c < present ? Column::load(turned[c]) : taps[last - 1];
            Column sum = taps[0] * weight[radius];
            for (int k = 1; k <= last; ++k) sum = sum + taps[k] * weight[k < radius ? radius - k : k - radius];
            taps[radius] = truncate(sum);
            taps[radius].store(turned[c]);
        }
        turnBack(turned, width, rows, count, out + x);
        for (int k = 0; k < 2 * radius; ++k) columns[k] = columns[count + k];
    }
}

template <int kRadius>
inline void blurSomeColumns(const Byte* image, int width, int rows, const double* weights, int anyRadius, Byte* out) {
    using Row = Greys<kColumns>;
    const int radius = kRadius > 0 ? kRadius : anyRadius;
    constexpr int kMost = kRadius > 0 ? kRadius : kLargestBlurRadius;
    Doubles weight[kMost + 1];
    for (int k = 0; k <= radius; ++k) weight[k] = Doubles::fill(weights[k]);

    // The sums that are not complete yet, the oldest first. What is added before the first sum begins is not used.
    Row sums[2 * kMost];
    for (int k = 0; k < 2 * radius; ++k) sums[k] = Row::make([](int) { return Doubles::fill(0.0); });
    for (int r = -2 * radius; r < rows; ++r, image += width) {
        const Row row = Row::load(image);
        if (r >= 0) (sums[0] + row * weight[radius]).store(out + static_cast<std::ptrdiff_t>(r) * width);
        for (int k = 1; k < 2 * radius; ++k) {
            const int distance = k < radius ? radius - k : k - radius;
            sums[k - 1] = sums[k] + row * weight[distance];
        }
        sums[2 * radius - 1] = row * weight[radius];
    }
}

inline void blurRows(const Byte* image, int width, int rows, const double* weights, int radius, Byte* out) {
    if (width < kLane) return plain::blurRows(image, width, rows, weights, radius, out);
    const auto blur = radius == 1   ? blurStrip<1>
                      : radius == 2 ? blurStrip<2>
                      : radius == 3 ? blurStrip<3>
                                    : blurStrip<0>;
    for (int r = 0; r < rows; r += kStripRows) {
        const std::ptrdiff_t start = static_cast<std::ptrdiff_t>(r) * width;
        blur(image + start, width, kStripRows < rows - r ? kStripRows : rows - r, weights, radius, out + start);
    }
}

inline void blurColumns(const Byte* image, int width, int rows, const double* weights, int radius, Byte* out) {
    if (width < kColumns) return plain::blurColumns(image, width, rows, weights, radius, out);
    const auto blur = radius == 1   ? blurSomeColumns<1>
                      : radius == 2 ? blurSomeColumns<2>
                      : radius == 3 ? blurSomeColumns<3>
                                    : blurSomeColumns<0>;
    for (int x = 0; x < width; x += kColumns) {
        const int first = x + kColumns <= width ? x : width - kColumns;
        blur(image + first, width, rows, weights, radius, out + first);
    }
}

}  // namespace KORVANELASERALGO::kernels::KORVANE_KERNEL_SET

#endif  // KORVANE_KERNELS_LANES_BLUR_H
