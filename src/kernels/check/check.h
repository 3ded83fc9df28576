// The kernels of the check build, and what they check.

#ifndef KORVANE_KERNELS_CHECK_CHECK_H
#define KORVANE_KERNELS_CHECK_CHECK_H

#include "kernels/kernels.h"

namespace KORVANELASERALGO::kernels {

/// The set that would be active in another build.
const KernelSet& chosen();

namespace check {

extern const KernelSet kTable;

}  // namespace check
}  // namespace KORVANELASERALGO::kernels

#endif  // KORVANE_KERNELS_CHECK_CHECK_H
