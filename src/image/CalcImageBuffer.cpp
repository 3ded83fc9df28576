// CalcImageBuffer: each pixel less its absolute change since the previous frame, so that a steady stripe passes and
// flicker is weakened.

#include <algorithm>
#include <cstddef>
#include <thread>
#include <utility>
#include <vector>

#include "algo/ImageView.h"
#include "image/image.h"
#include "kernels/kernels.h"

namespace KORVANELASERALGO::image {
namespace {

// The previous frame, one for the process: empty, or as many pixels as it had. Its shape is not kept.
std::vector<unsigned char>& previousFrame() {
    static std::vector<unsigned char> frame;
    return frame;
}

}  // namespace

void CalcImageBuffer(const AlgoContext& context, const unsigned char* current, unsigned char* out, bool enable) {
    std::vector<unsigned char>& previous = previousFrame();
    if (!enable) {
        previous.clear();
        return;
    }

    const std::size_t pixels = pixelsOf(context.roi);
    if (previous.size() != pixels) {
        std::vector<unsigned char> frame(current, current + pixels);
        std::copy_n(current, pixels, out);
        previous = std::move(frame);
        return;
    }

    // Two exact halves: the last row of an odd height stays as it was, in `out` and in the previous frame. This is
    // meant. Should the second thread not start, leaving joins the first.
    const std::size_t half =
        static_cast<std::size_t>(rowsOf(context.roi) / 2) * static_cast<std::size_t>(columnsOf(context.roi));
    const auto work = [&](std::size_t first) {
        kernels::active().subtractChange(current + first, half, previous.data() + first, out + first);
    };
    std::jthread upper(work, 0);
    std::jthread lower(work, half);
    upper.join();
    lower.join();
}

}  // namespace KORVANELASERALGO::image
