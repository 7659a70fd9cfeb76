// SPDX-License-Identifier: GPL-3.0-or-later
// The buttons above the panes, and whether they are shown, which is kept from run to run.
#pragma once

namespace polyfab {

/// Puts the buttons on the window, as the state folder says.
void startToolBar();

void toggleToolBar();
[[nodiscard]] bool toolBarIsShown();

} // namespace polyfab
