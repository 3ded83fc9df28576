// The two passes of a truncating, separable blur. In both, lanes lie across the direction of the pass, so that every
// lane does the rule's own products and sums in the rule's own order. The pass along the rows works in place, each
// pixel waiting for the one before it, so its lanes are rows: pixels are turned by 90 degrees on the way in and out.
//
// Weights are not negative and their sum is 1 but for rounding, so a sum lies in [0, 256) and needs no clamping.
//
// Five taps, the usual number, have passes of their own in integers, which leave few pixels to double precision. Where
// these are too many, the sums of all are the faster way.

#ifndef KORVANE_KERNELS_LANES_BLUR_H
#define KORVANE_KERNELS_LANES_BLUR_H

#include "kernels/lanes/FiveTaps.h"
#include "kernels/lanes/Greys.h"
#include "kernels/lanes/Transpose.h"
#include "kernels/plain/plain.h"

namespace KORVANELASERALGO::kernels::KORVANE_KERNEL_SET {

inline constexpr int kStripColumns = 64;  // turned together
inline constexpr int kColumns = 16;       // summed together, as lanes

// Pixels to a vector with ties where integers and doubles take as long.
inline constexpr int kPixelsToTieAlongRows = 96;
inline constexpr int kPixelsToTieAlongColumns = kWords == 32 ? 64 : 40;

/// Blurs `count` turned columns, the first of them at `original` and at `blurred` + radius. `kRadius` is the radius, or
/// 0 where it is not known before.
template <int kRadius>
inline void sumColumns(const TurnedColumn* original, int count, const double* weights, int anyRadius,
                       TurnedColumn* blurred) {
    using Column = Greys<kStripRows>;
    const int radius = kRadius > 0 ? kRadius : anyRadius;
    constexpr int kMost = kRadius > 0 ? kRadius : kLargestBlurRadius;
    Doubles weight[kMost + 1];
    for (int k = 0; k <= radius; ++k) weight[k] = Doubles::fill(weights[k]);

    // The columns around those that are being blurred: to the left, blurred ones; to the right, those as they were.
    Column columns[kMost + kStripColumns + kMost];
    for (int k = 0; k < radius; ++k) {
        columns[k] = Column::load(blurred[k].rows);
        columns[radius + k] = Column::load(original[k].rows);
    }
    for (int c = 0; c < count; ++c) {
        Column* taps = columns + c;
        const int last = 2 * radius;
        taps[last] = Column::load(original[c + radius].rows);
        Column sum = taps[0] * weight[radius];
        for (int k = 1; k <= last; ++k) sum = sum + taps[k] * weight[k < radius ? radius - k : k - radius];
        taps[radius] = truncate(sum);
        taps[radius].store(blurred[c + radius].rows);
    }
}

/// The same for a radius of 2, in integers.
/// @returns false where too many ties are in the way; the columns have to be blurred anew then
inline bool sumColumnsOfFive(const FiveTaps& five, const TurnedColumn* original, int count, TurnedColumn* blurred) {
    int left = kStripRows * count / kPixelsToTieAlongRows;
    for (int r = 0; r < kStripRows; r += kWords) {
        Words a0 = Words::load(blurred[0].rows + r);
        Words a1 = Words::load(blurred[1].rows + r);
        Words a2 = Words::load(original[0].rows + r);
        Words a3 = Words::load(original[1].rows + r);
        for (int c = 0; c < count; ++c) {
            const Words a4 = Words::load(original[c + 2].rows + r);
            WordBits ties;
            Words result = five.roundedDown(a0, a1, a2, a3, a4, ties);
            if (ties != 0) {
                const WordBits known = EqualTaps::knownAmong(ties, a0, a1, a2);
                if (ties != known && left-- == 0) return false;
                const WordBits less =
                    five.lessAmong(ties, known, blurred[c].rows + r, blurred[c + 1].rows + r, original[c].rows + r,
                                   original[c + 1].rows + r, original[c + 2].rows + r);
                if (less != 0) result = minusOne(result, less);
            }
            result.store(blurred[c + 2].rows + r);
            a0 = a1;
            a1 = result;
            a2 = a3;
            a3 = a4;
        }
    }
    return true;
}

/// Blurs a strip from block to block of columns. `blurBlock` blurs `count` columns: it gets them and `radius` more as
/// they were, and writes behind `radius` blurred ones. In the place of missing rows stands the last one, with the same
/// result.
template <class BlurBlock>
inline void blurStrip(const Byte* image, int width, int rows, int radius, Byte* out, BlurBlock blurBlock) {
    const Byte* imageRows[kStripRows];
    Byte* outRows[kStripRows];
    for (int r = 0; r < kStripRows; ++r) {
        const std::ptrdiff_t start = static_cast<std::ptrdiff_t>(r < rows ? r : rows - 1) * width;
        imageRows[r] = image + start;
        outRows[r] = out + start;
    }
    TurnedColumn original[kStripColumns + kLargestBlurRadius];
    TurnedColumn blurred[kLargestBlurRadius + kStripColumns];
    turnColumns(imageRows, 0, radius, original);
    for (int k = 0; k < radius; ++k) blurred[k] = original[0];

    for (int x = 0; x < width; x += kStripColumns) {
        const int count = kStripColumns < width - x ? kStripColumns : width - x;
        // Beyond the last column, that one is repeated.
        const int missing = radius - (width - x - count);
        const int present = missing <= 0 ? count : missing < count ? count - missing : 0;
        turnColumns(imageRows, x + radius, present, original + radius);
        for (int c = present; c < count; ++c) original[c + radius] = original[c + radius - 1];

        blurBlock(original, count, blurred);
        turnBack(blurred + radius, x, count, outRows);
        for (int k = 0; k < radius; ++k) {
            blurred[k] = blurred[count + k];
            original[k] = original[count + k];
        }
    }
}

/// Blurs kColumns columns.
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

/// Blurs kWords columns with a radius of 2, in integers. No pixel waits for another, so ties are decided last.
/// @returns false where they are too many; the columns have to be blurred anew then
inline bool blurColumnsOfFive(const FiveTaps& five, const Byte* image, int width, int rows, Byte* out) {
    const auto row = [&](int r) { return image + static_cast<std::ptrdiff_t>(r) * width; };
    const auto outRow = [&](int r) { return out + static_cast<std::ptrdiff_t>(r) * width; };
    Words a0 = Words::load(row(0));
    Words a1 = Words::load(row(1));
    Words a2 = Words::load(row(2));
    Words a3 = Words::load(row(3));
    for (int first = 0; first < rows; first += kStripRows) {
        const int count = kStripRows < rows - first ? kStripRows : rows - first;
        int left = kWords * count / kPixelsToTieAlongColumns;
        WordBits undecided[kStripRows];
        for (int i = 0; i < count; ++i) {
            const int r = first + i;
            const Words a4 = Words::load(row(r + 4));
            WordBits ties;
            Words result = five.roundedDown(a0, a1, a2, a3, a4, ties);
            const WordBits known = EqualTaps::knownAmong(ties, a0, a1, a2);
            if (known != 0) result = minusOne(result, known & five.equalTaps.less(row(r + 2)));
            result.store(outRow(r));
            undecided[i] = ties ^ known;
            left -= ties != known ? 1 : 0;
            a0 = a1;
            a1 = a2;
            a2 = a3;
            a3 = a4;
        }
        if (left < 0) return false;
        for (int i = 0; i < count; ++i) {
            if (undecided[i] == 0) continue;
            const int r = first + i;
            const WordBits less =
                five.lessAmong(undecided[i], 0, row(r), row(r + 1), row(r + 2), row(r + 3), row(r + 4));
            minusOne(Words::load(outRow(r)), less).store(outRow(r));
        }
    }
    return true;
}

/// Tries integers on one part of an image after the other, and after a failure doubles for some parts.
class Attempts {
public:
    template <class InIntegers, class InDoubles>
    void run(InIntegers inIntegers, InDoubles inDoubles) {
        if (waiting_ == 0 && inIntegers()) return;
        waiting_ = waiting_ == 0 ? kWaiting : waiting_ - 1;
        inDoubles();
    }

private:
    static constexpr int kWaiting = 63;
    int waiting_ = 0;
};

inline void blurRows(const Byte* image, int width, int rows, const double* weights, int radius, Byte* out) {
    if (width < kLane) return plain::blurRows(image, width, rows, weights, radius, out);
    const auto sum = radius == 1   ? sumColumns<1>
                     : radius == 2 ? sumColumns<2>
                     : radius == 3 ? sumColumns<3>
                                   : sumColumns<0>;
    const auto blurStrips = [&](auto blurBlock) {
        for (int r = 0; r < rows; r += kStripRows) {
            const std::ptrdiff_t start = static_cast<std::ptrdiff_t>(r) * width;
            blurStrip(image + start, width, kStripRows < rows - r ? kStripRows : rows - r, radius, out + start,
                      blurBlock);
        }
    };
    const auto inDoubles = [&](const TurnedColumn* original, int count, TurnedColumn* blurred) {
        sum(original, count, weights, radius, blurred);
    };
    if (radius != 2) return blurStrips(inDoubles);

    const FiveTaps five(weights);
    Attempts attempts;
    blurStrips([&](const TurnedColumn* original, int count, TurnedColumn* blurred) {
        attempts.run([&] { return sumColumnsOfFive(five, original, count, blurred); },
                     [&] { inDoubles(original, count, blurred); });
    });
}

inline void blurColumns(const Byte* image, int width, int rows, const double* weights, int radius, Byte* out) {
    if (width < kWords) return plain::blurColumns(image, width, rows, weights, radius, out);
    const auto blur = radius == 1   ? blurSomeColumns<1>
                      : radius == 2 ? blurSomeColumns<2>
                      : radius == 3 ? blurSomeColumns<3>
                                    : blurSomeColumns<0>;
    const auto inDoubles = [&](int first) {
        for (int i = first; i < first + kWords; i += kColumns) blur(image + i, width, rows, weights, radius, out + i);
    };
    const auto blurAll = [&](auto blurFrom) {
        for (int x = 0; x < width; x += kWords) blurFrom(x + kWords <= width ? x : width - kWords);
    };
    if (radius != 2) return blurAll(inDoubles);

    const FiveTaps five(weights);
    Attempts attempts;
    blurAll([&](int first) {
        attempts.run([&] { return blurColumnsOfFive(five, image + first, width, rows, out + first); },
                     [&] { inDoubles(first); });
    });
}

}  // namespace KORVANELASERALGO::kernels::KORVANE_KERNEL_SET

#endif  // KORVANE_KERNELS_LANES_BLUR_H
