// SPDX-License-Identifier: GPL-3.0-or-later
// How long a weld may go on, and how much it may make. Faces that all cross each other have more
// points in common than any memory holds: it has to be told before that is full.
#pragma once

#include "mesh/progress.h"
#include "workbench/notes.h"

#include <cstdint>

namespace polyfab::boolean {

/// Once it is at an end the loops run out, and what they have made is of no use.
class Effort {
  public:
    /// What an exact decision takes of the time of a step that only compares.
    static constexpr std::int64_t exactly = 64;

    /// To be called in each step. False when the user wants it to stop, or too much was made.
    bool goesOn(std::int64_t steps = 1) {
        if (taken.step(steps)) look();
        return !isOver();
    }
    void look() { isStopped = isStopped || stopRequested(); }

    /// To be called for what is made, with about how many bytes it will come to in the end.
    void make(std::int64_t bytes) { made += bytes; }

    [[nodiscard]] bool isOver() const { return isStopped || isTooMuch(); }
    [[nodiscard]] bool isTooMuch() const { return made > most; }

  private:
    static constexpr std::int64_t most = std::int64_t{4} << 30;
    StepCounter taken;
    std::int64_t made = 0;
    bool isStopped = false;
};

} // namespace polyfab::boolean
