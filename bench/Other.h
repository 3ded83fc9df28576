/// @file Other.h
/// @brief What a practitioner would write with a general image library, where one is installed, or with the standard
/// library. Not the same results; the same job.

#ifndef KORVANE_BENCH_OTHER_H
#define KORVANE_BENCH_OTHER_H

#include <functional>
#include <memory>

#include "bench/Items.h"

namespace bench::other {

using FrameOf = std::function<unsigned char*(int copy)>;

/// One thread only, as the processor time of one thread is what is measured.
void useOneThread();

/// Each sets the item's other call, where the library for it is there.
/// Threshold, then the weighted mean row of each column; `lines` also looks for straight lines among these points.
void setExtraction(Item& item, bool lines, const FrameOf& frame, Size size, int threshold);
void setBlur(Item& item, const FrameOf& frame, unsigned char* out, Size size, int taps);
void setThreshold(Item& item, const FrameOf& frame, unsigned char* out, Size size, int threshold);
void setUndistort(Item& item, const std::shared_ptr<const Measured>& measured,
                  const KORVANELASERALGO::tagKorvaneLaserAlgoCalibrationInfo& calibration);

/// A window over the points' heights, sorted in part at every place.
void slidingMedian(const Profile& profile, int halfWindow, Profile& out);

}  // namespace bench::other

#endif  // KORVANE_BENCH_OTHER_H
