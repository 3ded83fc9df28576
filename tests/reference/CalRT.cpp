#include <array>
#include <cmath>
#include <cstddef>

#include "reference.h"

namespace reference {

namespace {

using Vector = std::array<double, 3>;

double norm(const Vector& v) {
    double sum = 0.0;
    for (const double element : v) {
        sum += element * element;
    }
    return std::sqrt(sum);
}

}  // namespace

bool CalRT(double* plane, double* rt) {
    const double c0 = plane[0];
    const double c1 = plane[1];
    const double c2 = plane[2];

    // Unit normal of the plane; its second element is never negative.
    double s = std::sqrt(c1 * c1 + c2 * c2 + 1.0);
    if (c2 < 0.0) {
        s = -s;
    }
    const Vector n = {c1 / s, c2 / s, -1.0 / s};
    const Vector e = {0.0, 1.0, 0.0};

    // The turn from the normal to the target axis: axis and angle.
    const Vector a = {n[1] * e[2] - n[2] * e[1], n[2] * e[0] - n[0] * e[2], n[0] * e[1] - n[1] * e[0]};
    const double theta = std::acos(n[1]);
    const double length = norm(a);
    if (std::fabs(length) < 1e-20) {
        return false;
    }
    Vector r{};
    for (std::size_t i = 0; i < 3; ++i) {
        r[i] = a[i] / length * theta;
    }

    // To a rotation vector and back: both divisions are kept, and both are guarded.
    const double phi = norm(r);
    if (std::fabs(phi) < 1e-20) {
        return false;
    }
    Vector u{};
    for (std::size_t i = 0; i < 3; ++i) {
        u[i] = r[i] / phi;
    }

    // Rodrigues' rotation formula.
    const double cosine = std::cos(phi);
    const double sine = std::sin(phi);
    const double w = 1.0 - cosine;
    const std::array<Vector, 3> skew = {{{0.0, -u[2], u[1]}, {u[2], 0.0, -u[0]}, {-u[1], u[0], 0.0}}};
    for (std::size_t i = 0; i < 3; ++i) {
        for (std::size_t j = 0; j < 3; ++j) {
            const double outer = 0.0 + u[i] * u[j];  // a sum of one product, from zero
            double element = sine * skew[i][j] + w * outer;
            if (i == j) {
                element += cosine;
            }
            rt[3 * i + j] = element;
        }
    }

    // c0 / c2 on y and nothing else: the plane's points share one y, which is not 0: meant. There is no guard.
    rt[9] = 0.0;
    rt[10] = c0 / c2;
    rt[11] = 0.0;
    return true;
}

}  // namespace reference
