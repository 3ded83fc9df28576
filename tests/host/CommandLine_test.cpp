// The command line's own mistakes, outputs that cannot be written, and runs that are cut short.

#include "HostProgram.h"

namespace host_tests {
namespace {

using CommandLine = HostTest;

TEST_F(CommandLine, MistakesGetOneLineAndStatusTwo) {
    expectRejected("--simulate moon --output out", {"moon"});
    expectRejected("--method Cal2DPoint9 --output out", {"Cal2DPoint9"});
    expectRejected("--colour red", {"--colour"});
    expectRejected("stray", {"stray"});
    expectRejected("--frames 0 --output out", {"0"});
    expectRejected("--frames -3 --output out", {"-3"});
    expectRejected("--frames many --output out", {"many"});
    expectRejected("--frames", {"--frames"});
    expectRejected("--frames 99999999999 --output out", {"99999999999"});
    expectRejected("--exposure 0 --output out", {"0"});
    expectRejected("--exposure nan --output out", {"nan"});
    expectRejected("--seed -1 --output out", {"-1"});
    expectRejected("--simulate dark --images . --output out", {"--images"});
}

TEST_F(CommandLine, PicturesThatTheRunDoesNotHaveAreRejected) {
    expectRejected("--frames 2 --pictures 2 --output out", {"--pictures", "frame 2", "0 to 1"});
    expectRejected("--frames 2 --pictures 0,,1 --output out", {"--pictures", "0,,1"});
    expectRejected("--frames 2 --pictures some --output out", {"--pictures", "some"});
    expectRejected("--frames 2 --pictures -1 --output out", {"--pictures"});
}

TEST_F(CommandLine, OutputThatCannotBeWrittenIsNamed) {
    writeText(file("taken"), "a file, not a folder");
    expectRejected("--frames 1 --output taken", {"taken"});
    expectRejected("--frames 1 --output taken/inner", {"taken/inner"});
    expectRejected("--frames 1 --output \"\"", {"output"});
    expectRejected("--write-settings taken/s.json", {"taken/s.json", "cannot be written"});
    EXPECT_EQ(contents(file("taken")), "a file, not a folder");
}

#ifndef _WIN32

// A limit on the size of files stands in for a full disk.
TEST_F(CommandLine, DiskThatFillsUpIsNamedAndLeavesNothing) {
    writeSmallSettings();
    const Outcome outcome = runShell(
        "trap '' XFSZ; ulimit -f 40; \"$HOST\" --settings small.json --frames 200 --pictures none --output out");
    EXPECT_EQ(outcome.status, 2);
    EXPECT_EQ(lines(outcome.err).size(), 1u) << outcome.err;
    EXPECT_NE(outcome.err.find("profiles.csv"), std::string::npos) << outcome.err;
    EXPECT_NE(outcome.err.find("disk"), std::string::npos) << outcome.err;
    EXPECT_EQ(everything(), std::vector<std::string>{"small.json"});
}

// Starts a long run, waits until it writes, sends the signal and reports the program's own exit status.
std::string interruptedBy(const std::string& signal) {
    return "\"$HOST\" --settings small.json --frames 100000 --pictures none --output out & host=$!; "
           "while [ ! -s out/.unfinished/profiles.csv.part ]; do kill -0 $host || exit 99; sleep 0.02; done; "
           "kill -" +
           signal + " $host; wait $host";
}

TEST_F(CommandLine, InterruptedRunCleansUp) {
    writeSmallSettings();
    for (const std::string signal : {"INT", "TERM"}) {
        SCOPED_TRACE(signal);
        // A shell without job control starts background processes deaf to INT; the program listens all the same.
        const Outcome outcome = runShell(interruptedBy(signal));
        EXPECT_EQ(outcome.status, 2);
        EXPECT_EQ(lines(outcome.err).size(), 1u) << outcome.err;
        EXPECT_NE(outcome.err.find("interrupted"), std::string::npos) << outcome.err;
        EXPECT_EQ(everything(), std::vector<std::string>{"small.json"});
    }
}

TEST_F(CommandLine, KilledRunLeavesNoFileUnderAResultsNameAndTheNextRunTidiesUp) {
    writeSmallSettings();
    runShell(interruptedBy("KILL"));
    for (const auto& entry : fs::directory_iterator(file("out"))) EXPECT_EQ(entry.path().filename(), ".unfinished");
    ASSERT_EQ(run("--settings small.json --frames 1 --pictures none --output out").status, 0);
    EXPECT_FALSE(fs::exists(file("out/.unfinished")));
    EXPECT_TRUE(fs::exists(file("out/profiles.csv")));
}

#endif

}  // namespace
}  // namespace host_tests
