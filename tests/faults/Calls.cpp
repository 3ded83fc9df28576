#include "faults/Calls.h"

#include <cmath>
#include <cstddef>
#include <cstring>
#include <ostream>

namespace faults {
namespace {

using support::Image;
using support::Point3d;

constexpr int kWidth = 160;  // columns; enough for a line of more than the votes that make a segment
constexpr int kHeight = 64;  // rows
constexpr std::size_t kColumns = kWidth;
constexpr std::size_t kPixels = kColumns * kHeight;
constexpr std::size_t kProfilePoints = 1200;
constexpr std::size_t kSamples = 40;

Image drawScene(Scene scene) {
    if (scene != Scene::kManyStripes) {
        Image image(kWidth, kHeight, 5);
        for (int c = 0; c < kWidth; ++c) {
            const int row = 24 + c / 16;
            image.drawColumn(c, row, {90, 180, 240, 180, 90});
            if (scene == Scene::kBrightStripe) image.drawColumn(c, row, {120, 210, 255, 230, 215, 100});
        }
        return image;
    }

    Image image(kWidth, kHeight, 12);
    for (int c = 0; c < kWidth; ++c) {
        image.drawColumn(c, 14 + c / 20, {100, 220, 100});
        if (c < 70 || c > 80) image.drawColumn(c, 34, {120, 200, 255, 200, 120});
        if (c % 3 == 0) image.drawColumn(c, 44, {100, 180, 250, 180, 110, 70, 120, 240, 250, 130, 90, 200, 255, 100});
        if (c >= 100 && c < 110) {
            for (int r = 0; r < 32; ++r) image.at(r, c) = 200;  // the blob
        }
    }
    return image;
}

/// Heights with waves, steps, outliers and gaps.
Point3d profilePoint(std::size_t i) {
    if (i % 50 == 49) return {0.0, 0.0, 0.0};
    const double x = 0.1 * static_cast<double>(i + 1);
    const double step = i % 400 < 200 ? 0.0 : 12.0;
    const double outlier = i % 97 == 0 ? 40.0 : 0.0;
    return {x, 0.5 * x, 100.0 + std::fabs(x - 40.0) / 8.0 + step + outlier};
}

}  // namespace

Arguments::Arguments(Scene scene)
    : image(drawScene(scene)),
      second(drawScene(Scene::kBrightStripe)),
      out(kWidth, kHeight, 3),
      labels(kPixels, -3),
      mask(kColumns, false),
      profile(kProfilePoints),
      sampleXs(kSamples),
      sampleYs(kSamples),
      coefficients({1.0, -2.0, 0.5}),
      plane(3),
      rt(12, -7.0),
      text("a text that is longer than what a string keeps without an allocation") {
    for (std::size_t i = 0; i < kColumns; ++i) {
        const double x = static_cast<double>(i);
        points2d.push_back({x, 30.0 + x / 16.0});
        mask[i] = i % 10 == 9;  // of the calls that read it; extraction leaves what is true
    }
    for (std::size_t i = 0; i < profile.size(); ++i) profile[i] = profilePoint(i);
    for (std::size_t i = 0; i < kSamples; ++i) {
        sampleXs[i] = 0.25 * static_cast<double>(i);
        sampleYs[i] = 3.0 - sampleXs[i] + 0.125 * sampleXs[i] * sampleXs[i];
    }
    plane[0] = 300.0;
    plane[1] = 0.02;
    plane[2] = -1.5;
}

Bits Arguments::bits() {
    Bits bits;
    const auto add = [&](const auto* values, std::size_t size) {
        const std::size_t first = bits.size();
        bits.resize(first + sizeof size + size * sizeof *values);
        std::memcpy(bits.data() + first, &size, sizeof size);
        if (size > 0) std::memcpy(bits.data() + first + sizeof size, values, size * sizeof *values);
    };
    for (Image* picture : {&image, &second, &out}) add(picture->data(), kPixels);
    add(labels.data(), labels.size());
    add(mask.data(), mask.size());
    add(points.data(), points.size());
    add(points2d.data(), points2d.size());
    for (const support::Profile* list : {&points3d, &profile, &thinned}) add(list->data(), list->size());
    for (const auto* numbers : {&sampleXs, &sampleYs, &coefficients}) add(numbers->data(), numbers->size());
    add(plane.data(), plane.size());
    add(rt.data(), rt.size());
    add(text.data(), text.size());
    add(&number, 1);
    add(&count, 1);
    return bits;
}

bool Arguments::guardsIntact() const {
    return labels.guardsIntact() && mask.guardsIntact() && plane.guardsIntact() && rt.guardsIntact();
}

void configure(KorvaneLaserAlgo& algo) {
    support::setRoi(algo, kWidth, kHeight, 8, -4);
    support::setLineSelect(algo, 0, 255, 0, 10, 1);
    support::tagKorvaneLaserAlgoCalibrationInfo calibration = {{2000, 0, 80, 0, 2000, 32, 0, 0, 1},
                                                               {-0.1, 0.02, 0.001, -0.001, 0.0},
                                                               {300, 0.02, -1.5, 0.001, 0.0, 0.002},
                                                               {1, 0, 0, 0, 1, 0, 0, 0, 1, 5, 6, 7}};
    algo.SetCalibrationInfo(&calibration);
}

namespace {

// ---- process-wide records ----

/// A call on a small frame, whose size is not that of the rows.
template <class Operation>
void onSmallFrame(KorvaneLaserAlgo& algo, Operation operation) {
    Image small(16, 16, 250);
    Image out(16, 16);
    support::setRoi(algo, 16, 16);
    operation(small, out);
    configure(algo);
}

void storeSmallFrame(KorvaneLaserAlgo& algo) {
    onSmallFrame(algo, [&](Image& small, Image& out) {
        algo.CalcImageBuffer(small.data(), out.data(), false);
        algo.CalcImageBuffer(small.data(), out.data(), true);
    });
}

void forgetFrame(KorvaneLaserAlgo& algo) {
    storeSmallFrame(algo);
    onSmallFrame(algo, [&](Image& small, Image& out) { algo.CalcImageBuffer(small.data(), out.data(), false); });
}

void storeFrame(KorvaneLaserAlgo& algo) {
    forgetFrame(algo);
    Image previous = drawScene(Scene::kBrightStripe);
    Image out(kWidth, kHeight);
    algo.CalcImageBuffer(previous.data(), out.data(), true);
}

constexpr double kPreviousExposure = 10.0;

bool propose(KorvaneLaserAlgo& algo, Image& frame, double exposure, bool enable, double& proposal) {
    return algo.AutoExposure(frame.data(), 3.0, exposure, 0.0, 1000.0, 2.0, enable, proposal);
}

void storeSmallExposure(KorvaneLaserAlgo& algo) {
    double unused = 0.0;
    onSmallFrame(algo, [&](Image& small, Image&) {
        propose(algo, small, kPreviousExposure, false, unused);
        propose(algo, small, kPreviousExposure, true, unused);
    });
}

void forgetExposedFrame(KorvaneLaserAlgo& algo) {
    double unused = 0.0;
    storeSmallExposure(algo);
    onSmallFrame(algo, [&](Image& small, Image&) { propose(algo, small, kPreviousExposure, false, unused); });
}

void storeExposure(KorvaneLaserAlgo& algo) {
    double unused = 0.0;
    forgetExposedFrame(algo);
    Image previous = drawScene(Scene::kOneStripe);
    propose(algo, previous, kPreviousExposure, true, unused);
}

void proposeInto(KorvaneLaserAlgo& algo, Arguments& a, double exposure) {
    a.count = propose(algo, a.image, exposure, true, a.number) ? 1 : 0;
}

}  // namespace

// ---- the table ----

const std::vector<Call>& allCalls() {
    using Algo = KorvaneLaserAlgo;
    using enum Scene;
    using enum Memory;
    using enum AfterFailure;
    using enum Sharing;

    // clang-format off
    static const std::vector<Call> calls = {
        // lifecycle and settings
        {"Constructor", kOneStripe, kWorkingBuffers, kUnchanged, kDifferentObjects,
         [](Algo&, Arguments& a) { a.count = Algo().GetROIInfoWidth(); }},
        {"SetROIInfo", kOneStripe, kNone, kUnchanged, kDifferentObjects,
         [](Algo& algo, Arguments&) { support::setRoi(algo, 1, 2, 3, 4); configure(algo); }},
        {"SetCalibrationInfo", kOneStripe, kNone, kUnchanged, kDifferentObjects,
         [](Algo& algo, Arguments&) { configure(algo); }},
        {"SetLineSelectInfo", kOneStripe, kNone, kUnchanged, kDifferentObjects,
         [](Algo& algo, Arguments&) { support::setLineSelect(algo, 1, 2, 3, 4, 5); configure(algo); }},
        {"GetROIInfoOffsetX", kOneStripe, kNone, kUnchanged, kDifferentObjects,
         [](Algo& algo, Arguments& a) { a.count = algo.GetROIInfoOffsetX(); }},
        {"GetROIInfoOffsetY", kOneStripe, kNone, kUnchanged, kDifferentObjects,
         [](Algo& algo, Arguments& a) { a.count = algo.GetROIInfoOffsetY(); }},
        {"GetROIInfoWidth", kOneStripe, kNone, kUnchanged, kDifferentObjects,
         [](Algo& algo, Arguments& a) { a.count = algo.GetROIInfoWidth(); }},
        {"GetROIInfoHeight", kOneStripe, kNone, kUnchanged, kDifferentObjects,
         [](Algo& algo, Arguments& a) { a.count = algo.GetROIInfoHeight(); }},
        {"GetSdkVersionString", kOneStripe, kNone, kUnchanged, kDifferentObjects,
         [](Algo& algo, Arguments& a) { algo.GetSdkVersionString(a.text); }},

        // extraction
        {"Cal2DPoint1", kOneStripe, kWorkingBuffers, kAnyOutputs, kDifferentObjects,
         [](Algo& algo, Arguments& a) { algo.Cal2DPoint1(a.mask.data(), a.image.data(), a.points, 0); }},
        {"Cal2DPoint1OnManyStripes", kManyStripes, kWorkingBuffers, kAnyOutputs, kDifferentObjects,
         [](Algo& algo, Arguments& a) { algo.Cal2DPoint1(a.mask.data(), a.image.data(), a.points, 0); }},
        {"Cal2DPoint1_1", kOneStripe, kWorkingBuffers, kAnyOutputs, kDifferentObjects,
         [](Algo& algo, Arguments& a) { algo.Cal2DPoint1_1(a.mask.data(), a.image.data(), a.points); }},
        {"Cal2DPoint1_1OnManyStripes", kManyStripes, kWorkingBuffers, kAnyOutputs, kDifferentObjects,
         [](Algo& algo, Arguments& a) { algo.Cal2DPoint1_1(a.mask.data(), a.image.data(), a.points); }},
        {"Cal2DPoint2", kOneStripe, kWorkingBuffers, kAnyOutputs, kDifferentObjects,
         [](Algo& algo, Arguments& a) { algo.Cal2DPoint2(a.mask.data(), a.image.data(), a.points); }},
        {"Cal2DPoint2OnManyStripes", kManyStripes, kWorkingBuffers, kAnyOutputs, kDifferentObjects,
         [](Algo& algo, Arguments& a) { algo.Cal2DPoint2(a.mask.data(), a.image.data(), a.points); }},
        {"Cal2DPoint2_1", kOneStripe, kWorkingBuffers, kAnyOutputs, kDifferentObjects,
         [](Algo& algo, Arguments& a) { algo.Cal2DPoint2_1(a.mask.data(), a.image.data(), a.points); }},
        {"Cal2DPoint2_1OnManyStripes", kManyStripes, kWorkingBuffers, kAnyOutputs, kDifferentObjects,
         [](Algo& algo, Arguments& a) { algo.Cal2DPoint2_1(a.mask.data(), a.image.data(), a.points); }},
        {"Cal2DPoint3", kOneStripe, kWorkingBuffers, kAnyOutputs, kDifferentObjects,
         [](Algo& algo, Arguments& a) { algo.Cal2DPoint3(a.mask.data(), a.image.data(), a.points, 120); }},
        {"Cal2DPoint3OnManyStripes", kManyStripes, kWorkingBuffers, kAnyOutputs, kDifferentObjects,
         [](Algo& algo, Arguments& a) { algo.Cal2DPoint3(a.mask.data(), a.image.data(), a.points, 120); }},
        {"Cal2DPoint4", kOneStripe, kWorkingBuffers, kAnyOutputs, kDifferentObjects,
         [](Algo& algo, Arguments& a) { algo.Cal2DPoint4(a.mask.data(), a.image.data(), a.points, 60); }},
        {"Cal2DPoint4OnManyStripes", kManyStripes, kWorkingBuffers, kAnyOutputs, kDifferentObjects,
         [](Algo& algo, Arguments& a) { algo.Cal2DPoint4(a.mask.data(), a.image.data(), a.points, 60); }},

        // calibration
        {"undistortPoints2", kOneStripe, kNone, kUnchanged, kDifferentObjects,
         [](Algo& algo, Arguments& a) { algo.undistortPoints2(a.points2d); }},
        {"Cal3DPoint1", kOneStripe, kWorkingBuffers, kAnyOutputs, kSameObject,
         [](Algo& algo, Arguments& a) { algo.Cal3DPoint1(a.mask.data(), a.points2d, a.points3d); }},
        {"Cal3DPoint2", kOneStripe, kWorkingBuffers, kAnyOutputs, kSameObject,
         [](Algo& algo, Arguments& a) { algo.Cal3DPoint2(a.mask.data(), a.points2d, a.points3d); }},
        {"CalRT", kOneStripe, kNone, kAnyOutputs, kDifferentObjects,
         [](Algo& algo, Arguments& a) { algo.CalRT(a.plane.data(), a.rt.data()); }},
        {"polynomialFit", kOneStripe, kWorkingBuffers, kUnchanged, kDifferentObjects,
         [](Algo& algo, Arguments& a) { a.coefficients = algo.polynomialFit(a.sampleXs, a.sampleYs, 4); }},
        {"evaluatePolynomial", kOneStripe, kNone, kUnchanged, kDifferentObjects,
         [](Algo& algo, Arguments& a) { a.number = algo.evaluatePolynomial(a.coefficients, 1.5); }},

        // profile filters
        {"Outlierdetect1", kOneStripe, kWorkingBuffers, kUnchanged, kSameObject,
         [](Algo& algo, Arguments& a) { algo.Outlierdetect1(a.profile, 5, 1.0f); }},
        {"Outlierdetect2", kOneStripe, kNone, kUnchanged, kSameObject,
         [](Algo& algo, Arguments& a) { algo.Outlierdetect2(a.profile, 5, 1.0f); }},
        {"medianfilter1", kOneStripe, kWorkingBuffers, kAnyOutputs, kSameObject,
         [](Algo& algo, Arguments& a) { algo.medianfilter1(a.profile, 5); }},
        {"medianfilter2", kOneStripe, kWorkingBuffers, kAnyOutputs, kSameObject,
         [](Algo& algo, Arguments& a) { algo.medianfilter2(a.profile, 5); }},
        {"Gaussianfilter", kOneStripe, kWorkingBuffers, kAnyOutputs, kSameObject,
         [](Algo& algo, Arguments& a) { algo.Gaussianfilter(a.profile, 4); }},
        {"Downsample", kOneStripe, kWorkingBuffers, kUnchanged, kSameObject,
         [](Algo& algo, Arguments& a) { algo.Downsample(a.profile, 0.5f, a.thinned, a.count); }},
        {"DownsampleThatPassesAllOn", kOneStripe, kWorkingBuffers, kUnchanged, kSameObject,
         [](Algo& algo, Arguments& a) { algo.Downsample(a.profile, 0.01f, a.thinned, a.count); }},

        // image operations and exposure
        {"GaussianBlur", kManyStripes, kWorkingBuffers, kAnyOutputs, kSameObject,
         [](Algo& algo, Arguments& a) { algo.GaussianBlur(a.image.data(), a.out.data(), 5); }},
        {"Otsu2", kManyStripes, kNone, kUnchanged, kDifferentObjects,
         [](Algo& algo, Arguments& a) { algo.Otsu2(100, a.out.data(), a.image.data()); }},
        {"Otsu3", kManyStripes, kBuffersThenThreads, kAnyOutputs, kSameObject,
         [](Algo& algo, Arguments& a) { algo.Otsu3(a.out.data(), a.labels.data(), a.image.data()); }},
        {"MergeImg", kManyStripes, kWorkingBuffers, kUnchanged, kSameObject,
         [](Algo& algo, Arguments& a) { algo.MergeImg(a.image.data(), a.second.data(), a.out.data()); }},
        {"CalcImageBufferOfAFirstFrame", kOneStripe, kWorkingBuffers, kUnchanged, kStabilisation,
         [](Algo& algo, Arguments& a) { algo.CalcImageBuffer(a.image.data(), a.out.data(), true); }, forgetFrame},
        {"CalcImageBufferOfAnotherSize", kOneStripe, kWorkingBuffers, kUnchanged, kStabilisation,
         [](Algo& algo, Arguments& a) { algo.CalcImageBuffer(a.image.data(), a.out.data(), true); }, storeSmallFrame},
        {"CalcImageBufferOfALaterFrame", kOneStripe, kWorkingBuffers, kAnyOutputsAndRecord, kStabilisation,
         [](Algo& algo, Arguments& a) { algo.CalcImageBuffer(a.image.data(), a.out.data(), true); }, storeFrame},
        {"CalcImageBufferSwitchedOff", kOneStripe, kNone, kUnchanged, kStabilisation,
         [](Algo& algo, Arguments& a) { algo.CalcImageBuffer(a.image.data(), a.out.data(), false); }, storeFrame},
        {"AutoExposureOfAFirstFrame", kOneStripe, kWorkingBuffers, kUnchanged, kExposure,
         [](Algo& algo, Arguments& a) { proposeInto(algo, a, 20.0); }, forgetExposedFrame},
        {"AutoExposureOfAnotherSize", kOneStripe, kWorkingBuffers, kUnchanged, kExposure,
         [](Algo& algo, Arguments& a) { proposeInto(algo, a, 20.0); }, storeSmallExposure},
        {"AutoExposureByAStep", kOneStripe, kWorkingBuffers, kUnchanged, kExposure,
         [](Algo& algo, Arguments& a) { proposeInto(algo, a, kPreviousExposure); }, storeExposure},
        {"AutoExposureByALine", kBrightStripe, kWorkingBuffers, kUnchanged, kExposure,
         [](Algo& algo, Arguments& a) { proposeInto(algo, a, 20.0); }, storeExposure},
        {"AutoExposureSwitchedOff", kOneStripe, kNone, kUnchanged, kExposure,
         [](Algo& algo, Arguments& a) {
             a.count = propose(algo, a.image, 20.0, false, a.number) ? 1 : 0;
         }, storeExposure},
    };
    // clang-format on
    return calls;
}

std::string nameOf(const testing::TestParamInfo<Call>& info) {
    return info.param.name;
}

void PrintTo(const Call& call, std::ostream* stream) {
    *stream << call.name;
}

Bits undisturbed(const Call& call) {
    KorvaneLaserAlgo algo;
    configure(algo);
    call.prepare(algo);
    Arguments arguments(call.scene);
    call.call(algo, arguments);
    return arguments.bits();
}

}  // namespace faults
