// SPDX-License-Identifier: GPL-3.0-or-later
// A small program that uses every windowing operation, to try a backend with.
#pragma once

#include "platform/platform.h"

#include <string>
#include <vector>

namespace polyfab::test {

namespace toy {
enum Command {
    yesNo = 1,
    yesNoCancel,
    prompt,
    openFile,
    saveFile,
    warn,
    notice,
    greyed,
    unbuilt,
    exit,
    otherMenu,
    toggle,
    title,
    busyWork,
    raw
};
} // namespace toy

struct ToyProgram {
    std::vector<Event> events;    ///< all that came in, paint and resize events left out
    std::vector<std::string> log; ///< what the operations returned, such as "question yes"
    bool mayClose = false;        ///< whether a close event is granted
    int paints = 0;
    int resizes = 0;
};

/// The one toy and its state; resetToy before each test.
ToyProgram& toyProgram();
void resetToy();
const Program& toyAsProgram();

/// The colour that the toy draws at this position.
std::uint32_t toyColor(int x, int y);

} // namespace polyfab::test
