/// @file CloudPly.h
/// @brief `cloud.ply`: the scan as a point cloud.

#ifndef KORVANE_HOST_CLOUDPLY_H
#define KORVANE_HOST_CLOUDPLY_H

#include <filesystem>
#include <vector>

namespace host {

struct CloudPoint {
    float x;
    float y;
    float z;
};

/// Writes a binary little-endian PLY file with one float each for x, y and z.
void writePly(const std::filesystem::path& path, const std::vector<CloudPoint>& points);

}  // namespace host

#endif  // KORVANE_HOST_CLOUDPLY_H
