#include "kernels/plain/plain.h"

namespace KORVANELASERALGO::kernels::plain {

// Looks at the row above instead of keeping a state.
std::size_t findTransitions(const unsigned char* image, int width, int height, int firstRow,
                            const unsigned char* thresholds, const unsigned char*, std::uint64_t*,
                            Transition* transitions) {
    const int endRow = firstRow + rowsOfBand(firstRow, height);
    std::size_t count = 0;
    for (int r = firstRow; r < endRow; ++r) {
        const unsigned char* row = image + static_cast<std::ptrdiff_t>(r) * width;
        for (int c = 0; c < width; ++c) {
            const bool bright = row[c] > thresholds[c];
            const bool brightAbove = r > 0 && row[c - width] > thresholds[c];
            if (bright != brightAbove) transitions[count++] = {c, r};
        }
    }
    return count;
}

}  // namespace KORVANELASERALGO::kernels::plain
