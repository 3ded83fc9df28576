#include <cmath>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "plain.h"
#include "reference.h"

namespace reference {

namespace {

/// Clamped to a grey value and truncated, never rounded.
unsigned char greyOf(double value) {
    if (value < 0.0) {
        value = 0.0;
    }
    if (value > 255.0) {
        value = 255.0;
    }
    return static_cast<unsigned char>(value);
}

}  // namespace

void GaussianBlur(const Settings& settings, unsigned char* src, unsigned char* dst, const int& ksize) {
    const std::int64_t width = countOf(settings.roi.Width);
    const std::int64_t height = countOf(settings.roi.Height);
    const std::int64_t size = ksize;

    const auto imagePlace = [&](std::int64_t x, std::int64_t y) { return static_cast<std::size_t>(y * width + x); };
    for (std::int64_t y = 0; y < height; ++y) {
        for (std::int64_t x = 0; x < width; ++x) {
            dst[imagePlace(x, y)] = src[imagePlace(x, y)];
        }
    }

    // A size that is even or below 1 leaves the copy, as does an image without pixels.
    if (size < 1 || size % 2 == 0 || width == 0 || height == 0) {
        return;
    }

    const std::int64_t r = size / 2;

    // The image with replicated borders, corners included.
    const std::int64_t paddedWidth = width + 2 * r;
    const std::int64_t paddedHeight = height + 2 * r;
    std::vector<unsigned char> padded(static_cast<std::size_t>(paddedWidth) * static_cast<std::size_t>(paddedHeight),
                                      0);
    const auto place = [&](std::int64_t x, std::int64_t y) { return static_cast<std::size_t>(y * paddedWidth + x); };
    for (std::int64_t y = 0; y < height; ++y) {
        for (std::int64_t x = 0; x < width; ++x) {
            padded[place(x + r, y + r)] = src[imagePlace(x, y)];
        }
    }
    for (std::int64_t y = r; y < r + height; ++y) {
        for (std::int64_t i = 0; i < r; ++i) {
            padded[place(i, y)] = padded[place(r, y)];
            padded[place(paddedWidth - 1 - i, y)] = padded[place(r + width - 1, y)];
        }
    }
    for (std::int64_t x = 0; x < paddedWidth; ++x) {
        for (std::int64_t i = 0; i < r; ++i) {
            padded[place(x, i)] = padded[place(x, r)];
            padded[place(x, paddedHeight - 1 - i)] = padded[place(x, r + height - 1)];
        }
    }

    // Normalised weights of standard deviation 1, whatever the size.
    std::vector<double> weights;
    double sum = 0.0;
    for (std::int64_t i = -r; i + r < size; ++i) {
        weights.push_back(std::exp(static_cast<double>(-(i * i)) * 0.5));
        sum += weights.back();
    }
    for (double& weight : weights) {
        weight /= sum;
    }

    // Along the rows in place: the taps on the left read filtered pixels, and the padding stays unfiltered: both meant.
    for (std::int64_t y = r; y < r + height; ++y) {
        for (std::int64_t x = 0; x < width; ++x) {
            double value = 0.0;
            for (std::int64_t k = -r; k <= r; ++k) {
                value += static_cast<double>(padded[place(x + r + k, y)]) * weights[static_cast<std::size_t>(k + r)];
            }
            padded[place(x + r, y)] = greyOf(value);
        }
    }

    // Down the columns into the output.
    for (std::int64_t y = 0; y < height; ++y) {
        for (std::int64_t x = 0; x < width; ++x) {
            double value = 0.0;
            for (std::int64_t k = -r; k <= r; ++k) {
                value +=
                    static_cast<double>(padded[place(x + r, y + r + k)]) * weights[static_cast<std::size_t>(k + r)];
            }
            dst[imagePlace(x, y)] = greyOf(value);
        }
    }
}

}  // namespace reference
