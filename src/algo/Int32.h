// From double to a 32-bit integer, defined for every double.

#ifndef KORVANE_ALGO_INT32_H
#define KORVANE_ALGO_INT32_H

#include <cstdint>
#include <limits>

namespace KORVANELASERALGO {

/// Truncates toward zero. A value without a 32-bit integer (too large, infinite, not a number) gives INT32_MIN, as the
/// processors of the sensor's hosts do; left to the language it would be undefined.
inline std::int32_t truncateToInt32(double value) {
    // Every double strictly between these bounds truncates to a value in range.
    const bool representable = value > -2147483649.0 && value < 2147483648.0;
    return representable ? static_cast<std::int32_t>(value) : std::numeric_limits<std::int32_t>::min();
}

}  // namespace KORVANELASERALGO

#endif  // KORVANE_ALGO_INT32_H
