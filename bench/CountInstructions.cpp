// Runs one item on each of its inputs once, for valgrind --tool=callgrind --instr-atstart=no: only the calls
// themselves are counted, in all threads.

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdio>
#include <exception>
#include <stdexcept>
#include <string>

#include "bench/Items.h"
#include "bench/Rounds.h"

#if __has_include(<valgrind/callgrind.h>)
#include <valgrind/callgrind.h>
#else
#define CALLGRIND_START_INSTRUMENTATION
#define CALLGRIND_STOP_INSTRUMENTATION
#endif

namespace {

struct Options {
    std::string item;
    std::string set = "SSE2";
    int times = 4;
    bool list = false;
};

void countCalls(const Options& options) {
    const auto* set = bench::kernelSetNamed(options.set);
    if (set == nullptr) throw std::runtime_error("there are no kernels called " + options.set + " here");
    KORVANELASERALGO::kernels::activate(*set);
    for (const bench::ItemMaker& maker : bench::allItems({1280, 1024})) {
        if (options.list) std::printf("%s\n", maker.name().c_str());
        if (maker.name() != options.item) continue;

        // The first call of all is not counted: it finds its symbols, and its memory.
        const bench::Item item = maker.make();
        item.library(0);
        if (item.changesInput) item.restore(0);
        const int calls = std::min(options.times, item.copies);
        CALLGRIND_START_INSTRUMENTATION;
        for (int copy = 0; copy < calls; ++copy) item.library(copy);
        CALLGRIND_STOP_INSTRUMENTATION;
        std::printf("%d calls\n", calls);
        return;
    }
    if (!options.list) throw std::runtime_error("there is no item called \"" + options.item + "\"; see --list");
}

}  // namespace

int main(int argc, char** argv) {
    Options options;
    CLI::App app("Runs the library on the inputs of one item, to be counted by callgrind.");
    app.add_option("--item", options.item, "\"method input\", as --list names it")->option_text("NAME");
    app.add_option("--set", options.set, "Kernels (SSE2)")->option_text("NAME");
    app.add_option("--times", options.times, "Inputs, at most as many as there are (4)")->option_text("N");
    app.add_flag("--list", options.list, "Print the names of all items");
    CLI11_PARSE(app, argc, argv);
    try {
        countCalls(options);
        return 0;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "count_instructions: %s\n", error.what());
        return 2;
    }
}
