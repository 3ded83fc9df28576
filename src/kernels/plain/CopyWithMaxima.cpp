#include <algorithm>

#include "kernels/plain/plain.h"

namespace KORVANELASERALGO::kernels::plain {

void copyWithMaxima(const unsigned char* image, int width, int height, unsigned char* out, unsigned char* maxima) {
    std::fill_n(maxima, width, static_cast<unsigned char>(0));
    for (int r = 0; r < height; ++r, image += width, out += width) {
        for (int c = 0; c < width; ++c) {
            out[c] = image[c];
            maxima[c] = std::max(maxima[c], image[c]);
        }
    }
}

}  // namespace KORVANELASERALGO::kernels::plain
