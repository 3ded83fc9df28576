// Two exposures of one scene, merged: a part that is dark on its left and shiny on its right. The short exposure loses
// the dark half, the long one shows a reflection of the shiny half; merged, every column has its stripe.

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <vector>

#include "KorvaneLaserAlgo.h"

using namespace KORVANELASERALGO;

namespace {

constexpr int kWidth = 64;  // columns; the right half is shiny
constexpr int kHeight = 200;
constexpr int kStripeRow = 100;
constexpr int kReflectionRow = 160;
constexpr int kThreshold = 60;  // grey levels

using Image = std::vector<unsigned char>;

/// A stripe of five rows on both materials, and a tenth of its light once more where the part is shiny.
Image frameAt(double exposure) {
    const auto light = [](int rowsAway) { return rowsAway > 2 ? 0.0 : 200.0 - 50.0 * rowsAway; };
    Image image(static_cast<std::size_t>(kWidth) * kHeight);
    for (int r = 0; r < kHeight; ++r) {
        for (int c = 0; c < kWidth; ++c) {
            const bool shiny = c >= kWidth / 2;
            double grey = (shiny ? 1.5 : 0.2) * light(std::abs(r - kStripeRow));
            if (shiny) grey += 0.15 * light(std::abs(r - kReflectionRow));
            image[static_cast<std::size_t>(r) * kWidth + static_cast<std::size_t>(c)] =
                static_cast<unsigned char>(std::fmin(255.0, exposure * grey));
        }
    }
    return image;
}

/// How many columns have a point, and how many of these lie on the stripe.
void report(const char* name, KorvaneLaserAlgo& algo, Image image) {  // a copy: Cal2DPoint4 changes what it is given
    // [extract]
    const std::unique_ptr<bool[]> mask(new bool[kWidth]());  // (): all false
    std::vector<tagKorvaneLaserPoint2d> points;
    algo.Cal2DPoint4(mask.get(), image.data(), points, kThreshold);
    for (tagKorvaneLaserPoint2d& point : points) {  // the one method that answers in pixels of the ROI
        point.x += algo.GetROIInfoOffsetX();
        point.y += algo.GetROIInfoOffsetY();
    }
    // [/extract]

    int onStripe = 0;
    for (std::size_t i = 0; i < kWidth; ++i) {
        if (mask[i] && std::fabs(points[i].y - algo.GetROIInfoOffsetY() - kStripeRow) < 0.01) ++onStripe;
    }
    std::printf("%s: %d found, %d on the stripe\n", name,
                static_cast<int>(std::count(mask.get(), mask.get() + kWidth, true)), onStripe);
}

}  // namespace

int main() {
    tagKorvaneLaserAlgoROIInfo roi{.OffsetX = 80, .OffsetY = 28, .Width = kWidth, .Height = kHeight};
    KorvaneLaserAlgo algo;
    algo.SetROIInfo(&roi);

    // [merge]
    Image first = frameAt(1.0);   // short: shiny places just saturate
    Image second = frameAt(6.0);  // long: dark places show
    Image merged(first.size());   // a buffer of its own: it must not overlap the others
    algo.MergeImg(first.data(), second.data(), merged.data());
    // [/merge]

    report("short", algo, first);
    report("long", algo, second);
    report("merged", algo, merged);
}
