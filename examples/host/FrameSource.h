/// @file FrameSource.h
/// @brief Where frames come from: the simulated sensor, or picture files.

#ifndef KORVANE_HOST_FRAMESOURCE_H
#define KORVANE_HOST_FRAMESOURCE_H

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include "KorvaneLaserAlgo.h"
#include "common/Image.h"
#include "scenes/SimulatedSensor.h"

namespace host {

/// One frame, as the camera delivered it.
struct SourceFrame {
    std::string name;  ///< for titles and messages
    examples::GreyImage image;
    examples::GreyImage second;            ///< the same view and size at another exposure; empty unless in pairs
    std::vector<scenes::TruePoint> truth;  ///< one per column; empty for recorded frames
};

/// Delivers frames in order.
class FrameSource {
public:
    virtual ~FrameSource() = default;

    virtual std::string description() const = 0;
    virtual int frameCount() const = 0;
    /// @param index 0 .. frameCount() - 1
    /// @param exposure factor on the simulated sensor's light; recorded frames have theirs
    virtual SourceFrame frame(int index, double exposure) = 0;
};

/// Renders frames of a scene.
class SimulatedSource : public FrameSource {
public:
    struct Options {
        int frames = 0;
        std::uint32_t seed = 1;
        double flicker = 0.0;         ///< standard deviation of the frames' brightness, as a share
        double secondExposure = 0.0;  ///< of the pair's second frame, as a multiple of the first; 0 for single frames
    };

    SimulatedSource(const scenes::Sensor& sensor, const scenes::Scene& scene, const Options& options);

    std::string description() const override;
    int frameCount() const override { return options_.frames; }
    SourceFrame frame(int index, double exposure) override;

private:
    std::string name_;
    int width_;
    int height_;
    Options options_;
    scenes::Renderer renderer_;
};

/// Reads 8-bit grey PNG and PGM files: one file, or those of a folder in the order of their names.
class RecordedSource : public FrameSource {
public:
    /// Looks up the files; throws `Failure` where there is none.
    /// @param pairs two consecutive files are the two exposures of one frame
    RecordedSource(const std::filesystem::path& path, bool pairs);

    /// The size of the first frame at offset 0.
    KORVANELASERALGO::tagKorvaneLaserAlgoROIInfo wholeFrame() const;

    std::string description() const override;
    int frameCount() const override;
    SourceFrame frame(int index, double exposure) override;

private:
    std::filesystem::path path_;
    bool pairs_;
    std::vector<std::filesystem::path> files_;
};

}  // namespace host

#endif  // KORVANE_HOST_FRAMESOURCE_H
