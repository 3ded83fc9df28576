#include "common/AtomicFile.h"

#include <system_error>
#include <utility>

#include "common/Failure.h"

namespace examples {

AtomicFile::AtomicFile(std::filesystem::path path) : path_(std::move(path)), temporary_(path_) {
    temporary_ += ".part";
    stream_.open(temporary_, std::ios::binary | std::ios::trunc);
    if (!stream_) throw Failure(path_.string() + ": cannot be written");
}

AtomicFile::~AtomicFile() {
    if (temporary_.empty()) return;
    stream_.close();
    std::error_code ignored;
    std::filesystem::remove(temporary_, ignored);
}

void AtomicFile::write(std::string_view bytes) {
    if (!stream_.write(bytes.data(), static_cast<std::streamsize>(bytes.size())))
        throw Failure(path_.string() + ": writing failed; is the disk full?");
}

void AtomicFile::commit() {
    stream_.close();
    if (!stream_) throw Failure(path_.string() + ": writing failed; is the disk full?");
    std::error_code refused;
    std::filesystem::rename(temporary_, path_, refused);
    if (refused) throw Failure(path_.string() + ": cannot be replaced: " + refused.message());
    temporary_.clear();
}

}  // namespace examples
