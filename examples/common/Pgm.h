/// @file Pgm.h
/// @brief Portable grey maps, the plainest picture files there are.

#ifndef KORVANE_EXAMPLES_PGM_H
#define KORVANE_EXAMPLES_PGM_H

#include <filesystem>

#include "common/Image.h"

namespace examples {

/// Reads an 8-bit PGM file, binary (P5) or text (P2), with a maximum grey value of 255; throws `Failure` for any other.
GreyImage readPgm(const std::filesystem::path& path);

/// Writes a binary PGM file (P5); throws `Failure`.
void writePgm(const std::filesystem::path& path, const GreyImage& image);

}  // namespace examples

#endif  // KORVANE_EXAMPLES_PGM_H
