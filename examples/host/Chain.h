/// @file Chain.h
/// @brief The library's methods in the order in which a host calls them, frame by frame.

#ifndef KORVANE_HOST_CHAIN_H
#define KORVANE_HOST_CHAIN_H

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "KorvaneLaserAlgo.h"
#include "host/FrameSource.h"
#include "host/Settings.h"

namespace host {

using Profile = std::vector<KORVANELASERALGO::tagKorvaneLaserPoint3d>;

/// What the chain makes of one frame. The profiles are empty where there is no calibration.
struct ChainResult {
    std::vector<bool> found;                                       ///< per column: a stripe was found
    std::vector<KORVANELASERALGO::tagKorvaneLaserPoint2d> points;  ///< per column: as imaged, full-sensor pixels
    Profile unfiltered;                                            ///< per column: straight from Cal3DPoint*
    Profile filtered;                                              ///< per column: after the profile filters
    Profile output;       ///< what leaves the chain: `filtered`, or fewer points where Downsample is on
    double nextExposure;  ///< proposed by AutoExposure, else the exposure of this frame
};

/// The time that one stage took, over all frames.
struct StageTime {
    std::string name;
    double seconds = 0.0;
};

/// One sensor stream.
class Chain {
public:
    /// @param settings complete: with a ROI, and a calibration where there is one
    explicit Chain(const Settings& settings);

    /// Takes the next frame of the stream through all stages that are switched on.
    /// @param frame of the ROI's size; it is left as it is
    /// @param exposure with which it was taken
    ChainResult run(const SourceFrame& frame, double exposure);

    /// The stages that have run, in order, with the time spent in the library.
    const std::vector<StageTime>& stageTimes() const { return times_; }

private:
    using Image = std::vector<unsigned char>;

    void timed(const std::string& stage, const std::function<void()>& call);
    Image prepare(const SourceFrame& frame);
    void extract(Image& image, std::vector<KORVANELASERALGO::tagKorvaneLaserPoint2d>& points);
    void filter(Profile& profile);

    Settings settings_;
    KORVANELASERALGO::KorvaneLaserAlgo algo_;
    std::size_t pixels_;
    std::size_t columns_;
    std::unique_ptr<bool[]> mask_;  // a plain array: std::vector<bool> has no bool*
    std::vector<StageTime> times_;
};

}  // namespace host

#endif  // KORVANE_HOST_CHAIN_H
