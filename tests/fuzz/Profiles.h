// Profiles out of bytes: steps and slopes at the filters' limits, gaps, and points that are no numbers.

#ifndef KORVANE_TESTS_FUZZ_PROFILES_H
#define KORVANE_TESTS_FUZZ_PROFILES_H

#include "fuzz/Comparison.h"
#include "fuzz/FuzzInput.h"

namespace fuzz {

/// Up to 300 points.
Profile drawProfile(FuzzInput& input);

/// Half of a window for a profile of `points` points: small, just fitting, negative, or at the limits of an int.
int drawHalfWidth(FuzzInput& input, std::size_t points);

/// A limit of depth or x differences: those that occur in the profiles, zero, negative, infinite, not a number.
float drawThreshold(FuzzInput& input);

/// A bucket width: around the profile's mean spacing, plain, tiny, negative, not a number.
float drawStep(FuzzInput& input, const Profile& profile);

}  // namespace fuzz

#endif  // KORVANE_TESTS_FUZZ_PROFILES_H
