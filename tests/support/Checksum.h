// A checksum of results: the same values give the same 64 bits on every compiler and system.

#ifndef KORVANE_TESTS_SUPPORT_CHECKSUM_H
#define KORVANE_TESTS_SUPPORT_CHECKSUM_H

#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "KorvaneLaserAlgo.h"

namespace support {

/// FNV-1a of 64 bits over the values' bytes, the lowest byte first. Every not-a-number counts as the same value; +0.0
/// and -0.0 differ.
class Checksum {
public:
    void add(unsigned char byte) {
        hash_ ^= byte;
        hash_ *= 1099511628211ULL;
    }
    void add(bool flag) { add(static_cast<unsigned char>(flag ? 1 : 0)); }
    void add(int number) { addBytes(static_cast<std::uint32_t>(number), 4); }
    void add(std::uint64_t bits) { addBytes(bits, 8); }
    void add(double number) { add(std::isnan(number) ? kNotANumber : std::bit_cast<std::uint64_t>(number)); }
    void add(const KORVANELASERALGO::tagKorvaneLaserPoint2d& point) {
        add(point.x);
        add(point.y);
    }
    void add(const KORVANELASERALGO::tagKorvaneLaserPoint3d& point) {
        add(point.x);
        add(point.y);
        add(point.z);
    }

    /// Elements of a buffer.
    template <class T>
    void add(const T* values, std::size_t count) {
        for (std::size_t i = 0; i < count; ++i) add(values[i]);
    }
    /// The size, then the elements.
    template <class T>
    void add(const std::vector<T>& values) {
        add(std::uint64_t{values.size()});
        add(values.data(), values.size());
    }

    std::uint64_t value() const { return hash_; }

private:
    static constexpr std::uint64_t kNotANumber = 0x7FF8000000000000ULL;

    void addBytes(std::uint64_t bits, int count) {
        for (int i = 0; i < count; ++i) add(static_cast<unsigned char>(bits >> (8 * i) & 0xFFU));
    }

    std::uint64_t hash_ = 14695981039346656037ULL;
};

}  // namespace support

#endif  // KORVANE_TESTS_SUPPORT_CHECKSUM_H
