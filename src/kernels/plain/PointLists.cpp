#include "kernels/plain/plain.h"

namespace KORVANELASERALGO::kernels::plain {

std::size_t listHeights(const double* points, std::size_t count, double* heights) {
    std::size_t listed = 0;
    for (std::size_t i = 0; i < count; ++i, points += 3) {
        // Behind the list there is room for one more.
        heights[listed] = points[2];
        listed += points[0] != 0.0 ? 1 : 0;
    }
    return listed;
}

std::size_t storeHeights(double* points, std::size_t count, const double* heights) {
    std::size_t stored = 0;
    for (std::size_t i = 0; i < count; ++i, points += 3) {
        if (points[0] != 0.0) points[2] = heights[stored++];
    }
    return stored;
}

}  // namespace KORVANELASERALGO::kernels::plain
