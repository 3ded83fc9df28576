// GaussianBlur: a separable Gaussian of sigma 1 pixel with replicated borders.
//
// Two things are meant: sums are truncated, never rounded, and the horizontal pass works in place, so the taps to the
// left of a pixel read values that this pass has filtered already. The rows beyond the top and bottom replicate the
// first and last row as they were before it.

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "algo/ImageView.h"
#include "image/image.h"

namespace KORVANELASERALGO::image {
namespace {

// `taps` weights whose sum is 1.
std::vector<double> gaussianWeights(int taps) {
    const std::int64_t r = taps / 2;
    std::vector<double> weights(static_cast<std::size_t>(taps));
    double sum = 0.0;
    for (std::int64_t i = -r; i <= r; ++i) {
        double& weight = weights[static_cast<std::size_t>(i + r)];
        weight = std::exp(static_cast<double>(-(i * i)) * 0.5);
        sum += weight;
    }
    for (double& weight : weights) weight /= sum;
    return weights;
}

unsigned char truncateToGrey(double value) {
    return static_cast<unsigned char>(std::clamp(value, 0.0, 255.0));
}

// Filters a row in place; `padded` has room for the row and its replicated ends.
void filterRow(unsigned char* row, std::size_t width, const std::vector<double>& weights,
               std::vector<unsigned char>& padded) {
    const std::size_t r = weights.size() / 2;
    std::fill_n(padded.begin(), r, row[0]);
    std::copy_n(row, width, padded.data() + r);
    std::fill_n(padded.data() + r + width, r, row[width - 1]);

    for (std::size_t x = 0; x < width; ++x) {
        double sum = 0.0;
        for (std::size_t k = 0; k < weights.size(); ++k) sum += padded[x + k] * weights[k];
        padded[x + r] = truncateToGrey(sum);
    }
    std::copy_n(padded.data() + r, width, row);
}

}  // namespace

void GaussianBlur(const AlgoContext& context, const unsigned char* src, unsigned char* dst, int ksize) {
    const ImageView source(context.roi, src);
    const std::size_t pixels = pixelsOf(context.roi);
    std::copy_n(src, pixels, dst);
    if (ksize < 1 || ksize % 2 == 0 || pixels == 0) return;

    const std::vector<double> weights = gaussianWeights(ksize);
    const std::int64_t r = ksize / 2;
    const std::size_t width = static_cast<std::size_t>(source.width);
    std::vector<unsigned char> padded(width + 2 * static_cast<std::size_t>(r));
    std::vector<double> sums(width);

    // Horizontal pass.
    std::vector<unsigned char> filtered(src, src + pixels);
    const MutableImageView rows(context.roi, filtered.data());
    for (int y = 0; y < rows.height; ++y) filterRow(rows.row(y), width, weights, padded);

    // Vertical pass.
    const MutableImageView destination(context.roi, dst);
    for (int y = 0; y < rows.height; ++y) {
        std::fill(sums.begin(), sums.end(), 0.0);
        for (std::int64_t k = -r; k <= r; ++k) {
            const std::int64_t tapRow = y + k;
            const unsigned char* tap = tapRow < 0                ? source.row(0)
                                       : tapRow >= source.height ? source.row(source.height - 1)
                                                                 : rows.row(static_cast<int>(tapRow));
            const double weight = weights[static_cast<std::size_t>(k + r)];
            for (std::size_t x = 0; x < width; ++x) sums[x] += tap[x] * weight;
        }
        std::transform(sums.begin(), sums.end(), destination.row(y), truncateToGrey);
    }
}

}  // namespace KORVANELASERALGO::image
