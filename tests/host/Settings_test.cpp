// The settings file: the template that the host writes, and every way to get one wrong.

#include "HostProgram.h"
#include "PictureFiles.h"

namespace host_tests {
namespace {

class SettingsFile : public HostTest {
protected:
    void expectSettingsRejected(const std::string& settings, const std::vector<std::string>& words) {
        SCOPED_TRACE(settings);
        writeText(file("s.json"), settings);
        std::vector<std::string> all{"s.json"};
        all.insert(all.end(), words.begin(), words.end());
        expectRejected("--settings s.json --frames 1 --output out", all);
    }
};

// A calibration that works; single entries are replaced below.
std::string calibration(const std::string& plane = "[300, 0.02, 1.7, 0, 0, 0]", const std::string& focal = "4800",
                        const std::string& dist = "[0, 0, 0, 0, 0]") {
    return R"({"Calibration": {"CameraMatrix": [)" + focal + R"(, 0, 720, 0, 4800, 540, 0, 0, 1], "DistCoeffs": )" +
           dist + R"(, "LaserPlane": )" + plane + R"(, "RT": [1, 0, 0, 0, 1, 0, 0, 0, 1, 0, 0, 0]}})";
}

TEST_F(SettingsFile, TemplateHoldsEveryRecordAndComesBackTheSame) {
    ASSERT_EQ(run("--write-settings a.json").status, 0);
    ASSERT_EQ(run("--settings a.json --write-settings b.json").status, 0);
    EXPECT_EQ(everything(), (std::vector<std::string>{"a.json", "b.json"}));
    EXPECT_EQ(contents(file("a.json")), contents(file("b.json")));

    const nlohmann::json settings = json("a.json");
    EXPECT_EQ(settings["ROI"]["Width"], 1280);
    EXPECT_EQ(settings["Calibration"]["CameraMatrix"].size(), 9u);
    EXPECT_EQ(settings["Calibration"]["DistCoeffs"].size(), 5u);
    EXPECT_EQ(settings["Calibration"]["LaserPlane"].size(), 6u);
    EXPECT_EQ(settings["Calibration"]["RT"].size(), 12u);
    EXPECT_EQ(settings["LineSelect"].size(), 5u);
    EXPECT_EQ(settings["Chain"]["Method"], "Cal2DPoint1");
}

TEST_F(SettingsFile, RunWithTheTemplateIsTheRunWithout) {
    writeSmallSettings();
    ASSERT_EQ(run("--settings small.json --write-settings all.json").status, 0);
    ASSERT_EQ(run("--settings small.json --frames 2 --pictures none --output a").status, 0);
    ASSERT_EQ(run("--settings all.json --frames 2 --pictures none --output b").status, 0);
    EXPECT_EQ(contents(file("a/profiles.csv")), contents(file("b/profiles.csv")));
}

TEST_F(SettingsFile, EveryValueThatIsChangedComesBack) {
    ASSERT_EQ(run("--write-settings a.json").status, 0);
    nlohmann::json changed = json("a.json");
    changed["ROI"] = {{"OffsetX", 101}, {"OffsetY", 102}, {"Width", 103}, {"Height", 104}};
    changed["LineSelect"] = {{"GrayMin", 31}, {"GrayMax", 241}, {"WidthMin", 3}, {"WidthMax", 33}, {"SelectMode", 4}};
    changed["Calibration"]["DistCoeffs"] = {0.1, -0.2, 1e-300, 0.30000000000000004, -5.0};
    changed["Chain"]["CalRT"] = false;
    for (auto& [key, value] : changed["Chain"].items()) {
        if (value.is_object() && value.contains("Enabled")) value["Enabled"] = !value["Enabled"].get<bool>();
        for (const std::string inner : {"HalfWidth", "HalfWindow", "KernelSize"})
            if (value.is_object() && value.contains(inner)) value[inner] = value[inner].get<int>() + 2;
        for (const std::string inner : {"Step", "Target", "MinExposure", "SecondExposure"})
            if (value.is_object() && value.contains(inner)) value[inner] = value[inner].get<double>() * 1.1;
    }
    changed["Chain"]["Method"] = "Cal2DPoint3";
    changed["Chain"]["Cap"] = 99;
    changed["Chain"]["Threshold"] = 98;
    changed["Chain"]["Undistort"] = false;
    changed["Chain"]["TravelPerFrame"] = 0.7;
    writeText(file("b.json"), changed.dump());
    const Outcome outcome = run("--settings b.json --write-settings c.json");
    ASSERT_EQ(outcome.status, 0) << outcome.err;
    EXPECT_EQ(json("c.json"), changed);
}

TEST_F(SettingsFile, MethodOnTheCommandLineGoesBeforeTheOneInTheFile) {
    writeText(file("s.json"), R"({"Chain": {"Method": "Cal2DPoint3"}})");
    ASSERT_EQ(run("--settings s.json --method Cal2DPoint2 --write-settings t.json").status, 0);
    EXPECT_EQ(json("t.json")["Chain"]["Method"], "Cal2DPoint2");
}

TEST_F(SettingsFile, UnknownKeysAreNamed) {
    expectSettingsRejected(R"({"Roi": {}})", {"unknown key Roi"});
    expectSettingsRejected(R"({"Chain": {"medianfilter": {}}})", {"unknown key Chain.medianfilter"});
    expectSettingsRejected(R"({"Chain": {"Otsu2": {"threshold": 3}}})", {"unknown key Chain.Otsu2.threshold"});
    expectSettingsRejected(R"({"LineSelect": {"GreyMin": 3}})", {"unknown key LineSelect.GreyMin"});
    expectSettingsRejected(R"({"Chain": {"Cap": 1, "Cap": 2}})", {"Cap", "twice"});
}

TEST_F(SettingsFile, MistypedValuesAreNamed) {
    expectSettingsRejected(R"([1, 2])", {"object"});
    expectSettingsRejected(R"({"Chain": 1})", {"Chain", "object"});
    expectSettingsRejected(R"({"Chain": {"Cap": "200"}})", {"Chain.Cap", "whole number"});
    expectSettingsRejected(R"({"Chain": {"Cap": 20.5}})", {"Chain.Cap", "whole number"});
    expectSettingsRejected(R"({"Chain": {"Undistort": 1}})", {"Chain.Undistort", "true or false"});
    expectSettingsRejected(R"({"Chain": {"TravelPerFrame": null}})", {"Chain.TravelPerFrame", "number"});
    expectSettingsRejected(R"({"Chain": {"GaussianBlur": true}})", {"Chain.GaussianBlur", "object"});
    expectSettingsRejected(R"({"Chain": {"Method": "Cal2DPoint5"}})", {"Chain.Method", "Cal2DPoint1_1"});
    expectSettingsRejected(R"({"Chain": {"Method": 1}})", {"Chain.Method"});
    expectSettingsRejected(R"({"Chain": {"Cal3D": "Cal3DPoint3"}})", {"Chain.Cal3D", "Cal3DPoint2"});
}

TEST_F(SettingsFile, ArraysOfTheWrongLengthAreNamed) {
    expectSettingsRejected(calibration("[300, 0.02, 1.7]"), {"Calibration.LaserPlane", "6", "3"});
    expectSettingsRejected(calibration("[300, 0.02, 1.7, 0, 0, 0]", "4800, 1"),
                           {"Calibration.CameraMatrix", "9", "10"});
    expectSettingsRejected(calibration("[300, 0.02, 1.7, 0, 0, 0]", "4800", "5"), {"Calibration.DistCoeffs", "array"});
    expectSettingsRejected(calibration("[300, 0.02, \"1.7\", 0, 0, 0]"), {"Calibration.LaserPlane", "entry 2"});
}

TEST_F(SettingsFile, NumbersOutOfRangeAreNamed) {
    const std::string roi = R"({"ROI": {"OffsetX": 0, "OffsetY": 0, "Height": 100, "Width": )";
    expectSettingsRejected(roi + "0}}", {"ROI.Width", "1 .. 65535"});
    expectSettingsRejected(roi + "-5}}", {"ROI.Width"});
    expectSettingsRejected(roi + "99999999999999999999}}", {"ROI.Width"});
    expectSettingsRejected(roi + "1441}}", {"ROI", "chip"});
    expectSettingsRejected(R"({"LineSelect": {"GrayMax": 256}})", {"LineSelect.GrayMax", "0 .. 255"});
    expectSettingsRejected(R"({"Chain": {"TravelPerFrame": 1e999}})", {"1e999"});
    expectSettingsRejected(R"({"Chain": {"Downsample": {"Step": 0}}})", {"Chain.Downsample.Step"});
    expectSettingsRejected(R"({"Chain": {"GaussianBlur": {"KernelSize": 4}}})", {"KernelSize", "odd"});
    expectSettingsRejected(R"({"Chain": {"AutoExposure": {"MinExposure": 9}}})", {"MinExposure", "MaxExposure"});
    expectSettingsRejected(R"({"LineSelect": {"GrayMin": 200, "GrayMax": 100}})", {"GrayMin", "GrayMax"});
    expectSettingsRejected(R"({"LineSelect": {"WidthMin": 20, "WidthMax": 10}})", {"WidthMin", "WidthMax"});
}

TEST_F(SettingsFile, HalfARecordIsNone) {
    expectSettingsRejected(R"({"ROI": {"Width": 100, "Height": 100}})", {"ROI.OffsetX", "missing"});
    expectSettingsRejected(R"({"Calibration": {"LaserPlane": [300, 0, 1.7, 0, 0, 0]}})",
                           {"Calibration.CameraMatrix", "missing"});
}

// CalRT could end the process with status 0 and no result; the host looks first.
TEST_F(SettingsFile, CalibrationThatCannotMeasureIsRejectedBeforeTheLibrarySeesIt) {
    expectSettingsRejected(calibration("[300, 0.02, 1e20, 0, 0, 0]"), {"LaserPlane", "c2", "CalRT"});
    expectSettingsRejected(calibration("[300, 0.02, -1e6, 0, 0, 0]"), {"LaserPlane", "c2", "CalRT"});
    expectSettingsRejected(calibration("[300, 0.02, 0, 0, 0, 0]"), {"LaserPlane", "c2", "0"});
    expectSettingsRejected(calibration("[0, 0.02, 1.7, 0, 0, 0]"), {"LaserPlane", "c0"});
    expectSettingsRejected(calibration("[300, 0.02, 1.7, 0, 0, 0]", "0"), {"CameraMatrix", "fx"});
    std::string flat = calibration();
    flat.insert(flat.size() - 1, R"(, "Chain": {"Cal3D": "Cal3DPoint2"})");
    expectSettingsRejected(flat, {"LaserPlane", "Cal3DPoint1"});
    std::string noRotation = calibration();
    noRotation.replace(noRotation.find("[1, 0, 0, 0, 1"), 2, "[0");
    noRotation.insert(noRotation.size() - 1, R"(, "Chain": {"CalRT": false})");
    expectSettingsRejected(noRotation, {"RT", "rotation"});
}

// A negative focal length mirrors the profile, and Downsample does not take one that runs far toward smaller x.
TEST_F(SettingsFile, MirroredProfileThatDownsampleRefusesIsNamed) {
    std::string mirrored = calibration("[300, 0.02, 1.7, 0, 0, 0]", "-4800");
    mirrored.insert(mirrored.size() - 1, R"(, "Chain": {"Downsample": {"Enabled": true, "Step": 0.25}})");
    writeText(file("s.json"), mirrored);
    expectRejected("--settings s.json --frames 1 --output out", {"frame 0", "Downsample", "smaller x"});
}

TEST_F(SettingsFile, FilesThatAreNoJsonAreRejected) {
    expectRejected("--settings nowhere.json --output out", {"nowhere.json", "no such file"});
    expectSettingsRejected("", {"JSON"});
    expectSettingsRejected("{\"Chain\": {\n\"Cap\": 1,\n}}", {"JSON", "line 3"});
    expectSettingsRejected("{} {}", {"JSON"});
    expectSettingsRejected("{\"\xff\": 1}", {"JSON"});
}

TEST_F(SettingsFile, RecordedFramesCannotBeExposedAnew) {
    writeText(file("a.pgm"), pgm(40, 30, lineFrame(40, 30, 9)));
    writeText(file("s.json"), R"({"Chain": {"AutoExposure": {"Enabled": true}}})");
    expectRejected("--images a.pgm --settings s.json --output out", {"s.json", "AutoExposure"});
}

}  // namespace
}  // namespace host_tests
