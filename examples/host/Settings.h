/// @file Settings.h
/// @brief Everything that the host can be told, and the JSON file that tells it.
///
/// The file has four optional objects: "ROI", "Calibration" and "LineSelect", whose keys are the fields of the
/// library's records, and "Chain", whose keys are those of `ChainSettings`.

#ifndef KORVANE_HOST_SETTINGS_H
#define KORVANE_HOST_SETTINGS_H

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "KorvaneLaserAlgo.h"

namespace host {

struct MergeImgSettings {
    bool enabled = false;
    double secondExposure = 3.0;  ///< exposure of the second frame of a pair, as a multiple of the first (simulated)
};

struct CalcImageBufferSettings {
    bool enabled = false;
};

struct GaussianBlurSettings {
    bool enabled = false;
    int kernelSize = 5;  ///< taps, odd
};

struct Otsu2Settings {
    bool enabled = false;
    int threshold = 60;  ///< grey levels; brighter pixels stay
};

struct Otsu3Settings {
    bool enabled = false;
};

struct OutlierSettings {
    bool enabled = false;
    int halfWidth = 0;       ///< points
    double threshold = 0.0;  ///< length units
};

struct WindowSettings {
    bool enabled = false;
    int halfWindow = 0;  ///< points
};

struct DownsampleSettings {
    bool enabled = false;
    double step = 0.25;  ///< length units
};

struct AutoExposureSettings {
    bool enabled = false;
    double target = 3.0;        ///< wanted bright width, pixels
    double minExposure = 0.05;  ///< factors on the simulated sensor's light
    double maxExposure = 8.0;
    double step = 0.1;
};

/// The chain, in the order in which a frame passes through it.
struct ChainSettings {
    MergeImgSettings mergeImg;
    CalcImageBufferSettings calcImageBuffer;
    GaussianBlurSettings gaussianBlur;
    Otsu2Settings otsu2;
    Otsu3Settings otsu3;
    std::string method = "Cal2DPoint1";
    int cap = 200;       ///< of Cal2DPoint3, grey levels
    int threshold = 60;  ///< of Cal2DPoint4, grey levels
    bool undistort = true;
    std::string cal3d = "Cal3DPoint1";
    bool calRt = true;            ///< compute the calibration's RT from its LaserPlane
    double travelPerFrame = 1.0;  ///< of the part under the sensor, length units
    OutlierSettings outlierDetect1{true, 5, 0.3};
    OutlierSettings outlierDetect2{false, 3, 1.0};
    WindowSettings medianFilter{true, 3};
    WindowSettings gaussianFilter{false, 2};  // it rounds steps below 5 length units
    DownsampleSettings downsample;
    AutoExposureSettings autoExposure;
};

struct Settings {
    /// Without one: the simulated sensor's, or the size of the first recorded frame at offset 0.
    std::optional<KORVANELASERALGO::tagKorvaneLaserAlgoROIInfo> roi;
    /// Without one: the simulated sensor's; recorded frames then yield 2D points only.
    std::optional<KORVANELASERALGO::tagKorvaneLaserAlgoCalibrationInfo> calibration;
    KORVANELASERALGO::tagKorvaneLaserAlgoLineSelectInfo lineSelect{};
    ChainSettings chain;
};

/// The six extraction methods, by their public names.
const std::vector<std::string>& methodNames();

/// Reads a settings file over the given settings: what it does not name stays. Throws `Failure`, naming file, key and
/// reason, for everything that is not exactly as it must be.
void readSettings(const std::filesystem::path& path, Settings& settings);

/// Writes a settings file that `readSettings` reads back to the same values, bit by bit.
void writeSettings(const std::filesystem::path& path, const Settings& settings);

/// Looks for what the library does not check: a calibration that cannot measure, line selection bounds that nothing
/// passes. Where the chain asks for it, computes `RT`. Throws `Failure`, its text beginning with `where`.
void completeSettings(Settings& settings, const std::string& where);

}  // namespace host

#endif  // KORVANE_HOST_SETTINGS_H
