#include "fuzz/Twins.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <exception>
#include <string>
#include <typeinfo>

#include "support/CheckedBuffer.h"

namespace fuzz {
namespace {

using support::CheckedBuffer;
using Image = CheckedBuffer<unsigned char>;

/// Type and text of what a call throws; empty where it returns.
template <class Call>
std::string thrownBy(Call call) {
    try {
        call();
    } catch (const std::exception& failure) {
        return std::string(typeid(failure).name()) + ": " + failure.what();
    }
    return {};
}

template <class T, class Value>
void compareBuffers(Comparison& comparison, const char* what, CheckedBuffer<T>& twin, CheckedBuffer<T>& library,
                    std::vector<Value>& result) {
    comparison.equal(what, twin.template values<Value>(), library.template values<Value>());
    comparison.holds("guard bytes around the twin's buffer", twin.guardsIntact());
    comparison.holds("guard bytes around the library's buffer", library.guardsIntact());
    result = library.template values<Value>();
}

/// As above, for a buffer that a method only reads.
void compareInput(Comparison& comparison, const char* what, const Bytes& before, Image& twin, Image& library) {
    Bytes after;
    compareBuffers(comparison, what, twin, library, after);
    comparison.equal(what, before, after);
}

/// The median's heights may differ in the sign of zero, and are any of the window's where that holds a not-a-number.
void compareMedians(Comparison& comparison, const Profile& before, int halfWindow, Profile twin,
                    const Profile& library) {
    std::vector<std::size_t> positions;
    for (std::size_t i = 0; i < before.size(); ++i) {
        if (before[i].x != 0.0) positions.push_back(i);
    }
    const std::int64_t count = static_cast<std::int64_t>(positions.size());
    const std::int64_t r = halfWindow;
    const bool filtered = r >= 0 && count >= 2 * r + 1;
    for (std::int64_t j = 0; filtered && j < count; ++j) {
        Numbers window;
        for (std::int64_t m = std::max<std::int64_t>(j - r, 0); m <= std::min(j + r, count - 1); ++m) {
            const double height = before[positions[static_cast<std::size_t>(m)]].z;
            window.push_back(static_cast<double>(static_cast<float>(height)));
        }
        const std::size_t position = positions[static_cast<std::size_t>(j)];
        const double height = library[position].z;
        const auto isNan = [](double value) { return std::isnan(value); };
        const auto isHeight = [&](double value) { return same(value, height); };
        const bool bothZero = twin[position].z == 0.0 && height == 0.0;
        const bool free = std::any_of(window.begin(), window.end(), isNan);
        if ((bothZero || free) && std::any_of(window.begin(), window.end(), isHeight)) twin[position].z = height;
    }
    comparison.equal("heights after the median filter", twin, library);
}

}  // namespace

// ---- settings and state ----

Twins::Twins(Comparison& comparison) : comparison_(comparison) {
    // The exposure outlives a switch-off: a first frame of one pixel sets it, and is forgotten.
    unsigned char pixel = 0;
    double proposal = 0.0;
    setRoi({0, 0, 1, 1});
    library_.CalcImageBuffer(&pixel, &pixel, false);
    for (const bool enable : {false, true, false})
        library_.AutoExposure(&pixel, 0.0, 1.0, 0.0, 0.0, 0.0, enable, proposal);
    setRoi({0, 0, 0, 0});
}

Twins::~Twins() {
    unsigned char pixel = 0;
    double proposal = 0.0;
    library_.CalcImageBuffer(&pixel, &pixel, false);
    library_.AutoExposure(&pixel, 0.0, 0.0, 0.0, 0.0, 0.0, false, proposal);
}

void Twins::setRoi(KORVANELASERALGO::tagKorvaneLaserAlgoROIInfo roi) {
    comparison_.remember("const tagKorvaneLaserAlgoROIInfo roi", roi);
    library_.SetROIInfo(&roi);
    settings_.roi = roi;
    comparison_.equal("GetROIInfoOffsetX", roi.OffsetX, library_.GetROIInfoOffsetX());
    comparison_.equal("GetROIInfoOffsetY", roi.OffsetY, library_.GetROIInfoOffsetY());
    comparison_.equal("GetROIInfoWidth", roi.Width, library_.GetROIInfoWidth());
    comparison_.equal("GetROIInfoHeight", roi.Height, library_.GetROIInfoHeight());
}

void Twins::setCalibration(KORVANELASERALGO::tagKorvaneLaserAlgoCalibrationInfo calibration) {
    comparison_.remember("const tagKorvaneLaserAlgoCalibrationInfo calibration", calibration);
    library_.SetCalibrationInfo(&calibration);
    settings_.calibration = calibration;
}

void Twins::setLineSelect(KORVANELASERALGO::tagKorvaneLaserAlgoLineSelectInfo lineSelect) {
    comparison_.remember("const tagKorvaneLaserAlgoLineSelectInfo lineSelect", lineSelect);
    library_.SetLineSelectInfo(&lineSelect);
    settings_.lineSelect = lineSelect;
}

std::size_t Twins::columns() const {
    return static_cast<std::size_t>(std::max(settings_.roi.Width, 0));
}

std::size_t Twins::pixels() const {
    return columns() * static_cast<std::size_t>(std::max(settings_.roi.Height, 0));
}

// ---- extraction ----

void Twins::extract(Extraction method, Bytes& mask, Bytes& image, Points2d& points, int argument) {
    CheckedBuffer<bool> twinMask(mask);
    CheckedBuffer<bool> libraryMask(mask);
    Image twinImage(image);
    Image libraryImage(image);
    Points2d twinPoints = points;

    const auto run = [&](const char* name, auto twin, auto library, auto... arguments) {
        comparison_.equal(
            name, thrownBy([&] { twin(settings_, twinMask.data(), twinImage.data(), twinPoints, arguments...); }),
            thrownBy([&] { (library_.*library)(libraryMask.data(), libraryImage.data(), points, arguments...); }));
        comparison_.equal((std::string(name) + " points").c_str(), twinPoints, points);
        compareBuffers(comparison_, (std::string(name) + " mask").c_str(), twinMask, libraryMask, mask);
        compareBuffers(comparison_, (std::string(name) + " image").c_str(), twinImage, libraryImage, image);
    };

    using Library = KORVANELASERALGO::KorvaneLaserAlgo;
    switch (method) {
        case Extraction::kCal2DPoint1:
            return run("Cal2DPoint1", reference::Cal2DPoint1, &Library::Cal2DPoint1, argument);
        case Extraction::kCal2DPoint1_1:
            return run("Cal2DPoint1_1", reference::Cal2DPoint1_1, &Library::Cal2DPoint1_1);
        case Extraction::kCal2DPoint2:
            return run("Cal2DPoint2", reference::Cal2DPoint2, &Library::Cal2DPoint2);
        case Extraction::kCal2DPoint2_1:
            return run("Cal2DPoint2_1", reference::Cal2DPoint2_1, &Library::Cal2DPoint2_1);
        case Extraction::kCal2DPoint3:
            return run("Cal2DPoint3", reference::Cal2DPoint3, &Library::Cal2DPoint3, argument);
        case Extraction::kCal2DPoint4:
            return run("Cal2DPoint4", reference::Cal2DPoint4, &Library::Cal2DPoint4, argument);
    }
}

// ---- calibration ----

void Twins::undistortPoints2(Points2d& points) {
    Points2d twinPoints = points;
    reference::undistortPoints2(settings_, twinPoints);
    library_.undistortPoints2(points);
    comparison_.equal("undistortPoints2", twinPoints, points);
}

void Twins::Cal3DPoint(Surface surface, const Bytes& mask, const Points2d& points2d, Profile& points3d) {
    CheckedBuffer<bool> twinMask(mask);
    CheckedBuffer<bool> libraryMask(mask);
    Profile twinPoints = points3d;
    if (surface == Surface::kPlane) {
        reference::Cal3DPoint1(settings_, twinMask.data(), points2d, twinPoints);
        library_.Cal3DPoint1(libraryMask.data(), points2d, points3d);
        comparison_.equal("Cal3DPoint1", twinPoints, points3d);
    } else {
        reference::Cal3DPoint2(settings_, twinMask.data(), points2d, twinPoints);
        library_.Cal3DPoint2(libraryMask.data(), points2d, points3d);
        comparison_.equal("Cal3DPoint2", twinPoints, points3d);
    }
    Bytes maskAfter;
    compareBuffers(comparison_, "Cal3DPoint mask", twinMask, libraryMask, maskAfter);
    comparison_.equal("Cal3DPoint mask", mask, maskAfter);
}

void Twins::CalRT(const Numbers& plane) {
    comparison_.remember("double plane[]", plane);
    Numbers rt(12, 7.0);
    CheckedBuffer<double> twinPlane(plane);
    CheckedBuffer<double> libraryPlane(plane);
    CheckedBuffer<double> twinRt(rt);
    CheckedBuffer<double> libraryRt(rt);
    if (!reference::CalRT(twinPlane.data(), twinRt.data())) return;
    library_.CalRT(libraryPlane.data(), libraryRt.data());
    compareBuffers(comparison_, "CalRT", twinRt, libraryRt, rt);
    Numbers planeAfter;
    compareBuffers(comparison_, "CalRT plane", twinPlane, libraryPlane, planeAfter);
    comparison_.equal("CalRT plane", plane, planeAfter);
}

Numbers Twins::polynomialFit(const Numbers& x, const Numbers& y, int degree) {
    comparison_.remember("const std::vector<double> x", x);
    comparison_.remember("const std::vector<double> y", y);
    comparison_.remember("const int degree", degree);
    Numbers twin;
    Numbers library;
    comparison_.equal("polynomialFit", thrownBy([&] { twin = reference::polynomialFit(x, y, degree); }),
                      thrownBy([&] { library = library_.polynomialFit(x, y, degree); }));
    comparison_.equal("polynomialFit", twin, library);
    return library;
}

void Twins::evaluatePolynomial(const Numbers& coefficients, double x) {
    comparison_.equal("evaluatePolynomial", reference::evaluatePolynomial(coefficients, x),
                      library_.evaluatePolynomial(coefficients, x));
}

// ---- profile filters ----

void Twins::Outlierdetect1(Profile& profile, int halfWidth, float threshold) {
    Profile twinProfile = profile;
    reference::Outlierdetect1(twinProfile, halfWidth, threshold);
    library_.Outlierdetect1(profile, halfWidth, threshold);
    comparison_.equal("Outlierdetect1", twinProfile, profile);
}

void Twins::Outlierdetect2(Profile& profile, int halfWidth, float threshold) {
    Profile twinProfile = profile;
    reference::Outlierdetect2(twinProfile, halfWidth, threshold);
    library_.Outlierdetect2(profile, halfWidth, threshold);
    comparison_.equal("Outlierdetect2", twinProfile, profile);
}

void Twins::medianfilter(Profile& profile, int halfWindow) {
    const Profile before = profile;
    Profile twinProfile = profile;
    Profile secondName = profile;
    reference::medianfilter(twinProfile, halfWindow);
    library_.medianfilter1(profile, halfWindow);
    library_.medianfilter2(secondName, halfWindow);
    compareMedians(comparison_, before, halfWindow, twinProfile, profile);
    comparison_.equal("medianfilter2 against medianfilter1", profile, secondName);
}

void Twins::Gaussianfilter(Profile& profile, int halfWindow) {
    Profile twinProfile = profile;
    comparison_.equal("Gaussianfilter", thrownBy([&] { reference::Gaussianfilter(twinProfile, halfWindow); }),
                      thrownBy([&] { library_.Gaussianfilter(profile, halfWindow); }));
    comparison_.equal("Gaussianfilter", twinProfile, profile);
}

void Twins::Downsample(const Profile& in, float step, Profile& out, int& count) {
    const Profile before = in;
    Profile twinOut = out;
    int twinCount = count;
    comparison_.equal("Downsample", thrownBy([&] { reference::Downsample(in, step, twinOut, twinCount); }),
                      thrownBy([&] { library_.Downsample(in, step, out, count); }));
    comparison_.equal("Downsample count", twinCount, count);
    comparison_.equal("Downsample", twinOut, out);
    comparison_.equal("Downsample input", before, in);
}

// ---- image operations and exposure ----

void Twins::GaussianBlur(const Bytes& src, Bytes& dst, int ksize) {
    Image twinSrc(src), librarySrc(src);
    Image twinDst(dst), libraryDst(dst);
    comparison_.equal("GaussianBlur",
                      thrownBy([&] { reference::GaussianBlur(settings_, twinSrc.data(), twinDst.data(), ksize); }),
                      thrownBy([&] { library_.GaussianBlur(librarySrc.data(), libraryDst.data(), ksize); }));
    compareBuffers(comparison_, "GaussianBlur", twinDst, libraryDst, dst);
    compareInput(comparison_, "GaussianBlur source", src, twinSrc, librarySrc);
}

void Twins::Otsu2(int threshold, Bytes& out, const Bytes& src) {
    Image twinSrc(src), librarySrc(src);
    Image twinOut(out), libraryOut(out);
    reference::Otsu2(settings_, threshold, twinOut.data(), twinSrc.data());
    library_.Otsu2(threshold, libraryOut.data(), librarySrc.data());
    compareBuffers(comparison_, "Otsu2", twinOut, libraryOut, out);
    compareInput(comparison_, "Otsu2 source", src, twinSrc, librarySrc);
}

void Twins::Otsu3(Bytes& out, std::vector<int>& labels, Bytes& src) {
    Image twinSrc(src), librarySrc(src);
    Image twinOut(out), libraryOut(out);
    CheckedBuffer<int> twinLabels(labels), libraryLabels(labels);
    reference::Otsu3(settings_, twinOut.data(), twinLabels.data(), twinSrc.data());
    library_.Otsu3(libraryOut.data(), libraryLabels.data(), librarySrc.data());
    compareBuffers(comparison_, "Otsu3", twinOut, libraryOut, out);
    compareBuffers(comparison_, "Otsu3 labels", twinLabels, libraryLabels, labels);
    compareBuffers(comparison_, "Otsu3 source", twinSrc, librarySrc, src);
}

void Twins::MergeImg(const Bytes& first, const Bytes& second, Bytes& out) {
    Image twinFirst(first), libraryFirst(first);
    Image twinSecond(second), librarySecond(second);
    Image twinOut(out), libraryOut(out);
    reference::MergeImg(settings_, twinFirst.data(), twinSecond.data(), twinOut.data());
    library_.MergeImg(libraryFirst.data(), librarySecond.data(), libraryOut.data());
    compareBuffers(comparison_, "MergeImg", twinOut, libraryOut, out);
    compareInput(comparison_, "MergeImg first", first, twinFirst, libraryFirst);
    compareInput(comparison_, "MergeImg second", second, twinSecond, librarySecond);
}

void Twins::CalcImageBuffer(const Bytes& current, Bytes& out, bool enable) {
    Image twinCurrent(current), libraryCurrent(current);
    Image twinOut(out), libraryOut(out);
    reference::CalcImageBuffer(settings_, stabilisation_, twinCurrent.data(), twinOut.data(), enable);
    library_.CalcImageBuffer(libraryCurrent.data(), libraryOut.data(), enable);
    compareBuffers(comparison_, "CalcImageBuffer", twinOut, libraryOut, out);
    compareInput(comparison_, "CalcImageBuffer source", current, twinCurrent, libraryCurrent);
}

void Twins::AutoExposure(const Bytes& image, const ExposureLimits& limits, double& exposure, bool inPlace,
                         bool enable) {
    comparison_.remember("const double exposureCall[]",
                         Numbers{limits.target, exposure, limits.minimum, limits.maximum, limits.step});
    Image twinImage(image), libraryImage(image);
    constexpr double kUntouched = -7.0;
    double twinExposure = exposure;
    double libraryExposure = exposure;
    double twinProposal = kUntouched;
    double libraryProposal = kUntouched;
    const bool twin =
        reference::AutoExposure(settings_, exposure_, twinImage.data(), limits.target, twinExposure, limits.minimum,
                                limits.maximum, limits.step, enable, inPlace ? twinExposure : twinProposal);
    const bool library =
        library_.AutoExposure(libraryImage.data(), limits.target, libraryExposure, limits.minimum, limits.maximum,
                              limits.step, enable, inPlace ? libraryExposure : libraryProposal);
    comparison_.equal("AutoExposure result", static_cast<int>(twin), static_cast<int>(library));
    comparison_.equal("AutoExposure proposal", twinProposal, libraryProposal);
    comparison_.equal("AutoExposure exposure", twinExposure, libraryExposure);
    compareInput(comparison_, "AutoExposure image", image, twinImage, libraryImage);
    if (library) exposure = inPlace ? libraryExposure : libraryProposal;
}

}  // namespace fuzz
