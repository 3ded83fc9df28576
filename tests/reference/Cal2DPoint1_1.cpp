#include <cmath>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "plain.h"
#include "reference.h"

namespace reference {

namespace {

struct Candidate {
    double centre;
    double grey;
    int width;
};

/// What a column's choice did.
enum class Choice { kPointWritten, kNothing, kNoRule };

/// Grey-weighted mean row over the run positions `first` to `last`; positions outside the run are skipped.
double meanRow(const Run& run, int first, int last) {
    double weighted = 0.0;
    int sum = 0;
    for (int i = first; i <= last; ++i) {
        if (i < 0 || i >= static_cast<int>(run.rows.size())) {
            continue;
        }
        const int row = run.rows[static_cast<std::size_t>(i)];
        const int grey = run.greys[static_cast<std::size_t>(i)];
        weighted += static_cast<double>(row) * static_cast<double>(grey);
        sum = wrappedSum(sum, grey);
    }
    return weighted / static_cast<double>(sum);
}

/// A bound as the whole-run rules compare it: sign-extended and taken as an unsigned 64-bit value, so that a negative
/// bound is a huge one.
std::uint64_t asUnsigned(int bound) {
    return static_cast<std::uint64_t>(static_cast<std::int64_t>(bound));
}

}  // namespace

void Cal2DPoint1_1(const Settings& settings, bool* mask, unsigned char* image, std::vector<Point2d>& points) {
    const int width = countOf(settings.roi.Width);
    const int height = countOf(settings.roi.Height);
    const int grayMin = settings.lineSelect.GrayMin;
    const int grayMax = settings.lineSelect.GrayMax;
    const int widthMin = settings.lineSelect.WidthMin;
    const int widthMax = settings.lineSelect.WidthMax;
    const int selectMode = settings.lineSelect.SelectMode;

    points.assign(static_cast<std::size_t>(width), Point2d{0.0, 0.0});

    // 1. Candidates of every column, top to bottom.
    std::vector<std::vector<Candidate>> candidates(static_cast<std::size_t>(width));
    for (int column = 0; column < width; ++column) {
        std::vector<Candidate>& list = candidates[static_cast<std::size_t>(column)];
        const std::vector<Run> runs = runsOfColumn(image, width, height, column, 60);

        const auto greyAllowed = [&](double grey) { return grey >= grayMin && grey <= grayMax; };

        // A whole run: its mean row, the pixel there, its length.
        const auto wholeRun = [&](const Run& run) {
            Candidate candidate{};
            candidate.centre = meanRow(run, 0, static_cast<int>(run.rows.size()) - 1);
            const int row = toInt32(candidate.centre);
            const bool inside = row >= 0 && row < height;  // fails only where a run's grey sum left 32 bits
            candidate.grey = inside ? static_cast<double>(image[placeOf(width, row, column)]) : 0.0;
            candidate.width = static_cast<int>(run.rows.size());
            return candidate;
        };

        // The kept humps of a run: mean row between the feet, height, distance of the feet (not the number of pixels:
        // meant). Returns whether a hump was kept, accepted or not.
        const auto addPeaks = [&](const Run& run) {
            std::vector<int> positions;
            std::vector<int> values;
            std::vector<int> leftFeet;
            std::vector<int> rightFeet;
            FindPeaksWithFeet(run.greys, positions, values, leftFeet, rightFeet);
            for (std::size_t k = 0; k < positions.size(); ++k) {
                Candidate candidate{};
                candidate.grey = static_cast<double>(values[k]);
                candidate.width = rightFeet[k] - leftFeet[k];
                if (greyAllowed(candidate.grey) && candidate.width >= widthMin && candidate.width <= widthMax) {
                    candidate.centre = meanRow(run, leftFeet[k], rightFeet[k]);
                    list.push_back(candidate);
                }
            }
            return !positions.empty();
        };

        if (runs.size() == 1) {
            const Run& run = runs[0];
            // The length is compared as an unsigned value: a negative bound sends every run to the whole-run rule.
            if (run.rows.size() < asUnsigned(widthMax)) {
                const Candidate candidate = wholeRun(run);
                if (greyAllowed(candidate.grey) && candidate.width >= widthMin && candidate.width <= widthMax) {
                    list.push_back(candidate);
                }
            } else {
                // A long run without a hump yields nothing.
                addPeaks(run);
            }
        } else {
            for (const Run& run : runs) {
                if (run.rows.size() <= 2) {
                    continue;
                }
                if (!addPeaks(run)) {
                    // Here both width bounds are compared as unsigned values: meant.
                    const Candidate candidate = wholeRun(run);
                    const std::uint64_t length = run.rows.size();
                    if (greyAllowed(candidate.grey) && length >= asUnsigned(widthMin) &&
                        length <= asUnsigned(widthMax)) {
                        list.push_back(candidate);
                    }
                }
            }
        }
    }

    // The choice among several candidates: the nearest to the tracked row within 5 rows, else by SelectMode.
    const auto choose = [&](int column, double tracked) {
        const std::vector<Candidate>& list = candidates[static_cast<std::size_t>(column)];
        Point2d& point = points[static_cast<std::size_t>(column)];

        const Candidate* chosen = nullptr;
        float best = static_cast<float>(height);
        for (const Candidate& candidate : list) {
            const float distance = static_cast<float>(std::fabs(candidate.centre - tracked));
            if (distance < best) {
                best = distance;
                chosen = &candidate;
            }
        }
        if (!(best <= 5.0f)) {
            chosen = nullptr;
            if (selectMode == 1) {
                // The brightest, the first of equals.
                int greatest = 0;
                for (const Candidate& candidate : list) {
                    if (candidate.grey > greatest) {
                        greatest = toInt32(candidate.grey);
                        chosen = &candidate;
                    }
                }
            } else if (selectMode == 2) {
                // A grey value is compared with a width: meant.
                int limit = width;
                for (const Candidate& candidate : list) {
                    if (candidate.grey < limit) {
                        limit = candidate.width;
                        chosen = &candidate;
                    }
                }
            } else if (selectMode == 3) {
                chosen = &list.front();
            } else if (selectMode == 4) {
                chosen = &list.back();
            } else {
                return Choice::kNoRule;
            }
        }
        if (chosen == nullptr) {
            return Choice::kNothing;
        }
        point = Point2d{static_cast<double>(column), chosen->centre};
        return Choice::kPointWritten;
    };

    // 2. Left to right: a lone candidate is taken, several are resolved once a row is tracked.
    double tracked = 0.0;
    for (int column = 0; column < width; ++column) {
        const std::vector<Candidate>& list = candidates[static_cast<std::size_t>(column)];
        Point2d& point = points[static_cast<std::size_t>(column)];
        if (list.size() == 1) {
            point = Point2d{static_cast<double>(column), list[0].centre};
            tracked = list[0].centre;
        } else if (list.size() > 1 && column > 0 && tracked > 0.0) {
            const Choice choice = choose(column, tracked);
            if (choice == Choice::kPointWritten) {
                tracked = point.y;
            } else if (choice == Choice::kNoRule) {
                // An unknown mode also forgets the row: columns with several candidates stay open: meant.
                tracked = 0.0;
            }
        }
    }

    // 3. Right to left: columns with several candidates that are empty or far from their right neighbour.
    tracked = 0.0;
    for (int column = width - 2; column >= 0; --column) {
        const std::vector<Candidate>& list = candidates[static_cast<std::size_t>(column)];
        Point2d& point = points[static_cast<std::size_t>(column)];
        const Point2d& right = points[static_cast<std::size_t>(column) + 1];
        if (right.y > 0.0) {
            tracked = right.y;
        }
        const bool open = point.y == 0.0 || std::fabs(point.y - tracked) > 5.0;
        if (open && tracked > 0.0 && list.size() > 1) {
            const Choice choice = choose(column, tracked);
            if (choice == Choice::kPointWritten) {
                tracked = point.y;
            } else if (choice == Choice::kNoRule) {
                tracked = 0.0;
            }
        }
    }

    // 4. Mask, then full-sensor coordinates. Row 0.0 counts as not found.
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
