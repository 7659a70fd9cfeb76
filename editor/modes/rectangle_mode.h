// SPDX-License-Identifier: GPL-3.0-or-later
// Selecting faces by a rectangle.
#pragma once

#include "editor/modes/drag.h"

#include <memory>

namespace polyfab {

/// A drag in a pane draws a rectangle. When the button goes up the faces wholly in it (right
/// button: those that it touches) are selected and the rest is not; with Shift held at the press
/// they are added, with Ctrl taken away. While faces that face away are hidden they do not count. A
/// press that does not move selects nothing and unselects nothing.
std::unique_ptr<Drag> dragRectangle(const Event& press);

} // namespace polyfab
