// The format: "P5" or "P2", then width, height and maximum grey value as decimal numbers between white space and
// comments (# to the end of the line); after P5 a single white-space character and the bytes, after P2 more numbers.

#include "common/Pgm.h"

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <string>

#include "common/AtomicFile.h"
#include "common/Failure.h"
#include "common/FileBytes.h"

namespace examples {
namespace {

constexpr int kLargestSide = 65535;  // pixels; also keeps width * height far from overflow

bool isSpace(char c) {
    return c == ' ' || (c >= '\t' && c <= '\r');
}

class PgmText {
public:
    PgmText(const std::filesystem::path& path, const std::string& bytes) : path_(path), bytes_(bytes) {}

    /// The next decimal number, behind white space and comments.
    int number() {
        while (at_ < bytes_.size() && (isSpace(bytes_[at_]) || bytes_[at_] == '#')) {
            if (bytes_[at_] == '#')
                at_ = std::min(bytes_.find('\n', at_), bytes_.size());
            else
                ++at_;
        }
        int value = 0;
        const char* first = bytes_.data() + at_;
        const auto [end, error] = std::from_chars(first, bytes_.data() + bytes_.size(), value);
        if (error != std::errc() || value < 0)
            throw Failure(path_.string() + ": damaged PGM file: a number is missing");
        at_ += static_cast<std::size_t>(end - first);
        return value;
    }

    std::size_t position() const { return at_; }

private:
    const std::filesystem::path& path_;
    const std::string& bytes_;
    std::size_t at_ = 2;  // behind the two letters of the format
};

}  // namespace

GreyImage readPgm(const std::filesystem::path& path) {
    const std::string bytes = readFile(path);
    const bool binary = bytes.starts_with("P5");
    if (!binary && !bytes.starts_with("P2")) throw Failure(path.string() + ": not a PGM file (P5 or P2)");

    PgmText text(path, bytes);
    GreyImage image;
    image.width = text.number();
    image.height = text.number();
    const int maximum = text.number();
    if (image.width < 1 || image.height < 1 || image.width > kLargestSide || image.height > kLargestSide)
        throw Failure(path.string() + ": damaged PGM file: impossible size");
    if (maximum > 255) throw Failure(path.string() + ": a 16-bit picture; 8-bit grey is needed");
    if (maximum != 255)
        throw Failure(path.string() + ": its maximum grey value is " + std::to_string(maximum) + "; 255 is needed");

    const std::size_t count = static_cast<std::size_t>(image.width) * static_cast<std::size_t>(image.height);
    if (binary) {
        const std::size_t start = text.position() + 1;
        if (bytes.size() < start || bytes.size() - start < count)
            throw Failure(path.string() + ": damaged PGM file: it ends too early");
        const auto first = bytes.begin() + static_cast<std::ptrdiff_t>(start);
        image.pixels.assign(first, first + static_cast<std::ptrdiff_t>(count));
        return image;
    }

    if (bytes.size() / 2 < count) throw Failure(path.string() + ": damaged PGM file: it ends too early");
    image.pixels.reserve(count);
    while (image.pixels.size() < count) {
        const int grey = text.number();
        if (grey > 255) throw Failure(path.string() + ": damaged PGM file: a grey value above 255");
        image.pixels.push_back(static_cast<unsigned char>(grey));
    }
    return image;
}

void writePgm(const std::filesystem::path& path, const GreyImage& image) {
    AtomicFile file(path);
    file.write("P5\n" + std::to_string(image.width) + " " + std::to_string(image.height) + "\n255\n");
    file.write({reinterpret_cast<const char*>(image.pixels.data()), image.pixels.size()});
    file.commit();
}

}  // namespace examples
