// libpng reports errors by a long jump, which must not leap over a destructor. So each function that calls setjmp below
// holds nothing that needs one; what does lives in `PngReader`, outside of them.

#include "common/Png.h"

#include <png.h>

#include <csetjmp>
#include <cstddef>
#include <cstring>
#include <string>

#include "common/AtomicFile.h"
#include "common/Failure.h"
#include "common/FileBytes.h"

namespace examples {
namespace {

// Deflate packs at most 1032 bytes into one; a file that promises more cannot keep it, and costs no memory.
constexpr std::size_t kMostPixelsPerByte = 1032;

struct PngReader {
    png_structp png = nullptr;
    png_infop info = nullptr;
    const std::string& bytes;
    std::size_t position = 0;
    char reason[100] = "";  // a plain array, so that keeping the reason cannot fail

    explicit PngReader(const std::string& contents);
    ~PngReader() { png_destroy_read_struct(&png, &info, nullptr); }
    PngReader(const PngReader&) = delete;
    PngReader& operator=(const PngReader&) = delete;
};

void keepReason(png_structp png, png_const_charp message) {
    auto* reader = static_cast<PngReader*>(png_get_error_ptr(png));
    std::strncpy(reader->reason, message, sizeof(reader->reason) - 1);
    png_longjmp(png, 1);
}

void ignoreWarning(png_structp, png_const_charp) {}

void readBytes(png_structp png, png_bytep out, std::size_t count) {
    auto* reader = static_cast<PngReader*>(png_get_io_ptr(png));
    if (reader->bytes.size() - reader->position < count) png_error(png, "it ends too early");
    std::memcpy(out, reader->bytes.data() + reader->position, count);
    reader->position += count;
}

PngReader::PngReader(const std::string& contents) : bytes(contents) {
    png = png_create_read_struct(PNG_LIBPNG_VER_STRING, this, keepReason, ignoreWarning);
    if (png != nullptr) info = png_create_info_struct(png);
    if (info == nullptr) {
        png_destroy_read_struct(&png, nullptr, nullptr);
        throw std::bad_alloc();
    }
    png_set_read_fn(png, this, readBytes);
}

bool readHeader(PngReader& reader) {
    if (setjmp(png_jmpbuf(reader.png)) != 0) return false;
    png_read_info(reader.png, reader.info);
    return true;
}

bool readRows(PngReader& reader, GreyImage& image) {
    if (setjmp(png_jmpbuf(reader.png)) != 0) return false;
    const int passes = png_set_interlace_handling(reader.png);
    png_read_update_info(reader.png, reader.info);
    for (int pass = 0; pass < passes; ++pass)
        for (int row = 0; row < image.height; ++row)
            png_read_row(reader.png, image.pixels.data() + static_cast<std::ptrdiff_t>(row) * image.width, nullptr);
    png_read_end(reader.png, nullptr);
    return true;
}

Failure damaged(const std::filesystem::path& path, const PngReader& reader) {
    return Failure(path.string() + ": damaged PNG file: " + reader.reason);
}

/// What a picture that is not 8-bit grey is instead, in words; empty for 8-bit grey.
std::string otherKind(int colourType, int bits) {
    if (bits == 16) return "a 16-bit picture";
    if (colourType == PNG_COLOR_TYPE_GRAY_ALPHA || colourType == PNG_COLOR_TYPE_RGB_ALPHA)
        return "a picture with an alpha channel";
    if (colourType != PNG_COLOR_TYPE_GRAY) return "a colour picture";
    if (bits != 8) return "a " + std::to_string(bits) + "-bit picture";
    return {};
}

void writePixels(const std::filesystem::path& path, int width, int height, png_uint_32 format, const void* pixels) {
    png_image png{};
    png.version = PNG_IMAGE_VERSION;
    png.width = static_cast<png_uint_32>(width);
    png.height = static_cast<png_uint_32>(height);
    png.format = format;

    std::string bytes(PNG_IMAGE_PNG_SIZE_MAX(png), '\0');
    std::size_t size = bytes.size();
    if (png_image_write_to_memory(&png, bytes.data(), &size, 0, pixels, 0, nullptr) == 0)
        throw Failure(path.string() + ": " + png.message);

    AtomicFile file(path);
    file.write({bytes.data(), size});
    file.commit();
}

}  // namespace

GreyImage readPng(const std::filesystem::path& path) {
    const std::string bytes = readFile(path);
    PngReader reader(bytes);
    if (!readHeader(reader)) throw damaged(path, reader);
    const std::string other =
        otherKind(png_get_color_type(reader.png, reader.info), png_get_bit_depth(reader.png, reader.info));
    if (!other.empty()) throw Failure(path.string() + ": " + other + "; 8-bit grey is needed");

    GreyImage image;
    image.width = static_cast<int>(png_get_image_width(reader.png, reader.info));
    image.height = static_cast<int>(png_get_image_height(reader.png, reader.info));
    const std::size_t count = static_cast<std::size_t>(image.width) * static_cast<std::size_t>(image.height);
    if (count / kMostPixelsPerByte > bytes.size())
        throw Failure(path.string() + ": damaged PNG file: it ends too early");
    image.pixels.resize(count);
    if (!readRows(reader, image)) throw damaged(path, reader);
    return image;
}

void writePng(const std::filesystem::path& path, const GreyImage& image) {
    writePixels(path, image.width, image.height, PNG_FORMAT_GRAY, image.pixels.data());
}

void writePng(const std::filesystem::path& path, const ColourImage& image) {
    writePixels(path, image.width, image.height, PNG_FORMAT_RGB, image.pixels.data());
}

}  // namespace examples
