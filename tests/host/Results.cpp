#include "Results.h"

#include <gtest/gtest.h>

#include <bit>
#include <charconv>
#include <cstdint>
#include <sstream>

#include "HostProgram.h"

namespace host_tests {
namespace {

float littleEndianFloat(const std::string& bytes, std::size_t at) {
    std::uint32_t bits = 0;
    for (std::size_t i = 4; i-- > 0;) bits = bits << 8 | static_cast<unsigned char>(bytes[at + i]);
    return std::bit_cast<float>(bits);
}

}  // namespace

std::vector<std::string> fields(const std::string& line) {
    std::vector<std::string> result(1);
    for (const char c : line) {
        if (c == ',')
            result.emplace_back();
        else
            result.back() += c;
    }
    return result;
}

double number(const std::string& text) {
    double value = 0.0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    EXPECT_TRUE(error == std::errc() && end == text.data() + text.size()) << "not a number: '" << text << "'";
    return value;
}

std::vector<CsvPoint> readProfiles(const std::filesystem::path& path) {
    const std::vector<std::string> all = lines(contents(path));
    if (all.empty() || all[0] != "frame,column,valid,x,y,z") {
        ADD_FAILURE() << path << " has no header of 3D profiles";
        return {};
    }
    std::vector<CsvPoint> points;
    for (std::size_t i = 1; i < all.size(); ++i) {
        const std::vector<std::string> f = fields(all[i]);
        if (f.size() != 6 || (f[2] != "0" && f[2] != "1")) {
            ADD_FAILURE() << path << ": " << all[i];
            return {};
        }
        CsvPoint point{static_cast<int>(number(f[0])), static_cast<int>(number(f[1])), f[2] == "1", 0.0, 0.0, 0.0};
        if (point.valid) {
            point.x = number(f[3]);
            point.y = number(f[4]);
            point.z = number(f[5]);
        } else {
            EXPECT_EQ(f[3] + f[4] + f[5], "") << all[i];
        }
        points.push_back(point);
    }
    return points;
}

std::vector<PlyPoint> readCloud(const std::filesystem::path& path) {
    const std::string bytes = contents(path);
    const std::string end = "end_header\n";
    const std::size_t data = bytes.find(end);
    if (!bytes.starts_with("ply\nformat binary_little_endian 1.0\n") || data == std::string::npos) {
        ADD_FAILURE() << path << " is no binary PLY file";
        return {};
    }
    std::size_t count = 0;
    std::string properties;
    for (const std::string& line : lines(bytes.substr(0, data))) {
        std::istringstream words(line);
        std::string first;
        std::string second;
        words >> first >> second;
        if (first == "element" && second == "vertex") words >> count;
        if (first == "property") properties += line + "\n";
    }
    EXPECT_EQ(properties, "property float x\nproperty float y\nproperty float z\n");
    const std::size_t start = data + end.size();
    EXPECT_EQ(bytes.size() - start, count * 12) << "twelve bytes per vertex";

    std::vector<PlyPoint> points;
    for (std::size_t i = start; i + 12 <= bytes.size(); i += 12)
        points.push_back(
            {littleEndianFloat(bytes, i), littleEndianFloat(bytes, i + 4), littleEndianFloat(bytes, i + 8)});
    return points;
}

}  // namespace host_tests
