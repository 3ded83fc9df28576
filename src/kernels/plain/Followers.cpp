#include <cmath>

#include "kernels/plain/plain.h"

namespace KORVANELASERALGO::kernels::plain {

std::size_t countFollowers(const double* points, std::size_t count, double limit) {
    std::size_t i = 0;
    for (; i < count; ++i, points += 3) {
        const bool follows = std::fabs(points[0] - points[-3]) < limit && std::fabs(points[2] - points[-1]) < limit;
        if (points[0] == 0.0 || !follows) break;
    }
    return i;
}

}  // namespace KORVANELASERALGO::kernels::plain
