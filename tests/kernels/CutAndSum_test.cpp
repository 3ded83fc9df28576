// cutAndSum so far down an image that a moment is not exact in single precision.

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <vector>

#include "kernels/kernels.h"

namespace {

using namespace KORVANELASERALGO::kernels;

TEST(CutAndSum, RoundsEveryMomentBeforeItIsAdded) {
    constexpr int kWidth = kBlockColumns;
    constexpr int kRow = 69999;
    std::vector<unsigned char> image(static_cast<std::size_t>(kRow + 1) * kWidth, 0);
    for (int c = 0; c < kWidth; ++c) image[static_cast<std::size_t>(kRow) * kWidth + static_cast<std::size_t>(c)] = 255;
    std::vector<std::uint32_t> sums(kWidth, 0);
    std::vector<float> moments(kWidth, 1.0f);
    active().cutAndSum(image.data(), kWidth, kRow + 1, 10, sums.data(), moments.data());
    // 69999 * 255 = 17849745 lies between two floats and becomes the even one, 17849744; so does that plus 1.
    EXPECT_EQ(sums, std::vector<std::uint32_t>(kWidth, 255));
    EXPECT_EQ(moments, std::vector<float>(kWidth, 17849744.0f));
}

}  // namespace
