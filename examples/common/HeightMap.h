/// @file HeightMap.h
/// @brief A whole scan seen from above: colour for height, x to the right, travel upwards.

#ifndef KORVANE_EXAMPLES_HEIGHTMAP_H
#define KORVANE_EXAMPLES_HEIGHTMAP_H

#include <string>
#include <vector>

#include "common/Image.h"

namespace examples {

/// One profile of a scan. Where a column has no measurement, x or height is not a number.
struct ScanLine {
    std::vector<float> x;
    std::vector<float> height;
};

/// A scan and the names of its axes.
struct Scan {
    std::vector<ScanLine> lines;  ///< in the order in which they were taken
    double travelPerLine = 1.0;
    std::string title;
    std::string xLabel;
    std::string travelLabel;
    std::string heightLabel;
    bool heightsGrowDownwards = false;  ///< the values are distances, so the scale bar is turned round
};

/// Draws the scan with axes and a scale bar. Between neighbouring measured columns the height is interpolated; places
/// without a measurement stay grey.
ColourImage drawHeightMap(const Scan& scan);

}  // namespace examples

#endif  // KORVANE_EXAMPLES_HEIGHTMAP_H
