// SPDX-License-Identifier: GPL-3.0-or-later
// What the status line says: on the left what the mouse does, or what was done; on the right what
// is selected and current.
#pragma once

namespace polyfab {

/// Counts the faces anew. To be called when some may have been added, deleted or selected.
void countFaces();

/// Says all of it anew.
void updateStatusLine();

/// Whether the window shows it, and the command that changes that.
void toggleStatusLine();
[[nodiscard]] bool statusLineIsShown();

} // namespace polyfab
