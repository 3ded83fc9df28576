/// @file ResultFolder.h
/// @brief The output folder, which receives all results of a run or none.

#ifndef KORVANE_HOST_RESULTFOLDER_H
#define KORVANE_HOST_RESULTFOLDER_H

#include <filesystem>
#include <string>
#include <vector>

namespace host {

/// Collects the results in a hidden folder within the output folder. `commit` moves them to their place, where they
/// replace the results of an earlier run; without it the destructor removes everything that this run has made, an
/// output folder that was not there before included.
class ResultFolder {
public:
    /// Makes the folders; throws `Failure`.
    explicit ResultFolder(const std::filesystem::path& folder);
    ~ResultFolder();

    ResultFolder(const ResultFolder&) = delete;
    ResultFolder& operator=(const ResultFolder&) = delete;

    /// Where to write a result for now.
    std::filesystem::path file(const std::string& name) const { return staging_ / name; }

    void commit();

private:
    std::filesystem::path folder_;
    std::filesystem::path staging_;
    std::vector<std::filesystem::path> made_;  // folders that were not there before, the innermost first
};

}  // namespace host

#endif  // KORVANE_HOST_RESULTFOLDER_H
