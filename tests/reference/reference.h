/// @file reference.h
/// @brief A slow, plain twin of every algorithm method, to compare the library with bit for bit.
///
/// Each function follows its rule step by step, column by column, and is never tuned. It shares nothing with the
/// library but the records of the public header. What the library keeps in its object or for the whole process is
/// an explicit argument here: `Settings`, `StabilisationState`, `ExposureState`. No function starts a thread or ends
/// the process.
///
/// Buffers have the shapes that the public header states: images `Width` x `Height` bytes, masks and 2D points one
/// entry per column. A `Width` or `Height` below 1 counts as 0.
#ifndef KORVANE_TESTS_REFERENCE_REFERENCE_H
#define KORVANE_TESTS_REFERENCE_REFERENCE_H

#include <cstdint>
#include <vector>

#include "KorvaneLaserAlgo.h"

namespace reference {

using Point2d = KORVANELASERALGO::tagKorvaneLaserPoint2d;
using Point3d = KORVANELASERALGO::tagKorvaneLaserPoint3d;

/// What an object of the library holds; all zero at first, as in a new object.
struct Settings {
    KORVANELASERALGO::tagKorvaneLaserAlgoROIInfo roi{};
    KORVANELASERALGO::tagKorvaneLaserAlgoCalibrationInfo calibration{};
    KORVANELASERALGO::tagKorvaneLaserAlgoLineSelectInfo lineSelect{};
};

/// What `CalcImageBuffer` keeps for the whole process.
struct StabilisationState {
    std::vector<unsigned char> frame;
};

/// What `AutoExposure` keeps for the whole process.
struct ExposureState {
    std::vector<unsigned char> frame;
    double exposure = 1.0;
};

/// A candidate centre as the line search sees it: column and row, whole pixels.
struct VotePoint {
    int x;
    int y;
};

/// A straight piece of the stripe, start to end, x1 <= x2.
struct LineSegment {
    int x1;
    int y1;
    int x2;
    int y2;
};

/// @name Extraction
/// @{
void Cal2DPoint1(const Settings& settings, bool* mask, unsigned char* image, std::vector<Point2d>& points,
                 const int& unused);
void Cal2DPoint1_1(const Settings& settings, bool* mask, unsigned char* image, std::vector<Point2d>& points);
void Cal2DPoint2(const Settings& settings, bool* mask, unsigned char* image, std::vector<Point2d>& points);
void Cal2DPoint2_1(const Settings& settings, bool* mask, unsigned char* image, std::vector<Point2d>& points);
void Cal2DPoint3(const Settings& settings, bool* mask, unsigned char* image, std::vector<Point2d>& points,
                 const int& cap);
void Cal2DPoint4(const Settings& settings, bool* mask, unsigned char* image, std::vector<Point2d>& points,
                 const int& threshold);

/// Grey-weighted mean row of `count` values that stand in rows `firstRow` and below; leaves `point` as it is when all
/// values are 0.
void ColumnCentroid(int column, int firstRow, int count, const std::uint32_t* values, Point2d& point);

/// Humps of a grey-value profile that stand out by 5 grey levels. The outputs are empty on entry.
void FindPeaks(std::vector<int> profile, std::vector<int>& positions, std::vector<int>& values);

/// Humps of a grey-value profile that fall by 50 grey levels on one side at least, with the ends of their flanks. The
/// outputs are empty on entry.
void FindPeaksWithFeet(std::vector<int> profile, std::vector<int>& positions, std::vector<int>& values,
                       std::vector<int>& leftFeet, std::vector<int>& rightFeet);

/// Long, dense, straight pieces among points of the ROI (standard Hough transform); appends to `segments`.
void FindLineSegments(const Settings& settings, const std::vector<VotePoint>& points, float rhoStep, float angleStep,
                      float densityRatio, std::vector<LineSegment>& segments);
/// @}

/// @name Calibration
/// @{
void undistortPoints2(const Settings& settings, std::vector<Point2d>& points);
void Cal3DPoint1(const Settings& settings, bool* mask, const std::vector<Point2d>& points2d,
                 std::vector<Point3d>& points3d);
void Cal3DPoint2(const Settings& settings, bool* mask, const std::vector<Point2d>& points2d,
                 std::vector<Point3d>& points3d);

/// Returns false, and writes nothing, where the library ends the process.
bool CalRT(double* plane, double* rt);

std::vector<double> polynomialFit(const std::vector<double>& x, const std::vector<double>& y, const int& degree);
double evaluatePolynomial(const std::vector<double>& coefficients, const double& x);
/// @}

/// @name Profile
/// @{
void Outlierdetect1(std::vector<Point3d>& profile, const int& halfWidth, const float& threshold);
void Outlierdetect2(std::vector<Point3d>& profile, const int& halfWidth, const float& threshold);

/// The one rule behind `medianfilter1` and `medianfilter2`.
void medianfilter(std::vector<Point3d>& points, const int& halfWindow);

void Gaussianfilter(std::vector<Point3d>& points, const int& halfWindow);
void Downsample(const std::vector<Point3d>& in, const float& step, std::vector<Point3d>& out, int& count);
/// @}

/// @name Image
/// @{
void GaussianBlur(const Settings& settings, unsigned char* src, unsigned char* dst, const int& ksize);
void Otsu2(const Settings& settings, const int& threshold, unsigned char* out, unsigned char* src);
void Otsu3(const Settings& settings, unsigned char* out, int* labels, unsigned char* src);
void MergeImg(const Settings& settings, unsigned char* first, unsigned char* second, unsigned char* out);
void CalcImageBuffer(const Settings& settings, StabilisationState& state, unsigned char* current, unsigned char* out,
                     const bool& enable);
bool AutoExposure(const Settings& settings, ExposureState& state, unsigned char* image, const double& target,
                  const double& exposure, const double& minExposure, const double& maxExposure, const double& step,
                  const bool& enable, double& newExposure);
/// @}

}  // namespace reference

#endif  // KORVANE_TESTS_REFERENCE_REFERENCE_H
