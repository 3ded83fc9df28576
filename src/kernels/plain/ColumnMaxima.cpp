#include <algorithm>

#include "kernels/plain/plain.h"

namespace KORVANELASERALGO::kernels::plain {

void findColumnMaxima(const unsigned char* image, int width, int height, unsigned char floor, unsigned char* maxima,
                      unsigned char* active) {
    std::fill_n(maxima, width, floor);
    std::fill_n(active,
                std::size_t{1} * static_cast<std::size_t>(bandsOf(height)) * static_cast<std::size_t>(blocksOf(width)),
                static_cast<unsigned char>(0));
    for (int r = 0; r < height; ++r, image += width) {
        unsigned char* activeInBand = active + static_cast<std::ptrdiff_t>(r / kBandRows) * blocksOf(width);
        for (int c = 0; c < width; ++c) {
            maxima[c] = std::max(maxima[c], image[c]);
            if (image[c] > floor) activeInBand[c / kBlockColumns] = 1;
        }
    }
}

}  // namespace KORVANELASERALGO::kernels::plain
