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

/// Counts what such a loop has done.
class WorkCounter {
  public:
    /// To be called in each step with the number of elements that it took.
    void step(std::int64_t elements = 1) {
        left -= elements;
        if (left > 0) return;
        left = pause;
        workGoesOn();
    }

  private:
    static constexpr std::int64_t pause = 65536;
    std::int64_t left = pause;
};

} // namespace polyfab
