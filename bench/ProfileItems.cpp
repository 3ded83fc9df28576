// What starts from 2D points or a profile.

#include <algorithm>
#include <iterator>
#include <memory>

#include "bench/Digest.h"
#include "bench/Floors.h"
#include "bench/Items.h"
#include "bench/Other.h"

namespace bench {

namespace {

using Library = KORVANELASERALGO::KorvaneLaserAlgo;

constexpr float kDepthStep = 0.3F;  // mm, of Outlierdetect1
constexpr float kJump = 1.0F;       // mm, of Outlierdetect2
constexpr float kBucket = 0.25F;    // mm, of Downsample

/// What the calls of one item share. Methods work in place, on copies.
struct ProfileWork {
    ProfileWork(int width, const scenes::Sensor& sensor)
        : measured(measuredProfiles(width)), stream(sensor), points(measured->points), profiles(measured->profiles) {}

    Points2d& pointsOf(int copy) { return points[static_cast<std::size_t>(copy)]; }
    Profile& profileOf(int copy) { return profiles[static_cast<std::size_t>(copy)]; }
    bool* maskOf(int copy) { return measured->masks[static_cast<std::size_t>(copy)].get(); }

    std::shared_ptr<const Measured> measured;
    Stream stream;
    std::vector<Points2d> points;
    std::vector<Profile> profiles;
    Profile out;
    int count = 0;
};
using Shared = std::shared_ptr<ProfileWork>;

Item itemOn(const Shared& work) {
    Item item;
    item.input = "points";
    item.columns = static_cast<int>(work->profiles.front().size());
    item.copies = static_cast<int>(work->profiles.size());
    item.floorName = "points pass";
    item.floor = [work](int copy) {
        const Profile& profile = work->profileOf(copy);
        readOnce(profile.data(), profile.size() * sizeof(profile.front()));
    };
    item.clearOutputs = [work] {
        work->out.clear();
        work->count = -1;
    };
    return item;
}

/// A filter that works in place.
template <class LibraryCall, class TwinCall>
Item filterItem(int columns, LibraryCall library, TwinCall twin) {
    const auto work = std::make_shared<ProfileWork>(columns, sensorOfSize({columns, columns}));
    Item item = itemOn(work);
    item.library = [=](int copy) { library(work->stream.library, work->profileOf(copy)); };
    item.twin = [=](int copy) { twin(work->profileOf(copy)); };
    item.changesInput = true;
    item.restore = [work](int copy) {
        work->profileOf(copy) = work->measured->profiles[static_cast<std::size_t>(copy)];
    };
    item.digest = [work](int copy) { return Digest().add(work->profileOf(copy)).value(); };
    return item;
}

Item medianItem(int columns, int halfWindow) {
    Item item = filterItem(
        columns, [=](Library& library, Profile& profile) { library.medianfilter1(profile, halfWindow); },
        [=](Profile& profile) { reference::medianfilter(profile, halfWindow); });
    const auto work = std::make_shared<ProfileWork>(columns, sensorOfSize({columns, columns}));
    item.otherName = "nth_element";
    item.other = [work, halfWindow](int copy) {
        other::slidingMedian(work->measured->profiles[static_cast<std::size_t>(copy)], halfWindow, work->out);
    };
    return item;
}

Item downsampleItem(int columns) {
    const auto work = std::make_shared<ProfileWork>(columns, sensorOfSize({columns, columns}));
    Item item = itemOn(work);
    item.library = [=](int copy) {
        work->stream.library.Downsample(work->profileOf(copy), kBucket, work->out, work->count);
    };
    item.twin = [=](int copy) { reference::Downsample(work->profileOf(copy), kBucket, work->out, work->count); };
    item.digest = [work](int) { return Digest().add(work->out).add(work->count).value(); };
    return item;
}

Item undistortItem(int columns) {
    const auto work = std::make_shared<ProfileWork>(columns, sensorOfSize({columns, columns}));
    Item item = itemOn(work);
    item.library = [=](int copy) { work->stream.library.undistortPoints2(work->pointsOf(copy)); };
    item.twin = [=](int copy) { reference::undistortPoints2(work->stream.twin, work->pointsOf(copy)); };
    other::setUndistort(item, work->measured, work->stream.twin.calibration);
    item.changesInput = true;
    item.restore = [work](int copy) { work->pointsOf(copy) = work->measured->points[static_cast<std::size_t>(copy)]; };
    item.digest = [work](int copy) { return Digest().add(work->pointsOf(copy)).value(); };
    return item;
}

Item cal3dItem(int columns, bool curved) {
    const Size size{columns, columns};
    const auto work =
        std::make_shared<ProfileWork>(columns, curved ? curvedSheetSensorOfSize(size) : sensorOfSize(size));
    Item item = itemOn(work);
    item.library = [=](int copy) {
        auto& library = work->stream.library;
        if (curved)
            library.Cal3DPoint2(work->maskOf(copy), work->pointsOf(copy), work->out);
        else
            library.Cal3DPoint1(work->maskOf(copy), work->pointsOf(copy), work->out);
    };
    item.twin = [=](int copy) {
        const auto twin = curved ? reference::Cal3DPoint2 : reference::Cal3DPoint1;
        twin(work->stream.twin, work->maskOf(copy), work->pointsOf(copy), work->out);
    };
    item.digest = [work](int) { return Digest().add(work->out).value(); };
    return item;
}

/// Height over place, through all measured points.
Item polynomialItem(int columns) {
    constexpr int kDegree = 3;
    struct Samples {
        std::vector<double> x;
        std::vector<double> z;
    };
    const auto work = std::make_shared<ProfileWork>(columns, sensorOfSize({columns, columns}));
    const auto samples = std::make_shared<std::vector<Samples>>();
    for (const Profile& profile : work->profiles) {
        Samples& taken = samples->emplace_back();
        for (const auto& point : profile) {
            if (point.x == 0.0) continue;
            taken.x.push_back(point.x);
            taken.z.push_back(point.z);
        }
    }
    const auto of = [samples](int copy) -> const Samples& { return (*samples)[static_cast<std::size_t>(copy)]; };
    const auto result = std::make_shared<std::vector<double>>();
    Item item = itemOn(work);
    item.library = [=](int copy) { *result = work->stream.library.polynomialFit(of(copy).x, of(copy).z, kDegree); };
    item.twin = [=](int copy) { *result = reference::polynomialFit(of(copy).x, of(copy).z, kDegree); };
    item.clearOutputs = [result] { result->clear(); };
    item.digest = [result](int) { return Digest().add(*result).value(); };
    return item;
}

/// Planes about the standard sensor's.
Item transformItem() {
    constexpr int kPlanes = 64;
    constexpr double kSpread = 1e-3;
    struct Planes {
        Library library;
        double planes[kPlanes][3];
        double rt[12];
    };
    const auto work = std::make_shared<Planes>();
    const auto standard = scenes::standardSensor().calibration;
    for (int i = 0; i < kPlanes; ++i) {
        for (int k = 0; k < 3; ++k) work->planes[i][k] = standard.LaserPlane[k] * (1.0 + kSpread * i);
    }
    Item item;
    item.input = "plane";
    item.columns = 1;
    item.copies = kPlanes;
    item.library = [work](int copy) { work->library.CalRT(work->planes[copy], work->rt); };
    item.twin = [work](int copy) { reference::CalRT(work->planes[copy], work->rt); };
    item.clearOutputs = [work] { std::fill(std::begin(work->rt), std::end(work->rt), 0.0); };
    item.digest = [work](int) { return Digest().add(work->rt, std::size(work->rt)).value(); };
    return item;
}

}  // namespace

std::vector<ItemMaker> profileItems(int columns) {
    std::vector<ItemMaker> items;
    const auto add = [&](const std::string& method, const auto& make, const char* input = "points") {
        items.push_back({method, input, [=] {
                             Item item = make();
                             item.method = method;
                             return item;
                         }});
    };
    add("Outlierdetect1(10)", [=] {
        return filterItem(
            columns, [](Library& library, Profile& p) { library.Outlierdetect1(p, 10, kDepthStep); },
            [](Profile& p) { reference::Outlierdetect1(p, 10, kDepthStep); });
    });
    add("Outlierdetect2(5)", [=] {
        return filterItem(
            columns, [](Library& library, Profile& p) { library.Outlierdetect2(p, 5, kJump); },
            [](Profile& p) { reference::Outlierdetect2(p, 5, kJump); });
    });
    for (const int halfWindow : {2, 5, 20})
        add("medianfilter1(" + std::to_string(halfWindow) + ")", [=] { return medianItem(columns, halfWindow); });
    for (const int halfWindow : {3, 10}) {
        add("Gaussianfilter(" + std::to_string(halfWindow) + ")", [=] {
            return filterItem(
                columns, [=](Library& library, Profile& p) { library.Gaussianfilter(p, halfWindow); },
                [=](Profile& p) { reference::Gaussianfilter(p, halfWindow); });
        });
    }
    add("Downsample", [=] { return downsampleItem(columns); });
    add("undistortPoints2", [=] { return undistortItem(columns); });
    add("Cal3DPoint1", [=] { return cal3dItem(columns, false); });
    add("Cal3DPoint2", [=] { return cal3dItem(columns, true); });
    add("polynomialFit(3)", [=] { return polynomialItem(columns); });
    add(
        "CalRT", [] { return transformItem(); }, "plane");
    return items;
}

}  // namespace bench
