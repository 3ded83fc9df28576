/// @file Report.h
/// @brief What a run says about itself: a table on the terminal and `summary.json`.

#ifndef KORVANE_HOST_REPORT_H
#define KORVANE_HOST_REPORT_H

#include <string>
#include <vector>

#include "KorvaneLaserAlgo.h"
#include "host/Accuracy.h"
#include "host/Chain.h"

namespace host {

/// Collected frame by frame.
struct Report {
    std::string source;
    std::string method;
    KORVANELASERALGO::tagKorvaneLaserAlgoROIInfo roi{};
    bool hasCalibration = false;
    bool hasTruth = false;

    int frames = 0;
    long long columns = 0;          ///< over all frames
    long long withStripe = 0;       ///< columns in which the method found the stripe
    long long measured = 0;         ///< columns with a 3D point at the end of the chain
    std::vector<double> exposures;  ///< of the frames and the one after the last; empty without AutoExposure
    std::vector<StageTime> stages;
    Accuracy unfiltered;
    Accuracy filtered;

    /// Frames per second of the library alone: no rendering, no reading or writing of files.
    double framesPerSecond() const;
};

/// The table for the terminal.
std::string reportText(const Report& report);

/// The same figures for programs. Lengths are in the calibration's unit, times in seconds.
std::string reportJson(const Report& report);

}  // namespace host

#endif  // KORVANE_HOST_REPORT_H
