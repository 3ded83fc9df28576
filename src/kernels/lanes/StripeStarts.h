// The first row of each column at which a stripe starts, 64 columns at once. A start is a bright pixel, so a
// band without one in the columns that are still open is passed over by its maximum.

#ifndef KORVANE_KERNELS_LANES_STRIPESTARTS_H
#define KORVANE_KERNELS_LANES_STRIPESTARTS_H

#include "kernels/lanes/Blocks.h"

namespace KORVANELASERALGO::kernels::KORVANE_KERNEL_SET {

// The columns of a row in which a stripe starts, of those that have a bright pixel there.
inline Mask startsInRow(const Byte* row, int width, const Bytes& least, Mask bright) {
    const Bytes centre = Bytes::load(row);
    const Bytes up = Bytes::load(row - width);
    const Bytes down = Bytes::load(row + width);
    const Mask supported = atLeast(up, least) | atLeast(down, least) | atLeast(Bytes::load(row + 1), least) |
                           atLeast(Bytes::load(row + 1 - width), least) | atLeast(Bytes::load(row + 1 + width), least);
    const Mask darkerThanBoth = above(up, centre) & above(down, centre);
    return bright & supported & ~darkerThanBoth;
}

// The columns of a lane that are searched, and what they are searched for.
struct OpenColumns {
    Mask open;    // no start found yet
    Bytes least;  // grey values of a bright pixel, from here on
};

inline OpenColumns openColumns(int first, int firstColumn, int endColumn, const int* thresholds) {
    // Brighter than a threshold is at least one more, from 0 on; nothing is brighter than 255.
    Byte least[kLane];
    Mask open = 0;
    for (int i = 0; i < kLane; ++i) {
        const int threshold = thresholds[first + i];
        least[i] = static_cast<Byte>(threshold < 0 ? 0 : threshold < 255 ? threshold + 1 : 255);
        const bool wanted = first + i >= firstColumn && first + i < endColumn;
        if (wanted && threshold < 255) open |= Mask{1} << i;
    }
    return {open, Bytes::load(least)};
}

// Searches a band; `band` points to the lane's first pixel.
inline Mask searchBand(const Byte* band, int width, int firstRow, int endRow, const OpenColumns& columns, int* starts) {
    const int rows = rowsOfBand(firstRow, endRow);
    prefetchBelow(band, width, rows, rowsOfBand(firstRow + rows, endRow));
    Mask open = columns.open;
    if ((atLeast(maxOfRows(band, width, rows), columns.least) & open) == 0) return open;
    for (int r = 0; r < rows; ++r, band += width) {
        const Mask bright = atLeast(Bytes::load(band), columns.least) & open;
        if (bright == 0) continue;
        const Mask found = startsInRow(band, width, columns.least, bright);
        for (Mask rest = found; rest != 0; rest &= rest - 1) starts[lowestBit(rest)] = firstRow + r;
        open &= ~found;
    }
    return open;
}

inline void findStripeStarts(const Byte* image, int width, int firstColumn, int endColumn, int firstRow, int endRow,
                             const int* thresholds, int* starts) {
    // A lane and the column to its right must lie inside the image.
    if (width < kLane + 1)
        return plain::findStripeStarts(image, width, firstColumn, endColumn, firstRow, endRow, thresholds, starts);
    for (int c = firstColumn; c < endColumn; ++c) starts[c] = kNoStripe;

    // A few lanes at a time, band by band, until no column is open any more.
    constexpr int kLanesAtOnce = 64;
    OpenColumns lanes[kLanesAtOnce];
    int firsts[kLanesAtOnce];
    // Lanes begin at multiples of their size, where they are likely to be cache lines.
    for (int chunk = firstColumn / kLane * kLane; chunk < endColumn; chunk += kLanesAtOnce * kLane) {
        int count = 0;
        for (int c = chunk; c < endColumn && count < kLanesAtOnce; c += kLane, ++count) {
            const int begin = c > firstColumn ? c : firstColumn;
            const int end = c + kLane < endColumn ? c + kLane : endColumn;
            firsts[count] = c < width - kLane - 1 ? c : width - kLane - 1;
            lanes[count] = openColumns(firsts[count], begin, end, thresholds);
        }
        Mask anyOpen = 1;
        for (int r = firstRow; r < endRow && anyOpen != 0; r += kBandRows) {
            const Byte* row = image + static_cast<std::ptrdiff_t>(r) * width;
            anyOpen = 0;
            for (int l = 0; l < count; ++l) {
                if (lanes[l].open != 0)
                    lanes[l].open = searchBand(row + firsts[l], width, r, endRow, lanes[l], starts + firsts[l]);
                anyOpen |= lanes[l].open;
            }
        }
    }
}

}  // namespace KORVANELASERALGO::kernels::KORVANE_KERNEL_SET

#endif  // KORVANE_KERNELS_LANES_STRIPESTARTS_H
