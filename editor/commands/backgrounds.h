// SPDX-License-Identifier: GPL-3.0-or-later
// Pictures behind the panes, and rendered panes as pictures for other programs.
#pragma once

namespace polyfab {

/// Puts the picture of the clipboard or of a file behind the pane. What can't be read leaves the
/// old one there.
template <bool left>
void readBackground();

/// Puts the rendered panes onto the clipboard, side by side, without what marks something in them.
void copyRendered();

} // namespace polyfab
