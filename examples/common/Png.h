/// @file Png.h
/// @brief PNG pictures, by libpng.

#ifndef KORVANE_EXAMPLES_PNG_H
#define KORVANE_EXAMPLES_PNG_H

#include <filesystem>

#include "common/Image.h"

namespace examples {

/// Reads an 8-bit grey PNG file; the grey levels come as they are stored, without any gamma correction. Throws
/// `Failure` for damaged files and for every other kind of PNG (16-bit, colour, palette, alpha, fewer bits).
GreyImage readPng(const std::filesystem::path& path);

/// Writes an 8-bit grey PNG file; throws `Failure`.
void writePng(const std::filesystem::path& path, const GreyImage& image);
/// Writes an 8-bit RGB PNG file; throws `Failure`.
void writePng(const std::filesystem::path& path, const ColourImage& image);

}  // namespace examples

#endif  // KORVANE_EXAMPLES_PNG_H
