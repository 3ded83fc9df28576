// The first row of each column at which a stripe starts, for up to 64 columns at once. A start is a bright pixel, so a
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

inline void findStripeStarts(const Byte* image, int width, int firstColumn, int endColumn, int firstRow, int endRow,
                             const int* thresholds, int* starts) {
    // A lane and the column to its right must lie inside the image.
    if (width < kLane + 1)
        return plain::findStripeStarts(image, width, firstColumn, endColumn, firstRow, endRow, thresholds, starts);
    const int first = firstColumn < width - kLane - 1 ? firstColumn : width - kLane - 1;

    // Brighter than a threshold is at least one more, from 0 on; nothing is brighter than 255.
    Byte leastGreys[kLane];
    Mask open = 0;
    for (int i = 0; i < kLane; ++i) {
        const int threshold = thresholds[first + i];
        leastGreys[i] = static_cast<Byte>(threshold < 0 ? 0 : threshold < 255 ? threshold + 1 : 255);
        const bool wanted = first + i >= firstColumn && first + i < endColumn;
        if (wanted) starts[first + i] = kNoStripe;
        if (wanted && threshold < 255) open |= Mask{1} << i;
    }
    const Bytes least = Bytes::load(leastGreys);

    for (int r = firstRow; r < endRow && open != 0; r += kBandRows) {
        const int rows = rowsOfBand(r, endRow);
        const Byte* row = image + static_cast<std::ptrdiff_t>(r) * width + first;
        if ((atLeast(maxOfRows(row, width, rows), least) & open) == 0) continue;

        for (int i = 0; i < rows; ++i, row += width) {
            const Mask bright = atLeast(Bytes::load(row), least) & open;
            if (bright == 0) continue;
            const Mask found = startsInRow(row, width, least, bright);
            for (Mask rest = found; rest != 0; rest &= rest - 1) starts[first + lowestBit(rest)] = r + i;
            open &= ~found;
        }
    }
}

}  // namespace KORVANELASERALGO::kernels::KORVANE_KERNEL_SET

#endif  // KORVANE_KERNELS_LANES_STRIPESTARTS_H
