#include "kernels/plain/plain.h"

namespace KORVANELASERALGO::kernels::plain {

// No network is faster one height at a time.
bool findMedians(const double*, std::size_t, int, double*) {
    return false;
}

}  // namespace KORVANELASERALGO::kernels::plain
