#include "boundary/ThreadShortage.h"

#include <array>
#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <vector>

#if defined(_WIN32)
#include <windows.h>
// After the types that it needs.
#include <psapi.h>
#elif defined(__linux__)
#include <pthread.h>
#endif

namespace boundary {

#if defined(_WIN32)

namespace {

// Every thread of a C or C++ program starts through this function of the C library, which gives 0 where it fails.
constexpr char kStart[] = "_beginthreadex";

std::uintptr_t failToStart(void*, unsigned, unsigned (*)(void*), void*, unsigned, unsigned*) {
    errno = EAGAIN;
    return 0;
}

/// The place in a module that holds the address of an imported function; null where the module does not import it.
std::uintptr_t* importOf(HMODULE module, const char* function) {
    auto* const base = reinterpret_cast<unsigned char*>(module);
    const auto* const dos = reinterpret_cast<IMAGE_DOS_HEADER*>(base);
    const auto* const headers = reinterpret_cast<IMAGE_NT_HEADERS*>(base + dos->e_lfanew);
    const IMAGE_DATA_DIRECTORY& directory = headers->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT];
    if (directory.Size == 0) return nullptr;

    for (auto* from = reinterpret_cast<IMAGE_IMPORT_DESCRIPTOR*>(base + directory.VirtualAddress); from->Name != 0;
         ++from) {
        if (from->OriginalFirstThunk == 0) continue;
        const auto* names = reinterpret_cast<IMAGE_THUNK_DATA*>(base + from->OriginalFirstThunk);
        auto* addresses = reinterpret_cast<std::uintptr_t*>(base + from->FirstThunk);
        for (; names->u1.AddressOfData != 0; ++names, ++addresses) {
            if (IMAGE_SNAP_BY_ORDINAL(names->u1.Ordinal)) continue;
            const auto* const name = reinterpret_cast<IMAGE_IMPORT_BY_NAME*>(base + names->u1.AddressOfData);
            if (std::strcmp(reinterpret_cast<const char*>(name->Name), function) == 0) return addresses;
        }
    }
    return nullptr;
}

void replace(std::uintptr_t* place, std::uintptr_t address) {
    DWORD before = 0;
    VirtualProtect(place, sizeof *place, PAGE_READWRITE, &before);
    *place = address;
    VirtualProtect(place, sizeof *place, before, &before);
}

struct Import {
    std::uintptr_t* place;
    std::uintptr_t address;
};
std::vector<Import> replaced;

}  // namespace

ThreadShortage::ThreadShortage() {
    std::array<HMODULE, 256> modules{};
    DWORD bytes = 0;
    EnumProcessModules(GetCurrentProcess(), modules.data(), sizeof modules, &bytes);
    for (std::size_t i = 0; i < bytes / sizeof(HMODULE) && i < modules.size(); ++i) {
        std::uintptr_t* const place = importOf(modules[i], kStart);
        if (place == nullptr) continue;
        replaced.push_back({place, *place});
        replace(place, reinterpret_cast<std::uintptr_t>(&failToStart));
    }
}

ThreadShortage::~ThreadShortage() {
    for (const Import& import : replaced) replace(import.place, import.address);
    replaced.clear();
}

bool ThreadShortage::isPossible() {
    return true;
}

#elif defined(__GLIBC__)

namespace {

std::size_t stackSizeBefore = 0;  // bytes

/// Returns the size until now.
std::size_t setDefaultStackSize(std::size_t bytes) {
    pthread_attr_t attributes;
    std::size_t before = 0;
    pthread_getattr_default_np(&attributes);
    pthread_attr_getstacksize(&attributes, &before);
    pthread_attr_setstacksize(&attributes, bytes);
    pthread_setattr_default_np(&attributes);
    pthread_attr_destroy(&attributes);
    return before;
}

}  // namespace

// A thread asks for a stack that is greater than all addresses of the process.
ThreadShortage::ThreadShortage() {
    stackSizeBefore = setDefaultStackSize(std::size_t{1} << 60);
}

ThreadShortage::~ThreadShortage() {
    setDefaultStackSize(stackSizeBefore);
}

bool ThreadShortage::isPossible() {
    return true;
}

#else

ThreadShortage::ThreadShortage() = default;
ThreadShortage::~ThreadShortage() = default;

bool ThreadShortage::isPossible() {
    return false;
}

#endif

}  // namespace boundary
