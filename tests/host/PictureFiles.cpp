#include "PictureFiles.h"

#include <algorithm>
#include <cstddef>

#if KORVANE_HOST_PICTURES
#include <png.h>

#include <csetjmp>
#include <stdexcept>
#endif

namespace host_tests {

std::vector<unsigned char> lineFrame(int width, int height, int row) {
    std::vector<unsigned char> pixels(static_cast<std::size_t>(width) * static_cast<std::size_t>(height), 10);
    const auto start = pixels.begin() + static_cast<std::ptrdiff_t>(row - 1) * width;
    std::fill(start, start + static_cast<std::ptrdiff_t>(3) * width, static_cast<unsigned char>(200));
    return pixels;
}

std::string pgm(int width, int height, const std::vector<unsigned char>& pixels) {
    return "P5\n# a comment\n" + std::to_string(width) + " " + std::to_string(height) + "\n255\n" +
           std::string(pixels.begin(), pixels.end());
}

#if KORVANE_HOST_PICTURES

namespace {

void append(png_structp png, png_bytep bytes, std::size_t count) {
    static_cast<std::string*>(png_get_io_ptr(png))->append(reinterpret_cast<const char*>(bytes), count);
}

void nothingToFlush(png_structp) {}

}  // namespace

std::string png(int width, int height, const std::vector<unsigned char>& pixels, PngKind kind) {
    struct Format {
        int colourType;
        int bits;
        std::size_t bytesPerPixel;
    };
    const Format format = kind == PngKind::grey8       ? Format{PNG_COLOR_TYPE_GRAY, 8, 1}
                          : kind == PngKind::grey16    ? Format{PNG_COLOR_TYPE_GRAY, 16, 2}
                          : kind == PngKind::greyAlpha ? Format{PNG_COLOR_TYPE_GRAY_ALPHA, 8, 2}
                          : kind == PngKind::rgb       ? Format{PNG_COLOR_TYPE_RGB, 8, 3}
                          : kind == PngKind::palette   ? Format{PNG_COLOR_TYPE_PALETTE, 8, 1}
                                                       : Format{PNG_COLOR_TYPE_GRAY, 1, 1};
    std::vector<unsigned char> bytes = pixels;
    bytes.resize(pixels.size() * format.bytesPerPixel);
    if (kind == PngKind::palette) std::fill(bytes.begin(), bytes.end(), static_cast<unsigned char>(0));
    std::string file;

    png_structp writer = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
    png_infop info = png_create_info_struct(writer);
    if (setjmp(png_jmpbuf(writer)) != 0) throw std::runtime_error("libpng cannot write the test's picture");
    png_set_write_fn(writer, &file, append, nothingToFlush);
    png_set_IHDR(writer, info, static_cast<png_uint_32>(width), static_cast<png_uint_32>(height), format.bits,
                 format.colourType, PNG_INTERLACE_NONE, PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
    const png_color black{0, 0, 0};
    if (kind == PngKind::palette) png_set_PLTE(writer, info, &black, 1);
    png_write_info(writer, info);
    const std::size_t stride = static_cast<std::size_t>(width) * format.bytesPerPixel;
    for (int row = 0; row < height; ++row) png_write_row(writer, bytes.data() + static_cast<std::size_t>(row) * stride);
    png_write_end(writer, info);
    png_destroy_write_struct(&writer, &info);
    return file;
}

RgbPicture readRgb(const std::filesystem::path& path) {
    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    RgbPicture picture;
    if (png_image_begin_read_from_file(&image, path.string().c_str()) == 0) return picture;
    image.format = PNG_FORMAT_RGB;
    picture.bytes.resize(PNG_IMAGE_SIZE(image));
    if (png_image_finish_read(&image, nullptr, picture.bytes.data(), 0, nullptr) == 0) return picture;
    picture.width = static_cast<int>(image.width);
    picture.height = static_cast<int>(image.height);
    return picture;
}

#endif

}  // namespace host_tests
