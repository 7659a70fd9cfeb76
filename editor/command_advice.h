// SPDX-License-Identifier: GPL-3.0-or-later
// What each command does, in a sentence: menus, search, the sheet of keys and the list in
// docs/commands.md all say this.
#pragma once

namespace polyfab {

/// The sentence of this command, or "" where there is no such command. That of a command which
/// enters a mode is what the mouse does in it.
[[nodiscard]] const char* adviceOf(int command);

} // namespace polyfab
