// SPDX-License-Identifier: GPL-3.0-or-later
// The menu that a click with the right button opens in the mesh view.
#pragma once

#include "platform/platform.h"

namespace polyfab {

/// To be told of every mouse event of the mesh view, after history and position are up to date.
/// Opens the menu when the right button goes up where it went down, in a mode that has no use for
/// it.
void contextMenuByMouse(const Event& event);

} // namespace polyfab
