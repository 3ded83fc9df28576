#include "host/Terminal.h"

#include <csignal>
#include <cstdio>
#include <string>

#ifdef _WIN32
#include <io.h>
#else
#include <unistd.h>
#endif

namespace host {
namespace {

constexpr int kBarWidth = 40;                         // characters
constexpr auto kQuietTime = std::chrono::seconds(1);  // shorter runs show no bar
constexpr auto kRedrawTime = std::chrono::milliseconds(100);

volatile std::sig_atomic_t interrupted = 0;

extern "C" void rememberInterruption(int) {
    interrupted = 1;
}

bool standardErrorIsTerminal() {
#ifdef _WIN32
    return _isatty(_fileno(stderr)) != 0;
#else
    return isatty(STDERR_FILENO) != 0;
#endif
}

}  // namespace

ProgressBar::ProgressBar(int total)
    : total_(total), onTerminal_(standardErrorIsTerminal()), start_(Clock::now()), lastDrawn_(start_) {}

ProgressBar::~ProgressBar() {
    if (isDrawn_) std::fprintf(stderr, "\r%*s\r", kBarWidth + 30, "");
}

void ProgressBar::show(int done) {
    const Clock::time_point now = Clock::now();
    if (!onTerminal_ || now - start_ < kQuietTime || now - lastDrawn_ < kRedrawTime) return;
    const int filled = static_cast<int>(static_cast<long long>(kBarWidth) * done / total_);
    const std::string bar = std::string(static_cast<std::size_t>(filled), '#') +
                            std::string(static_cast<std::size_t>(kBarWidth - filled), '.');
    std::fprintf(stderr, "\r[%s] %d of %d frames", bar.c_str(), done, total_);
    std::fflush(stderr);
    isDrawn_ = true;
    lastDrawn_ = now;
}

void catchInterruption() {
    std::signal(SIGINT, rememberInterruption);
    std::signal(SIGTERM, rememberInterruption);
}

bool isInterrupted() {
    return interrupted != 0;
}

}  // namespace host
