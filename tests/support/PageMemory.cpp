#include "support/PageMemory.h"

#include <new>

#if defined(_WIN32)
#include <windows.h>
#else
#include <sys/mman.h>
#include <unistd.h>
#endif

namespace support {
namespace {

#if defined(_WIN32)

std::size_t systemPageSize() {
    SYSTEM_INFO info;
    GetSystemInfo(&info);
    return info.dwPageSize;
}
void* mapPages(std::size_t bytes) {
    return VirtualAlloc(nullptr, bytes, MEM_RESERVE | MEM_COMMIT, PAGE_READWRITE);
}
bool makeInaccessible(void* page, std::size_t bytes) {
    DWORD before = 0;
    return VirtualProtect(page, bytes, PAGE_NOACCESS, &before) != 0;
}
void unmapPages(void* pages, std::size_t) {
    VirtualFree(pages, 0, MEM_RELEASE);
}

#else

std::size_t systemPageSize() {
    return static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
}
void* mapPages(std::size_t bytes) {
    void* pages = mmap(nullptr, bytes, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    return pages == MAP_FAILED ? nullptr : pages;
}
bool makeInaccessible(void* page, std::size_t bytes) {
    return mprotect(page, bytes, PROT_NONE) == 0;
}
void unmapPages(void* pages, std::size_t bytes) {
    munmap(pages, bytes);
}

#endif

}  // namespace

PageMemory::PageMemory(std::size_t bytes)
    : pageSize_(systemPageSize()),
      size_((bytes + pageSize_ - 1) / pageSize_ * pageSize_ + 2 * pageSize_),
      pages_(static_cast<unsigned char*>(mapPages(size_))) {
    if (pages_ == nullptr) throw std::bad_alloc();
    if (!makeInaccessible(pages_, pageSize_) || !makeInaccessible(end(), pageSize_)) {
        unmapPages(pages_, size_);
        throw std::bad_alloc();
    }
}

PageMemory::~PageMemory() {
    unmapPages(pages_, size_);
}

}  // namespace support
