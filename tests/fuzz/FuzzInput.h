// Parameters out of a byte string: every case of the differential tests is made from bytes alone, so that a fuzzer can
// steer it and a find can be repeated from its bytes.

#ifndef KORVANE_TESTS_FUZZ_FUZZINPUT_H
#define KORVANE_TESTS_FUZZ_FUZZINPUT_H

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <vector>

namespace fuzz {

using Bytes = std::vector<unsigned char>;

/// A small random generator (SplitMix64) with the same numbers on every system.
class Noise {
public:
    explicit Noise(std::uint64_t seed) : state_(seed) {}

    std::uint64_t next() {
        state_ += 0x9E3779B97F4A7C15u;
        std::uint64_t z = state_;
        z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9u;
        z = (z ^ (z >> 27)) * 0x94D049BB133111EBu;
        return z ^ (z >> 31);
    }

    /// A whole number from `low` to `high`, both included.
    int range(int low, int high) {
        const std::uint64_t values = static_cast<std::uint64_t>(std::int64_t{high} - low) + 1;
        return static_cast<int>(low + static_cast<std::int64_t>(next() % values));
    }
    bool oneIn(int n) { return range(1, n) == n; }

    template <class Values>
    auto pick(const Values& values) {
        return *(values.begin() + range(0, static_cast<int>(values.size()) - 1));
    }

private:
    std::uint64_t state_;
};

/// Reads parameters from a byte string. Past its end every byte is 0, so each first choice is a plain one.
class FuzzInput {
public:
    FuzzInput(const unsigned char* data, std::size_t size) : data_(data), size_(size) {}

    unsigned char byte() { return next_ < size_ ? data_[next_++] : static_cast<unsigned char>(0); }

    /// A whole number from `low` to `high`, both included; takes as many bytes as the range needs.
    int range(int low, int high) {
        const std::uint64_t values = static_cast<std::uint64_t>(std::int64_t{high} - low) + 1;
        std::uint64_t value = 0;
        for (std::uint64_t reached = 1; reached < values; reached <<= 8) value = value << 8 | byte();
        return static_cast<int>(low + static_cast<std::int64_t>(value % values));
    }
    bool oneIn(int n) { return range(1, n) == n; }

    template <class Values>
    auto pick(const Values& values) {
        return *(values.begin() + range(0, static_cast<int>(values.size()) - 1));
    }
    template <class Value>
    Value pick(std::initializer_list<Value> values) {
        return pick<std::initializer_list<Value>>(values);
    }

    /// A number from `low` to `high` in 65535 equal steps.
    double real(double low, double high) { return low + (high - low) * (range(0, 65535) / 65535.0); }

    /// The next bytes as an input of their own, for what has to be drawn later and must not run dry.
    FuzzInput take(std::size_t count) {
        const std::size_t first = next_;
        next_ = std::min(next_ + count, size_);
        return FuzzInput(data_ + first, next_ - first);
    }

    /// A random generator seeded from the bytes.
    Noise noise() { return Noise(static_cast<std::uint64_t>(range(0, 0xFFFFFF))); }

private:
    const unsigned char* data_;
    std::size_t size_;
    std::size_t next_ = 0;
};

/// The byte string of case `index` in the seeded runs.
inline Bytes randomInput(std::uint64_t seed, std::uint64_t index) {
    constexpr int kLongest = 384;  // bytes
    Noise noise(Noise(seed).next() + index);
    Bytes input(static_cast<std::size_t>(noise.range(0, kLongest)));
    for (unsigned char& byte : input) byte = static_cast<unsigned char>(noise.range(0, 255));
    return input;
}

}  // namespace fuzz

#endif  // KORVANE_TESTS_FUZZ_FUZZINPUT_H
