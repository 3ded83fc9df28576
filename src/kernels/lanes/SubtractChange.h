// What remains of a pixel after its absolute change is taken off. Of the two differences that stop at 0 one is 0 and
// the other is the absolute change, so the larger of them is.

#ifndef KORVANE_KERNELS_LANES_SUBTRACTCHANGE_H
#define KORVANE_KERNELS_LANES_SUBTRACTCHANGE_H

#include "kernels/lanes/Blocks.h"

namespace KORVANELASERALGO::kernels::KORVANE_KERNEL_SET {

inline void subtractChange(const Byte* current, std::size_t count, Byte* previous, Byte* out) {
    std::size_t i = 0;
    for (; i + kLane <= count; i += kLane) {
        const Bytes now = Bytes::load(current + i);
        const Bytes before = Bytes::load(previous + i);
        const Bytes change = max(subtract(now, before), subtract(before, now));
        subtract(now, change).store(out + i);
        now.store(previous + i);
    }
    // Not by a lane that overlaps the last one: those pixels have become the previous ones.
    plain::subtractChange(current + i, count - i, previous + i, out + i);
}

}  // namespace KORVANELASERALGO::kernels::KORVANE_KERNEL_SET

#endif  // KORVANE_KERNELS_LANES_SUBTRACTCHANGE_H
