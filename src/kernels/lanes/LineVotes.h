// Votes for lines, and the points near one. Distances are computed for 16 points at once, each by the operations of the
// plain pass in their order; votes are whole numbers, so it does not matter which row counts them. Boxes that the line
// does not come near are passed over.

#ifndef KORVANE_KERNELS_LANES_LINEVOTES_H
#define KORVANE_KERNELS_LANES_LINEVOTES_H

#include "kernels/plain/plain.h"

namespace KORVANELASERALGO::kernels::KORVANE_KERNEL_SET {

inline constexpr int kVoters = 16;  // points looked at together

inline void castVotes(const float* x, const float* y, std::size_t count, float cosine, float sine, std::int32_t* votes,
                      std::ptrdiff_t stride) {
    for (; count >= kVoters; count -= kVoters, x += kVoters, y += kVoters) {
        std::int32_t distances[kVoters];
        for (int i = 0; i < kVoters; ++i) distances[i] = static_cast<std::int32_t>(x[i] * cosine + y[i] * sine + 0.5f);
        for (int i = 0; i < kVoters; ++i) ++votes[i % kVoteRows * stride + distances[i]];
    }
    plain::castVotes(x, y, count, cosine, sine, votes, stride);
}

inline std::int32_t sumVotes(std::int32_t* votes, std::ptrdiff_t stride, std::ptrdiff_t count, std::int32_t* sums) {
    static_assert(kVoteRows == 4);
    std::int32_t largest = 0;
    for (std::ptrdiff_t i = 0; i < count; ++i) {
        const std::int32_t sum = votes[i] + votes[i + stride] + votes[i + 2 * stride] + votes[i + 3 * stride];
        largest = sum > largest ? sum : largest;
        sums[i] = sum;
        votes[i] = votes[i + stride] = votes[i + 2 * stride] = votes[i + 3 * stride] = 0;
    }
    return largest;
}

struct NearLine {
    float cosine;
    float sine;
    float distance;

    // One answer for each of kBoxPoints points or boxes: is |offset| smaller than the reach? Not-a-number is not.
    template <class Reach>
    bool any(const float* x, const float* y, Reach reach, std::int32_t* answers) const {
        std::int32_t all = 0;
        for (int i = 0; i < kBoxPoints; ++i) {
            const float offset = x[i] * cosine + y[i] * sine - distance;
            answers[i] = (offset < reach(i) ? 1 : 0) & (offset > -reach(i) ? 1 : 0);
            all |= answers[i];
        }
        return all != 0;
    }
};

inline std::size_t findNearLine(const BoxedPoints& points, float cosine, float sine, float distance, float tolerance,
                                float slack, std::size_t* indices) {
    const NearLine line = {cosine, sine, distance};
    const float across = cosine < 0.0f ? -cosine : cosine;
    const float along = sine < 0.0f ? -sine : sine;
    std::size_t found = 0;
    for (std::size_t first = 0; first < points.boxes; first += kBoxPoints) {
        const float* halfWidth = points.halfWidth + first;
        const float* halfHeight = points.halfHeight + first;
        const auto reach = [&](int i) { return halfWidth[i] * across + halfHeight[i] * along + tolerance + slack; };
        std::int32_t boxNear[kBoxPoints];
        if (!line.any(points.centreX + first, points.centreY + first, reach, boxNear)) continue;

        for (int b = 0; b < kBoxPoints; ++b) {
            if (boxNear[b] == 0) continue;
            const std::size_t begin = (first + static_cast<std::size_t>(b)) * kBoxPoints;
            std::int32_t pointNear[kBoxPoints];
            if (!line.any(
                    points.x + begin, points.y + begin, [&](int) { return tolerance; }, pointNear))
                continue;
            for (int i = 0; i < kBoxPoints; ++i) {
                indices[found] = begin + static_cast<std::size_t>(i);
                found += static_cast<std::size_t>(pointNear[i]);
            }
        }
    }
    return found;
}

}  // namespace KORVANELASERALGO::kernels::KORVANE_KERNEL_SET

#endif  // KORVANE_KERNELS_LANES_LINEVOTES_H
