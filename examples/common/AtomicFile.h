/// @file AtomicFile.h
/// @brief A file that is either complete or not there.

#ifndef KORVANE_EXAMPLES_ATOMICFILE_H
#define KORVANE_EXAMPLES_ATOMICFILE_H

#include <filesystem>
#include <fstream>
#include <string_view>

namespace examples {

/// Writes under a temporary name in the same folder; `commit` gives the file its real name and replaces an older one.
/// Without `commit` the destructor removes what was written.
class AtomicFile {
public:
    /// Opens the temporary file for binary writing; throws `Failure`.
    explicit AtomicFile(std::filesystem::path path);
    ~AtomicFile();

    AtomicFile(const AtomicFile&) = delete;
    AtomicFile& operator=(const AtomicFile&) = delete;

    /// Appends bytes; throws `Failure` as soon as the system refuses some, such as on a full disk.
    void write(std::string_view bytes);
    /// Closes and renames; throws `Failure` where either is refused.
    void commit();

private:
    std::filesystem::path path_;
    std::filesystem::path temporary_;
    std::ofstream stream_;
};

}  // namespace examples

#endif  // KORVANE_EXAMPLES_ATOMICFILE_H
