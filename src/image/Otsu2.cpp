// Otsu2: copies the pixels above a threshold. (The name promises a histogram; there is none.)

#include <algorithm>
#include <array>
#include <cstddef>

#include "algo/ImageView.h"
#include "image/image.h"
#include "kernels/kernels.h"

namespace KORVANELASERALGO::image {

void Otsu2(const AlgoContext& context, int threshold, unsigned char* out, const unsigned char* src) {
    const std::size_t pixels = pixelsOf(context.roi);
    if (threshold > 254) return;
    if (threshold < 0) {
        std::copy_n(src, pixels, out);
        return;
    }

    // One threshold for all columns, so the frame is taken as one of narrow rows without gaps, and a shorter last row.
    std::array<unsigned char, kernels::kBlockColumns> thresholds;
    thresholds.fill(static_cast<unsigned char>(threshold));
    const int width = kernels::kBlockColumns;
    const std::size_t tail = pixels % kernels::kBlockColumns;
    const std::size_t whole = pixels - tail;
    const auto copyAbove = kernels::active().copyAbove;
    copyAbove(src, width, width, static_cast<int>(whole / kernels::kBlockColumns), thresholds.data(), out, nullptr);
    copyAbove(src + whole, width, static_cast<int>(tail), 1, thresholds.data(), out + whole, nullptr);
}

}  // namespace KORVANELASERALGO::image
