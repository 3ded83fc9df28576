#include "faults/FailingCalls.h"

#include <pthread.h>

#if defined(_WIN32)
#include <malloc.h>
#else
#include <dlfcn.h>
#endif

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <new>

// Ready before the first allocation of the program.
constinit CallCounter allocations;
constinit CallCounter threadStarts;
constinit std::atomic<int> allocationsBeforeFailedStart = 0;
constinit std::atomic<long> liveAllocations = 0;

namespace {

#if defined(_WIN32)

void* allocateFromSystem(std::size_t size, std::size_t alignment) {
    return _aligned_malloc(size, alignment);
}
void releaseToSystem(void* memory) {
    _aligned_free(memory);
}

#else

void* allocateFromSystem(std::size_t size, std::size_t alignment) {
    return std::aligned_alloc(alignment, (size + alignment - 1) / alignment * alignment);
}
void releaseToSystem(void* memory) {
    std::free(memory);
}

#endif

void* allocate(std::size_t size, std::size_t alignment = alignof(std::max_align_t)) noexcept {
    if (allocations.nextFails() || size > kLargestAllocation) return nullptr;
    void* memory = allocateFromSystem(std::max<std::size_t>(size, 1), alignment);
    if (memory != nullptr) ++liveAllocations;
    return memory;
}

void* allocateOrThrow(std::size_t size, std::size_t alignment = alignof(std::max_align_t)) {
    if (void* memory = allocate(size, alignment)) return memory;
    throw std::bad_alloc();
}

void release(void* memory) noexcept {
    if (memory != nullptr) --liveAllocations;
    releaseToSystem(memory);
}

std::size_t bytes(std::align_val_t alignment) {
    return static_cast<std::size_t>(alignment);
}

/// Counts a start, and tells whether to fail it.
bool startFails() {
    if (!threadStarts.nextFails()) return false;
    allocationsBeforeFailedStart = allocations.calls();
    return true;
}

}  // namespace

// clang-format off
void* operator new(std::size_t size) { return allocateOrThrow(size); }
void* operator new[](std::size_t size) { return allocateOrThrow(size); }
void* operator new(std::size_t size, const std::nothrow_t&) noexcept { return allocate(size); }
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept { return allocate(size); }
void* operator new(std::size_t size, std::align_val_t alignment) { return allocateOrThrow(size, bytes(alignment)); }
void* operator new[](std::size_t size, std::align_val_t alignment) { return allocateOrThrow(size, bytes(alignment)); }
void operator delete(void* memory) noexcept { release(memory); }
void operator delete[](void* memory) noexcept { release(memory); }
void operator delete(void* memory, std::size_t) noexcept { release(memory); }
void operator delete[](void* memory, std::size_t) noexcept { release(memory); }
void operator delete(void* memory, const std::nothrow_t&) noexcept { release(memory); }
void operator delete[](void* memory, const std::nothrow_t&) noexcept { release(memory); }
void operator delete(void* memory, std::align_val_t) noexcept { release(memory); }
void operator delete[](void* memory, std::align_val_t) noexcept { release(memory); }
void operator delete(void* memory, std::size_t, std::align_val_t) noexcept { release(memory); }
void operator delete[](void* memory, std::size_t, std::align_val_t) noexcept { release(memory); }
// clang-format on

#if defined(_WIN32)

// The linker lets every call of pthread_create in the program end in the second function; the first is the real one.
extern "C" int __real_pthread_create(pthread_t*, const pthread_attr_t*, void* (*)(void*), void*);
extern "C" int __wrap_pthread_create(pthread_t* thread, const pthread_attr_t* attributes, void* (*body)(void*),
                                     void* argument) {
    return startFails() ? EAGAIN : __real_pthread_create(thread, attributes, body, argument);
}

#else

// Found by the C++ library in place of the C library's own, which does the work.
extern "C" int pthread_create(pthread_t* thread, const pthread_attr_t* attributes, void* (*body)(void*),
                              void* argument) noexcept {
    if (startFails()) return EAGAIN;
    using Create = int (*)(pthread_t*, const pthread_attr_t*, void* (*)(void*), void*);
    static const Create create = reinterpret_cast<Create>(dlsym(RTLD_NEXT, "pthread_create"));
    return create(thread, attributes, body, argument);
}

#endif
