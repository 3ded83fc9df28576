#include <cmath>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "plain.h"
#include "reference.h"

namespace reference {

namespace {

/// The stripe's bright width: mean number of pixels of 206 or more over the columns that have one.
struct BrightWidth {
    double width = 0.0;
    std::int64_t columns = 0;
};

BrightWidth measure(const unsigned char* image, int width, int height) {
    BrightWidth result;
    std::int64_t sum = 0;
    for (int x = 0; x < width; ++x) {
        std::int64_t bright = 0;
        for (int y = 0; y < height; ++y) {
            if (image[placeOf(width, y, x)] >= 206) {
                bright += 1;
            }
        }
        if (bright > 0) {
            sum += bright;
            result.columns += 1;
        }
    }
    if (result.columns > 0) {
        result.width = static_cast<double>(sum) / static_cast<double>(result.columns);
    }
    return result;
}

}  // namespace

bool AutoExposure(const Settings& settings, ExposureState& state, unsigned char* image, const double& target,
                  const double& exposure, const double& minExposure, const double& maxExposure, const double& step,
                  const bool& enable, double& newExposure) {
    const int width = countOf(settings.roi.Width);
    const int height = countOf(settings.roi.Height);
    const std::size_t pixels = pixelsOf(width, height);

    const auto store = [&]() {
        std::vector<unsigned char> frame(image, image + pixels);
        state.frame.swap(frame);
        state.exposure = exposure;
    };
    const auto clamp = [&](double value) {
        if (minExposure > value) {
            return minExposure;
        }
        return value > maxExposure ? maxExposure : value;
    };

    // Switched off: the frame is forgotten, the exposure is not: meant.
    if (!enable) {
        state.frame.clear();
        return false;
    }

    // First frame. A stored frame is recognised by its number of pixels alone: meant.
    if (state.frame.size() != pixels) {
        store();
        return false;
    }

    const double change = exposure - state.exposure;
    if (!(0.01 > std::fabs(change))) {
        // The exposure changed: a line of width against exposure through both frames, solved for the target.
        if (width < 1) {
            store();
            return false;
        }
        const BrightWidth before = measure(state.frame.data(), width, height);
        const BrightWidth now = measure(image, width, height);
        if (before.columns == 0 || now.columns == 0) {
            store();
            return false;
        }
        const double slope = (now.width - before.width) / (change + 1e-10);
        const double intercept = before.width - state.exposure * slope;
        if (std::fabs(slope) < 1e-10) {
            store();
            return false;
        }
        double proposal = (target - intercept) / slope;
        if (!std::isfinite(proposal)) {
            proposal = exposure;
        }
        store();
        newExposure = clamp(proposal);
        return true;
    }

    // The exposure stayed: a fixed step up or down, or no change where the width fits in more than half the columns.
    store();
    const BrightWidth now = measure(image, width, height);
    const double difference = now.width - target;
    if (std::fabs(difference) < 0.2 && static_cast<double>(now.columns) > width * 0.5) {
        newExposure = clamp(exposure);
        return true;
    }
    const double proposal = difference >= 0.2 ? exposure - step : exposure + step;
    newExposure = clamp(proposal);
    return true;
}

}  // namespace reference
