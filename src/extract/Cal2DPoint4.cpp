// Cal2DPoint4: the grey-weighted mean row of all pixels of a column that reach a threshold.
//
// Two things differ from the other extraction methods, and are meant: the caller's image is cut at the threshold, and
// the points stay in the ROI's own pixels. The moments are summed in single precision, row by row.

#include <cstdint>

#include "algo/ImageView.h"
#include "extract/extract.h"
#include "kernels/kernels.h"

namespace KORVANELASERALGO::extract {

void Cal2DPoint4(const AlgoContext& context, bool* mask, unsigned char* image, Points2d& points, int threshold) {
    const MutableImageView view(context.roi, image);
    const std::size_t columns = static_cast<std::size_t>(view.width);
    points.assign(columns, {0.0, 0.0});
    std::vector<std::uint32_t> sums(columns, 0);
    std::vector<float> moments(columns, 0.0f);

    kernels::active().cutAndSum(view.bytes, view.width, view.height, threshold, sums.data(), moments.data());

    for (std::size_t c = 0; c < columns; ++c) {
        const float row = sums[c] == 0 ? 0.0f : moments[c] / static_cast<float>(sums[c]);
        points[c] = {static_cast<double>(c), static_cast<double>(row)};
        if (row > 0.0f) mask[c] = true;
    }
}

}  // namespace KORVANELASERALGO::extract
