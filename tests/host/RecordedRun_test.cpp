// Runs on picture files.

#include "HostProgram.h"
#include "PictureFiles.h"
#include "Results.h"

namespace host_tests {
namespace {

constexpr int kWidth = 40;
constexpr int kHeight = 60;

class RecordedRun : public HostTest {
protected:
    RecordedRun() { fs::create_directory(file("frames")); }

    void addPgm(const std::string& name, int row, int width = kWidth, int height = kHeight) {
        writeText(file("frames/" + name), pgm(width, height, lineFrame(width, height, row)));
    }

    /// The rows in profiles.csv of a run without calibration, for one frame; -1 where no stripe was found.
    std::vector<double> rowsOfFrame(int frame) {
        const std::vector<std::string> all = lines(contents(file("out/profiles.csv")));
        EXPECT_EQ(all.empty() ? "" : all[0], "frame,column,valid,row");
        std::vector<double> rows;
        for (std::size_t i = 1; i < all.size(); ++i) {
            const std::vector<std::string> f = fields(all[i]);
            if (f.size() == 4 && f[0] == std::to_string(frame)) rows.push_back(f[2] == "1" ? number(f[3]) : -1.0);
        }
        return rows;
    }

    /// The first and last column are never searched; all others show the line.
    void expectLine(int frame, double row) {
        const std::vector<double> rows = rowsOfFrame(frame);
        ASSERT_EQ(rows.size(), static_cast<std::size_t>(kWidth));
        for (std::size_t i = 1; i + 1 < rows.size(); ++i)
            EXPECT_EQ(rows[i], row) << "frame " << frame << ", column " << i;
    }
};

TEST_F(RecordedRun, TakesAFoldersPicturesInNameOrderAndIgnoresOtherFiles) {
    addPgm("b.pgm", 12);
    addPgm("c.PGM", 20);
    addPgm("a.pgm", 8);
    writeText(file("frames/notes.txt"), "not a picture");
    writeText(file("frames/d.jpg"), "not one of ours");
    fs::create_directory(file("frames/e.pgm"));
    const Outcome outcome = run("--images frames --output out");
    ASSERT_EQ(outcome.status, 0) << outcome.err;
    EXPECT_NE(outcome.out.find("no calibration"), std::string::npos) << outcome.out;
    expectLine(0, 8.0);
    expectLine(1, 12.0);
    expectLine(2, 20.0);
    EXPECT_EQ(rowsOfFrame(3).size(), 0u);
}

TEST_F(RecordedRun, WithoutCalibrationWritesNeitherCloudNorPlots) {
    addPgm("a.pgm", 8);
    ASSERT_EQ(run("--images frames/a.pgm --output out").status, 0);
    std::vector<std::string> expected{"frames", "frames/a.pgm", "out", "out/profiles.csv", "out/summary.json"};
#if KORVANE_HOST_PICTURES
    expected.insert(expected.begin() + 3, "out/overlay_0000.png");
#endif
    EXPECT_EQ(everything(), expected);
}

TEST_F(RecordedRun, ReadsTextPgmToo) {
    std::string text = "P2 # text\n" + std::to_string(kWidth) + " " + std::to_string(kHeight) + " 255\n";
    for (const unsigned char grey : lineFrame(kWidth, kHeight, 9)) text += std::to_string(grey) + "\n";
    writeText(file("frames/a.pgm"), text);
    ASSERT_EQ(run("--images frames --output out").status, 0);
    expectLine(0, 9.0);
}

TEST_F(RecordedRun, RowsCountFromTheTopOfTheFullSensor) {
    addPgm("a.pgm", 8);
    writeText(file("roi.json"), R"({"ROI": {"OffsetX": 100, "OffsetY": 50, "Width": 40, "Height": 60}})");
    for (const std::string method : {"Cal2DPoint1", "Cal2DPoint4"}) {
        SCOPED_TRACE(method);
        ASSERT_EQ(run("--images frames --settings roi.json --output out --method " + method).status, 0);
        expectLine(0, 58.0);
    }
}

TEST_F(RecordedRun, WithACalibrationMeasuresInItsUnit) {
    addPgm("a.pgm", 15);
    // Pinhole of 100 pixels with its centre at pixel (20, 15), the plane Z = 50 + Y, output frame = camera frame. Row
    // 15 looks along y' = 0 and meets the plane at Z = 50; the column c lies at x' = (c - 20) / 100.
    writeText(file("s.json"), R"({"Calibration": {
        "CameraMatrix": [100, 0, 20, 0, 100, 15, 0, 0, 1], "DistCoeffs": [0, 0, 0, 0, 0],
        "LaserPlane": [50, 0, 1, 0, 0, 0], "RT": [1, 0, 0, 0, 1, 0, 0, 0, 1, 0, 0, 0]},
        "Chain": {"CalRT": false, "Outlierdetect1": {"Enabled": false}}})");
    const Outcome outcome = run("--images frames --settings s.json --output out");
    ASSERT_EQ(outcome.status, 0) << outcome.err;
    const std::vector<CsvPoint> points = readProfiles(file("out/profiles.csv"));
    ASSERT_EQ(points.size(), static_cast<std::size_t>(kWidth));
    for (int column = 1; column + 1 < kWidth; ++column) {
        const CsvPoint& point = points[static_cast<std::size_t>(column)];
        ASSERT_TRUE(point.valid) << column;
        EXPECT_NEAR(point.x, (column - 20) / 100.0 * 50.0, 1e-12);
        EXPECT_NEAR(point.y, 0.0, 1e-12);
        EXPECT_NEAR(point.z, 50.0, 1e-12);
    }
    EXPECT_TRUE(fs::exists(file("out/cloud.ply")));
    EXPECT_FALSE(json("out/summary.json").contains("error")) << "nobody knows the truth";
}

TEST_F(RecordedRun, MergeImgTakesConsecutiveFilesAsPairs) {
    for (const std::string name : {"a", "b", "c", "d"}) addPgm(name + ".pgm", name < "c" ? 8 : 12);
    writeText(file("s.json"), R"({"Chain": {"MergeImg": {"Enabled": true}}})");
    ASSERT_EQ(run("--images frames --settings s.json --output out").status, 0);
    expectLine(0, 8.0);
    expectLine(1, 12.0);
    EXPECT_EQ(rowsOfFrame(2).size(), 0u);

    fs::remove_all(file("out"));
    addPgm("d.pgm", 12, kWidth, kHeight + 2);
    expectRejected("--images frames --settings s.json --output out", {"d.pgm", "size", "c.pgm"});
    fs::remove(file("frames/d.pgm"));
    expectRejected("--images frames --settings s.json --output out", {"frames", "pairs", "3"});
}

TEST_F(RecordedRun, RejectsWhatIsNotThere) {
    fs::create_directory(file("empty"));
    expectRejected("--images nowhere --output out", {"nowhere", "no such file or folder"});
    expectRejected("--images empty --output out", {"empty", "holds no"});
    writeText(file("a.txt"), "text");
    expectRejected("--images a.txt --output out", {"a.txt", "not a"});
}

TEST_F(RecordedRun, RejectsDamagedAndDeeperPgmFiles) {
    const auto rejected = [&](const std::string& bytes, const std::string& reason) {
        writeText(file("frames/a.pgm"), bytes);
        expectRejected("--images frames --output out", {"a.pgm", reason});
    };
    const std::string good = pgm(kWidth, kHeight, lineFrame(kWidth, kHeight, 8));
    rejected(good.substr(0, good.size() - 1), "ends too early");
    rejected("P5\n40 30\n", "damaged");
    rejected("P5\n0 30\n255\n", "impossible size");
    rejected("P5\n40 -30\n255\n", "damaged");
    rejected("P5\n99999999999 30\n255\n", "damaged");
    rejected("P5\n60000 60000\n255\nshort", "ends too early");
    rejected("P5\n40 30\n65535\n" + std::string(2400, 'x'), "16-bit");
    rejected("P5\n40 30\n100\n" + std::string(1200, 'x'), "maximum grey value");
    rejected("P2\n2 1\n255\n7 256\n", "grey value above 255");
    rejected("P6\n40 30\n255\n" + std::string(3600, 'x'), "not a PGM");
    rejected("", "not a PGM");
}

TEST_F(RecordedRun, RejectsFramesOfAnotherSizeThanTheRegion) {
    addPgm("a.pgm", 8);
    writeText(file("roi.json"), R"({"ROI": {"OffsetX": 0, "OffsetY": 0, "Width": 41, "Height": 60}})");
    expectRejected("--images frames --settings roi.json --output out", {"a.pgm", "40 x 60", "41 x 60"});
}

TEST_F(RecordedRun, AFrameOfAnotherSizeHalfWayLeavesNothingBehind) {
    addPgm("a.pgm", 8);
    addPgm("b.pgm", 8);
    addPgm("c.pgm", 8, kWidth, kHeight + 1);
    expectRejected("--images frames --output out --pictures all", {"c.pgm", "40 x 61", "40 x 60"});

    fs::create_directories(file("mine/inner"));
    expectRejected("--images frames --output mine/inner", {"c.pgm"});
    expectRejected("--images frames --output new/folders/deep", {"c.pgm"});
}

#if KORVANE_HOST_PICTURES

TEST_F(RecordedRun, ReadsPngAndPgmOfOneFolder) {
    writeText(file("frames/a.png"), png(kWidth, kHeight, lineFrame(kWidth, kHeight, 7)));
    addPgm("b.pgm", 9);
    writeText(file("frames/c.PNG"), png(kWidth, kHeight, lineFrame(kWidth, kHeight, 11)));
    const Outcome outcome = run("--images frames --output out --pictures all");
    ASSERT_EQ(outcome.status, 0) << outcome.err;
    expectLine(0, 7.0);
    expectLine(1, 9.0);
    expectLine(2, 11.0);

    // On the frame stay the grey levels as they were; on the line's centre the mark has no grey.
    const RgbPicture overlay = readRgb(file("out/overlay_0002.png"));
    ASSERT_EQ(overlay.width, kWidth);
    ASSERT_EQ(overlay.height, kHeight);
    const auto pixel = [&](int row, int column) {
        return &overlay.bytes[static_cast<std::size_t>(3 * (row * kWidth + column))];
    };
    EXPECT_EQ(pixel(2, 5)[0], 10);
    EXPECT_EQ(pixel(2, 5)[1], 10);
    EXPECT_GT(pixel(11, 5)[0], pixel(11, 5)[1] + 100);
}

TEST_F(RecordedRun, RejectsPngFilesThatAreNotEightBitGrey) {
    const std::vector<unsigned char> pixels = lineFrame(kWidth, kHeight, 7);
    const auto rejected = [&](PngKind kind, const std::string& reason) {
        writeText(file("frames/a.png"), png(kWidth, kHeight, pixels, kind));
        expectRejected("--images frames --output out", {"a.png", reason, "8-bit grey is needed"});
    };
    rejected(PngKind::grey16, "16-bit");
    rejected(PngKind::rgb, "colour");
    rejected(PngKind::palette, "colour");
    rejected(PngKind::greyAlpha, "alpha");
    rejected(PngKind::grey1, "1-bit");
}

TEST_F(RecordedRun, RejectsDamagedPngFiles) {
    const std::string good = png(kWidth, kHeight, lineFrame(kWidth, kHeight, 7));
    const auto rejected = [&](const std::string& bytes) {
        writeText(file("frames/a.png"), bytes);
        expectRejected("--images frames --output out", {"a.png", "damaged PNG file"});
    };
    rejected("");
    rejected("text, not a picture");
    rejected(good.substr(0, 20));
    rejected(good.substr(0, good.size() / 2));
    rejected(good.substr(0, good.size() - 12));  // the end chunk is missing
    std::string flipped = good;
    const std::size_t inData = good.find("IDAT") + 6;
    flipped[inData] = static_cast<char>(flipped[inData] ^ 0x20);
    rejected(flipped);
}

TEST_F(RecordedRun, ADamagedFrameHalfWayLeavesNothingBehind) {
    addPgm("a.pgm", 8);
    addPgm("b.pgm", 8);
    writeText(file("frames/c.png"), png(kWidth, kHeight, lineFrame(kWidth, kHeight, 7)).substr(0, 60));
    expectRejected("--images frames --output out --pictures none", {"c.png", "damaged"});
}

#endif

}  // namespace
}  // namespace host_tests
