#include <cmath>

#include "kernels/plain/plain.h"

namespace KORVANELASERALGO::kernels::plain {
namespace {

double planeDepth(const double* c, double x, double y) {
    return c[0] / (1.0 - c[1] * x - c[2] * y);
}

double surfaceDepth(const double* c, double x, double y) {
    const double a = c[3] * (x * x) + c[4] * x * y + c[5] * (y * y);
    const double b = c[1] * x + c[2] * y - 1.0;
    const double root = std::sqrt(b * b - 4.0 * a * c[0]);
    const float first = static_cast<float>((root - b) / (2.0 * a));
    const float second = static_cast<float>((-b - root) / (2.0 * a));
    const bool outOfRange = first < 0.0f || first > kLargestDepth;
    return static_cast<double>(outOfRange ? second : first);
}

// The sheet is a copy that the output cannot alias.
template <class Depth>
void meet(LightSheet sheet, const bool* found, const double* points, std::size_t count, double* points3d, Depth depth) {
    const auto [fx, cx, fy, cy] = sheet.camera;
    const double* rt = sheet.rt;

    for (std::size_t i = 0; i < count; ++i, points += 2, points3d += 3) {
        if (!found[i] || !(points[0] > sheet.lowerBound) || !(points[0] < sheet.upperBound)) {
            points3d[0] = points3d[1] = points3d[2] = 0.0;
            continue;
        }
        const double x = (points[0] - cx) / fx;
        const double y = (points[1] - cy) / fy;
        const double s = depth(sheet.surface, x, y);
        const double px = s * x;
        const double py = s * y;
        points3d[0] = rt[0] * px + rt[1] * py + rt[2] * s + rt[9];
        points3d[1] = rt[3] * px + rt[4] * py + rt[5] * s + rt[10];
        points3d[2] = rt[6] * px + rt[7] * py + rt[8] * s + rt[11];
    }
}

}  // namespace

void meetPlane(const LightSheet& sheet, const bool* found, const double* points, std::size_t count, double* points3d) {
    meet(sheet, found, points, count, points3d, planeDepth);
}

void meetSurface(const LightSheet& sheet, const bool* found, const double* points, std::size_t count,
                 double* points3d) {
    meet(sheet, found, points, count, points3d, surfaceDepth);
}

}  // namespace KORVANELASERALGO::kernels::plain
