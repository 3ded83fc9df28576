#include <cmath>

#include "kernels/plain/plain.h"

namespace KORVANELASERALGO::kernels::plain {

void smoothHeights(const double* heights, std::size_t count, const double* weights, std::size_t reach, double step,
                   double* smoothed) {
    for (std::size_t j = 0; j < count; ++j) {
        const double centre = heights[j + reach];
        double height = 0.0;
        double weightSum = 0.0;
        for (std::size_t k = 0; k < 2 * reach + 1; ++k) {
            const double neighbour = heights[j + k];
            if (!(std::fabs(centre - neighbour) < step)) continue;
            height += neighbour * weights[k];
            weightSum += weights[k];
        }
        smoothed[j] = height / weightSum;
    }
}

}  // namespace KORVANELASERALGO::kernels::plain
