#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "plain.h"
#include "reference.h"

namespace reference {

void Otsu3(const Settings& settings, unsigned char* out, int* labels, unsigned char* src) {
    const int width = countOf(settings.roi.Width);
    const int height = countOf(settings.roi.Height);
    std::vector<unsigned char> mask(pixelsOf(width, height), 0);

    // 1. The saturated blob that hangs from the top edge: masked, and blackened in the caller's source: meant.
    std::int64_t columnSum = 0;
    std::int64_t rowSum = 0;
    std::int64_t count = 0;
    for (int x = 0; x < width; ++x) {
        std::vector<int> topRun;
        for (int y = 0; y < height && src[placeOf(width, y, x)] > 180; ++y) {
            topRun.push_back(y);
        }
        if (topRun.size() < 30) {
            continue;
        }
        for (const int y : topRun) {
            mask[placeOf(width, y, x)] = 1;
            columnSum += x;
            rowSum += y;
            count += 1;
            src[placeOf(width, y, x)] = 0;
        }
    }

    // 2. A band around a blob of more than 100 pixels. Its last column is never the image's last: meant.
    if (count > 100) {
        const std::int64_t cx = columnSum / count;
        const std::int64_t cy = rowSum / count;
        const std::int64_t sixth = height / 6;
        const std::int64_t half = height / 2;
        const std::int64_t left = std::max<std::int64_t>(cx - 500, 0);
        const std::int64_t right = std::min<std::int64_t>(width - 1, cx + 500);
        std::int64_t top = 0;
        std::int64_t bottom = 0;
        if (cy <= half) {
            top = 0;
            bottom = std::min(cy + sixth, half);
        } else {
            top = std::max(half, cy - sixth);
            bottom = height;
        }
        for (std::int64_t y = top; y < bottom; ++y) {
            for (std::int64_t x = left; x < right; ++x) {
                mask[placeOf(width, static_cast<int>(y), static_cast<int>(x))] = 1;
            }
        }
    }

    // 3. A threshold per column, from the unmasked pixels, applied to all. Four exact quarters: the last Width mod 4
    // columns are never looked at: meant.
    const int quarter = width / 4;
    for (int x = 0; x < 4 * quarter; ++x) {
        int largest = 0;
        int smallest = 255;
        for (int y = 0; y < height; ++y) {
            if (mask[placeOf(width, y, x)] == 0) {
                largest = std::max(largest, static_cast<int>(src[placeOf(width, y, x)]));
                smallest = std::min(smallest, static_cast<int>(src[placeOf(width, y, x)]));
            }
        }
        const int threshold = std::max(smallest + (largest - smallest) / 2, 60);
        for (int y = 0; y < height; ++y) {
            const unsigned char pixel = src[placeOf(width, y, x)];
            if (pixel > threshold) {
                out[placeOf(width, y, x)] = pixel;
                labels[placeOf(width, y, x)] = 1;
            }
        }
    }
}

}  // namespace reference
