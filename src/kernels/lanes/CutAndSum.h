// Cuts an image at a threshold and adds up what remains, column by column. The image is swept row by row, as it lies in
// memory: it is written back whole, and a sweep of eight rows at once takes nearly half as long again. A lane without a
// remaining pixel is only cleared. Elsewhere lanes are columns and the rows come in order, so each column's sum of
// rounded moments is the plain one; a row and a grey value are exact in single precision, so their product is rounded
// once, as the integer product is when it is converted.

#ifndef KORVANE_KERNELS_LANES_CUTANDSUM_H
#define KORVANE_KERNELS_LANES_CUTANDSUM_H

#include "kernels/lanes/Blocks.h"

namespace KORVANELASERALGO::kernels::KORVANE_KERNEL_SET {

// Adds the pixels begin .. 63 of a lane of a row to the totals of its columns.
inline void addPixels(const Bytes& pixels, int begin, float row, std::uint32_t* sums, float* moments) {
    Byte grey[kLane];
    pixels.store(grey);
    for (int i = 0; i < begin; ++i) grey[i] = 0;  // which leaves sums and moments as they are

    // Arrays of its own, which nothing else can alias.
    std::uint32_t sum[kLane];
    float moment[kLane];
    for (int i = 0; i < kLane; ++i) {
        sum[i] = sums[i] + grey[i];
        moment[i] = moments[i] + row * static_cast<float>(grey[i]);
    }
    for (int i = 0; i < kLane; ++i) {
        sums[i] = sum[i];
        moments[i] = moment[i];
    }
}

struct Cut {
    Bytes least;    // that remains
    Bytes largest;  // that does not
};

// Cuts a lane of a row and adds its pixels begin .. 63.
inline void cutAndAdd(Byte* pixels, const Cut& cut, int begin, int row, std::uint32_t* sums, float* moments) {
    const Bytes whole = Bytes::load(pixels);
    if (!anyAboveLevel(whole, cut.largest)) return Bytes::fill(0).store(pixels);
    const Bytes rest = keepAtLeast(whole, cut.least);
    rest.store(pixels);
    addPixels(rest, begin, static_cast<float>(row), sums, moments);
}

inline void cutAndSum(Byte* image, int width, int height, int threshold, std::uint32_t* sums, float* moments) {
    constexpr int kExactRows = 1 << 24;
    if (width < kLane || height > kExactRows || threshold > 255)
        return plain::cutAndSum(image, width, height, threshold, sums, moments);
    // A pixel of 0 counts for nothing, whatever the threshold.
    const Byte leastGrey = static_cast<Byte>(threshold < 1 ? 1 : threshold);
    const Cut cut = {Bytes::fill(leastGrey), Bytes::fill(static_cast<Byte>(leastGrey - 1))};

    const Block last(blocksOf(width) - 1, width);
    for (int r = 0; r < height; ++r, image += width) {
        for (int c = 0; c + kLane <= width; c += kLane) cutAndAdd(image + c, cut, 0, r, sums + c, moments + c);
        if (last.first % kLane != 0)
            cutAndAdd(image + last.first, cut, lowestBit(last.owned), r, sums + last.first, moments + last.first);
    }
}

}  // namespace KORVANELASERALGO::kernels::KORVANE_KERNEL_SET

#endif  // KORVANE_KERNELS_LANES_CUTANDSUM_H
