#include "host/FrameSource.h"

#include <algorithm>
#include <system_error>
#include <utility>

#include "common/Failure.h"
#include "common/Pgm.h"
#if KORVANE_HOST_PICTURES
#include "common/Png.h"
#endif

namespace host {
namespace {

using examples::Failure;
using examples::GreyImage;

std::string lowerCaseExtension(const std::filesystem::path& path) {
    std::string extension = path.extension().string();
    std::transform(extension.begin(), extension.end(), extension.begin(),
                   [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; });
    return extension;
}

bool isPicture(const std::filesystem::path& path) {
    const std::string extension = lowerCaseExtension(path);
    return extension == ".pgm" || (KORVANE_HOST_PICTURES && extension == ".png");
}

GreyImage readPicture(const std::filesystem::path& path) {
#if KORVANE_HOST_PICTURES
    if (lowerCaseExtension(path) == ".png") return examples::readPng(path);
#endif
    return examples::readPgm(path);
}

std::vector<std::filesystem::path> picturesIn(const std::filesystem::path& folder) {
    std::vector<std::filesystem::path> files;
    try {
        for (const auto& entry : std::filesystem::directory_iterator(folder))
            if (isPicture(entry.path()) && entry.is_regular_file()) files.push_back(entry.path());
    } catch (const std::filesystem::filesystem_error& error) {
        throw Failure(folder.string() + ": cannot be read: " + error.code().message());
    }
    std::sort(files.begin(), files.end());
    return files;
}

}  // namespace

SimulatedSource::SimulatedSource(const scenes::Sensor& sensor, const scenes::Scene& scene, const Options& options)
    : name_(scene.name),
      width_(sensor.roi.Width),
      height_(sensor.roi.Height),
      options_(options),
      renderer_(sensor, scene) {}

std::string SimulatedSource::description() const {
    return "simulated scene " + name_;
}

SourceFrame SimulatedSource::frame(int index, double exposure) {
    scenes::Shot shot;
    shot.frame = index;
    shot.seed = options_.seed;
    shot.exposure = exposure;
    shot.flicker = options_.flicker;
    scenes::Frame rendered = renderer_.render(shot);

    SourceFrame frame;
    frame.name = name_ + ", frame " + std::to_string(index);
    frame.image = {width_, height_, std::move(rendered.pixels)};
    frame.truth = std::move(rendered.truth);
    if (options_.secondExposure > 0.0) {
        shot.exposure *= options_.secondExposure;
        frame.second = {width_, height_, renderer_.render(shot).pixels};
    }
    return frame;
}

RecordedSource::RecordedSource(const std::filesystem::path& path, bool pairs) : path_(path), pairs_(pairs) {
    std::error_code unknown;
    if (!std::filesystem::exists(path, unknown)) throw Failure(path.string() + ": no such file or folder");
    const bool isFolder = std::filesystem::is_directory(path, unknown);
    if (!isFolder && !isPicture(path))
        throw Failure(path.string() + (KORVANE_HOST_PICTURES ? ": not a .png or .pgm file" : ": not a .pgm file"));
    files_ = isFolder ? picturesIn(path) : std::vector{path};
    if (files_.empty())
        throw Failure(path.string() +
                      (KORVANE_HOST_PICTURES ? ": holds no .png or .pgm file" : ": holds no .pgm file"));
    if (pairs && files_.size() % 2 != 0)
        throw Failure(path.string() + ": MergeImg takes frames in pairs, but there are " +
                      std::to_string(files_.size()));
}

KORVANELASERALGO::tagKorvaneLaserAlgoROIInfo RecordedSource::wholeFrame() const {
    const GreyImage first = readPicture(files_.front());
    return {0, 0, first.width, first.height};
}

std::string RecordedSource::description() const {
    return path_.string();
}

int RecordedSource::frameCount() const {
    return static_cast<int>(files_.size()) / (pairs_ ? 2 : 1);
}

SourceFrame RecordedSource::frame(int index, double) {
    const std::size_t file = static_cast<std::size_t>(index) * (pairs_ ? 2 : 1);
    SourceFrame frame;
    frame.name = files_[file].filename().string();
    frame.image = readPicture(files_[file]);
    if (pairs_) {
        frame.second = readPicture(files_[file + 1]);
        if (frame.second.width != frame.image.width || frame.second.height != frame.image.height)
            throw Failure(files_[file + 1].filename().string() + ": has not the size of " + frame.name +
                          ", its partner for MergeImg");
    }
    return frame;
}

}  // namespace host
