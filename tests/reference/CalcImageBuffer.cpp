#include <cstddef>
#include <cstdlib>
#include <vector>

#include "plain.h"
#include "reference.h"

namespace reference {

void CalcImageBuffer(const Settings& settings, StabilisationState& state, unsigned char* current, unsigned char* out,
                     const bool& enable) {
    const int width = countOf(settings.roi.Width);
    const int height = countOf(settings.roi.Height);
    const std::size_t pixels = pixelsOf(width, height);

    if (!enable) {
        state.frame.clear();
        return;
    }

    // A stored frame is recognised by its number of pixels alone: meant.
    if (state.frame.size() != pixels) {
        for (std::size_t i = 0; i < pixels; ++i) {
            out[i] = current[i];
        }
        std::vector<unsigned char> frame(current, current + pixels);
        state.frame.swap(frame);
        return;
    }

    // Two exact halves: the last row of an odd height stays as it was, in the output and in the stored frame: meant.
    for (int y = 0; y < 2 * (height / 2); ++y) {
        for (int x = 0; x < width; ++x) {
            const std::size_t i = placeOf(width, y, x);
            const int now = current[i];
            const int before = state.frame[i];
            int result = now - std::abs(now - before);
            if (result < 0) {
                result = 0;
            }
            out[i] = static_cast<unsigned char>(result);
            state.frame[i] = static_cast<unsigned char>(now);
        }
    }
}

}  // namespace reference
