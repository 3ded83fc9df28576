// MergeImg: lays the bright pixels of a second exposure over the columns of the first that are not saturated.

#include <algorithm>
#include <vector>

#include "algo/ImageView.h"
#include "image/image.h"
#include "kernels/kernels.h"

namespace KORVANELASERALGO::image {
namespace {

constexpr unsigned char kSaturated = 255;
constexpr unsigned char kBright = 127;  // grey levels; pixels of the second exposure above it are taken

}  // namespace

void MergeImg(const AlgoContext& context, const unsigned char* first, const unsigned char* second, unsigned char* out) {
    const ImageView image(context.roi, first);
    std::vector<unsigned char> maxima(static_cast<std::size_t>(image.width));
    std::copy_n(first, pixelsOf(context.roi), out);
    std::vector<unsigned char> active(static_cast<std::size_t>(kernels::bandsOf(image.height)) *
                                      static_cast<std::size_t>(kernels::blocksOf(image.width)));
    kernels::active().findColumnMaxima(first, image.width, image.height, 0, maxima.data(), active.data());

    // The second exposure wins, even where it is the darker one: this is meant.
    for (int r = 0; r < image.height; ++r) {
        const std::size_t row = static_cast<std::size_t>(r) * maxima.size();
        for (std::size_t c = 0; c < maxima.size(); ++c) {
            if (maxima[c] != kSaturated && second[row + c] > kBright) out[row + c] = second[row + c];
        }
    }
}

}  // namespace KORVANELASERALGO::image
