// meetPlane for every small number of points, none included: nothing beyond the last is written.

#include <gtest/gtest.h>

#include <cstddef>
#include <memory>
#include <vector>

#include "kernels/kernels.h"

namespace {

using namespace KORVANELASERALGO::kernels;

constexpr double kUntouched = -12345.0;

// A camera with a focal length of 1 that nothing turns: the line of sight through (x, y) meets Z = 2 at (2 x, 2 y, 2).
LightSheet flatSheet() {
    LightSheet sheet{};
    sheet.camera = {.fx = 1.0, .cx = 0.0, .fy = 1.0, .cy = 0.0};
    sheet.lowerBound = -1000.0;
    sheet.upperBound = 1000.0;
    sheet.surface[0] = 2.0;
    sheet.rt[0] = sheet.rt[4] = sheet.rt[8] = 1.0;
    return sheet;
}

TEST(MeetPlane, WritesAsManyPointsAsThereAre) {
    const LightSheet sheet = flatSheet();
    for (std::size_t count = 0; count <= 70; ++count) {
        std::vector<double> points;
        std::vector<double> expected;
        const auto found = std::make_unique<bool[]>(count + 1);
        for (std::size_t i = 0; i < count; ++i) {
            const double x = static_cast<double>(i) + 1.0;
            const double y = -0.5 * static_cast<double>(i);
            found[i] = i % 5 != 3;
            points.insert(points.end(), {x, y});
            if (found[i])
                expected.insert(expected.end(), {2.0 * x, 2.0 * y, 2.0});
            else
                expected.insert(expected.end(), {0.0, 0.0, 0.0});
        }
        expected.insert(expected.end(), {kUntouched, kUntouched, kUntouched});
        std::vector<double> met(3 * count + 3, kUntouched);
        active().meetPlane(sheet, found.get(), points.data(), count, met.data());
        EXPECT_EQ(met, expected) << count << " points";
    }
}

}  // namespace
