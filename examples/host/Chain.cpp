#include "host/Chain.h"

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <stdexcept>

#include "common/Failure.h"

namespace host {

using KORVANELASERALGO::tagKorvaneLaserPoint2d;

Chain::Chain(const Settings& settings)
    : settings_(settings),
      pixels_(static_cast<std::size_t>(settings.roi->Width) * static_cast<std::size_t>(settings.roi->Height)),
      columns_(static_cast<std::size_t>(settings.roi->Width)),
      mask_(std::make_unique<bool[]>(columns_)) {
    algo_.SetROIInfo(&*settings_.roi);
    algo_.SetLineSelectInfo(&settings_.lineSelect);
    if (settings_.calibration) algo_.SetCalibrationInfo(&*settings_.calibration);
}

void Chain::timed(const std::string& stage, const std::function<void()>& call) {
    const auto start = std::chrono::steady_clock::now();
    call();
    const std::chrono::duration<double> spent = std::chrono::steady_clock::now() - start;

    auto time = std::find_if(times_.begin(), times_.end(), [&](const StageTime& t) { return t.name == stage; });
    if (time == times_.end()) time = times_.insert(times_.end(), {stage, 0.0});
    time->seconds += spent.count();
}

/// Image operations. They read a frame and write another buffer, so the result moves from buffer to buffer; the
/// caller's frame stays, for Otsu3 and Cal2DPoint4 change what they are given.
Chain::Image Chain::prepare(const SourceFrame& frame) {
    const ChainSettings& chain = settings_.chain;
    Image image = frame.image.pixels;
    Image next(pixels_);

    if (chain.mergeImg.enabled) {
        Image second = frame.second.pixels;
        timed("MergeImg", [&] { algo_.MergeImg(image.data(), second.data(), next.data()); });
        image.swap(next);
    }
    if (chain.calcImageBuffer.enabled) {
        next = image;  // the last row of an odd height is not written
        timed("CalcImageBuffer", [&] { algo_.CalcImageBuffer(image.data(), next.data(), true); });
        image.swap(next);
    }
    if (chain.gaussianBlur.enabled) {
        timed("GaussianBlur", [&] { algo_.GaussianBlur(image.data(), next.data(), chain.gaussianBlur.kernelSize); });
        image.swap(next);
    }
    if (chain.otsu2.enabled) {
        std::fill(next.begin(), next.end(), static_cast<unsigned char>(0));
        timed("Otsu2", [&] { algo_.Otsu2(chain.otsu2.threshold, next.data(), image.data()); });
        image.swap(next);
    }
    if (chain.otsu3.enabled) {
        std::fill(next.begin(), next.end(), static_cast<unsigned char>(0));
        std::vector<int> labels(pixels_);
        timed("Otsu3", [&] { algo_.Otsu3(next.data(), labels.data(), image.data()); });
        image.swap(next);
    }
    return image;
}

/// One point per column, in full-sensor pixels whichever the method.
void Chain::extract(Image& image, std::vector<tagKorvaneLaserPoint2d>& points) {
    const ChainSettings& chain = settings_.chain;
    std::fill_n(mask_.get(), columns_, false);
    timed(chain.method, [&] {
        if (chain.method == "Cal2DPoint1")
            algo_.Cal2DPoint1(mask_.get(), image.data(), points, 0);
        else if (chain.method == "Cal2DPoint1_1")
            algo_.Cal2DPoint1_1(mask_.get(), image.data(), points);
        else if (chain.method == "Cal2DPoint2")
            algo_.Cal2DPoint2(mask_.get(), image.data(), points);
        else if (chain.method == "Cal2DPoint2_1")
            algo_.Cal2DPoint2_1(mask_.get(), image.data(), points);
        else if (chain.method == "Cal2DPoint3")
            algo_.Cal2DPoint3(mask_.get(), image.data(), points, chain.cap);
        else
            algo_.Cal2DPoint4(mask_.get(), image.data(), points, chain.threshold);
    });
    if (chain.method == "Cal2DPoint4") {  // the one that answers in pixels of the ROI
        for (tagKorvaneLaserPoint2d& point : points) {
            point.x += settings_.roi->OffsetX;
            point.y += settings_.roi->OffsetY;
        }
    }
}

void Chain::filter(Profile& profile) {
    const ChainSettings& chain = settings_.chain;
    const auto outliers = [&](const OutlierSettings& s) { return static_cast<float>(s.threshold); };
    if (chain.outlierDetect1.enabled)
        timed("Outlierdetect1",
              [&] { algo_.Outlierdetect1(profile, chain.outlierDetect1.halfWidth, outliers(chain.outlierDetect1)); });
    if (chain.outlierDetect2.enabled)
        timed("Outlierdetect2",
              [&] { algo_.Outlierdetect2(profile, chain.outlierDetect2.halfWidth, outliers(chain.outlierDetect2)); });
    if (chain.medianFilter.enabled)
        timed("medianfilter1", [&] { algo_.medianfilter1(profile, chain.medianFilter.halfWindow); });
    if (chain.gaussianFilter.enabled)
        timed("Gaussianfilter", [&] { algo_.Gaussianfilter(profile, chain.gaussianFilter.halfWindow); });
}

ChainResult Chain::run(const SourceFrame& frame, double exposure) {
    const ChainSettings& chain = settings_.chain;
    ChainResult result;
    result.nextExposure = exposure;

    // From the frame to one 2D point per column.
    Image image = prepare(frame);
    extract(image, result.points);
    result.found.assign(mask_.get(), mask_.get() + columns_);

    // From 2D points to a profile.
    if (settings_.calibration) {
        std::vector<tagKorvaneLaserPoint2d> points = result.points;
        if (chain.undistort) timed("undistortPoints2", [&] { algo_.undistortPoints2(points); });
        timed(chain.cal3d, [&] {
            if (chain.cal3d == "Cal3DPoint1")
                algo_.Cal3DPoint1(mask_.get(), points, result.unfiltered);
            else
                algo_.Cal3DPoint2(mask_.get(), points, result.unfiltered);
        });

        // From profile to clean profile.
        result.filtered = result.unfiltered;
        filter(result.filtered);
        result.output = result.filtered;
        if (chain.downsample.enabled) {
            int count = 0;
            const float step = static_cast<float>(chain.downsample.step);
            try {
                timed("Downsample", [&] { algo_.Downsample(result.filtered, step, result.output, count); });
            } catch (const std::length_error&) {
                throw examples::Failure(frame.name + ": Downsample cannot thin a profile that runs toward smaller x");
            }
            result.output.resize(static_cast<std::size_t>(count));
        }
    }

    // The light of the next frame.
    if (chain.autoExposure.enabled) {
        const AutoExposureSettings& a = chain.autoExposure;
        image = frame.image.pixels;
        timed("AutoExposure", [&] {
            algo_.AutoExposure(image.data(), a.target, exposure, a.minExposure, a.maxExposure, a.step, true,
                               result.nextExposure);
        });
    }
    return result;
}

}  // namespace host
