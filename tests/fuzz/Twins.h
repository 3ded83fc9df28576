// The library and its plain twin side by side: each call runs both on copies of the arguments, compares everything
// that comes out, guard bytes included, and leaves the library's results in the arguments.

#ifndef KORVANE_TESTS_FUZZ_TWINS_H
#define KORVANE_TESTS_FUZZ_TWINS_H

#include "KorvaneLaserAlgo.h"
#include "fuzz/Comparison.h"
#include "fuzz/FuzzInput.h"
#include "reference.h"

namespace fuzz {

enum class Extraction { kCal2DPoint1, kCal2DPoint1_1, kCal2DPoint2, kCal2DPoint2_1, kCal2DPoint3, kCal2DPoint4 };
enum class Surface { kPlane, kSecondOrder };

class Twins {
public:
    /// The process-wide records of the library and the twin's start equal, with the exposure 1.0 and no frame.
    explicit Twins(Comparison& comparison);
    /// Leaves the library without previous frames.
    ~Twins();

    Twins(const Twins&) = delete;
    Twins& operator=(const Twins&) = delete;

    void setRoi(KORVANELASERALGO::tagKorvaneLaserAlgoROIInfo roi);
    void setCalibration(KORVANELASERALGO::tagKorvaneLaserAlgoCalibrationInfo calibration);
    void setLineSelect(KORVANELASERALGO::tagKorvaneLaserAlgoLineSelectInfo lineSelect);

    /// Pixels of an image of the region of interest, and entries of its mask.
    std::size_t pixels() const;
    std::size_t columns() const;
    const reference::Settings& settings() const { return settings_; }

    /// @param argument the cap of `Cal2DPoint3`, the threshold of `Cal2DPoint4`, the unused one of `Cal2DPoint1`
    void extract(Extraction method, Bytes& mask, Bytes& image, Points2d& points, int argument);

    void undistortPoints2(Points2d& points);
    void Cal3DPoint(Surface surface, const Bytes& mask, const Points2d& points2d, Profile& points3d);
    /// Leaves out planes that end the process.
    void CalRT(const Numbers& plane);
    Numbers polynomialFit(const Numbers& x, const Numbers& y, int degree);
    void evaluatePolynomial(const Numbers& coefficients, double x);

    void Outlierdetect1(Profile& profile, int halfWidth, float threshold);
    void Outlierdetect2(Profile& profile, int halfWidth, float threshold);
    void medianfilter(Profile& profile, int halfWindow);
    void Gaussianfilter(Profile& profile, int halfWindow);
    void Downsample(const Profile& in, float step, Profile& out, int& count);

    void GaussianBlur(const Bytes& src, Bytes& dst, int ksize);
    void Otsu2(int threshold, Bytes& out, const Bytes& src);
    void Otsu3(Bytes& out, std::vector<int>& labels, Bytes& src);
    void MergeImg(const Bytes& first, const Bytes& second, Bytes& out);
    void CalcImageBuffer(const Bytes& current, Bytes& out, bool enable);

    struct ExposureLimits {
        double target;
        double minimum;
        double maximum;
        double step;
    };
    /// @param exposure of the image; becomes the proposal where there is one
    /// @param inPlace hands the exposure variable itself over for the proposal
    void AutoExposure(const Bytes& image, const ExposureLimits& limits, double& exposure, bool inPlace, bool enable);

private:
    Comparison& comparison_;
    KORVANELASERALGO::KorvaneLaserAlgo library_;
    reference::Settings settings_;
    reference::StabilisationState stabilisation_;
    reference::ExposureState exposure_;
};

}  // namespace fuzz

#endif  // KORVANE_TESTS_FUZZ_TWINS_H
