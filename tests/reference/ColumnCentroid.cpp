#include "reference.h"

namespace reference {

void ColumnCentroid(int column, int firstRow, int count, const std::uint32_t* values, Point2d& point) {
    // The sum of the values is an unsigned 32-bit integer, each product a signed one, their sum a double.
    std::uint32_t sum = 0;
    double weighted = 0.0;
    for (int i = 0; i < count; ++i) {
        sum += values[i];
        weighted += static_cast<double>(static_cast<std::int32_t>(static_cast<std::uint32_t>(i) * values[i]));
    }

    if (sum == 0) {
        return;
    }
    point.x = static_cast<double>(column);
    point.y = static_cast<double>(firstRow) + weighted / static_cast<double>(static_cast<std::int32_t>(sum));
}

}  // namespace reference
