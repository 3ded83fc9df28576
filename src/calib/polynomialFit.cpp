// polynomialFit and evaluatePolynomial: least squares by the normal equations, solved by Gaussian elimination with
// partial pivoting. Coefficients run by increasing power: c[0] + c[1] x + c[2] x^2 + ...

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <new>
#include <span>
#include <stdexcept>

#include "calib/calib.h"

namespace KORVANELASERALGO::calib {
namespace {

// A x = b with a square A, row by row.
struct LinearSystem {
    // The matrix comes first, so that an impossible degree fails before any memory is filled.
    explicit LinearSystem(std::size_t order) : size(order) {
        // A size beyond all addresses fails as an allocation does; `order` is an int plus one.
        if (std::uint64_t{order} * order > PTRDIFF_MAX / sizeof(double)) throw std::bad_alloc();
        a.resize(order * order);
        b.resize(order);
    }

    std::span<double> row(std::size_t i) { return std::span(a).subspan(i * size, size); }

    std::size_t size;
    std::vector<double> a;
    std::vector<double> b;
};

// The library's function on the exponent. It gives 1 and x for the exponents 0 and 1: its error before the last
// rounding is far below half a unit, so what needs no rounding comes out as it is. Only of a signalling not-a-number
// some libraries give no 1.
double powerOf(double x, std::size_t exponent) {
    if (exponent == 0) return 1.0;
    if (exponent == 1) return x;
    return std::pow(x, static_cast<double>(exponent));
}

// Sums of powers over the samples: A(i, j) = sum of x^(i + j), b(i) = sum of x^i y. Each power is taken once and
// goes into both; no running product is kept.
LinearSystem normalEquations(const std::vector<double>& x, const std::vector<double>& y, std::size_t order) {
    LinearSystem system(order);
    std::vector<double> powerSums(order == 0 ? 0 : 2 * order - 1, 0.0);
    for (std::size_t e = 0; e < powerSums.size(); ++e) {
        for (std::size_t k = 0; k < x.size(); ++k) {
            const double power = powerOf(x[k], e);
            powerSums[e] += power;
            if (e < order) system.b[e] += power * y[k];
        }
    }
    for (std::size_t i = 0; i < order; ++i) {
        for (std::size_t j = 0; j < order; ++j) system.row(i)[j] = powerSums[i + j];
    }
    return system;
}

// Brings A to upper triangular form. A zero pivot is not guarded against: this is meant.
void eliminate(LinearSystem& system) {
    for (std::size_t q = 0; q < system.size; ++q) {
        // The first of the largest entries is the pivot.
        std::size_t pivot = q;
        for (std::size_t r = q + 1; r < system.size; ++r) {
            if (std::fabs(system.row(r)[q]) > std::fabs(system.row(pivot)[q])) pivot = r;
        }
        if (pivot != q) {
            std::ranges::swap_ranges(system.row(q), system.row(pivot));
            std::swap(system.b[q], system.b[pivot]);
        }

        for (std::size_t r = q + 1; r < system.size; ++r) {
            const double factor = system.row(r)[q] / system.row(q)[q];
            for (std::size_t j = q; j < system.size; ++j) system.row(r)[j] -= factor * system.row(q)[j];
            system.b[r] -= factor * system.b[q];
        }
    }
}

std::vector<double> substituteBack(LinearSystem& system) {
    std::vector<double> solution(system.size, 0.0);
    for (std::size_t i = system.size; i-- > 0;) {
        double sum = 0.0;
        for (std::size_t j = i + 1; j < system.size; ++j) sum += system.row(i)[j] * solution[j];
        solution[i] = (system.b[i] - sum) / system.row(i)[i];
    }
    return solution;
}

}  // namespace

std::vector<double> polynomialFit(const std::vector<double>& x, const std::vector<double>& y, int degree) {
    // degree + 1 coefficients must fit an int.
    if (degree < -1 || degree == std::numeric_limits<int>::max()) throw std::length_error("vector too long");

    const int coefficients = degree + 1;
    LinearSystem system = normalEquations(x, y, static_cast<std::size_t>(coefficients));
    eliminate(system);
    return substituteBack(system);
}

double evaluatePolynomial(const std::vector<double>& coefficients, double x) {
    double value = 0.0;
    double power = 1.0;
    for (const double coefficient : coefficients) {
        value += coefficient * power;
        power *= x;
    }
    return value;
}

}  // namespace KORVANELASERALGO::calib
