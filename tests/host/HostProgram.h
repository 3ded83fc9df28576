/// @file HostProgram.h
/// @brief Runs the real host program in a folder of its own and looks at what it leaves behind.

#ifndef KORVANE_TESTS_HOSTPROGRAM_H
#define KORVANE_TESTS_HOSTPROGRAM_H

#include <gtest/gtest.h>

#include <filesystem>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

namespace host_tests {

namespace fs = std::filesystem;

struct Outcome {
    int status;       ///< exit status
    std::string out;  ///< standard output
    std::string err;  ///< standard error
};

/// The whole file; empty where there is none.
std::string contents(const fs::path& path);
void writeText(const fs::path& path, const std::string& text);

/// The lines of a text, without their ends.
std::vector<std::string> lines(const std::string& text);

/// A test with an empty folder to work in, which goes away with it.
class HostTest : public testing::Test {
protected:
    HostTest();
    ~HostTest() override;

    /// Runs the program with this command line (quote what needs it) and the folder as working directory.
    Outcome run(const std::string& arguments);
    /// As `run`, by a shell command in which $HOST stands for the program; on Windows a command line of one program.
    Outcome runShell(const std::string& command);

    /// Expects status 2, nothing on standard output, one line on standard error with all these words, and not a file or
    /// folder more than before.
    void expectRejected(const std::string& arguments, const std::vector<std::string>& words);

    /// Writes a settings file for the simulated sensor: a small region, so that a run is short, and the given chain.
    /// @param chain members of the "Chain" object, in JSON
    void writeSmallSettings(const std::string& chain = "");

    fs::path file(const std::string& name) const { return folder_ / "work" / name; }
    nlohmann::json json(const std::string& name) const { return nlohmann::json::parse(contents(file(name))); }
    /// Every file and folder, relative to the working directory, sorted.
    std::vector<std::string> everything() const;

private:
    fs::path folder_;
};

// The region of `writeSmallSettings`: the stripe of the gauge block crosses it.
inline constexpr int kSmallWidth = 200;
inline constexpr int kSmallHeight = 160;
inline constexpr int kSmallOffsetX = 620;
inline constexpr int kSmallOffsetY = 480;

}  // namespace host_tests

#endif  // KORVANE_TESTS_HOSTPROGRAM_H
