// SPDX-License-Identifier: GPL-3.0-or-later
// Face handling, one of the handling modes.
#pragma once

#include "editor/modes/drag.h"

namespace polyfab {

/// A press makes the nearest face current, with Shift it also turns its selection round; a drag
/// from point to point splits the face that has both.
std::unique_ptr<Drag> pressFace(const Event& press);

/// Asks, and then deletes the current face. Without one nothing happens.
void deleteCurrentFace();

} // namespace polyfab
