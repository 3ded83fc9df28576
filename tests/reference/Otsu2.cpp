#include <cstddef>

#include "plain.h"
#include "reference.h"

namespace reference {

void Otsu2(const Settings& settings, const int& threshold, unsigned char* out, unsigned char* src) {
    const std::size_t pixels = pixelsOf(countOf(settings.roi.Width), countOf(settings.roi.Height));

    // Pixels that are not selected keep what the caller put there.
    for (std::size_t i = 0; i < pixels; ++i) {
        if (static_cast<int>(src[i]) > threshold) {
            out[i] = src[i];
        }
    }
}

}  // namespace reference
