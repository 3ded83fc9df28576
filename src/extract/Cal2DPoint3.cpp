// Cal2DPoint3: follows one stripe at a threshold that adapts to each column, and to the local peak while following.

#include <algorithm>

#include "algo/ImageView.h"
#include "extract/StripeTracker.h"
#include "extract/extract.h"
#include "kernels/kernels.h"

namespace KORVANELASERALGO::extract {
namespace {

constexpr int kBright = 60;  // grey levels; pixels above it count for a column's mean, which is at least this

// The mean of each column's bright pixels, at least kBright and at most the cap.
std::vector<int> columnThresholds(const ImageView& image, int cap) {
    std::vector<int> thresholds(static_cast<std::size_t>(image.width), kBright);
    // The first and last row count no more than they are searched.
    if (image.height < 3) return thresholds;
    std::vector<kernels::ColumnSum> bright(thresholds.size(), {0, 0});
    kernels::active().sumAbove(image.row(1), image.width, image.height - 2, kBright, bright.data());

    for (std::size_t c = 0; c < thresholds.size(); ++c) {
        // The cap does not reach a column without a bright pixel. This is meant.
        if (bright[c].count == 0) continue;
        const int mean = static_cast<int>(bright[c].sum / bright[c].count);
        thresholds[c] = std::min(cap, std::max(mean, kBright));
    }
    return thresholds;
}

class AdaptiveThreshold {
public:
    AdaptiveThreshold(const ImageView& image, int cap) : perColumn_(columnThresholds(image, cap)) {}

    const int* searchThresholds() const { return perColumn_.data(); }

    // Half of the local peak where that is higher, truncated, so that only the stripe's core is filled.
    int fillThreshold(int column, int peak) const {
        return std::max(perColumn_[static_cast<std::size_t>(column)], peak / 2);
    }

private:
    std::vector<int> perColumn_;
};

}  // namespace

void Cal2DPoint3(const AlgoContext& context, bool* mask, const unsigned char* image, Points2d& points, int cap) {
    const ImageView view(context.roi, image);
    points.assign(static_cast<std::size_t>(view.width), {0.0, 0.0});

    const AdaptiveThreshold thresholds(view, cap);
    trackStripe(context, view, thresholds, mask, points);
}

}  // namespace KORVANELASERALGO::extract
