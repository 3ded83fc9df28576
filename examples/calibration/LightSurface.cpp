#include "calibration/LightSurface.h"

#include <Eigen/QR>
#include <Eigen/SVD>
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <string>

#include "common/Failure.h"

namespace calibration {
namespace {

/// Exponents of X and Y that belong to each coefficient.
struct Term {
    int x;
    int y;
    int degree() const { return x + y; }
};
constexpr std::array<Term, 6> kTerms{{{0, 0}, {1, 0}, {0, 1}, {2, 0}, {1, 1}, {0, 2}}};

/// All points of one view lie in the plate, so without other views they fit the plate itself perfectly well; only the
/// condition of the equations gives that away. Good views stay below 200, a single line reaches many thousands.
constexpr double kWorstCondition = 500.0;

[[noreturn]] void complainAbout(double condition) {
    char text[160];
    std::snprintf(text, sizeof text,
                  "the views do not determine the light surface (condition number %.3g, at most %g): take more views "
                  "at more different heights",
                  condition, kWorstCondition);
    throw examples::Failure(text);
}

}  // namespace

LightSurface fitLightSurface(const std::vector<Eigen::Vector3d>& points, SurfaceForm form) {
    const auto rows = static_cast<Eigen::Index>(points.size());
    const auto terms = static_cast<Eigen::Index>(form);
    if (rows <= terms)
        throw examples::Failure("only " + std::to_string(points.size()) + " points of the light sheet were found");

    // One equation per point. With lengths in units of half the field's width, the columns are of similar size, and
    // small ones mean that the points spread little, not that the unit is a bad one.
    double unit = 0.0;
    for (const Eigen::Vector3d& point : points) unit = std::max(unit, std::abs(point.x()));
    Eigen::MatrixXd equations(rows, terms);
    Eigen::VectorXd depths(rows);
    for (Eigen::Index row = 0; row < rows; ++row) {
        const Eigen::Vector3d& point = points[static_cast<std::size_t>(row)];
        for (Eigen::Index i = 0; i < terms; ++i) {
            const Term& term = kTerms[static_cast<std::size_t>(i)];
            equations(row, i) = std::pow(point.x() / unit, term.x) * std::pow(point.y() / unit, term.y);
        }
        depths(row) = point.z();
    }

    // Equations = Q R: R has their singular values, and no squared condition as the normal equations have.
    const Eigen::HouseholderQR<Eigen::MatrixXd> qr(equations);
    const Eigen::MatrixXd r = qr.matrixQR().topRows(terms).triangularView<Eigen::Upper>();
    const Eigen::VectorXd singularValues = Eigen::JacobiSVD<Eigen::MatrixXd>(r).singularValues();
    const double condition = singularValues(0) / singularValues(terms - 1);
    if (!(condition <= kWorstCondition)) complainAbout(condition);
    const Eigen::VectorXd scaled = qr.solve(depths);

    // Covariance of the coefficients: variance of the residuals times (R^T R)^-1.
    const double variance = (depths - equations * scaled).squaredNorm() / static_cast<double>(rows - terms);
    const Eigen::MatrixXd inverse =
        r.triangularView<Eigen::Upper>().solve(Eigen::MatrixXd::Identity(terms, terms).eval());
    const Eigen::VectorXd deviations = (variance * inverse.rowwise().squaredNorm()).cwiseSqrt();

    // Back to millimetres.
    LightSurface surface{form, {}, {}, condition};
    for (Eigen::Index i = 0; i < terms; ++i) {
        const auto index = static_cast<std::size_t>(i);
        const double toMillimetres = std::pow(unit, -kTerms[index].degree());
        surface.coefficients[index] = scaled(i) * toMillimetres;
        surface.deviations[index] = deviations(i) * toMillimetres;
    }
    return surface;
}

}  // namespace calibration
