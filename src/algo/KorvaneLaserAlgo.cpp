// The roof of the library: settings in, and one forwarding line per method.

#include "KorvaneLaserAlgo.h"

#include "algo/AlgoContext.h"
#include "calib/calib.h"
#include "extract/extract.h"
#include "image/image.h"
#include "profile/profile.h"

namespace KORVANELASERALGO {

// ---- lifecycle and settings ----

KorvaneLaserAlgo::KorvaneLaserAlgo() : context_(new AlgoContext()) {}

KorvaneLaserAlgo::~KorvaneLaserAlgo() {
    delete context_;
}

void KorvaneLaserAlgo::SetROIInfo(tagKorvaneLaserAlgoROIInfo* info) {
    context_->roi = *info;
}

void KorvaneLaserAlgo::SetCalibrationInfo(tagKorvaneLaserAlgoCalibrationInfo* info) {
    context_->calibration = *info;
}

void KorvaneLaserAlgo::SetLineSelectInfo(tagKorvaneLaserAlgoLineSelectInfo* info) {
    context_->lineSelect = *info;
}

int KorvaneLaserAlgo::GetROIInfoOffsetX() {
    return context_->roi.OffsetX;
}

int KorvaneLaserAlgo::GetROIInfoOffsetY() {
    return context_->roi.OffsetY;
}

int KorvaneLaserAlgo::GetROIInfoWidth() {
    return context_->roi.Width;
}

int KorvaneLaserAlgo::GetROIInfoHeight() {
    return context_->roi.Height;
}

void KorvaneLaserAlgo::GetSdkVersionString(std::string& version) {
    version = KORVANE_VERSION_TEXT;
}

// ---- extraction ----

void KorvaneLaserAlgo::Cal2DPoint1(bool* mask, unsigned char* image, std::vector<tagKorvaneLaserPoint2d>& points,
                                   const int&) {
    extract::Cal2DPoint1(*context_, mask, image, points);
}

void KorvaneLaserAlgo::Cal2DPoint1_1(bool* mask, unsigned char* image, std::vector<tagKorvaneLaserPoint2d>& points) {
    extract::Cal2DPoint1_1(*context_, mask, image, points);
}

void KorvaneLaserAlgo::Cal2DPoint2(bool* mask, unsigned char* image, std::vector<tagKorvaneLaserPoint2d>& points) {
    extract::Cal2DPoint2(*context_, mask, image, points);
}

void KorvaneLaserAlgo::Cal2DPoint2_1(bool* mask, unsigned char* image, std::vector<tagKorvaneLaserPoint2d>& points) {
    extract::Cal2DPoint2_1(*context_, mask, image, points);
}

void KorvaneLaserAlgo::Cal2DPoint3(bool* mask, unsigned char* image, std::vector<tagKorvaneLaserPoint2d>& points,
                                   const int& cap) {
    extract::Cal2DPoint3(*context_, mask, image, points, cap);
}

void KorvaneLaserAlgo::Cal2DPoint4(bool* mask, unsigned char* image, std::vector<tagKorvaneLaserPoint2d>& points,
                                   const int& threshold) {
    extract::Cal2DPoint4(*context_, mask, image, points, threshold);
}

// ---- calibration ----

void KorvaneLaserAlgo::undistortPoints2(std::vector<tagKorvaneLaserPoint2d>& points) {
    calib::undistortPoints2(*context_, points);
}

void KorvaneLaserAlgo::Cal3DPoint1(bool* mask, const std::vector<tagKorvaneLaserPoint2d>& points2d,
                                   std::vector<tagKorvaneLaserPoint3d>& points3d) {
    calib::Cal3DPoint1(*context_, mask, points2d, points3d);
}

void KorvaneLaserAlgo::Cal3DPoint2(bool* mask, const std::vector<tagKorvaneLaserPoint2d>& points2d,
                                   std::vector<tagKorvaneLaserPoint3d>& points3d) {
    calib::Cal3DPoint2(*context_, mask, points2d, points3d);
}

void KorvaneLaserAlgo::CalRT(double* plane, double* rt) {
    calib::CalRT(plane, rt);
}

std::vector<double> KorvaneLaserAlgo::polynomialFit(const std::vector<double>& x, const std::vector<double>& y,
                                                    const int& degree) {
    return calib::polynomialFit(x, y, degree);
}

double KorvaneLaserAlgo::evaluatePolynomial(const std::vector<double>& coefficients, const double& x) {
    return calib::evaluatePolynomial(coefficients, x);
}

// ---- profile filters ----

void KorvaneLaserAlgo::Outlierdetect1(std::vector<tagKorvaneLaserPoint3d>& profile, const int& halfWidth,
                                      const float& threshold) {
    profile::Outlierdetect1(profile, halfWidth, threshold);
}

void KorvaneLaserAlgo::Outlierdetect2(std::vector<tagKorvaneLaserPoint3d>& profile, const int& halfWidth,
                                      const float& threshold) {
    profile::Outlierdetect2(profile, halfWidth, threshold);
}

void KorvaneLaserAlgo::medianfilter1(std::vector<tagKorvaneLaserPoint3d>& points, const int& halfWindow) {
    profile::medianfilter(points, halfWindow);
}

void KorvaneLaserAlgo::medianfilter2(std::vector<tagKorvaneLaserPoint3d>& points, const int& halfWindow) {
    profile::medianfilter(points, halfWindow);
}

void KorvaneLaserAlgo::Gaussianfilter(std::vector<tagKorvaneLaserPoint3d>& points, const int& halfWindow) {
    profile::Gaussianfilter(points, halfWindow);
}

void KorvaneLaserAlgo::Downsample(const std::vector<tagKorvaneLaserPoint3d>& in, const float& step,
                                  std::vector<tagKorvaneLaserPoint3d>& out, int& count) {
    profile::Downsample(in, step, out, count);
}

// ---- image operations and exposure ----

void KorvaneLaserAlgo::GaussianBlur(unsigned char* src, unsigned char* dst, const int& ksize) {
    image::GaussianBlur(*context_, src, dst, ksize);
}

void KorvaneLaserAlgo::Otsu2(const int& threshold, unsigned char* out, unsigned char* src) {
    image::Otsu2(*context_, threshold, out, src);
}

void KorvaneLaserAlgo::Otsu3(unsigned char* out, int* labels, unsigned char* src) {
    image::Otsu3(*context_, out, labels, src);
}

void KorvaneLaserAlgo::MergeImg(unsigned char* first, unsigned char* second, unsigned char* out) {
    image::MergeImg(*context_, first, second, out);
}

void KorvaneLaserAlgo::CalcImageBuffer(unsigned char* current, unsigned char* out, const bool& enable) {
    image::CalcImageBuffer(*context_, current, out, enable);
}

bool KorvaneLaserAlgo::AutoExposure(unsigned char* image, const double& target, const double& exposure,
                                    const double& minExposure, const double& maxExposure, const double& step,
                                    const bool& enable, double& newExposure) {
    return image::AutoExposure(*context_, image, target, exposure, minExposure, maxExposure, step, enable, newExposure);
}

}  // namespace KORVANELASERALGO
