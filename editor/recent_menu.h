// SPDX-License-Identifier: GPL-3.0-or-later
// The rows of the file menu that open what was read or written last.
#pragma once

#include "editor/commands.h"

namespace polyfab {

/// How the menu shows the file of this number, 0 the latest: greyed when it is missing, hidden when
/// there are fewer.
[[nodiscard]] Shown shownRecentFile(int number);

/// Reads it, or imports it again, in place of the present mesh.
void openRecentFile(int number);

} // namespace polyfab
