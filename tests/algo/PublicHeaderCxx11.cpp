// Compiled as C++11 with warnings as errors: the public header stands alone, and a host of that age can use it. It is
// the first and only include.

#include "KorvaneLaserAlgo.h"

static_assert(sizeof(KORVANELASERALGO::tagKorvaneLaserPoint2d) == 16, "a host of any age sees the same records");

// Never called; compiling it is the test.
int useEveryKindOfMember(bool* mask, unsigned char* image) {
    KORVANELASERALGO::KorvaneLaserAlgo algo;
    KORVANELASERALGO::tagKorvaneLaserAlgoROIInfo roi = {0, 0, 640, 480};
    KORVANELASERALGO::tagKorvaneLaserAlgoCalibrationInfo calibration = {};
    KORVANELASERALGO::tagKorvaneLaserAlgoLineSelectInfo lineSelect = {60, 255, 1, 40, 1};
    algo.SetROIInfo(&roi);
    algo.SetCalibrationInfo(&calibration);
    algo.SetLineSelectInfo(&lineSelect);

    std::string version;
    algo.GetSdkVersionString(version);

    std::vector<KORVANELASERALGO::tagKorvaneLaserPoint2d> points;
    std::vector<KORVANELASERALGO::tagKorvaneLaserPoint3d> profile;
    std::vector<KORVANELASERALGO::tagKorvaneLaserPoint3d> thinned;
    int count = 0;
    algo.Cal2DPoint1(mask, image, points, 0);
    algo.undistortPoints2(points);
    algo.Cal3DPoint1(mask, points, profile);
    algo.Outlierdetect1(profile, 5, 1.0F);
    algo.Downsample(profile, 0.5F, thinned, count);
    const std::vector<double> line = algo.polynomialFit({0.0, 1.0}, {1.0, 2.0}, 1);
    return algo.evaluatePolynomial(line, 2.0) > 0.0 ? count : algo.GetROIInfoWidth();
}
