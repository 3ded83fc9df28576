#include "kernels/plain/plain.h"

namespace KORVANELASERALGO::kernels::plain {

void sumAbove(const unsigned char* image, int width, int height, unsigned char level, ColumnSum* sums) {
    for (int r = 0; r < height; ++r, image += width) {
        for (int c = 0; c < width; ++c) {
            if (image[c] <= level) continue;
            ++sums[c].count;
            sums[c].sum += image[c];
        }
    }
}

}  // namespace KORVANELASERALGO::kernels::plain
