#include "common/Overlay.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace examples {
namespace {

constexpr Colour kMark{255, 40, 40};
constexpr double kMarkHalfHeight = 1.0;  // rows above and below the centre

/// Covers the rows centre - h .. centre + h of one column; a row that is covered in part takes part of the colour.
void drawMark(ColourImage& picture, int column, double centre) {
    const double top = centre - kMarkHalfHeight;
    const double bottom = centre + kMarkHalfHeight;
    const int first = std::max(0, static_cast<int>(std::floor(top + 0.5)));
    const int last = std::min(picture.height - 1, static_cast<int>(std::floor(bottom + 0.5)));
    for (int row = first; row <= last; ++row) {
        const double covered = std::min(bottom, row + 0.5) - std::max(top, row - 0.5);
        picture.at(row, column) = blended(picture.at(row, column), kMark, std::clamp(covered, 0.0, 1.0));
    }
}

}  // namespace

ColourImage drawOverlay(const GreyImage& frame, const std::vector<KORVANELASERALGO::tagKorvaneLaserPoint2d>& points,
                        const std::vector<bool>& found, int offsetY) {
    ColourImage picture(frame.width, frame.height, Colour{});
    std::transform(frame.pixels.begin(), frame.pixels.end(), picture.pixels.begin(), [](unsigned char grey) {
        return Colour{grey, grey, grey};
    });
    for (int column = 0; column < frame.width; ++column) {
        const std::size_t i = static_cast<std::size_t>(column);
        const double row = points[i].y - offsetY;
        if (found[i] && row > -1.0 && row < frame.height) drawMark(picture, column, row);
    }
    return picture;
}

}  // namespace examples
