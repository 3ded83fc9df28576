#include "kernels/plain/plain.h"

namespace KORVANELASERALGO::kernels::plain {

void cutAndSum(unsigned char* image, int width, int height, int threshold, std::uint32_t* sums, float* moments) {
    for (int r = 0; r < height; ++r, image += width) {
        for (int c = 0; c < width; ++c) {
            if (image[c] < threshold) image[c] = 0;
            sums[c] += image[c];
            // A pixel of 0 adds +0.0f, which changes nothing.
            moments[c] += static_cast<float>(std::int64_t{r} * image[c]);
        }
    }
}

}  // namespace KORVANELASERALGO::kernels::plain
