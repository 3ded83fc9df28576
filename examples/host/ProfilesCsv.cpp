#include "host/ProfilesCsv.h"

#include <charconv>
#include <cstddef>
#include <string>

#include "common/Measured.h"

namespace host {
namespace {

/// The shortest text that reads back to the same number.
template <class Number>
void append(std::string& text, Number number) {
    char digits[32];
    const auto end = std::to_chars(digits, digits + sizeof(digits), number).ptr;
    text.append(digits, end);
}

}  // namespace

ProfilesCsv::ProfilesCsv(const std::filesystem::path& path, bool hasCalibration)
    : file_(path), hasCalibration_(hasCalibration) {
    file_.write(hasCalibration_ ? "frame,column,valid,x,y,z\n" : "frame,column,valid,row\n");
}

void ProfilesCsv::addFrame(int index, const ChainResult& result) {
    std::string text;
    for (std::size_t i = 0; i < result.found.size(); ++i) {
        const bool valid = hasCalibration_ ? examples::isMeasured(result.filtered[i]) : result.found[i];
        append(text, index);
        text += ',';
        append(text, i);
        text += valid ? ",1," : ",0,";
        if (hasCalibration_ && valid) {
            append(text, result.filtered[i].x);
            text += ',';
            append(text, result.filtered[i].y);
            text += ',';
            append(text, result.filtered[i].z);
        } else if (hasCalibration_) {
            text += ",,";
        } else if (valid) {
            append(text, result.points[i].y);
        }
        text += '\n';
    }
    file_.write(text);
}

}  // namespace host
