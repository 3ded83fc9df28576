// All passes, compiled for AVX512.

#define KORVANE_KERNEL_SET avx512
#define KORVANE_KERNEL_LEVEL 3
#define KORVANE_KERNEL_NAME "AVX512"

// GCC 12 takes the undefined registers in its own headers for uninitialised variables.
#if defined(__GNUC__) && !defined(__clang__)
#pragma GCC diagnostic ignored "-Wmaybe-uninitialized"
#pragma GCC diagnostic ignored "-Wuninitialized"
#endif

#include "kernels/lanes/Table.h"
