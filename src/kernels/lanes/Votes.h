// Points whose neighbours agree too rarely with them. Most groups of points lie so close together in depth that no vote
// needs to be counted; elsewhere each lane is a point and counts depths, and the few points that too few depths agree
// with count directions, with neighbours as lanes.

#ifndef KORVANE_KERNELS_LANES_VOTES_H
#define KORVANE_KERNELS_LANES_VOTES_H

#include "kernels/lanes/Bytes.h"
#include "kernels/lanes/Points.h"
#include "kernels/plain/plain.h"

namespace KORVANELASERALGO::kernels::KORVANE_KERNEL_SET {

inline constexpr double kLargestFloat = 0x1.fffffep127;

inline std::size_t listUsable(const double* points, std::size_t first, std::size_t end, double* x, double* z,
                              std::int32_t* positions) {
    std::size_t listed = 0;
    std::size_t i = first;
    for (; i + kGroupPoints <= end; i += kGroupPoints) {
        const PointGroup group = PointGroup::load(points + 3 * i);
        if (group.allX() && group.allZ()) {
            group.storeX(x + listed);
            group.storeZ(z + listed);
            for (std::size_t k = 0; k < kGroupPoints; ++k) positions[listed + k] = static_cast<std::int32_t>(i + k);
            listed += kGroupPoints;
        } else {
            listed += plain::listUsable(points, i, i + kGroupPoints, x + listed, z + listed, positions + listed);
        }
    }
    return listed + plain::listUsable(points, i, end, x + listed, z + listed, positions + listed);
}

// For each lane, is the number of depths around it that are less than `threshold` away at most w?
inline unsigned fewDepthsAgree(const double* z, std::size_t w, double threshold) {
    const Doubles own = Doubles::load(z);
    const Doubles limit = Doubles::fill(threshold);
    const Doubles one = Doubles::fill(1.0);
    Doubles agreeing = Doubles::fill(0.0);
    for (std::size_t k = 0; k < 2 * w; ++k)
        agreeing = addWhere(less(absolute(Doubles::load(z + k - w) - own), limit), agreeing, one);
    return ~bitsOf(less(Doubles::fill(static_cast<double>(w)), agreeing)) & kAllDoubles;
}

inline std::size_t countWithin(const double* values, std::size_t count, double centre, double distance) {
    const Doubles middle = Doubles::fill(centre);
    const Doubles limit = Doubles::fill(distance);
    std::size_t within = 0;
    for (std::size_t i = 0; i < count; i += Doubles::kCount) {
        const unsigned lanes = count - i < Doubles::kCount ? (1u << (count - i)) - 1 : kAllDoubles;
        within += countBits(bitsOf(less(absolute(middle - Doubles::load(values + i)), limit)) & lanes);
    }
    return within;
}

// The slopes of the segments that end at each point, found as far as they are asked for, from left to right.
struct Slopes {
    const double* x;
    const double* z;
    double* slopes;
    std::size_t end = 1;  // they are known up to here, as far as they were needed

    Slopes(const double* ofX, const double* ofZ, double* buffer) : x(ofX), z(ofZ), slopes(buffer) {}

    void find(std::size_t from, std::size_t to) {
        for (end = end < from ? from : end; end < to; end += Doubles::kCount) {
            const Doubles dx = Doubles::load(x + end) - Doubles::load(x + end - 1);
            const Doubles dz = Doubles::load(z + end) - Doubles::load(z + end - 1);
            (dx / dz).store(slopes + end);
        }
    }
};

// Do more than w directions around point j, which is none of the first two, agree with its own?
inline bool directionsAgree(Slopes& known, std::size_t j, std::size_t count, std::size_t w, double slopeBound) {
    const std::size_t first = j <= w ? 1 : j - w;
    const std::size_t end = count - j < w ? count : j + w;
    known.find(first, j < end ? end : j + 1);
    const double own = static_cast<double>(static_cast<float>(known.slopes[j]));
    if (own == 0.0) return false;
    const double* slopes = known.slopes;
    const std::size_t before = countWithin(slopes + first, j - first, own, slopeBound);
    return before + (j + 1 < end ? countWithin(slopes + j + 1, end - j - 1, own, slopeBound) : 0) > w;
}

inline std::size_t keepOutliers(const double* x, const double* z, std::size_t count, std::size_t w, double threshold,
                                double slopeBound, double* slopes, std::int32_t* positions) {
    constexpr std::size_t kGroup = 16;
    // Depths that are all this close to one of them are less than the threshold apart, also after rounding. Of the
    // neighbours -w .. w - 1 the nearest w + 1 are enough.
    const double close = 0.48 * (threshold > kLargestFloat ? kLargestFloat : threshold);
    const std::size_t before = w - w / 2;
    std::size_t outliers = 0;
    Slopes known(x, z, slopes);

    for (std::size_t j = 0; j < count; j += kGroup) {
        if (w > 0 && allWithin(z + j - before, kGroup + w, z[j + kGroup / 2], close)) continue;
        for (std::size_t i = j; i < j + kGroup && i < count; i += Doubles::kCount) {
            for (unsigned few = fewDepthsAgree(z + i, w, threshold); few != 0; few &= few - 1) {
                const std::size_t point = i + static_cast<std::size_t>(lowestBit(few));
                if (point >= count) break;
                if (point >= 2 && directionsAgree(known, point, count, w, slopeBound)) continue;
                positions[outliers++] = positions[point];
            }
        }
    }
    return outliers;
}

}  // namespace KORVANELASERALGO::kernels::KORVANE_KERNEL_SET

#endif  // KORVANE_KERNELS_LANES_VOTES_H
