// The median around each height of a list, for windows of few heights, by a network of minima and maxima. Each lane is
// a pair of neighbouring medians.
//
// The windows around heights j and j + 1 share all but one height each: 2 r heights, which lie in r pairs of the list.
// Of those the two in the middle are found, by discarding the smallest and the largest of r + 2, of r + 1, ... of them;
// the median is the height that the window has for itself, moved between those two. Where no height is not a number and
// none is -0.0, equal heights are the same bits, so no choice among them shows.

#ifndef KORVANE_KERNELS_LANES_MEDIANS_H
#define KORVANE_KERNELS_LANES_MEDIANS_H

#include "kernels/lanes/Floats.h"
#include "kernels/plain/plain.h"

namespace KORVANELASERALGO::kernels::KORVANE_KERNEL_SET {

inline void sortTwo(Floats& a, Floats& b) {
    const Floats smaller = min(a, b);
    b = max(a, b);
    a = smaller;
}

// Of values that are sorted in pairs, puts the smallest to the front and the largest to the back.
template <int size>
inline void moveExtremesOut(Floats* values) {
    for (int i = 2; i < size; i += 2) sortTwo(values[0], values[i]);
    for (int i = 1; i < size - 1; i += 2) sortTwo(values[i], values[size - 1]);
}

// Discards the smallest and the largest and takes in the next of the values that are left, until two remain.
template <int size>
inline void narrowDown(Floats* values, const Floats* next, Floats& low, Floats& high) {
    moveExtremesOut<size>(values);
    if constexpr (size == 4) {
        low = values[1];
        high = values[2];
        sortTwo(low, high);
    } else {
        Floats* rest = values + 1;
        rest[size - 2] = *next;
        for (int i = 0; i + 1 < size - 1; i += 2) sortTwo(rest[i], rest[i + 1]);
        narrowDown<size - 1>(rest, next + 1, low, high);
    }
}

// The two in the middle of r sorted pairs.
template <int r>
inline void findMiddle(const float* smaller, const float* larger, Floats& low, Floats& high) {
    if constexpr (r == 1) {
        low = Floats::load(smaller);
        high = Floats::load(larger);
    } else {
        Floats values[2 * r];
        for (int i = 0; i < r; ++i) {
            values[2 * i] = Floats::load(smaller + i);
            values[2 * i + 1] = Floats::load(larger + i);
        }
        narrowDown<r + 2>(values, values + r + 2, low, high);
    }
}

// Windows up to this reach; larger ones are faster kept sorted.
inline constexpr int kMostReach = 24;

// The same for any r from 2 to kMostReach, with values that stay in memory.
inline void findMiddle(const float* smaller, const float* larger, int r, Floats& low, Floats& high) {
    Floats values[2 * kMostReach];
    Floats* end = values;
    for (int i = 0; i < r; ++i) {
        *end++ = Floats::load(smaller + i);
        *end++ = Floats::load(larger + i);
    }
    // The extremes come out at the front, where the next value takes the place of one of them.
    Floats* rest = values;
    const Floats* next = values + r + 2;
    for (int size = r + 2;; --size) {
        Floats smallest = rest[0];
        Floats largest = rest[1];
        sortTwo(smallest, largest);
        for (int i = 2; i < size - 1; i += 2) {
            Floats a = rest[i];
            Floats b = rest[i + 1];
            sortTwo(a, b);
            sortTwo(smallest, a);
            sortTwo(b, largest);
            rest[i] = a;
            rest[i + 1] = b;
        }
        if (size % 2 != 0) {
            sortTwo(smallest, rest[size - 1]);
            sortTwo(rest[size - 1], largest);
        }
        if (size == 4) break;
        *++rest = *next++;
    }
    low = rest[2];
    high = rest[3];
    sortTwo(low, high);
}

// Pairs of medians that are found together: their heights, split and sorted, stay in the nearest cache.
inline constexpr int kMedianPairs = 128;

// @param findMiddleOf findMiddle for this r
template <class FindMiddle>
inline bool findMediansWith(FindMiddle findMiddleOf, const double* heights, std::size_t count, int r, double* medians) {
    constexpr int kFloats = Floats::kCount;
    constexpr int kPairs = (kMedianPairs + kMostReach + kFloats) / kFloats * kFloats;
    const std::size_t pairs = (count + 1) / 2;
    for (std::size_t first = 0; first < pairs; first += kMedianPairs) {
        const int size = pairs - first < kMedianPairs ? static_cast<int>(pairs - first) : kMedianPairs;
        float even[kPairs];
        float odd[kPairs];
        float smaller[kPairs];
        float larger[kPairs];
        for (int i = 0; i < size + r + 1; i += kFloats) {
            const auto [a, b] = splitRounded(heights + 2 * (first + static_cast<std::size_t>(i)));
            if (anyWithoutOrder(a) || anyWithoutOrder(b)) return false;
            a.store(even + i);
            b.store(odd + i);
            min(a, b).store(smaller + i);
            max(a, b).store(larger + i);
        }
        for (int i = 0; i < size; i += kFloats) {
            Floats low;
            Floats high;
            findMiddleOf(smaller + i + 1, larger + i + 1, low, high);
            const Floats a = max(low, min(Floats::load(odd + i), high));
            const Floats b = max(low, min(Floats::load(even + i + r + 1), high));
            storeInTurn(medians + 2 * (first + static_cast<std::size_t>(i)), a, b);
        }
    }
    return true;
}

template <int r>
inline bool findMediansOfReach(const double* heights, std::size_t count, double* medians) {
    const auto middleOf = [](const float* smaller, const float* larger, Floats& low, Floats& high) {
        findMiddle<r>(smaller, larger, low, high);
    };
    return findMediansWith(middleOf, heights, count, r, medians);
}

inline bool findMedians(const double* heights, std::size_t count, int r, double* medians) {
    switch (r) {
        case 1:
            return findMediansOfReach<1>(heights, count, medians);
        case 2:
            return findMediansOfReach<2>(heights, count, medians);
        case 3:
            return findMediansOfReach<3>(heights, count, medians);
        case 4:
            return findMediansOfReach<4>(heights, count, medians);
        case 5:
            return findMediansOfReach<5>(heights, count, medians);
        case 6:
            return findMediansOfReach<6>(heights, count, medians);
        case 7:
            return findMediansOfReach<7>(heights, count, medians);
        default:
            break;
    }
    if (r < 1 || r > kMostReach) return false;
    const auto middleOf = [r](const float* smaller, const float* larger, Floats& low, Floats& high) {
        findMiddle(smaller, larger, r, low, high);
    };
    return findMediansWith(middleOf, heights, count, r, medians);
}

}  // namespace KORVANELASERALGO::kernels::KORVANE_KERNEL_SET

#endif  // KORVANE_KERNELS_LANES_MEDIANS_H
