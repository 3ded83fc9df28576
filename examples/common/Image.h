/// @file Image.h
/// @brief Grey and colour pictures in memory: row-major, no gap between rows.

#ifndef KORVANE_EXAMPLES_IMAGE_H
#define KORVANE_EXAMPLES_IMAGE_H

#include <cstddef>
#include <vector>

namespace examples {

/// One byte per pixel, as the library wants its frames.
struct GreyImage {
    int width = 0;
    int height = 0;
    std::vector<unsigned char> pixels;  ///< width x height grey levels
};

/// Red, green and blue, 0 .. 255.
struct Colour {
    unsigned char red = 0;
    unsigned char green = 0;
    unsigned char blue = 0;
};

/// Three bytes per pixel.
struct ColourImage {
    int width = 0;
    int height = 0;
    std::vector<Colour> pixels;  ///< width x height colours

    ColourImage() = default;
    /// A picture of one colour.
    ColourImage(int columns, int rows, Colour colour)
        : width(columns),
          height(rows),
          pixels(static_cast<std::size_t>(columns) * static_cast<std::size_t>(rows), colour) {}

    Colour& at(int row, int column) {
        return pixels[static_cast<std::size_t>(row) * static_cast<std::size_t>(width) +
                      static_cast<std::size_t>(column)];
    }
    const Colour& at(int row, int column) const {
        return pixels[static_cast<std::size_t>(row) * static_cast<std::size_t>(width) +
                      static_cast<std::size_t>(column)];
    }
};

static_assert(sizeof(Colour) == 3, "three bytes, so that a picture is one block of bytes");

/// `under` seen through a layer of `over`; opacity 0 .. 1.
inline Colour blended(Colour under, Colour over, double opacity) {
    const auto mixed = [opacity](unsigned char a, unsigned char b) {
        return static_cast<unsigned char>(a + (b - a) * opacity + 0.5);
    };
    return {mixed(under.red, over.red), mixed(under.green, over.green), mixed(under.blue, over.blue)};
}

}  // namespace examples

#endif  // KORVANE_EXAMPLES_IMAGE_H
