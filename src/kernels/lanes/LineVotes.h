// Votes for lines, and the points near one. Distances are computed for 16 points at once, each by the operations of the
// plain pass in their order; votes are whole numbers, so it does not matter which row counts them.

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

inline std::size_t findNearLine(const float* x, const float* y, std::size_t count, float cosine, float sine,
                                float distance, float tolerance, std::size_t* indices) {
    std::size_t found = 0;
    std::size_t first = 0;
    for (; count - first >= kVoters; first += kVoters) {
        std::int32_t isNear[kVoters];
        std::int32_t any = 0;
        for (int i = 0; i < kVoters; ++i) {
            const float offset = x[first + static_cast<std::size_t>(i)] * cosine +
                                 y[first + static_cast<std::size_t>(i)] * sine - distance;
            isNear[i] = (offset < tolerance ? 1 : 0) & (offset > -tolerance ? 1 : 0);
            any |= isNear[i];
        }
        if (any == 0) continue;
        for (int i = 0; i < kVoters; ++i) {
            indices[found] = first + static_cast<std::size_t>(i);
            found += static_cast<std::size_t>(isNear[i]);
        }
    }
    const std::size_t more =
        plain::findNearLine(x + first, y + first, count - first, cosine, sine, distance, tolerance, indices + found);
    for (std::size_t i = 0; i < more; ++i) indices[found + i] += first;
    return found + more;
}

}  // namespace KORVANELASERALGO::kernels::KORVANE_KERNEL_SET

#endif  // KORVANE_KERNELS_LANES_LINEVOTES_H
