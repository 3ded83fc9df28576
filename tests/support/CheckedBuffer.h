// Buffers between guard bytes or inaccessible pages.

#ifndef KORVANE_TESTS_SUPPORT_CHECKEDBUFFER_H
#define KORVANE_TESTS_SUPPORT_CHECKEDBUFFER_H

#include <algorithm>
#include <cstddef>
#include <memory>
#include <vector>

#include "support/PageMemory.h"

// The address sanitizer sees reads beyond a buffer too, provided that nothing of ours follows there.
#if defined(__SANITIZE_ADDRESS__)
#define KORVANE_TESTS_GUARD_BYTES 0
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define KORVANE_TESTS_GUARD_BYTES 0
#endif
#endif
#if !defined(KORVANE_TESTS_GUARD_BYTES)
#define KORVANE_TESTS_GUARD_BYTES 64
#endif

namespace support {

/// Where the elements of a buffer lie.
enum class Placement {
    kBetweenGuardBytes,  ///< on the heap
    kAtPageStart,        ///< behind an inaccessible page, before guard bytes
    kAtPageEnd,          ///< behind guard bytes, before an inaccessible page; starts at any address
};

/// Room for a buffer's bytes, and for the guard bytes around them.
class BufferRoom {
public:
    explicit BufferRoom(std::size_t bytes) {
        if (placement_ == Placement::kBetweenGuardBytes) {
            heap_.reset(new unsigned char[kHeapGuard + bytes + kHeapGuard]);
            begin_ = heap_.get();
            data_ = begin_ + kHeapGuard;
            end_ = data_ + bytes + kHeapGuard;
            return;
        }
        pages_ = std::make_unique<PageMemory>(kPageGuard + bytes);
        const bool atStart = placement_ == Placement::kAtPageStart;
        data_ = atStart ? pages_->begin() : pages_->end() - bytes;
        begin_ = atStart ? data_ : data_ - kPageGuard;
        end_ = atStart ? data_ + bytes + kPageGuard : pages_->end();
    }

    unsigned char* begin() const { return begin_; }
    unsigned char* data() const { return data_; }
    unsigned char* end() const { return end_; }

    /// Places the buffers that are made from now on.
    static void place(Placement placement) { placement_ = placement; }

private:
    static constexpr std::size_t kHeapGuard = KORVANE_TESTS_GUARD_BYTES;  // keeps the alignment of every element type
    static constexpr std::size_t kPageGuard = 64;

    inline static Placement placement_ = Placement::kBetweenGuardBytes;

    std::unique_ptr<unsigned char[]> heap_;
    std::unique_ptr<PageMemory> pages_;
    unsigned char* begin_;  // with the guard bytes before the data
    unsigned char* data_;
    unsigned char* end_;  // with the guard bytes behind the data
};

/// Exactly as many elements as a list, between two stretches of guard bytes or inaccessible pages.
template <class T>
class CheckedBuffer {
public:
    template <class Value>
    explicit CheckedBuffer(const std::vector<Value>& values) : size_(values.size()), room_(size_ * sizeof(T)) {
        std::fill(room_.begin(), room_.end(), pattern_);
        std::uninitialized_value_construct_n(data(), size_);
        std::transform(values.begin(), values.end(), data(), [](const Value& value) { return static_cast<T>(value); });
    }

    T* data() { return reinterpret_cast<T*>(room_.data()); }
    std::size_t size() const { return size_; }

    template <class Value>
    std::vector<Value> values() {
        return std::vector<Value>(data(), data() + size_);
    }

    bool guardsIntact() const {
        const auto isPattern = [this](unsigned char byte) { return byte == pattern_; };
        return std::all_of(room_.begin(), room_.data(), isPattern) &&
               std::all_of(room_.data() + size_ * sizeof(T), room_.end(), isPattern);
    }

private:
    // Two buffers in a row never have the same, so what is copied from beyond one shows beyond the other.
    static unsigned char nextPattern() {
        static unsigned char pattern = 0;
        return pattern = static_cast<unsigned char>(pattern + 0x65);
    }

    std::size_t size_;
    unsigned char pattern_ = nextPattern();
    BufferRoom room_;
};

}  // namespace support

#endif  // KORVANE_TESTS_SUPPORT_CHECKEDBUFFER_H
