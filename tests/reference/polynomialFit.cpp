#include <cmath>
#include <cstddef>
#include <limits>
#include <stdexcept>
#include <utility>
#include <vector>

#include "reference.h"

namespace reference {

std::vector<double> polynomialFit(const std::vector<double>& x, const std::vector<double>& y, const int& degree) {
    // A negative number of coefficients, and one beyond 32 bits, is an impossible length.
    if (degree < -1 || degree == std::numeric_limits<int>::max()) {
        throw std::length_error("vector too long");
    }
    const std::size_t n = x.size();
    const std::size_t m = static_cast<std::size_t>(degree + 1);

    // Normal equations; every power by the library's pow.
    std::vector<std::vector<double>> a(m, std::vector<double>(m, 0.0));
    std::vector<double> b(m, 0.0);
    for (std::size_t i = 0; i < m; ++i) {
        for (std::size_t j = 0; j < m; ++j) {
            for (std::size_t k = 0; k < n; ++k) {
                a[i][j] += std::pow(x[k], static_cast<double>(i + j));
            }
        }
        for (std::size_t k = 0; k < n; ++k) {
            b[i] += std::pow(x[k], static_cast<double>(i)) * y[k];
        }
    }

    // Gaussian elimination with partial pivoting; no test for a zero pivot.
    for (std::size_t q = 0; q < m; ++q) {
        std::size_t pivot = q;
        for (std::size_t r = q + 1; r < m; ++r) {
            if (std::fabs(a[r][q]) > std::fabs(a[pivot][q])) {
                pivot = r;
            }
        }
        if (pivot != q) {
            std::swap(a[pivot], a[q]);
            std::swap(b[pivot], b[q]);
        }
        for (std::size_t r = q + 1; r < m; ++r) {
            const double f = a[r][q] / a[q][q];
            for (std::size_t j = q; j < m; ++j) {
                a[r][j] -= f * a[q][j];
            }
            b[r] -= f * b[q];
        }
    }

    // Back substitution.
    std::vector<double> c(m, 0.0);
    for (std::size_t i = m; i-- > 0;) {
        double sum = 0.0;
        for (std::size_t j = i + 1; j < m; ++j) {
            sum += a[i][j] * c[j];
        }
        c[i] = (b[i] - sum) / a[i][i];
    }
    return c;
}

}  // namespace reference
