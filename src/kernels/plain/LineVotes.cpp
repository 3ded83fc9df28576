#include <algorithm>
#include <cmath>

#include "kernels/plain/plain.h"

namespace KORVANELASERALGO::kernels::plain {

void castVotes(const float* x, const float* y, std::size_t count, float cosine, float sine, std::int32_t* votes,
               std::ptrdiff_t) {
    for (std::size_t i = 0; i < count; ++i) ++votes[static_cast<std::int32_t>(x[i] * cosine + y[i] * sine + 0.5f)];
}

std::int32_t sumVotes(std::int32_t* votes, std::ptrdiff_t stride, std::ptrdiff_t count, std::int32_t* sums) {
    std::int32_t largest = 0;
    for (std::ptrdiff_t i = 0; i < count; ++i) {
        sums[i] = 0;
        for (int row = 0; row < kVoteRows; ++row) {
            sums[i] += votes[row * stride + i];
            votes[row * stride + i] = 0;
        }
        largest = std::max(largest, sums[i]);
    }
    return largest;
}

std::size_t findNearLine(const BoxedPoints& points, float cosine, float sine, float distance, float tolerance,
                         float slack, std::size_t* indices) {
    std::size_t found = 0;
    for (std::size_t box = 0; box < points.boxes; ++box) {
        const float offset = points.centreX[box] * cosine + points.centreY[box] * sine - distance;
        const float reach = points.halfWidth[box] * std::fabs(cosine) + points.halfHeight[box] * std::fabs(sine);
        if (!(std::fabs(offset) < reach + tolerance + slack)) continue;
        for (std::size_t i = box * kBoxPoints; i < (box + 1) * kBoxPoints; ++i) {
            if (std::fabs(points.x[i] * cosine + points.y[i] * sine - distance) < tolerance) indices[found++] = i;
        }
    }
    return found;
}

}  // namespace KORVANELASERALGO::kernels::plain
