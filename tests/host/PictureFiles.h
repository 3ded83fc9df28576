/// @file PictureFiles.h
/// @brief Picture files for the host to read, good and bad ones, and a look at those that it writes.

#ifndef KORVANE_TESTS_PICTUREFILES_H
#define KORVANE_TESTS_PICTUREFILES_H

#include <filesystem>
#include <string>
#include <vector>

namespace host_tests {

/// A frame with one horizontal bright line: 200 grey levels at `row` - 1 .. `row` + 1, 10 elsewhere; so the centroid
/// over the bright rows is `row` exactly.
std::vector<unsigned char> lineFrame(int width, int height, int row);

/// A binary PGM file.
std::string pgm(int width, int height, const std::vector<unsigned char>& pixels);

#if KORVANE_HOST_PICTURES

enum class PngKind { grey8, grey16, greyAlpha, rgb, palette, grey1 };

/// A PNG file of the kind; for kinds that hold more than a byte of grey per pixel, the pixels' contents do not matter.
std::string png(int width, int height, const std::vector<unsigned char>& pixels, PngKind kind = PngKind::grey8);

struct RgbPicture {
    int width = 0;  ///< 0 where the file could not be read
    int height = 0;
    std::vector<unsigned char> bytes;  ///< red, green, blue
};

RgbPicture readRgb(const std::filesystem::path& path);

#endif

}  // namespace host_tests

#endif  // KORVANE_TESTS_PICTUREFILES_H
