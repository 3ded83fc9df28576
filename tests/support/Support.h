// What the tests share: small images, masks, buffers with guard bytes, equality of bits.

#ifndef KORVANE_TESTS_SUPPORT_SUPPORT_H
#define KORVANE_TESTS_SUPPORT_SUPPORT_H

#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <memory>
#include <stdexcept>
#include <vector>

#include "KorvaneLaserAlgo.h"

namespace support {

using KORVANELASERALGO::KorvaneLaserAlgo;
using KORVANELASERALGO::tagKorvaneLaserAlgoCalibrationInfo;
using KORVANELASERALGO::tagKorvaneLaserAlgoLineSelectInfo;
using KORVANELASERALGO::tagKorvaneLaserAlgoROIInfo;
using Point2d = KORVANELASERALGO::tagKorvaneLaserPoint2d;
using Point3d = KORVANELASERALGO::tagKorvaneLaserPoint3d;
using Points2d = std::vector<Point2d>;
using Profile = std::vector<Point3d>;

/// A buffer of exactly `count` elements between two stretches of guard bytes.
template <class T>
class GuardedBuffer {
public:
    explicit GuardedBuffer(std::size_t count, T fill = T()) : bytes_(bytesFor(count), kPattern), count_(count) {
        std::uninitialized_fill_n(data(), count, fill);
    }

    T* data() { return reinterpret_cast<T*>(bytes_.data() + kGuard); }
    std::size_t size() const { return count_; }
    T& operator[](std::size_t i) { return data()[i]; }

    bool guardsIntact() const {
        const auto isPattern = [](unsigned char byte) { return byte == kPattern; };
        return std::all_of(bytes_.begin(), bytes_.begin() + kGuard, isPattern) &&
               std::all_of(bytes_.end() - kGuard, bytes_.end(), isPattern);
    }

private:
    static std::size_t bytesFor(std::size_t count) {
        if (count > std::size_t{1} << 32) throw std::length_error("a test asks for a buffer that is too large");
        return kGuard + count * sizeof(T) + kGuard;
    }

    static constexpr std::ptrdiff_t kGuard = 64;  // bytes; keeps the alignment of every element type
    static constexpr unsigned char kPattern = 0xA5;
    std::vector<unsigned char> bytes_;
    std::size_t count_;
};

/// A grey image whose destructor checks the guard bytes around its pixels.
class Image {
public:
    Image(int width, int height, unsigned char grey = 0)
        : width_(width),
          height_(height),
          pixels_(static_cast<std::size_t>(width) * static_cast<std::size_t>(height), grey) {}
    Image(const Image&) = default;
    Image& operator=(const Image&) = default;
    ~Image() { EXPECT_TRUE(pixels_.guardsIntact()) << "something was written outside the image"; }

    int width() const { return width_; }
    int height() const { return height_; }
    unsigned char* data() { return pixels_.data(); }
    unsigned char& at(int row, int column) {
        return pixels_[static_cast<std::size_t>(row) * static_cast<std::size_t>(width_) +
                       static_cast<std::size_t>(column)];
    }

    /// Writes grey values down a column, from a first row on.
    void drawColumn(int column, int firstRow, std::initializer_list<int> greys) {
        for (int grey : greys) at(firstRow++, column) = static_cast<unsigned char>(grey);
    }
    /// Writes the same grey values down every column.
    void drawLine(int firstRow, std::initializer_list<int> greys) {
        for (int column = 0; column < width_; ++column) drawColumn(column, firstRow, greys);
    }

    std::vector<unsigned char> pixels() { return std::vector<unsigned char>(data(), data() + pixels_.size()); }

private:
    int width_;
    int height_;
    GuardedBuffer<unsigned char> pixels_;
};

/// One flag per column, all false at first; the destructor checks the guard bytes.
class Mask {
public:
    explicit Mask(int width) : flags_(static_cast<std::size_t>(width), false) {}
    ~Mask() { EXPECT_TRUE(flags_.guardsIntact()) << "something was written outside the mask"; }
    bool* data() { return flags_.data(); }
    bool& operator[](int column) { return flags_[static_cast<std::size_t>(column)]; }
    std::vector<int> marked() {
        std::vector<int> columns;
        for (std::size_t i = 0; i < flags_.size(); ++i) {
            if (flags_[i]) columns.push_back(static_cast<int>(i));
        }
        return columns;
    }

private:
    GuardedBuffer<bool> flags_;
};

inline void setRoi(KorvaneLaserAlgo& algo, int width, int height, int offsetX = 0, int offsetY = 0) {
    tagKorvaneLaserAlgoROIInfo roi{offsetX, offsetY, width, height};
    algo.SetROIInfo(&roi);
}

inline void setLineSelect(KorvaneLaserAlgo& algo, int grayMin, int grayMax, int widthMin, int widthMax,
                          int selectMode) {
    tagKorvaneLaserAlgoLineSelectInfo info{grayMin, grayMax, widthMin, widthMax, selectMode};
    algo.SetLineSelectInfo(&info);
}

/// The same bits; any not-a-number equals any other, +0.0 and -0.0 differ.
inline bool sameBits(double a, double b) {
    if (std::isnan(a) || std::isnan(b)) return std::isnan(a) && std::isnan(b);
    return std::bit_cast<std::uint64_t>(a) == std::bit_cast<std::uint64_t>(b);
}
inline bool sameBits(const Point2d& a, const Point2d& b) {
    return sameBits(a.x, b.x) && sameBits(a.y, b.y);
}
inline bool sameBits(const Point3d& a, const Point3d& b) {
    return sameBits(a.x, b.x) && sameBits(a.y, b.y) && sameBits(a.z, b.z);
}

inline testing::AssertionResult describe(bool same, const Point2d& a, const Point2d& b) {
    if (same) return testing::AssertionSuccess();
    return testing::AssertionFailure() << testing::PrintToString(a.x) << ", " << testing::PrintToString(a.y)
                                       << " is not " << testing::PrintToString(b.x) << ", "
                                       << testing::PrintToString(b.y);
}
inline testing::AssertionResult describe(bool same, const Point3d& a, const Point3d& b) {
    if (same) return testing::AssertionSuccess();
    return testing::AssertionFailure() << testing::PrintToString(a.x) << ", " << testing::PrintToString(a.y) << ", "
                                       << testing::PrintToString(a.z) << " is not " << testing::PrintToString(b.x)
                                       << ", " << testing::PrintToString(b.y) << ", " << testing::PrintToString(b.z);
}
inline testing::AssertionResult describe(bool same, double a, double b) {
    if (same) return testing::AssertionSuccess();
    return testing::AssertionFailure() << testing::PrintToString(a) << " is not " << testing::PrintToString(b);
}

inline testing::AssertionResult comparedBits(double a, double b) {
    return describe(sameBits(a, b), a, b);
}
inline testing::AssertionResult comparedBits(const Point2d& a, const Point2d& b) {
    return describe(sameBits(a, b), a, b);
}
inline testing::AssertionResult comparedBits(const Point3d& a, const Point3d& b) {
    return describe(sameBits(a, b), a, b);
}

/// Names the first element that differs.
template <class T>
testing::AssertionResult sameBits(const std::vector<T>& a, const std::vector<T>& b) {
    if (a.size() != b.size()) return testing::AssertionFailure() << "sizes " << a.size() << " and " << b.size();
    for (std::size_t i = 0; i < a.size(); ++i) {
        if (!sameBits(a[i], b[i])) return describe(false, a[i], b[i]) << " at index " << i;
    }
    return testing::AssertionSuccess();
}

}  // namespace support

/// Equal bits, with both values in the message.
#define EXPECT_SAME_BITS(a, b) EXPECT_TRUE(support::comparedBits((a), (b)))

#endif  // KORVANE_TESTS_SUPPORT_SUPPORT_H
