/// @file Terminal.h
/// @brief A person at a terminal: a progress bar to watch, Ctrl-C to stop.

#ifndef KORVANE_HOST_TERMINAL_H
#define KORVANE_HOST_TERMINAL_H

#include <chrono>

namespace host {

/// One line on the standard error stream, redrawn in place. Shows itself only on a terminal, and only when the run
/// lasts.
class ProgressBar {
public:
    explicit ProgressBar(int total);
    /// Wipes the line.
    ~ProgressBar();

    ProgressBar(const ProgressBar&) = delete;
    ProgressBar& operator=(const ProgressBar&) = delete;

    void show(int done);

private:
    using Clock = std::chrono::steady_clock;

    int total_;
    bool onTerminal_;
    bool isDrawn_ = false;
    Clock::time_point start_;
    Clock::time_point lastDrawn_;
};

/// From now on an interruption (Ctrl-C) or a request to end no longer kills the program but is remembered.
void catchInterruption();

/// Whether one has arrived.
bool isInterrupted();

}  // namespace host

#endif  // KORVANE_HOST_TERMINAL_H
