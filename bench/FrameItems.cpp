// What starts from a frame: extraction, image operations, exposure, and the whole chain.

#include <algorithm>
#include <array>
#include <memory>
#include <stdexcept>

#include "bench/Digest.h"
#include "bench/Floors.h"
#include "bench/Items.h"
#include "bench/Other.h"

namespace bench {

namespace {

/// What the calls of one item share.
struct FrameWork {
    FrameWork(const std::string& kind, Size frameSize)
        : size(frameSize),
          stream(sensorOfSize(frameSize)),
          frames(framesOfKind(kind, frameSize)),
          mask(std::make_unique<bool[]>(static_cast<std::size_t>(frameSize.width))),
          out(frameSize.pixels()) {}

    unsigned char* frame(int copy) { return (*frames)[static_cast<std::size_t>(copy)].data(); }
    std::size_t columns() const { return static_cast<std::size_t>(size.width); }
    void clearMask() { std::fill_n(mask.get(), columns(), false); }
    void clearOutputs() {
        clearMask();
        points.clear();
        thinned.clear();
        thinnedCount = -1;
        std::fill(out.begin(), out.end(), static_cast<unsigned char>(0));
        std::fill(labels.begin(), labels.end(), 0);
    }

    /// For methods that change the frame: gives them frames of their own.
    void ownFrames() {
        pristine = frames;
        frames = std::make_shared<std::vector<Bytes>>(*pristine);
    }
    void restoreFrame(int copy) {
        const auto index = static_cast<std::size_t>(copy);
        (*frames)[index] = (*pristine)[index];
    }

    Size size;
    Stream stream;
    Frames frames;
    Frames pristine;
    std::unique_ptr<bool[]> mask;
    Points2d points;
    Profile profile;
    Profile thinned;
    int thinnedCount = 0;
    Bytes out;
    std::vector<int> labels;
};
using Shared = std::shared_ptr<FrameWork>;

Item itemOn(const Shared& work, const char* floorName) {
    Item item;
    item.columns = work->size.width;
    item.copies = static_cast<int>(work->frames->size());
    item.floorName = floorName;
    item.clearOutputs = [work] { work->clearOutputs(); };
    return item;
}

Call readFrame(const Shared& work) {
    return [work](int copy) { readOnce(work->frame(copy), work->size.pixels()); };
}

Call copyFrame(const Shared& work) {
    return [work](int copy) { copyOnce(work->out.data(), work->frame(copy), work->size.pixels()); };
}

// ---- extraction ----

using Library = KORVANELASERALGO::KorvaneLaserAlgo;
using TwinSettings = reference::Settings;

constexpr int kUnused = 0;
constexpr int kCap = 200;       // grey levels, as the host has it
constexpr int kThreshold = 60;  // grey levels, as the host has it

struct Extraction {
    const char* name;
    void (*library)(Library&, bool*, unsigned char*, Points2d&);
    void (*twin)(const TwinSettings&, bool*, unsigned char*, Points2d&);
    bool cutsTheFrame = false;
};

constexpr std::array<Extraction, 6> kExtractions = {{
    {"Cal2DPoint1", [](Library& l, bool* m, unsigned char* f, Points2d& p) { l.Cal2DPoint1(m, f, p, kUnused); },
     [](const TwinSettings& s, bool* m, unsigned char* f, Points2d& p) {
         reference::Cal2DPoint1(s, m, f, p, kUnused);
     }},
    {"Cal2DPoint1_1", [](Library& l, bool* m, unsigned char* f, Points2d& p) { l.Cal2DPoint1_1(m, f, p); },
     [](const TwinSettings& s, bool* m, unsigned char* f, Points2d& p) { reference::Cal2DPoint1_1(s, m, f, p); }},
    {"Cal2DPoint2", [](Library& l, bool* m, unsigned char* f, Points2d& p) { l.Cal2DPoint2(m, f, p); },
     [](const TwinSettings& s, bool* m, unsigned char* f, Points2d& p) { reference::Cal2DPoint2(s, m, f, p); }},
    {"Cal2DPoint2_1", [](Library& l, bool* m, unsigned char* f, Points2d& p) { l.Cal2DPoint2_1(m, f, p); },
     [](const TwinSettings& s, bool* m, unsigned char* f, Points2d& p) { reference::Cal2DPoint2_1(s, m, f, p); }},
    {"Cal2DPoint3", [](Library& l, bool* m, unsigned char* f, Points2d& p) { l.Cal2DPoint3(m, f, p, kCap); },
     [](const TwinSettings& s, bool* m, unsigned char* f, Points2d& p) { reference::Cal2DPoint3(s, m, f, p, kCap); }},
    {"Cal2DPoint4", [](Library& l, bool* m, unsigned char* f, Points2d& p) { l.Cal2DPoint4(m, f, p, kThreshold); },
     [](const TwinSettings& s, bool* m, unsigned char* f, Points2d& p) {
         reference::Cal2DPoint4(s, m, f, p, kThreshold);
     },
     true},
}};

Item extractionItem(const Extraction& method, const std::string& kind, Size size) {
    const auto work = std::make_shared<FrameWork>(kind, size);
    if (method.cutsTheFrame) work->ownFrames();
    Item item = itemOn(work, method.cutsTheFrame ? "memcpy" : "read");
    item.floor = method.cutsTheFrame ? copyFrame(work) : readFrame(work);
    item.library = [work, method](int copy) {
        method.library(work->stream.library, work->mask.get(), work->frame(copy), work->points);
    };
    item.twin = [work, method](int copy) {
        method.twin(work->stream.twin, work->mask.get(), work->frame(copy), work->points);
    };
    other::setExtraction(
        item, std::string(method.name) == "Cal2DPoint2_1", [work](int copy) { return work->frame(copy); }, size,
        kThreshold);
    item.changesInput = method.cutsTheFrame;
    if (method.cutsTheFrame) item.restore = [work](int copy) { work->restoreFrame(copy); };
    item.digest = [work, method](int copy) {
        Digest digest;
        if (method.cutsTheFrame) digest.add(work->frame(copy), work->size.pixels());
        return digest.add(work->mask.get(), work->columns()).add(work->points).value();
    };
    return item;
}

// ---- the chain, with the host's own settings ----

constexpr int kOutlierHalfWidth = 5;
constexpr float kOutlierThreshold = 0.3F;  // mm
constexpr int kMedianHalfWindow = 3;
constexpr int kGaussHalfWindow = 2;
constexpr float kStep = 0.25F;  // mm

Item chainItem(const std::string& kind, Size size) {
    const auto work = std::make_shared<FrameWork>(kind, size);
    Item item = itemOn(work, "read");
    item.floor = readFrame(work);
    item.library = [work](int copy) {
        Library& library = work->stream.library;
        work->clearMask();
        library.Cal2DPoint2(work->mask.get(), work->frame(copy), work->points);
        library.undistortPoints2(work->points);
        library.Cal3DPoint1(work->mask.get(), work->points, work->profile);
        library.Outlierdetect1(work->profile, kOutlierHalfWidth, kOutlierThreshold);
        library.medianfilter1(work->profile, kMedianHalfWindow);
        library.Gaussianfilter(work->profile, kGaussHalfWindow);
        library.Downsample(work->profile, kStep, work->thinned, work->thinnedCount);
    };
    item.twin = [work](int copy) {
        const TwinSettings& settings = work->stream.twin;
        work->clearMask();
        reference::Cal2DPoint2(settings, work->mask.get(), work->frame(copy), work->points);
        reference::undistortPoints2(settings, work->points);
        reference::Cal3DPoint1(settings, work->mask.get(), work->points, work->profile);
        reference::Outlierdetect1(work->profile, kOutlierHalfWidth, kOutlierThreshold);
        reference::medianfilter(work->profile, kMedianHalfWindow);
        reference::Gaussianfilter(work->profile, kGaussHalfWindow);
        reference::Downsample(work->profile, kStep, work->thinned, work->thinnedCount);
    };
    item.digest = [work](int) { return Digest().add(work->thinned).add(work->thinnedCount).value(); };
    return item;
}

// ---- image operations ----

constexpr int kTaps = 5;

Item blurItem(const std::string& kind, Size size) {
    const auto work = std::make_shared<FrameWork>(kind, size);
    Item item = itemOn(work, "memcpy");
    item.floor = copyFrame(work);
    item.library = [work](int copy) { work->stream.library.GaussianBlur(work->frame(copy), work->out.data(), kTaps); };
    item.twin = [work](int copy) {
        reference::GaussianBlur(work->stream.twin, work->frame(copy), work->out.data(), kTaps);
    };
    other::setBlur(
        item, [work](int copy) { return work->frame(copy); }, work->out.data(), size, kTaps);
    item.digest = [work](int) { return Digest().add(work->out).value(); };
    return item;
}

Item otsu2Item(const std::string& kind, Size size) {
    const auto work = std::make_shared<FrameWork>(kind, size);
    Item item = itemOn(work, "read");
    item.floor = readFrame(work);
    item.library = [work](int copy) { work->stream.library.Otsu2(kThreshold, work->out.data(), work->frame(copy)); };
    item.twin = [work](int copy) {
        reference::Otsu2(work->stream.twin, kThreshold, work->out.data(), work->frame(copy));
    };
    other::setThreshold(
        item, [work](int copy) { return work->frame(copy); }, work->out.data(), size, kThreshold);
    item.digest = [work](int) { return Digest().add(work->out).value(); };
    return item;
}

Item otsu3Item(const std::string& kind, Size size) {
    const auto work = std::make_shared<FrameWork>(kind, size);
    work->ownFrames();
    work->labels.assign(size.pixels(), 0);
    Item item = itemOn(work, "read");
    item.threads = true;
    item.emptyThreads = 4;
    item.floor = readFrame(work);
    item.library = [work](int copy) {
        work->stream.library.Otsu3(work->out.data(), work->labels.data(), work->frame(copy));
    };
    item.twin = [work](int copy) {
        reference::Otsu3(work->stream.twin, work->out.data(), work->labels.data(), work->frame(copy));
    };
    item.changesInput = true;
    item.restore = [work](int copy) { work->restoreFrame(copy); };
    item.digest = [work](int copy) {
        return Digest().add(work->out).add(work->labels).add(work->frame(copy), work->size.pixels()).value();
    };
    return item;
}

Item mergeItem(const std::string& kind, Size size) {
    const auto work = std::make_shared<FrameWork>(kind, size);
    const Frames bright = brightFramesOfKind(kind, size);
    const auto second = [bright](int copy) { return (*bright)[static_cast<std::size_t>(copy)].data(); };
    Item item = itemOn(work, "memcpy + read");
    item.floor = [work, second](int copy) {
        copyOnce(work->out.data(), work->frame(copy), work->size.pixels());
        readOnce(second(copy), work->size.pixels());
    };
    item.library = [work, second](int copy) {
        work->stream.library.MergeImg(work->frame(copy), second(copy), work->out.data());
    };
    item.twin = [work, second](int copy) {
        reference::MergeImg(work->stream.twin, work->frame(copy), second(copy), work->out.data());
    };
    item.digest = [work](int) { return Digest().add(work->out).value(); };
    return item;
}

Item bufferItem(const std::string& kind, Size size) {
    const auto work = std::make_shared<FrameWork>(kind, size);
    const auto state = std::make_shared<reference::StabilisationState>();
    const auto previous = std::make_shared<Bytes>(size.pixels());
    work->stream.library.CalcImageBuffer(nullptr, nullptr, false);  // forgets the frames of other items
    Item item = itemOn(work, "2 memcpy");
    item.threads = true;
    item.emptyThreads = 2;
    item.floor = [work, previous](int copy) {
        copyOnce(work->out.data(), work->frame(copy), work->size.pixels());
        copyOnce(previous->data(), work->frame(copy), work->size.pixels());
    };
    item.library = [work](int copy) {
        work->stream.library.CalcImageBuffer(work->frame(copy), work->out.data(), true);
    };
    item.twin = [work, state](int copy) {
        reference::CalcImageBuffer(work->stream.twin, *state, work->frame(copy), work->out.data(), true);
    };
    item.digest = [work](int) { return Digest().add(work->out).value(); };
    return item;
}

/// The exposure stays, or goes up and down: the two rules of the method.
Item exposureItem(const std::string& kind, Size size, bool changes) {
    struct Exposures {
        double library = 1.0;
        double twin = 1.0;
        double proposal = 0.0;
        bool proposed = false;
        reference::ExposureState state;
    };
    constexpr double kTarget = 3.0;  // pixels; the rest in factors on the light
    constexpr double kLeast = 0.05;
    constexpr double kMost = 8.0;
    constexpr double kStepOfExposure = 0.1;
    const double change = changes ? 0.25 : 0.0;
    const auto next = [change](double exposure) { return exposure > 1.0 ? 1.0 : 1.0 + change; };

    const auto work = std::make_shared<FrameWork>(kind, size);
    const auto exposures = std::make_shared<Exposures>();
    double none = 0.0;
    work->stream.library.AutoExposure(nullptr, kTarget, 1.0, kLeast, kMost, kStepOfExposure, false, none);  // forgets
    Item item = itemOn(work, "read");
    item.floor = readFrame(work);
    item.library = [=](int copy) {
        exposures->library = next(exposures->library);
        exposures->proposed = work->stream.library.AutoExposure(work->frame(copy), kTarget, exposures->library, kLeast,
                                                                kMost, kStepOfExposure, true, exposures->proposal);
    };
    item.twin = [=](int copy) {
        exposures->twin = next(exposures->twin);
        exposures->proposed =
            reference::AutoExposure(work->stream.twin, exposures->state, work->frame(copy), kTarget, exposures->twin,
                                    kLeast, kMost, kStepOfExposure, true, exposures->proposal);
    };
    item.clearOutputs = [exposures] { exposures->proposal = 0.0; };
    item.digest = [=](int) { return Digest().add(exposures->proposed).add(exposures->proposal).value(); };
    return item;
}

}  // namespace

std::vector<ItemMaker> frameItems(Size size) {
    std::vector<ItemMaker> items;
    const auto add = [&](const char* method, std::initializer_list<const char*> kinds, auto make) {
        for (const std::string kind : kinds) {
            items.push_back({method, kind, [=] {
                                 Item item = make(kind);
                                 item.method = method;
                                 item.input = kind;
                                 return item;
                             }});
        }
    };
    for (const Extraction& method : kExtractions)
        add(method.name, {"clean", "hard", "dark", "ambient", "noisy"},
            [=](const std::string& kind) { return extractionItem(method, kind, size); });
    add("chain", {"clean", "hard", "dark", "ambient", "noisy"},
        [=](const std::string& kind) { return chainItem(kind, size); });
    add("GaussianBlur(5)", {"hard", "dark", "ambient", "few greys", "noisy"},
        [=](const std::string& kind) { return blurItem(kind, size); });
    add("Otsu2", {"clean", "hard", "dark", "noisy"}, [=](const std::string& kind) { return otsu2Item(kind, size); });
    add("Otsu3", {"clean", "hard", "dark", "blob", "noisy"},
        [=](const std::string& kind) { return otsu3Item(kind, size); });
    add("MergeImg", {"clean", "hard", "dark", "noisy"}, [=](const std::string& kind) { return mergeItem(kind, size); });
    add("CalcImageBuffer", {"clean", "hard", "dark", "noisy"},
        [=](const std::string& kind) { return bufferItem(kind, size); });
    add("AutoExposure, step", {"clean", "noisy"},
        [=](const std::string& kind) { return exposureItem(kind, size, false); });
    add("AutoExposure, line fit", {"clean", "noisy"},
        [=](const std::string& kind) { return exposureItem(kind, size, true); });
    return items;
}

Item makeExtraction(const std::string& name, const std::string& kind, Size size) {
    const auto* method = std::find_if(kExtractions.begin(), kExtractions.end(),
                                      [&](const Extraction& candidate) { return candidate.name == name; });
    if (method == kExtractions.end()) throw std::invalid_argument("there is no method called " + name);
    Item item = extractionItem(*method, kind, size);
    item.method = name;
    item.input = kind;
    return item;
}

std::vector<ItemMaker> allItems(Size size) {
    std::vector<ItemMaker> items = frameItems(size);
    for (ItemMaker& item : profileItems(size.width)) items.push_back(std::move(item));
    return items;
}

}  // namespace bench
