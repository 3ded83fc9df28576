#include <algorithm>
#include <cstdint>
#include <vector>

#include "plain.h"
#include "reference.h"

namespace reference {

void Cal2DPoint3(const Settings& settings, bool* mask, unsigned char* image, std::vector<Point2d>& points,
                 const int& cap) {
    const int width = countOf(settings.roi.Width);
    const int height = countOf(settings.roi.Height);
    const auto pixel = [&](int row, int column) { return static_cast<int>(image[placeOf(width, row, column)]); };

    // Column thresholds: the mean of the bright pixels, at least 60, at most the cap (which may lower it below 60). A
    // column without a bright pixel gets 60, and there the cap does not count: meant.
    std::vector<int> thresholds(static_cast<std::size_t>(width), 0);
    for (int column = 1; column < width - 1; ++column) {
        std::int64_t count = 0;
        std::int64_t sum = 0;
        for (int row = 1; row < height - 1; ++row) {
            if (pixel(row, column) > 60) {
                count += 1;
                sum += pixel(row, column);
            }
        }
        int threshold = 60;
        if (count > 0) {
            const int mean = static_cast<int>(sum / count);
            threshold = std::min(cap, std::max(mean, 60));
        }
        thresholds[static_cast<std::size_t>(column)] = threshold;
    }

    points.assign(static_cast<std::size_t>(width), Point2d{0.0, 0.0});

    const int halfWindow = height < 41 ? height / 2 - 1 : 20;
    const int trackWindow = 3 * halfWindow / 4;

    bool tracking = false;
    int predicted = halfWindow;
    Point2d last{0.0, 0.0};

    // The first and the last column are never searched.
    for (int column = 1; column < width - 1; ++column) {
        const double t = static_cast<double>(thresholds[static_cast<std::size_t>(column)]);
        bool found = false;
        int row = 1;
        while (!found && row < height - 1) {
            if (!tracking && row >= 2 && row < height - halfWindow - 1) {
                // Search: a bright pixel with a bright neighbour that is not darker than both vertical neighbours.
                const int here = pixel(row, column);
                const bool brightNeighbour = pixel(row - 1, column + 1) > t || pixel(row, column + 1) > t ||
                                             pixel(row + 1, column + 1) > t || pixel(row - 1, column) > t ||
                                             pixel(row + 1, column) > t;
                if (here > t && brightNeighbour && (here >= pixel(row + 1, column) || here >= pixel(row - 1, column))) {
                    tracking = true;

                    // The stripe starts here: take it downward until it is below the threshold.
                    const int end = std::min(row + 2 * halfWindow, height - 1);
                    std::vector<std::uint32_t> values(static_cast<std::size_t>(end - row + 1), 0u);
                    for (int r = row; r <= end; ++r) {
                        if (pixel(r, column) < t) {
                            break;
                        }
                        values[static_cast<std::size_t>(r - row)] = static_cast<std::uint32_t>(pixel(r, column));
                    }
                    // A negative threshold lets black pixels through; where all are black, the last point, its
                    // earlier x included, stays and is stored again: meant.
                    ColumnCentroid(column, row, end - row + 1, values.data(), last);
                    found = true;
                }
            } else if (tracking && row == predicted) {
                // Tracking: only the predicted row is looked at.
                const int here = pixel(row, column);
                const int below = pixel(row + 1, column);
                const int above = pixel(row - 1, column);
                const bool allDark = here < t && below < t && above < t;
                const bool continues = !allDark && here > 0.9 * pixel(row, column - 1);
                if (!continues) {
                    // The same column again from its first row, now as a search.
                    tracking = false;
                    row = 1;
                    continue;
                }

                // The bounds are not alike, the window of 2n + 1 rows is: it is centred on the predicted row.
                const int low = std::max(row - trackWindow, 0);
                const int high = std::min(row + 2 * trackWindow, height - 1);
                const int n = std::min(row - low, high - row);

                // For this fill only, the threshold is at least half the local peak.
                const double raised = std::max(t, 0.5 * std::max(here, std::max(below, above)));
                const int limit = toInt32(raised);

                // The middle pixel whatever its value, then downward and upward until it is below the limit.
                std::vector<std::uint32_t> values(static_cast<std::size_t>(2 * n + 1), 0u);
                values[static_cast<std::size_t>(n)] = static_cast<std::uint32_t>(here);
                for (int i = 1; i <= n; ++i) {
                    if (pixel(row + i, column) < limit) {
                        break;
                    }
                    values[static_cast<std::size_t>(n + i)] = static_cast<std::uint32_t>(pixel(row + i, column));
                }
                for (int i = 1; i <= n; ++i) {
                    if (pixel(row - i, column) < limit) {
                        break;
                    }
                    values[static_cast<std::size_t>(n - i)] = static_cast<std::uint32_t>(pixel(row - i, column));
                }
                ColumnCentroid(column, row - n, 2 * n + 1, values.data(), last);
                found = true;
            }
            ++row;
        }

        // Tracking outlives a column without a find, also when the predicted row lies outside the scanned rows, so that
        // no later column yields a point: meant.
        if (found) {
            points[static_cast<std::size_t>(column)] = last;
            mask[column] = true;
            predicted = toInt32(last.y + 0.5);
        }
    }

    // Into full-sensor coordinates, found or not.
    for (Point2d& point : points) {
        point.x += settings.roi.OffsetX;
        point.y += settings.roi.OffsetY;
    }
}

}  // namespace reference
