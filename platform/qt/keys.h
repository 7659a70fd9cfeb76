// SPDX-License-Identifier: GPL-3.0-or-later
// Keyboard events as virtual-key codes.
#pragma once

class QKeyEvent;

namespace polyfab {

/// The virtual-key code of the key, whatever Shift makes of it; 0 for a key without one.
int virtualKey(const QKeyEvent& event);

} // namespace polyfab
