/// @file ProfilesCsv.h
/// @brief `profiles.csv`, line by line.

#ifndef KORVANE_HOST_PROFILESCSV_H
#define KORVANE_HOST_PROFILESCSV_H

#include <filesystem>

#include "common/AtomicFile.h"
#include "host/Chain.h"

namespace host {

class ProfilesCsv {
public:
    /// @param hasCalibration the lines hold x, y and z; else the stripe's row
    ProfilesCsv(const std::filesystem::path& path, bool hasCalibration);

    void addFrame(int index, const ChainResult& result);
    void finish() { file_.commit(); }

private:
    examples::AtomicFile file_;
    bool hasCalibration_;
};

}  // namespace host

#endif  // KORVANE_HOST_PROFILESCSV_H
