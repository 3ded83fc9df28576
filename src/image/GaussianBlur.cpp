// GaussianBlur: a separable Gaussian of sigma 1 pixel with replicated borders.
//
// Two things are meant: sums are truncated, never rounded, and the horizontal pass works in place, so the taps to the
// left of a pixel read values that this pass has filtered already. The rows beyond the top and bottom replicate the
// first and last row as they were before it.

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdlib>
#include <vector>

#include "algo/ImageView.h"
#include "image/image.h"
#include "kernels/kernels.h"

namespace KORVANELASERALGO::image {
namespace {

constexpr int kStripRows = 64;  // filtered together, so that the vertical pass finds them in the cache

// Weights farther out than this are 0 in double precision, and add nothing to any sum.
constexpr int kLargestRadius = kernels::kLargestBlurRadius;  // pixels
static_assert(kLargestRadius < kStripRows);                  // every strip completes a row

// From the centre outwards; both sides together have the sum 1.
std::vector<double> gaussianWeights(int radius) {
    std::vector<double> weights;
    for (int i = 0; i <= radius; ++i) weights.push_back(std::exp(static_cast<double>(-(i * i)) * 0.5));
    double sum = 0.0;
    for (int i = -radius; i <= radius; ++i) sum += weights[static_cast<std::size_t>(std::abs(i))];
    for (double& weight : weights) weight /= sum;
    return weights;
}

// A window of horizontally filtered rows moves down the image. It begins with replicas of the first row and ends with
// replicas of the last one; from one strip to the next it keeps the rows that output rows still need above them.
void blur(const ImageView& source, const MutableImageView& destination, int radius) {
    const std::vector<double> weights = gaussianWeights(radius);
    const int stripRows = std::min(kStripRows, source.height);
    const int windowRows = stripRows + 3 * radius;
    const std::size_t width = static_cast<std::size_t>(source.width);
    std::vector<unsigned char> bytes(static_cast<std::size_t>(windowRows) * width);
    const MutableImageView window({0, 0, source.width, windowRows}, bytes.data());

    int filled = 0;  // rows of the window
    const auto append = [&](int replicatedRow) {
        for (int i = 0; i < radius; ++i) std::copy_n(source.row(replicatedRow), width, window.row(filled++));
    };
    append(0);
    int nextRow = 0;  // of the destination
    for (int r = 0; r < source.height; r += stripRows) {
        const int rows = std::min(stripRows, source.height - r);
        kernels::active().blurRows(source.row(r), source.width, rows, weights.data(), radius, window.row(filled));
        filled += rows;
        if (r + rows == source.height) append(source.height - 1);

        const int complete = filled - 2 * radius;
        kernels::active().blurColumns(window.bytes, source.width, complete, weights.data(), radius,
                                      destination.row(nextRow));
        nextRow += complete;
        std::copy(window.row(complete), window.row(filled), window.bytes);
        filled = 2 * radius;
    }
}

}  // namespace

void GaussianBlur(const AlgoContext& context, const unsigned char* src, unsigned char* dst, int ksize) {
    const ImageView source(context.roi, src);
    const std::size_t pixels = pixelsOf(context.roi);
    const bool hasKernel = ksize % 2 == 1;  // the remainder of a negative number is not positive
    const int radius = hasKernel ? std::min(ksize / 2, kLargestRadius) : 0;
    if (radius == 0 || pixels == 0) {
        std::copy_n(src, pixels, dst);
        return;
    }
    try {
        blur(source, MutableImageView(context.roi, dst), radius);
    } catch (...) {
        // Where memory ends, `dst` is a copy all the same.
        std::copy_n(src, pixels, dst);
        throw;
    }
}

}  // namespace KORVANELASERALGO::image
