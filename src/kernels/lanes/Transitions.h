// Where columns become bright or dark. A block that is dark all over and was dark above costs one maximum over the
// band, one that is bright all over and was bright above one minimum; elsewhere each row gives one bit per column, and
// the bits that differ from the row above are the transitions.

#ifndef KORVANE_KERNELS_LANES_TRANSITIONS_H
#define KORVANE_KERNELS_LANES_TRANSITIONS_H

#include "kernels/lanes/Blocks.h"

namespace KORVANELASERALGO::kernels::KORVANE_KERNEL_SET {

inline std::size_t findTransitions(const Byte* image, int width, int height, int firstRow, const Byte* thresholds,
                                   const Byte* active, std::uint64_t* state, Transition* transitions) {
    if (width < kLane)
        return plain::findTransitions(image, width, height, firstRow, thresholds, active, state, transitions);
    const int rows = rowsOfBand(firstRow, height);
    const int nextBand = firstRow + rows;
    // Where the caller knows what is active, the image was looked at just before.
    const int rowsBelow = active == nullptr ? rowsOfBand(nextBand, height) : 0;
    const Byte* band = image + static_cast<std::ptrdiff_t>(firstRow) * width;
    const int blocks = blocksOf(width);
    Transition* next = transitions;

    for (int b = 0; b < blocks; ++b) {
        const Block block(b, width);
        Mask brightAbove = state[b];
        if (active != nullptr && active[b] == 0 && brightAbove == 0) continue;

        const Byte* pixels = band + block.first;
        prefetchBelow(pixels, width, rows, rowsBelow);
        const Bytes threshold = Bytes::load(thresholds + block.first);
        if (brightAbove == 0) {
            if (!anyAbove(maxOfRows(pixels, width, rows), threshold)) continue;
        } else if (brightAbove == block.owned) {
            if ((above(minOfRows(pixels, width, rows), threshold) & block.owned) == block.owned) continue;
        }

        for (int r = firstRow; r < nextBand; ++r, pixels += width) {
            const Mask bright = above(Bytes::load(pixels), threshold) & block.owned;
            for (Mask changed = bright ^ brightAbove; changed != 0; changed &= changed - 1)
                *next++ = {block.first + lowestBit(changed), r};
            brightAbove = bright;
        }
        state[b] = brightAbove;
    }
    return static_cast<std::size_t>(next - transitions);
}

}  // namespace KORVANELASERALGO::kernels::KORVANE_KERNEL_SET

#endif  // KORVANE_KERNELS_LANES_TRANSITIONS_H
