#include <algorithm>
#include <cmath>
#include <cstddef>
#include <vector>

#include "plain.h"
#include "reference.h"

namespace reference {

namespace {

/// The candidates of one column: three lists of the same length.
struct Lists {
    std::vector<double> centres;
    std::vector<double> greys;
    std::vector<int> widths;
};

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

/// The candidate that `SelectMode` names; the first one where none satisfies the rule.
std::size_t selectByMode(const Lists& lists, int selectMode, int roiWidth) {
    const std::size_t count = lists.centres.size();
    std::size_t choice = 0;
    if (selectMode == 1) {
        double greatest = 0.0;
        for (std::size_t i = 0; i < count; ++i) {
            if (lists.greys[i] > greatest) {
                greatest = lists.greys[i];
                choice = i;
            }
        }
    } else if (selectMode == 2) {
        int smallest = roiWidth;
        for (std::size_t i = 0; i < count; ++i) {
            if (lists.widths[i] < smallest) {
                smallest = lists.widths[i];
                choice = i;
            }
        }
    } else if (selectMode == 3) {
        choice = 0;
    } else if (selectMode == 4) {
        choice = count - 1;
    } else {
        // Brighter and narrower than the choice so far, both at once.
        double grey = 0.0;
        int narrowest = roiWidth;
        for (std::size_t i = 0; i < count; ++i) {
            if (lists.greys[i] > grey && lists.widths[i] < narrowest) {
                grey = lists.greys[i];
                narrowest = lists.widths[i];
                choice = i;
            }
        }
    }
    return choice;
}

}  // namespace

void Cal2DPoint2_1(const Settings& settings, bool* mask, unsigned char* image, std::vector<Point2d>& points) {
    const int width = countOf(settings.roi.Width);
    const int height = countOf(settings.roi.Height);
    const int grayMin = settings.lineSelect.GrayMin;
    const int grayMax = settings.lineSelect.GrayMax;
    const int widthMin = settings.lineSelect.WidthMin;
    const int widthMax = settings.lineSelect.WidthMax;
    const int selectMode = settings.lineSelect.SelectMode;

    points.assign(static_cast<std::size_t>(width), Point2d{0.0, 0.0});
    if (width < 1) {
        return;
    }

    // 1. Candidates of every column, with a vote point for each accepted one.
    std::vector<Lists> columns(static_cast<std::size_t>(width));
    std::vector<VotePoint> votes;
    for (int column = 0; column < width; ++column) {
        const std::vector<Run> runs = runsOfColumn(image, width, height, column, 30);

        const auto gateAndAccept = [&](double centre, int grey, int runWidth) {
            if (grey >= grayMin && grey <= grayMax && runWidth >= widthMin && runWidth <= widthMax) {
                Lists& lists = columns[static_cast<std::size_t>(column)];
                lists.centres.push_back(centre);
                lists.greys.push_back(static_cast<double>(grey));
                lists.widths.push_back(runWidth);
                votes.push_back(VotePoint{column, toInt32(centre)});
            }
        };

        const auto takeWholeRun = [&](const Run& run) {
            const int length = static_cast<int>(run.rows.size());
            const double centre = meanRow(run, 0, length - 1);
            const int row = toInt32(centre);
            const bool inside = row >= 0 && row < height;  // fails only where a run's sums left 32 bits
            const int grey = inside ? static_cast<int>(image[placeOf(width, row, column)]) : 0;
            gateAndAccept(centre, grey, length);
        };

        // Returns whether a peak was kept, accepted or not.
        const auto takePeaks = [&](const Run& run) {
            std::vector<int> positions;
            std::vector<int> values;
            std::vector<int> leftFeet;
            std::vector<int> rightFeet;
            FindPeaksWithFeet(run.greys, positions, values, leftFeet, rightFeet);
            for (std::size_t k = 0; k < positions.size(); ++k) {
                const double centre = meanRow(run, leftFeet[k], rightFeet[k]);
                gateAndAccept(centre, values[k], rightFeet[k] - leftFeet[k]);
            }
            return !positions.empty();
        };

        if (runs.size() == 1) {
            if (runs[0].rows.size() < 20) {
                takeWholeRun(runs[0]);
            } else {
                // A long lone run without a peak yields nothing, unlike one among several: meant.
                takePeaks(runs[0]);
            }
        } else {
            for (const Run& run : runs) {
                if (run.rows.size() < 3) {
                    continue;
                }
                if (!takePeaks(run)) {
                    takeWholeRun(run);
                }
            }
        }
    }

    // 2. Straight pieces of the stripe.
    std::vector<LineSegment> segments;
    FindLineSegments(settings, votes, 1.0f, 0.017453292f, 0.8f, segments);

    // 3. Keep the candidates near a segment. A segment's two end columns are not visited, and a candidate near two
    // segments is kept twice: both meant.
    std::vector<Lists> onSegments(static_cast<std::size_t>(width));
    for (const LineSegment& segment : segments) {
        const float slope = static_cast<float>(segment.y2 - segment.y1) / static_cast<float>(segment.x2 - segment.x1);
        for (int x = segment.x1 + 1; x < segment.x2; ++x) {
            const float row = static_cast<float>(x - segment.x1) * slope + static_cast<float>(segment.y1);
            const Lists& all = columns[static_cast<std::size_t>(x)];
            Lists& kept = onSegments[static_cast<std::size_t>(x)];
            for (std::size_t i = 0; i < all.centres.size(); ++i) {
                if (std::fabs(static_cast<double>(row) - all.centres[i]) < 2.0) {
                    kept.centres.push_back(all.centres[i]);
                    kept.greys.push_back(all.greys[i]);
                    kept.widths.push_back(all.widths[i]);
                }
            }
        }
    }
    // A column that no segment gave a candidate keeps all it had.
    for (std::size_t column = 0; column < columns.size(); ++column) {
        if (onSegments[column].centres.empty()) {
            onSegments[column] = columns[column];
        }
    }
    columns = onSegments;

    // 4. Ambiguous columns, by the difference of the list's ends (not of its extremes: meant), in groups.
    std::vector<int> status;
    for (const Lists& lists : columns) {
        if (lists.centres.empty()) {
            status.push_back(-1);
        } else if (lists.centres.back() - lists.centres.front() > 15.0) {
            status.push_back(1);
        } else {
            status.push_back(0);
        }
    }
    std::vector<std::vector<int>> groups;
    for (int column = 0; column < width; ++column) {
        if (status[static_cast<std::size_t>(column)] != 1) {
            continue;
        }
        if (groups.empty() || column - groups.back().back() > 10) {
            groups.emplace_back();
        }
        groups.back().push_back(column);
    }

    // 5. Prune what strays from the line between the unambiguous columns on both sides of a group.
    const auto meanCentre = [&](int column) {
        const std::vector<double>& centres = columns[static_cast<std::size_t>(column)].centres;
        double sum = 0.0;
        for (const double centre : centres) {
            sum += centre;
        }
        return sum / static_cast<double>(centres.size());
    };
    std::vector<Lists> pruned = columns;
    for (const std::vector<int>& group : groups) {
        int leftColumn = 0;
        double leftRow = 0.0;
        for (int column = group.front() - 1; column >= 0; --column) {
            if (status[static_cast<std::size_t>(column)] == 0) {
                leftColumn = column;
                leftRow = meanCentre(column);
                break;
            }
        }
        int rightColumn = 0;
        double rightRow = 0.0;
        for (int column = group.back() + 1; column < width; ++column) {
            if (status[static_cast<std::size_t>(column)] == 0) {
                rightColumn = column;
                rightRow = meanCentre(column);
                break;
            }
        }
        if (!(leftRow > 0.0 && rightRow > 0.0)) {
            continue;
        }

        for (const int member : group) {
            const double fraction =
                static_cast<double>(member - leftColumn) / static_cast<double>(rightColumn - leftColumn);
            const float expected = static_cast<float>(fraction * (rightRow - leftRow) + leftRow);
            const std::vector<double>& centres = columns[static_cast<std::size_t>(member)].centres;
            Lists& lists = pruned[static_cast<std::size_t>(member)];
            for (std::size_t i = centres.size(); i > 0; --i) {
                if (std::fabs(centres[i - 1] - static_cast<double>(expected)) > 10.0) {
                    const std::ptrdiff_t place = static_cast<std::ptrdiff_t>(i - 1);
                    lists.centres.erase(lists.centres.begin() + place);
                    lists.greys.erase(lists.greys.begin() + place);
                    lists.widths.erase(lists.widths.begin() + place);
                }
            }
        }
    }

    // 6. One centre per column: the nearest to the tracked row within 5 rows, else by SelectMode.
    const auto choose = [&](int column, double tracked) {
        const Lists& lists = pruned[static_cast<std::size_t>(column)];
        bool chosen = false;
        std::size_t choice = 0;
        float best = static_cast<float>(height);
        for (std::size_t i = 0; i < lists.centres.size(); ++i) {
            const float distance = static_cast<float>(std::fabs(lists.centres[i] - tracked));
            if (distance < best) {
                best = distance;
                choice = i;
                chosen = true;
            }
        }
        if (!(chosen && best <= 5.0f)) {
            choice = selectByMode(lists, selectMode, width);
        }
        points[static_cast<std::size_t>(column)] = Point2d{static_cast<double>(column), lists.centres[choice]};
    };

    double previous = 0.0;
    for (int column = 0; column < width; ++column) {
        const Lists& lists = pruned[static_cast<std::size_t>(column)];
        Point2d& point = points[static_cast<std::size_t>(column)];
        if (lists.centres.size() == 1) {
            point = Point2d{static_cast<double>(column), lists.centres[0]};
            previous = point.y;
        } else if (lists.centres.size() > 1 && column > 0 && previous > 0.0) {
            choose(column, previous);
            previous = point.y;
        }
    }

    // Right to left only the columns that are still empty: points already held are never revised.
    double next = 0.0;
    for (int column = width - 2; column >= 0; --column) {
        const Lists& lists = pruned[static_cast<std::size_t>(column)];
        Point2d& point = points[static_cast<std::size_t>(column)];
        const Point2d& right = points[static_cast<std::size_t>(column) + 1];
        if (right.y > 0.0) {
            next = right.y;
        }
        if (point.y == 0.0 && next > 0.0 && lists.centres.size() > 1) {
            choose(column, next);
            next = point.y;
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
