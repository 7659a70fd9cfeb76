// SPDX-License-Identifier: GPL-3.0-or-later
// What every view does with keys, mouse and the wish to close, before anything of its own.
#pragma once

#include "platform/platform.h"

namespace polyfab {

/// All keys are up as far as we know.
void clearKeys();

/// Enters a mouse event into the button history and the mouse position.
void noteMouse(const Event& event);

/// Destroys the window, unless a file is open or the user has something to save.
void closeUnlessRefused();

} // namespace polyfab
