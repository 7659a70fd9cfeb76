// SPDX-License-Identifier: GPL-3.0-or-later
// Pictures behind the mesh, to model after. They move and grow with the view and never turn.
#pragma once

#include "display/pane.h"
#include "picture/image.h"

namespace polyfab {

/// Puts the picture behind what the pane shows, as large as fits into it now. The image must have
/// pixels. May throw std::bad_alloc; nothing has changed then.
void setBackground(bool leftPane, Image image);

/// Fits the pictures into their panes anew: for a view that was made for another mesh, which says
/// nothing about where they belong.
void refitBackgrounds();

/// What is behind a pane; null: nothing.
[[nodiscard]] const Image* backgroundOf(bool leftPane);

/// Draws what is behind a pane, if there is something and the options want it. May throw
/// std::bad_alloc.
void drawBackground(const Pane& pane);

/// Nothing is behind the panes, as at start-up.
void resetBackgrounds();

} // namespace polyfab
