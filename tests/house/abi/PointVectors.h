/// @file PointVectors.h
/// @brief The types that the class only hands on, complete. Included before the class's own file where the binary
/// interface is described: otherwise the description knows their names alone, and a point that grows goes unnoticed.

#ifndef KORVANE_TESTS_HOUSE_ABI_POINTVECTORS_H
#define KORVANE_TESTS_HOUSE_ABI_POINTVECTORS_H

#include <vector>

#include "KorvaneLaserAlgo.h"

template class std::vector<KORVANELASERALGO::tagKorvaneLaserPoint2d>;
template class std::vector<KORVANELASERALGO::tagKorvaneLaserPoint3d>;

#endif  // KORVANE_TESTS_HOUSE_ABI_POINTVECTORS_H
