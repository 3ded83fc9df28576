// An 8-bit grey image of the ROI: row-major, stride = width, owned by the caller. Pixel (r, c) is row(r)[c].

#ifndef KORVANE_ALGO_IMAGEVIEW_H
#define KORVANE_ALGO_IMAGEVIEW_H

#include <algorithm>
#include <cstddef>

#include "KorvaneLaserAlgo.h"

namespace KORVANELASERALGO {

/// Columns of the ROI; a width below 1 counts as 0.
inline int columnsOf(const tagKorvaneLaserAlgoROIInfo& roi) {
    return std::max(roi.Width, 0);
}

/// Rows of the ROI; a height below 1 counts as 0.
inline int rowsOf(const tagKorvaneLaserAlgoROIInfo& roi) {
    return std::max(roi.Height, 0);
}

/// Pixels of the ROI.
inline std::size_t pixelsOf(const tagKorvaneLaserAlgoROIInfo& roi) {
    return static_cast<std::size_t>(columnsOf(roi)) * static_cast<std::size_t>(rowsOf(roi));
}

template <class Byte>
struct BasicImageView {
    Byte* bytes;
    int width;
    int height;

    BasicImageView(const tagKorvaneLaserAlgoROIInfo& roi, Byte* image)
        : bytes(image), width(columnsOf(roi)), height(rowsOf(roi)) {}

    Byte* row(int r) const { return bytes + static_cast<std::ptrdiff_t>(r) * width; }
};

using ImageView = BasicImageView<const unsigned char>;
using MutableImageView = BasicImageView<unsigned char>;

}  // namespace KORVANELASERALGO

#endif  // KORVANE_ALGO_IMAGEVIEW_H
