// The code of docs/masks.md: who writes a mask, who clears it, and what a missing point looks like.

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <memory>
#include <vector>

#include "KorvaneLaserAlgo.h"
#include "pages/Claim.h"
#include "pages/Inputs.h"

using namespace KORVANELASERALGO;
using namespace pages;

namespace {

// [measured]
/// Whether a column of a profile holds a measurement: neither the empty point nor bad numbers.
bool isMeasured(const tagKorvaneLaserPoint3d& point) {
    if (point.x == 0.0 && point.y == 0.0 && point.z == 0.0) return false;
    return std::isfinite(point.x) && std::isfinite(point.y) && std::isfinite(point.z);
}
// [/measured]

void clearing() {
    // [clear]
    tagKorvaneLaserAlgoROIInfo roi{.OffsetX = 80, .OffsetY = 28, .Width = 16, .Height = 64};
    KorvaneLaserAlgo algo;
    algo.SetROIInfo(&roi);

    const std::unique_ptr<bool[]> mask(new bool[16]);
    std::vector<tagKorvaneLaserPoint2d> points;

    Frame frame(16, 64);
    frame.line(30, 200, 0, 9);  // the stripe ends at column 9
    std::fill_n(mask.get(), 16, false);
    algo.Cal2DPoint2(mask.get(), frame.data(), points);
    claim(std::count(mask.get(), mask.get() + 16, true) == 10);
    claim(points.size() == 16);                                                 // found or not
    claim(mask[9] && points[9].x == 80.0 + 9.0 && points[9].y == 28.0 + 30.0);  // full-sensor pixels
    claim(!mask[10] && points[10].x == 80.0 && points[10].y == 28.0);           // nothing: the ROI's offsets

    Frame dark(16, 64);
    algo.Cal2DPoint2(mask.get(), dark.data(), points);           // not cleared before this frame:
    claim(std::count(mask.get(), mask.get() + 16, true) == 10);  // ten columns still say "found"
    // [/clear]
}

void emptyPoints() {
    Sized algo(4, 64, 100, 0);
    tagKorvaneLaserAlgoCalibrationInfo calibration{{1000.0, 0.0, 0.0, 0.0, 1000.0, 0.0, 0.0, 0.0, 1.0},
                                                   {0.0, 0.0, 0.0, 0.0, 0.0},
                                                   {300.0, 0.0, 1.0, 0.0, 0.0, 0.0},
                                                   {1.0, 0.0, 0.0, 0.0, 1.0, 0.0, 0.0, 0.0, 1.0, 0.0, 0.0, 0.0}};
    algo->SetCalibrationInfo(&calibration);
    // [bounds]
    // OffsetX is 100, Width 4: x must lie above -0.5 and below 103.5. The lower bound ignores the offset.
    bool mask[4] = {true, true, true, false};
    const Points2d points{{50.0, 20.0}, {103.4, 20.0}, {103.5, 20.0}, {102.0, 20.0}};
    Profile profile;
    algo->Cal3DPoint1(mask, points, profile);
    claim(isMeasured(profile[0]));  // far left of the ROI, and accepted
    claim(isMeasured(profile[1]));
    claim(isEmpty(profile[2]));  // undistortion moved it past the right bound: rejected, whatever the mask says
    claim(isEmpty(profile[3]));  // masked
    // [/bounds]
}

}  // namespace

int main() {
    clearing();
    emptyPoints();
}
