// Frames out of bytes: what cameras see and what thresholds are about.

#ifndef KORVANE_TESTS_FUZZ_FRAMES_H
#define KORVANE_TESTS_FUZZ_FRAMES_H

#include "fuzz/FuzzInput.h"

namespace fuzz {

struct Size {
    int width;   ///< columns
    int height;  ///< rows
};

/// Mostly small; now and then wide enough for long lines, hundreds of columns or rows, zero or negative.
Size drawSize(FuzzInput& input);

/// A grey level, often one at a threshold of a method.
int drawGrey(FuzzInput& input);

/// Pixels of a frame: stripes, saturated boxes, plateaus, humps, blobs, runs, pixels at thresholds, noise, on top of
/// one another.
Bytes drawFrame(FuzzInput& input, Size size);

/// Thin stripes, most of them as long as the frame is wide, with gaps.
Bytes drawLines(FuzzInput& input, Size size);

/// A bright area that hangs from the top edge, with speckles around it.
Bytes drawBlob(FuzzInput& input, Size size);

/// The frame with small changes: other brightness, some pixels replaced.
Bytes drawVariation(FuzzInput& input, const Bytes& frame);

/// Flags, most of them equal.
Bytes drawMask(FuzzInput& input, std::size_t columns);

}  // namespace fuzz

#endif  // KORVANE_TESTS_FUZZ_FRAMES_H
