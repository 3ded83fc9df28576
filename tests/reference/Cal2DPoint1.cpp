#include <algorithm>
#include <cstdint>
#include <vector>

#include "plain.h"
#include "reference.h"

namespace reference {

void Cal2DPoint1(const Settings& settings, bool* mask, unsigned char* image, std::vector<Point2d>& points,
                 const int& /* unused: never read */) {
    const int width = countOf(settings.roi.Width);
    const int height = countOf(settings.roi.Height);
    const auto pixel = [&](int row, int column) { return static_cast<int>(image[placeOf(width, row, column)]); };

    points.assign(static_cast<std::size_t>(width), Point2d{0.0, 0.0});

    const int halfWindow = height < 41 ? height / 2 - 1 : 20;
    const int trackWindow = 3 * halfWindow / 4;

    bool tracking = false;
    int predicted = halfWindow;
    Point2d last{0.0, 0.0};

    // The first and the last column are never searched.
    for (int column = 1; column < width - 1; ++column) {
        bool found = false;
        int row = 1;
        while (!found && row < height - 1) {
            if (!tracking && row >= 2 && row < height - halfWindow - 1) {
                // Search: a bright pixel with a bright neighbour that is not darker than both vertical neighbours.
                const int here = pixel(row, column);
                const bool brightNeighbour = pixel(row - 1, column + 1) > 60.0 || pixel(row, column + 1) > 60.0 ||
                                             pixel(row + 1, column + 1) > 60.0 || pixel(row - 1, column) > 60.0 ||
                                             pixel(row + 1, column) > 60.0;
                if (here > 60.0 && brightNeighbour &&
                    (here >= pixel(row + 1, column) || here >= pixel(row - 1, column))) {
                    tracking = true;

                    // The stripe starts here: take it downward until it is dark; what follows counts as 0.
                    const int end = std::min(row + 2 * halfWindow, height - 1);
                    std::vector<std::uint32_t> values(static_cast<std::size_t>(end - row + 1), 0u);
                    for (int r = row; r <= end; ++r) {
                        if (pixel(r, column) < 60) {
                            break;
                        }
                        values[static_cast<std::size_t>(r - row)] = static_cast<std::uint32_t>(pixel(r, column));
                    }
                    ColumnCentroid(column, row, end - row + 1, values.data(), last);
                    found = true;
                }
            } else if (tracking && row == predicted) {
                // Tracking: only the predicted row is looked at.
                const int here = pixel(row, column);
                const bool bright = here >= 60.0 || pixel(row + 1, column) >= 60.0 || pixel(row - 1, column) >= 60.0;
                const bool continues = bright && here > 0.9 * pixel(row, column - 1);
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

                // The middle pixel whatever its value, then downward and upward until it is dark.
                std::vector<std::uint32_t> values(static_cast<std::size_t>(2 * n + 1), 0u);
                values[static_cast<std::size_t>(n)] = static_cast<std::uint32_t>(here);
                for (int i = 1; i <= n; ++i) {
                    if (pixel(row + i, column) < 60) {
                        break;
                    }
                    values[static_cast<std::size_t>(n + i)] = static_cast<std::uint32_t>(pixel(row + i, column));
                }
                for (int i = 1; i <= n; ++i) {
                    if (pixel(row - i, column) < 60) {
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
