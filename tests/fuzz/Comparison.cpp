#include "fuzz/Comparison.h"

#include <bit>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <initializer_list>
#include <utility>

namespace fuzz {
namespace {

const Comparison* running = nullptr;

std::string join(std::initializer_list<std::string> values) {
    std::string text;
    for (const std::string& value : values) text += (text.empty() ? "" : ", ") + value;
    return '{' + text + '}';
}

std::string showArray(const double* values, std::size_t count) {
    return show(Numbers(values, values + count));
}

}  // namespace

std::string show(int value) {
    return std::to_string(value);
}

std::string show(unsigned char value) {
    return std::to_string(value);
}

std::string show(double value) {
    if (std::isnan(value)) return "NAN";
    if (std::isinf(value)) return value < 0.0 ? "-INFINITY" : "INFINITY";
    char text[32];
    std::snprintf(text, sizeof text, "%.17g", value);
    return text;
}

std::string show(const std::string& value) {
    return '"' + value + '"';
}

std::string show(const Point2d& point) {
    return join({show(point.x), show(point.y)});
}

std::string show(const Point3d& point) {
    return join({show(point.x), show(point.y), show(point.z)});
}

std::string show(const KORVANELASERALGO::tagKorvaneLaserAlgoROIInfo& roi) {
    return join({show(roi.OffsetX), show(roi.OffsetY), show(roi.Width), show(roi.Height)});
}

std::string show(const KORVANELASERALGO::tagKorvaneLaserAlgoCalibrationInfo& calibration) {
    return join({showArray(calibration.CameraMatrix, 9), showArray(calibration.DistCoeffs, 5),
                 showArray(calibration.LaserPlane, 6), showArray(calibration.RT, 12)});
}

std::string show(const KORVANELASERALGO::tagKorvaneLaserAlgoLineSelectInfo& lineSelect) {
    return join({show(lineSelect.GrayMin), show(lineSelect.GrayMax), show(lineSelect.WidthMin),
                 show(lineSelect.WidthMax), show(lineSelect.SelectMode)});
}

bool same(double a, double b) {
    if (std::isnan(a) || std::isnan(b)) return std::isnan(a) && std::isnan(b);
    return std::bit_cast<std::uint64_t>(a) == std::bit_cast<std::uint64_t>(b);
}

bool same(const Point2d& a, const Point2d& b) {
    return same(a.x, b.x) && same(a.y, b.y);
}

bool same(const Point3d& a, const Point3d& b) {
    return same(a.x, b.x) && same(a.y, b.y) && same(a.z, b.z);
}

Comparison::Comparison(const char* check, const unsigned char* data, std::size_t size)
    : check_(check), input_(data, data + size) {
    static const int guarded = std::atexit(failUnlessFinished);
    static_cast<void>(guarded);
    running = this;
}

Comparison::~Comparison() {
    running = nullptr;
}

std::string Comparison::report() const {
    return differs() ? "\n// " + difference_ + '\n' + describeCase() : std::string();
}

void Comparison::rememberText(const char* declaration, std::function<std::string()> value) {
    for (Memory& memory : memories_) {
        if (memory.declaration == declaration) {
            memory.value = std::move(value);
            return;
        }
    }
    memories_.push_back({declaration, std::move(value)});
}

std::string Comparison::describeCase() const {
    std::string text;
    for (const Memory& memory : memories_) text += memory.declaration + " = " + memory.value() + ";\n";
    text += "const std::vector<unsigned char> input = " + show(input_) + ";\n";
    return text + "EXPECT_EQ(fuzz::" + check_ + "(input.data(), input.size()), \"\");\n";
}

void Comparison::failUnlessFinished() {
    if (running == nullptr) return;
    const std::string text = "The process ended in the middle of a comparison.\n" + running->describeCase();
    std::fputs(text.c_str(), stderr);
    std::abort();
}

}  // namespace fuzz
