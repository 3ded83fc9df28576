// All passes, compiled for SSE2.

#define KORVANE_KERNEL_SET sse2
#define KORVANE_KERNEL_LEVEL 1
#define KORVANE_KERNEL_NAME "SSE2"

#include "kernels/lanes/Table.h"
