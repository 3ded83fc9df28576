#include <algorithm>
#include <cmath>
#include <cstddef>
#include <vector>

#include "plain.h"
#include "reference.h"

namespace reference {

namespace {

/// Grey-weighted mean row over the run positions `first` to `last`, clipped to the run. Products and the grey sum are
/// 32-bit integers, the weighted sum is a double.
double meanRow(const Run& run, int first, int last) {
    double weighted = 0.0;
    int sum = 0;
    for (int i = std::max(first, 0); i <= last && i < static_cast<int>(run.rows.size()); ++i) {
        const int row = run.rows[static_cast<std::size_t>(i)];
        const int grey = run.greys[static_cast<std::size_t>(i)];
        if (grey == 0) {
            continue;
        }
        weighted += static_cast<double>(wrappedProduct(grey, row));
        sum = wrappedSum(sum, grey);
    }
    return weighted / static_cast<double>(sum);
}

}  // namespace

void Cal2DPoint2(const Settings& settings, bool* mask, unsigned char* image, std::vector<Point2d>& points) {
    const int width = countOf(settings.roi.Width);
    const int height = countOf(settings.roi.Height);

    points.assign(static_cast<std::size_t>(width), Point2d{0.0, 0.0});
    std::vector<std::vector<double>> candidates(static_cast<std::size_t>(width));

    // The nearest candidate of a column, searched below a start distance. When it lies within 5 rows the column's point
    // and the tracked row take it; a search that finds none writes nothing.
    const auto takeNearest = [&](int column, int startDistance, double& tracked) {
        const std::vector<double>& list = candidates[static_cast<std::size_t>(column)];
        const double* nearest = nullptr;
        float best = static_cast<float>(startDistance);
        for (const double& centre : list) {
            const float distance = static_cast<float>(std::fabs(centre - tracked));
            if (distance < best) {
                best = distance;
                nearest = &centre;
            }
        }
        if (nearest != nullptr && best <= 5.0f) {
            points[static_cast<std::size_t>(column)] = Point2d{static_cast<double>(column), *nearest};
            tracked = *nearest;
        }
    };

    // Left to right: candidates of every column, and its point where it continues the stripe.
    double previous = 0.0;
    for (int column = 0; column < width; ++column) {
        std::vector<double>& list = candidates[static_cast<std::size_t>(column)];
        Point2d& point = points[static_cast<std::size_t>(column)];

        // Half the column's maximum, at least 30, is the threshold.
        int maximum = 0;
        for (int row = 0; row < height; ++row) {
            maximum = std::max(maximum, static_cast<int>(image[placeOf(width, row, column)]));
        }
        const int threshold = std::max(maximum / 2, 30);
        const std::vector<Run> runs = runsOfColumn(image, width, height, column, threshold);

        if (runs.empty()) {
            continue;
        }

        if (runs.size() == 1) {
            const Run& run = runs[0];
            const int length = static_cast<int>(run.rows.size());
            if (length >= 20) {
                // A run that long is not the stripe.
                continue;
            }
            double centre = 0.0;
            if (length >= 3) {
                const int top = static_cast<int>(std::max_element(run.greys.begin(), run.greys.end()) -
                                                 run.greys.begin());  // the first of equal maxima
                centre = meanRow(run, top - 3, top + 3);
            } else {
                centre = meanRow(run, 0, length - 1);
            }
            // A lone run is taken without a look at the neighbours.
            list.push_back(centre);
            point = Point2d{static_cast<double>(column), centre};
            previous = centre;
            continue;
        }

        // Several runs: the shortest, and those less than 5 rows longer, are examined peak by peak, the others are
        // taken whole: meant.
        int shortest = height;
        for (const Run& run : runs) {
            shortest = std::min(shortest, static_cast<int>(run.rows.size()));
        }
        for (const Run& run : runs) {
            const int length = static_cast<int>(run.rows.size());
            if (length < shortest + 5) {
                std::vector<int> positions;
                std::vector<int> values;
                FindPeaks(run.greys, positions, values);
                for (std::size_t k = 0; k < positions.size(); ++k) {
                    // A flat top reaches from its first sample to its last.
                    int end = positions[k];
                    while (end + 1 < length && run.greys[static_cast<std::size_t>(end) + 1] == values[k]) {
                        end += 1;
                    }
                    list.push_back(meanRow(run, positions[k] - 3, end + 3));
                }
            } else {
                list.push_back(meanRow(run, 0, length - 1));
            }
        }

        // Column 0 has no neighbour yet.
        if (column >= 1) {
            const Point2d& left = points[static_cast<std::size_t>(column) - 1];
            if (previous == 0.0 && left.y > 0.0) {
                previous = left.y;
            }
            if (previous > 0.0) {
                takeNearest(column, height, previous);
            }
        }
    }

    // Right to left: points far from their right neighbour are revised. This search starts from the width: meant.
    double next = 0.0;
    for (int column = width - 2; column >= 0; --column) {
        const Point2d& right = points[static_cast<std::size_t>(column) + 1];
        if (right.y > 0.0) {
            next = right.y;
        }
        if (next > 0.0 && std::fabs(points[static_cast<std::size_t>(column)].y - next) > 5.0) {
            takeNearest(column, width, next);
        }
    }

    // A lone candidate fills its column. The test is on x, so column 0 always takes its lone candidate: meant.
    for (int column = 0; column < width; ++column) {
        const std::vector<double>& list = candidates[static_cast<std::size_t>(column)];
        Point2d& point = points[static_cast<std::size_t>(column)];
        if (point.x == 0.0 && list.size() == 1) {
            point = Point2d{static_cast<double>(column), list[0]};
        }
    }

    // Mask, then full-sensor coordinates.
    for (int column = 0; column < width; ++column) {
        Point2d& point = points[static_cast<std::size_t>(column)];
        if (point.y > 0.0) {
            mask[column] = true;
        }
        point.x += settings.roi.OffsetX;
        point.y += settings.roi.OffsetY;
    }
}

}  // namespace reference
