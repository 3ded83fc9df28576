// The roof of the library: settings in, and one forwarding line per method.

#include "KorvaneLaserAlgo.h"

#include "algo/AlgoContext.h"

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

}  // namespace KORVANELASERALGO
