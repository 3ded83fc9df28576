// The settings of one sensor stream: all that an algorithm reads besides its arguments.

#ifndef KORVANE_ALGO_ALGOCONTEXT_H
#define KORVANE_ALGO_ALGOCONTEXT_H

#include "KorvaneLaserAlgo.h"

namespace KORVANELASERALGO {

struct AlgoContext {
    tagKorvaneLaserAlgoROIInfo roi;
    tagKorvaneLaserAlgoCalibrationInfo calibration;
    tagKorvaneLaserAlgoLineSelectInfo lineSelect;
};

}  // namespace KORVANELASERALGO

#endif  // KORVANE_ALGO_ALGOCONTEXT_H
