// SPDX-License-Identifier: GPL-3.0-or-later
// Help from within: the manual where it speaks of what the user is at, and a sheet of all keys.
#pragma once

#include <string>

namespace polyfab {

/// Opens the manual at the chapter of the present mode or list.
void openHelpHere();

/// Shows the sheet of keys.
void showKeys();

/// The sheet as Markdown, made of the tables of commands and modes.
[[nodiscard]] std::string keySheet();

} // namespace polyfab
