// Memory between two inaccessible pages: an access beyond it ends the program, whoever makes it and however wide.

#ifndef KORVANE_TESTS_SUPPORT_PAGEMEMORY_H
#define KORVANE_TESTS_SUPPORT_PAGEMEMORY_H

#include <cstddef>

namespace support {

class PageMemory {
public:
    /// At least `bytes`, in whole pages.
    explicit PageMemory(std::size_t bytes);
    ~PageMemory();

    PageMemory(const PageMemory&) = delete;
    PageMemory& operator=(const PageMemory&) = delete;

    unsigned char* begin() const { return pages_ + pageSize_; }
    unsigned char* end() const { return pages_ + size_ - pageSize_; }

private:
    std::size_t pageSize_;
    std::size_t size_;      // bytes, with the two inaccessible pages
    unsigned char* pages_;  // the first of the two
};

}  // namespace support

#endif  // KORVANE_TESTS_SUPPORT_PAGEMEMORY_H
