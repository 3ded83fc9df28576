#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <stdexcept>
#include <string>
#include <vector>

#include "HandSensor.h"

using scenes::Frame;
using scenes::makeScene;
using scenes::Renderer;
using scenes::Scene;
using scenes::Sensor;
using scenes::TruePoint;

TEST(SceneNames, AreTheNamesOfTheScenes) {
    const std::vector<std::string> names = scenes::sceneNames();
    const std::vector<std::string> expected = {"gauge-block", "weld-bead", "hemisphere", "v-groove",
                                               "hard",        "dark",      "ambient",    "noisy"};
    EXPECT_EQ(names, expected);
    for (const std::string& name : names) {
        EXPECT_EQ(makeScene(name).name, name);
        EXPECT_FALSE(makeScene(name).description.empty());
        EXPECT_EQ(makeScene(name).description.find('\n'), std::string::npos);
    }
}

TEST(MakeScene, RefusesANameThatDoesNotExist) {
    EXPECT_THROW(makeScene("gauge"), std::invalid_argument);
    EXPECT_THROW(makeScene(""), std::invalid_argument);
}

TEST(BuiltInScenes, AreNowhereHigherThanTheirMaximumAndNowhereBelowTheTable) {
    for (const std::string& name : scenes::sceneNames()) {
        const Scene scene = makeScene(name);
        double highest = 0.0;
        for (double x = -60.0; x <= 60.0; x += 0.09) {
            for (double travel = -20.0; travel <= 60.0; travel += 0.17) {
                const double height = scene.height(x, travel);
                ASSERT_GE(height, 0.0) << name;
                highest = std::max(highest, height);
            }
        }
        EXPECT_LE(highest, scene.maximumHeight) << name;
        EXPECT_GT(highest, scene.maximumHeight - 2.0) << name << " could look less far for shadows";
    }
}

TEST(BuiltInScenes, ShowTheStripeFromTheFirstColumnToTheLastAndClearOfTheFirstAndLastRows) {
    constexpr double kMargin = 40.0;  // rows
    for (const Sensor& sensor : {scenes::standardSensor(), scenes::curvedSheetSensor()}) {
        for (const char* name : {"gauge-block", "weld-bead", "hemisphere", "v-groove"}) {
            const Renderer renderer(sensor, makeScene(name));
            for (int number = 0; number < 100; number += 33) {
                const Frame frame = renderer.render({.frame = number});
                EXPECT_TRUE(frame.truth.front().visible) << name << ", frame " << number;
                EXPECT_TRUE(frame.truth.back().visible) << name << ", frame " << number;
                for (const TruePoint& truth : frame.truth) {
                    if (!truth.visible) continue;
                    EXPECT_GE(truth.row - sensor.roi.OffsetY, kMargin);
                    EXPECT_LE(truth.row - sensor.roi.OffsetY, sensor.roi.Height - kMargin);
                }
            }
        }
    }
}

TEST(GaugeBlock, HasFlatStepsOfFiveTenAndFifteenMillimetres) {
    const Sensor sensor = scenes::standardSensor();
    const Frame frame = Renderer(sensor, makeScene("gauge-block")).render({});
    int columnsAt[4] = {};  // of the table and the three steps
    for (const TruePoint& truth : frame.truth) {
        if (!truth.visible) continue;
        const double height = sensor.tableDistance - truth.point.z;
        const int step = static_cast<int>(std::floor(height / 5.0 + 0.5));
        ASSERT_GE(step, 0);
        ASSERT_LE(step, 3);
        EXPECT_NEAR(height, 5.0 * step, 1e-9);
        ++columnsAt[step];
    }
    for (int columns : columnsAt) EXPECT_GT(columns, 250);
}

TEST(Hemisphere, IsPartOfASphereOfTwentyMillimetres) {
    const Sensor sensor = scenes::standardSensor();
    const Frame frame = Renderer(sensor, makeScene("hemisphere")).render({.frame = 30});  // 12 mm: the middle
    int onSphere = 0;
    for (const TruePoint& truth : frame.truth) {
        const double height = sensor.tableDistance - truth.point.z;
        if (!truth.visible || height < 1e-6) continue;
        EXPECT_NEAR(std::hypot(truth.point.x, height), 20.0, 1e-6);
        ++onSphere;
    }
    EXPECT_GT(onSphere, 500);
}

TEST(Dark, ShowsNoStripe) {
    const Frame frame = Renderer(scenes::standardSensor(), makeScene("dark")).render({});
    EXPECT_TRUE(
        std::none_of(frame.truth.begin(), frame.truth.end(), [](const TruePoint& truth) { return truth.visible; }));
    EXPECT_LT(*std::max_element(frame.pixels.begin(), frame.pixels.end()), 30);
}

TEST(Ambient, HasABackgroundFrom34To56GreyLevels) {
    Scene scene = makeScene("ambient");
    scene.look.peak = 0.0;
    const Frame frame = Renderer(scenes::standardSensor(), scene).render({});
    const auto [lowest, highest] = std::minmax_element(frame.pixels.begin(), frame.pixels.end());
    EXPECT_EQ(*lowest, 34);
    EXPECT_EQ(*highest, 56);
}

TEST(Noisy, ReachesFromBlackToWhiteWithoutAnyStripe) {
    Scene scene = makeScene("noisy");
    scene.look.peak = 0.0;
    const Frame frame = Renderer(scenes::standardSensor(), scene).render({});
    const auto above = [&frame](int threshold) {
        return std::count_if(frame.pixels.begin(), frame.pixels.end(),
                             [threshold](int pixel) { return pixel > threshold; });
    };
    EXPECT_LT(above(0), static_cast<std::ptrdiff_t>(frame.pixels.size()));
    EXPECT_GT(above(60), 400000);
    EXPECT_GT(above(180), 500);
}

TEST(Hard, HasEveryDisturbanceAndNoiseOfUpTo25GreyLevels) {
    const scenes::StripeLook look = makeScene("hard").look;
    EXPECT_GT(look.reflection, 0.0);
    EXPECT_GT(look.dropoutShare, 0.0);
    EXPECT_GT(look.specksPerColumn, 0.0);
    EXPECT_GT(look.shine, 0.0);
    EXPECT_NEAR(look.noise * 4.88, 25.0, 1.0);  // the noise never exceeds 1020 / 209.02 standard deviations
}
