#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <new>
#include <vector>

#include "reference.h"

namespace reference {

void Gaussianfilter(std::vector<Point3d>& points, const int& halfWindow) {
    const std::int64_t r = halfWindow;

    // A kernel of negative size, or of one beyond 32 bits, cannot be allocated.
    const std::int64_t size = 2 * r + 1;
    if (r < 0 || size > std::numeric_limits<std::int32_t>::max()) {
        throw std::bad_alloc();
    }

    // The valid points and their places in the profile.
    std::vector<Point3d> valid;
    std::vector<std::size_t> positions;
    for (std::size_t i = 0; i < points.size(); ++i) {
        if (points[i].x != 0.0) {
            valid.push_back(points[i]);
            positions.push_back(i);
        }
    }
    const std::int64_t n = static_cast<std::int64_t>(valid.size());
    if (n < size || n == 0) {
        return;
    }

    // Normalised weights; made only now, since a kernel wider than the profile is never used.
    std::vector<double> weights;
    const double sigma = static_cast<double>(size) / 3.0;
    double sum = 0.0;
    for (std::int64_t i = -r; i <= r; ++i) {
        weights.push_back(std::exp(static_cast<double>(-(i * i)) / ((sigma + sigma) * sigma)));
        sum += weights.back();
    }
    for (double& weight : weights) {
        weight /= sum;
    }

    // Neighbours whose height is 5 or more away are left out; they are read from the unfiltered copies.
    for (std::int64_t j = 0; j < n; ++j) {
        const double centre = valid[static_cast<std::size_t>(j)].z;
        double height = 0.0;
        double share = 0.0;
        for (std::int64_t k = -r; k <= r; ++k) {
            const std::int64_t m = j + k;
            if (m < 0 || m >= n) {
                continue;
            }
            const double neighbour = valid[static_cast<std::size_t>(m)].z;
            if (std::fabs(centre - neighbour) < 5.0) {
                height += neighbour * weights[static_cast<std::size_t>(k + r)];
                share += weights[static_cast<std::size_t>(k + r)];
            }
        }
        points[positions[static_cast<std::size_t>(j)]].z = height / share;
    }
}

}  // namespace reference
