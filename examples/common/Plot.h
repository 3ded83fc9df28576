/// @file Plot.h
/// @brief Plots with axes, by PLplot, drawn into a picture in memory.

#ifndef KORVANE_EXAMPLES_PLOT_H
#define KORVANE_EXAMPLES_PLOT_H

#include <optional>
#include <string>
#include <vector>

#include "common/Image.h"

namespace examples {

/// Colours that keep apart, also for readers who do not see all of them.
namespace colours {
inline constexpr Colour kWhite{255, 255, 255};
inline constexpr Colour kGrey{175, 175, 175};
inline constexpr Colour kBlack{50, 50, 50};
inline constexpr Colour kBlue{0, 95, 175};
inline constexpr Colour kOrange{225, 115, 0};
inline constexpr Colour kGreen{0, 140, 100};
inline constexpr Colour kRed{200, 40, 50};
}  // namespace colours

/// Points of one colour. Where x or y is not a number the line is interrupted.
struct Curve {
    enum class Style { line, dots };

    std::vector<double> x;
    std::vector<double> y;
    std::string label;  ///< named above the panel in the curve's colour; empty for none
    Colour colour = colours::kBlue;
    Style style = Style::line;
    double width = 1.5;  ///< of the line or the dots, in pixels
};

/// What lies at an axis' two ends. `first` may be the larger one: the axis then runs the other way. Equal ends are
/// drawn one unit apart.
struct Axis {
    std::string label;  ///< quantity and unit: "height (mm)"
    double first = 0.0;
    double last = 1.0;
};

/// One pair of axes with what is drawn in it.
struct Panel {
    /// Where the inside of the axes lies, in pixels of the picture; labels go around it.
    int left = 0;
    int top = 0;
    int right = 0;
    int bottom = 0;
    std::string title;  ///< above the top left corner
    Axis x;             ///< no label and no numbers where its label is empty
    Axis y;
    bool yOnTheRight = false;  ///< numbers and label of y stand on the right, as on a scale bar
    bool grid = true;
    std::vector<Curve> curves;
    std::optional<ColourImage> raster;  ///< fills the inside of the axes, pixel by pixel, under everything else
};

/// The ends of an axis that shows every finite value and a margin of a twentieth around them. A range below `least` is
/// widened to it about its middle.
Axis axisAround(std::string label, const std::vector<double>& values, double least);

/// Draws the panels on white. Throws `Failure` where PLplot has no driver that can.
ColourImage drawPlot(int width, int height, const std::vector<Panel>& panels);

}  // namespace examples

#endif  // KORVANE_EXAMPLES_PLOT_H
