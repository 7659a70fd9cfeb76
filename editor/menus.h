// SPDX-License-Identifier: GPL-3.0-or-later
// Menu bars and command lists, built from the command table.
#pragma once

#include "platform/platform.h"

#include <string>

namespace polyfab {

/// Puts the menu bar of this name on the window: "POLYFAB" for the mesh itself, "GMENUMENU" for the
/// list of groups, "MENUMENU" for the other lists. What is not built yet is greyed, and in lists
/// undo.
void showMenuBar(const std::string& name);

/// Puts the bar of the mesh on the window anew when rows of it have to say something else by now.
void refreshMenuBar();

/// Greys what can't be done now; to be called when a menu opens.
void updateGreying();

/// Brings the check marks of the present menu bar up to date.
void updateCheckMarks();

[[nodiscard]] std::vector<CommandInfo> listCommands();

} // namespace polyfab
