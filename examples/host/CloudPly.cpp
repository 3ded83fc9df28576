#include "host/CloudPly.h"

#include <bit>
#include <cstdint>
#include <string>

#include "common/AtomicFile.h"

namespace host {
namespace {

/// Least significant byte first, whichever way the processor stores it.
void appendLittleEndian(std::string& bytes, float value) {
    const auto bits = std::bit_cast<std::uint32_t>(value);
    for (int shift = 0; shift < 32; shift += 8) bytes += static_cast<char>(static_cast<unsigned char>(bits >> shift));
}

}  // namespace

void writePly(const std::filesystem::path& path, const std::vector<CloudPoint>& points) {
    std::string bytes =
        "ply\n"
        "format binary_little_endian 1.0\n"
        "comment x along the profile, y along the travel, z away from the sensor\n"
        "element vertex " +
        std::to_string(points.size()) +
        "\n"
        "property float x\n"
        "property float y\n"
        "property float z\n"
        "end_header\n";
    bytes.reserve(bytes.size() + points.size() * sizeof(CloudPoint));
    for (const CloudPoint& point : points) {
        appendLittleEndian(bytes, point.x);
        appendLittleEndian(bytes, point.y);
        appendLittleEndian(bytes, point.z);
    }

    examples::AtomicFile file(path);
    file.write(bytes);
    file.commit();
}

}  // namespace host
