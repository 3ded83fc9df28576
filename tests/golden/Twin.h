// The plain twin behind the public class's own signatures, so that one text drives both.

#ifndef KORVANE_TESTS_GOLDEN_TWIN_H
#define KORVANE_TESTS_GOLDEN_TWIN_H

#include <vector>

#include "KorvaneLaserAlgo.h"
#include "reference.h"

namespace golden {

class Twin {
public:
    void SetROIInfo(KORVANELASERALGO::tagKorvaneLaserAlgoROIInfo* info) { settings_.roi = *info; }
    void SetCalibrationInfo(KORVANELASERALGO::tagKorvaneLaserAlgoCalibrationInfo* info) {
        settings_.calibration = *info;
    }
    void SetLineSelectInfo(KORVANELASERALGO::tagKorvaneLaserAlgoLineSelectInfo* info) { settings_.lineSelect = *info; }
    int GetROIInfoOffsetX() { return settings_.roi.OffsetX; }
    int GetROIInfoOffsetY() { return settings_.roi.OffsetY; }
    int GetROIInfoWidth() { return settings_.roi.Width; }
    int GetROIInfoHeight() { return settings_.roi.Height; }

    void Cal2DPoint1(bool* mask, unsigned char* image, Points2d& points, const int& unused) {
        reference::Cal2DPoint1(settings_, mask, image, points, unused);
    }
    void Cal2DPoint1_1(bool* mask, unsigned char* image, Points2d& points) {
        reference::Cal2DPoint1_1(settings_, mask, image, points);
    }
    void Cal2DPoint2(bool* mask, unsigned char* image, Points2d& points) {
        reference::Cal2DPoint2(settings_, mask, image, points);
    }
    void Cal2DPoint2_1(bool* mask, unsigned char* image, Points2d& points) {
        reference::Cal2DPoint2_1(settings_, mask, image, points);
    }
    void Cal2DPoint3(bool* mask, unsigned char* image, Points2d& points, const int& cap) {
        reference::Cal2DPoint3(settings_, mask, image, points, cap);
    }
    void Cal2DPoint4(bool* mask, unsigned char* image, Points2d& points, const int& threshold) {
        reference::Cal2DPoint4(settings_, mask, image, points, threshold);
    }

    void undistortPoints2(Points2d& points) { reference::undistortPoints2(settings_, points); }
    void Cal3DPoint1(bool* mask, const Points2d& points2d, Profile& points3d) {
        reference::Cal3DPoint1(settings_, mask, points2d, points3d);
    }
    void Cal3DPoint2(bool* mask, const Points2d& points2d, Profile& points3d) {
        reference::Cal3DPoint2(settings_, mask, points2d, points3d);
    }
    void CalRT(double* plane, double* rt) { reference::CalRT(plane, rt); }
    Numbers polynomialFit(const Numbers& x, const Numbers& y, const int& degree) {
        return reference::polynomialFit(x, y, degree);
    }
    double evaluatePolynomial(const Numbers& coefficients, const double& x) {
        return reference::evaluatePolynomial(coefficients, x);
    }

    void Outlierdetect1(Profile& profile, const int& halfWidth, const float& threshold) {
        reference::Outlierdetect1(profile, halfWidth, threshold);
    }
    void Outlierdetect2(Profile& profile, const int& halfWidth, const float& threshold) {
        reference::Outlierdetect2(profile, halfWidth, threshold);
    }
    void medianfilter1(Profile& points, const int& halfWindow) { reference::medianfilter(points, halfWindow); }
    void medianfilter2(Profile& points, const int& halfWindow) { reference::medianfilter(points, halfWindow); }
    void Gaussianfilter(Profile& points, const int& halfWindow) { reference::Gaussianfilter(points, halfWindow); }
    void Downsample(const Profile& in, const float& step, Profile& out, int& count) {
        reference::Downsample(in, step, out, count);
    }

    void GaussianBlur(unsigned char* src, unsigned char* dst, const int& ksize) {
        reference::GaussianBlur(settings_, src, dst, ksize);
    }
    void Otsu2(const int& threshold, unsigned char* out, unsigned char* src) {
        reference::Otsu2(settings_, threshold, out, src);
    }
    void Otsu3(unsigned char* out, int* labels, unsigned char* src) { reference::Otsu3(settings_, out, labels, src); }
    void MergeImg(unsigned char* first, unsigned char* second, unsigned char* out) {
        reference::MergeImg(settings_, first, second, out);
    }
    void CalcImageBuffer(unsigned char* current, unsigned char* out, const bool& enable) {
        reference::CalcImageBuffer(settings_, stabilisation_, current, out, enable);
    }
    bool AutoExposure(unsigned char* image, const double& target, const double& exposure, const double& minExposure,
                      const double& maxExposure, const double& step, const bool& enable, double& newExposure) {
        return reference::AutoExposure(settings_, exposure_, image, target, exposure, minExposure, maxExposure, step,
                                       enable, newExposure);
    }

private:
    reference::Settings settings_;
    reference::StabilisationState stabilisation_;
    reference::ExposureState exposure_;
};

}  // namespace golden

#endif  // KORVANE_TESTS_GOLDEN_TWIN_H
