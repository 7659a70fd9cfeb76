// SPDX-License-Identifier: GPL-3.0-or-later
// Progress of what the user has to wait for. The window starts a LongWork around each command and
// drop; whatever runs inside tells how far it is, and after half a second of it a strip shows that.
// Loops that run outside of any may tell too: nothing shows it.
#pragma once

#include "mesh/progress.h"

#include <cstdint>
#include <string>

namespace polyfab {

/// What the Escape key does while a command runs.
enum class Escape : std::uint8_t {
    stopsNothing,
    stops,
    stopsReading, ///< the mesh is then empty, and undo brings the one before back
};

/// One at a time.
class LongWork {
  public:
    /// The strip will tell what it is and what Escape does to it.
    LongWork(std::string what, Escape escape);
    /// Removes the strip.
    ~LongWork();
    LongWork(const LongWork&) = delete;
    LongWork& operator=(const LongWork&) = delete;
};

/// `done` of `all` steps are behind us; `all` 0: nobody knows. To be called every few milliseconds
/// of work; costs a look at the clock. It is no look at the Escape key.
void tellProgress(double done, double all);

/// The work goes on, as far as was told last.
void moveProgress();

/// From here on Escape can't stop the work that runs.
void tellTooLateToStop();

/// Tells of a loop, now and then.
class LoopProgress {
  public:
    explicit LoopProgress(std::int64_t steps) : all(steps) {}
    /// To be called in each of the steps.
    void step() {
        if (done.step()) tell();
    }
    /// To be called before what takes long within a step.
    void tell() const { tellProgress(static_cast<double>(done.count()), static_cast<double>(all)); }

  private:
    std::int64_t all;
    StepCounter done;
};

} // namespace polyfab
