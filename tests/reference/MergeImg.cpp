#include <cstddef>

#include "plain.h"
#include "reference.h"

namespace reference {

void MergeImg(const Settings& settings, unsigned char* first, unsigned char* second, unsigned char* out) {
    const int width = countOf(settings.roi.Width);
    const int height = countOf(settings.roi.Height);

    for (std::size_t i = 0; i < pixelsOf(width, height); ++i) {
        out[i] = first[i];
    }

    for (int x = 0; x < width; ++x) {
        std::size_t saturated = 0;
        for (int y = 0; y < height; ++y) {
            if (out[placeOf(width, y, x)] == 255) {
                saturated += 1;
            }
        }
        if (saturated != 0) {
            continue;
        }

        // The second image's value wins, also where it is the darker one: meant.
        for (int y = 0; y < height; ++y) {
            if (second[placeOf(width, y, x)] > 127) {
                out[placeOf(width, y, x)] = second[placeOf(width, y, x)];
            }
        }
    }
}

}  // namespace reference
