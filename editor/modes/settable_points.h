// SPDX-License-Identifier: GPL-3.0-or-later
// Setting the two settable points by the mouse.
#pragma once

#include "platform/platform.h"

namespace polyfab {

/// To be asked first about every mouse event, in every mode. A left press in a pane with Ctrl and
/// the 1 (2) key down beeps and puts the first (second) settable point under the mouse: onto the
/// face that is there, otherwise at the depth at which it was. Whether the event belongs to such a
/// press, up to and with its release.
bool settablePointPress(const Event& event);

} // namespace polyfab
