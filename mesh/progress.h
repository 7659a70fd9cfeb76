// SPDX-License-Identifier: GPL-3.0-or-later
// How a loop over a large mesh lets it be known that work goes on. Who shows that to the user
// stands on a floor above.
#pragma once

#include <cstdint>

namespace polyfab {

/// Called every few milliseconds by loops that may run long, in the midst of their work: it must
/// not change the mesh. Does nothing until somebody sets it. No other thread than the window's may
/// call it.
inline void (*workGoesOn)() = [] {};

/// Counts what a loop has done.
class StepCounter {
  public:
    /// To be called in each step with the number of elements that it took. True now and then: it is
    /// time to let something be known.
    bool step(std::int64_t elements = 1) {
        done += elements;
        if (done < next) return false;
        next = done + pause;
        return true;
    }
    [[nodiscard]] std::int64_t count() const { return done; }

  private:
    static constexpr std::int64_t pause = 65536;
    std::int64_t done = 0;
    std::int64_t next = pause;
};

/// Says of a loop that it goes on.
class WorkCounter {
  public:
    void step(std::int64_t elements = 1) {
        if (steps.step(elements)) workGoesOn();
    }

  private:
    StepCounter steps;
};

} // namespace polyfab
