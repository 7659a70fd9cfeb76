// SPDX-License-Identifier: GPL-3.0-or-later
// The command table as menus and as a printable list.
#pragma once

#include "platform/platform.h"

#include <vector>

namespace polyfab {

/// The menu bar of the mesh view; what is not built yet is greyed.
[[nodiscard]] MenuBar mainMenu();

[[nodiscard]] std::vector<CommandInfo> listCommands();

} // namespace polyfab
