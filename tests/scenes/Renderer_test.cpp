#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <utility>
#include <vector>

#include "HandSensor.h"
#include "support/Checksum.h"

using scenes::Frame;
using scenes::Renderer;
using scenes::Scene;
using scenes::Sensor;
using scenes::Shot;

namespace {

/// A scene of which the camera sees no surface, so no stripe.
Scene emptyScene() {
    return cleanScene([](double, double) { return -1000.0; });
}

double meanOf(const std::vector<unsigned char>& pixels) {
    double sum = 0.0;
    for (int pixel : pixels) sum += pixel;
    return sum / static_cast<double>(pixels.size());
}

std::uint64_t checksum(const std::vector<unsigned char>& bytes) {
    support::Checksum sum;
    sum.add(bytes.data(), bytes.size());
    return sum.value();
}

}  // namespace

TEST(Frame, HasOneBytePerPixelAndOneTruthPerColumn) {
    const Sensor sensor = scenes::withRoi(handSensor(), 3, 5, 37, 211);
    const Frame frame = Renderer(sensor, cleanTable()).render({});
    EXPECT_EQ(frame.pixels.size(), 37U * 211U);
    EXPECT_EQ(frame.truth.size(), 37U);
}

TEST(Frame, OfAnEmptyRegionIsEmpty) {
    for (const auto& [width, height] : {std::pair{0, 10}, std::pair{-4, 10}, std::pair{0, 0}}) {
        const Frame frame = Renderer(scenes::withRoi(handSensor(), 0, 0, width, height), cleanTable()).render({});
        EXPECT_TRUE(frame.pixels.empty());
        EXPECT_TRUE(frame.truth.empty());
    }
    const Frame flat = Renderer(scenes::withRoi(handSensor(), 0, 0, 5, -1), cleanTable()).render({});
    EXPECT_TRUE(flat.pixels.empty());
    EXPECT_EQ(flat.truth.size(), 5U);
}

TEST(Stripe, HasAGaussianCrossSectionAroundTheTrueRow) {
    Scene scene = cleanTable();
    scene.look.peak = 200.0;
    scene.look.sigmaRows = 2.5;
    scene.look.background = 10.0;
    const Sensor sensor = handSensor();
    const Frame frame = Renderer(sensor, scene).render({});
    for (int row = 0; row < sensor.roi.Height; ++row) {
        const double distance = (row - kHandTableRow) / 2.5;
        const double level = 10.0 + 200.0 * std::exp(-0.5 * distance * distance);
        EXPECT_EQ(pixelOf(frame, sensor, row, 100), static_cast<int>(std::floor(level + 0.5))) << "row " << row;
    }
}

TEST(Stripe, SaturatesAt255OverTheRowsThatTheFormulaTells) {
    Scene scene = cleanTable();
    scene.look.peak = 1000.0;
    scene.look.sigmaRows = 2.0;
    scene.look.background = 8.0;
    const Sensor sensor = handSensor();
    const Frame frame = Renderer(sensor, scene).render({});
    // 8 + 1000 exp(-d^2 / 8) rounds to 255 or more where it is at least 254.5.
    const double reach = 2.0 * std::sqrt(2.0 * std::log(1000.0 / 246.5));
    for (int row = 0; row < sensor.roi.Height; ++row) {
        const bool saturated = std::fabs(row - kHandTableRow) <= reach;
        EXPECT_EQ(pixelOf(frame, sensor, row, 320) == 255, saturated) << "row " << row;
    }
}

TEST(Stripe, GrowsWithTheExposureAsTheBackgroundDoes) {
    Scene scene = cleanTable();
    scene.look.peak = 100.0;
    scene.look.background = 10.0;
    const Sensor sensor = handSensor();
    const Renderer renderer(sensor, scene);
    const Frame once = renderer.render({});
    const Frame twice = renderer.render({.exposure = 2.0});
    const int row = static_cast<int>(std::floor(kHandTableRow + 0.5));
    EXPECT_EQ(pixelOf(once, sensor, 5, 5), 10);
    EXPECT_EQ(pixelOf(twice, sensor, 5, 5), 20);
    EXPECT_NEAR(pixelOf(twice, sensor, row, 5), 2 * pixelOf(once, sensor, row, 5), 1);
    EXPECT_GT(pixelOf(once, sensor, row, 5), 100);
}

TEST(Flicker, ScattersTheBrightnessFromFrameToFrame) {
    Scene scene = emptyScene();
    scene.look.background = 120.0;
    const Renderer renderer(scenes::withRoi(handSensor(), 0, 0, 4, 4), scene);
    constexpr int kFrames = 2000;
    double sum = 0.0;
    double squares = 0.0;
    for (int frame = 0; frame < kFrames; ++frame) {
        const double factor = meanOf(renderer.render({.frame = frame, .flicker = 0.1}).pixels) / 120.0;
        sum += factor;
        squares += factor * factor;
    }
    const double mean = sum / kFrames;
    EXPECT_NEAR(mean, 1.0, 0.01);
    EXPECT_NEAR(std::sqrt(squares / kFrames - mean * mean), 0.1, 0.01);
}

TEST(Reflection, LiesItsRowsBelowTheStripeAtItsShareOfTheBrightness) {
    Scene scene = cleanTable();
    scene.look.peak = 200.0;
    scene.look.background = 0.0;
    scene.look.reflection = 0.5;
    scene.look.reflectionRows = 40.25;
    const Sensor sensor = handSensor();
    const Frame frame = Renderer(sensor, scene).render({});
    const auto sums = [&](double centre) {
        double sum = 0.0;
        double moment = 0.0;
        for (int row = static_cast<int>(centre) - 15; row <= static_cast<int>(centre) + 15; ++row) {
            sum += pixelOf(frame, sensor, row, 50);
            moment += row * pixelOf(frame, sensor, row, 50);
        }
        return std::pair{sum, moment / sum};
    };
    const auto [firstSum, firstRow] = sums(kHandTableRow);
    const auto [secondSum, secondRow] = sums(kHandTableRow + 40.25);
    EXPECT_NEAR(secondRow - firstRow, 40.25, 0.02);
    EXPECT_NEAR(secondSum / firstSum, 0.5, 0.01);
    EXPECT_NEAR(frame.truth[50].row, kHandTableRow, 1e-9) << "the truth is the first stripe";
}

TEST(Dropouts, TakeTheirShareOfTheColumnsInGapsOfSeveral) {
    Scene scene = cleanTable();
    scene.look.dropoutShare = 0.2;
    const Renderer renderer(scenes::withRoi(handSensor(), 0, 200, 640, 40), scene);
    constexpr int kFrames = 60;
    int missing = 0;
    for (int number = 0; number < kFrames; ++number) {
        const Frame frame = renderer.render({.frame = number});
        int gap = 0;
        for (int column = 0; column < 640; ++column) {
            if (frame.truth[static_cast<std::size_t>(column)].visible) {
                EXPECT_TRUE(gap == 0 || gap >= 3) << "a gap of " << gap << " columns";
                gap = 0;
            } else {
                ++gap;
                ++missing;
            }
        }
    }
    EXPECT_NEAR(missing / (kFrames * 640.0), 0.2, 0.02);
}

TEST(Dropouts, LeaveTheBackgroundAndTheReflection) {
    Scene scene = cleanTable();
    scene.look.dropoutShare = 1.0;
    scene.look.reflection = 0.5;
    scene.look.background = 8.0;
    const Sensor sensor = handSensor();
    const Frame frame = Renderer(sensor, scene).render({});
    const int row = static_cast<int>(std::floor(kHandTableRow + 0.5));
    for (int column = 0; column < 640; ++column) {
        EXPECT_FALSE(frame.truth[static_cast<std::size_t>(column)].visible);
        EXPECT_EQ(pixelOf(frame, sensor, row, column), 8);
        EXPECT_GT(pixelOf(frame, sensor, row + 60, column), 100);
    }
}

TEST(Shine, WidensAndSaturatesItsShareOfTheColumns) {
    Scene scene = cleanTable();
    scene.look.shine = 0.3;
    scene.look.peak = 200.0;
    const Sensor sensor = handSensor();
    const Renderer renderer(sensor, scene);
    int glints = 0;
    for (int number = 0; number < 20; ++number) {
        const Frame frame = renderer.render({.frame = number});
        for (int column = 0; column < 640; ++column) {
            int saturated = 0;
            for (int row = 0; row < sensor.roi.Height; ++row)
                saturated += pixelOf(frame, sensor, row, column) == 255 ? 1 : 0;
            EXPECT_TRUE(saturated == 0 || saturated >= 10) << saturated << " saturated pixels";
            EXPECT_TRUE(frame.truth[static_cast<std::size_t>(column)].visible);
            glints += saturated > 0 ? 1 : 0;
        }
    }
    EXPECT_NEAR(glints / (20.0 * 640.0), 0.3, 0.05);
}

TEST(Specks, AppearInTheirMeanNumber) {
    Scene scene = emptyScene();
    scene.look.background = 0.0;
    scene.look.specksPerColumn = 0.01;
    const Sensor sensor = handSensor();
    const Renderer renderer(sensor, scene);
    constexpr int kFrames = 50;
    int specks = 0;
    for (int number = 0; number < kFrames; ++number) {
        const Frame frame = renderer.render({.frame = number});
        // A speck is brightest in its middle column: count the peaks down each column that beat both neighbours.
        for (int row = 1; row + 1 < sensor.roi.Height; ++row) {
            for (int column = 1; column + 1 < sensor.roi.Width; ++column) {
                const int level = pixelOf(frame, sensor, row, column);
                const bool peak = level > 40 && level >= pixelOf(frame, sensor, row - 1, column) &&
                                  level > pixelOf(frame, sensor, row + 1, column) &&
                                  level > pixelOf(frame, sensor, row, column - 1) &&
                                  level > pixelOf(frame, sensor, row, column + 1);
                specks += peak ? 1 : 0;
            }
        }
    }
    EXPECT_NEAR(specks, 0.01 * 640 * kFrames, 60);  // a bit over three standard errors: sqrt(320) = 18
}

TEST(Background, RipplesAroundItsMeanByTheRangeAskedFor) {
    Scene scene = emptyScene();
    scene.look.background = 100.0;
    scene.look.backgroundRipple = 40.0;
    const Frame frame = Renderer(handSensor(), scene).render({});
    const auto [lowest, highest] = std::minmax_element(frame.pixels.begin(), frame.pixels.end());
    EXPECT_NEAR(*lowest, 80, 1);
    EXPECT_NEAR(*highest, 120, 1);
}

TEST(Noise, HasTheMeanAndTheDeviationAskedFor) {
    Scene scene = emptyScene();
    scene.look.background = 100.0;
    scene.look.noise = 5.0;
    const Frame frame = Renderer(handSensor(), scene).render({});
    const double mean = meanOf(frame.pixels);
    double squares = 0.0;
    int mostExtreme = 0;
    for (int pixel : frame.pixels) {
        squares += (pixel - mean) * (pixel - mean);
        mostExtreme = std::max(mostExtreme, std::abs(pixel - 100));
    }
    // Rounding adds 1/12 to the variance; 256 000 pixels.
    EXPECT_NEAR(mean, 100.0, 0.04);
    EXPECT_NEAR(squares / static_cast<double>(frame.pixels.size()), 25.0 + 1.0 / 12.0, 0.3);
    EXPECT_LE(mostExtreme, 25);
    EXPECT_GE(mostExtreme, 19);
}

TEST(Noise, OfNeighboursAndOfFramesIsIndependent) {
    Scene scene = emptyScene();
    scene.look.background = 100.0;
    scene.look.noise = 5.0;
    const Renderer renderer(handSensor(), scene);
    const auto first = renderer.render({.frame = 0}).pixels;
    const auto second = renderer.render({.frame = 1}).pixels;
    double nextColumn = 0.0;
    double nextRow = 0.0;
    double nextFrame = 0.0;
    const std::size_t count = first.size() - 640;
    for (std::size_t i = 0; i < count; ++i) {
        nextColumn += (first[i] - 100.0) * (first[i + 1] - 100.0);
        nextRow += (first[i] - 100.0) * (first[i + 640] - 100.0);
        nextFrame += (first[i] - 100.0) * (second[i] - 100.0);
    }
    const double scale = 25.0 * static_cast<double>(count);
    EXPECT_NEAR(nextColumn / scale, 0.0, 0.01);  // five standard errors
    EXPECT_NEAR(nextRow / scale, 0.0, 0.01);
    EXPECT_NEAR(nextFrame / scale, 0.0, 0.01);
}

TEST(Seed, TheSameShotGivesTheSameFrameAndAnotherSeedAnother) {
    const Scene scene = scenes::makeScene("hard");
    const Sensor sensor = scenes::standardSensor();
    const Shot shot{.frame = 4, .seed = 11, .flicker = 0.1};
    Renderer renderer(sensor, scene);
    const Frame first = renderer.render(shot);
    renderer.render({.frame = 5});
    const Frame again = renderer.render(shot);
    const Frame elsewhere = Renderer(sensor, scene).render(shot);
    EXPECT_EQ(first.pixels, again.pixels);
    EXPECT_EQ(first.pixels, elsewhere.pixels);
    for (std::size_t column = 0; column < first.truth.size(); ++column)
        EXPECT_EQ(first.truth[column].row, again.truth[column].row);

    EXPECT_NE(first.pixels, renderer.render({.frame = 4, .seed = 12, .flicker = 0.1}).pixels);
}

TEST(Seed, FramesOfAPartThatStaysTheSameDifferInTheirNoise) {
    Scene scene = cleanTable();
    scene.look.noise = 1.5;
    const Renderer renderer(handSensor(), scene);
    const Frame first = renderer.render({.frame = 0});
    const Frame second = renderer.render({.frame = 1});
    EXPECT_NE(first.pixels, second.pixels);
    EXPECT_EQ(first.truth[9].row, second.truth[9].row);
}

TEST(Travel, IsTheFrameNumberTimesTheStepPlusTheOffset) {
    Scene scene = cleanScene([](double, double travel) { return 0.5 * travel; });
    scene.travelPerFrame = 0.5;
    const Frame frame = Renderer(handSensor(), scene).render({.frame = 6, .travelOffset = 1.25});
    ASSERT_TRUE(frame.truth[320].visible);
    EXPECT_NEAR(frame.truth[320].point.z, 230.0 - 0.5 * 4.25, 1e-9);
}

// The expected values were the same from GCC 12 without and with full optimisation and from Clang 14. Any arithmetic
// that differs from one compiler or system to another shows here.
TEST(Frame, IsTheSameBytesOnEveryCompilerAndSystem) {
    const Frame hard =
        Renderer(scenes::standardSensor(), scenes::makeScene("hard")).render({.frame = 7, .seed = 3, .flicker = 0.05});
    EXPECT_EQ(checksum(hard.pixels), 0xC4C298D1AFF415D3ULL);
    const Frame bead = Renderer(scenes::curvedSheetSensor(), scenes::makeScene("weld-bead")).render({.frame = 2});
    EXPECT_EQ(checksum(bead.pixels), 0xE8AFA03434656A2BULL);
}
