// The table of the set that is compiled for. No template of the standard library may be used in this room's lanes/: the
// linker keeps one copy of such a template for the whole program, and it could be the one that only some processors
// run.

#ifndef KORVANE_KERNELS_LANES_TABLE_H
#define KORVANE_KERNELS_LANES_TABLE_H

#include "kernels/lanes/Blur.h"
#include "kernels/lanes/Buckets.h"
#include "kernels/lanes/ColumnMaxima.h"
#include "kernels/lanes/CopyAbove.h"
#include "kernels/lanes/CopyWithMaxima.h"
#include "kernels/lanes/CutAndSum.h"
#include "kernels/lanes/Followers.h"
#include "kernels/lanes/GreyRanges.h"
#include "kernels/lanes/LightSheet.h"
#include "kernels/lanes/LineVotes.h"
#include "kernels/lanes/Marks.h"
#include "kernels/lanes/Medians.h"
#include "kernels/lanes/PointLists.h"
#include "kernels/lanes/Smoothing.h"
#include "kernels/lanes/StripeStarts.h"
#include "kernels/lanes/SubtractChange.h"
#include "kernels/lanes/SumAbove.h"
#include "kernels/lanes/Transitions.h"
#include "kernels/lanes/Undistort.h"
#include "kernels/lanes/Votes.h"

namespace KORVANELASERALGO::kernels::KORVANE_KERNEL_SET {

extern const KernelSet kTable;
const KernelSet kTable = {
    .name = KORVANE_KERNEL_NAME,
    .findColumnMaxima = findColumnMaxima,
    .findTransitions = findTransitions,
    .sumAbove = sumAbove,
    .findStripeStarts = findStripeStarts,
    .cutAndSum = cutAndSum,
    .copyAbove = copyAbove,
    .widenRanges = widenRanges,
    .copyWithMaxima = copyWithMaxima,
    .subtractChange = subtractChange,
    .blurRows = blurRows,
    .blurColumns = blurColumns,
    .markAbove = markAbove,
    .countMarks = countMarks,
    .castVotes = castVotes,
    .sumVotes = sumVotes,
    .boundVotes = boundVotes,
    .findNearLine = findNearLine,
    .undistort = undistort,
    .meetPlane = meetPlane,
    .meetSurface = meetSurface,
    .listHeights = listHeights,
    .storeHeights = storeHeights,
    .findMedians = findMedians,
    .smoothHeights = smoothHeights,
    .listUsable = listUsable,
    .keepOutliers = keepOutliers,
    .countFollowers = countFollowers,
    .numberBuckets = numberBuckets,
};

}  // namespace KORVANELASERALGO::kernels::KORVANE_KERNEL_SET

#endif  // KORVANE_KERNELS_LANES_TABLE_H
