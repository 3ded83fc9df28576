// Lets a program run with another set of kernels than the processor's best.

#ifndef KORVANE_TESTS_SUPPORT_KERNELSETS_H
#define KORVANE_TESTS_SUPPORT_KERNELSETS_H

#include <string>

#include "kernels/kernels.h"

namespace support {

enum class KernelChoice { kActive, kNotSupported, kUnknown };

/// Makes the set of a name the active one, where this processor has it.
inline KernelChoice chooseKernels(const std::string& name) {
    for (const auto& candidate : KORVANELASERALGO::kernels::setsOfBuild()) {
        if (name != candidate.set->name) continue;
        if (!candidate.supported) return KernelChoice::kNotSupported;
        KORVANELASERALGO::kernels::activate(*candidate.set);
        return KernelChoice::kActive;
    }
    return KernelChoice::kUnknown;
}

/// "plain SSE2 AVX2", say.
inline std::string kernelSetNames() {
    std::string names;
    for (const auto& candidate : KORVANELASERALGO::kernels::setsOfBuild()) {
        if (!names.empty()) names += ' ';
        names += candidate.set->name;
    }
    return names;
}

}  // namespace support

#endif  // KORVANE_TESTS_SUPPORT_KERNELSETS_H
