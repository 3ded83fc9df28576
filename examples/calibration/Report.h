/// @file Report.h
/// @brief What a calibration says about itself on the terminal.

#ifndef KORVANE_CALIBRATION_REPORT_H
#define KORVANE_CALIBRATION_REPORT_H

#include <string>

#include "calibration/Run.h"

namespace calibration {

std::string reportText(const Options& options, const Result& result);

}  // namespace calibration

#endif  // KORVANE_CALIBRATION_REPORT_H
