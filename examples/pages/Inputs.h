/// @file Inputs.h
/// @brief Small frames and profiles for the code in the pages of docs/.

#ifndef KORVANE_EXAMPLES_PAGES_INPUTS_H
#define KORVANE_EXAMPLES_PAGES_INPUTS_H

#include <cmath>
#include <cstddef>
#include <memory>
#include <vector>

#include "KorvaneLaserAlgo.h"

namespace pages {

using Image = std::vector<unsigned char>;
using Points2d = std::vector<KORVANELASERALGO::tagKorvaneLaserPoint2d>;
using Profile = std::vector<KORVANELASERALGO::tagKorvaneLaserPoint3d>;

/// A frame that is dark, and whose rows can be drawn.
struct Frame {
    int width;
    int height;
    Image pixels;

    Frame(int columns, int rows)
        : width(columns), height(rows), pixels(static_cast<std::size_t>(columns) * static_cast<std::size_t>(rows)) {}

    unsigned char& at(int row, int column) {
        return pixels[static_cast<std::size_t>(row) * static_cast<std::size_t>(width) +
                      static_cast<std::size_t>(column)];
    }
    /// A bright row over the columns first .. last.
    Frame& line(int row, unsigned char grey, int first, int last) {
        for (int c = first; c <= last; ++c) at(row, c) = grey;
        return *this;
    }
    Frame& line(int row, unsigned char grey) { return line(row, grey, 0, width - 1); }
    unsigned char* data() { return pixels.data(); }
};

/// A mask that is clear.
inline std::unique_ptr<bool[]> clearMask(int width) {
    return std::unique_ptr<bool[]>(new bool[static_cast<std::size_t>(width)]());
}

/// A library object for frames of this size, at this place of the sensor.
class Sized {
public:
    Sized(int width, int height, int offsetX = 0, int offsetY = 0) {
        KORVANELASERALGO::tagKorvaneLaserAlgoROIInfo roi{offsetX, offsetY, width, height};
        algo_.SetROIInfo(&roi);
    }
    KORVANELASERALGO::KorvaneLaserAlgo* operator->() { return &algo_; }

private:
    KORVANELASERALGO::KorvaneLaserAlgo algo_;
};

/// A profile of one height, x = first, first + 1, ...
inline Profile level(std::size_t count, double z, double first = 1.0) {
    Profile profile;
    for (std::size_t i = 0; i < count; ++i) profile.push_back({first + static_cast<double>(i), 0.0, z});
    return profile;
}

inline bool isEmpty(const KORVANELASERALGO::tagKorvaneLaserPoint3d& p) {
    return p.x == 0.0 && p.y == 0.0 && p.z == 0.0;
}

inline bool isNear(double a, double b, double tolerance) {
    return std::fabs(a - b) <= tolerance;
}

}  // namespace pages

#endif  // KORVANE_EXAMPLES_PAGES_INPUTS_H
