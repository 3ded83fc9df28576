#include <cstddef>
#include <cstdint>
#include <vector>

#include "plain.h"
#include "reference.h"

namespace reference {

void Cal2DPoint4(const Settings& settings, bool* mask, unsigned char* image, std::vector<Point2d>& points,
                 const int& threshold) {
    const int width = countOf(settings.roi.Width);
    const int height = countOf(settings.roi.Height);

    points.clear();

    // Threshold in place: the caller's image is a working buffer.
    for (int row = 0; row < height; ++row) {
        for (int column = 0; column < width; ++column) {
            unsigned char& pixel = image[placeOf(width, row, column)];
            if (pixel < threshold) {
                pixel = 0;
            }
        }
    }

    // Mean row of what is left, the weighted sum and the division in single precision: meant.
    for (int column = 0; column < width; ++column) {
        std::uint32_t sum = 0;
        float weighted = 0.0f;
        for (int row = 0; row < height; ++row) {
            const unsigned char pixel = image[placeOf(width, row, column)];
            sum += pixel;
            weighted += static_cast<float>(static_cast<std::int64_t>(row) * static_cast<std::int64_t>(pixel));
        }
        if (sum == 0) {
            points.push_back(Point2d{static_cast<double>(column), 0.0});
        } else {
            const float mean = weighted / static_cast<float>(sum);
            points.push_back(Point2d{static_cast<double>(column), static_cast<double>(mean)});
        }
    }

    // The points stay in ROI coordinates, unlike those of the other extraction methods: meant.
    for (std::size_t i = 0; i < points.size(); ++i) {
        if (points[i].y > 0.0) {
            mask[i] = true;
        }
    }
}

}  // namespace reference
