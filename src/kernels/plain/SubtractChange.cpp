#include <cstdlib>

#include "kernels/plain/plain.h"

namespace KORVANELASERALGO::kernels::plain {

void subtractChange(const unsigned char* current, std::size_t count, unsigned char* previous, unsigned char* out) {
    for (std::size_t i = 0; i < count; ++i) {
        const unsigned char grey = current[i];
        const int steady = grey - std::abs(grey - previous[i]);
        out[i] = static_cast<unsigned char>(steady < 0 ? 0 : steady);
        previous[i] = grey;
    }
}

}  // namespace KORVANELASERALGO::kernels::plain
