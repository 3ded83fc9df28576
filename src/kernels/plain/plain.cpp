#include "kernels/plain/plain.h"

namespace KORVANELASERALGO::kernels::plain {

const KernelSet kTable = {
    "plain",       findColumnMaxima, findTransitions, sumAbove,       findStripeStarts, cutAndSum,
    copyAbove,     widenRanges,      copyWithMaxima,  subtractChange, markAbove,        countMarks,
    undistort,     meetPlane,        meetSurface,     listHeights,    storeHeights,     findMedians,
    smoothHeights, listUsable,       keepOutliers,    countFollowers, numberBuckets,
};

}  // namespace KORVANELASERALGO::kernels::plain
