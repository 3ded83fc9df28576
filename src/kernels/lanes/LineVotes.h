// Votes for lines, and the points near one. Distances are computed for 16 points at once, each by the operations of the
// plain pass in their order; votes are whole numbers, so it does not matter which row counts them. Boxes that the line
// does not come near are passed over.

#ifndef KORVANE_KERNELS_LANES_LINEVOTES_H
#define KORVANE_KERNELS_LANES_LINEVOTES_H

#include <immintrin.h>

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

// The largest of the sums of the first 1, 2, ... changes, at least 0; leaves zeros. Sums of four grow from lane to
// lane.
inline std::int32_t largestSum(std::int32_t* changes, std::ptrdiff_t count) {
    const auto largerOf = [](__m128i a, __m128i b) {
        const __m128i isLarger = _mm_cmpgt_epi32(a, b);
        return _mm_or_si128(_mm_and_si128(isLarger, a), _mm_andnot_si128(isLarger, b));
    };
    __m128i before = _mm_setzero_si128();
    __m128i largest = _mm_setzero_si128();
    std::ptrdiff_t i = 0;
    for (; i + 4 <= count; i += 4) {
        auto* place = reinterpret_cast<__m128i*>(changes + i);
        __m128i sums = _mm_loadu_si128(place);
        _mm_storeu_si128(place, _mm_setzero_si128());
        sums = _mm_add_epi32(sums, _mm_slli_si128(sums, 4));
        sums = _mm_add_epi32(sums, _mm_slli_si128(sums, 8));
        sums = _mm_add_epi32(sums, before);
        before = _mm_shuffle_epi32(sums, _MM_SHUFFLE(3, 3, 3, 3));
        largest = largerOf(sums, largest);
    }
    std::int32_t sum = _mm_cvtsi128_si32(before);
    largest = largerOf(largest, _mm_shuffle_epi32(largest, _MM_SHUFFLE(1, 0, 3, 2)));
    largest = largerOf(largest, _mm_shuffle_epi32(largest, _MM_SHUFFLE(2, 3, 0, 1)));
    std::int32_t result = _mm_cvtsi128_si32(largest);
    for (; i < count; ++i) {
        sum += changes[i];
        changes[i] = 0;
        result = sum > result ? sum : result;
    }
    return result;
}

inline std::int32_t boundVotes(const VoteBoxes& boxes, float cosine, float sine, std::int32_t middle,
                               std::int32_t* changes) {
    const float* nearX = cosine < 0.0f ? boxes.right : boxes.left;
    const float* farX = cosine < 0.0f ? boxes.left : boxes.right;
    const float* nearY = sine < 0.0f ? boxes.bottom : boxes.top;
    const float* farY = sine < 0.0f ? boxes.top : boxes.bottom;
    const auto bucketOf = [&](float x, float y) {
        const std::int32_t index = middle + static_cast<std::int32_t>(x * cosine + y * sine + 0.5f);
        return static_cast<std::int32_t>(static_cast<std::uint32_t>(index) / kBucketDistances);
    };

    // A box counts from its first bucket on, and no more behind its last one.
    constexpr int kBoxes = 4 * kVoters;  // at a time; more than registers hold, so that their buckets are stored
    std::int32_t lowest[kVoters];
    std::int32_t highest[kVoters];
    for (int i = 0; i < kVoters; ++i) lowest[i] = highest[i] = bucketOf(nearX[0], nearY[0]);
    for (std::size_t first = 0; first < boxes.boxes; first += kBoxes) {
        const std::size_t rest = boxes.boxes - first;
        const int count = rest < kBoxes ? static_cast<int>(rest) : kBoxes;
        std::int32_t from[kBoxes];
        std::int32_t to[kBoxes];
        for (int lane = 0; lane < count; lane += kVoters) {
            for (int i = 0; i < kVoters; ++i) {
                const std::size_t box = first + static_cast<std::size_t>(lane + i);
                const std::int32_t nearest = bucketOf(nearX[box], nearY[box]);
                const std::int32_t farthest = bucketOf(farX[box], farY[box]);
                from[lane + i] = nearest;
                to[lane + i] = farthest + 1;
                lowest[i] = nearest < lowest[i] ? nearest : lowest[i];
                highest[i] = farthest > highest[i] ? farthest : highest[i];
            }
        }
        for (int i = 0; i < count; ++i) {
            const std::int32_t votes = boxes.votes[first + static_cast<std::size_t>(i)];
            changes[from[i]] += votes;
            changes[to[i]] -= votes;
        }
    }

    std::int32_t begin = lowest[0];
    std::int32_t last = highest[0] + 1;
    for (int i = 1; i < kVoters; ++i) {
        begin = lowest[i] < begin ? lowest[i] : begin;
        last = highest[i] >= last ? highest[i] + 1 : last;
    }
    return largestSum(changes + begin, last - begin + 1);
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
