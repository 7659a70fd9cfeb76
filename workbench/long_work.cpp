// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/long_work.h"

#include "mesh/progress.h"
#include "platform/platform.h"

#include <algorithm>
#include <optional>
#include <utility>

namespace polyfab {
namespace {

/// Seconds of work until the strip shows, and from one time that it is drawn to the next.
constexpr double untilShown = 0.5, untilDrawn = 0.1;

constexpr const char* words[] = {
    "it can't be stopped",
    "Escape stops it",
    "Escape stops it and undo brings the old mesh back",
};

struct Running {
    std::string what;
    Escape escape;
    double drawAt; ///< on the clock for work
    double fraction = -1;
    bool shown = false;
};

std::optional<Running> running;

} // namespace

LongWork::LongWork(std::string what, Escape escape) {
    running = {std::move(what), escape, platform().workSeconds() + untilShown};
    workGoesOn = moveProgress;
}

LongWork::~LongWork() {
    workGoesOn = [] {};
    if (running->shown) platform().showProgress("", 0);
    running.reset();
}

void tellProgress(double done, double all) {
    if (!running) return;
    running->fraction = all > 0 ? std::clamp(done / all, 0.0, 1.0) : -1;
    moveProgress();
}

void moveProgress() {
    if (!running || platform().workSeconds() < running->drawAt) return;
    const char* const escape = words[static_cast<int>(running->escape)];
    running->shown = true;
    platform().showProgress(running->what + " (" + escape + ")", running->fraction);
    running->drawAt = platform().workSeconds() + untilDrawn;
}

void tellTooLateToStop() {
    if (running) running->escape = Escape::stopsNothing;
}

} // namespace polyfab
