#include "studies/StripePicture.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <utility>

#include "common/Plot.h"

namespace studies {

using examples::Colour;
using examples::ColourImage;
using examples::Curve;
using examples::Panel;
using KORVANELASERALGO::tagKorvaneLaserAlgoROIInfo;

namespace {

// Legible on the dark frame and, as the legend, on white.
constexpr Colour kRight{40, 150, 255};
constexpr Colour kWrong{255, 80, 20};
constexpr Colour kMissed{205, 70, 215};

// Around the inside of the axes, in pixels.
constexpr int kLeftMargin = 80;
constexpr int kRightMargin = 20;
constexpr int kTopMargin = 36;
constexpr int kBottomMargin = 58;

constexpr int kMargin = 25;    // rows above and below
constexpr int kGreyStep = 16;  // coarse grey levels keep a noisy picture small
constexpr double kDot = 2.0;   // pixels

Curve dots(std::string label, Colour colour) {
    Curve curve;
    curve.label = std::move(label);
    curve.colour = colour;
    curve.style = Curve::Style::dots;
    curve.width = kDot;
    return curve;
}

void addPoint(Curve& curve, double x, double y) {
    curve.x.push_back(x);
    curve.y.push_back(y);
}

ColourImage cutOut(const Pixels& frame, const tagKorvaneLaserAlgoROIInfo& roi, RowRange rows) {
    ColourImage picture(roi.Width, rows.count(), Colour{});
    const auto begin = frame.begin() + static_cast<std::ptrdiff_t>(rows.first - roi.OffsetY) * roi.Width;
    std::transform(begin, begin + static_cast<std::ptrdiff_t>(picture.pixels.size()), picture.pixels.begin(),
                   [](unsigned char grey) {
                       const int coarse = std::min((grey + kGreyStep / 2) / kGreyStep * kGreyStep, 255);
                       const auto level = static_cast<unsigned char>(coarse);
                       return Colour{level, level, level};
                   });
    return picture;
}

}  // namespace

RowRange rowsAround(const std::vector<scenes::TruePoint>& truth, int below, const tagKorvaneLaserAlgoROIInfo& roi) {
    RowRange rows{roi.OffsetY + roi.Height, roi.OffsetY};
    for (const scenes::TruePoint& column : truth) {
        if (!column.visible) continue;
        rows.first = std::min(rows.first, static_cast<int>(column.row));
        rows.last = std::max(rows.last, static_cast<int>(column.row));
    }
    const int lowest = roi.OffsetY + roi.Height - 1;
    if (rows.first > rows.last) return {roi.OffsetY, lowest};
    return {std::max(rows.first - kMargin, roi.OffsetY), std::min(rows.last + below + kMargin, lowest)};
}

ColourImage drawStripe(const std::string& title, const Pixels& frame, const tagKorvaneLaserAlgoROIInfo& roi,
                       RowRange rows, const Stripe& stripe, const std::vector<scenes::TruePoint>& truth) {
    Curve right = dots("on the stripe", kRight);
    Curve wrong = dots("elsewhere", kWrong);
    Curve missed = dots("missed column", kMissed);
    for (std::size_t i = 0; i < truth.size(); ++i) {
        const double column = roi.OffsetX + static_cast<double>(i);
        const double row = stripe.points[i].y;
        if (!stripe.found[i]) {
            if (truth[i].visible) addPoint(missed, column, rows.last - 3.0);
        } else if (row >= rows.first && row <= rows.last) {
            const bool isRight = truth[i].visible && std::abs(row - truth[i].row) <= kOnStripe;
            addPoint(isRight ? right : wrong, column, row);
        }
    }

    Panel panel;
    panel.left = kLeftMargin;
    panel.top = kTopMargin;
    panel.right = kLeftMargin + roi.Width;
    panel.bottom = kTopMargin + rows.count();
    panel.title = title;
    // Pixel centres lie on whole numbers; rows count downwards, as in the frame.
    panel.x = {"column (pixels)", roi.OffsetX - 0.5, roi.OffsetX + roi.Width - 0.5};
    panel.y = {"row (pixels)", rows.last + 0.5, rows.first - 0.5};
    panel.grid = false;
    panel.raster = cutOut(frame, roi, rows);
    panel.curves = {std::move(right), std::move(wrong), std::move(missed)};
    return examples::drawPlot(panel.right + kRightMargin, panel.bottom + kBottomMargin, {panel});
}

}  // namespace studies
