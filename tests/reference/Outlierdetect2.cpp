#include <cmath>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "reference.h"

namespace reference {

void Outlierdetect2(std::vector<Point3d>& profile, const int& halfWidth, const float& threshold) {
    if (profile.empty()) {
        return;
    }
    const std::int64_t w = halfWidth;
    const double limit = static_cast<double>(threshold);

    // The current run: its members and their places in the profile.
    std::vector<Point3d> run;
    std::vector<std::size_t> positions;

    // Places to be cleared; marking one again changes nothing.
    std::vector<bool> marked(profile.size(), false);
    const auto markShortRun = [&]() {
        if (static_cast<std::int64_t>(run.size()) < w) {
            for (const std::size_t position : positions) {
                marked[position] = true;
            }
        }
    };

    if (profile[0].x != 0.0) {
        run.push_back(profile[0]);
        positions.push_back(0);
    }
    for (std::size_t i = 1; i < profile.size(); ++i) {
        const Point3d& point = profile[i];
        const bool usable = point.x != 0.0;

        if (run.empty() && usable) {
            run.push_back(point);
            positions.push_back(i);
        }

        // A point that has just opened the run is compared with itself here and counts twice: meant.
        if (!run.empty() && usable) {
            const Point3d& last = run.back();
            if (std::fabs(point.z - last.z) < limit && std::fabs(point.x - last.x) < limit) {
                run.push_back(point);
                positions.push_back(i);
            } else {
                markShortRun();
                run.assign(1, point);
                positions.assign(1, i);
            }
        }

        // In every turn, so a run that grows later has lost its first members by then: meant.
        markShortRun();
    }

    for (std::size_t i = 0; i < profile.size(); ++i) {
        if (marked[i]) {
            profile[i] = Point3d{0.0, 0.0, 0.0};
        }
    }
}

}  // namespace reference
