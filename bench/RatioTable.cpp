// The ratio table: floors, twin, library with the chosen kernels and with SSE2 kernels, and what others would write,
// side by side in one run.

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdio>
#include <exception>
#include <regex>
#include <stdexcept>
#include <string>
#include <vector>

#include "bench/Goals.h"
#include "bench/Items.h"
#include "bench/Other.h"
#include "bench/Rounds.h"

namespace {

using bench::Figures;
using bench::Goal;
using bench::Item;

struct Column {
    const char* title;
    int width;
};

constexpr Column kColumns[] = {{"method", 22}, {"input", 12}, {"floor", 35}, {"D/floor", 8},   {"goal", 6},
                               {"S/floor", 8}, {"goal", 6},   {"D/twin", 8}, {"goal", 6},      {"D/other", 8},
                               {"D, us", 9},   {"ns/col", 8}, {"goal", 5},   {"p99.9, us", 9}, {"max, us", 9}};

void printRow(const std::vector<std::string>& cells, bool markdown) {
    std::string line = markdown ? "|" : "";
    for (std::size_t i = 0; i < cells.size(); ++i) {
        if (markdown) {
            line += " " + cells[i] + " |";
            continue;
        }
        const auto width = static_cast<std::size_t>(kColumns[i].width);
        const std::string padding(width > cells[i].size() ? width - cells[i].size() : 0, ' ');
        line += (i < 3 ? cells[i] + padding : padding + cells[i]) + " ";
    }
    std::printf("%s\n", line.c_str());
    std::fflush(stdout);
}

void printHeader(bool markdown) {
    std::vector<std::string> titles;
    std::vector<std::string> rules;
    for (const Column& column : kColumns) {
        titles.emplace_back(column.title);
        rules.emplace_back(rules.size() < 3 ? "---" : "--:");
    }
    printRow(titles, markdown);
    if (markdown) printRow(rules, markdown);
}

std::string formatted(const char* format, double value) {
    char text[64];
    std::snprintf(text, sizeof(text), format, value);
    return text;
}

std::string figure(std::optional<double> value) {
    if (!value) return "-";
    return formatted(*value < 0.1 ? "%.4f" : *value < 1.0 ? "%.3f" : *value < 100.0 ? "%.2f" : "%.0f", *value);
}

/// A figure with a mark where its goal is missed.
std::string judged(std::optional<double> value, std::optional<double> goal, int& missed) {
    if (!value || !goal || *value <= bench::kMissedBy * *goal) return figure(value);
    ++missed;
    return figure(value) + "!";
}

std::string goalText(std::optional<double> goal) {
    return goal ? formatted("%.4g", *goal) : "";
}

/// Where there are threads, the goal's passes are part of the floor: 1.0 is met.
std::string floorText(const Item& item, const Goal& goal) {
    if (item.floorName.empty()) return "-";
    if (item.emptyThreads == 0) return item.floorName;
    return std::to_string(item.emptyThreads) + " threads + " + formatted("%.3g", goal.widest.value_or(1.0)) + "/" +
           formatted("%.3g", goal.sse2.value_or(1.0)) + " x (" + item.floorName + ")";
}

int printItem(const Item& item, const Goal& goal, const Figures& figures, bool markdown) {
    constexpr double kMicro = 1e6;
    const auto floorGoal = [&](std::optional<double> passes) {
        return passes && item.emptyThreads > 0 ? std::optional<double>(1.0) : passes;
    };
    const auto micro = [](std::optional<double> seconds) {
        return seconds ? figure(*seconds * kMicro) : std::string("-");
    };
    const double nsPerColumn = figures.chosen * 1e9 / std::max(item.columns, 1);
    const std::string input = item.input == "points" ? std::to_string(item.columns) + " points" : item.input;
    int missed = 0;
    printRow(
        {item.method, input, floorText(item, goal), judged(figures.chosenOverFloor, floorGoal(goal.widest), missed),
         goalText(floorGoal(goal.widest)), judged(figures.cappedOverFloor, floorGoal(goal.sse2), missed),
         goalText(floorGoal(goal.sse2)), judged(figures.chosenOverTwin, goal.twin, missed), goalText(goal.twin),
         figure(figures.chosenOverOther), micro(figures.chosen), judged(nsPerColumn, goal.nsPerColumn, missed),
         goalText(goal.nsPerColumn), micro(figures.tail), micro(figures.longest)},
        markdown);
    return missed;
}

struct Options {
    bench::Size size{1280, 1024};
    std::string filter;
    std::string set;
    bool markdown = false;
    bench::Plan plan;
};

Options readOptions(int argc, char** argv) {
    Options options;
    std::string size = "1280x1024";
    int rounds = 0;
    CLI::App app(
        "Times the library beside floors, twin and others. D is the chosen set of kernels, S is SSE2; a figure "
        "with ! misses its goal by more than 10 %.");
    app.add_option("--filter", options.filter, "Only items whose \"method input\" this expression finds")
        ->option_text("REGEX");
    app.add_option("--seconds", options.plan.seconds, "Time for the rounds of one item (1)")->option_text("S");
    app.add_option("--rounds", rounds, "Exactly so many rounds instead")->option_text("N");
    app.add_option("--tail", options.plan.singleCalls, "Single calls for p99.9 and max (1000)")->option_text("N");
    app.add_option("--size", size, "Frame size (1280x1024); profiles have a point per column")->option_text("WxH");
    app.add_option("--set", options.set, "Kernels of D: plain, SSE2, AVX2, AVX512 (the widest)")->option_text("NAME");
    app.add_flag("--markdown", options.markdown, "Print a Markdown table");
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& stop) {
        std::exit(app.exit(stop));
    }

    if (std::sscanf(size.c_str(), "%dx%d", &options.size.width, &options.size.height) != 2 || options.size.width < 1 ||
        options.size.height < 1)
        throw std::runtime_error("--size wants columns x rows: 1280x1024");
    if (rounds > 0) options.plan.leastRounds = options.plan.mostRounds = rounds;
    options.plan.chosen = options.set.empty() ? &bench::widestKernelSet() : bench::kernelSetNamed(options.set);
    if (options.plan.chosen == nullptr)
        throw std::runtime_error("there are no kernels called " + options.set + " here");
    options.plan.capped = bench::kernelSetNamed("SSE2");
    return options;
}

void requireItemForEveryGoal(const std::vector<bench::ItemMaker>& items) {
    for (const std::string& name : bench::namesWithGoals()) {
        if (std::none_of(items.begin(), items.end(), [&](const auto& item) { return item.name() == name; }))
            throw std::runtime_error("there is a goal for \"" + name + "\", and no such item");
    }
}

}  // namespace

int main(int argc, char** argv) {
    try {
        const Options options = readOptions(argc, argv);
        const std::regex filter(options.filter);
        bench::other::useOneThread();
        if (!options.markdown)
            std::printf("frames of %d x %d, D = %s\n", options.size.width, options.size.height,
                        options.plan.chosen->name);
        const std::vector<bench::ItemMaker> items = bench::allItems(options.size);
        requireItemForEveryGoal(items);
        printHeader(options.markdown);
        int missed = 0;
        for (const bench::ItemMaker& maker : items) {
            if (!std::regex_search(maker.name(), filter)) continue;
            const Item item = maker.make();
            const Goal goal = bench::goalOf(item.method, item.input, options.size);
            bench::requireSameResults(item);
            missed += printItem(item, goal, bench::measure(item, goal, options.plan), options.markdown);
        }
        if (!options.markdown) std::printf("%d goals missed by more than 10 %%\n", missed);
        return 0;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "ratio_table: %s\n", error.what());
        return 2;
    }
}
