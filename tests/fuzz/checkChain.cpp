// A host's whole chain over a short sequence of frames: every stage that can be switched is, and library and twin are
// compared after each stage.

#include <algorithm>

#include "fuzz/Checks.h"
#include "fuzz/Comparison.h"
#include "fuzz/Frames.h"
#include "fuzz/Profiles.h"
#include "fuzz/Settings.h"
#include "fuzz/Twins.h"

namespace fuzz {
namespace {

struct ImageStages {
    bool merge;
    bool stabilise;
    bool blur;
    int select;  // 0 none, 2 Otsu2, 3 Otsu3
};

struct FilterStages {
    bool votes;
    bool runs;
    bool median;
    bool gauss;
    bool downsample;
};

Bytes prepareImage(FuzzInput& input, Twins& twins, const ImageStages& stages, Bytes frame) {
    Bytes out(twins.pixels(), 0);
    if (stages.merge) {
        const Bytes second = drawVariation(input, frame);
        twins.MergeImg(frame, second, out);
        frame = out;
    }
    if (stages.stabilise) {
        twins.CalcImageBuffer(frame, out, true);
        frame = out;
    }
    if (stages.blur) {
        twins.GaussianBlur(frame, out, input.pick({3, 5, 7}));
        frame = out;
    }
    if (stages.select == 0) return frame;
    out.assign(twins.pixels(), 0);
    if (stages.select == 2) {
        twins.Otsu2(drawGreyThreshold(input), out, frame);
    } else {
        std::vector<int> labels(twins.pixels(), 0);
        twins.Otsu3(out, labels, frame);
    }
    return out;
}

Profile measureProfile(FuzzInput& input, Twins& twins, Extraction method, Surface surface, Bytes image) {
    Bytes mask(twins.columns(), 0);
    Points2d points;
    twins.extract(method, mask, image, points, drawGreyThreshold(input));
    if (method == Extraction::kCal2DPoint4) {
        for (Point2d& point : points) {
            point.x += twins.settings().roi.OffsetX;
            point.y += twins.settings().roi.OffsetY;
        }
    }
    twins.undistortPoints2(points);
    Profile profile;
    twins.Cal3DPoint(surface, mask, points, profile);
    return profile;
}

void filterProfile(FuzzInput& input, Twins& twins, const FilterStages& stages, Profile profile) {
    if (stages.votes) twins.Outlierdetect1(profile, input.range(0, 6), drawThreshold(input));
    if (stages.runs) twins.Outlierdetect2(profile, input.range(0, 6), drawThreshold(input));
    if (stages.median) twins.medianfilter(profile, input.range(0, 6));
    if (stages.gauss) twins.Gaussianfilter(profile, input.range(0, 6));
    if (stages.downsample) {
        Profile thinned;
        int count = 0;
        twins.Downsample(profile, drawStep(input, profile), thinned, count);
    }
}

}  // namespace

std::string checkChain(const unsigned char* data, std::size_t size) {
    FuzzInput input(data, size);
    Comparison comparison("checkChain", data, size);
    Twins twins(comparison);

    // Settings and stages of the stream.
    Size area = drawSize(input);
    twins.setRoi(drawRoi(input, area));
    twins.setLineSelect(drawLineSelect(input));
    twins.setCalibration(input.oneIn(8) ? drawCalibration(input, area) : drawPlausibleCalibration(input, area));
    const ImageStages imageStages = {input.oneIn(2), input.oneIn(2), input.oneIn(2), input.pick({0, 0, 2, 3})};
    const FilterStages filterStages = {!input.oneIn(2), !input.oneIn(2), !input.oneIn(2), !input.oneIn(2),
                                       !input.oneIn(2)};
    const Extraction method = static_cast<Extraction>(input.range(0, 5));
    const Surface surface = input.oneIn(2) ? Surface::kSecondOrder : Surface::kPlane;
    double exposure = input.real(0.0, 20.0);

    // The frames of one scene.
    Bytes scene = drawFrame(input, area);
    for (int frames = input.range(1, 3); frames > 0 && !comparison.differs(); --frames) {
        const Bytes image = prepareImage(input, twins, imageStages, scene);
        const Profile profile = measureProfile(input, twins, method, surface, image);
        filterProfile(input, twins, filterStages, profile);
        twins.AutoExposure(scene, {input.real(0.0, 10.0), 0.0, 100.0, 0.5}, exposure, input.oneIn(2), true);
        scene = drawVariation(input, scene);
        if (input.oneIn(4)) twins.setLineSelect(drawLineSelect(input));
    }
    return comparison.report();
}

}  // namespace fuzz
