#include "HostProgram.h"

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <random>
#include <sstream>

#ifndef _WIN32
#include <sys/wait.h>
#endif

namespace host_tests {
namespace {

fs::path newFolder() {
    std::random_device random;
    while (true) {
        const fs::path folder = fs::path(testing::TempDir()) / ("korvane_host_" + std::to_string(random()));
        if (fs::create_directory(folder)) return folder;
    }
}

int exitStatus(int result) {
#ifdef _WIN32
    return result;
#else
    return WIFEXITED(result) ? WEXITSTATUS(result) : -1;
#endif
}

}  // namespace

std::string contents(const fs::path& path) {
    std::ifstream stream(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
}

void writeText(const fs::path& path, const std::string& text) {
    std::ofstream stream(path, std::ios::binary);
    stream << text;
    ASSERT_TRUE(stream.flush()) << path;
}

std::vector<std::string> lines(const std::string& text) {
    std::vector<std::string> result;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);) result.push_back(line);
    return result;
}

HostTest::HostTest() : folder_(newFolder()) {
    fs::create_directory(folder_ / "work");
}

HostTest::~HostTest() {
    std::error_code ignored;
    fs::remove_all(folder_, ignored);
}

Outcome HostTest::runShell(const std::string& command) {
    // The streams go beside the working directory, so that they do not count as the program's files.
    const std::string out = (folder_ / "stdout").string();
    const std::string err = (folder_ / "stderr").string();
#ifdef _WIN32
    const std::string whole =
        "cd /d \"" + file("").string() + "\" && (" + command + ") >\"" + out + "\" 2>\"" + err + "\"";
#else
    const std::string whole = "HOST='" KORVANE_HOST_PROGRAM "'; cd '" + file("").string() + "' && { " + command +
                              "; } >'" + out + "' 2>'" + err + "'";
#endif
    const int result = std::system(whole.c_str());
    return {exitStatus(result), contents(out), contents(err)};
}

Outcome HostTest::run(const std::string& arguments) {
    return runShell("\"" KORVANE_HOST_PROGRAM "\" " + arguments);
}

void HostTest::expectRejected(const std::string& arguments, const std::vector<std::string>& words) {
    SCOPED_TRACE(arguments);
    const std::vector<std::string> before = everything();
    const Outcome outcome = run(arguments);
    EXPECT_EQ(outcome.status, 2);
    EXPECT_EQ(outcome.out, "");
    EXPECT_EQ(std::count(outcome.err.begin(), outcome.err.end(), '\n'), 1) << outcome.err;
    EXPECT_TRUE(outcome.err.ends_with('\n')) << outcome.err;
    for (const std::string& word : words)
        EXPECT_NE(outcome.err.find(word), std::string::npos) << "'" << word << "' is not in: " << outcome.err;
    EXPECT_EQ(everything(), before);
}

void HostTest::writeSmallSettings(const std::string& chain) {
    std::ostringstream text;
    text << R"({"ROI": {"OffsetX": )" << kSmallOffsetX << R"(, "OffsetY": )" << kSmallOffsetY << R"(, "Width": )"
         << kSmallWidth << R"(, "Height": )" << kSmallHeight << R"(}, "Chain": {)" << chain << "}}";
    writeText(file("small.json"), text.str());
}

std::vector<std::string> HostTest::everything() const {
    std::vector<std::string> found;
    for (const auto& entry : fs::recursive_directory_iterator(file("")))
        found.push_back(fs::relative(entry.path(), file("")).generic_string());
    std::sort(found.begin(), found.end());
    return found;
}

}  // namespace host_tests
