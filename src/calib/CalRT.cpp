// CalRT: the rotation that turns the light plane's normal into the output y axis by the shortest way (Rodrigues'
// rotation formula), and a translation along that axis.

#include <cmath>

#include "calib/Matrix.h"
#include "calib/calib.h"

namespace KORVANELASERALGO::calib {
namespace {

Matrix columnVector(double x, double y, double z) {
    Matrix vector(3, 1);
    vector.data[0][0] = x;
    vector.data[1][0] = y;
    vector.data[2][0] = z;
    return vector;
}

// K with K v = u x v.
Matrix skewMatrix(const Matrix& u) {
    Matrix skew(3, 3);
    skew.data[0][1] = -u.data[2][0];
    skew.data[0][2] = u.data[1][0];
    skew.data[1][0] = u.data[2][0];
    skew.data[1][2] = -u.data[0][0];
    skew.data[2][0] = -u.data[1][0];
    skew.data[2][1] = u.data[0][0];
    return skew;
}

}  // namespace

void CalRT(const double* plane, double* rt) {
    const double c0 = plane[0];
    const double c1 = plane[1];
    const double c2 = plane[2];

    // The plane's unit normal, with a y that is never negative.
    double s = std::sqrt(c1 * c1 + c2 * c2 + 1.0);
    if (c2 < 0.0) s = -s;
    const Matrix normal = columnVector(c1 / s, c2 / s, -1.0 / s);
    const Matrix target = columnVector(0.0, 1.0, 0.0);

    // Axis and angle to a rotation vector and back. Both divisions end the process for a divisor near zero, that is
    // for a normal that is the target already: this is meant.
    const Matrix axis = cross(normal, target);
    const double theta = std::acos(normal.data[1][0]);
    const Matrix rotationVector = axis / axis.norm() * theta;
    const double phi = rotationVector.norm();
    const Matrix u = rotationVector / phi;

    // Rodrigues' formula.
    const double cosPhi = std::cos(phi);
    const double sinPhi = std::sin(phi);
    const double w = 1.0 - cosPhi;
    const Matrix skew = skewMatrix(u);
    const Matrix outer = u * u.transpose();
    for (int i = 0; i < 3; ++i) {
        for (int j = 0; j < 3; ++j) {
            double element = sinPhi * skew.data[i][j] + w * outer.data[i][j];
            if (i == j) element += cosPhi;
            rt[3 * i + j] = element;
        }
    }

    // The plane comes to lie at y = c0 / c2 - c0 / s, not at 0. This is meant.
    rt[9] = 0.0;
    rt[10] = c0 / c2;
    rt[11] = 0.0;
}

}  // namespace KORVANELASERALGO::calib
