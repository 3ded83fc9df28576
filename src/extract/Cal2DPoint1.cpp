// Cal2DPoint1: follows one stripe at a fixed threshold.

#include "algo/ImageView.h"
#include "extract/StripeTracker.h"
#include "extract/extract.h"

namespace KORVANELASERALGO::extract {
namespace {

constexpr int kBright = 60;  // grey levels; a start is brighter, a row of the stripe is at least as bright

class FixedThreshold {
public:
    explicit FixedThreshold(int width) : perColumn_(static_cast<std::size_t>(width), kBright) {}

    const int* searchThresholds() const { return perColumn_.data(); }
    int fillThreshold(int, int) const { return kBright; }

private:
    std::vector<int> perColumn_;
};

}  // namespace

void Cal2DPoint1(const AlgoContext& context, bool* mask, const unsigned char* image, Points2d& points) {
    const ImageView view(context.roi, image);
    points.assign(static_cast<std::size_t>(view.width), {0.0, 0.0});

    const FixedThreshold thresholds(view.width);
    trackStripe(context, view, thresholds, mask, points);
}

}  // namespace KORVANELASERALGO::extract
