// The study programs as a user starts them: tables on standard output, pictures in the folder that is asked for, one
// line and status 2 for bad input.

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#ifndef _WIN32
#include <sys/wait.h>
#endif

namespace {

namespace fs = std::filesystem;

using Row = std::vector<std::string>;    // cells
using Table = std::vector<Row>;          // the first row is the header; the rule below it is left out
using Names = std::vector<std::string>;  // of files

const char* const kCompareMethods = KORVANE_COMPARE_METHODS;
const char* const kFilterStudy = KORVANE_FILTER_STUDY;
const char* const kExposureStudy = KORVANE_EXPOSURE_STUDY;

constexpr std::uintmax_t kLargestPicture = 200 * 1024;  // bytes

struct Outcome {
    int status;
    std::string out;
    std::string err;
};

std::string contents(const fs::path& path) {
    std::ifstream stream(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
}

int exitStatus(int result) {
#ifdef _WIN32
    return result;
#else
    return WIFEXITED(result) ? WEXITSTATUS(result) : -1;
#endif
}

std::string trimmed(const std::string& text) {
    const auto first = text.find_first_not_of(' ');
    return first == std::string::npos ? "" : text.substr(first, text.find_last_not_of(' ') - first + 1);
}

/// The cells of "| a | b |".
Row cells(const std::string& line) {
    Row row;
    std::istringstream stream(line.substr(1));
    for (std::string cell; std::getline(stream, cell, '|');) row.push_back(trimmed(cell));
    return row;
}

/// The Markdown tables of a text. Every row must have as many cells as its header, and none may be empty.
std::vector<Table> tables(const std::string& text) {
    std::vector<Table> found;
    bool within = false;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);) {
        const bool isRow = line.starts_with('|') && line.ends_with('|');
        if (isRow && !within) found.emplace_back();
        within = isRow;
        if (!isRow) continue;
        const Row row = cells(line);
        Table& table = found.back();
        if (!table.empty()) {
            EXPECT_EQ(row.size(), table.front().size()) << line;
        }
        EXPECT_EQ(std::count(row.begin(), row.end(), ""), 0) << line;
        if (row.front() != "---") table.push_back(row);
    }
    return found;
}

Row firstCells(const Table& table) {
    Row names;
    for (const Row& row : table) names.push_back(row.front());
    return names;
}

/// The number at the start of a cell.
double number(const std::string& cell) {
    return std::stod(cell);
}

/// An empty folder to work in, which goes away with the test.
class Studies : public testing::Test {
protected:
    Studies() {
        std::random_device random;
        do {
            folder_ = fs::path(testing::TempDir()) / ("korvane_studies_" + std::to_string(random()));
        } while (!fs::create_directory(folder_));
    }
    ~Studies() override {
        std::error_code ignored;
        fs::remove_all(folder_, ignored);
    }

    Outcome run(const std::string& program, const std::string& arguments) {
        const std::string out = file("stdout").string();
        const std::string err = file("stderr").string();
        std::string command = "\"" + program + "\" " + arguments + " >\"" + out + "\" 2>\"" + err + "\"";
#ifdef _WIN32
        command = "\"" + command + "\"";  // the shell takes the outer quotes away
#endif
        const int result = std::system(command.c_str());
        return {exitStatus(result), contents(out), contents(err)};
    }

    /// Runs with pictures; expects success and exactly these files, each of them a PNG that is not too large.
    std::vector<Table> tablesWithPictures(const std::string& program, const std::string& arguments,
                                          const Names& expectedFiles) {
        const fs::path pictures = file("new") / "pictures";
        const Outcome outcome = run(program, arguments + " --pictures \"" + pictures.string() + "\"");
        EXPECT_EQ(outcome.status, 0);
        EXPECT_EQ(outcome.err, "");
        Names files;
        for (const auto& entry : fs::directory_iterator(pictures)) {
            files.push_back(entry.path().filename().string());
            EXPECT_TRUE(contents(entry.path()).starts_with("\x89PNG")) << entry.path();
            EXPECT_LE(fs::file_size(entry.path()), kLargestPicture) << entry.path();
        }
        std::sort(files.begin(), files.end());
        EXPECT_EQ(files, expectedFiles);
        return tables(outcome.out);
    }

    void expectRejected(const std::string& program, const std::string& arguments, const std::string& word) {
        SCOPED_TRACE(arguments);
        const Outcome outcome = run(program, arguments);
        EXPECT_EQ(outcome.status, 2);
        EXPECT_EQ(outcome.out, "");
        EXPECT_EQ(std::count(outcome.err.begin(), outcome.err.end(), '\n'), 1) << outcome.err;
        EXPECT_NE(outcome.err.find(word), std::string::npos) << outcome.err;
    }

    fs::path file(const std::string& name) const {
        return folder_ / name;
    }

private:
    fs::path folder_;
};

TEST_F(Studies, CompareMethodsPrintsTwoTablesOfSixMethodsAndDrawsEach) {
    const std::vector<Table> found = tablesWithPictures(
        kCompareMethods, "--frames 2",
        {"methods_hard_Cal2DPoint1.png", "methods_hard_Cal2DPoint1_1.png", "methods_hard_Cal2DPoint2.png",
         "methods_hard_Cal2DPoint2_1.png", "methods_hard_Cal2DPoint3.png", "methods_hard_Cal2DPoint4.png"});
    ASSERT_EQ(found.size(), 2u);
    const Row six{"`Cal2DPoint1`",   "`Cal2DPoint1_1`", "`Cal2DPoint2`",
                  "`Cal2DPoint2_1`", "`Cal2DPoint3`",   "`Cal2DPoint4`"};
    for (const Table& table : found) {
        const Row names = firstCells(table);
        EXPECT_EQ(Row(names.begin() + 1, names.end()), six);
    }
}

TEST_F(Studies, TheFastestMethodTakesOnceItsOwnTime) {
    const std::vector<Table> found = tables(run(kCompareMethods, "--scene gauge-block --frames 2").out);
    ASSERT_EQ(found.size(), 2u);
    const Table& table = found[1];
    ASSERT_EQ(table.front().back(), "time");
    double fastest = 1e9;
    for (std::size_t i = 1; i < table.size(); ++i) fastest = std::min(fastest, number(table[i].back()));
    EXPECT_EQ(fastest, 1.0);
}

TEST_F(Studies, EveryMethodFindsACleanStripeAndNothingElse) {
    const std::vector<Table> found =
        tables(run(kCompareMethods, "--scene gauge-block --frames 2 --gray-min 60 --threshold 60").out);
    ASSERT_EQ(found.size(), 2u);
    const Table& table = found[0];
    ASSERT_EQ(table.size(), 7u);
    ASSERT_EQ(Row(table[0].begin() + 1, table[0].begin() + 4), (Row{"found", "wrong", "false"}));
    for (std::size_t i = 1; i < table.size(); ++i) {
        EXPECT_GE(number(table[i][1]), 99.0) << table[i][0];
        EXPECT_EQ(number(table[i][2]), 0.0) << table[i][0];
        EXPECT_EQ(number(table[i][3]), 0.0) << table[i][0];
    }
}

TEST_F(Studies, WithoutAPicturesFolderNothingIsDrawn) {
    const fs::path before = fs::current_path();
    fs::create_directory(file("work"));
    fs::current_path(file("work"));
    const Outcome outcome = run(kFilterStudy, "--frames 1");
    fs::current_path(before);
    EXPECT_EQ(outcome.status, 0);
    EXPECT_TRUE(fs::is_empty(file("work")));
}

TEST_F(Studies, FilterStudyPrintsOneTableOfFiveFiltersAndDrawsEach) {
    const std::vector<Table> found =
        tablesWithPictures(kFilterStudy, "--frames 2",
                           {"filters_Downsample.png", "filters_Gaussianfilter.png", "filters_Outlierdetect1.png",
                            "filters_Outlierdetect2.png", "filters_medianfilter1.png"});
    ASSERT_EQ(found.size(), 1u);
    EXPECT_EQ(firstCells(found[0]), (Row{"filter", "`Outlierdetect1`", "`Outlierdetect2`", "`medianfilter1`",
                                         "`Gaussianfilter`", "`Downsample`"}));
}

TEST_F(Studies, TheExposureLoopEndsAtTheTargetFromBothSides) {
    const std::vector<Table> found =
        tablesWithPictures(kExposureStudy, "--method AutoExposure --frames 32", {"exposure_AutoExposure.png"});
    ASSERT_EQ(found.size(), 1u);
    const Table& table = found[0];
    ASSERT_EQ(firstCells(table), (Row{"start", "too dark", "too bright"}));
    ASSERT_EQ(table[0].back(), "last width");
    EXPECT_NEAR(number(table[1].back()), 4.0, 0.2);
    EXPECT_NEAR(number(table[2].back()), 4.0, 0.2);
}

TEST_F(Studies, ExposureStudyMergesAShortAndALongExposure) {
    const std::vector<Table> found =
        tablesWithPictures(kExposureStudy, "--method MergeImg --frames 2", {"exposure_MergeImg.png"});
    ASSERT_EQ(found.size(), 1u);
    EXPECT_EQ(firstCells(found[0]), (Row{"image", "short exposure", "long exposure", "merged"}));
}

TEST_F(Studies, ExposureStudyWeakensWhatMoves) {
    const std::vector<Table> found =
        tablesWithPictures(kExposureStudy, "--method CalcImageBuffer --frames 2", {"exposure_CalcImageBuffer.png"});
    ASSERT_EQ(found.size(), 1u);
    EXPECT_EQ(firstCells(found[0]), (Row{"image", "as taken", "after `CalcImageBuffer`"}));
}

TEST_F(Studies, BadInputEndsInOneLineAndStatus2) {
    expectRejected(kCompareMethods, "--frames 1", "--frames");
    expectRejected(kCompareMethods, "--scene nowhere", "--scene");
    expectRejected(kFilterStudy, "--frames many", "--frames");
    expectRejected(kExposureStudy, "--method Cal2DPoint1", "--method");
    expectRejected(kExposureStudy, "--colour red", "--colour");
}

TEST_F(Studies, APicturesFolderThatCannotBeIsRejected) {
    std::ofstream(file("plain")) << "a file";
    const std::string pictures = " --pictures \"" + (file("plain") / "below").string() + "\"";
    for (const char* program : {kCompareMethods, kFilterStudy, kExposureStudy})
        expectRejected(program, "--frames 2" + pictures, "plain");
}

}  // namespace
