// Lanes of doubles over several registers, so that the latency of a division or a square root is hidden behind the
// other registers'.

#ifndef KORVANE_KERNELS_LANES_MANYDOUBLES_H
#define KORVANE_KERNELS_LANES_MANYDOUBLES_H

#include "kernels/lanes/Points.h"

namespace KORVANELASERALGO::kernels::KORVANE_KERNEL_SET {

struct ManyDoubles {
    static constexpr std::size_t kRegisters = 4;
    static constexpr std::size_t kCount = kRegisters * Doubles::kCount;
    Doubles part[kRegisters];

    template <class Operation>
    static ManyDoubles make(Operation operation) {
        ManyDoubles result;
        for (std::size_t i = 0; i < kRegisters; ++i) result.part[i] = operation(i);
        return result;
    }

    ManyDoubles() = default;
    explicit ManyDoubles(double value) : ManyDoubles(make([value](std::size_t) { return Doubles::fill(value); })) {}
};

/// One answer per number.
struct ManyFlags {
    DoubleMask part[ManyDoubles::kRegisters];

    template <class Operation>
    static ManyFlags make(Operation operation) {
        ManyFlags result;
        for (std::size_t i = 0; i < ManyDoubles::kRegisters; ++i) result.part[i] = operation(i);
        return result;
    }
    /// Is each byte not 0?
    static ManyFlags ofBytes(const void* bytes) {
        const std::uint8_t* first = static_cast<const std::uint8_t*>(bytes);
        return make([first](std::size_t i) { return DoubleMask::ofBytes(first + i * Doubles::kCount); });
    }
};

inline ManyDoubles operator+(const ManyDoubles& a, const ManyDoubles& b) {
    return ManyDoubles::make([&](std::size_t i) { return a.part[i] + b.part[i]; });
}
inline ManyDoubles operator-(const ManyDoubles& a, const ManyDoubles& b) {
    return ManyDoubles::make([&](std::size_t i) { return a.part[i] - b.part[i]; });
}
inline ManyDoubles operator*(const ManyDoubles& a, const ManyDoubles& b) {
    return ManyDoubles::make([&](std::size_t i) { return a.part[i] * b.part[i]; });
}
inline ManyDoubles operator/(const ManyDoubles& a, const ManyDoubles& b) {
    return ManyDoubles::make([&](std::size_t i) { return a.part[i] / b.part[i]; });
}
inline ManyDoubles negated(const ManyDoubles& a) {
    return ManyDoubles::make([&](std::size_t i) { return negated(a.part[i]); });
}
inline ManyDoubles squareRoot(const ManyDoubles& a) {
    return ManyDoubles::make([&](std::size_t i) { return squareRoot(a.part[i]); });
}
/// Rounded to single precision and widened again.
inline ManyDoubles throughSingle(const ManyDoubles& a) {
    return ManyDoubles::make([&](std::size_t i) { return throughSingle(a.part[i]); });
}

inline ManyFlags operator<(const ManyDoubles& a, const ManyDoubles& b) {
    return ManyFlags::make([&](std::size_t i) { return less(a.part[i], b.part[i]); });
}
inline ManyFlags operator>(const ManyDoubles& a, const ManyDoubles& b) {
    return b < a;
}
inline ManyFlags operator&(const ManyFlags& a, const ManyFlags& b) {
    return ManyFlags::make([&](std::size_t i) { return a.part[i] & b.part[i]; });
}
inline ManyFlags operator|(const ManyFlags& a, const ManyFlags& b) {
    return ManyFlags::make([&](std::size_t i) { return a.part[i] | b.part[i]; });
}
inline bool allOf(const ManyFlags& flags) {
    DoubleMask all = flags.part[0];
    for (std::size_t i = 1; i < ManyDoubles::kRegisters; ++i) all = all & flags.part[i];
    return bitsOf(all) == kAllDoubles;
}
inline ManyDoubles choose(const ManyFlags& flags, const ManyDoubles& yes, const ManyDoubles& no) {
    return ManyDoubles::make([&](std::size_t i) { return choose(flags.part[i], yes.part[i], no.part[i]); });
}

/// From and to x0 y0 x1 y1 ...
inline void loadPairs(const double* p, ManyDoubles& x, ManyDoubles& y) {
    for (std::size_t i = 0; i < ManyDoubles::kRegisters; ++i)
        loadPairs(p + 2 * i * Doubles::kCount, x.part[i], y.part[i]);
}
inline void storePairs(double* p, const ManyDoubles& x, const ManyDoubles& y) {
    for (std::size_t i = 0; i < ManyDoubles::kRegisters; ++i)
        storePairs(p + 2 * i * Doubles::kCount, x.part[i], y.part[i]);
}
/// To x0 y0 z0 x1 y1 z1 ...
inline void storeTriples(double* p, const ManyDoubles& x, const ManyDoubles& y, const ManyDoubles& z) {
    for (std::size_t i = 0; i < ManyDoubles::kRegisters; ++i)
        storeTriples(p + 3 * i * Doubles::kCount, x.part[i], y.part[i], z.part[i]);
}

}  // namespace KORVANELASERALGO::kernels::KORVANE_KERNEL_SET

#endif  // KORVANE_KERNELS_LANES_MANYDOUBLES_H
