#include "bench/Rounds.h"

#include <algorithm>
#include <cmath>
#include <stdexcept>
#include <vector>

#include "bench/Clock.h"
#include "bench/Floors.h"

namespace bench {

namespace kernels = KORVANELASERALGO::kernels;

namespace {

/// What reading the clock twice takes.
double costOfClock(Clock clock) {
    constexpr int kPairs = 101;
    std::vector<double> costs;
    for (int i = 0; i < kPairs; ++i) {
        const double start = clock();
        costs.push_back(clock() - start);
    }
    std::nth_element(costs.begin(), costs.begin() + kPairs / 2, costs.end());
    return costs[kPairs / 2];
}

double median(std::vector<double> values) {
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

/// One of those who do the work of an item.
struct Contender {
    Call call;
    const KernelSet* set;       // to be active meanwhile; null for any
    bool changesInput = false;  // so each input serves once, then is restored
    int calls = 1;              // in a row, timed together
    int nextCopy = 0;
    std::vector<double> times = {};  // of a call, one per round
};

class Race {
public:
    explicit Race(const Item& item)
        : item_(item), clock_(item.threads ? wallSeconds : threadSeconds), clockCost_(costOfClock(clock_)) {}

    /// As many calls as there are inputs, so that all are measured on the same; more where that is too short for the
    /// clock, and one where it takes long.
    void chooseCalls(Contender& contender) {
        constexpr double kLong = 2e-3;   // seconds
        constexpr double kShort = 2e-4;  // of all calls together
        timeOf(contender);
        const double time = timeOf(contender);
        contender.calls = item_.copies;
        if (time > kLong) contender.calls = 1;
        if (time * item_.copies < kShort && !contender.changesInput)
            contender.calls *= static_cast<int>(std::ceil(kShort / std::max(time * item_.copies, 1e-9)));
        contender.nextCopy = 0;
    }

    /// Lets the contender run for a while before the clock counts: whoever came before, all find caches, clock rate and
    /// branch predictors as in a stream that does nothing else, with frames that come from the third-level cache. What
    /// takes long does not notice, and is called once.
    double timeOfRound(Contender& contender) {
        constexpr double kWarmUp = 1.5e-3;  // seconds
        if (contender.calls >= item_.copies) {
            const double start = clock_();
            while (clock_() - start < kWarmUp) timeOf(contender);
        }
        return timeOf(contender);
    }

    /// Of one call; takes the next inputs, and restores them afterwards.
    double timeOf(Contender& contender) {
        if (contender.set != nullptr) kernels::activate(*contender.set);
        const int first = contender.nextCopy;
        int copy = first;
        const double start = clock_();
        for (int i = 0; i < contender.calls; ++i) {
            contender.call(copy);
            copy = copy + 1 == item_.copies ? 0 : copy + 1;
        }
        const double time = clock_() - start - clockCost_;
        contender.nextCopy = copy;
        if (contender.changesInput) {
            for (int i = 0; i < contender.calls; ++i) item_.restore((first + i) % item_.copies);
        }
        return std::max(time, 0.0) / contender.calls;
    }

private:
    const Item& item_;
    Clock clock_;
    double clockCost_;
};

/// The median of a ratio of sums, round by round.
std::optional<double> ratio(const Contender& of, const Contender* fixed, double passes, const Contender* floor) {
    std::vector<double> ratios;
    for (std::size_t round = 0; round < of.times.size(); ++round) {
        const double below = (fixed ? fixed->times[round] : 0.0) + (floor ? passes * floor->times[round] : 0.0);
        ratios.push_back(of.times[round] / std::max(below, 1e-12));
    }
    return median(ratios);
}

}  // namespace

const KernelSet* kernelSetNamed(const std::string& name) {
    for (const auto& candidate : kernels::setsOfBuild()) {
        if (candidate.supported && name == candidate.set->name) return candidate.set;
    }
    return nullptr;
}

const KernelSet& widestKernelSet() {
    const KernelSet* widest = nullptr;
    for (const auto& candidate : kernels::setsOfBuild()) {
        if (candidate.supported) widest = candidate.set;
    }
    return *widest;
}

Figures measure(const Item& item, const Goal& goal, const Plan& plan) {
    Race race(item);

    Contender chosen{item.library, plan.chosen, item.changesInput};
    Contender twin{item.twin, nullptr, item.changesInput};
    Contender capped{item.library, plan.capped, item.changesInput};
    Contender floor{item.floor, nullptr};
    Contender threads{[&item](int) { startAndJoin(item.emptyThreads); }, nullptr};
    Contender other{item.other, nullptr};
    std::vector<Contender*> contenders = {&chosen, &twin};
    if (plan.capped) contenders.push_back(&capped);
    if (item.floor) contenders.push_back(&floor);
    if (item.emptyThreads > 0) contenders.push_back(&threads);
    if (item.other) contenders.push_back(&other);
    for (Contender* contender : contenders) race.chooseCalls(*contender);

    // Another order in each round: everyone comes first at some time, and after everyone else.
    Figures figures;
    const double start = wallSeconds();
    while (figures.rounds < plan.mostRounds &&
           (figures.rounds < plan.leastRounds || wallSeconds() - start < plan.seconds)) {
        for (Contender* contender : contenders) contender->times.push_back(race.timeOfRound(*contender));
        std::rotate(contenders.begin(), contenders.begin() + 1, contenders.end());
        ++figures.rounds;
        if (figures.rounds % static_cast<int>(contenders.size()) == 0)
            std::reverse(contenders.begin(), contenders.end());
    }
    figures.chosen = median(chosen.times);
    if (item.floor) {
        figures.floor = median(floor.times);
        const Contender* fixed = item.emptyThreads > 0 ? &threads : nullptr;
        if (fixed != nullptr) figures.threads = median(threads.times);
        figures.chosenOverFloor = ratio(chosen, fixed, fixed ? goal.widest.value_or(1.0) : 1.0, &floor);
        if (plan.capped) figures.cappedOverFloor = ratio(capped, fixed, fixed ? goal.sse2.value_or(1.0) : 1.0, &floor);
    }
    figures.chosenOverTwin = *ratio(chosen, nullptr, 1.0, &twin);
    if (item.other) figures.chosenOverOther = ratio(chosen, nullptr, 1.0, &other);

    // The tail: single calls, but not for ever.
    if (plan.singleCalls > 0) {
        constexpr double kPatience = 4.0;  // times the rounds' time
        constexpr int kLeastCallsForTail = 1000;
        Contender single{item.library, plan.chosen, item.changesInput};
        const double startOfCalls = wallSeconds();
        do {
            single.times.push_back(race.timeOf(single));
        } while (static_cast<int>(single.times.size()) < plan.singleCalls &&
                 wallSeconds() - startOfCalls < kPatience * plan.seconds);
        std::sort(single.times.begin(), single.times.end());
        constexpr double kShare = 0.999;
        const auto rank = static_cast<std::size_t>(std::ceil(kShare * static_cast<double>(single.times.size())));
        if (single.times.size() >= kLeastCallsForTail) figures.tail = single.times[rank - 1];
        figures.longest = single.times.back();
    }
    return figures;
}

std::vector<double> medianTimes(const std::vector<Item>& items, const Plan& plan) {
    std::vector<Race> races;
    std::vector<Contender> contenders;
    for (const Item& item : items) {
        Race& race = races.emplace_back(item);
        race.chooseCalls(contenders.emplace_back(Contender{item.library, plan.chosen, item.changesInput}));
    }
    const double start = wallSeconds();
    for (int round = 0; round < plan.leastRounds || wallSeconds() - start < plan.seconds; ++round) {
        for (std::size_t i = 0; i < items.size(); ++i)
            contenders[i].times.push_back(races[i].timeOfRound(contenders[i]));
    }
    std::vector<double> medians;
    for (const Contender& contender : contenders) medians.push_back(median(contender.times));
    return medians;
}

void requireSameResults(const Item& item) {
    for (int copy = 0; copy < item.copies; ++copy) {
        const auto digestOf = [&](const Call& call) {
            item.clearOutputs();
            call(copy);
            const std::uint64_t digest = item.digest(copy);
            if (item.changesInput) item.restore(copy);
            return digest;
        };
        if (digestOf(item.library) != digestOf(item.twin))
            throw std::runtime_error(item.method + " on " + item.input + ": library and twin differ");
    }
}

}  // namespace bench
