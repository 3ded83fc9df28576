#include <algorithm>
#include <cstdlib>

#include "kernels/plain/plain.h"

namespace KORVANELASERALGO::kernels::plain {

void blurRows(const unsigned char* image, int width, int rows, const double* weights, int radius, unsigned char* out) {
    for (int r = 0; r < rows; ++r, image += width, out += width) {
        for (int x = 0; x < width; ++x) {
            double sum = 0.0;
            for (int k = -radius; k <= radius; ++k) {
                const int tap = std::clamp(x + k, 0, width - 1);
                const bool filtered = k < 0 && x + k >= 0;
                sum += (filtered ? out[tap] : image[tap]) * weights[std::abs(k)];
            }
            out[x] = static_cast<unsigned char>(sum);
        }
    }
}

void blurColumns(const unsigned char* image, int width, int rows, const double* weights, int radius,
                 unsigned char* out) {
    for (int r = 0; r < rows; ++r, image += width, out += width) {
        for (int x = 0; x < width; ++x) {
            double sum = 0.0;
            for (int k = 0; k <= 2 * radius; ++k)
                sum += image[static_cast<std::ptrdiff_t>(k) * width + x] * weights[std::abs(k - radius)];
            out[x] = static_cast<unsigned char>(sum);
        }
    }
}

}  // namespace KORVANELASERALGO::kernels::plain
