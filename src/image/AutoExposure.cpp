// AutoExposure: proposes the exposure at which the stripe's bright width meets a target, by the straight line through
// the last two frames' widths (a secant step) or, at an unchanged exposure, by a fixed step.

#include <bit>
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

// The previous frame and its exposure, one for the process. Of the frame, only which pixels were bright is ever asked.
// It has no pixels, or as many as it had; its shape is not kept, so a frame of another shape but equal size is counted
// in the new columns. This is meant.
struct PreviousFrame {
    std::vector<std::uint64_t> brightPixels;  // marks
    std::size_t pixels = 0;
    double exposure = 1.0;
};

PreviousFrame& previousFrame() {
    static PreviousFrame previous;
    return previous;
}

// May fail to allocate, and leaves everything as it was then.
void store(PreviousFrame& previous, const ImageView& image, std::size_t pixels, double exposure) {
    if (previous.pixels != pixels) {
        previous.brightPixels = std::vector<std::uint64_t>(kernels::wordsOf(pixels));
        previous.pixels = pixels;
    }
    kernels::active().markAbove(image.bytes, pixels, kBright, previous.brightPixels.data());
    previous.exposure = exposure;
}

// How wide the stripe's bright part is.
struct BrightWidth {
    std::int64_t columns;  // in which the stripe shows
    double mean;           // bright rows of those columns; 0 without any
};

// `stripe` is a working buffer: the columns in which the stripe shows.
BrightWidth measureBrightWidth(const PreviousFrame& frame, int width, int height, std::vector<std::uint64_t>& stripe) {
    const std::uint64_t pixels = kernels::active().countMarks(frame.brightPixels.data(), width, height, stripe.data());

    std::int64_t columns = 0;
    for (const std::uint64_t marks : stripe) columns += std::popcount(marks);
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
        previous.pixels = 0;
        return false;
    }

    const ImageView view(context.roi, image);
    const std::size_t pixels = pixelsOf(context.roi);
    if (previous.pixels != pixels) {
        store(previous, view, pixels, exposure);
        return false;
    }

    // Whatever may fail to allocate does so before anything has changed.
    std::vector<std::uint64_t> stripe(static_cast<std::size_t>(kernels::blocksOf(view.width)) + 1);
    const double exposureBefore = previous.exposure;
    const double change = exposure - exposureBefore;
    if (!(kExposureChange > std::fabs(change))) {
        // The line of width against exposure through both frames, solved for the target.
        const BrightWidth before = measureBrightWidth(previous, view.width, view.height, stripe);
        store(previous, view, pixels, exposure);
        const BrightWidth now = measureBrightWidth(previous, view.width, view.height, stripe);
        if (before.columns == 0 || now.columns == 0) return false;

        const double slope = (now.mean - before.mean) / (change + kGuard);
        const double intercept = before.mean - exposureBefore * slope;
        if (std::fabs(slope) < kGuard) return false;
        const double solved = (target - intercept) / slope;
        newExposure = clampExposure(std::isfinite(solved) ? solved : exposure, minExposure, maxExposure);
        return true;
    }

    // A fixed step up or down. A stripe that shows in too few columns raises the exposure, unless it is too wide.
    store(previous, view, pixels, exposure);
    const BrightWidth now = measureBrightWidth(previous, view.width, view.height, stripe);
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
