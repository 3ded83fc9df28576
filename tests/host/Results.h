/// @file Results.h
/// @brief Reads back what the host has written.

#ifndef KORVANE_TESTS_RESULTS_H
#define KORVANE_TESTS_RESULTS_H

#include <filesystem>
#include <string>
#include <vector>

namespace host_tests {

/// One line of profiles.csv with 3D points.
struct CsvPoint {
    int frame;
    int column;
    bool valid;
    double x;  ///< x, y and z are 0 where not valid
    double y;
    double z;
};

/// Reads profiles.csv; a line that is not as it must be adds a test failure.
std::vector<CsvPoint> readProfiles(const std::filesystem::path& path);

struct PlyPoint {
    float x;
    float y;
    float z;
};

/// Reads cloud.ply; a header or size that is not as it must be adds a test failure.
std::vector<PlyPoint> readCloud(const std::filesystem::path& path);

/// The text between commas.
std::vector<std::string> fields(const std::string& line);

/// The number that the whole text is; adds a test failure where it is none.
double number(const std::string& text);

}  // namespace host_tests

#endif  // KORVANE_TESTS_RESULTS_H
