// Otsu2: copies the pixels above a threshold. (The name promises a histogram; there is none.)

#include "algo/ImageView.h"
#include "image/image.h"

namespace KORVANELASERALGO::image {

void Otsu2(const AlgoContext& context, int threshold, unsigned char* out, const unsigned char* src) {
    const std::size_t pixels = pixelsOf(context.roi);
    for (std::size_t i = 0; i < pixels; ++i) {
        if (src[i] > threshold) out[i] = src[i];
    }
}

}  // namespace KORVANELASERALGO::image
