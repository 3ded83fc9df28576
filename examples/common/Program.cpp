#include "common/Program.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <new>

#include "KorvaneLaserAlgo.h"

namespace examples {

namespace {

constexpr int kBadInput = 2;  // exit status

/// One line, whatever a file name or a library's message may hold.
int complain(const char* program, std::string reason) {
    std::replace_if(
        reason.begin(), reason.end(), [](char c) { return c == '\n' || c == '\r'; }, ' ');
    std::fprintf(stderr, "%s: %s\n", program, reason.c_str());
    return kBadInput;
}

}  // namespace

std::string libraryVersion() {
    std::string version;
    KORVANELASERALGO::KorvaneLaserAlgo().GetSdkVersionString(version);
    return version;
}

CLI::Validator within(double least, double most) {
    const auto check = [least, most](const std::string& text) {
        char* end = nullptr;
        const double value = std::strtod(text.c_str(), &end);
        if (*end == '\0' && value >= least && value <= most) return std::string();
        char reason[100];
        std::snprintf(reason, sizeof(reason), " is not a number in %.10g .. %.10g", least, most);
        return text + reason;
    };
    return {check, ""};
}

int runProgram(const char* name, const char* description, int argc, char** argv,
               const std::function<void(CLI::App&)>& describe, const std::function<void()>& work) {
    try {
        CLI::App app(description, name);
        describe(app);
        try {
            app.parse(argc, argv);
        } catch (const CLI::Success& helpOrVersion) {
            return app.exit(helpOrVersion);
        }
        work();
        return 0;
    } catch (const std::bad_alloc&) {
        return complain(name, "not enough memory");
    } catch (const std::exception& error) {
        return complain(name, error.what());
    }
}

}  // namespace examples
