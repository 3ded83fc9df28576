// AutoExposure: proposes the exposure at which the stripe's bright width meets a target, by the straight line through
// the last two frames' widths (a secant step) or, at an unchanged exposure, by a fixed step.

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "algo/ImageView.h"
#include "image/image.h"
#include "kernels/kernels.h"

namespace KORVANELASERALGO::image {
namespace {

constexpr unsigned char kBright = 205;        // grey levels; a bright pixel is brighter
constexpr double kExposureChange = 0.01;      // caller's exposure unit; from here on a line is fitted
constexpr double kWidthTolerance = 0.2;       // pixels
constexpr double kLeastShareOfColumns = 0.5;  // of the width, exclusive
constexpr double kGuard = 1e-10;

// The previous frame and its exposure, one for the process. The frame is empty, or as many pixels as it had; its shape
// is not kept, so a frame of another shape but equal size is counted in the new columns. This is meant.
struct PreviousFrame {
    std::vector<unsigned char> pixels;
    double exposure = 1.0;
};

PreviousFrame& previousFrame() {
    static PreviousFrame previous;
    return previous;
}

// May fail to allocate, and leaves everything as it was then.
void store(PreviousFrame& previous, const ImageView& image, std::size_t pixels, double exposure) {
    if (previous.pixels.size() == pixels) {
        std::copy_n(image.bytes, pixels, previous.pixels.begin());
    } else {
        previous.pixels = std::vector<unsigned char>(image.bytes, image.bytes + pixels);
    }
    previous.exposure = exposure;
}

// How wide the stripe's bright part is.
struct BrightWidth {
    std::int64_t columns;  // in which the stripe shows
    double mean;           // bright rows of those columns; 0 without any
};

BrightWidth measureBrightWidth(const ImageView& image) {
    std::vector<kernels::ColumnSum> bright(static_cast<std::size_t>(image.width), {0, 0});
    kernels::active().sumAbove(image.bytes, image.width, image.height, kBright, bright.data());

    std::int64_t pixels = 0;
    std::int64_t columns = 0;
    for (const kernels::ColumnSum& column : bright) {
        pixels += column.count;
        columns += column.count > 0 ? 1 : 0;
    }
    return {columns, columns == 0 ? 0.0 : static_cast<double>(pixels) / static_cast<double>(columns)};
}

double clampExposure(double exposure, double minExposure, double maxExposure) {
    if (minExposure > exposure) return minExposure;
    if (exposure > maxExposure) return maxExposure;
    return exposure;
}

}  // namespace

bool AutoExposure(const AlgoContext& context, const unsigned char* image, double target, double exposure,
                  double minExposure, double maxExposure, double step, bool enable, double& newExposure) {
    PreviousFrame& previous = previousFrame();
    if (!enable) {
        previous.pixels.clear();
        return false;
    }

    const ImageView view(context.roi, image);
    const std::size_t pixels = pixelsOf(context.roi);
    if (previous.pixels.size() != pixels) {
        store(previous, view, pixels, exposure);
        return false;
    }

    const double exposureBefore = previous.exposure;
    const double change = exposure - exposureBefore;
    if (!(kExposureChange > std::fabs(change))) {
        // The line of width against exposure through both frames, solved for the target.
        const BrightWidth before = measureBrightWidth(ImageView(context.roi, previous.pixels.data()));
        const BrightWidth now = measureBrightWidth(view);
        store(previous, view, pixels, exposure);
        if (before.columns == 0 || now.columns == 0) return false;

        const double slope = (now.mean - before.mean) / (change + kGuard);
        const double intercept = before.mean - exposureBefore * slope;
        if (std::fabs(slope) < kGuard) return false;
        const double solved = (target - intercept) / slope;
        newExposure = clampExposure(std::isfinite(solved) ? solved : exposure, minExposure, maxExposure);
        return true;
    }

    // A fixed step up or down. A stripe that shows in too few columns raises the exposure, unless it is too wide.
    const BrightWidth now = measureBrightWidth(view);
    store(previous, view, pixels, exposure);
    const double difference = now.mean - target;
    const bool wideEnough = static_cast<double>(now.columns) > view.width * kLeastShareOfColumns;
    double proposal = exposure;
    if (!(std::fabs(difference) < kWidthTolerance && wideEnough)) {
        proposal = difference >= kWidthTolerance ? exposure - step : exposure + step;
    }
    newExposure = clampExposure(proposal, minExposure, maxExposure);
    return true;
}

}  // namespace KORVANELASERALGO::image
