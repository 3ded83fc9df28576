#include <vector>

#include "reference.h"

namespace reference {

double evaluatePolynomial(const std::vector<double>& coefficients, const double& x) {
    // The running power, not Horner's scheme: meant.
    double sum = 0.0;
    double power = 1.0;
    for (const double coefficient : coefficients) {
        sum += coefficient * power;
        power *= x;
    }
    return sum;
}

}  // namespace reference
