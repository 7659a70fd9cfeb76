// SPDX-License-Identifier: GPL-3.0-or-later
// The rows of the file menu that open what was read or written last.
#pragma once

#include "editor/command_table.h"

namespace polyfab {

/// How the menu shows the file of this number, 0 the latest: greyed when it was found missing,
/// hidden when there are fewer.
[[nodiscard]] Shown shownRecentFile(int number);

/// Reads it, or imports it again, in place of the present mesh.
void openRecentFile(int number);

/// The command that does what this one amounts to: of a recent file's, the reading or the importing
/// of a mesh file; any other itself.
[[nodiscard]] int plainCommand(int id);

} // namespace polyfab
