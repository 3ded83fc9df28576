// Runs on the simulated sensor: what is written, and how well it measures.

#include <cmath>
#include <map>

#include "HostProgram.h"
#include "PictureFiles.h"
#include "Results.h"
#include "scenes/SimulatedSensor.h"

namespace host_tests {
namespace {

using SimulatedRun = HostTest;

const char* const kNoFilters = R"("Outlierdetect1": {"Enabled": false}, "medianfilter1": {"Enabled": false})";

TEST_F(SimulatedRun, WithoutArgumentsButTheNumberOfFramesMeasuresTheGaugeBlock) {
    const Outcome outcome = run("--frames 3");
    ASSERT_EQ(outcome.status, 0) << outcome.err;
    EXPECT_EQ(outcome.err, "") << "no progress bar where nobody watches";
    EXPECT_NE(outcome.out.find("gauge-block"), std::string::npos) << outcome.out;
    EXPECT_NE(outcome.out.find("results in korvane-output"), std::string::npos) << outcome.out;

    std::vector<std::string> expected{"korvane-output", "korvane-output/cloud.ply", "korvane-output/profiles.csv",
                                      "korvane-output/summary.json"};
#if KORVANE_HOST_PICTURES
    expected = {"korvane-output",
                "korvane-output/cloud.ply",
                "korvane-output/heightmap.png",
                "korvane-output/overlay_0000.png",
                "korvane-output/overlay_0001.png",
                "korvane-output/overlay_0002.png",
                "korvane-output/profile_0000.png",
                "korvane-output/profile_0001.png",
                "korvane-output/profile_0002.png",
                "korvane-output/profiles.csv",
                "korvane-output/summary.json"};
    const RgbPicture overlay = readRgb(file("korvane-output/overlay_0001.png"));
    EXPECT_EQ(overlay.width, 1280);
    EXPECT_EQ(overlay.height, 1024);
    EXPECT_GT(readRgb(file("korvane-output/profile_0001.png")).width, 0);
    EXPECT_GT(readRgb(file("korvane-output/heightmap.png")).width, 0);
#endif
    EXPECT_EQ(everything(), expected);
    EXPECT_EQ(readProfiles(file("korvane-output/profiles.csv")).size(), 3u * 1280u);
}

TEST_F(SimulatedRun, ProfilesHoldOneLinePerFrameAndColumnInOrder) {
    writeSmallSettings();
    ASSERT_EQ(run("--settings small.json --frames 4 --output out").status, 0);
    const std::vector<CsvPoint> points = readProfiles(file("out/profiles.csv"));
    ASSERT_EQ(points.size(), 4u * kSmallWidth);
    for (std::size_t i = 0; i < points.size(); ++i) {
        EXPECT_EQ(points[i].frame, static_cast<int>(i) / kSmallWidth);
        EXPECT_EQ(points[i].column, static_cast<int>(i) % kSmallWidth);
    }
}

TEST_F(SimulatedRun, CloudHoldsTheValidPointsWithTravelAsSecondCoordinate) {
    writeSmallSettings(R"("TravelPerFrame": 0.25)");
    ASSERT_EQ(run("--settings small.json --frames 4 --output out").status, 0);
    std::vector<CsvPoint> valid;
    for (const CsvPoint& point : readProfiles(file("out/profiles.csv")))
        if (point.valid) valid.push_back(point);
    const std::vector<PlyPoint> cloud = readCloud(file("out/cloud.ply"));
    ASSERT_GT(valid.size(), 3u * kSmallWidth) << "most columns see the stripe";
    ASSERT_EQ(cloud.size(), valid.size());
    for (std::size_t i = 0; i < valid.size(); ++i) {
        EXPECT_EQ(cloud[i].x, static_cast<float>(valid[i].x));
        EXPECT_EQ(cloud[i].z, static_cast<float>(valid[i].z));
        EXPECT_NEAR(static_cast<double>(cloud[i].y), 0.25 * valid[i].frame, 1e-6);
    }
}

TEST_F(SimulatedRun, EveryPointLiesInTheLightPlaneThatCalRTPutAcrossTheOutputYAxis) {
    writeSmallSettings();
    ASSERT_EQ(run("--settings small.json --write-settings all.json").status, 0);
    const nlohmann::json plane = json("all.json")["Calibration"]["LaserPlane"];
    const double c0 = plane[0];
    const double c1 = plane[1];
    const double c2 = plane[2];
    const double y = c0 / c2 - std::copysign(c0 / std::sqrt(c1 * c1 + c2 * c2 + 1.0), c2);

    ASSERT_EQ(run("--settings small.json --frames 2 --output out").status, 0);
    int valid = 0;
    for (const CsvPoint& point : readProfiles(file("out/profiles.csv")))
        if (point.valid) {
            EXPECT_NEAR(point.y, y, 1e-9);
            ++valid;
        }
    EXPECT_GT(valid, kSmallWidth);
}

// One row is about 0.125 mm of height; a centroid of a clean stripe is good to well below a tenth of a row.
TEST_F(SimulatedRun, GaugeBlockIsMeasuredToTenMicrometresRmsWithoutFilters) {
    writeText(file("plain.json"), std::string("{\"Chain\": {") + kNoFilters + "}}");
    ASSERT_EQ(run("--settings plain.json --frames 5 --pictures none").status, 0);
    const nlohmann::json summary = json("korvane-output/summary.json");
    EXPECT_EQ(summary["method"], "Cal2DPoint1");
    const nlohmann::json error = summary["error"]["unfiltered"];
    EXPECT_EQ(error, summary["error"]["filtered"]);
    EXPECT_LT(error["rms"].get<double>(), 0.010);
    EXPECT_LT(std::abs(error["bias"].get<double>()), 0.001);
    EXPECT_LT(error["maximum"].get<double>(), 0.040);
    EXPECT_GT(error["compared"].get<int>(), 5 * 1280 * 97 / 100);
    EXPECT_EQ(error["withoutTruth"], 0);
}

TEST_F(SimulatedRun, ReportedErrorIsWhatTheWrittenProfilesShowAgainstTheTruth) {
    writeSmallSettings();
    ASSERT_EQ(run("--settings small.json --frames 3 --seed 7 --output out").status, 0);

    const scenes::Sensor sensor =
        scenes::withRoi(scenes::standardSensor(), kSmallOffsetX, kSmallOffsetY, kSmallWidth, kSmallHeight);
    const scenes::Renderer renderer(sensor, scenes::makeScene("gauge-block"));
    std::map<int, std::vector<scenes::TruePoint>> truth;
    for (int frame = 0; frame < 3; ++frame) {
        scenes::Shot shot;
        shot.frame = frame;
        shot.seed = 7;
        truth[frame] = renderer.render(shot).truth;
    }
    double sum = 0.0;
    double sumOfSquares = 0.0;
    double maximum = 0.0;
    int compared = 0;
    int missed = 0;
    for (const CsvPoint& point : readProfiles(file("out/profiles.csv"))) {
        const scenes::TruePoint& column = truth[point.frame][static_cast<std::size_t>(point.column)];
        if (column.visible && !point.valid) ++missed;
        if (!column.visible || !point.valid) continue;
        const double error = point.z - column.point.z;
        sum += error;
        sumOfSquares += error * error;
        maximum = std::max(maximum, std::abs(error));
        ++compared;
    }
    ASSERT_GT(compared, 0);
    const nlohmann::json error = json("out/summary.json")["error"]["filtered"];
    EXPECT_EQ(error["compared"], compared);
    EXPECT_EQ(error["missed"], missed);
    EXPECT_NEAR(error["bias"].get<double>(), sum / compared, 1e-12);
    EXPECT_NEAR(error["rms"].get<double>(), std::sqrt(sumOfSquares / compared), 1e-12);
    EXPECT_EQ(error["maximum"].get<double>(), maximum);
}

TEST_F(SimulatedRun, BentLightSheetIsMeasuredByCal3DPoint2) {
    writeSmallSettings(std::string(R"("Cal3D": "Cal3DPoint2", )") + kNoFilters);
    ASSERT_EQ(run("--settings small.json --frames 2 --output out").status, 0);
    const nlohmann::json error = json("out/summary.json")["error"]["unfiltered"];
    EXPECT_LT(error["rms"].get<double>(), 0.015);
    EXPECT_GT(error["compared"].get<int>(), kSmallWidth);
}

TEST_F(SimulatedRun, EveryMethodRunsByItsPublicName) {
    writeSmallSettings();
    for (const std::string method :
         {"Cal2DPoint1", "Cal2DPoint1_1", "Cal2DPoint2", "Cal2DPoint2_1", "Cal2DPoint3", "Cal2DPoint4"}) {
        SCOPED_TRACE(method);
        const Outcome outcome = run("--settings small.json --frames 1 --method " + method + " --output " + method);
        ASSERT_EQ(outcome.status, 0) << outcome.err;
        const nlohmann::json summary = json(method + "/summary.json");
        EXPECT_EQ(summary["method"], method);
        EXPECT_TRUE(summary["secondsPerFrame"].contains(method));
        EXPECT_GT(summary["measured"].get<int>(), kSmallWidth / 2);
        EXPECT_LT(summary["error"]["filtered"]["rms"].get<double>(), 0.1);
    }
}

TEST_F(SimulatedRun, EveryStageThatIsSwitchedOnRunsAndNoOther) {
    const std::vector<std::string> stages{"MergeImg",       "CalcImageBuffer", "GaussianBlur",   "Otsu2",
                                          "Otsu3",          "Outlierdetect1",  "Outlierdetect2", "medianfilter1",
                                          "Gaussianfilter", "Downsample",      "AutoExposure"};
    for (const std::string& chosen : stages) {
        SCOPED_TRACE(chosen);
        std::string chain;
        for (const std::string& stage : stages)
            chain +=
                (chain.empty() ? "\"" : ", \"") + stage + "\": {\"Enabled\": " + (stage == chosen ? "true}" : "false}");
        writeSmallSettings(chain);
        const Outcome outcome = run("--settings small.json --frames 3 --pictures 1 --output out");
        ASSERT_EQ(outcome.status, 0) << outcome.err;
        const nlohmann::json summary = json("out/summary.json");
        for (const std::string& stage : stages)
            EXPECT_EQ(summary["secondsPerFrame"].contains(stage), stage == chosen) << stage;
        EXPECT_GT(summary["measured"].get<int>(), kSmallWidth);
    }
}

TEST_F(SimulatedRun, DownsamplingThinsTheCloudButNotTheProfiles) {
    writeSmallSettings(R"("Downsample": {"Enabled": true, "Step": 0.5})");
    ASSERT_EQ(run("--settings small.json --frames 2 --output out").status, 0);
    EXPECT_EQ(readProfiles(file("out/profiles.csv")).size(), 2u * kSmallWidth);
    // About 12.5 mm of profile in steps of 0.5 mm, and not a column's distance of 0.06 mm.
    const std::size_t count = readCloud(file("out/cloud.ply")).size();
    EXPECT_GT(count, 2u * 20u);
    EXPECT_LT(count, 2u * 32u);
}

TEST_F(SimulatedRun, ExposureIsDrivenToTheTargetWidthFromTooDarkAndTooBright) {
    const scenes::Sensor sensor =
        scenes::withRoi(scenes::standardSensor(), kSmallOffsetX, kSmallOffsetY, kSmallWidth, kSmallHeight);
    const scenes::Renderer renderer(sensor, scenes::makeScene("gauge-block"));
    // Pixels of 206 or more in a column, as a mean over the columns that have one.
    const auto brightWidth = [&](double exposure) {
        scenes::Shot shot;
        shot.exposure = exposure;
        const std::vector<unsigned char> pixels = renderer.render(shot).pixels;
        int columns = 0;
        int bright = 0;
        for (std::size_t column = 0; column < kSmallWidth; ++column) {
            int inColumn = 0;
            for (std::size_t row = 0; row < kSmallHeight; ++row)
                inColumn += pixels[row * kSmallWidth + column] >= 206 ? 1 : 0;
            bright += inColumn;
            columns += inColumn > 0 ? 1 : 0;
        }
        return columns > 0 ? static_cast<double>(bright) / columns : 0.0;
    };

    const double target = 3.0;
    writeSmallSettings(R"("AutoExposure": {"Enabled": true, "Target": 3.0, "MinExposure": 0.1, "MaxExposure": 9.0})");
    for (const std::string start : {"0.2", "8"}) {
        SCOPED_TRACE(start);
        EXPECT_GT(std::abs(brightWidth(number(start)) - target), 1.0) << "a start far from the target";
        ASSERT_EQ(run("--settings small.json --frames 60 --pictures none --output out --exposure " + start).status, 0);
        const nlohmann::json exposures = json("out/summary.json")["exposures"];
        ASSERT_EQ(exposures.size(), 61u);
        EXPECT_EQ(exposures[0], number(start));
        EXPECT_NEAR(brightWidth(exposures[60].get<double>()), target, 0.3);
    }
}

TEST_F(SimulatedRun, PartThatStandsStillOrMovesBackwardsIsDrawnToo) {
    for (const std::string travel : {"0", "-0.5"}) {
        SCOPED_TRACE(travel);
        writeSmallSettings("\"TravelPerFrame\": " + travel);
        const Outcome outcome = run("--settings small.json --frames 2 --output out");
        EXPECT_EQ(outcome.status, 0);
        EXPECT_EQ(outcome.err, "");
    }
}

TEST_F(SimulatedRun, SameSeedYieldsTheSameFilesAndAnotherSeedOthers) {
    writeSmallSettings();
    ASSERT_EQ(run("--settings small.json --frames 2 --seed 3 --output a").status, 0);
    ASSERT_EQ(run("--settings small.json --frames 2 --seed 3 --output b").status, 0);
    ASSERT_EQ(run("--settings small.json --frames 2 --seed 4 --output c").status, 0);
    EXPECT_EQ(contents(file("a/profiles.csv")), contents(file("b/profiles.csv")));
    EXPECT_EQ(contents(file("a/cloud.ply")), contents(file("b/cloud.ply")));
    EXPECT_NE(contents(file("a/profiles.csv")), contents(file("c/profiles.csv")));
}

TEST_F(SimulatedRun, ReplacesTheResultsOfAnEarlierRunAndNothingElse) {
    writeSmallSettings();
    ASSERT_EQ(run("--settings small.json --frames 3 --pictures all --output out").status, 0);
    writeText(file("out/notes.txt"), "mine");
    ASSERT_EQ(run("--settings small.json --frames 1 --pictures none --output out").status, 0);
    EXPECT_EQ(contents(file("out/notes.txt")), "mine");
    EXPECT_FALSE(fs::exists(file("out/overlay_0002.png")));
    EXPECT_EQ(readProfiles(file("out/profiles.csv")).size(), 1u * kSmallWidth);
}

TEST_F(SimulatedRun, ListsScenesAndShowsTheVersion) {
    const Outcome list = run("--list-scenes");
    EXPECT_EQ(list.status, 0);
    for (const std::string& name : scenes::sceneNames()) EXPECT_NE(list.out.find(name), std::string::npos);
    const Outcome version = run("--version");
    EXPECT_EQ(version.status, 0);
    EXPECT_EQ(version.out, "V0.00.01\n");
    EXPECT_EQ(run("--help").status, 0);
    EXPECT_EQ(everything(), std::vector<std::string>{});
}

#if KORVANE_HOST_PICTURES
TEST_F(SimulatedRun, OverlayMarksTheStripeAndLeavesTheRestGrey) {
    writeSmallSettings();
    ASSERT_EQ(run("--settings small.json --frames 1 --pictures 0 --output out").status, 0);
    const RgbPicture overlay = readRgb(file("out/overlay_0000.png"));
    ASSERT_EQ(overlay.width, kSmallWidth);
    ASSERT_EQ(overlay.height, kSmallHeight);

    const scenes::Sensor sensor =
        scenes::withRoi(scenes::standardSensor(), kSmallOffsetX, kSmallOffsetY, kSmallWidth, kSmallHeight);
    const auto truth = scenes::Renderer(sensor, scenes::makeScene("gauge-block")).render({}).truth;
    int marked = 0;
    for (int column = 0; column < overlay.width; ++column) {
        double weight = 0.0;
        double weightedRow = 0.0;
        for (int row = 0; row < overlay.height; ++row) {
            const unsigned char* pixel = &overlay.bytes[static_cast<std::size_t>(3 * (row * overlay.width + column))];
            const double redness = pixel[0] - pixel[1];
            weight += redness;
            weightedRow += redness * row;
        }
        const scenes::TruePoint& point = truth[static_cast<std::size_t>(column)];
        if (weight <= 0.0 || !point.visible) continue;
        EXPECT_NEAR(weightedRow / weight, point.row - kSmallOffsetY, 0.5) << "column " << column;
        ++marked;
    }
    EXPECT_GT(marked, kSmallWidth * 9 / 10);
}
#endif

}  // namespace
}  // namespace host_tests
