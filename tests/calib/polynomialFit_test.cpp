#include <gtest/gtest.h>

#include <cmath>
#include <cstddef>
#include <functional>
#include <limits>
#include <new>
#include <stdexcept>
#include <typeinfo>
#include <utility>
#include <vector>

#include "KorvaneLaserAlgo.h"
#include "support/Support.h"

namespace {

using support::KorvaneLaserAlgo;
using support::sameBits;

using Numbers = std::vector<double>;

constexpr double kNotANumber = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr int kIntMax = std::numeric_limits<int>::max();
constexpr int kIntMin = std::numeric_limits<int>::min();

Numbers fit(const Numbers& x, const Numbers& y, int degree) {
    KorvaneLaserAlgo algo;
    return algo.polynomialFit(x, y, degree);
}

double evaluate(const Numbers& coefficients, double x) {
    KorvaneLaserAlgo algo;
    return algo.evaluatePolynomial(coefficients, x);
}

// ---- polynomialFit: known polynomials

TEST(polynomialFit, DegreeMinusOneYieldsAnEmptyVector) {
    EXPECT_TRUE(fit({1, 2, 3}, {4, 5, 6}, -1).empty());
    EXPECT_TRUE(fit({}, {}, -1).empty());
}

TEST(polynomialFit, DegreeZeroYieldsTheMean) {
    EXPECT_TRUE(sameBits(fit({0, 1, 7}, {1, 2, 6}, 0), Numbers{(1.0 + 2.0 + 6.0) / 3.0}));
    EXPECT_TRUE(sameBits(fit({0, 0, 0}, {0.1, 0.2, 0.4}, 0), Numbers{(0.1 + 0.2 + 0.4) / 3.0}));
}

TEST(polynomialFit, MeanDoesNotDependOnThePositions) {
    const double signalling = std::numeric_limits<double>::signaling_NaN();
    for (double x : {kNotANumber, kInfinity, -1e300, signalling})
        EXPECT_TRUE(sameBits(fit({x, 0, x}, {1, 2, 6}, 0), Numbers{3.0})) << x;
}

TEST(polynomialFit, ThreePointsOfALineYieldTheLine) {
    EXPECT_TRUE(sameBits(fit({0, 1, 2}, {1, 3, 5}, 1), Numbers{1, 2}));
}

TEST(polynomialFit, SamplesOfAPolynomialYieldItsCoefficientsByIncreasingPower) {
    const Numbers wanted = {0.5, -1.25, 3, 0.75};
    Numbers x;
    Numbers y;
    for (int i = -6; i <= 6; ++i) {
        x.push_back(0.3 * i);
        y.push_back(wanted[0] + wanted[1] * x.back() + wanted[2] * std::pow(x.back(), 2) +
                    wanted[3] * std::pow(x.back(), 3));
    }
    const Numbers c = fit(x, y, 3);
    ASSERT_EQ(c.size(), 4U);
    for (std::size_t i = 0; i < 4; ++i) EXPECT_NEAR(c[i], wanted[i], 1e-10) << i;
}

TEST(polynomialFit, FitMinimisesTheSumOfSquares) {
    // The residuals of a least-squares line are orthogonal to 1 and to x.
    const Numbers x = {0, 1, 2, 3, 5};
    const Numbers y = {1, 0, 4, 2, 7};
    const Numbers c = fit(x, y, 1);
    ASSERT_EQ(c.size(), 2U);
    double sum = 0;
    double moment = 0;
    for (std::size_t i = 0; i < x.size(); ++i) {
        const double residual = y[i] - (c[0] + c[1] * x[i]);
        sum += residual;
        moment += residual * x[i];
    }
    EXPECT_NEAR(sum, 0, 1e-12);
    EXPECT_NEAR(moment, 0, 1e-12);
}

TEST(polynomialFit, ValuesBeyondThePositionsAreIgnored) {
    EXPECT_TRUE(sameBits(fit({0, 1, 2}, {1, 3, 5, 1000, kNotANumber}, 1), Numbers{1, 2}));
}

TEST(polynomialFit, SamplesAreLeftAsTheyAre) {
    const Numbers x = {4, 2, 1};
    const Numbers y = {1, 5, 2};
    (void)fit(x, y, 2);
    EXPECT_EQ(x, (Numbers{4, 2, 1}));
    EXPECT_EQ(y, (Numbers{1, 5, 2}));
}

// ---- polynomialFit: the bits

/// Normal equations and Gaussian elimination, step by step. `wins` tells whether a later row takes the pivot's place.
Numbers stepByStep(const Numbers& x, const Numbers& y, std::size_t degree,
                   const std::function<bool(double, double)>& wins = std::greater<>()) {
    const std::size_t m = degree + 1;
    std::vector<Numbers> a(m, Numbers(m, 0.0));
    Numbers b(m, 0.0);
    for (std::size_t i = 0; i < m; ++i) {
        for (std::size_t k = 0; k < x.size(); ++k) {
            for (std::size_t j = 0; j < m; ++j) a[i][j] += std::pow(x[k], static_cast<double>(i + j));
            b[i] += std::pow(x[k], static_cast<double>(i)) * y[k];
        }
    }
    for (std::size_t q = 0; q < m; ++q) {
        std::size_t pivot = q;
        for (std::size_t r = q + 1; r < m; ++r) {
            if (wins(std::abs(a[r][q]), std::abs(a[pivot][q]))) pivot = r;
        }
        std::swap(a[q], a[pivot]);
        std::swap(b[q], b[pivot]);
        for (std::size_t r = q + 1; r < m; ++r) {
            const double f = a[r][q] / a[q][q];
            for (std::size_t j = q; j < m; ++j) a[r][j] -= f * a[q][j];
            b[r] -= f * b[q];
        }
    }
    Numbers c(m);
    for (std::size_t i = m; i-- > 0;) {
        double sum = 0.0;
        for (std::size_t j = i + 1; j < m; ++j) sum += a[i][j] * c[j];
        c[i] = (b[i] - sum) / a[i][i];
    }
    return c;
}

TEST(polynomialFit, EveryDegreeFollowsTheStepsBitForBit) {
    Numbers x;
    Numbers y;
    for (int i = 0; i < 25; ++i) {
        x.push_back(-1.7 + 0.137 * i);
        y.push_back(std::sin(1.3 * i) * 10);
    }
    for (std::size_t degree = 0; degree <= 6; ++degree)
        EXPECT_TRUE(sameBits(fit(x, y, static_cast<int>(degree)), stepByStep(x, y, degree))) << "degree " << degree;
}

TEST(polynomialFit, RowWithTheGreatestMagnitudeIsThePivot) {
    const auto never = [](double, double) { return false; };
    const Numbers y = {3, 7.1};
    for (const Numbers& x : {Numbers{2, 4.3}, Numbers{-2, -4.3}}) {
        // The sums of x exceed the count 2, so the second row moves up.
        ASSERT_FALSE(sameBits(stepByStep(x, y, 1), stepByStep(x, y, 1, never)));
        EXPECT_TRUE(sameBits(fit(x, y, 1), stepByStep(x, y, 1)));
    }
}

TEST(polynomialFit, FirstOfEqualPivotsStays) {
    // The sum of x is the count 2, so both rows begin with the same number.
    const Numbers x = {0.3, 1.7};
    const Numbers y = {1.1, 3.7};
    ASSERT_EQ(x[0] + x[1], 2.0);
    ASSERT_FALSE(sameBits(stepByStep(x, y, 1), stepByStep(x, y, 1, std::greater_equal<>())));
    EXPECT_TRUE(sameBits(fit(x, y, 1), stepByStep(x, y, 1)));
}

TEST(polynomialFit, FirstOfEqualMaximaBelowBecomesThePivot) {
    // Column 0 holds 5, 1, 7, 7: the third and the fourth row tie.
    const Numbers x = {2, -1, -1, 0, 1};
    const Numbers y = {1.1, 3.7, -0.3, 0.9, 2.3};
    ASSERT_FALSE(sameBits(stepByStep(x, y, 3), stepByStep(x, y, 3, std::greater_equal<>())));
    EXPECT_TRUE(sameBits(fit(x, y, 3), stepByStep(x, y, 3)));
}

TEST(polynomialFit, SumsRunOverTheSamplesInOrder) {
    // 1e16 + 1 rounds to 1e16 again, 1 + 1 + 1e16 does not.
    EXPECT_TRUE(sameBits(fit({1, 2, 3}, {1e16, 1, 1}, 0), Numbers{1e16 / 3.0}));
    EXPECT_TRUE(sameBits(fit({1, 2, 3}, {1, 1, 1e16}, 0), Numbers{(1e16 + 2.0) / 3.0}));
    ASSERT_NE(1e16 / 3.0, (1e16 + 2.0) / 3.0);
}

// ---- polynomialFit: what cannot be fitted

TEST(polynomialFit, NoSamplesYieldNotANumber) {
    for (int degree : {0, 1, 3}) {
        const Numbers c = fit({}, {}, degree);
        ASSERT_EQ(c.size(), static_cast<std::size_t>(degree) + 1);
        for (double coefficient : c) EXPECT_TRUE(std::isnan(coefficient));
    }
}

TEST(polynomialFit, TooFewDistinctPositionsYieldNoFiniteNumbers) {
    for (const Numbers& x : {Numbers{1, 1}, Numbers{2, 2}, Numbers{0, 0}}) {
        const Numbers c = fit(x, {1, 2}, 1);
        ASSERT_EQ(c.size(), 2U);
        EXPECT_FALSE(std::isfinite(c[0]));
        EXPECT_FALSE(std::isfinite(c[1]));
    }
}

TEST(polynomialFit, PositionThatIsNotANumberYieldsNotANumber) {
    const Numbers c = fit({0, kNotANumber, 2}, {1, 3, 5}, 1);
    ASSERT_EQ(c.size(), 2U);
    EXPECT_TRUE(std::isnan(c[0]));
    EXPECT_TRUE(std::isnan(c[1]));
}

TEST(polynomialFit, InfiniteSumOfPowersMakesTheHighestCoefficientZero) {
    // With u = 2^600: (1, u | 1), (u, inf | u). The second row is the pivot and leaves (0, -inf | 0) of the first.
    const Numbers c = fit({0x1p600}, {1}, 1);
    ASSERT_EQ(c.size(), 2U);
    EXPECT_TRUE(std::isnan(c[0]));
    EXPECT_SAME_BITS(c[1], -0.0);
}

TEST(polynomialFit, ImpossibleDegreeIsALengthError) {
    for (int degree : {-2, -3, -1000, kIntMin, kIntMax}) {
        try {
            (void)fit({0, 1, 2}, {1, 3, 5}, degree);
            ADD_FAILURE() << "degree " << degree << " did not throw";
        } catch (const std::exception& error) {
            EXPECT_TRUE(typeid(error) == typeid(std::length_error)) << "degree " << degree;
            EXPECT_STREQ(error.what(), "vector too long") << "degree " << degree;
        }
    }
}

TEST(polynomialFit, ImpossibleDegreeIsALengthErrorWithoutSamplesToo) {
    EXPECT_THROW((void)fit({}, {}, -2), std::length_error);
    EXPECT_THROW((void)fit({}, {}, kIntMax), std::length_error);
}

TEST(polynomialFit, DegreeWhoseSystemHasMoreBytesThanThereAreAddressesIsAnAllocationFailure) {
    // 2147483647^2 doubles are about 2^65 bytes.
    EXPECT_THROW((void)fit({0, 1, 2}, {1, 3, 5}, kIntMax - 1), std::bad_alloc);
    EXPECT_THROW((void)fit({}, {}, kIntMax - 1), std::bad_alloc);
}

// ---- evaluatePolynomial

TEST(evaluatePolynomial, CoefficientsGoByIncreasingPower) {
    EXPECT_SAME_BITS(evaluate({1, 2, 3}, 2), 17.0);  // 1 + 2 * 2 + 3 * 4
    EXPECT_SAME_BITS(evaluate({1, 2, 3}, -2), 9.0);
    EXPECT_SAME_BITS(evaluate({1, 2, 3}, 0), 1.0);
    EXPECT_SAME_BITS(evaluate({0, 0, 0, 1}, 3), 27.0);
}

TEST(evaluatePolynomial, EmptyVectorIsZeroEverywhere) {
    for (double x : {0.0, 2.0, -5.5, kInfinity, kNotANumber}) EXPECT_SAME_BITS(evaluate({}, x), 0.0);
}

TEST(evaluatePolynomial, ConstantDoesNotLookAtThePosition) {
    for (double x : {0.0, -3.0, kInfinity, kNotANumber}) EXPECT_SAME_BITS(evaluate({5}, x), 5.0);
}

TEST(evaluatePolynomial, SumStartsAtPositiveZero) {
    EXPECT_SAME_BITS(evaluate({-0.0}, 1), 0.0);
}

TEST(evaluatePolynomial, TermsAreSummedFromTheConstantOn) {
    ASSERT_NE((1e16 + 1.0) + 1.0, 1e16 + (1.0 + 1.0));
    EXPECT_SAME_BITS(evaluate({1e16, 1, 1}, 1), 1e16);
    EXPECT_SAME_BITS(evaluate({1, 1, 1e16}, 1), 1e16 + 2.0);
}

TEST(evaluatePolynomial, RunningPowerIsTakenBeforeTheCoefficient) {
    // x^3 overflows although 1e-200 x^3, nested, would not.
    ASSERT_TRUE(std::isfinite(((1e-200 * 1e150) * 1e150) * 1e150));
    EXPECT_SAME_BITS(evaluate({1, 0, 0, 1e-200}, 1e150), kInfinity);
    EXPECT_TRUE(std::isnan(evaluate({1, 0, 0}, 1e200)));  // 0 * infinity
}

TEST(evaluatePolynomial, EveryValueFollowsTheRunningPowerBitForBit) {
    const Numbers c = {0.3, -1.7, 2.9, 0.41, -0.083};
    bool differsFromNesting = false;
    for (int i = -20; i <= 20; ++i) {
        const double x = 0.0937 * i;
        double power = 1.0;
        double value = 0.0;
        for (double coefficient : c) {
            value += coefficient * power;
            power *= x;
        }
        const double nested = (((c[4] * x + c[3]) * x + c[2]) * x + c[1]) * x + c[0];
        differsFromNesting = differsFromNesting || nested != value;
        EXPECT_SAME_BITS(evaluate(c, x), value);
    }
    EXPECT_TRUE(differsFromNesting);
}

TEST(evaluatePolynomial, InfinitePositionYieldsTheLimitOfTheHighestTerm) {
    EXPECT_SAME_BITS(evaluate({1, 2}, kInfinity), kInfinity);
    EXPECT_SAME_BITS(evaluate({1, 2}, -kInfinity), -kInfinity);
    EXPECT_TRUE(std::isnan(evaluate({1, 2}, kNotANumber)));
}

}  // namespace
