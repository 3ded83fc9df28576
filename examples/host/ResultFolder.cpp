#include "host/ResultFolder.h"

#include <algorithm>
#include <string>
#include <system_error>
#include <vector>

#include "common/Failure.h"

namespace host {
namespace {

using examples::Failure;
namespace fs = std::filesystem;

const char* const kStagingName = ".unfinished";

/// Whether a file bears one of the names that a run gives its results.
bool isResultName(const std::string& name) {
    if (name == "profiles.csv" || name == "cloud.ply" || name == "heightmap.png" || name == "summary.json") return true;
    for (const std::string prefix : {"overlay_", "profile_"}) {
        if (!name.starts_with(prefix) || !name.ends_with(".png")) continue;
        const std::string number = name.substr(prefix.size(), name.size() - prefix.size() - 4);
        return !number.empty() &&
               std::all_of(number.begin(), number.end(), [](char c) { return c >= '0' && c <= '9'; });
    }
    return false;
}

/// The folders of a path that do not exist yet, the innermost first.
std::vector<fs::path> missingFolders(const fs::path& path) {
    std::error_code unknown;
    std::vector<fs::path> missing;
    if (path.empty()) return missing;
    for (fs::path folder = fs::absolute(path).lexically_normal();
         folder.has_relative_path() && !fs::exists(folder, unknown); folder = folder.parent_path())
        if (folder.has_filename()) missing.push_back(folder);
    return missing;
}

std::vector<fs::path> entriesOf(const fs::path& folder) {
    std::error_code refused;
    std::vector<fs::path> entries;
    for (const auto& entry : fs::directory_iterator(folder, refused)) entries.push_back(entry.path());
    return entries;
}

}  // namespace

ResultFolder::ResultFolder(const fs::path& folder)
    : folder_(folder), staging_(folder / kStagingName), made_(missingFolders(folder)) {
    if (folder.empty()) throw Failure("the output folder has no name");
    std::error_code refused;
    std::error_code ignored;
    fs::remove_all(staging_, ignored);  // what a killed run may have left
    fs::create_directories(staging_, refused);
    if (refused) {
        for (const fs::path& made : made_) fs::remove(made, ignored);
        throw Failure(folder.string() + ": cannot be made an output folder: " + refused.message());
    }
}

ResultFolder::~ResultFolder() {
    std::error_code ignored;
    fs::remove_all(staging_, ignored);
    for (const fs::path& folder : made_) fs::remove(folder, ignored);  // only if it is empty
}

void ResultFolder::commit() {
    std::error_code refused;
    for (const fs::path& path : entriesOf(folder_))
        if (isResultName(path.filename().string())) fs::remove(path, refused);

    for (const fs::path& path : entriesOf(staging_)) {
        const fs::path target = folder_ / path.filename();
        fs::rename(path, target, refused);
        if (refused) throw Failure(target.string() + ": cannot be replaced: " + refused.message());
    }
}

}  // namespace host
