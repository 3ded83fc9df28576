// `describe` lists every key once, with its bounds. A reader and a writer are passed through the same list, so that
// what is written, what is accepted and what is rejected as unknown cannot drift apart.

#include "host/Settings.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <nlohmann/json.hpp>
#include <set>
#include <sstream>
#include <utility>

#include "common/AtomicFile.h"
#include "common/Failure.h"
#include "common/FileBytes.h"

namespace host {
namespace {

using examples::Failure;
using KORVANELASERALGO::KorvaneLaserAlgo;
using KORVANELASERALGO::tagKorvaneLaserAlgoCalibrationInfo;
using KORVANELASERALGO::tagKorvaneLaserAlgoLineSelectInfo;
using KORVANELASERALGO::tagKorvaneLaserAlgoROIInfo;
using Json = nlohmann::ordered_json;

constexpr int kLargestSide = 65535;  // pixels
constexpr int kWidestWindow = 1000;  // points
constexpr double kLongest = 1e6;     // length units
constexpr double kLargestC2 = 1e6;   // beyond about 1e8 the plane's normal is the y axis already

enum class Presence { asTheObjectWants, optional };

template <class Fields>
void describe(Fields& fields, tagKorvaneLaserAlgoROIInfo& roi) {
    fields.integer("OffsetX", roi.OffsetX, 0, kLargestSide);
    fields.integer("OffsetY", roi.OffsetY, 0, kLargestSide);
    fields.integer("Width", roi.Width, 1, kLargestSide);
    fields.integer("Height", roi.Height, 1, kLargestSide);
}

template <class Fields>
void describe(Fields& fields, tagKorvaneLaserAlgoCalibrationInfo& calibration) {
    fields.numbers("CameraMatrix", calibration.CameraMatrix, 9);
    fields.numbers("DistCoeffs", calibration.DistCoeffs, 5);
    fields.numbers("LaserPlane", calibration.LaserPlane, 6);
    fields.numbers("RT", calibration.RT, 12, Presence::optional);  // CalRT can compute it
}

template <class Fields>
void describe(Fields& fields, tagKorvaneLaserAlgoLineSelectInfo& select) {
    fields.integer("GrayMin", select.GrayMin, 0, 255);
    fields.integer("GrayMax", select.GrayMax, 0, 255);
    fields.integer("WidthMin", select.WidthMin, 0, kLargestSide);
    fields.integer("WidthMax", select.WidthMax, 0, kLargestSide);
    fields.integer("SelectMode", select.SelectMode, 0, 5);
}

template <class Fields>
void describe(Fields& fields, OutlierSettings& outliers) {
    fields.flag("Enabled", outliers.enabled);
    fields.integer("HalfWidth", outliers.halfWidth, 1, kWidestWindow);
    fields.number("Threshold", outliers.threshold, 0.0, kLongest);
}

template <class Fields>
void describe(Fields& fields, WindowSettings& window) {
    fields.flag("Enabled", window.enabled);
    fields.integer("HalfWindow", window.halfWindow, 0, kWidestWindow);
}

template <class Fields>
void describe(Fields& fields, MergeImgSettings& merge) {
    fields.flag("Enabled", merge.enabled);
    fields.number("SecondExposure", merge.secondExposure, 0.0, 1000.0);
}

template <class Fields>
void describe(Fields& fields, CalcImageBufferSettings& buffer) {
    fields.flag("Enabled", buffer.enabled);
}

template <class Fields>
void describe(Fields& fields, GaussianBlurSettings& blur) {
    fields.flag("Enabled", blur.enabled);
    fields.integer("KernelSize", blur.kernelSize, 1, 99);
}

template <class Fields>
void describe(Fields& fields, Otsu2Settings& otsu) {
    fields.flag("Enabled", otsu.enabled);
    fields.integer("Threshold", otsu.threshold, 0, 255);
}

template <class Fields>
void describe(Fields& fields, Otsu3Settings& otsu) {
    fields.flag("Enabled", otsu.enabled);
}

template <class Fields>
void describe(Fields& fields, DownsampleSettings& downsample) {
    fields.flag("Enabled", downsample.enabled);
    fields.number("Step", downsample.step, 1e-6, kLongest);
}

template <class Fields>
void describe(Fields& fields, AutoExposureSettings& exposure) {
    fields.flag("Enabled", exposure.enabled);
    fields.number("Target", exposure.target, 0.0, kLargestSide);
    fields.number("MinExposure", exposure.minExposure, 1e-6, 1e6);
    fields.number("MaxExposure", exposure.maxExposure, 1e-6, 1e6);
    fields.number("Step", exposure.step, 0.0, 1e6);
}

template <class Fields>
void describe(Fields& fields, ChainSettings& chain) {
    fields.object("MergeImg", chain.mergeImg);
    fields.object("CalcImageBuffer", chain.calcImageBuffer);
    fields.object("GaussianBlur", chain.gaussianBlur);
    fields.object("Otsu2", chain.otsu2);
    fields.object("Otsu3", chain.otsu3);
    fields.choice("Method", chain.method, methodNames());
    fields.integer("Cap", chain.cap, 0, 255);
    fields.integer("Threshold", chain.threshold, 0, 255);
    fields.flag("Undistort", chain.undistort);
    fields.choice("Cal3D", chain.cal3d, {"Cal3DPoint1", "Cal3DPoint2"});
    fields.flag("CalRT", chain.calRt);
    fields.number("TravelPerFrame", chain.travelPerFrame, -kLongest, kLongest);
    fields.object("Outlierdetect1", chain.outlierDetect1);
    fields.object("Outlierdetect2", chain.outlierDetect2);
    fields.object("medianfilter1", chain.medianFilter);
    fields.object("Gaussianfilter", chain.gaussianFilter);
    fields.object("Downsample", chain.downsample);
    fields.object("AutoExposure", chain.autoExposure);
}

template <class Fields>
void describe(Fields& fields, Settings& settings) {
    fields.record("ROI", settings.roi);
    fields.record("Calibration", settings.calibration);
    fields.object("LineSelect", settings.lineSelect);
    fields.object("Chain", settings.chain);
}

std::string numberText(double value) {
    std::ostringstream text;
    text << value;
    return text.str();
}

std::string listed(const std::vector<std::string>& names) {
    std::string text;
    for (const std::string& name : names) text += (text.empty() ? "" : ", ") + name;
    return text;
}

/// Takes the values out of one JSON object.
class Reader {
public:
    /// @param path how messages name the object: "Chain.GaussianBlur", empty for the whole file
    /// @param complete every key must be there
    Reader(const Json& object, std::string path, bool complete)
        : object_(object), path_(std::move(path)), complete_(complete) {
        if (!object_.is_object()) throw Failure((path_.empty() ? "the file" : path_) + " must be an object in braces");
    }

    void integer(const char* key, int& value, int least, int most) {
        const Json* json = find(key);
        if (json == nullptr) return;
        if (!json->is_number_integer()) throw Failure(name(key) + " must be a whole number");
        requireRange(key, json->get<double>(), least, most);
        value = json->get<int>();
    }

    void number(const char* key, double& value, double least, double most) {
        const Json* json = find(key);
        if (json == nullptr) return;
        if (!json->is_number()) throw Failure(name(key) + " must be a number");
        requireRange(key, json->get<double>(), least, most);
        value = json->get<double>();
    }

    void numbers(const char* key, double* values, std::size_t count, Presence presence = Presence::asTheObjectWants) {
        const Json* json = find(key, presence);
        if (json == nullptr) return;
        if (!json->is_array() || json->size() != count)
            throw Failure(name(key) + " must be an array of " + std::to_string(count) + " numbers" +
                          (json->is_array() ? "; it has " + std::to_string(json->size()) : ""));
        for (std::size_t i = 0; i < count; ++i)
            if (!(*json)[i].is_number())
                throw Failure(name(key) + " must be an array of numbers; entry " + std::to_string(i) + " is none");
        for (std::size_t i = 0; i < count; ++i) values[i] = (*json)[i].get<double>();
    }

    void flag(const char* key, bool& value) {
        const Json* json = find(key);
        if (json == nullptr) return;
        if (!json->is_boolean()) throw Failure(name(key) + " must be true or false");
        value = json->get<bool>();
    }

    void choice(const char* key, std::string& value, const std::vector<std::string>& allowed) {
        const Json* json = find(key);
        if (json == nullptr) return;
        if (!json->is_string() || std::find(allowed.begin(), allowed.end(), json->get<std::string>()) == allowed.end())
            throw Failure(name(key) + " must be one of " + listed(allowed));
        value = json->get<std::string>();
    }

    /// An object whose keys may be left out.
    template <class Values>
    void object(const char* key, Values& values) {
        const Json* json = find(key);
        if (json == nullptr) return;
        Reader inner(*json, name(key), false);
        describe(inner, values);
        inner.finish();
    }

    /// An object that may be left out, but only as a whole: half a calibration is none.
    template <class Record>
    void record(const char* key, std::optional<Record>& record) {
        const Json* json = find(key);
        if (json == nullptr) return;
        Reader inner(*json, name(key), true);
        Record read{};
        describe(inner, read);
        inner.finish();
        record = read;
    }

    /// Every key has been asked for; one that has not is unknown.
    void finish() const {
        for (const auto& [key, value] : object_.items())
            if (!known_.contains(key)) throw Failure("unknown key " + name(key));
    }

private:
    const Json* find(const char* key, Presence presence = Presence::asTheObjectWants) {
        known_.insert(key);
        const auto found = object_.find(key);
        if (found != object_.end()) return &*found;
        if (complete_ && presence != Presence::optional) throw Failure(name(key) + " is missing");
        return nullptr;
    }

    void requireRange(const char* key, double value, double least, double most) const {
        if (!(value >= least && value <= most))
            throw Failure(name(key) + " must lie in " + numberText(least) + " .. " + numberText(most));
    }

    std::string name(const std::string& key) const { return path_.empty() ? key : path_ + "." + key; }

    const Json& object_;
    std::string path_;
    bool complete_;
    std::set<std::string> known_;
};

/// Puts the values into one JSON object.
class Writer {
public:
    explicit Writer(Json& object) : object_(object) { object_ = Json::object(); }

    void integer(const char* key, int& value, int, int) { object_[key] = value; }
    void number(const char* key, double& value, double, double) { object_[key] = value; }
    void numbers(const char* key, double* values, std::size_t count, Presence = Presence::asTheObjectWants) {
        object_[key] = std::vector<double>(values, values + count);
    }
    void flag(const char* key, bool& value) { object_[key] = value; }
    void choice(const char* key, std::string& value, const std::vector<std::string>&) { object_[key] = value; }

    template <class Values>
    void object(const char* key, Values& values) {
        Writer inner(object_[key]);
        describe(inner, values);
    }
    template <class Record>
    void record(const char* key, std::optional<Record>& record) {
        if (record) object(key, *record);
    }

private:
    Json& object_;
};

void requireLineSelect(const tagKorvaneLaserAlgoLineSelectInfo& select) {
    if (select.GrayMin > select.GrayMax)
        throw Failure("LineSelect: GrayMin is greater than GrayMax, so no line passes");
    if (select.WidthMin > select.WidthMax)
        throw Failure("LineSelect: WidthMin is greater than WidthMax, so no line passes");
}

void requireChain(const ChainSettings& chain) {
    if (chain.gaussianBlur.kernelSize % 2 == 0) throw Failure("Chain.GaussianBlur.KernelSize must be odd");
    if (chain.autoExposure.minExposure > chain.autoExposure.maxExposure)
        throw Failure("Chain.AutoExposure: MinExposure is greater than MaxExposure");
}

double determinant(const double* m) {
    return m[0] * (m[4] * m[8] - m[5] * m[7]) - m[1] * (m[3] * m[8] - m[5] * m[6]) + m[2] * (m[3] * m[7] - m[4] * m[6]);
}

void requireCalibration(const tagKorvaneLaserAlgoCalibrationInfo& calibration, const ChainSettings& chain) {
    if (calibration.CameraMatrix[0] == 0.0 || calibration.CameraMatrix[4] == 0.0)
        throw Failure("Calibration.CameraMatrix: fx and fy must not be 0");
    const double* plane = calibration.LaserPlane;
    if (plane[0] == 0.0)
        throw Failure("Calibration.LaserPlane: c0 must not be 0, or the light surface passes through the camera");
    if (chain.cal3d == "Cal3DPoint2" && plane[3] == 0.0 && plane[4] == 0.0 && plane[5] == 0.0)
        throw Failure("Calibration.LaserPlane: c3, c4 and c5 are all 0; a flat light plane needs Cal3DPoint1");
    if (!chain.calRt && determinant(calibration.RT) == 0.0)
        throw Failure("Calibration.RT holds no rotation; give one, or set Chain.CalRT to true");
    if (chain.calRt && plane[2] == 0.0)
        throw Failure("Calibration.LaserPlane: c2 must not be 0 for CalRT; give RT and set Chain.CalRT to false");
    if (chain.calRt && !(std::abs(plane[2]) < kLargestC2))
        throw Failure("Calibration.LaserPlane: |c2| must be below " + numberText(kLargestC2) +
                      " for CalRT; give RT and set Chain.CalRT to false");
}

/// The JSON library prefixes its messages with "[json.exception.parse_error.101] ".
std::string withoutErrorNumber(const std::string& message) {
    const std::size_t end = message.find("] ");
    return end == std::string::npos ? message : message.substr(end + 2);
}

/// Parses the text; a key that appears twice in one object is a mistake, not a choice.
Json parsed(const std::string& text) {
    std::vector<std::set<std::string>> keys;  // of the objects that are open
    return Json::parse(text, [&keys](int, Json::parse_event_t event, Json& value) {
        if (event == Json::parse_event_t::object_start) keys.emplace_back();
        if (event == Json::parse_event_t::object_end) keys.pop_back();
        if (event == Json::parse_event_t::key && !keys.back().insert(value.get<std::string>()).second)
            throw Failure("key " + value.get<std::string>() + " appears twice in one object");
        return true;
    });
}

}  // namespace

const std::vector<std::string>& methodNames() {
    static const std::vector<std::string> names{"Cal2DPoint1",   "Cal2DPoint1_1", "Cal2DPoint2",
                                                "Cal2DPoint2_1", "Cal2DPoint3",   "Cal2DPoint4"};
    return names;
}

void readSettings(const std::filesystem::path& path, Settings& settings) {
    const std::string text = examples::readFile(path);
    try {
        const Json json = parsed(text);
        Reader reader(json, "", false);
        describe(reader, settings);
        reader.finish();
    } catch (const Failure& failure) {
        throw Failure(path.string() + ": " + failure.what());
    } catch (const Json::exception& error) {
        throw Failure(path.string() + ": not valid JSON: " + withoutErrorNumber(error.what()));
    }
}

void writeSettings(const std::filesystem::path& path, const Settings& settings) {
    Json json;
    Writer writer(json);
    Settings copy = settings;
    describe(writer, copy);

    examples::AtomicFile file(path);
    file.write(json.dump(4) + "\n");
    file.commit();
}

void completeSettings(Settings& settings, const std::string& where) {
    try {
        requireLineSelect(settings.lineSelect);
        requireChain(settings.chain);
        if (settings.calibration) requireCalibration(*settings.calibration, settings.chain);
    } catch (const Failure& failure) {
        throw Failure(where + ": " + failure.what());
    }
    if (settings.calibration && settings.chain.calRt) {
        double plane[3];
        std::copy_n(settings.calibration->LaserPlane, 3, plane);
        KorvaneLaserAlgo().CalRT(plane, settings.calibration->RT);
    }
}

}  // namespace host
