/// @file Frames.h
/// @brief Frames of the simulated sensor, several of each kind, and the profiles that are measured from them.

#ifndef KORVANE_BENCH_FRAMES_H
#define KORVANE_BENCH_FRAMES_H

#include <memory>
#include <string>
#include <vector>

#include "KorvaneLaserAlgo.h"
#include "reference.h"
#include "scenes/SimulatedSensor.h"

namespace bench {

using Bytes = std::vector<unsigned char>;
using Points2d = std::vector<KORVANELASERALGO::tagKorvaneLaserPoint2d>;
using Profile = std::vector<KORVANELASERALGO::tagKorvaneLaserPoint3d>;

/// Columns and rows of a frame.
struct Size {
    int width;
    int height;

    std::size_t pixels() const { return static_cast<std::size_t>(width) * static_cast<std::size_t>(height); }
};

/// The standard sensor with more or fewer pixels over the same field of view, and a ROI around the stripe.
scenes::Sensor sensorOfSize(Size size);
/// The same with the bent light sheet.
scenes::Sensor curvedSheetSensorOfSize(Size size);

/// What frames look like:
///   clean      one stripe over steps, a background of up to 16 grey levels
///   hard       gaps, glints, a second stripe, specks, noise of up to 25 grey levels
///   dark       noise of up to 25 grey levels, and nothing else
///   ambient    clean in a background of 34 to 56 grey levels
///   noisy      clean in noise that crosses every threshold
///   few greys  hard, cut down to four grey levels
///   blob       clean with a saturated blob that hangs from the top edge
///   N specks   clean with N bright specks in a column
scenes::Scene sceneOfKind(const std::string& kind);

/// As many different frames as it takes to exceed the second-level cache. Made once for each kind and size.
using Frames = std::shared_ptr<std::vector<Bytes>>;
Frames framesOfKind(const std::string& kind, Size size);
/// Gives back the memory of frames that no item uses.
void forgetFrames();
/// The same scenes with three times the exposure.
Frames brightFramesOfKind(const std::string& kind, Size size);
/// Renders without keeping.
std::vector<Bytes> render(const scenes::Scene& scene, Size size, int count, double exposure = 1.0);

/// What the chain makes of hard frames: several vectors of a few hundred KiB altogether, as they pass from one method
/// to the next.
struct Measured {
    std::vector<Points2d> points;
    std::vector<std::unique_ptr<bool[]>> masks;
    std::vector<Profile> profiles;  // as `Cal3DPoint1` yields them
};
std::shared_ptr<const Measured> measuredProfiles(int columns);

/// How the line-selecting methods choose: as the host has it for the simulated sensor.
inline constexpr KORVANELASERALGO::tagKorvaneLaserAlgoLineSelectInfo kLineSelect{140, 255, 4, 40, 1};

/// Library and twin with the same settings.
struct Stream {
    explicit Stream(const scenes::Sensor& sensor);

    KORVANELASERALGO::KorvaneLaserAlgo library;
    reference::Settings twin;
};

}  // namespace bench

#endif  // KORVANE_BENCH_FRAMES_H
