// findStripeStarts with thresholds and column ranges that no method asks for.

#include <gtest/gtest.h>

#include <cstddef>
#include <random>
#include <vector>

#include "kernels/kernels.h"

namespace {

using KORVANELASERALGO::kernels::active;
using KORVANELASERALGO::kernels::kNoStripe;

constexpr int kUntouched = -7;

struct Search {
    std::vector<unsigned char> image;
    int width;
    int height;
    std::vector<int> thresholds;

    int pixel(int row, int column) const { return image[static_cast<std::size_t>(row * width + column)]; }

    /// The rule of one column, as it is documented.
    int startOf(int column, int firstRow, int endRow) const {
        const int threshold = thresholds[static_cast<std::size_t>(column)];
        for (int r = firstRow; r < endRow; ++r) {
            const bool darker = pixel(r, column) < pixel(r - 1, column) && pixel(r, column) < pixel(r + 1, column);
            bool supported = pixel(r - 1, column) > threshold || pixel(r + 1, column) > threshold;
            for (int d = -1; d <= 1; ++d) supported = supported || pixel(r + d, column + 1) > threshold;
            if (pixel(r, column) > threshold && supported && !darker) return r;
        }
        return kNoStripe;
    }

    /// Columns that are not searched stay as they were, be it without a start.
    void expectStarts(int firstColumn, int endColumn, int firstRow, int endRow) const {
        for (const int before : {kUntouched, kNoStripe}) {
            std::vector<int> starts(static_cast<std::size_t>(width), before);
            active().findStripeStarts(image.data(), width, firstColumn, endColumn, firstRow, endRow, thresholds.data(),
                                      starts.data());
            for (int c = 0; c < width; ++c) {
                const bool searched = c >= firstColumn && c < endColumn;
                EXPECT_EQ(starts[static_cast<std::size_t>(c)], searched ? startOf(c, firstRow, endRow) : before)
                    << "column " << c << " of " << width << ", searched from " << firstColumn << " to " << endColumn;
            }
        }
    }
};

TEST(FindStripeStarts, FindsAPixelThatIsBrighterThanTheThresholdByOneAndNoneThatIsAsBright) {
    for (const int grey : {0, 1, 100, 254, 255}) {
        Search search;
        search.width = 200;
        search.height = 12;
        search.image.assign(static_cast<std::size_t>(search.width * search.height), static_cast<unsigned char>(grey));
        for (const int below : {0, 1}) {
            search.thresholds.assign(static_cast<std::size_t>(search.width), grey - below);
            std::vector<int> starts(static_cast<std::size_t>(search.width - 1), kUntouched);
            active().findStripeStarts(search.image.data(), search.width, 0, search.width - 1, 1, search.height - 1,
                                      search.thresholds.data(), starts.data());
            EXPECT_EQ(starts, std::vector<int>(starts.size(), below == 1 ? 1 : kNoStripe)) << "grey level " << grey;
        }
    }
}

TEST(FindStripeStarts, ObeysTheRuleForEveryRangeOfColumnsAndThresholdsBeyondABytes) {
    std::mt19937 random(5);
    const auto below = [&](int count) { return static_cast<int>(random() % static_cast<unsigned>(count)); };
    for (int i = 0; i < 400; ++i) {
        Search search;
        search.width = 2 + below(300);
        search.height = 3 + below(30);
        for (int p = 0; p < search.width * search.height; ++p)
            search.image.push_back(static_cast<unsigned char>(below(12) < 9 ? below(60) : 250 + below(6)));
        const std::vector<int> candidates = {-300, -1, 0, 59, 60, 252, 254, 255, 256, 70000};
        for (int c = 0; c < search.width; ++c)
            search.thresholds.push_back(candidates[static_cast<std::size_t>(below(10))]);
        const int first = below(search.width - 1);
        const int end = first + below(search.width - first);
        search.expectStarts(first, end, 1, search.height - 1);
        search.expectStarts(0, search.width - 1, 1, 1 + below(search.height - 1));
        if (HasFailure()) return;
    }
}

}  // namespace
