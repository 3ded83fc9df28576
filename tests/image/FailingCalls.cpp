#include "FailingCalls.h"

#include <dlfcn.h>
#include <pthread.h>

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <cstdlib>
#include <new>

// Ready before the first allocation of the program.
constinit CallCounter allocations;
constinit CallCounter threadStarts;

namespace {

void* allocate(std::size_t size) noexcept {
    return allocations.nextFails() ? nullptr : std::malloc(std::max<std::size_t>(size, 1));
}

void* allocateOrThrow(std::size_t size) {
    if (void* memory = allocate(size)) return memory;
    throw std::bad_alloc();
}

}  // namespace

// clang-format off
void* operator new(std::size_t size) { return allocateOrThrow(size); }
void* operator new[](std::size_t size) { return allocateOrThrow(size); }
void* operator new(std::size_t size, const std::nothrow_t&) noexcept { return allocate(size); }
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept { return allocate(size); }
void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete[](void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }
void operator delete[](void* memory, std::size_t) noexcept { std::free(memory); }
void operator delete(void* memory, const std::nothrow_t&) noexcept { std::free(memory); }
void operator delete[](void* memory, const std::nothrow_t&) noexcept { std::free(memory); }
// clang-format on

// Found by the C++ library in place of the C library's own, which does the work.
extern "C" int pthread_create(pthread_t* thread, const pthread_attr_t* attributes, void* (*body)(void*),
                              void* argument) noexcept {
    if (threadStarts.nextFails()) return EAGAIN;
    using Create = int (*)(pthread_t*, const pthread_attr_t*, void* (*)(void*), void*);
    static const Create create = reinterpret_cast<Create>(dlsym(RTLD_NEXT, "pthread_create"));
    return create(thread, attributes, body, argument);
}
