// Cal2DPoint3: follows one stripe at a threshold that adapts to each column, and to the local peak while following.

#include <algorithm>

#include "algo/ImageView.h"
#include "extract/StripeTracker.h"
#include "extract/extract.h"
#include "kernels/kernels.h"

namespace KORVANELASERALGO::extract {
namespace {

constexpr int kBright = 60;  // grey levels; pixels above it count for a column's mean, which is at least this

// The bright pixels of each column. The first and last row count no more than they are searched.
std::vector<kernels::ColumnSum> sumBrightPixels(const ImageView& image) {
    std::vector<kernels::ColumnSum> bright(static_cast<std::size_t>(image.width), {0, 0});
    if (image.height > 2)
        kernels::active().sumAbove(image.row(1), image.width, image.height - 2, kBright, bright.data());
    return bright;
}

class AdaptiveThreshold {
public:
    // The mean of each column's bright pixels, at least kBright and at most the cap, which does not reach a column
    // without a bright pixel. This is meant.
    AdaptiveThreshold(const ImageView& image, int cap) : perColumn_(static_cast<std::size_t>(image.width), kBright) {
        const auto bright = sumBrightPixels(image);
        for (std::size_t c = 0; c < perColumn_.size(); ++c) {
            if (bright[c].count == 0) continue;
            const int mean = static_cast<int>(bright[c].sum / bright[c].count);
            perColumn_[c] = std::min(cap, std::max(mean, kBright));
            anyBright_ = true;
        }
    }

    // Without a bright pixel no stripe starts anywhere.
    bool anyBright() const { return anyBright_; }

    const int* searchThresholds() const { return perColumn_.data(); }

    // Half of the local peak where that is higher, truncated, so that only the stripe's core is filled.
    int fillThreshold(int column, int peak) const {
        return std::max(perColumn_[static_cast<std::size_t>(column)], peak / 2);
    }

private:
    std::vector<int> perColumn_;
    bool anyBright_ = false;
};

}  // namespace

void Cal2DPoint3(const AlgoContext& context, bool* mask, const unsigned char* image, Points2d& points, int cap) {
    const ImageView view(context.roi, image);
    points.assign(static_cast<std::size_t>(view.width), {0.0, 0.0});

    const AdaptiveThreshold thresholds(view, cap);
    if (!thresholds.anyBright()) return moveToSensor(context.roi, points);
    trackStripe(context, view, thresholds, mask, points);
}

}  // namespace KORVANELASERALGO::extract
