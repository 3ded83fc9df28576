/// @file Digest.h
/// @brief One number for everything that a call wrote, to hold two results against each other.

#ifndef KORVANE_BENCH_DIGEST_H
#define KORVANE_BENCH_DIGEST_H

#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "KorvaneLaserAlgo.h"

namespace bench {

class Digest {
public:
    Digest& add(std::uint64_t word) {
        constexpr std::uint64_t kPrime = 0x100000001b3;
        value_ = (std::rotl(value_, 5) ^ word) * kPrime;
        return *this;
    }
    /// Any not-a-number counts as any other.
    Digest& add(double number) { return add(std::isnan(number) ? 0 : std::bit_cast<std::uint64_t>(number)); }
    Digest& add(const KORVANELASERALGO::tagKorvaneLaserPoint2d& point) { return add(point.x).add(point.y); }
    Digest& add(const KORVANELASERALGO::tagKorvaneLaserPoint3d& point) {
        return add(point.x).add(point.y).add(point.z);
    }
    Digest& add(unsigned char byte) { return add(std::uint64_t{byte}); }
    Digest& add(int number) { return add(static_cast<std::uint64_t>(number)); }
    Digest& add(bool flag) { return add(std::uint64_t{flag}); }

    template <class T>
    Digest& add(const std::vector<T>& values) {
        return add(values.data(), values.size());
    }
    template <class T>
    Digest& add(const T* values, std::size_t count) {
        add(std::uint64_t{count});
        for (std::size_t i = 0; i < count; ++i) add(values[i]);
        return *this;
    }

    std::uint64_t value() const { return value_; }

private:
    std::uint64_t value_ = 0xcbf29ce484222325;
};

}  // namespace bench

#endif  // KORVANE_BENCH_DIGEST_H
