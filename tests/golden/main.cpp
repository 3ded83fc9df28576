// golden_checksums: one checksum per method for the fixed inputs.
//
//   golden_checksums [--twin]                  prints group, method and checksum, and one checksum per group
//   golden_checksums [--twin] --exact          prints the exact group only; with --twin, this is exact.txt
//   golden_checksums [--twin] --expect FILE    compares the exact group with such a file
//   golden_checksums --compare                 compares the library with the twin, both groups
//
// The plain twin stands in for the library with --twin. Before all that, --kernels=SET lets the library run with
// another set of kernels than the processor's best; where the processor does not have it, the exit status is 77. A
// difference names the method and both values, and the exit status is 1.

#include <cstdio>
#include <exception>
#include <fstream>
#include <map>
#include <string>
#include <vector>

#include "KorvaneLaserAlgo.h"
#include "golden/Inputs.h"
#include "golden/MethodChecksums.h"
#include "golden/Twin.h"
#include "support/Checksum.h"
#include "support/ExitGuard.h"
#include "support/KernelSets.h"

namespace {

using golden::Group;
using golden::MethodChecksum;
using golden::MethodChecksums;
using Values = std::map<std::string, std::string>;  // method, checksum in hexadecimal digits

constexpr int kDifference = 1;  // exit status
constexpr int kUsage = 2;       // exit status
constexpr int kSkipped = 77;    // exit status

std::string hexadecimal(const support::Checksum& checksum) {
    char text[17];
    std::snprintf(text, sizeof text, "%016llx", static_cast<unsigned long long>(checksum.value()));
    return text;
}

MethodChecksums checksums(bool ofTwin) {
    const golden::Inputs inputs = golden::makeInputs();
    if (ofTwin) return golden::MethodRunner<golden::Twin>().run(inputs);
    return golden::MethodRunner<KORVANELASERALGO::KorvaneLaserAlgo>().run(inputs);
}

const char* nameOf(Group group) {
    return group == Group::kExact ? "exact" : "c-library";
}

void printAll(const MethodChecksums& all) {
    for (const Group group : {Group::kExact, Group::kCLibrary}) {
        support::Checksum combined;
        for (const MethodChecksum& entry : all) {
            if (entry.group != group) continue;
            std::printf("%-9s %-18s %s\n", nameOf(group), entry.method.data(), hexadecimal(entry.checksum).c_str());
            combined.add(entry.checksum.value());
        }
        std::printf("%-9s %-18s %s\n", nameOf(group), "all", hexadecimal(combined).c_str());
    }
}

void printExact(const MethodChecksums& all) {
    for (const MethodChecksum& entry : all) {
        if (entry.group == Group::kExact)
            std::printf("%-18s %s\n", entry.method.data(), hexadecimal(entry.checksum).c_str());
    }
}

Values valuesOf(const MethodChecksums& all, bool exactOnly) {
    Values values;
    for (const MethodChecksum& entry : all) {
        if (entry.group == Group::kExact || !exactOnly) values[std::string(entry.method)] = hexadecimal(entry.checksum);
    }
    return values;
}

Values readExpected(const std::string& name) {
    std::ifstream file(name);
    Values values;
    std::string method;
    std::string value;
    while (file >> method >> value) values[method] = value;
    return values;
}

// Names every method that differs, or that only one side has.
int compare(const char* expectedName, const Values& expected, const char* foundName, const Values& found) {
    constexpr const char* kNone = "none";
    Values all = expected;
    all.insert(found.begin(), found.end());
    int differences = 0;
    for (const auto& [method, value] : all) {
        const auto inExpected = expected.find(method);
        const auto inFound = found.find(method);
        const std::string expectedValue = inExpected == expected.end() ? kNone : inExpected->second;
        const std::string foundValue = inFound == found.end() ? kNone : inFound->second;
        if (expectedValue == foundValue) continue;
        std::printf("%s differs: %s has %s, %s has %s\n", method.c_str(), expectedName, expectedValue.c_str(),
                    foundName, foundValue.c_str());
        ++differences;
    }
    std::printf("%d of %d methods differ\n", differences, static_cast<int>(all.size()));
    return differences == 0 && !expected.empty() ? 0 : kDifference;
}

int run(std::vector<std::string> arguments) {
    const std::string kernels = "--kernels=";
    if (!arguments.empty() && arguments.front().rfind(kernels, 0) == 0) {
        switch (support::chooseKernels(arguments.front().substr(kernels.size()))) {
            case support::KernelChoice::kActive:
                break;
            case support::KernelChoice::kNotSupported:
                std::puts("Skipped: this processor does not have these kernels.");
                return kSkipped;
            case support::KernelChoice::kUnknown:
                std::fprintf(stderr, "golden_checksums: kernels are one of %s\n", support::kernelSetNames().c_str());
                return kUsage;
        }
        arguments.erase(arguments.begin());
    }

    bool ofTwin = false;
    std::string action = "--all";
    std::string file;
    for (const std::string& argument : arguments) {
        if (argument == "--twin") {
            ofTwin = true;
        } else if (action == "--expect" && file.empty()) {
            file = argument;
        } else if (action == "--all" && (argument == "--exact" || argument == "--expect" || argument == "--compare")) {
            action = argument;
        } else {
            action = "--help";
        }
    }
    const char* name = ofTwin ? "the twin" : "the library";

    if (action == "--all") {
        printAll(checksums(ofTwin));
        return 0;
    }
    if (action == "--exact") {
        printExact(checksums(ofTwin));
        return 0;
    }
    if (action == "--expect" && !file.empty())
        return compare(file.c_str(), readExpected(file), name, valuesOf(checksums(ofTwin), true));
    if (action == "--compare" && !ofTwin)
        return compare("the twin", valuesOf(checksums(true), false), name, valuesOf(checksums(false), false));
    std::fputs("usage: golden_checksums [--kernels=SET] [--twin] [--exact | --expect FILE] | --compare\n", stderr);
    return kUsage;
}

}  // namespace

int main(int argc, char** argv) {
    support::guardAgainstProcessEnd();
    int status = kUsage;
    try {
        status = run(std::vector<std::string>(argv + 1, argv + argc));
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "golden_checksums: %s\n", failure.what());
    }
    support::expectProcessEnd();
    return status;
}
