/// @file Pictures.h
/// @brief The pictures among the results.

#ifndef KORVANE_HOST_PICTURES_H
#define KORVANE_HOST_PICTURES_H

#include <optional>

#include "common/HeightMap.h"
#include "common/Image.h"
#include "host/Chain.h"
#include "host/FrameSource.h"

namespace host {

/// The profile of one frame over x. With a table distance: heights above the table, and for frames with truth the true
/// surface and, below, the error column by column. Without: z itself, the axis turned so that up is towards the sensor.
examples::ColourImage drawProfile(const SourceFrame& frame, const ChainResult& result,
                                  std::optional<double> tableDistance);

/// The profile of one frame as a line of the height map.
examples::ScanLine scanLine(const ChainResult& result, std::optional<double> tableDistance);

/// An empty scan with its labels.
examples::Scan emptyScan(std::optional<double> tableDistance, double travelPerFrame);

}  // namespace host

#endif  // KORVANE_HOST_PICTURES_H
