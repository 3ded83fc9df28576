/// @file StripePicture.h
/// @brief A cut-out of a frame with the found stripe on it, right and wrong points in different colours.

#ifndef KORVANE_STUDIES_STRIPEPICTURE_H
#define KORVANE_STUDIES_STRIPEPICTURE_H

#include <string>
#include <vector>

#include "KorvaneLaserAlgo.h"
#include "common/Image.h"
#include "scenes/SimulatedSensor.h"
#include "studies/Study.h"

namespace studies {

/// Rows of a frame, in pixels of the full sensor; the last one is included.
struct RowRange {
    int first;
    int last;

    int count() const { return last - first + 1; }
};

/// The rows that the stripe and what lies `below` it occupy, with a margin, within the ROI.
RowRange rowsAround(const std::vector<scenes::TruePoint>& truth, int below,
                    const KORVANELASERALGO::tagKorvaneLaserAlgoROIInfo& roi);

/// The frame at one pixel per pixel, with axes and every found point; missed columns are marked on the lower edge.
examples::ColourImage drawStripe(const std::string& title, const Pixels& frame,
                                 const KORVANELASERALGO::tagKorvaneLaserAlgoROIInfo& roi, RowRange rows,
                                 const Stripe& stripe, const std::vector<scenes::TruePoint>& truth);

}  // namespace studies

#endif  // KORVANE_STUDIES_STRIPEPICTURE_H
