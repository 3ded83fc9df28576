#include <limits>

#include "kernels/plain/plain.h"

namespace KORVANELASERALGO::kernels::plain {

std::size_t numberBuckets(const double* points, std::size_t count, double width, std::int32_t* buckets) {
    std::size_t valid = 0;
    for (std::size_t i = 0; i < count; ++i) {
        const double quotient = points[3 * i] / width;
        // Every double strictly between these bounds truncates to a value in range.
        const bool representable = quotient > -2147483649.0 && quotient < 2147483648.0;
        buckets[i] = representable ? static_cast<std::int32_t>(quotient) : std::numeric_limits<std::int32_t>::min();
        valid += points[3 * i] != 0.0 ? 1 : 0;
    }
    return valid;
}

}  // namespace KORVANELASERALGO::kernels::plain
