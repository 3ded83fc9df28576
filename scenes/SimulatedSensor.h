/// @file SimulatedSensor.h
/// @brief A laser-line sensor that exists in arithmetic only: renders the frames it would deliver, and tells the truth.
///
/// A pinhole camera with Brown-Conrady distortion and a light sheet look at a surface. The frames are the same bytes on
/// every compiler and system: nothing but + - * / and square roots makes them.
///
/// Frames of reference, in millimetres:
/// - camera frame (X, Y, Z): as in the calibration record;
/// - output frame (x, y, z): what `RT` of the calibration makes of it. x runs along the profile, y across the light
///   sheet (constant for a flat one), z along the light, away from the sensor. A surface of height h therefore lies at
///   z = tableDistance - h;
/// - travel: the part moves under the sensor along y by `travelPerFrame` from frame to frame. A frame at travel t shows
///   the part's cross-section t where the light sheet is flat; what lies at a greater y belongs to a greater travel.
///
/// A surface point is seen where neither the way to the laser nor the way to the camera passes through the part.

#ifndef KORVANE_SCENES_SIMULATEDSENSOR_H
#define KORVANE_SCENES_SIMULATEDSENSOR_H

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "KorvaneLaserAlgo.h"

namespace scenes {

/// Camera, lens and light sheet.
struct Sensor {
    KORVANELASERALGO::tagKorvaneLaserAlgoROIInfo roi;
    KORVANELASERALGO::tagKorvaneLaserAlgoCalibrationInfo calibration;
    double laserSourceX;       ///< output x of the point from which the sheet's light fans out, mm
    double laserSourceZ;       ///< output z of that point, mm; light that reaches a point comes at the point's own y
    double tableDistance;      ///< output z of a surface of height 0, mm
    bool curvedSheet = false;  ///< the light surface has all six coefficients (`Cal3DPoint2`), else it is a plane
};

/// How the stripe looks in the camera, in grey levels and pixels.
struct StripeLook {
    double peak = 225.0;            ///< grey levels above the background, at the stripe's centre and exposure 1
    double sigmaRows = 1.9;         ///< standard deviation of the Gaussian cross-section, rows
    double background = 8.0;        ///< mean grey level without light, at exposure 1
    double backgroundRipple = 0.0;  ///< slow change of the background over the frame, grey levels peak to peak
    double noise = 1.5;             ///< standard deviation of the sensor noise, grey levels
    double reflection = 0.0;        ///< brightness of a second stripe, as a share of the first; 0 has none
    double reflectionRows = 60.0;   ///< the second stripe lies this far below the first, rows
    double dropoutShare = 0.0;      ///< share of the columns whose stripe (not its reflection) is missing, in gaps
    double specksPerColumn = 0.0;   ///< mean number of bright specks in a column
    double shine = 0.0;             ///< share of the columns with a glint: saturated and several times as wide
};

/// A part under the sensor.
struct Scene {
    std::string name;
    std::string description;                                ///< one line for a list
    std::function<double(double x, double travel)> height;  ///< mm above the table; the part and the table around it
    double travelPerFrame;                                  ///< mm
    StripeLook look;
    double maximumHeight = 100.0;  ///< mm above the table; nothing of the surface is higher
};

/// Where the stripe truly is, for one column of the ROI. Where a column shows several lit points, all are drawn, alike
/// in brightness, and the topmost counts. Row and point are 0 where none is visible.
struct TruePoint {
    bool visible;                                    ///< the column shows the stripe, its centre within the ROI
    double row;                                      ///< row of the stripe's centre, full-sensor pixels, as imaged
    KORVANELASERALGO::tagKorvaneLaserPoint3d point;  ///< the surface point, output frame, mm
};

/// One frame of the simulated sensor.
struct Frame {
    std::vector<unsigned char> pixels;  ///< roi.Width x roi.Height bytes, row-major
    std::vector<TruePoint> truth;       ///< one per column; of what the surface shows, dropouts count as not visible
};

/// Light and time of one frame.
struct Shot {
    int frame = 0;              ///< travel is frame * travelPerFrame; noise differs from frame to frame
    std::uint32_t seed = 1;     ///< everything random follows from seed and frame
    double exposure = 1.0;      ///< factor on stripe and background before saturation at 255
    double flicker = 0.0;       ///< standard deviation of a factor on the exposure, per frame (0.1 is 10 %)
    double travelOffset = 0.0;  ///< mm added to the travel
};

/// Size of the simulated chip in pixels; a ROI must not leave it.
inline constexpr int kChipWidth = 1440;
inline constexpr int kChipHeight = 1080;

/// The sensor that all examples use: 1280 x 1024 pixels, about 80 mm wide, 30 degrees between light and view.
Sensor standardSensor();
/// The same camera with a light sheet that is bent, for `Cal3DPoint2`.
Sensor curvedSheetSensor();
/// A copy of a sensor that reads out another region of the same chip.
Sensor withRoi(const Sensor& sensor, int offsetX, int offsetY, int width, int height);

/// Names of the built-in scenes, in the order in which a list shows them.
std::vector<std::string> sceneNames();
/// A built-in scene; throws std::invalid_argument for a name that does not exist.
Scene makeScene(const std::string& name);

/// Renders frames of one scene with one sensor. Precomputes what does not depend on the frame.
class Renderer {
public:
    /// Keeps copies of both.
    Renderer(const Sensor& sensor, const Scene& scene);
    ~Renderer();
    Renderer(Renderer&&) noexcept;
    Renderer& operator=(Renderer&&) noexcept;

    /// The same shot gives the same bytes, here and everywhere. May be called from several threads at once.
    Frame render(const Shot& shot) const;

private:
    struct State;
    std::unique_ptr<State> state_;
};

/// Pixel (column x, row y; full sensor, as imaged) of a point of the camera frame: pinhole projection, then forward
/// Brown-Conrady distortion.
KORVANELASERALGO::tagKorvaneLaserPoint2d project(
    const KORVANELASERALGO::tagKorvaneLaserAlgoCalibrationInfo& calibration, double X, double Y, double Z);

}  // namespace scenes

#endif  // KORVANE_SCENES_SIMULATEDSENSOR_H
