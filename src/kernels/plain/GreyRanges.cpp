#include <algorithm>

#include "kernels/plain/plain.h"

namespace KORVANELASERALGO::kernels::plain {

void widenRanges(const unsigned char* image, int stride, int columns, int rows, unsigned char* smallest,
                 unsigned char* largest) {
    for (int r = 0; r < rows; ++r, image += stride) {
        for (int c = 0; c < columns; ++c) {
            smallest[c] = std::min(smallest[c], image[c]);
            largest[c] = std::max(largest[c], image[c]);
        }
    }
}

}  // namespace KORVANELASERALGO::kernels::plain
