// All passes, compiled for AVX512.

#define KORVANE_KERNEL_SET avx512
#define KORVANE_KERNEL_LEVEL 3
#define KORVANE_KERNEL_NAME "AVX512"

#include "kernels/lanes/Table.h"
