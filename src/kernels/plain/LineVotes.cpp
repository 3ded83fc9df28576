#include <algorithm>
#include <cmath>
#include <utility>

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

// The steps of a distance never turn the order of two numbers round, so the distances of a box lie between those of two
// opposite corners.
std::int32_t boundVotes(const VoteBoxes& boxes, float cosine, float sine, std::int32_t middle, std::int32_t* changes) {
    const auto bucketOf = [&](float x, float y) {
        return (middle + static_cast<std::int32_t>(x * cosine + y * sine + 0.5f)) / kBucketDistances;
    };
    std::int32_t end = 0;
    for (std::size_t i = 0; i < boxes.boxes; ++i) {
        const bool left = cosine >= 0.0f;
        const bool top = sine >= 0.0f;
        const std::int32_t nearest =
            bucketOf((left ? boxes.left : boxes.right)[i], (top ? boxes.top : boxes.bottom)[i]);
        const std::int32_t farthest =
            bucketOf((left ? boxes.right : boxes.left)[i], (top ? boxes.bottom : boxes.top)[i]);
        changes[nearest] += boxes.votes[i];
        changes[farthest + 1] -= boxes.votes[i];
        end = std::max(end, farthest + 2);
    }
    std::int32_t sum = 0;
    std::int32_t most = 0;
    for (std::int32_t bucket = 0; bucket < end; ++bucket) {
        sum += std::exchange(changes[bucket], 0);
        most = std::max(most, sum);
    }
    return most;
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
