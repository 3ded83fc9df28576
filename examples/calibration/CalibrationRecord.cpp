#include "calibration/CalibrationRecord.h"

#include <algorithm>
#include <cmath>
#include <nlohmann/json.hpp>

#include "calibration/TargetViews.h"
#include "common/AtomicFile.h"
#include "common/Failure.h"

namespace calibration {

using examples::Failure;
using KORVANELASERALGO::KorvaneLaserAlgo;
using KORVANELASERALGO::tagKorvaneLaserAlgoCalibrationInfo;
using KORVANELASERALGO::tagKorvaneLaserAlgoROIInfo;

void fillTransform(tagKorvaneLaserAlgoCalibrationInfo& record) {
    constexpr double kSmallestC2 = 1e-6;  // below, the sheet is as good as seen from its own front: c0 / c2 explodes
    constexpr double kLargestC2 = 1e6;    // CalRT takes up to about 1e8
    if (!std::all_of(record.LaserPlane, record.LaserPlane + 6, [](double c) { return std::isfinite(c); }))
        throw Failure("the light surface has coefficients that are not finite");
    if (std::abs(record.LaserPlane[2]) < kSmallestC2)
        throw Failure("the light surface is parallel to the camera's rows (c2 is 0), for which there is no RT");
    if (std::abs(record.LaserPlane[2]) > kLargestC2)
        throw Failure("the light surface contains the camera's line of sight (|c2| is huge): it cannot measure");

    KorvaneLaserAlgo().CalRT(record.LaserPlane, record.RT);
}

tagKorvaneLaserAlgoCalibrationInfo makeRecord(const tagKorvaneLaserAlgoCalibrationInfo& lens,
                                              const LightSurface& surface) {
    tagKorvaneLaserAlgoCalibrationInfo record = lens;
    std::copy(surface.coefficients.begin(), surface.coefficients.end(), record.LaserPlane);
    fillTransform(record);
    return record;
}

double outputYOfPlane(const tagKorvaneLaserAlgoCalibrationInfo& record) {
    const double c0 = record.LaserPlane[0];
    const double c1 = record.LaserPlane[1];
    const double c2 = record.LaserPlane[2];
    const double s = std::copysign(std::sqrt(c1 * c1 + c2 * c2 + 1.0), c2);
    return c0 / c2 - c0 / s;
}

std::string conversionFor(SurfaceForm form) {
    return form == SurfaceForm::plane ? "Cal3DPoint1" : "Cal3DPoint2";
}

void writeSettingsFile(const std::filesystem::path& path, const tagKorvaneLaserAlgoROIInfo& roi,
                       const tagKorvaneLaserAlgoCalibrationInfo& record, SurfaceForm form, const std::string& method) {
    nlohmann::ordered_json json;
    json["ROI"] = {{"OffsetX", roi.OffsetX}, {"OffsetY", roi.OffsetY}, {"Width", roi.Width}, {"Height", roi.Height}};
    json["Calibration"] = {{"CameraMatrix", record.CameraMatrix},
                           {"DistCoeffs", record.DistCoeffs},
                           {"LaserPlane", record.LaserPlane},
                           {"RT", record.RT}};
    json["LineSelect"] = {{"GrayMin", kLineSelect.GrayMin},
                          {"GrayMax", kLineSelect.GrayMax},
                          {"WidthMin", kLineSelect.WidthMin},
                          {"WidthMax", kLineSelect.WidthMax},
                          {"SelectMode", kLineSelect.SelectMode}};
    json["Chain"] = {{"Method", method}, {"Undistort", true}, {"Cal3D", conversionFor(form)}, {"CalRT", true}};

    examples::AtomicFile file(path);
    file.write(json.dump(4) + "\n");
    file.commit();
}

}  // namespace calibration
