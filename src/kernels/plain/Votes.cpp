#include <cmath>

#include "kernels/plain/plain.h"

namespace KORVANELASERALGO::kernels::plain {
namespace {

std::size_t countAgreeingDepths(const double* z, std::size_t w, double threshold) {
    std::size_t agreeing = 0;
    for (std::size_t k = 0; k < 2 * w; ++k) agreeing += std::fabs(z[k - w] - z[0]) < threshold ? 1 : 0;
    return agreeing;
}

std::size_t countAgreeingDirections(const double* slopes, std::size_t j, std::size_t count, std::size_t w,
                                    double slopeBound) {
    const double own = j < 2 ? 0.0 : static_cast<double>(static_cast<float>(slopes[j]));
    if (own == 0.0) return 0;
    std::size_t agreeing = 0;
    for (std::size_t n = j <= w ? 1 : j - w; n < j + w && n < count; ++n)
        agreeing += n != j && std::fabs(own - slopes[n]) < slopeBound ? 1 : 0;
    return agreeing;
}

}  // namespace

std::size_t listUsable(const double* points, std::size_t first, std::size_t end, double* x, double* z,
                       std::int32_t* positions) {
    std::size_t listed = 0;
    for (std::size_t i = first; i < end; ++i) {
        // Behind the lists there is room for one more.
        const double* point = points + 3 * i;
        x[listed] = point[0];
        z[listed] = point[2];
        positions[listed] = static_cast<std::int32_t>(i);
        listed += point[0] != 0.0 && point[2] != 0.0 ? 1 : 0;
    }
    return listed;
}

std::size_t keepOutliers(const double* x, const double* z, std::size_t count, std::size_t w, double threshold,
                         double slopeBound, double* slopes, std::int32_t* positions) {
    for (std::size_t i = 1; i < count; ++i) slopes[i] = (x[i] - x[i - 1]) / (z[i] - z[i - 1]);
    std::size_t outliers = 0;
    for (std::size_t j = 0; j < count; ++j) {
        if (countAgreeingDepths(z + j, w, threshold) > w) continue;
        if (countAgreeingDirections(slopes, j, count, w, slopeBound) > w) continue;
        positions[outliers++] = positions[j];
    }
    return outliers;
}

}  // namespace KORVANELASERALGO::kernels::plain
