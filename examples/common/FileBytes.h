/// @file FileBytes.h
/// @brief A whole file in memory.

#ifndef KORVANE_EXAMPLES_FILEBYTES_H
#define KORVANE_EXAMPLES_FILEBYTES_H

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include "common/Failure.h"

namespace examples {

/// Reads a file as it is; throws `Failure` where there is none or it cannot be read.
inline std::string readFile(const std::filesystem::path& path) {
    std::error_code unknown;
    if (!std::filesystem::exists(path, unknown)) throw Failure(path.string() + ": no such file");
    if (!std::filesystem::is_regular_file(path, unknown)) throw Failure(path.string() + ": is not a file");
    std::ifstream stream(path, std::ios::binary);
    std::string bytes{std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
    if (!stream.is_open() || stream.bad()) throw Failure(path.string() + ": cannot be read");
    return bytes;
}

}  // namespace examples

#endif  // KORVANE_EXAMPLES_FILEBYTES_H
