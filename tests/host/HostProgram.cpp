#include "HostProgram.h"

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <random>
#include <sstream>

#ifdef _WIN32
#include <windows.h>
#else
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

/// What a program has printed; Windows ends the lines of its streams by two characters.
std::string printedText(const fs::path& path) {
    std::string text = contents(path);
    std::erase(text, '\r');
    return text;
}

#ifdef _WIN32

HANDLE newInheritedFile(const fs::path& path) {
    SECURITY_ATTRIBUTES inherited{sizeof(SECURITY_ATTRIBUTES), nullptr, TRUE};
    return CreateFileW(path.c_str(), GENERIC_WRITE, FILE_SHARE_READ, &inherited, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL,
                       nullptr);
}

/// Runs a command line without a shell, with its streams in files; returns the exit status, -1 where it does not start.
int runCommand(std::string command, const fs::path& folder, const fs::path& out, const fs::path& err) {
    STARTUPINFOA startup{};
    startup.cb = sizeof startup;
    startup.dwFlags = STARTF_USESTDHANDLES;
    startup.hStdInput = INVALID_HANDLE_VALUE;
    startup.hStdOutput = newInheritedFile(out);
    startup.hStdError = newInheritedFile(err);
    PROCESS_INFORMATION process{};
    const BOOL started = CreateProcessA(nullptr, command.data(), nullptr, nullptr, TRUE, 0, nullptr,
                                        folder.string().c_str(), &startup, &process);
    CloseHandle(startup.hStdOutput);
    CloseHandle(startup.hStdError);
    if (started == 0) return -1;
    DWORD status = 0;
    WaitForSingleObject(process.hProcess, INFINITE);
    GetExitCodeProcess(process.hProcess, &status);
    CloseHandle(process.hThread);
    CloseHandle(process.hProcess);
    return static_cast<int>(status);
}

#else

/// Runs a shell command, with its streams in files; returns the exit status, -1 where a signal ended it.
int runCommand(const std::string& command, const fs::path& folder, const fs::path& out, const fs::path& err) {
    const std::string whole = "HOST='" KORVANE_HOST_PROGRAM "'; cd '" + folder.string() + "' && { " + command +
                              "; } >'" + out.string() + "' 2>'" + err.string() + "'";
    const int result = std::system(whole.c_str());
    return WIFEXITED(result) ? WEXITSTATUS(result) : -1;
}

#endif

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
    const fs::path out = folder_ / "stdout";
    const fs::path err = folder_ / "stderr";
    const int status = runCommand(command, file(""), out, err);
    return {status, printedText(out), printedText(err)};
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
