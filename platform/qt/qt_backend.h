// SPDX-License-Identifier: GPL-3.0-or-later
// The window backend, as main sees it.
#pragma once

#include "platform/platform.h"

#include <string>

namespace polyfab {

/// Opens the window, reads the file (if one is named) once the window is drawn, and runs until the
/// program destroys it. Returns the exit status, which is 0 also when there is
/// no display to open a window on; standard error then says so. What the dialogs remember is kept
/// in the state folder, unless that is "".
int runQt(const Program& program, int& argc, char** argv, const std::string& file,
          const std::string& stateFolder);

} // namespace polyfab
