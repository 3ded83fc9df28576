#include "kernels/plain/plain.h"

namespace KORVANELASERALGO::kernels::plain {

void sumAbove(const unsigned char* image, int width, int height, unsigned char level, std::uint32_t* counts,
              std::uint32_t* sums) {
    for (int r = 0; r < height; ++r, image += width) {
        for (int c = 0; c < width; ++c) {
            counts[c] += image[c] > level ? 1u : 0u;
            sums[c] += image[c] > level ? image[c] : 0u;
        }
    }
}

}  // namespace KORVANELASERALGO::kernels::plain
