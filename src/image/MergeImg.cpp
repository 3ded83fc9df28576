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
    std::vector<unsigned char> thresholds(static_cast<std::size_t>(image.width));
    kernels::active().copyWithMaxima(first, image.width, image.height, out, thresholds.data());

    // No pixel is above the threshold of a saturated column.
    std::ranges::replace_if(
        thresholds, [](unsigned char maximum) { return maximum != kSaturated; }, kBright);

    // The second exposure wins, even where it is the darker one: this is meant.
    kernels::active().copyAbove(second, image.width, image.width, image.height, thresholds.data(), out, nullptr);
}

}  // namespace KORVANELASERALGO::image
