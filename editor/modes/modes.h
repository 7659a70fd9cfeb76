// SPDX-License-Identifier: GPL-3.0-or-later
// The interaction modes: what the mouse does to the mesh view is a row of a table.
#pragma once

#include "mesh/snapshot.h"
#include "platform/platform.h"

#include <string>

namespace polyfab {

inline constexpr int selectByRectangle = 2030; ///< the command that enters that mode

/// Enters the mode of this menu command. A drag ends.
void enterMode(int command);

/// Whether a menu command enters a mode.
[[nodiscard]] bool entersMode(int command);

/// The command that enters the present mode.
[[nodiscard]] int presentModeCommand();

/// What the mouse does in the present mode, in one line.
[[nodiscard]] std::string modeHelp();

/// The same for the mode that this command enters, whatever it turns now; "" when it enters none.
[[nodiscard]] const char* modeHelpOf(int command);

/// Whether the present mode has a use for the right button.
[[nodiscard]] bool modeUsesRightButton();

/// What the latest drag in the present mode may have changed of the mesh.
[[nodiscard]] Changed changedByMode();

/// The name of the present mode becomes the one that the title shows.
void restoreModeName();

/// Hands a mouse event to the present mode, after history and position are up to date.
void modeMouse(const Event& event);

} // namespace polyfab
