#include "kernels/plain/plain.h"

namespace KORVANELASERALGO::kernels::plain {

const KernelSet kTable = {
    .name = "plain",
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

}  // namespace KORVANELASERALGO::kernels::plain
