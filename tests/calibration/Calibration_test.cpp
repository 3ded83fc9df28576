// Runs the calibration and holds what it has written against the simulated sensor's truth: directly, and through the
// host, which measures with it.

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <sstream>
#include <string>
#include <vector>

#include "host/HostProgram.h"
#include "host/Results.h"
#include "scenes/SensorGeometry.h"
#include "scenes/SimulatedSensor.h"

namespace {

using host_tests::contents;
using host_tests::lines;
using host_tests::Outcome;
using Json = nlohmann::json;

class Calibration : public host_tests::HostTest {
protected:
    Outcome calibrate(const std::string& arguments) {
        return runShell("\"" KORVANE_CALIBRATION_PROGRAM "\" " + arguments);
    }

    /// Expects status 2, nothing on standard output, one line on standard error with all these words, no new file.
    void expectRefused(const std::string& arguments, const std::vector<std::string>& words) {
        SCOPED_TRACE(arguments);
        const std::vector<std::string> before = everything();
        const Outcome outcome = calibrate(arguments);
        EXPECT_EQ(outcome.status, 2);
        EXPECT_EQ(outcome.out, "");
        EXPECT_EQ(lines(outcome.err).size(), 1U) << outcome.err;
        for (const std::string& word : words)
            EXPECT_NE(outcome.err.find(word), std::string::npos) << "'" << word << "' is not in: " << outcome.err;
        EXPECT_EQ(everything(), before);
    }

    /// The host's figures for ten frames of the gauge block without filters, mm.
    Json measuredByHost(const std::string& arguments) {
        const Outcome outcome = run(arguments + " --frames 10 --pictures none --output measured");
        EXPECT_EQ(outcome.status, 0) << outcome.err;
        return json("measured/summary.json")["error"]["unfiltered"];
    }
};

/// The true sensor, with the calibration of a file.
scenes::Sensor withCalibration(scenes::Sensor sensor, const Json& file) {
    const Json& calibration = file["Calibration"];
    for (std::size_t i = 0; i < 6; ++i) sensor.calibration.LaserPlane[i] = calibration["LaserPlane"][i];
    for (std::size_t i = 0; i < 12; ++i) sensor.calibration.RT[i] = calibration["RT"][i];
    return sensor;
}

/// Largest difference of z between two calibrations over the part of the field that holds 0 .. 20 mm of height, mm.
double largestDifference(const scenes::Sensor& truth, const scenes::Sensor& found) {
    double largest = 0.0;
    int compared = 0;
    for (int column = 80; column < 1360; column += 16)
        for (int row = 28; row < 1052; row += 8) {
            const double z = scenes::sheetPoint(truth, column, row).z;
            if (z > truth.tableDistance || z < truth.tableDistance - 20.0) continue;
            largest = std::max(largest, std::abs(scenes::sheetPoint(found, column, row).z - z));
            ++compared;
        }
    EXPECT_GT(compared, 1000);
    return largest;
}

/// The numbers that follow a name at the start of a line of the report.
std::vector<double> numbersAfter(const std::string& report, const std::string& name) {
    for (const std::string& line : lines(report)) {
        const std::size_t start = line.find_first_not_of(' ');
        if (start == std::string::npos || line.compare(start, name.size(), name) != 0) continue;
        std::istringstream rest(line.substr(start + name.size()));
        std::vector<double> numbers;
        for (std::string word; rest >> word;) {
            char* end = nullptr;
            const double number = std::strtod(word.c_str(), &end);
            if (end != word.c_str()) numbers.push_back(number);
        }
        return numbers;
    }
    ADD_FAILURE() << "no line '" << name << "' in:\n" << report;
    return {};
}

// The residuals are about 7 um in each of more than 11000 points, which leaves well below a micrometre to the plane;
// the centroid's own error repeats with the rows and averages out less well.
constexpr double kFieldTolerance = 0.002;  // mm

TEST_F(Calibration, WithoutArgumentsRecoversTheLightPlaneOfTheFlatSheet) {
    const Outcome outcome = calibrate("");
    ASSERT_EQ(outcome.status, 0) << outcome.err;
    EXPECT_EQ(outcome.err, "");
    std::vector<std::string> expected{"korvane-calibration", "korvane-calibration/calibration.json"};
#if KORVANE_HOST_PICTURES
    expected.push_back("korvane-calibration/residuals.png");
#endif
    EXPECT_EQ(everything(), expected);

    const Json file = json("korvane-calibration/calibration.json");
    EXPECT_EQ(file["Chain"]["Cal3D"], "Cal3DPoint1");
    const scenes::Sensor truth = scenes::standardSensor();
    EXPECT_LT(largestDifference(truth, withCalibration(truth, file)), kFieldTolerance);
    EXPECT_NE(file["Calibration"]["LaserPlane"][2].get<double>(), truth.calibration.LaserPlane[2]) << "found, not told";
}

TEST_F(Calibration, RecoversAllSixCoefficientsOfTheCurvedSheet) {
    ASSERT_EQ(calibrate("--curved --output out").status, 0);
    const Json file = json("out/calibration.json");
    EXPECT_EQ(file["Chain"]["Cal3D"], "Cal3DPoint2");
    const scenes::Sensor truth = scenes::curvedSheetSensor();
    EXPECT_LT(largestDifference(truth, withCalibration(truth, file)), 2.0 * kFieldTolerance);
    // 1 % of the bend across the field; the bends along Y reach over a fifth of that length only.
    EXPECT_NEAR(file["Calibration"]["LaserPlane"][3].get<double>(), 0.004, 4e-5);
    EXPECT_NEAR(file["Calibration"]["LaserPlane"][4].get<double>(), -0.0006, 3e-5);
    EXPECT_NEAR(file["Calibration"]["LaserPlane"][5].get<double>(), 0.0011, 1e-4);
}

TEST_F(Calibration, GaugeBlockIsMeasuredAsWellAsWithTheTrueCalibration) {
    ASSERT_EQ(calibrate("--output flat").status, 0);
    ASSERT_EQ(calibrate("--curved --output curved").status, 0);
    host_tests::writeText(file("bent.json"), R"({"Chain": {"Cal3D": "Cal3DPoint2"}})");

    const Json flat = measuredByHost("--settings flat/calibration.json");
    const Json trueFlat = measuredByHost("");
    EXPECT_NEAR(flat["rms"].get<double>() / trueFlat["rms"].get<double>(), 1.0, 0.03);
    EXPECT_LT(std::abs(flat["bias"].get<double>()), kFieldTolerance);
    EXPECT_EQ(flat["compared"], trueFlat["compared"]);

    const Json curved = measuredByHost("--settings curved/calibration.json");
    const Json trueCurved = measuredByHost("--settings bent.json");
    EXPECT_NEAR(curved["rms"].get<double>() / trueCurved["rms"].get<double>(), 1.0, 0.03);
    EXPECT_LT(std::abs(curved["bias"].get<double>()), kFieldTolerance);
    EXPECT_EQ(curved["compared"], trueCurved["compared"]);
}

TEST_F(Calibration, HostConfirmsTheStatedErrors) {
    for (const std::string sheet : {"", "--curved "}) {
        SCOPED_TRACE(sheet);
        const Outcome outcome = calibrate(sheet + "--output out");
        const std::vector<double> stated = numbersAfter(outcome.out, "this calibration");
        ASSERT_EQ(stated.size(), 3U);
        const Json measured = measuredByHost("--settings out/calibration.json");
        // The report has three decimals of a micrometre.
        EXPECT_NEAR(stated[0], measured["bias"].get<double>() * 1000.0, 0.0006);
        EXPECT_NEAR(stated[1], measured["rms"].get<double>() * 1000.0, 0.0006);
        EXPECT_NEAR(stated[2], measured["maximum"].get<double>() * 1000.0, 0.0006);
    }
}

TEST_F(Calibration, EveryProfilePointHasTheOneYOfThePlaneThatWasFound) {
    ASSERT_EQ(calibrate("--output out").status, 0);
    const Json plane = json("out/calibration.json")["Calibration"]["LaserPlane"];
    const double c0 = plane[0];
    const double c1 = plane[1];
    const double c2 = plane[2];
    const double y = c0 / c2 - c0 / std::sqrt(c1 * c1 + c2 * c2 + 1.0);  // c2 is positive

    ASSERT_EQ(run("--settings out/calibration.json --frames 1 --pictures none --output measured").status, 0);
    int valid = 0;
    for (const host_tests::CsvPoint& point : host_tests::readProfiles(file("measured/profiles.csv")))
        if (point.valid) {
            EXPECT_NEAR(point.y, y, 1e-9);
            ++valid;
        }
    EXPECT_GT(valid, 1000);
}

// With the noise of the views as the only change, a coefficient is off by about the deviation that the report gives it.
TEST_F(Calibration, CoefficientsAreOffByWhatTheNoiseGives) {
    double sumOfSquares = 0.0;
    int samples = 0;
    for (const std::string seed : {"1", "2", "3", "4"}) {
        const Outcome outcome = calibrate("--noise 6 --views 6 --seed " + seed + " --output out");
        ASSERT_EQ(outcome.status, 0) << outcome.err;
        for (const std::string name : {"c0", "c1", "c2"}) {
            const std::vector<double> found = numbersAfter(outcome.out, name);  // found, true, difference, deviation
            ASSERT_EQ(found.size(), 4U);
            EXPECT_NEAR(found[0] - found[1], found[2], 0.06 * std::abs(found[2]) + 1e-9);
            sumOfSquares += found[2] * found[2] / (found[3] * found[3]);
            ++samples;
        }
    }
    const double rms = std::sqrt(sumOfSquares / samples);
    EXPECT_GT(rms, 0.3);
    EXPECT_LT(rms, 2.0);
}

TEST_F(Calibration, EveryExtractionMethodServes) {
    const scenes::Sensor truth = scenes::standardSensor();
    for (const std::string method :
         {"Cal2DPoint1", "Cal2DPoint1_1", "Cal2DPoint2", "Cal2DPoint2_1", "Cal2DPoint3", "Cal2DPoint4"}) {
        SCOPED_TRACE(method);
        ASSERT_EQ(calibrate("--views 4 --method " + method + " --output out").status, 0);
        const Json file = json("out/calibration.json");
        EXPECT_EQ(file["Chain"]["Method"], method);
        EXPECT_LT(largestDifference(truth, withCalibration(truth, file)), 0.01);
    }
}

TEST_F(Calibration, ResidualsOfAPlaneInABentSheetHaveATrend) {
    const std::string warning = "not of the fitted form";
    const Outcome plane = calibrate("--curved --plane --output out");
    ASSERT_EQ(plane.status, 0) << plane.err;
    EXPECT_NE(plane.out.find(warning), std::string::npos) << plane.out;
    EXPECT_EQ(json("out/calibration.json")["Chain"]["Cal3D"], "Cal3DPoint1");
    // The bend is 6 mm of Z over the field; a part of it remains whichever the plane.
    EXPECT_GT(numbersAfter(plane.out, "trend over x").at(0), 1000.0);
    EXPECT_EQ(calibrate("--curved --output out").out.find(warning), std::string::npos);
    EXPECT_EQ(calibrate("--output out").out.find(warning), std::string::npos);
}

TEST_F(Calibration, SameSeedGivesTheSameFilesAndAnotherSeedOthers) {
    ASSERT_EQ(calibrate("--output a --seed 7").status, 0);
    ASSERT_EQ(calibrate("--output b --seed 7").status, 0);
    ASSERT_EQ(calibrate("--output c --seed 8").status, 0);
    EXPECT_EQ(contents(file("a/calibration.json")), contents(file("b/calibration.json")));
    EXPECT_EQ(contents(file("a/residuals.png")), contents(file("b/residuals.png")));
    EXPECT_NE(contents(file("a/calibration.json")), contents(file("c/calibration.json")));
}

TEST_F(Calibration, TwoViewsAtDifferentHeightsAreEnoughForAPlane) {
    ASSERT_EQ(calibrate("--views 2 --tilt 0 --output out").status, 0);
    const scenes::Sensor truth = scenes::standardSensor();
    EXPECT_LT(largestDifference(truth, withCalibration(truth, json("out/calibration.json"))), 2.0 * kFieldTolerance);
}

TEST_F(Calibration, ViewsThatDoNotDetermineTheSurfaceAreRefused) {
    const std::vector<std::string> words{"do not determine the light surface", "heights"};
    expectRefused("--views 1", words);
    expectRefused("--views 5 --tilt 0 --lowest 8 --highest 8", words);
    expectRefused("--views 5 --tilt 0 --lowest 12 --highest 12", words);  // on the optical axis, where Y is 0
    expectRefused("--curved --views 1", words);
    expectRefused("--curved --views 5 --tilt 0 --lowest 8 --highest 8", words);
}

TEST_F(Calibration, ViewWithoutTheStripeIsNamed) {
    expectRefused("--highest 500", {"view 3", "125 mm", "columns"});
    expectRefused("--lowest -300", {"view 1", "-300 mm", "columns"});
}

TEST_F(Calibration, MistakesOnTheCommandLineGetOneLine) {
    expectRefused("--views 0", {"0"});
    expectRefused("--views many", {"many"});
    expectRefused("--lowest nan", {"nan"});
    expectRefused("--tilt 90", {"90"});
    expectRefused("--noise -1", {"-1"});
    expectRefused("--seed -1", {"-1"});
    expectRefused("--method Cal2DPoint9", {"Cal2DPoint9"});
    expectRefused("--plane", {"--curved"});
    expectRefused("--colour red", {"--colour"});
    expectRefused("stray", {"stray"});
}

TEST_F(Calibration, OutputThatCannotBeWrittenIsNamed) {
    host_tests::writeText(file("taken"), "a file, not a folder");
    expectRefused("--views 2 --output taken", {"taken"});
    expectRefused("--views 2 --output taken/inner", {"taken/inner"});
    expectRefused("--views 2 --output \"\"", {"output"});
}

#if KORVANE_HOST_PICTURES && !defined(_WIN32)

// A limit on the size of files stands in for a full disk; the picture goes beyond it.
TEST_F(Calibration, DiskThatFillsUpLeavesNothing) {
    const Outcome outcome = runShell("trap '' XFSZ; ulimit -f 40; \"" KORVANE_CALIBRATION_PROGRAM "\" --output out");
    EXPECT_EQ(outcome.status, 2);
    EXPECT_EQ(lines(outcome.err).size(), 1U) << outcome.err;
    EXPECT_NE(outcome.err.find("disk"), std::string::npos) << outcome.err;
    EXPECT_EQ(everything(), std::vector<std::string>{});
}

#endif

TEST_F(Calibration, HelpSaysThatTheLensIsKnown) {
    const Outcome outcome = calibrate("--help");
    EXPECT_EQ(outcome.status, 0);
    EXPECT_NE(outcome.out.find("lens"), std::string::npos);
    for (const std::string option : {"--curved", "--plane", "--views", "--lowest", "--highest", "--tilt", "--noise",
                                     "--method", "--seed", "--output"})
        EXPECT_NE(outcome.out.find(option), std::string::npos) << option;
}

}  // namespace
