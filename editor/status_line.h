// SPDX-License-Identifier: GPL-3.0-or-later
// What the status line says: on the left what the mouse does, or what was done; on the right what
// is selected and current.
#pragma once

namespace polyfab {

/// Counts the faces anew if some may have been added, deleted or selected, as `stale` has it.
void countFaces();

/// To be called before a picture is drawn within an event, which lowers the flags of `stale`.
void noteUncounted();

/// Says all of it anew, and what drawing has to tell.
void updateStatusLine();

/// Whether the window shows it, and the command that changes that.
void toggleStatusLine();
[[nodiscard]] bool statusLineIsShown();

} // namespace polyfab
