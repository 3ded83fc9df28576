/// @file Overlay.h
/// @brief A frame with the found stripe drawn on it.

#ifndef KORVANE_EXAMPLES_OVERLAY_H
#define KORVANE_EXAMPLES_OVERLAY_H

#include <vector>

#include "KorvaneLaserAlgo.h"
#include "common/Image.h"

namespace examples {

/// Draws a mark at every found centre of the stripe, in its true place to a fraction of a pixel.
/// @param frame the frame as the camera delivered it
/// @param points one point per column, in pixels of the full sensor
/// @param found one entry per column: the point is drawn
/// @param offsetY row of the frame's top edge in the full sensor image
ColourImage drawOverlay(const GreyImage& frame, const std::vector<KORVANELASERALGO::tagKorvaneLaserPoint2d>& points,
                        const std::vector<bool>& found, int offsetY);

}  // namespace examples

#endif  // KORVANE_EXAMPLES_OVERLAY_H
