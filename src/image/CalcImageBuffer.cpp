// CalcImageBuffer: each pixel less its absolute change since the previous frame, so that a steady stripe passes and
// flicker is weakened.

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <thread>
#include <utility>
#include <vector>

#include "algo/ImageView.h"
#include "image/image.h"

namespace KORVANELASERALGO::image {
namespace {

// The previous frame, one for the process: empty, or as many pixels as it had. Its shape is not kept.
std::vector<unsigned char>& previousFrame() {
    static std::vector<unsigned char> frame;
    return frame;
}

// Works on the pixels first .. end - 1, and keeps the current frame as the previous one.
void stabilise(const unsigned char* current, unsigned char* previous, unsigned char* out, std::size_t first,
               std::size_t end) {
    for (std::size_t i = first; i < end; ++i) {
        const int change = current[i] - previous[i];
        const int steady = current[i] - std::abs(change);
        const unsigned char grey = current[i];
        out[i] = static_cast<unsigned char>(steady < 0 ? 0 : steady);
        previous[i] = grey;
    }
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
    const auto work = [&](std::size_t first, std::size_t end) { stabilise(current, previous.data(), out, first, end); };
    std::jthread upper(work, 0, half);
    std::jthread lower(work, half, 2 * half);
    upper.join();
    lower.join();
}

}  // namespace KORVANELASERALGO::image
