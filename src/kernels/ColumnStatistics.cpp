// Per column: the largest pixel, and count and sum of the pixels above a level.

#include <algorithm>

#include "kernels/kernels.h"

namespace KORVANELASERALGO::kernels {

void findColumnMaxima(const unsigned char* image, int width, int height, unsigned char* maxima) {
    std::fill_n(maxima, width, static_cast<unsigned char>(0));
    for (int r = 0; r < height; ++r, image += width) {
        for (int c = 0; c < width; ++c) maxima[c] = std::max(maxima[c], image[c]);
    }
}

void countAbove(const unsigned char* image, int width, int height, unsigned char level, std::uint32_t* counts) {
    for (int r = 0; r < height; ++r, image += width) {
        for (int c = 0; c < width; ++c) counts[c] += image[c] > level ? 1u : 0u;
    }
}

void sumAbove(const unsigned char* image, int width, int height, unsigned char level, std::uint64_t* sums) {
    for (int r = 0; r < height; ++r, image += width) {
        for (int c = 0; c < width; ++c) sums[c] += image[c] > level ? image[c] : 0u;
    }
}

}  // namespace KORVANELASERALGO::kernels
