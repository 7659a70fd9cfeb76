// SPDX-License-Identifier: GPL-3.0-or-later
// A clock that does not count the time that boxes take.
#pragma once

#include <ctime>

namespace polyfab {

class WorkClock {
  public:
    double seconds() const { return (boxes > 0 ? stopped : now()) - start; }
    /// A box opens or closes; one may be open over the other.
    void boxOpens() {
        if (boxes++ == 0) stopped = now();
    }
    void boxCloses() {
        if (--boxes == 0) start += now() - stopped;
    }

  private:
    /// The clock that costs no more than reading a variable; it ticks every few milliseconds.
    static double now() {
        std::timespec time{};
        ::clock_gettime(CLOCK_MONOTONIC_COARSE, &time);
        return static_cast<double>(time.tv_sec) + 1e-9 * static_cast<double>(time.tv_nsec);
    }

    double start = now();
    double stopped = 0; ///< when the first of the open boxes opened
    int boxes = 0;
};

} // namespace polyfab
