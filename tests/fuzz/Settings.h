// Settings and numbers out of bytes.

#ifndef KORVANE_TESTS_FUZZ_SETTINGS_H
#define KORVANE_TESTS_FUZZ_SETTINGS_H

#include "KorvaneLaserAlgo.h"
#include "fuzz/Frames.h"
#include "fuzz/FuzzInput.h"

namespace fuzz {

/// A region of interest of a given size; its offsets are often 0, now and then close to the limits of an int.
KORVANELASERALGO::tagKorvaneLaserAlgoROIInfo drawRoi(FuzzInput& input, Size size);

/// Bounds that let most candidates pass, or stand at a limit, or are negative, or reversed; any `SelectMode`.
KORVANELASERALGO::tagKorvaneLaserAlgoLineSelectInfo drawLineSelect(FuzzInput& input);

/// A camera that could be built, looking at `size` pixels.
KORVANELASERALGO::tagKorvaneLaserAlgoCalibrationInfo drawPlausibleCalibration(FuzzInput& input, Size size);

/// Plausible, zero, of small whole numbers that meet limits exactly, or with entries that are no numbers.
KORVANELASERALGO::tagKorvaneLaserAlgoCalibrationInfo drawCalibration(FuzzInput& input, Size size);

/// A threshold of grey levels: at those of the methods, or at the limits, or far outside.
int drawGreyThreshold(FuzzInput& input);

/// Zeros, infinities, not-a-number, the smallest and large numbers, and some plain ones.
double drawSpecialNumber(FuzzInput& input);
double drawSpecialNumber(Noise& noise);

}  // namespace fuzz

#endif  // KORVANE_TESTS_FUZZ_SETTINGS_H
