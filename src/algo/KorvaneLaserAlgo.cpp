// The roof of the library: settings in, and one forwarding line per method.

#include "KorvaneLaserAlgo.h"

#include "algo/AlgoContext.h"
#include "extract/extract.h"

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

}  // namespace KORVANELASERALGO
