#include "kernels/plain/plain.h"

namespace KORVANELASERALGO::kernels::plain {

void copyAbove(const unsigned char* image, int stride, int columns, int rows, const unsigned char* thresholds,
               unsigned char* out, int* labels) {
    for (int r = 0; r < rows; ++r) {
        const std::ptrdiff_t start = static_cast<std::ptrdiff_t>(r) * stride;
        for (int c = 0; c < columns; ++c) {
            if (image[start + c] <= thresholds[c]) continue;
            out[start + c] = image[start + c];
            if (labels != nullptr) labels[start + c] = 1;
        }
    }
}

}  // namespace KORVANELASERALGO::kernels::plain
