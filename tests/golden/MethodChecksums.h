// Runs every method on the fixed inputs with several settings each, and keeps one checksum per method of all that comes
// out: points, masks, changed images, labels, counts, returned values.

#ifndef KORVANE_TESTS_GOLDEN_METHODCHECKSUMS_H
#define KORVANE_TESTS_GOLDEN_METHODCHECKSUMS_H

#include <algorithm>
#include <cstddef>
#include <initializer_list>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "KorvaneLaserAlgo.h"
#include "golden/Inputs.h"
#include "support/Checksum.h"

namespace golden {

enum class Group {
    kExact,     ///< + - * / and square roots only: the same bits everywhere
    kCLibrary,  ///< passes through exp, pow, sin, cos, acos, sinf or cosf: the C library's last bits
};

struct MethodChecksum {
    std::string_view method;
    Group group;
    support::Checksum checksum;
};
using MethodChecksums = std::vector<MethodChecksum>;

/// `Algo` has the member functions of the public class.
template <class Algo>
class MethodRunner {
public:
    MethodChecksums run(const Inputs& inputs) {
        addInputs(inputs);
        for (const View& view : inputs.views) {
            useRegion(view.sensor);
            extract(view);
            calibrate(view);
            fitPolynomials(view.profile);
            filterProfile(view.profile);
            operateOnImages(view);
            chain(view);
        }
        alignPlanes(inputs.planes);
        for (const Sequence& sequence : inputs.sequences) {
            useRegion(sequence.sensor);
            stabilise(sequence);
            expose(sequence);
        }
        return checksums_;
    }

private:
    using LineSelect = KORVANELASERALGO::tagKorvaneLaserAlgoLineSelectInfo;
    using Calibration = KORVANELASERALGO::tagKorvaneLaserAlgoCalibrationInfo;

    static constexpr unsigned char kEarlier = 7;  // what output images hold before a call

    support::Checksum& of(std::string_view method) {
        const auto found = std::find_if(checksums_.begin(), checksums_.end(),
                                        [method](const MethodChecksum& entry) { return entry.method == method; });
        if (found == checksums_.end()) throw std::logic_error("no checksum for " + std::string(method));
        return found->checksum;
    }

    // So that a difference of the frames is not taken for one of all methods.
    void addInputs(const Inputs& inputs) {
        support::Checksum& sum = of("inputs");
        for (const View& view : inputs.views) {
            sum.add(view.pixels);
            sum.add(view.longer);
            sum.add(view.mask.get(), view.points.size());
            sum.add(view.points);
            sum.add(view.profile);
        }
        for (const Sequence& sequence : inputs.sequences) {
            for (const Sequence::Frame& frame : sequence.frames) sum.add(frame.pixels);
        }
        for (const Numbers& plane : inputs.planes) sum.add(plane);
    }

    void useRegion(scenes::Sensor sensor) {
        algo_.SetROIInfo(&sensor.roi);
        algo_.SetCalibrationInfo(&sensor.calibration);
        support::Checksum& sum = of("GetROIInfo");
        sum.add(algo_.GetROIInfoOffsetX());
        sum.add(algo_.GetROIInfoOffsetY());
        sum.add(algo_.GetROIInfoWidth());
        sum.add(algo_.GetROIInfoHeight());
    }

    // ---- extraction ----

    template <class Call>
    void addExtraction(std::string_view method, const View& view, Call call) {
        const std::size_t columns = view.points.size();
        Bytes image = view.pixels;
        Points2d points(3, {-7.0, -7.0});
        const auto mask = std::make_unique<bool[]>(columns);
        call(mask.get(), image.data(), points);

        support::Checksum& sum = of(method);
        sum.add(points);
        sum.add(mask.get(), columns);
        sum.add(image);
    }

    void extract(const View& view) {
        const auto add = [&](std::string_view method, auto call) { addExtraction(method, view, call); };

        add("Cal2DPoint1",
            [&](bool* mask, unsigned char* image, Points2d& points) { algo_.Cal2DPoint1(mask, image, points, 0); });
        add("Cal2DPoint2",
            [&](bool* mask, unsigned char* image, Points2d& points) { algo_.Cal2DPoint2(mask, image, points); });
        for (const int cap : {255, 90, 40}) {
            add("Cal2DPoint3", [&](bool* mask, unsigned char* image, Points2d& points) {
                algo_.Cal2DPoint3(mask, image, points, cap);
            });
        }
        for (const int threshold : {1, 60, 128}) {
            add("Cal2DPoint4", [&](bool* mask, unsigned char* image, Points2d& points) {
                algo_.Cal2DPoint4(mask, image, points, threshold);
            });
        }

        for (LineSelect lineSelect :
             {LineSelect{60, 255, 2, 60, 1}, LineSelect{40, 254, 3, 25, 2}, LineSelect{100, 255, 3, 12, 3},
              LineSelect{30, 250, 1, 40, 4}, LineSelect{0, 255, 0, 1000, 0}}) {
            algo_.SetLineSelectInfo(&lineSelect);
            add("Cal2DPoint1_1",
                [&](bool* mask, unsigned char* image, Points2d& points) { algo_.Cal2DPoint1_1(mask, image, points); });
            add("Cal2DPoint2_1",
                [&](bool* mask, unsigned char* image, Points2d& points) { algo_.Cal2DPoint2_1(mask, image, points); });
        }
    }

    // ---- calibration ----

    void calibrate(const View& view) {
        Calibration plain = view.sensor.calibration;
        Calibration strong = plain;  // a strong lens, and a surface that lines of sight miss
        strong.DistCoeffs[0] = -3.5;
        strong.DistCoeffs[1] = 20.0;
        strong.LaserPlane[3] = 0.1;
        strong.LaserPlane[5] = -0.2;
        for (Calibration calibration : {plain, strong}) {
            algo_.SetCalibrationInfo(&calibration);
            Points2d points = view.points;
            algo_.undistortPoints2(points);
            of("undistortPoints2").add(points);

            Profile profile(3, {-7.0, -7.0, -7.0});
            algo_.Cal3DPoint1(view.mask.get(), view.points, profile);
            of("Cal3DPoint1").add(profile);
            algo_.Cal3DPoint2(view.mask.get(), view.points, profile);
            of("Cal3DPoint2").add(profile);
        }
        algo_.SetCalibrationInfo(&plain);
    }

    void alignPlanes(const std::vector<Numbers>& planes) {
        for (const Numbers& plane : planes) {
            Numbers before = plane;
            Numbers rt(12, -7.0);
            algo_.CalRT(before.data(), rt.data());
            of("CalRT").add(before);
            of("CalRT").add(rt);
        }
    }

    void fitPolynomials(const Profile& profile) {
        constexpr std::size_t kPieces[] = {7, 100, 2000};  // points
        for (const std::size_t length : kPieces) {
            for (std::size_t first = 0; first < profile.size(); first += length) {
                Numbers x;
                Numbers z;
                for (std::size_t i = first; i < std::min(first + length, profile.size()); ++i) {
                    x.push_back(profile[i].x);
                    z.push_back(profile[i].z);
                }
                for (const int degree : {-1, 0, 1, 2, 3, 6}) of("polynomialFit").add(algo_.polynomialFit(x, z, degree));
            }
        }

        const Numbers coefficients = {256.25, -0.37, 0.011, 2.3e-4, -1.7e-6, 3.1e-9};
        for (const auto& point : profile) of("evaluatePolynomial").add(algo_.evaluatePolynomial(coefficients, point.x));
        of("evaluatePolynomial").add(algo_.evaluatePolynomial({}, 1.0));
    }

    // ---- profile ----

    template <class Call>
    void addFiltered(std::string_view method, Profile profile, Call call) {
        call(profile);
        of(method).add(profile);
    }

    void filterProfile(const Profile& profile) {
        for (const float threshold : {0.05F, 0.2F, 2.0F}) {
            for (const int halfWidth : {0, 1, 2, 5, 10, 40}) {
                addFiltered("Outlierdetect1", profile,
                            [&](Profile& points) { algo_.Outlierdetect1(points, halfWidth, threshold); });
                addFiltered("Outlierdetect2", profile,
                            [&](Profile& points) { algo_.Outlierdetect2(points, halfWidth, threshold); });
            }
        }
        for (const int halfWindow : {0, 1, 2, 5, 10, 27, 45}) {
            addFiltered("medianfilter1", profile, [&](Profile& points) { algo_.medianfilter1(points, halfWindow); });
            addFiltered("medianfilter2", profile, [&](Profile& points) { algo_.medianfilter2(points, halfWindow); });
            addFiltered("Gaussianfilter", profile, [&](Profile& points) { algo_.Gaussianfilter(points, halfWindow); });
        }
        for (const float step : {0.05F, 0.3F, 1.0F, 7.0F}) {
            int count = -7;
            addFiltered("Downsample", {}, [&](Profile& out) { algo_.Downsample(profile, step, out, count); });
            of("Downsample").add(count);
        }
    }

    // ---- image operations and exposure ----

    template <class Call>
    void addImage(std::string_view method, Bytes source, Call call) {
        Bytes out(source.size(), kEarlier);
        call(source.data(), out.data());
        of(method).add(source);
        of(method).add(out);
    }

    void operateOnImages(const View& view) {
        for (const int size : {1, 3, 4, 5, 9}) {
            addImage("GaussianBlur", view.pixels,
                     [&](unsigned char* source, unsigned char* out) { algo_.GaussianBlur(source, out, size); });
        }
        for (const int threshold : {-1, 20, 60, 255}) {
            addImage("Otsu2", view.pixels,
                     [&](unsigned char* source, unsigned char* out) { algo_.Otsu2(threshold, out, source); });
        }
        for (const Bytes& pixels : {view.pixels, view.longer, view.blob}) {
            std::vector<int> labels(pixels.size(), -7);
            addImage("Otsu3", pixels,
                     [&](unsigned char* source, unsigned char* out) { algo_.Otsu3(out, labels.data(), source); });
            of("Otsu3").add(labels);
        }
        Bytes second = view.longer;
        addImage("MergeImg", view.pixels,
                 [&](unsigned char* first, unsigned char* out) { algo_.MergeImg(first, second.data(), out); });
        of("MergeImg").add(second);
    }

    // The previous frame belongs to the process: both methods forget it at the start, and once on the way.
    static constexpr std::size_t kForgotten = 8;

    void stabilise(const Sequence& sequence) {
        for (std::size_t i = 0; i < sequence.frames.size(); ++i) {
            if (i == 0 || i == kForgotten) algo_.CalcImageBuffer(nullptr, nullptr, false);
            addImage("CalcImageBuffer", sequence.frames[i].pixels,
                     [&](unsigned char* current, unsigned char* out) { algo_.CalcImageBuffer(current, out, true); });
        }
    }

    void expose(const Sequence& sequence) {
        for (const double target : {2.0, 5.3}) {
            for (std::size_t i = 0; i < sequence.frames.size(); ++i) {
                const double exposure = sequence.frames[i].exposure;
                Bytes pixels = sequence.frames[i].pixels;
                double proposal = -7.0;
                const auto call = [&](bool enable) {
                    return algo_.AutoExposure(pixels.data(), target, exposure, 0.1, 20.0, 0.3, enable, proposal);
                };
                if (i == 0 || i == kForgotten) of("AutoExposure").add(call(false));
                of("AutoExposure").add(call(true));
                of("AutoExposure").add(proposal);
                of("AutoExposure").add(pixels);
            }
        }
    }

    // ---- from a frame to a clean profile, as a host chains them ----

    void chain(const View& view) {
        Bytes image = view.pixels;
        const auto mask = std::make_unique<bool[]>(view.points.size());
        Points2d points;
        Profile profile;
        Profile thinned;
        int count = 0;
        algo_.Cal2DPoint1(mask.get(), image.data(), points, 0);
        algo_.undistortPoints2(points);
        if (view.sensor.curvedSheet) {
            algo_.Cal3DPoint2(mask.get(), points, profile);
        } else {
            algo_.Cal3DPoint1(mask.get(), points, profile);
        }
        algo_.Outlierdetect1(profile, 5, 0.5F);
        algo_.Outlierdetect2(profile, 5, 0.5F);
        algo_.medianfilter1(profile, 2);
        algo_.Downsample(profile, 0.2F, thinned, count);
        of("chain").add(profile);
        of("chain").add(thinned);
        of("chain").add(count);
    }

    Algo algo_;
    MethodChecksums checksums_ = {
        {"inputs", Group::kExact, {}},
        {"GetROIInfo", Group::kExact, {}},
        {"Cal2DPoint1", Group::kExact, {}},
        {"Cal2DPoint1_1", Group::kExact, {}},
        {"Cal2DPoint2", Group::kExact, {}},
        {"Cal2DPoint3", Group::kExact, {}},
        {"Cal2DPoint4", Group::kExact, {}},
        {"undistortPoints2", Group::kExact, {}},
        {"Cal3DPoint1", Group::kExact, {}},
        {"Cal3DPoint2", Group::kExact, {}},
        {"evaluatePolynomial", Group::kExact, {}},
        {"Outlierdetect1", Group::kExact, {}},
        {"Outlierdetect2", Group::kExact, {}},
        {"medianfilter1", Group::kExact, {}},
        {"medianfilter2", Group::kExact, {}},
        {"Downsample", Group::kExact, {}},
        {"Otsu2", Group::kExact, {}},
        {"Otsu3", Group::kExact, {}},
        {"MergeImg", Group::kExact, {}},
        {"CalcImageBuffer", Group::kExact, {}},
        {"AutoExposure", Group::kExact, {}},
        {"chain", Group::kExact, {}},
        {"Cal2DPoint2_1", Group::kCLibrary, {}},
        {"CalRT", Group::kCLibrary, {}},
        {"polynomialFit", Group::kCLibrary, {}},
        {"Gaussianfilter", Group::kCLibrary, {}},
        {"GaussianBlur", Group::kCLibrary, {}},
    };
};

}  // namespace golden

#endif  // KORVANE_TESTS_GOLDEN_METHODCHECKSUMS_H
