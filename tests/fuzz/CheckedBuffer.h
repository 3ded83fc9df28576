// The buffers that the compared methods work on.

#ifndef KORVANE_TESTS_FUZZ_CHECKEDBUFFER_H
#define KORVANE_TESTS_FUZZ_CHECKEDBUFFER_H

#include <algorithm>
#include <cstddef>
#include <memory>
#include <vector>

// The address sanitizer sees reads beyond a buffer too, provided that nothing of ours follows there.
#if defined(__SANITIZE_ADDRESS__)
#define KORVANE_FUZZ_GUARD_BYTES 0
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define KORVANE_FUZZ_GUARD_BYTES 0
#endif
#endif
#if !defined(KORVANE_FUZZ_GUARD_BYTES)
#define KORVANE_FUZZ_GUARD_BYTES 64
#endif

namespace fuzz {

/// Exactly as many elements as a list, between two stretches of guard bytes.
template <class T>
class CheckedBuffer {
public:
    template <class Value>
    explicit CheckedBuffer(const std::vector<Value>& values)
        : size_(values.size()), bytes_(new unsigned char[byteCount()]) {
        std::fill_n(bytes_.get(), byteCount(), pattern_);
        std::uninitialized_value_construct_n(data(), size_);
        std::transform(values.begin(), values.end(), data(), [](const Value& value) { return static_cast<T>(value); });
    }

    T* data() { return reinterpret_cast<T*>(bytes_.get() + kGuard); }

    template <class Value>
    std::vector<Value> values() {
        return std::vector<Value>(data(), data() + size_);
    }

    bool guardsIntact() const {
        const auto isPattern = [this](unsigned char byte) { return byte == pattern_; };
        return std::all_of(bytes_.get(), bytes_.get() + kGuard, isPattern) &&
               std::all_of(bytes_.get() + byteCount() - kGuard, bytes_.get() + byteCount(), isPattern);
    }

private:
    static constexpr std::size_t kGuard = KORVANE_FUZZ_GUARD_BYTES;  // keeps the alignment of every element type

    // Two buffers in a row never have the same, so what is copied from beyond one shows beyond the other.
    static unsigned char nextPattern() {
        static unsigned char pattern = 0;
        return pattern = static_cast<unsigned char>(pattern + 0x65);
    }
    std::size_t byteCount() const { return kGuard + size_ * sizeof(T) + kGuard; }

    std::size_t size_;
    unsigned char pattern_ = nextPattern();
    std::unique_ptr<unsigned char[]> bytes_;
};

}  // namespace fuzz

#endif  // KORVANE_TESTS_FUZZ_CHECKEDBUFFER_H
