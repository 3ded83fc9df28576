// All passes, compiled for AVX512.

#define KORVANE_KERNEL_SET avx512
#define KORVANE_KERNEL_LEVEL 3
#define KORVANE_KERNEL_NAME "AVX512"

#if defined(__GNUC__) && !defined(__clang__)
// GCC takes the undefined registers in its own headers for uninitialised variables.
#pragma GCC diagnostic ignored "-Wmaybe-uninitialized"
#endif

#include "kernels/lanes/Table.h"
