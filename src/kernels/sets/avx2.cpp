// All passes, compiled for AVX2.

#define KORVANE_KERNEL_SET avx2
#define KORVANE_KERNEL_LEVEL 2
#define KORVANE_KERNEL_NAME "AVX2"

#include "kernels/lanes/Table.h"
