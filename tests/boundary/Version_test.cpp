// The version of the library that a host has loaded.

#include <gtest/gtest.h>

#include <cstdio>
#include <string>
#include <vector>

#include "KorvaneLaserAlgo.h"

#if defined(_WIN32)
#include <windows.h>
#endif

namespace {

/// "V0.00.01" for "0.0.1".
std::string versionTextOf(const std::string& version) {
    int major = 0;
    int minor = 0;
    int patch = 0;
    if (std::sscanf(version.c_str(), "%d.%d.%d", &major, &minor, &patch) != 3) return "not three numbers";
    char text[40];
    std::snprintf(text, sizeof text, "V%d.%02d.%02d", major, minor, patch);
    return text;
}

}  // namespace

TEST(VersionOfTheLibrary, IsTheProjects) {
    std::string text;
    KORVANELASERALGO::KorvaneLaserAlgo().GetSdkVersionString(text);
    EXPECT_EQ(text, versionTextOf(KORVANE_PROJECT_VERSION));
}

#if defined(_WIN32)

namespace {

/// The version resource of the loaded library.
class VersionResource {
public:
    VersionResource() {
        char file[MAX_PATH] = "";
        GetModuleFileNameA(GetModuleHandleA(KORVANE_LIBRARY_FILE), file, sizeof file);
        bytes_.resize(GetFileVersionInfoSizeA(file, nullptr));
        if (!bytes_.empty()) GetFileVersionInfoA(file, 0, static_cast<DWORD>(bytes_.size()), bytes_.data());
    }

    std::string text(const std::string& name) const {
        const char* value = query<char>("\\StringFileInfo\\040904B0\\" + name);
        return value != nullptr ? value : "";
    }

    /// The four numbers that installers compare.
    std::vector<unsigned> numbers() const {
        const auto* info = query<VS_FIXEDFILEINFO>("\\");
        if (info == nullptr) return {};
        return {HIWORD(info->dwFileVersionMS), LOWORD(info->dwFileVersionMS), HIWORD(info->dwFileVersionLS),
                LOWORD(info->dwFileVersionLS)};
    }

private:
    template <class Value>
    const Value* query(const std::string& path) const {
        void* value = nullptr;
        UINT size = 0;
        if (bytes_.empty() || VerQueryValueA(bytes_.data(), path.c_str(), &value, &size) == 0) return nullptr;
        return static_cast<const Value*>(value);
    }

    std::vector<char> bytes_;
};

}  // namespace

TEST(VersionResourceOfTheLibrary, HasTheProjectsVersionAndTheNameOfTheFile) {
    const VersionResource resource;
    EXPECT_EQ(resource.text("FileVersion"), KORVANE_PROJECT_VERSION);
    EXPECT_EQ(resource.text("ProductVersion"), KORVANE_PROJECT_VERSION);
    EXPECT_EQ(resource.text("OriginalFilename"), "KorvaneLaserAlgoSDK.dll");

    std::vector<unsigned> expected(4, 0);
    std::sscanf(KORVANE_PROJECT_VERSION, "%u.%u.%u", &expected[0], &expected[1], &expected[2]);
    EXPECT_EQ(resource.numbers(), expected);
}

#endif
