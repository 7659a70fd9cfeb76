// SPDX-License-Identifier: GPL-3.0-or-later
// A small program that uses every windowing operation, to try a backend with.
#pragma once

#include "platform/platform.h"

#include <string>
#include <vector>

namespace polyfab::test {

/// Command ids.
namespace toy {
inline constexpr int yesNo = 1, yesNoCancel = 2, prompt = 3, openFile = 4, saveFile = 5, warn = 6,
                     raw = 7, busy = 8, title = 9, toggle = 10, otherMenu = 11, exit = 12,
                     greyed = 13, unbuilt = 14, longWork = 15, status = 16, note = 17,
                     hideStatus = 18, preview = 19;
}

struct ToyProgram {
    /// What came in ("keyDown 65"; paint, resize, idle and a start without a file left out) and
    /// what the operations gave.
    std::vector<std::string> log;
    bool mayClose = false; ///< whether a close event is granted
    bool working = false;  ///< the long work is going on
    int paints = 0;
    int resizes = 0;
    int rests = 0; ///< idle events
};

/// The state of the one toy; each test begins with a fresh one.
inline ToyProgram toyState;
const Program& toyProgram();

/// The log's line for this event; figures that are 0 are left out.
std::string describe(const Event& event);

/// The colour that the toy draws at this position.
std::uint32_t toyColor(int x, int y);

} // namespace polyfab::test
